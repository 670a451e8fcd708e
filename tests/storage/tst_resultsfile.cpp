#include "device/windows1251.h"
#include "plot/qwtnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/recmeas.h"
#include "storage/recorder.h"
#include "storage/resultsexport.h"
#include "storage/resultsfileform.h"
#include "storage/resultsreading.h"
#include "storage/savemeas.h"
#include "support/fulldisk.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>
#include <QtWidgets>

#include <cmath>
#include <cstring>
#include <memory>

namespace
{

const QDateTime start({2026, 11, 24}, {7, 5, 9});
const QDateTime now({2030, 1, 2}, {3, 4, 5});

const QByteArray header = toWindows1251("Начало измерений. Дата 24.11.2026 Время 07:05:09;\r\n"
                                        "\r\n"
                                        "№;dT;Канал 1;Канал 2;\r\n"
                                        " ;[c];[K];[K];\r\n");

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

/** The rows of an export of two channels, values from 0 and 100, without the lines before them. */
QString exportedRows(const Times &times, const Times &otherTimes, int minutes = 0,
                     bool isRejected = false)
{
    PlotDevice instrument =
        instrumentWith({channelAt(times, 0, ""), channelAt(otherTimes, 100, "")});
    instrument.ch[1].error = isRejected;
    const QByteArray file = exported(instrument, ResultsFormat::fromTexts(";", "", 2, minutes));
    return fromWindows1251(file).split("\r\n").mid(4).join(' ');
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
            lines << QString("%1 %2 %3%4")
                         .arg(point.channel)
                         .arg(point.seconds)
                         .arg(point.value)
                         .arg(units[point.channel]);
        return true;
    }

    QStringList lines;
};

QString read(const QString &text)
{
    QByteArray file = toWindows1251(text);
    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    Notes notes;
    ResultsReader reader(&device, &notes, now);
    while (reader.readOn(0))
        continue;
    const ResultsFindings &found = reader.findings();
    return notes.lines.join("; ") + QString(" | %1 rows, %2 and %3 skipped")
                                        .arg(found.rows)
                                        .arg(found.skippedLines)
                                        .arg(found.skippedValues);
}

/** Numbers of all kinds, halves of the last digit and their neighbours among them. */
QVector<double> anyNumbers()
{
    auto &chance = *QRandomGenerator::global();
    QVector<double> numbers{0.0, -0.0, 7.125, -7.125, -0.001, 1e15, 1e300, 2251799813.685248};
    for (int i = 0; i < 2000; ++i) {
        const double half = (double(chance.bounded(2000001)) - 1e6) / std::pow(2, i % 9);
        const quint64 bits = chance.generate64();
        double any = 0;
        std::memcpy(&any, &bits, sizeof any);
        numbers << half << std::nextafter(half, 1e9) << std::nextafter(half, -1e9)
                << chance.generateDouble() * 1e3 - 500 << (std::isfinite(any) ? any : 0.0);
    }
    return numbers;
}

/** Texts that may be numbers. */
QByteArrayList anyTexts()
{
    QByteArrayList texts =
        QByteArray("-0|-0.0|+5| 5 |5.|.5|\xA0\x35|5\r|1e5|inf|-inf|nan|1e999|0x10|1,5|--|00012|-|"
                   "-.5|1 000||5.0.0|123456789012345|1234567890123456|0.000000000000001|"
                   "0.0000000000000001")
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

/** The program's objects, with a recorded instrument: registry index 0, plot index 10. */
struct Bench {
    Bench()
    {
        plot.setClock([] { return start.addSecs(60); });
        addInstrument(10);
        plot.setDevMain(10);
    }

    noxList::_nox &addInstrument(int qwtIndex)
    {
        noxList::_nox *nox = registry.newNox(-1, true);
        nox->qwtIndex = qwtIndex;
        nox->recording = true;
        nox->recFileName = directory.filePath(QString("%1.csv").arg(nox->index));
        plot.addDev(qwtIndex, 2);
        plot.prepareMeas(qwtIndex, start);
        return *nox;
    }

    QTemporaryDir directory;
    noxSql database{QString()};
    NOXSerialPort port;
    noxList registry{&port, &database};
    QwtNOX plot;
    Recorder recorder{&registry, &plot};
    ResultsReading reading{&registry, &plot};
    savemeas exporting{nullptr, &plot};
};

} // namespace

