#include "device/windows1251.h"
#include "storage/resultsexport.h"
#include "storage/resultslayout.h"
#include "storage/resultsreading.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>

namespace
{

const QDateTime start({2026, 11, 24}, {7, 5, 9});
const QDateTime now({2030, 1, 2}, {3, 4, 5});

/** A channel with points at these times; the values count from `first` on. */
PlotChannel channelAt(const QVector<double> &times, double first, const QString &unit)
{
    PlotChannel channel;
    for (const double time : times)
        channel.appendPoint(first++, time, unit);
    channel.error = times.isEmpty();
    return channel;
}

PlotDevice instrumentWith(const QVector<PlotChannel> &channels)
{
    PlotDevice instrument;
    instrument.startDateTime = start;
    instrument.ch = channels;
    return instrument;
}

QByteArray exported(const PlotDevice &instrument, const ResultsFormat &format)
{
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    ResultsExport results(instrument, format);
    while (results.writeOn(&file, 0) == ResultsExport::Unfinished)
        continue;
    return file.data();
}

/** The rows of an export, without the lines before them. */
QStringList exportedRows(const PlotDevice &instrument, const ResultsFormat &format)
{
    return fromWindows1251(exported(instrument, format)).split("\r\n").mid(4);
}

/** Writes down what a reader finds. */
class Notes : public ResultsSink
{
public:
    void begin(const QDateTime &moment) override
    {
        lines << moment.toString("begin dd.MM.yyyy hh:mm:ss");
    }
    bool take(const QVector<PlotPoint> &points, const QVector<QString> &units) override
    {
        for (const PlotPoint &point : points)
            lines << QString("%1 %2 %3%4")
                         .arg(point.channel)
                         .arg(point.seconds)
                         .arg(point.value)
                         .arg(units[point.channel]);
        return lines.size() < most;
    }

    QStringList lines;
    int most = 1000;
};

QStringList read(QByteArray file)
{
    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    Notes notes;
    ResultsReader reader(&device, &notes, now);
    while (reader.readOn(0))
        continue;
    return notes.lines;
}

bool isSame(double one, double other)
{
    return std::memcmp(&one, &other, sizeof one) == 0;
}

} // namespace

/** Results files: what is written, and what is read of it, byte for byte. */
class TestResultsFile : public QObject
{
    Q_OBJECT
private slots:
    void writtenNumbers();
    void readNumbers();
    void exportLayout();
    void exportRows_data();
    void exportRows();
    void exportOfDifference();
    void exportOntoFullDisk();
    void reading_data();
    void reading();
    void readingStops();
    void roundTrip_data();
    void roundTrip();
};

void TestResultsFile::writtenNumbers()
{
    auto &chance = *QRandomGenerator::global();
    QVector<double> numbers{0.0, -0.0, 7.125, -7.125, -0.001, 1e15, 1e300, 2251799813.685248};
    for (int i = 0; i < 10000; ++i) {
        const double half = (double(chance.bounded(2000001)) - 1e6) / std::pow(2, i % 9);
        quint64 bits = chance.generate64();
        double any = 0;
        std::memcpy(&any, &bits, sizeof any);
        numbers << half << std::nextafter(half, 1e9) << std::nextafter(half, -1e9)
                << chance.generateDouble() * 1e3 - 500 << (std::isfinite(any) ? any : 0.0);
    }
    for (const double number : qAsConst(numbers)) {
        for (int decimals = 0; decimals <= 7; ++decimals) {
            QByteArray text;
            appendFixed(&text, number, decimals);
            if (text != QByteArray::number(number, 'f', decimals))
                QCOMPARE(text, QByteArray::number(number, 'f', decimals));
        }
        QByteArray time;
        appendWholeSeconds(&time, number);
        if (time != QByteArray::number(std::round(number), 'g', 6))
            QCOMPARE(time, QByteArray::number(std::round(number), 'g', 6));
    }
}

