#include "serial/noxserialport.h"
#include "support/linkjournal.h"
#include "support/workerbench.h"

#include <QtTest>

namespace
{

constexpr quint8 reference = 3;
constexpr quint8 identification = 51;
constexpr quint16 referenceSize = 72;
constexpr quint16 identificationSize = 8;

/** Two tokens of the steady instrument. */
const QByteArray firstToken = "1:21.5432B ";
const QByteArray secondToken = "2:32.6543B ";

} // namespace

/** The measurement stream through a live link: garbage, pauses, exchanges and neighbours. */
class TestLinkStream : public QObject
{
    Q_OBJECT
private slots:
    void garbageSpoilsOnlyItself_data();
    void garbageSpoilsOnlyItself();
    void tokenCutByAnExchangeIsNotJoined();
    void tokenCutByAPauseIsNotJoined();
    void whatCameDuringAPauseIsDelivered();
    void streamedAddressIsTakenForAnEcho();
    void exchangesUnderADenseStream();
    void spoiltBytesNeverMakeAWrongBlock();
    void neighbourLosesNothing();
    void watchdogRestsUntilTheStreamComesAgain();
    void itemsForOthersAndSecondItemsAreDropped();
};

void TestLinkStream::garbageSpoilsOnlyItself_data()
{
    QTest::addColumn<QByteArray>("garbage");
    QTest::addColumn<int>("rawTokens");

    QTest::newRow("nothing") << QByteArray() << 2;
    QTest::newRow("5000 bytes without a space, then one") << QByteArray(5000, 'x') + ' ' << 3;
    QTest::newRow("several colons") << QByteArray("::7::::9 ") << 3;
    QTest::newRow("beyond ASCII") << QByteArray("\xC3\xBF\x80:\xFE\xFF ") << 3;
    QTest::newRow("numbers that are none") << QByteArray("3:1.2.3B 4:--B 5:1,5B ") << 5;
    QTest::newRow("channels that are none") << QByteArray("0:1.5B 257:1.5B x:1.5B ") << 5;
    QTest::newRow("bytes of value zero") << QByteArray("\0\0\0 ", 4) << 3;
    QTest::newRow("spaces only") << QByteArray(200, ' ') << 2;
    QTest::newRow("all byte values") << [] {
        QByteArray bytes;
        for (int value = 1; value < 256; ++value)
            bytes += char(value);
        return bytes + ' ';
    }() << 4;
}

void TestLinkStream::garbageSpoilsOnlyItself()
{
    QFETCH(QByteArray, garbage);
    QFETCH(int, rawTokens);
    InstrumentBench bench;
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.streaming = false;
    QVERIFY(bench.add("a", options));
    NOXSerialPort port;
    port.setLinkTiming(shortTiming());
    LinkJournal journal(port, port.addDev("a"));
    QSignalSpy raw(&port, &NOXSerialPort::readyDevSource);
    port.sendDevQuery(0, identification, identificationSize);
    QTRY_VERIFY(port.isReadAllQuery()); // the port is open and its stream may flow
    QTest::qWait(50);

    bench.host.sendRaw("a", firstToken);
    bench.host.sendRaw("a", garbage);
    bench.host.sendRaw("a", secondToken);
    const QVector<ChannelValue> expected = {{1, 21.5432}, {2, 32.6543}};
    QTRY_VERIFY(journal.measurements.contains(expected.last()));
    QCOMPARE(journal.measurements, expected);
    QVERIFY2(raw.size() <= rawTokens, "garbage was cut into more tokens than it has");
}

void TestLinkStream::tokenCutByAnExchangeIsNotJoined()
{
    InstrumentBench bench;
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.streaming = false;
    QVERIFY(bench.add("a", options));
    NOXSerialPort port;
    port.setLinkTiming(shortTiming());
    LinkJournal journal(port, port.addDev("a"));
    QTRY_VERIFY((bench.host.sendRaw("a", firstToken), journal.measurements.size() > 0));
    QTest::qWait(50);

    // "1" and "2:32.6543B" together would read as channel 12
    for (const char *head : {"1", "1:2", "1:21.543", "1:21.5432B"}) {
        journal.clear();
        bench.host.sendRaw("a", head);
        QTest::qWait(30);
        port.sendDevQuery(0, identification, identificationSize);
        QTRY_VERIFY(port.isReadAllQuery());
        QTest::qWait(30);
        bench.host.sendRaw("a", secondToken + firstToken);
        QTRY_COMPARE(journal.measurements.size(), 2);
        QCOMPARE(journal.foreignMeasurements(), QVector<ChannelValue>());
    }
}

