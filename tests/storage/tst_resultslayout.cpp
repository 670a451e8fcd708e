#include "device/windows1251.h"
#include "storage/resultsexport.h"
#include "storage/resultsreading.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>

namespace
{

const QDateTime start({2026, 11, 24}, {7, 5, 9});

using Times = QVector<double>;

/** A channel with points at these times; the values count from `first` on. */
PlotChannel channelAt(const Times &times, double first, const QString &unit)
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

/** The rows of an export of two channels, values from 0 and 100, without ".00". */
QString exportedRows(const Times &times, const Times &otherTimes, int minutes = 0,
                     bool isRejected = false)
{
    PlotDevice instrument =
        instrumentWith({channelAt(times, 0, ""), channelAt(otherTimes, 100, "")});
    instrument.ch[1].error = isRejected;
    const QByteArray file = exported(instrument, ResultsFormat::fromTexts(";", "", 2, minutes));
    return fromWindows1251(file).remove(".00").split("\r\n").mid(4).join(' ');
}

/** Writes down what a reader finds. */
class Notes : public ResultsSink
{
public:
    void begin(const QDateTime &moment) override
    {
        lines << moment.toString("dd.MM.yyyy hh:mm:ss");
    }
    bool take(const QVector<PlotPoint> &points, const QVector<QString> &units) override
    {
        for (const PlotPoint &point : points)
            lines << QString::number(point.channel) + ' ' + QString::number(point.seconds) + ' ' +
                         QString::number(point.value) + units[point.channel];
        return true;
    }

    QStringList lines;
};

/** What is read of a file, and how many rows, skipped lines and skipped values it has. */
QString read(const QString &text)
{
    QByteArray file = toWindows1251(text);
    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    Notes notes;
    ResultsReader reader(&device, &notes, {{2030, 1, 2}, {3, 4, 5}});
    while (reader.readOn(0))
        continue;
    const ResultsFindings &found = reader.findings();
    return notes.lines.join("; ") +
           QString(" | %1 %2 %3").arg(found.rows).arg(found.skippedLines).arg(found.skippedValues);
}

/** Numbers of all kinds, halves of the last digit and their neighbours among them. */
QVector<double> anyNumbers()
{
    auto &chance = *QRandomGenerator::global();
    QVector<double> numbers{0.0, -0.0, 7.125, -7.125, -0.001, 1e15, 1e300, 2251799813.685248};
    for (int i = 0; i < 2000; ++i) {
        const double half = (double(chance.bounded(2000001)) - 1e6) / std::pow(2, i % 9);
        const double any = chance.generateDouble() * std::pow(10, chance.bounded(600) - 300);
        numbers << half << std::nextafter(half, 1e9) << std::nextafter(half, -1e9)
                << chance.generateDouble() * 1e3 - 500 << any << -any;
    }
    return numbers;
}

/** Texts that may be numbers. */
QByteArrayList anyTexts()
{
    auto texts = QByteArray("-0|-0.0|+5| 5 |5.|.5|\xA0\x35|5\r|1e5|inf|-inf|nan|1e999|0x10|1,5|--|"
                            "00012|-|-.5|1 000||5.0.0|123456789012345|1234567890123456|"
                            "0.000000000000001|0.0000000000000001")
                     .split('|');
    auto &chance = *QRandomGenerator::global();
    const QByteArray alphabet("0123456789012345678901234567890123456789..-+e ,\xA0\xD1");
    for (int i = 0; i < 20000; ++i) {
        QByteArray text;
        for (int length = chance.bounded(22); length > 0; --length)
            text += alphabet[chance.bounded(i % 2 == 0 ? 42 : alphabet.size())];
        texts << text << QByteArray::number(chance.generateDouble() * 100, 'f', i % 16);
    }
    return texts;
}

} // namespace

/** Results files as text: what is written and read, byte for byte. */
class TestResultsLayout : public QObject
{
    Q_OBJECT
private slots:
    void numbers()
    {
        for (const double number : anyNumbers()) {
            QByteArray text;
            QByteArray expected;
            for (int decimals = 0; decimals <= 7; ++decimals) {
                appendFixed(&text, number, decimals);
                expected += QByteArray::number(number, 'f', decimals);
            }
            appendWholeSeconds(&text, number);
            QCOMPARE(text, expected + QByteArray::number(std::round(number), 'g', 6));
        }
        for (const QByteArray &text : anyTexts()) {
            bool isNumber = false;
            const double expected = fromWindows1251(text).toDouble(&isNumber);
            double number = 0;
            const bool isRead = readNumber(text.cbegin(), text.cend(), &number);
            const bool isSame = std::memcmp(&number, &expected, sizeof number) == 0;
            QVERIFY2(isRead == isNumber && (!isRead || isSame), text);
        }
    }

    void exportLayout()
    {
        const PlotDevice instrument = instrumentWith(
            {channelAt({0, 12.6, 1234567.2}, 7.125, "°С"), channelAt({0, 12.6}, -3, "Ω"),
             channelAt({}, 0, ""), channelAt({0.1}, 5, "kΩ²ℓ\n日μ")});
        const ResultsFormat format = ResultsFormat::fromTexts("\t", ",", 0, 0);
        QCOMPARE(fromWindows1251(exported(instrument, format)),
                 QString("Начало измерений. Дата 24.11.2026 Время 07:05:09\t\r\n"
                         "\r\n"
                         "№\tdT\tКанал 1\tКанал 2\tКанал 3\tКанал 4\t\r\n"
                         " \t[c]\t[°С]\t[Ом]\t[]\t[kОм2l ?µ]\t\r\n"
                         "1\t0\t7,13\t-3,00\t--\t--\t\r\n"
                         "2\t13\t8,13\t-2,00\t--\t--\t\r\n"
                         "3\t1.23457e+06\t9,13\t--\t--\t--\t\r\n"));
        QVERIFY(exported(instrumentWith({}), format).endsWith(" \t[c]\t\r\n"));
        QCOMPARE(resultsFileName("NOX CM rev.4", "0123", start.date()),
                 QString("NOX CM rev_4_N0123_24-11-2026"));
    }