void TestResultsFile::readNumbers()
{
    QByteArrayList texts{"-0",
                         "-0.0",
                         "+5",
                         " 5 ",
                         "5.",
                         ".5",
                         "\xA0"
                         "5",
                         "5\r",
                         "1e5",
                         "inf",
                         "-inf",
                         "nan",
                         "1e999",
                         "0x10",
                         "1,5",
                         "--",
                         "00012",
                         "-",
                         "-.5",
                         "1 000",
                         "",
                         "5.0.0",
                         "123456789012345",
                         "1234567890123456",
                         "0.000000000000001",
                         "0.0000000000000001"};
    auto &chance = *QRandomGenerator::global();
    const QByteArray alphabet("0123456789012345678901234567890123456789..-+e ,\xA0\xD1");
    for (int i = 0; i < 50000; ++i) {
        QByteArray text;
        for (int length = chance.bounded(22); length > 0; --length)
            text += alphabet[chance.bounded(i % 2 == 0 ? 42 : alphabet.size())];
        texts << text << QByteArray::number(chance.generateDouble() * 100, 'f', i % 16);
    }
    for (const QByteArray &text : qAsConst(texts)) {
        bool isNumber = false;
        const double expected = fromWindows1251(text).toDouble(&isNumber);
        double number = 0;
        const bool isRead = readNumber(text.cbegin(), text.cend(), &number);
        const bool isEqual = isRead == isNumber && (!isRead || isSame(number, expected) ||
                                                    (qIsNaN(number) && qIsNaN(expected)));
        QVERIFY2(isEqual, text);
    }
}

void TestResultsFile::exportLayout()
{
    const PlotDevice instrument =
        instrumentWith({channelAt({0, 12.6, 1234567.2}, 7.125, "°С"), channelAt({0, 12.6}, -3, "Ω"),
                        channelAt({}, 0, ""), channelAt({0.1}, 5, "kΩ²ℓ\n日")});
    ResultsFormat format = ResultsFormat::fromTexts("\t", ",", 0, 0);
    QCOMPARE(fromWindows1251(exported(instrument, format)),
             QString("Начало измерений. Дата 24.11.2026 Время 07:05:09\t\r\n"
                     "\r\n"
                     "№\tdT\tКанал 1\tКанал 2\tКанал 3\tКанал 4\t\r\n"
                     " \t[c]\t[°С]\t[Ом]\t[]\t[kОм2l ?]\t\r\n"
                     "1\t0\t7,13\t-3,00\t--\t--\t\r\n"
                     "2\t13\t8,13\t-2,00\t--\t--\t\r\n"
                     "3\t1.23457e+06\t9,13\t--\t--\t--\t\r\n"));
    QCOMPARE(exportedRows(instrumentWith({}), format), QStringList{""});
}

void TestResultsFile::exportRows_data()
{
    QTest::addColumn<QVector<double>>("times");
    QTest::addColumn<QVector<double>>("otherTimes");
    QTest::addColumn<int>("minutes");
    QTest::addColumn<QStringList>("rows");

    using Times = QVector<double>;
    const Times everyTen{0, 10, 20, 30, 40, 50, 60, 70, 80, 130, 140};
    QTest::newRow("more than a minute apart")
        << everyTen << Times{0, 70} << 1
        << QStringList{"1;0;0.00;100.00;", "2;70;7.00;101.00;", "3;140;10.00;--;"};
    QTest::newRow("started later, ended earlier")
        << Times{0, 1, 2, 3, 4} << Times{0.5, 2.5, 3} << 0
        << QStringList{"1;0;0.00;--;", "2;1;1.00;100.00;", "3;2;2.00;100.00;", "4;3;3.00;102.00;",
                       "5;4;4.00;--;"};
    QTest::newRow("of two equally long the first gives the times")
        << Times{0, 1} << Times{0.5, 1.5} << 0 << QStringList{"1;0;0.00;--;", "2;1;1.00;100.00;"};
    QTest::newRow("equal times twice: one row, the newest value of the other")
        << Times{1, 1, 2} << Times{1, 1} << 0 << QStringList{"1;1;1.00;101.00;", "2;2;2.00;--;"};
    QTest::newRow("the clock is set back")
        << Times{0, 10, 20, 5, 15} << Times{0, 20, 6, 14, 30} << 0
        << QStringList{"1;0;0.00;100.00;", "2;10;1.00;100.00;", "3;20;2.00;101.00;", "4;5;3.00;--;",
                       "5;15;4.00;103.00;"};
    QTest::newRow("the clock was set back before the other started")
        << Times{0, 10, 5, 15, 25} << Times{12, 20} << 0
        << QStringList{"1;0;0.00;--;", "2;10;1.00;--;", "3;5;2.00;--;", "4;15;3.00;100.00;",
                       "5;25;4.00;--;"};
    QTest::newRow("a single point has no value")
        << Times{0, 1} << Times{0} << 0 << QStringList{"1;0;0.00;--;", "2;1;1.00;--;"};
}

