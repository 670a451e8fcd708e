#include "calibration/characteristicfile.h"
#include "calibration/characteristicmessages.h"
#include "calibration/tpreper.h"
#include "support/fulldisk.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace
{

// in the texts below a bar stands for a line end, and parts the rows of the editor's table

QByteArray lines(QByteArray text)
{
    return text.replace('|', "\r\n");
}

QByteArray numbered(const char *head, int count, const char *line)
{
    return head + QByteArray(line).repeated(count);
}

QByteArray written(const CharacteristicFile &file)
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    return writeCharacteristicFile(file, device) ? device.data() : "refused";
}

CharacteristicFileReading read(QByteArray content)
{
    QBuffer device(&content);
    device.open(QIODevice::ReadOnly);
    return readCharacteristicFile(device);
}

QString outcome(const CharacteristicFileReading &reading)
{
    if (!reading.accepted)
        return QString("refused, type %1").arg(reading.selectedType.value_or(-1));
    QStringList parts = {QString::number(*reading.selectedType), reading.file.description};
    for (const QStringList &row : reading.file.rows)
        parts << row.join(' ').trimmed();
    return parts.join('|');
}

/** Gives what it holds, takes some bytes at a time, and fails then. */
class BreakingDevice : public QBuffer
{
public:
    using QBuffer::QBuffer;

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const qint64 count = QBuffer::readData(data, size);
        return count > 0 ? count : -1;
    }
    qint64 writeData(const char *data, qint64 size) override
    {
        return pos() < 20 ? QBuffer::writeData(data, qMin<qint64>(size, 20)) : -1;
    }
};

/** The remark on a characteristic, behind "!" if it is a warning. */
QString note(FeatureRecord::_featureIndType type, const QString &values)
{
    featureNOX8 feature;
    feature.setFeature(type, "", values.split(' '));
    const CharacteristicNote note = noteOn(feature, cellTexts(feature), {}, true);
    return (note.isWarning ? "! " : "") + note.text;
}

// recalculation by the EMFs at the freezing points of zinc, aluminium and copper

using Emfs = std::array<float, 3>;
using Table = std::map<unsigned short, float>;

constexpr Emfs typical = {3.447F, 5.860F, 10.575F};

Table recalculated(Emfs emfs, Table result = {})
{
    tpReper::getEDSTable(emfs.data(), result);
    return result;
}

Table recalculated(std::size_t point, float emf, const Table &before = {})
{
    Emfs emfs = typical;
    emfs[point] = emf;
    return recalculated(emfs, before);
}

} // namespace

/** Characteristics as files, tables and remarks, and their recalculation, without a widget. */
class TestCharacteristics : public QObject
{
    Q_OBJECT
private slots:
    void writing()
    {
        struct {
            CharacteristicFile file;
            QString table;
            QByteArray content;
        } const cases[] = {// a letter outside the code page, a comma, a word, nothing
                           {{0, "Гр Ω", {}},
                            "1 2,5 -0.000000123456789 1e10 x|- 1234567 100000 0.1 ",
                            "0|\xC3\xF0 ?|1|2.5|-1.23457e-07|1e+10|0|0|1.23457e+06|100000|0.1|0|"},
                           {{1, "a\r\nb\nc\rd", {}},
                            "100 3.9083e-3 -5.775e-7 -4.183e-12 -200 850",
                            "1|a b c d|100|0.0039083|-5.775e-07|-4.183e-12|-200|850|"},
                           {{2, "M", {}}, "1 2 3 4 -|5 6 7 8 9", "3|M|1|2|3|4|0|5|6|7|8|9|"},
                           {{3, "T", {}},
                            "0 100.06 x 300|-0.1 0,6 1 2.3234567",
                            numbered("2|T|0 -0.1|100.06 0|0 1|300 2.32346|", 52, "0 0|")},
                           {{3, "", {}}, "", numbered("2||", 56, "0 0|")},
                           {{4, "M", {}}, "1", "refused"}};
        for (auto [file, table, content] : cases) {
            for (const QString &row : table.split('|'))
                file.rows << row.split(' ');
            QCOMPARE(written(file), lines(content));
            const CharacteristicFileReading reading = read(lines(content));
            QCOMPARE(reading.accepted, content != "refused");
            QVERIFY(!reading.accepted || written(reading.file) == lines(content));
        }
    }