    void exportRows()
    {
        const Times everyTen{0, 10, 20, 30, 40, 50, 60, 70, 80, 130, 140};
        const QVector<QPair<QString, QString>> rows{
            // more than a minute apart
            {exportedRows(everyTen, {0, 70}, 1), "1;0;0;100; 2;70;7;101; 3;140;10;--; "},
            {exportedRows(everyTen, {0, 70}, 1, true), "1;0;0;--; 2;70;7;--; 3;140;10;--; "},
            // started later, ended earlier
            {exportedRows({0, 1, 2, 3, 4}, {0.5, 2.5, 3}),
             "1;0;0;--; 2;1;1;100; 3;2;2;100; 4;3;3;102; 5;4;4;--; "},
            // of two equally long the first gives the times
            {exportedRows({0, 1}, {0.5, 1.5}), "1;0;0;--; 2;1;1;100; "},
            // equal times twice: one row, the newest value of the other
            {exportedRows({1, 1, 2}, {1, 1}), "1;1;1;101; 2;2;2;--; "},
            // the clock is set back
            {exportedRows({0, 10, 20, 5, 15}, {0, 20, 6, 14, 30}),
             "1;0;0;100; 2;10;1;100; 3;20;2;101; 4;5;3;--; 5;15;4;103; "},
            // it was set back before the other started
            {exportedRows({0, 10, 5, 15, 25}, {12, 20}),
             "1;0;0;--; 2;10;1;--; 3;5;2;--; 4;15;3;100; 5;25;4;--; "},
            {exportedRows({0, 1}, {0}), "1;0;0;--; 2;1;1;--; "}}; // a single point has no value
        for (const auto &[exported, expected] : rows)
            QCOMPARE(exported, expected);
    }

    void exportOfDifference()
    {
        PlotChannel channel = channelAt({0, 10, 20, 80, 85}, 0, "");
        channel.diffQwtIndex = 0;
        channel.diffCh = 1;
        for (const double time : {0.0, 70.0, 75.0}) // fewer than there are values
            channel.appendDifference(5, time);
        const auto rows = [&channel](int minutes) {
            const auto format = ResultsFormat::fromTexts(";", "", 2, minutes);
            return QString(exported(instrumentWith({channel}), format)).section("\r\n", 4);
        };
        QCOMPARE(rows(0), QString("1;0;0.00;\r\n2;10;1.00;\r\n3;20;2.00;\r\n4;80;3.00;\r\n"
                                  "5;85;4.00;\r\n"));
        QCOMPARE(rows(1), QString("1;0;0.00;\r\n2;10;1.00;\r\n"));
    }

    void reading()
    {
        const QString first = "Дата 24.11.2026 Время 07:05:09;\n\n";
        const QString begin = "24.11.2026 07:05:09";
        const QString head = first + "№;dT;Канал 1;Канал 2;\n ;[c];[°С];[Ом];\n";
        const QVector<QPair<QString, QString>> files{
            {head + "1;13;7.13;-3;\n2;1.23457e+06;--;4;\n",
             "; 0 13 7.13°С; 1 13 -3Ω; 1 1.23457e+06 4Ω | 2 0 1"},
            {head + "1;13;7,13;-3,0;\n", " | 1 0 2"}, // decimal commas
            // CR LF, and no line end at the end
            {QString(head + "1;0;5;6").replace("\n", "\r\n"), "; 0 0 5°С; 1 0 6Ω | 1 0 0"},
            // no time, a blank time, no value, too many values
            {head + "1;x;5;6;\n1; ;5;6;\n1;3\n1;3;\n;4;;7;8;9;\n", "; 1 4 7Ω | 2 3 0"},
            // fewer units than columns, one that is none; more units than columns
            {first + "№;dT;1;2;3;\n ;[c];none;[];\n1;0;5;6;7;\n", "; 1 0 6 | 1 0 0"},
            {first + "№;dT;1;\n ;[c];[K];[V];T [W] x;\n1;0;5;6;7;\n",
             "; 0 0 5K; 1 0 6V; 2 0 7W | 1 0 0"},
            // blanks, also within a unit
            {first + "№ dT 1 2 \n  [c] [мм рт. ст.] [K] \n1 0 5 6 \n",
             "; 0 0 5мм рт. ст.; 1 0 6K | 1 0 0"},
            {first + "№;dT;1;", " | 0 0 0"}, // too few lines, no line end
            // a line too long ends with a whole field
            {head + "1;0;5;" + QString(65531, '0') + "\n2;1;7;8;\n",
             "; 0 0 5°С; 0 1 7°С; 1 1 8Ω | 2 0 0"}};
        for (const auto &[file, found] : files)
            QCOMPARE(read(file), begin + found);
        // no date, an impossible time; too few columns; no lines
        QCOMPARE(read("07:61:09;\n\n" + head.mid(first.size()) + "1;0;5;\n"),
                 QString("02.01.2030 03:04:05; 0 0 5°С | 1 0 0"));
        QCOMPARE(read(first + "№;dT\n ;[c];[K];\n1;0;5;\n"), QString(" | 0 0 0"));
        QCOMPARE(read(QString(200000, ';')), QString(" | 0 0 0"));
    }
};

QTEST_GUILESS_MAIN(TestResultsLayout)
#include "tst_resultslayout.moc"
