#include "calibration/characteristicfile.h"
#include "calibration/characteristicmessages.h"
#include "support/fulldisk.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

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

} // namespace

/** Characteristics as files, tables and remarks, without a widget. */
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

    void pairs_data()
    {
        QTest::addColumn<QString>("outcome"); // handed on; not rising; left out
        QTest::newRow("0,100,200/0,1,2") << "0,0,100,1,200,2; ; ";
        QTest::newRow("0,,200/0,,2") << "0,0,200,2; ; 1";
        QTest::newRow("0,,200/1,9,2") << "0,1,200,2; ; 1";
        QTest::newRow("0,100,,/0,1,2,") << "0,0,100,1; ; 2";
        QTest::newRow("0,,200,300,400/1,9,1,2,2") << "0,1,200,1,300,2,400,2; 2 4; 1";
        QTest::newRow("0,100,200/1,x,0.5") << "0,1,100,x,200,0.5; 2; ";
    }

    void pairs()
    {
        const QStringList rows = QString(QTest::currentDataTag()).split('/');
        const CellTexts cells = {rows.at(0).split(','), rows.at(1).split(',')};
        CharacteristicLayout layout = characteristicLayout(3);
        layout.columns = cells.at(0).size();
        QStringList outcome(enteredValues(layout, cells).join(','));
        for (const QVector<int> &columns : {columnsNotRising(cells), columnsLeftOut(cells)}) {
            QStringList numbers;
            for (const int column : columns)
                numbers << QString::number(column);
            outcome << numbers.join(' ');
        }
        QTEST(outcome.join("; "), "outcome");
        QCOMPARE(withValues(layout, cells, enteredValues(layout, cells)), cells);
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
};

QTEST_GUILESS_MAIN(TestCharacteristics)
#include "tst_characteristics.moc"