/** Results files: what is written and read of them, byte for byte, while anything may happen. */
class TestResultsFile : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        bench = std::make_unique<Bench>();
        m_questions.clear();
        m_told.clear();
        UserDialogs::current().tell = [this](QWidget *, const Message &message) {
            m_told << message.text;
        };
    }
    void cleanup() { bench.reset(); }

    void numbers()
    {
        const auto written = anyNumbers();
        for (const double number : written) {
            QByteArrayList texts;
            QByteArrayList expected;
            for (int decimals = 0; decimals <= 7; ++decimals) {
                texts << QByteArray();
                appendFixed(&texts.last(), number, decimals);
                expected << QByteArray::number(number, 'f', decimals);
            }
            texts << QByteArray();
            appendWholeSeconds(&texts.last(), number);
            expected << QByteArray::number(std::round(number), 'g', 6);
            QCOMPARE(texts, expected);
        }
        const auto texts = anyTexts();
        for (const QByteArray &text : texts) {
            bool isNumber = false;
            const double expected = fromWindows1251(text).toDouble(&isNumber);
            double number = 0;
            const bool isRead = readNumber(text.cbegin(), text.cend(), &number);
            const bool isSame = std::memcmp(&number, &expected, sizeof number) == 0;
            QVERIFY2(isRead == isNumber &&
                         (!isRead || isSame || (qIsNaN(number) && qIsNaN(expected))),
                     text);
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
        // more than a minute apart
        QCOMPARE(exportedRows(everyTen, {0, 70}, 1),
                 QString("1;0;0.00;100.00; 2;70;7.00;101.00; 3;140;10.00;--; "));
        QCOMPARE(exportedRows(everyTen, {0, 70}, 1, true),
                 QString("1;0;0.00;--; 2;70;7.00;--; 3;140;10.00;--; "));
        // started later, ended earlier
        QCOMPARE(exportedRows({0, 1, 2, 3, 4}, {0.5, 2.5, 3}),
                 QString("1;0;0.00;--; 2;1;1.00;100.00; 3;2;2.00;100.00; 4;3;3.00;102.00; "
                         "5;4;4.00;--; "));
        // of two equally long the first gives the times
        QCOMPARE(exportedRows({0, 1}, {0.5, 1.5}), QString("1;0;0.00;--; 2;1;1.00;100.00; "));
        // equal times twice: one row, the newest value of the other
        QCOMPARE(exportedRows({1, 1, 2}, {1, 1}), QString("1;1;1.00;101.00; 2;2;2.00;--; "));
        // the clock is set back
        QCOMPARE(exportedRows({0, 10, 20, 5, 15}, {0, 20, 6, 14, 30}),
                 QString("1;0;0.00;100.00; 2;10;1.00;100.00; 3;20;2.00;101.00; 4;5;3.00;--; "
                         "5;15;4.00;103.00; "));
        // it was set back before the other started
        QCOMPARE(exportedRows({0, 10, 5, 15, 25}, {12, 20}),
                 QString("1;0;0.00;--; 2;10;1.00;--; 3;5;2.00;--; 4;15;3.00;100.00; "
                         "5;25;4.00;--; "));
        // a single point has no value
        QCOMPARE(exportedRows({0, 1}, {0}), QString("1;0;0.00;--; 2;1;1.00;--; "));
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
        const QString columns = "№;dT;Канал 1;Канал 2;\n ;[c];[°С];[Ом];\n";
        QCOMPARE(read(first + columns + "1;13;7.13;-3;\n2;1.23457e+06;--;4;\n"),
                 begin + "; 0 13 7.13°С; 1 13 -3Ω; 1 1.23457e+06 4Ω | 2 rows, 0 and 1 skipped");
        // decimal commas
        QCOMPARE(read(first + columns + "1;13;7,13;-3,0;\n"), begin + " | 1 rows, 0 and 2 skipped");
        // CR LF, and no line end at the end
        QCOMPARE(read(QString(first + columns + "1;0;5;6").replace("\n", "\r\n")),
                 begin + "; 0 0 5°С; 1 0 6Ω | 1 rows, 0 and 0 skipped");
        // no time, a blank time, no value, too many values
        QCOMPARE(read(first + columns + "1;x;5;6;\n1; ;5;6;\n1;3\n1;3;\n;4;;7;8;9;\n"),
                 begin + "; 1 4 7Ω | 2 rows, 3 and 0 skipped");
        // no date, an impossible time
        QCOMPARE(read("07:61:09;\n\n" + columns + "1;0;5;\n"),
                 QString("02.01.2030 03:04:05; 0 0 5°С | 1 rows, 0 and 0 skipped"));
        // fewer units than columns, one that is none; more units than columns
        QCOMPARE(read(first + "№;dT;1;2;3;\n ;[c];none;[];\n1;0;5;6;7;\n"),
                 begin + "; 1 0 6 | 1 rows, 0 and 0 skipped");
        QCOMPARE(read(first + "№;dT;1;\n ;[c];[K];[V];T [W] x;\n1;0;5;6;7;\n"),
                 begin + "; 0 0 5K; 1 0 6V; 2 0 7W | 1 rows, 0 and 0 skipped");
        // blanks, also within a unit
        QCOMPARE(read(first + "№ dT 1 2 \n  [c] [мм рт. ст.] [K] \n1 0 5 6 \n"),
                 begin + "; 0 0 5мм рт. ст.; 1 0 6K | 1 rows, 0 and 0 skipped");
        // too few columns, too few lines, no line end
        QCOMPARE(read(first + "№;dT\n ;[c];[K];\n1;0;5;\n"), QString(" | 0 rows, 0 and 0 skipped"));
        QCOMPARE(read(first + "№;dT;1;"), begin + " | 0 rows, 0 and 0 skipped");
        QCOMPARE(read(QString(200000, ';')), QString(" | 0 rows, 0 and 0 skipped"));
        // a line too long ends with a whole field
        QCOMPARE(read(first + columns + "1;0;5;" + QString(65531, '0') + "\n2;1;7;8;\n"),
                 begin + "; 0 0 5°С; 0 1 7°С; 1 1 8Ω | 2 rows, 0 and 0 skipped");
        const PlotDevice instrument =
            instrumentWith({channelAt({0, 1, 86400}, 7.125, "°С"), channelAt({}, 0, ""),
                            channelAt({0, 2, 86400}, -3, "Ω")});
        for (const char separator : {';', '\t', ',', ' ', ':'}) {
            const auto format = ResultsFormat::fromTexts(QChar(separator), ".", 3, 0);
            QCOMPARE(read(fromWindows1251(exported(instrument, format))),
                     begin + "; 0 0 7.125°С; 2 0 -3Ω; 0 1 8.125°С; 2 1 -3Ω; 0 86400 9.125°С; "
                             "2 86400 -1Ω | 3 rows, 0 and 3 skipped");
        }
    }

    void fileIsReadIntoThePlot()
    {
        bench->plot.addPoint(1, 1, "K", 10, 1); // goes
        QSignalSpy ends(&bench->reading, &ResultsReading::finished);
        QSignalSpy steps(&bench->reading, &ResultsReading::progress);
        QVERIFY(!readIntoPlot(path("none.csv"), 0) && !readIntoPlot(path(""), 0));
        QVERIFY(!readIntoPlot(fileWith(3), 1));
        QCOMPARE(bench->plot.getChMeasCount(10, 1), 1);
        QCOMPARE(ends.size(), 0);
        QVERIFY(readIntoPlot(fileWith(3), 0));
        QCOMPARE(ends.size(), 1); // a short file needs no event loop
        QCOMPARE(bench->plot.getStartDateTime(10), start);
        QCOMPARE(QString("%1 %2 %3 %4")
                     .arg(bench->plot.getChMeas(10, 0))
                     .arg(bench->plot.getChDim(10, 0))
                     .arg(bench->plot.getChTime(10, 0))
                     .arg(bench->plot.getChMeasCount(10, 1)),
                 QString("20.125 °С 2 0"));
        QVERIFY(readIntoPlot(fileWith(400000), 0));
        QVERIFY(readIntoPlot(fileWith(200001), 0)); // in place of the first
        QCOMPARE(ends.size(), 2);
        QTRY_COMPARE_WITH_TIMEOUT(ends.size(), 3, 60000);
        const auto findings = ends.at(2).at(0).value<ResultsFindings>();
        QVERIFY(findings.isWhole && !steps.isEmpty());
        QCOMPARE(findings.points, 200001);
        QCOMPARE(bench->plot.getChMeasCount(10, 0), 200001);
    }

    void readingIsInterrupted()
    {
        const auto replace = [this] {
            bench->registry.rmByIndex(0);
            bench->plot.removeDev(10);
            bench->addInstrument(10);
        };
        bool removesWhenHeard = false;
        connect(&bench->plot, &QwtNOX::onAddPoint, &bench->reading, [&] {
            if (removesWhenHeard && bench->plot.getChMeasCount(10, 0) >= 50)
                replace();
        });
        const QVector<std::function<void()>> interruptions{
            [this] { bench->reading.stop(); }, replace,
            [this] { bench->registry.setProccesed(0, true, true); },
            [this] { bench->plot.prepareMeas(10, start.addSecs(1)); }, [] {}};
        for (int what = 0; what < interruptions.size(); ++what) {
            removesWhenHeard = what == 4;
            bench->registry.setProccesed(0, true, false);
            bench->registry.setProccesed(0, false, true);
            QSignalSpy ends(&bench->reading, &ResultsReading::finished);
            QVERIFY(readIntoPlot(fileWith(400000), 0));
            QCOMPARE(bench->reading.isRunning(), !removesWhenHeard);
            interruptions[what]();
            const int count = bench->plot.getChMeasCount(10, 0);
            QTRY_COMPARE(ends.size(), 1);
            QVERIFY(!ends.at(0).at(0).value<ResultsFindings>().isWhole);
            QVERIFY(!bench->reading.isRunning());
            QCOMPARE(bench->plot.getChMeasCount(10, 0), count);
        }
    }

    void picture()
    {
        bench->plot.resize(321, 123);
        for (const int second : {0, 1, 2})
            bench->plot.addPoint(second % 2, second, "K", 10, 0);
        bench->plot.setChColor(Qt::magenta, 10, 0);
        QVERIFY(savePlotImage(&bench->plot, path("график.png")));
        const QImage image(path("график.png"), "PNG");
        QCOMPARE(image.size(), QSize(321, 123));
        int ink = 0; // of the curve, which no frame has painted yet
        for (int x = 0; x < image.width(); ++x)
            for (int y = 0; y < image.height(); ++y)
                ink += image.pixelColor(x, y) == Qt::magenta ? 1 : 0;
        QVERIFY(ink > 20);
        QVERIFY(!savePlotImage(&bench->plot, path("")));
    }

    void roundsAreRecorded()
    {
        noxList::_nox &other = bench->addInstrument(11);
        other.recFieldSep = "\t";
        other.recPointSep = ",";
        other.recPrecision = 0;
        measure(0, 0, 7.03125, 0);
        measure(1, 0, 7.125, 0.5);
        measure(0, 1, 8, 1);
        QCOMPARE(content("0.csv"), QByteArray("no file")); // the round is not over
        measure(1, 0, 8.125, 2.5);
        measure(0, 0, 9, 3);
        measure(0, 1, -1300, 4); // a broken sensor
        measure(0, 0, 10, 5);
        measure(0, 1, 11, 6);
        measure(0, 1, 12, 7); // channel 0 was left out
        QCOMPARE(content("0.csv"), header + "1;0;7.0313;8.0000;\r\n"
                                            "2;3;9.0000;--;\r\n"
                                            "3;5;10.0000;11.0000;\r\n");
        QVERIFY(content("1.csv").endsWith("\t[c]\t[K]\t[]\t\r\n1\t1\t7,13\t--\t\r\n"));
    }

    void intervalsAreKept()
    {
        noxList::_nox &nox = *bench->registry.getNoxByIndex(0);
        nox.recInterval = 1;
        for (const int second : {0, 30, 60, 61, 90, 130})
            measureRound(second);
        bench->plot.prepareMeas(10, start); // times begin anew
        for (const int second : {0, 5, 62, 70})
            measureRound(second);
        QByteArray rows = header + "1;0;0.0000;0.0000;\r\n2;61;61.0000;-61.0000;\r\n"
                                   "3;0;0.0000;0.0000;\r\n4;62;62.0000;-62.0000;\r\n";
        QCOMPARE(content("0.csv"), rows);
        nox.recording = false;
        nox.recRow = 0;
        measureRound(300);
        nox.recording = true; // with the first round that it sees
        measureRound(301);
        measureRound(302);
        QCOMPARE(content("0.csv"), rows + "1;300;300.0000;-300.0000;\r\n");
        nox.recFileName.clear();
        QSignalSpy changes(&bench->registry, &noxList::onChange);
        measureRound(303);
        QVERIFY(!nox.recording);
        QCOMPARE(changes.size(), 1);
    }

    void existingFileGoesOn()
    {
        const QByteArray row = "1;0;0.0000;0.0000;\r\n";
        const QVector<QPair<QByteArray, QByteArray>> files{{"", header + row},
                                                           {header + row, header + row + row},
                                                           {"9;\n", "9;\n" + row}, // by an editor
                                                           {"9;1;2.3", "9;1;2.3\r\n" + row},
                                                           {"9;1;2.3;\r", "9;1;2.3;\r\n" + row}};
        for (const auto &[before, after] : files) {
            bench = std::make_unique<Bench>();
            setContent("0.csv", before);
            measureRound(0);
            measureRound(1);
            QCOMPARE(content("0.csv"), after);
        }
    }

    void recordingOntoAFullDisk()
    {
        QSignalSpy faults(&bench->recorder, &Recorder::faultChanged);
        {
            const FullDisk disk(rlim_t(header.size() - 20)); // not even the header has room
            measureRound(0);
            measureRound(1);
            QCOMPARE(content("0.csv"), QByteArray());
        }
        measureRound(2);
        const QByteArray first = header + "1;1;1.0000;-1.0000;\r\n";
        for (int room = 0; room < 8; ++room) {
            const FullDisk disk(rlim_t(first.size() + room));
            measureRound(3 + room);
            QCOMPARE(content("0.csv"), first);
        }
        QCOMPARE(recordingFaultText(bench->recorder.fault(0).value_or(RecordingFault())),
                 QString("Запись не ведётся с 24.11.2026 07:06:09: файл не записывается"));
        measureRound(11);
        QCOMPARE(content("0.csv"), first + "2;10;10.0000;-10.0000;\r\n");
        QVERIFY(!bench->recorder.fault(0));
        QCOMPARE(faults.size(), 4); // came and went twice

        QVERIFY(QDir(path("")).mkdir("folder"));
        bench->registry.getNoxByIndex(0)->recFileName = path("folder");
        measureRound(12);
        QCOMPARE(bench->recorder.fault(0)->problem, RecordingProblem::CannotOpen);
        bench->registry.setRecording(0, false);
        QVERIFY(!bench->recorder.fault(0));
    }

    void exportByKeyboard()
    {
        addPoints(3);
        bench->exporting.showFor("NOX B_N0001_24-11-2026");
        QVERIFY(QTest::qWaitForWindowActive(&bench->exporting));
        chooseNext("результаты 1.csv");
        QTest::keyClick(bench->exporting.focusWidget(), Qt::Key_Return); // "Файл"
        const FileQuestion &question = m_questions.at(0);
        QCOMPARE((QStringList{question.title, question.filter, question.directory, question.name,
                              question.defaultSuffix}),
                 (QStringList{"Файл для сохранения результатов", "CSV (*.csv *.CSV);; * (*.*)",
                              QDir::homePath(), "NOX B_N0001_24-11-2026", "csv"}));
        QVERIFY(question.asksToReplace && question.mode == QFileDialog::AcceptSave);
        QTest::keyClick(bench->exporting.focusWidget(), Qt::Key_Return); // "Сохранить"
        QCOMPARE(status(&bench->exporting), QString("Сохранено!"));
        QVERIFY(content("результаты 1.csv").endsWith("3;2;2.0000;--;\r\n"));
        QTest::keyClick(&bench->exporting, Qt::Key_Escape);
        QVERIFY(!bench->exporting.isVisible());
        QCOMPARE(status(&bench->exporting), QString());

        auto *fields = bench->exporting.findChild<QComboBox *>("deFieldCB");
        QString points;
        for (const char *field : {"Запятая", "Пробел"}) {
            fields->setCurrentText(field);
            points += bench->exporting.findChild<QComboBox *>("dePointCB")->currentText();
        }
        QCOMPARE(points, QString("ТочкаСистемный"));
    }

    void exportThatFails_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<int>("points");
        QTest::addColumn<int>("room");
        QTest::addColumn<QString>("told");
        const QString failed = "Ошибка записи в файл!\nВозможно файл занят другим приложением или "
                               "не доступен для записи.";
        QTest::newRow("no file") << "" << 3 << 1000000 << "Выберите файл для сохранения";
        QTest::newRow("a folder") << "." << 3 << 1000000 << failed;
        QTest::newRow("no such folder") << "none/1.csv" << 3 << 1000000 << failed;
        QTest::newRow("no channels") << "1.csv" << 0 << 1000000 << "Нет данных для сохранения";
        QTest::newRow("full disk, short") << "1.csv" << 3 << 20 << failed;
        QTest::newRow("full disk, long") << "1.csv" << 50000 << 500000 << failed;
    }

    void exportThatFails()
    {
        QFETCH(QString, fileName);
        QFETCH(int, points);
        QFETCH(int, room);
        QFETCH(QString, told);
        setContent("1.csv", "before");
        bench->plot.removeDev(10);
        bench->plot.addDev(10, 0);
        bench->plot.setDevMain(10);
        addPoints(points);
        bench->exporting.showFor("x");
        chooseNext(fileName);
        press(&bench->exporting, "selectFileBtn");
        const FullDisk disk{rlim_t(room)};
        press(&bench->exporting, "saveBtn");
        QTRY_COMPARE(m_told, QStringList{told});
        QCOMPARE(status(&bench->exporting), QString("Сохраняю..."));
        QCOMPARE(content("1.csv"), QByteArray("before"));
        QCOMPARE(QDir(path("")).entryList({"*csv*"}), QStringList{"1.csv"}); // no other file left
        QVERIFY(bench->exporting.findChild<QPushButton *>("saveBtn")->isEnabled());
    }

    void longExport()
    {
        const auto *const progress = bench->exporting.findChild<QProgressBar *>("progressBar");
        bench->exporting.showFor("x");
        chooseNext("1.csv");
        press(&bench->exporting, "selectFileBtn");
        for (const bool givesUp : {true, false}) {
            addPoints(200000);
            press(&bench->exporting, "saveBtn");
            QVERIFY(!bench->exporting.findChild<QPushButton *>("saveBtn")->isEnabled());
            QTRY_VERIFY(progress->value() > 10);
            bench->plot.removeDev(10); // what it has measured is exported all the same
            if (givesUp) {
                QTest::keyClick(bench->exporting.focusWidget(), Qt::Key_Space);
                QCOMPARE(status(&bench->exporting), QString());
                QCOMPARE(content("1.csv"), QByteArray("no file"));
                bench->plot.addDev(10, 0);
                bench->plot.setDevMain(10);
            }
        }
        QTRY_COMPARE_WITH_TIMEOUT(status(&bench->exporting), QString("Сохранено!"), 60000);
        QVERIFY(!progress->isVisible());
        QVERIFY(content("1.csv").endsWith("\r\n200000;199999;199999.0000;\r\n"));
    }

    void recordingIsSetUp()
    {
        QVERIFY(provideDatabase(path("nox8.db")));
        noxSql database(path("nox8.db"));
        database.setAppProperty("recmeas_dir", path(""));
        noxList registry(&bench->port, &database);
        recmeas dialog(nullptr, &registry);
        noxList::_nox *nox = registry.newNox(-1, true);
        nox->recFieldSep = "\t";
        nox->recPointSep = ",";
        nox->recPrecision = 7;
        nox->recInterval = 120;
        dialog.showFor(nox->index, "name");
        press(&dialog, "saveBtn"); // without a file
        QVERIFY(!nox->recording && !dialog.findChild<QPushButton *>("saveBtn")->isChecked());
        QCOMPARE(status(&dialog), QString("Запись остановлена"));
        chooseNext("folder.csv");
        press(&dialog, "selectFileBtn");
        QCOMPARE(m_questions.at(0).directory + m_questions.at(0).name, path("") + "name");
        QVERIFY(!m_questions.at(0).asksToReplace); // it is appended to
        QCOMPARE(database.getAppProperty("recmeas_dir").toString(), bench->directory.path());
        dialog.findChild<QSpinBox *>("timePointSB")->setValue(119);
        QSignalSpy changes(&registry, &noxList::onChange);
        press(&dialog, "saveBtn");
        QCOMPARE(changes.size(), 1);
        QCOMPARE(status(&dialog), QString("Идёт запись..."));
        QVERIFY(nox->recording);
        QCOMPARE(nox->recFileName + nox->recFieldSep + nox->recPointSep,
                 path("folder.csv") + "\t,");
        QCOMPARE((QVector<int>{nox->recPrecision, nox->recInterval}), (QVector<int>{7, 119}));
        nox->recRow = 5;
        press(&dialog, "saveBtn");
        QVERIFY(!nox->recording && nox->recRow == 0);

        const int index = nox->index;
        UserDialogs::current().chooseFile = [&](QWidget *, const FileQuestion &) {
            registry.rmByIndex(index);
            return path("1.csv");
        };
        press(&dialog, "selectFileBtn");
        QVERIFY(!dialog.isVisible());
        QCOMPARE(registry.newNox(-1, true)->index, index); // another one
        press(&dialog, "saveBtn");
        QVERIFY(!registry.getNoxByIndex(index)->recording);
    }