void TestLinkStream::tokenCutByAPauseIsNotJoined()
{
    InstrumentBench bench;
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.streaming = false;
    QVERIFY(bench.add("a", options));
    WorkerBench link("a", shortTiming());
    QVector<ChannelValue> measured;
    const QObject listener;
    connect(
        &link.worker, &noxSerialPortThread::readyMeas, &listener,
        [&measured](double value, quint8 channel) { measured << ChannelValue(channel, value); });
    QTRY_VERIFY((bench.host.sendRaw("a", firstToken), !measured.isEmpty()));
    QTest::qWait(50);

    measured.clear();
    bench.host.sendRaw("a", "1");
    QTest::qWait(50);
    link.hold(true);
    bench.host.sendRaw("a", ":99.0B 1");
    link.hold(false);
    QTest::qWait(50);
    bench.host.sendRaw("a", ":21.5432B " + secondToken);
    QTRY_COMPARE(measured, (QVector<ChannelValue>{{1, 21.5432}, {2, 32.6543}}));
}

void TestLinkStream::whatCameDuringAPauseIsDelivered()
{
    InstrumentBench bench;
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.streaming = false;
    QVERIFY(bench.add("a", options));
    WorkerBench link("a", shortTiming());
    QTRY_VERIFY((bench.host.sendRaw("a", firstToken), link.measurements > 0));
    QTest::qWait(50);

    link.measurements = 0;
    link.hold(true);
    QTest::qWait(50);
    bench.host.sendRaw("a", firstToken + secondToken);
    QTest::qWait(100);
    QCOMPARE(link.measurements, 0);
    // no further byte comes that would announce those
    link.hold(false, WorkerBench::devIndex + 1);
    QTest::qWait(50);
    QCOMPARE(link.measurements, 0);
    link.hold(false);
    QTRY_COMPARE(link.measurements, 2);
}

void TestLinkStream::streamedAddressIsTakenForAnEcho()
{
    InstrumentBench bench;
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.streaming = false;
    options.faults.ignoredAddressings = 1;
    QVERIFY(bench.add("a", options));
    NOXSerialPort port;
    LinkTiming timing = shortTiming();
    timing.unitTimeout = 30;
    port.setLinkTiming(timing);
    LinkJournal journal(port, port.addDev("a"));
    port.sendDevQuery(0, identification, identificationSize, true);

    // the character "3" has the value 51
    QTRY_COMPARE(bench.steps("a", ExchangeEvent::AddressIgnored), 1);
    bench.host.sendRaw("a", "3");
    QTRY_VERIFY_WITH_TIMEOUT(port.isReadAllQuery(), 20000);
    QCOMPARE(journal.replies, QVector<QByteArray>{bench.host.block("a", identification)});
    // the first attempt, deceived, found no pattern; the second one was answered
    QCOMPARE(journal.linesOf("progress -1/0").size(), 4);
    QCOMPARE(bench.addressings("a", identification), 2);
}

void TestLinkStream::exchangesUnderADenseStream()
{
    InstrumentBench bench;
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.tokensPerSecond = 300;
    QVERIFY(bench.add("a", options));
    NOXSerialPort port;
    LinkTiming timing = shortTiming();
    timing.queueDelay = 5;
    timing.startBase = 5;
    port.setLinkTiming(timing);
    LinkJournal journal(port, port.addDev("a"));
    for (int round = 0; round < 15; ++round) {
        const int measured = journal.measurements.size();
        QTRY_VERIFY(journal.measurements.size() > measured + 10);
        port.sendDevQuery(0, identification, identificationSize);
        port.sendDevQuery(0, reference, referenceSize);
        QTRY_VERIFY_WITH_TIMEOUT(port.isReadAllQuery(), 20000);
    }
    QCOMPARE(journal.linesOf("error"), QStringList());
    QCOMPARE(journal.replies.count(bench.host.block("a", identification)), 15);
    QCOMPARE(journal.replies.count(bench.host.block("a", reference)), 15);
    QCOMPARE(journal.foreignMeasurements(), QVector<ChannelValue>());
}

void TestLinkStream::spoiltBytesNeverMakeAWrongBlock()
{
    InstrumentBench bench;
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.streaming = false;
    options.faults.garbleProbability = 0.008;
    options.faults.lossProbability = 0.004;
    NOXSerialPort port;
    LinkTiming timing = shortTiming();
    timing.unitTimeout = 500;
    timing.confirmTimeout = 250;
    port.setLinkTiming(timing);
    for (int i = 0; i < 6; ++i) {
        options.faults.seed = quint32(i + 1);
        const QString name = QString("noisy%1").arg(i);
        QVERIFY(bench.add(name, options));
        QCOMPARE(port.addDev(name), i);
    }
    QVector<QByteArray> replies;
    const QObject listener;
    connect(&port, QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply), &listener,
            [&replies](int, const QByteArray &reply) { replies << reply; });
    const QByteArray block = bench.host.block("noisy0", reference);
    for (int i = 0; i < 6; ++i)
        port.sendDevQuery(i, reference, referenceSize, false, noxQueryModeOnce);
    QTRY_VERIFY_WITH_TIMEOUT(port.isReadAllQuery(), 60000);
    QVERIFY(!replies.isEmpty());
    QCOMPARE(replies, QVector<QByteArray>(replies.size(), block));
    int repeated = 0;
    for (int i = 0; i < 6; ++i)
        repeated += bench.steps(QString("noisy%1").arg(i), ExchangeEvent::BlockRepeated);
    QVERIFY2(repeated > 0, "nothing was spoilt");
}

