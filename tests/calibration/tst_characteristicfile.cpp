#include "calibration/characteristicfile.h"
#include "support/fulldisk.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

// in the tables below a bar stands for a line end, and parts the rows of the editor's table

QByteArray lines(QByteArray text)
{
    return text.replace('|', "\r\n");
}

QByteArray numbered(const char *head, int count, const char *line)
{
    return lines(head + QByteArray(line).repeated(count));
}

QByteArray written(const CharacteristicFile &file)
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    return writeCharacteristicFile(file, device) ? device.data() : "refused";
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

QString outcome(QByteArray content)
{
    QBuffer device(&content);
    device.open(QIODevice::ReadOnly);
    return outcome(readCharacteristicFile(device));
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

} // namespace

class TestCharacteristicFile : public QObject
{
    Q_OBJECT
private slots:

    void writing_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QByteArray>("content");

        QTest::newRow("polynomial, a word, a comma")
            << 0 << "Гр Ω"
            << "1 2,5 -0.000000123456789 1e10 x|- 1234567 100000 0.1 "
            << lines("0|\xC3\xF0 ?|1|2.5|-1.23457e-07|1e+10|0|0|1.23457e+06|100000|0.1|0|");
        QTest::newRow("line ends in the description")
            << 1 << "a\r\nb\nc\rd"
            << "100 3.9083e-3 -5.775e-7 -4.183e-12 -200 850"
            << lines("1|a b c d|100|0.0039083|-5.775e-07|-4.183e-12|-200|850|");
        QTest::newRow("disabled cell")
            << 2 << "M"
            << "1 2 3 4 -|5 6 7 8 9" << lines("3|M|1|2|3|4|0|5|6|7|8|9|");
        QTest::newRow("table, a comma")
            << 3 << "T"
            << "0 100.06 x 300|-0.1 0,6 1 2.3234567"
            << numbered("2|T|0 -0.1|100.06 0|0 1|300 2.32346|", 52, "0 0|");
        QTest::newRow("no description") << 0 << ""
                                        << "" << numbered("0||", 10, "0|");
        QTest::newRow("table without description") << 3 << ""
                                                   << "" << numbered("2||", 56, "0 0|");
        QTest::newRow("no such type") << 4 << "M"
                                      << "1" << QByteArray("refused");
    }

    void writing()
    {
        QFETCH(int, type);
        QFETCH(QString, description);
        QFETCH(QString, table);
        QFETCH(QByteArray, content);
        CharacteristicFile file{type, description, {}};
        for (const QString &row : table.split('|'))
            file.rows << row.split(' ');
        QCOMPARE(written(file), content);

        QBuffer device(&content);
        device.open(QIODevice::ReadOnly);
        const CharacteristicFileReading reading = readCharacteristicFile(device);
        QCOMPARE(reading.accepted, content != "refused");
        if (reading.accepted)
            QCOMPARE(written(reading.file), content);
    }

    void reading_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");

        const QString refused = "refused, type -1";
        QTest::newRow("LF, blanks, no last line end")
            << QByteArray("\n 1 \n\n\xCC \n1\n2\n3,5\nx\n5\n6") << "1|М|1 2 3,5 x 5 6";
        QTest::newRow("disabled cell")
            << lines("3|M|1|2|3|4|0|5|6|7|8|9") << "2|M|1 2 3 4 0|5 6 7 8 9";
        QTest::newRow("last number behind 16 KiB")
            << lines("1|M|1|2|3|4|5|").leftJustified(16384, ' ') + '6' << "1|M|1 2 3 4 5 6";
        QTest::newRow("table: lines that are no pair")
            << lines("2|T|1 2|1 2 3|4|5\t  \t6|7\t8") << "3|T|1   5|2   6";
        QTest::newRow("table: last column") << numbered("2|T|", 55, "x|") + "8 9"
                                            << "3|T|8|9";
        QTest::newRow("table: one line too many") << numbered("2|T|", 57, "1 2|") << refused;
        QTest::newRow("table: one pair only") << lines("2|T|1 2") << refused;
        for (const int count : {5, 7})
            QTest::addRow("type 1, %d numbers", count) << numbered("1|M|", count, "1|") << refused;
        for (const int count : {9, 11}) {
            QTest::addRow("type 0, %d numbers", count) << numbered("0|M|", count, "1|") << refused;
            QTest::addRow("type 2, %d numbers", count) << numbered("3|M|", count, "1|") << refused;
        }
        QTest::newRow("no such code") << numbered("4|M|", 10, "1|") << refused;
        QTest::newRow("negative code") << numbered("-1|M|", 10, "1|") << refused;
        QTest::newRow("word for a code") << numbered("x|M|", 10, "1|") << "refused, type 0";
        QTest::newRow("word for a code, short") << numbered("x|M|", 9, "1|") << refused;

        QTest::newRow("blank line before the description")
            << lines("1||7|1|2|3|4|5|6") << "1|7|1 2 3 4 5 6";
        QTest::newRow("blanks for a description") << lines("1|  |7|1|2|3|4|5|") << "1||7 1 2 3 4 5";
        QTest::newRow("no description line") << lines("1|7|1|2|3|4|5|") << refused;
        QTest::newRow("number lost after a blank line") << lines("1||M|1|2|3|4|5") << refused;
        QTest::newRow("table: blank line before the description")
            << lines("2||no 1|1 2|3 4") << "3|no 1|1 3|2 4";
        QTest::newRow("table: one number is no pair") << lines("2||5|1 2|3 4") << "3|5|1 3|2 4";
        QTest::newRow("table: blank line is the description")
            << lines("2||1 2|3,5 4") << "3||1 3,5|2 4";
        QTest::newRow("table: full with a pair as the description")
            << numbered("2||1 2|", 55, "x|") + "8 9"
            << "3|1 2|8|9";

        QTest::newRow("empty") << QByteArray() << refused;
        QTest::newRow("line ends only") << lines("||||||||||||") << refused;
        QTest::newRow("zeros") << QByteArray(100000, '\0') << refused;
        QTest::newRow("right, but 2 MiB long")
            << numbered("0|M|", 10, "1|") + QByteArray(2 * 1024 * 1024, ' ') << refused;
    }

    void reading()
    {
        QFETCH(QByteArray, content);
        QTEST(outcome(content), "expected");
    }

    void failingDevices()
    {
        QByteArray content = numbered("0||", 10, "0|");
        BreakingDevice source(&content);
        QVERIFY(source.open(QIODevice::ReadOnly));
        QVERIFY(!readCharacteristicFile(source).accepted);
        BreakingDevice target;
        QVERIFY(target.open(QIODevice::WriteOnly));
        QVERIFY(!writeCharacteristicFile({}, target));
        QFile endless("/dev/zero");
        QVERIFY(endless.open(QIODevice::ReadOnly));
        QVERIFY(!readCharacteristicFile(endless).accepted);
    }

    void fullDiskLeavesTheOldFile()
    {
        QTemporaryDir directory;
        const QString path = directory.filePath("x.dat");
        const CharacteristicFile old{1, "old", {{"1", "2", "3", "4", "5", "6"}}};
        QVERIFY(saveCharacteristicFile(old, path));

        {
            const FullDisk disk(100);
            QVERIFY(!saveCharacteristicFile({3, "new", {}}, path));
        }
        QVERIFY(!saveCharacteristicFile({4, "no such type", {}}, path));
        QVERIFY(!saveCharacteristicFile(old, directory.path()));
        QVERIFY(!saveCharacteristicFile(old, directory.filePath("none/x.dat")));
        QVERIFY(!loadCharacteristicFile(directory.path()).accepted);
        QCOMPARE(outcome(loadCharacteristicFile(path)), QString("1|old|1 2 3 4 5 6"));
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestCharacteristicFile)
#include "tst_characteristicfile.moc"