    void reading()
    {
        const QString refused = "refused, type -1";
        const QByteArray longest = QByteArray("0|M").leftJustified(2 << 20, ' ');
        const QVector<QPair<QByteArray, QString>> files = {
            {"\n 1 \n\n\xCC \n1\n2\n3,5\nx\n5\n6", "1|М|1 2 3,5 x 5 6"}, // no last line end
            {"3|M|1|2|3|4|0|5|6|7|8|9", "2|M|1 2 3 4 0|5 6 7 8 9"},
            {lines("1|M|1|2|3|4|5|").leftJustified(16384, ' ') + '6', "1|M|1 2 3 4 5 6"},
            {"2|T|1 2|1 2 3|4|5\t  \t6|7\t8", "3|T|1   5|2   6"},
            {numbered("2|T|", 55, "x|") + "8 9", "3|T|8|9"},
            {"2|T|0 0|100 1|0 0|0,0 -", "3|T|0 100|0 1"}, // what fills the table up
            {"2|T|-200 -3|-100 -2|0 0|0 0", "3|T|-200 -100 0|-3 -2 0"},
            {"2|T|0 0|0 0|0 0", "3|T|0 0|0 0"},
            {numbered("2|T|", 57, "1 2|"), refused},
            {"2|T|1 2", refused},
            {numbered("1|M|", 5, "1|"), refused},
            {numbered("1|M|", 7, "1|"), refused},
            {numbered("3|M|", 9, "1|"), refused},
            {numbered("3|M|", 11, "1|"), refused},
            {numbered("4|M|", 10, "1|"), refused},
            {numbered("x|M|", 10, "1|"), "refused, type 0"},
            {numbered("x|M|", 9, "1|"), refused},
            {"", refused},
            {longest + numbered("|", 10, "1|"), refused},
            // a blank second line is the description only where the rest is the data
            {"1||7|1|2|3|4|5|6", "1|7|1 2 3 4 5 6"},
            {"1|  |7|1|2|3|4|5|", "1||7 1 2 3 4 5"},
            {"1|7|1|2|3|4|5|", refused},
            {"1||M|1|2|3|4|5", refused},
            {"2||no 1|1 2|3 4", "3|no 1|1 3|2 4"},
            {"2||5|1 2|3 4", "3|5|1 3|2 4"},
            {"2||1 2|3,5 4", "3||1 3,5|2 4"},
            {numbered("2||1 2|", 55, "x|") + "8 9", "3|1 2|8|9"}};
        for (const auto &[content, expected] : files)
            QCOMPARE(outcome(read(lines(content))), expected);
    }

    void failingDevices()
    {
        QByteArray content = lines(numbered("0||", 10, "0|"));
        BreakingDevice source(&content);
        QVERIFY(source.open(QIODevice::ReadOnly) && !readCharacteristicFile(source).accepted);
        BreakingDevice target;
        QVERIFY(target.open(QIODevice::WriteOnly) && !writeCharacteristicFile({}, target));
        QFile endless("/dev/zero");
        QVERIFY(endless.open(QIODevice::ReadOnly) && !readCharacteristicFile(endless).accepted);
    }