void TestResultsFile::exportRows()
{
    QFETCH(QVector<double>, times);
    QFETCH(QVector<double>, otherTimes);
    QFETCH(int, minutes);
    QFETCH(QStringList, rows);

    PlotDevice instrument =
        instrumentWith({channelAt(times, 0, ""), channelAt(otherTimes, 100, "")});
    const ResultsFormat format = ResultsFormat::fromTexts(";", "", 2, minutes);
    QCOMPARE(exportedRows(instrument, format), rows + QStringList{""});
    instrument.ch[1].error = true;
    for (const QString &row : exportedRows(instrument, format).mid(0, rows.size()))
        QVERIFY2(row.endsWith(";--;"), qPrintable(row));
}

void TestResultsFile::exportOfDifference()
{
    PlotChannel channel = channelAt({0, 10, 20, 80, 85}, 0, "");
    channel.diffQwtIndex = 0;
    channel.diffCh = 1;
    for (const double time : {0.0, 70.0, 75.0}) // fewer than there are values
        channel.appendDifference(5, time);
    const PlotDevice instrument = instrumentWith({channel});
    QCOMPARE(exportedRows(instrument, ResultsFormat::fromTexts(";", "", 2, 0)).mid(0, 5),
             (QStringList{"1;0;0.00;", "2;10;1.00;", "3;20;2.00;", "4;80;3.00;", "5;85;4.00;"}));
    QCOMPARE(exportedRows(instrument, ResultsFormat::fromTexts(";", "", 2, 1)).mid(0, 2),
             (QStringList{"1;0;0.00;", "2;10;1.00;"}));
}

void TestResultsFile::exportOntoFullDisk()
{
    QVector<double> times;
    for (int i = 0; i < 20000; ++i)
        times << i;
    /** Takes so many bytes and then fails. */
    class FullDevice : public QBuffer
    {
        qint64 writeData(const char *data, qint64 size) override
        {
            return size > 200000 - pos() ? -1 : QBuffer::writeData(data, size);
        }
    } device;
    device.open(QIODevice::WriteOnly);
    ResultsExport results(instrumentWith({channelAt(times, 0, "")}), {});
    while (results.writeOn(&device, 0) == ResultsExport::Unfinished)
        QVERIFY(results.percent() < 100);
    QCOMPARE(results.writeOn(&device, 0), ResultsExport::Failed);
}