void TestLinkStream::neighbourLosesNothing()
{
    InstrumentBench bench;
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.tokensPerSecond = 150;
    QVERIFY(bench.add("good", options));
    options.faults.streamNoiseProbability = 0.3;
    options.faults.streamBurstBytes = 5000;
    options.faults.unplugAfterAnswerBytes = 20;
    options.dialogue.timeoutMs = 300;
    QVERIFY(bench.add("bad", options));
    NOXSerialPort port;
    port.setLinkTiming(shortTiming());
    LinkJournal good(port, port.addDev("good"));
    LinkJournal bad(port, port.addDev("bad"));
    QTRY_VERIFY(good.measurements.size() > 50 && bad.measurements.size() > 50);

    port.sendDevQuery(1, reference, referenceSize);
    port.sendDevQuery(1, identification, identificationSize);
    QTRY_COMPARE(port.getPortName(1), QString("-"));
    bench.host.plugIn("bad");
    QCOMPARE(port.addDev("bad"), 1);
    FaultPlan deaf;
    deaf.ignoredAddressings = FaultPlan::always;
    bench.host.setFaults("bad", deaf);
    port.sendDevQuery(1, reference, referenceSize, false, noxQueryModeOnce);
    QTRY_COMPARE(bad.linesOf("error 110").size(), 1);
    port.rmDev(1);

    const int measured = good.measurements.size();
    QTRY_VERIFY(good.measurements.size() > measured + 50);
    bench.host.setStreaming("good", false);
    QTRY_COMPARE(qint64(good.measurements.size()), bench.host.tokensSent("good"));
    QCOMPARE(good.foreignMeasurements(), QVector<ChannelValue>());
    QCOMPARE(bad.foreignMeasurements(), QVector<ChannelValue>());
    QCOMPARE(good.linesOf("error"), QStringList());
}

void TestLinkStream::watchdogRestsUntilTheStreamComesAgain()
{
    InstrumentBench bench;
    QVERIFY(bench.add("a"));
    WorkerBench link("a", shortTiming());
    link.setWatchdogSeconds(1);
    QTRY_VERIFY(link.measurements > 2);
    bench.host.setStreaming("a", false);
    QTRY_COMPARE(link.lines, QStringList("watchdog reopened"));
    // after it the watchdog rests until the stream comes again
    QTest::qWait(1300);
    QCOMPARE(link.lines, QStringList("watchdog reopened"));
    const int measured = link.measurements;
    bench.host.setStreaming("a", true);
    QTRY_VERIFY(link.measurements > measured + 2);
    bench.host.setStreaming("a", false);
    QTRY_COMPARE(link.lines, QStringList({"watchdog reopened", "watchdog reopened"}));
}

void TestLinkStream::itemsForOthersAndSecondItemsAreDropped()
{
    InstrumentBench bench;
    QVERIFY(bench.add("a"));
    WorkerBench link("a", shortTiming());
    const noxSerialPortQueryItem block{reference,          referenceSize, false,
                                       noxQueryModeNormal, false,         false};
    const noxSerialPortQueryItem identity{
        identification, identificationSize, false, noxQueryModeNormal, false, false};
    const noxSerialPortDataItem clock{6, QByteArray(8, 'x'), noxQueryModeNormal, false, false};
    link.hold(true);
    link.query(identity, WorkerBench::devIndex + 1);
    link.write(clock, WorkerBench::devIndex + 1);
    link.query(block);
    link.query(identity); // while one is in progress
    link.write(clock);    // which may be beside it
    link.write(clock);
    QTRY_COMPARE(link.lines.size(), 2);
    QTest::qWait(200);
    QCOMPARE(link.lines, (QStringList{"reply @3 72 bytes", "written"}));
    // the next ones are taken again
    link.query(identity);
    QTRY_COMPARE(link.lines.last(), QString("reply @51 8 bytes"));
}

QTEST_GUILESS_MAIN(TestLinkStream)
#include "tst_linkstream.moc"
