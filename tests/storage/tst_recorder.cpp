#include "device/windows1251.h"
#include "plot/qwtnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/recorder.h"
#include "support/fulldisk.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace
{

const QDateTime start({2026, 11, 24}, {7, 5, 9});

/** The program's objects that recording stands on, with two instruments of two channels. */
struct Bench {
    Bench()
    {
        plot.setClock([] { return start.addSecs(60); });
        for (int i = 0; i < 2; ++i) {
            noxList::_nox *nox = registry.newNox(-1, true);
            nox->qwtIndex = 10 + i;
            nox->recording = true;
            nox->recFileName = path(QString("%1.csv").arg(i));
            plot.addDev(nox->qwtIndex, 2);
            plot.prepareMeas(nox->qwtIndex, start);
        }
        plot.setDevMain(10);
    }

    QString path(const QString &name) const { return directory.filePath(name); }
    noxList::_nox &nox(int index) { return *registry.getNoxByIndex(index); }

    void measure(int index, uchar ch, double value, double seconds)
    {
        recorder.noteMeasurement(index, ch);
        plot.addPoint(value, seconds, "K", nox(index).qwtIndex, ch);
    }

    /** A round of both channels of the first instrument, which ends the one before. */
    void measureRound(int second)
    {
        measure(0, 0, second, second);
        measure(0, 1, -second, second + 0.4);
    }

    QByteArray content(const QString &name = "0.csv") const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    void setContent(const QByteArray &content)
    {
        QFile file(path("0.csv"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    QTemporaryDir directory;
    noxSql database{QString()};
    NOXSerialPort port;
    noxList registry{&port, &database};
    QwtNOX plot;
    Recorder recorder{&registry, &plot};
};

const QByteArray header = toWindows1251("Начало измерений. Дата 24.11.2026 Время 07:05:09;\r\n"
                                        "\r\n"
                                        "№;dT;Канал 1;Канал 2;\r\n"
                                        " ;[c];[K];[K];\r\n");

} // namespace

/** Recording: which rounds become rows, and that no row is ever half there. */
class TestRecorder : public QObject
{
    Q_OBJECT
private slots:
    void init() { bench = std::make_unique<Bench>(); }

    void rounds();
    void interval();
    void switchedOffAndOn();
    void noFileName();
    void existingFile_data();
    void existingFile();
    void fullDisk();
    void folderInPlaceOfAFile();

private:
    std::unique_ptr<Bench> bench;
};

void TestRecorder::rounds()
{
    bench->nox(1).recFieldSep = "\t";
    bench->nox(1).recPointSep = ",";
    bench->nox(1).recPrecision = 0;
    bench->measure(0, 0, 7.03125, 0);
    bench->measure(1, 0, 7.125, 0.5);
    bench->measure(0, 1, 8, 1);
    QCOMPARE(bench->content(), QByteArray("no file")); // the round is not over
    bench->measure(1, 0, 8.125, 2.5);
    bench->measure(0, 0, 9, 3);
    bench->measure(0, 1, -1300, 4); // a broken sensor
    bench->measure(0, 0, 10, 5);
    bench->measure(0, 1, 11, 6);
    bench->measure(0, 1, 12, 7); // channel 0 was left out
    QCOMPARE(bench->content(), header + "1;0;7.0313;8.0000;\r\n"
                                        "2;3;9.0000;--;\r\n"
                                        "3;5;10.0000;11.0000;\r\n");
    QVERIFY(bench->content("1.csv").endsWith("\t[c]\t[K]\t[]\t\r\n1\t1\t7,13\t--\t\r\n"));
}

void TestRecorder::interval()
{
    bench->nox(0).recInterval = 1;
    for (const int second : {0, 30, 60, 61, 90, 130})
        bench->measureRound(second);
    bench->plot.prepareMeas(10, start); // times begin anew
    for (const int second : {0, 5, 62, 70})
        bench->measureRound(second);
    QList<QByteArray> rows = bench->content().mid(header.size()).split('\n');
    for (QByteArray &row : rows)
        row = row.left(row.indexOf(';', 2));
    QCOMPARE(rows, (QList<QByteArray>{"1;0", "2;61", "3;0", "4;62", ""}));
}

void TestRecorder::switchedOffAndOn()
{
    bench->nox(0).recInterval = 120;
    bench->measureRound(0);
    bench->measureRound(1);
    const QByteArray before = bench->content();
    bench->nox(0).recording = false;
    bench->nox(0).recRow = 0;
    bench->measureRound(2);
    QCOMPARE(bench->content(), before);
    bench->nox(0).recording = true;
    bench->measureRound(3);
    bench->measureRound(4);
    QCOMPARE(bench->content(), before + "1;2;2.0000;-2.0000;\r\n");
}

void TestRecorder::noFileName()
{
    QSignalSpy changes(&bench->registry, &noxList::onChange);
    bench->nox(0).recFileName.clear();
    bench->measureRound(0);
    bench->measureRound(1);
    QVERIFY(!bench->nox(0).recording);
    QCOMPARE(changes.size(), 1);
}

void TestRecorder::existingFile_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    const QByteArray row = "1;0;0.0000;0.0000;\r\n";
    QTest::newRow("empty") << QByteArray() << header + row;
    QTest::newRow("whole") << header + row << header + row + row;
    QTest::newRow("whole, saved by an editor") << QByteArray("9;\n") << "9;\n" + row;
    QTest::newRow("torn in a row") << QByteArray("9;1;2.3") << "9;1;2.3\r\n" + row;
    QTest::newRow("torn in a line end") << QByteArray("9;1;2.3;\r") << "9;1;2.3;\r\n" + row;
}

void TestRecorder::existingFile()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    bench->setContent(before);
    bench->measureRound(0);
    bench->measureRound(1);
    QCOMPARE(bench->content(), after);
}

void TestRecorder::fullDisk()
{
    QSignalSpy faults(&bench->recorder, &Recorder::faultChanged);
    {
        const FullDisk disk(rlim_t(header.size() - 20)); // not even the header has room
        bench->measureRound(0);
        bench->measureRound(1);
        QCOMPARE(bench->content(), QByteArray());
    }
    bench->measureRound(2);
    const QByteArray first = header + "1;1;1.0000;-1.0000;\r\n";
    QCOMPARE(bench->content(), first);
    for (int room = 0; room < 8; ++room) {
        const FullDisk disk(rlim_t(first.size() + room));
        bench->measureRound(3 + room);
        QCOMPARE(bench->content(), first);
    }
    const auto fault = bench->recorder.fault(0);
    QVERIFY(fault.has_value());
    QCOMPARE(recordingFaultText(*fault),
             QString("Запись не ведётся с 24.11.2026 07:06:09: файл не записывается"));
    bench->measureRound(11);
    QCOMPARE(bench->content(), first + "2;10;10.0000;-10.0000;\r\n");
    QVERIFY(!bench->recorder.fault(0));
    QCOMPARE(faults.size(), 4); // came and went twice
}

void TestRecorder::folderInPlaceOfAFile()
{
    bench->measureRound(0);
    QVERIFY(QDir(bench->path("")).mkdir("folder"));
    bench->nox(0).recFileName = bench->path("folder");
    bench->measureRound(1);
    QCOMPARE(bench->recorder.fault(0)->problem, RecordingProblem::CannotOpen);
    bench->nox(0).recording = false;
    emit bench->registry.onChange();
    QVERIFY(!bench->recorder.fault(0));
}

QTEST_MAIN(TestRecorder)
#include "tst_recorder.moc"