void TestResultsFile::reading_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("found");

    const QString first = "Дата 24.11.2026 Время 07:05:09;\n\n";
    const QString begin = "begin 24.11.2026 07:05:09";
    const QString columns = "№;dT;Канал 1;Канал 2;\n ;[c];[°С];[Ом];\n";
    QTest::newRow("decimal points")
        << first + columns + "1;13;7.13;-3;\n2;1.23457e+06;--;4;\n"
        << QStringList{begin, "0 13 7.13°С", "1 13 -3Ω", "1 1.23457e+06 4Ω"};
    QTest::newRow("decimal commas") << first + columns + "1;13;7,13;-3,0;\n" << QStringList{begin};
    QTest::newRow("CR LF, and no line end at the end")
        << QString(first + columns + "1;0;5;6").replace("\n", "\r\n")
        << QStringList{begin, "0 0 5°С", "1 0 6Ω"};
    QTest::newRow("no time, a blank time, no value, too many values")
        << first + columns + "1;x;5;6;\n1; ;5;6;\n1;3\n1;3;\n;4;;7;8;9;\n"
        << QStringList{begin, "1 4 7Ω"};
    QTest::newRow("no date, an impossible time")
        << QString("07:61:09;\n\n") + columns + "1;0;5;\n"
        << QStringList{"begin 02.01.2030 03:04:05", "0 0 5°С"};
    QTest::newRow("units: fewer than columns, one that is none")
        << first + "№;dT;Канал 1;Канал 2;Канал 3;\n ;[c];none;[];\n1;0;5;6;7;\n"
        << QStringList{begin, "1 0 6"};
    QTest::newRow("units: more than columns")
        << first + "№;dT;Канал 1;\n ;[c];[K];[V];[W];\n1;0;5;6;7;\n"
        << QStringList{begin, "0 0 5K", "1 0 6V", "2 0 7W"};
    QTest::newRow("blanks, also within a unit")
        << first + "№ dT Канал 1 Канал 2 \n  [c] [мм рт. ст.] [K] \n1 0 5 6 \n"
        << QStringList{begin, "0 0 5мм рт. ст.", "1 0 6K"};
    QTest::newRow("two columns") << first + "№;dT\n ;[c];[K];\n1;0;5;\n" << QStringList{};
    QTest::newRow("three lines") << first + "№;dT;Канал 1;" << QStringList{begin};
    QTest::newRow("nothing") << QString() << QStringList{};
    QTest::newRow("one endless line") << QString(300000, ';') << QStringList{};
    QTest::newRow("a line too long ends with a whole field")
        << first + columns + "1;0;5;" + QString(65531, '0') + '\n' + "2;1;7;8;\n"
        << QStringList{begin, "0 0 5°С", "0 1 7°С", "1 1 8Ω"};
}

void TestResultsFile::reading()
{
    QFETCH(QString, file);
    QFETCH(QStringList, found);
    QCOMPARE(read(toWindows1251(file)), found);
}

void TestResultsFile::readingStops()
{
    QByteArray file = toWindows1251("\n\n№;dT;Канал 1;\n ;[c];[K];\n");
    for (int i = 0; i < 200000; ++i)
        file += "1;" + QByteArray::number(i) + ";5;\n";
    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    Notes notes;
    notes.most = 2;
    ResultsReader reader(&device, &notes, now);
    QVERIFY(!reader.readOn(60000));
    QVERIFY(!reader.findings().isWhole);
    QVERIFY2(notes.lines.size() < 50000, "all of the file was in memory");
}

void TestResultsFile::roundTrip_data()
{
    QTest::addColumn<QString>("separator");
    for (const char *separator : {";", "\t", ",", " ", ":"})
        QTest::newRow(separator) << separator;
}

void TestResultsFile::roundTrip()
{
    QFETCH(QString, separator);
    const PlotDevice instrument =
        instrumentWith({channelAt({0, 1, 86400}, 7.125, "°С"), channelAt({}, 0, ""),
                        channelAt({0, 2, 86400}, -3, "Ω")});
    const ResultsFormat format = ResultsFormat::fromTexts(separator, ".", 3, 0);
    QCOMPARE(read(exported(instrument, format)),
             (QStringList{"begin 24.11.2026 07:05:09", "0 0 7.125°С", "2 0 -3Ω", "0 1 8.125°С",
                          "2 1 -3Ω", "0 86400 9.125°С", "2 86400 -1Ω"}));
}

QTEST_GUILESS_MAIN(TestResultsFile)
#include "tst_resultsfile.moc"