    void fullDiskLeavesTheOldFile()
    {
        QTemporaryDir directory;
        const QString path = directory.filePath("x.dat");
        QVERIFY(saveCharacteristicFile({1, "old", {{"1", "2", "3", "4", "5", "6"}}}, path));
        {
            const FullDisk disk(100);
            QVERIFY(!saveCharacteristicFile({3, "new", {}}, path));
        }
        QVERIFY(!saveCharacteristicFile({4, "no such type", {}}, path));
        QVERIFY(!saveCharacteristicFile({3, "new", {}}, directory.path()));
        QVERIFY(!loadCharacteristicFile(directory.path()).accepted);
        QCOMPARE(outcome(loadCharacteristicFile(path)), QString("1|old|1 2 3 4 5 6"));
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files).size(), 1);
    }

    /** Which are handed on; which do not rise; which are left out. */
    void pairs()
    {
        const QVector<QPair<CellTexts, QString>> tables = {
            {{{"0", "100", "200"}, {"0", "1", "2"}}, "0,0,100,1,200,2; ; "},
            {{{"0", "", "200"}, {"0", "", "2"}}, "0,0,200,2; ; 1"},
            {{{"0", "", "200"}, {"1", "9", "2"}}, "0,1,200,2; ; 1"},
            {{{"0", "100", "", ""}, {"0", "1", "2", ""}}, "0,0,100,1; ; 2"},
            {{{"0", "", "200", "300", "400"}, {"1", "9", "1", "2", "2"}},
             "0,1,200,1,300,2,400,2; 2 4; 1"},
            {{{"0", "100", "200"}, {"1", "x", "0.5"}}, "0,1,100,x,200,0.5; 2; "}};
        for (const auto &[cells, expected] : tables) {
            CharacteristicLayout layout = characteristicLayout(3);
            layout.columns = cells.at(0).size();
            QStringList outcome(enteredValues(layout, cells).join(','));
            for (const QVector<int> &columns : {columnsNotRising(cells), columnsLeftOut(cells)}) {
                QStringList numbers;
                for (const int column : columns)
                    numbers << QString::number(column);
                outcome << numbers.join(' ');
            }
            QCOMPARE(outcome.join("; "), expected);
            QCOMPARE(withValues(layout, cells, enteredValues(layout, cells)), cells);
        }
    }

    /** An independent computation finds 17.5 to 18.5 mK, and above 0 °C less than 0.5. */
    void notes()
    {
        const auto platinum = [](const QString &r0, const QString &range) {
            return note(FeatureRecord::callendarVanDusen,
                        r0 + " 3.9083e-3 -5.775e-7 -4.183e-12 " + range);
        };
        const QString wide = "! Отклонение полинома: %1 мК — больше 1 мК";
        QCOMPARE(platinum("100", "-200 850"), wide.arg("17,7"));
        QCOMPARE(platinum("1000", "-200 850"), wide.arg("17,6"));
        QCOMPARE(platinum("100", "0 850"), QString("Отклонение полинома: 0,2 мК"));
        const QString nineteen = "0.00000000000000001";
        QCOMPARE(note(FeatureRecord::polynomial, nineteen + " 2 3 4 5 6 7 8 9 10"), QString());
        QCOMPARE(note(FeatureRecord::polynomial, nineteen + "0 2 3 4 5 6 7 8 9 10"),
                 QString("! Длиннее 19 знаков: прибор сохранит не все"));
    }

    // the file is made by tests/support/fixedpoints.py
    void fixedPoints()
    {
        QFile file(QFINDTESTDATA("data/fixedpoints.csv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> heads = file.readLine().trimmed().split(',');
        std::map<QByteArray, FixedPointTable> expected;
        while (!file.atEnd()) {
            const QList<QByteArray> fields = file.readLine().trimmed().split(',');
            for (int i = 2; i < heads.size(); ++i)
                expected[fields.at(0)][fields.at(1).toFloat()][heads.at(i).toUShort()] =
                    fields.at(i).toFloat();
        }
        QVERIFY(fixedPointTables() ==
                (std::array{expected["zinc"], expected["aluminium"], expected["copper"]}));
    }

    /** Whose last digit tells the order in which it is summed up. */
    void sum()
    {
        const Table result = recalculated({3.456F, 5.845F, 10.542F}, {{20, 0.1F}});
        QStringList numbers;
        for (const auto &[celsius, emf] : result)
            numbers << QString("%1:%2").arg(celsius).arg(double(emf), 0, 'g', 9);
        QCOMPARE(numbers.join(' '),
                 QString("300:2.34450006 400:3.27109981 500:4.23210001 600:5.22779989 "
                         "700:6.25790024 800:7.32259989 900:8.42179966 1000:9.55560017 "
                         "1100:10.7238998 1200:11.9187994"));
    }

    void nearest()
    {
        // a float lies exactly halfway between 48 pairs of neighbours, the last one of zinc among
        // them
        int found = 0;
        int foundAtTheEnd = 0;
        for (std::size_t point = 0; point < typical.size(); ++point) {
            const FixedPointTable &table = fixedPointTables()[point];
            const Table before = {{7, 7.0F}};
            const float first = table.begin()->first;
            const float last = table.rbegin()->first;
            for (const float beyond :
                 {std::nextafter(first, 0.0F), std::nextafter(last, 99.0F), -first, std::nanf("")})
                QVERIFY(recalculated(point, beyond, before) == before);
            for (auto low = table.begin(), high = std::next(low); high != table.end();
                 ++low, ++high) {
                float emf = low->first;
                while (emf - low->first < high->first - emf)
                    emf = std::nextafter(emf, high->first);
                const bool isTie = emf - low->first == high->first - emf;
                const bool isLast = std::next(high) == table.end();
                const Table lower = recalculated(point, low->first);
                const Table upper = recalculated(point, high->first);
                QVERIFY(lower != upper);
                QVERIFY(recalculated(point, std::nextafter(emf, low->first)) == lower);
                QVERIFY(recalculated(point, emf) == (isTie && !isLast ? lower : upper));
                QVERIFY(recalculated(point, std::nextafter(emf, high->first)) == upper);
                found += int(isTie);
                foundAtTheEnd += int(isTie && isLast);
            }
        }
        QCOMPARE(QString("%1 %2").arg(found).arg(foundAtTheEnd), QString("48 1"));
    }
};

QTEST_GUILESS_MAIN(TestCharacteristics)
#include "tst_characteristics.moc"