private:
    QString path(const QString &name) const { return bench->directory.filePath(name); }
    QByteArray content(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    void setContent(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    void measure(int index, uchar ch, double value, double seconds)
    {
        bench->recorder.noteMeasurement(index, ch);
        bench->plot.addPoint(value, seconds, "K", 10 + index, ch);
    }
    /** A round of both channels, which ends the one before. */
    void measureRound(int second)
    {
        measure(0, 0, second, second);
        measure(0, 1, -second, second + 0.4);
    }
    void addPoints(int count)
    {
        for (int i = 0; i < count; ++i)
            bench->plot.addPoint(i, i, "K", 10, 0);
    }
    /** The name of a file with this many rows of two channels. */
    QString fileWith(int rows) const
    {
        QByteArray file = toWindows1251("Дата 24.11.2026 Время 07:05:09;\r\n\r\n№;dT;Канал 1;"
                                        "Канал 2;\r\n ;[c];[°С];[Ом];\r\n");
        for (int row = 0; row < rows; ++row)
            file += "1;" + QByteArray::number(row) + ";20.125;--;\r\n";
        const QString name = QString("%1 строк.csv").arg(rows);
        setContent(name, file);
        return name;
    }
    bool readIntoPlot(const QString &name, int index)
    {
        return bench->reading.open(path(name)) && bench->reading.start(index);
    }
    void chooseNext(const QString &name)
    {
        const QString chosen = name.isEmpty() ? QString() : path(name);
        UserDialogs::current().chooseFile = [this, chosen](QWidget *,
                                                           const FileQuestion &question) {
            m_questions << question;
            return chosen;
        };
    }
    static QString status(const QDialog *dialog)
    {
        return dialog->findChild<QLabel *>("statusLabel")->text();
    }
    static void press(const QDialog *dialog, const char *button)
    {
        QTest::mouseClick(dialog->findChild<QPushButton *>(button), Qt::LeftButton);
    }

    std::unique_ptr<Bench> bench;
    QVector<FileQuestion> m_questions;
    QStringList m_told;
};

QTEST_MAIN(TestResultsFile)
#include "tst_resultsfile.moc"
