#include "serial/noxserialport.h"
#include "support/linewatch.h"
#include "support/linkjournal.h"

#include <QtTest>

#include <memory>

namespace
{

constexpr quint8 configuration = 2;
constexpr quint8 reference = 3;
constexpr quint8 referenceWrite = 1;
constexpr quint8 clockWrite = 6;
constexpr quint8 identification = 51;
constexpr quint16 referenceSize = 72;
constexpr quint16 identificationSize = 8;
constexpr int lineTimeMs = 4; // of four bytes

QByteArray clockBytes(char fill)
{
    return QByteArray(8, fill);
}

FaultPlan deafFor(int addressings)
{
    FaultPlan faults;
    faults.ignoredAddressings = addressings;
    return faults;
}

} // namespace

/** The multiplexer with live workers and one instrument, whose stream is off. */
class TestNoxSerialPort : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void equalReadsWaitOnce();
    void equalWritesWaitOnce();
    void writesGoBeforeReads();
    void nothingIsQueuedForNothing();
    void queuesExistFromTheFirstUse();
    void overallProgress();
    void failedRead_data();
    void failedRead();
    void failedWrite_data();
    void failedWrite();
    void exchangeFinishedButNotYetProcessedIsNotRepeated();
    void emptiedQueuesForgetTheExchangeInProgress();
    void wordWritesReachTheInstrument();
    void commandByteFollowsTheDeviceType();
    void heldRepliesAreDeliveredInOrder();
    void removalFromWithinAHeldReply();
    void smallestFreeIndexIsGiven();
    void refusesMissingAndBusyPorts();
    void refusesTheDeviceAfterTheLast();
    void removalWhileBusyIsPromptAndDropsTheQueues();
    void removalOfADeviceWhosePortVanished();
    void removalFromWithinAnErrorIsPrompt();
    void removalFromWithinAResult();
    void silentStreamReopensThePort();

private:
    /** The blocks addressed by the link, in order, each exchange once. */
    QVector<int> exchanged();

    std::unique_ptr<InstrumentBench> bench;
    std::unique_ptr<NOXSerialPort> port;
    std::unique_ptr<LinkJournal> journal;
    int device = -1;
};

void TestNoxSerialPort::init()
{
    bench = std::make_unique<InstrumentBench>();
    SimulatedInstrumentOptions options = bench->steadyInstrument();
    options.streaming = false;
    options.dialogue.wordAddresses = {referenceWrite};
    QVERIFY(bench->add("a", options));
    port = std::make_unique<NOXSerialPort>();
    port->setLinkTiming(shortTiming());
    device = port->addDev("a");
    QCOMPARE(device, 0);
    journal = std::make_unique<LinkJournal>(*port, device);
}

void TestNoxSerialPort::cleanup()
{
    port.reset();
    journal.reset();
    bench.reset();
}

QVector<int> TestNoxSerialPort::exchanged()
{
    QVector<int> addresses;
    const auto events = bench->host.exchanges("a");
    for (const ExchangeEvent &event : events)
        if (event.kind == ExchangeEvent::ReadCompleted ||
            event.kind == ExchangeEvent::WriteCompleted)
            addresses << event.address;
    return addresses;
}

void TestNoxSerialPort::equalReadsWaitOnce()
{
    // the head, one equal to it, and a third that waits already
    for (int i = 0; i < 3; ++i)
        port->sendDevQuery(device, reference, referenceSize);
    port->sendDevQuery(device, identification, identificationSize);
    QTRY_VERIFY(journal->lines.contains("all queries done"));
    QCOMPARE(exchanged(), (QVector<int>{reference, reference, identification}));
    QCOMPARE(journal->linesOf("queries"), QStringList("queries done"));
}

void TestNoxSerialPort::equalWritesWaitOnce()
{
    for (int i = 0; i < 3; ++i)
        port->sendDevData(device, clockBytes('x'), clockWrite);
    port->sendDevData(device, clockBytes('y'), clockWrite);
    QTRY_VERIFY(journal->lines.contains("all writes done"));
    QCOMPARE(exchanged(), QVector<int>(3, clockWrite));
    QCOMPARE(bench->host.clock("a"), clockBytes('y'));
    QCOMPARE(journal->linesOf("writ"),
             (QStringList{"written @6", "written @6", "written @6", "writes done"}));
}

void TestNoxSerialPort::writesGoBeforeReads()
{
    // the first read is at the worker already; the next ones wait, however equal they are
    port->sendDevQuery(device, reference, referenceSize);
    port->sendDevData(device, clockBytes('x'), clockWrite);
    port->sendDevData(device, clockBytes('y'), clockWrite);
    port->sendDevQuery(device, identification, identificationSize);
    port->sendDevQuery(device, identification, identificationSize);
    QTRY_VERIFY(journal->lines.contains("all queries done"));
    QCOMPARE(exchanged(),
             (QVector<int>{reference, clockWrite, clockWrite, identification, identification}));
}

void TestNoxSerialPort::nothingIsQueuedForNothing()
{
    port->sendDevQuery(device, reference, 0);
    port->sendDevData(device, QByteArray(), clockWrite);
    port->sendDevQuery(7, reference, referenceSize);
    port->sendDevData(7, clockBytes('x'), clockWrite);
    QVERIFY(port->isReadAllQuery());
    QVERIFY(port->isSendAllData());
    bench->host.setStreaming("a", true);
    QTRY_VERIFY(!journal->measurements.isEmpty());
    QCOMPARE(exchanged(), QVector<int>());
}

void TestNoxSerialPort::queuesExistFromTheFirstUse()
{
    QVERIFY(!port->isEmptyQueryQueue(device));
    QVERIFY(!port->isEmptyDataQueue(device));
    port->sendDevQuery(device, identification, identificationSize);
    port->sendDevData(device, clockBytes('x'), clockWrite);
    QVERIFY(!port->isEmptyQueryQueue(device));
    QVERIFY(!port->isReadAllQuery());
    QVERIFY(!port->isSendAllData());
    QTRY_VERIFY(port->isSendAllData() && port->isReadAllQuery());
    QVERIFY(port->isEmptyQueryQueue(device));
    QVERIFY(port->isEmptyDataQueue(device));
}

void TestNoxSerialPort::overallProgress()
{
    QStringList steps;
    const QObject listener;
    connect(port.get(), QOverload<int, int>::of(&NOXSerialPort::setProgress), &listener,
            [&steps](int done, int total) { steps << QString("%1/%2").arg(done).arg(total); });
    port->sendDevQuery(device, identification, identificationSize);
    port->sendDevQuery(device, reference, referenceSize);
    port->sendDevQuery(device, configuration, 3976);
    port->sendDevQuery(device, identification, identificationSize);
    // counted before each item is added
    QCOMPARE(steps, (QStringList{"0/0", "0/1"}));
    QTRY_VERIFY(port->isReadAllQuery());
    QCOMPARE(steps, (QStringList{"0/0", "0/1", "1/3", "2/3", "0/0"}));
}

void TestNoxSerialPort::failedRead_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("deafAddressings");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("mode normal takes the waiting reads with it")
        << int(noxQueryModeNormal) << 12
        << QStringList{"query error 110 @3", "error 110 Unknown error", "all queries done",
                       "queries failed"};
    const QStringList onlyOne = {"query error 110 @3", "error 110 Unknown error",
                                 "reply @51 8 bytes",  "reply @2 3976 bytes",
                                 "queries done",       "all queries done"};
    QTest::newRow("mode fast: only the failed one goes") << int(noxQueryModeFast) << 9 << onlyOne;
    QTest::newRow("mode once: only the failed one goes") << int(noxQueryModeOnce) << 3 << onlyOne;
}

void TestNoxSerialPort::failedRead()
{
    QFETCH(int, mode);
    QFETCH(int, deafAddressings);
    QFETCH(QStringList, expected);
    emit port->onSetDelayTime(device, 100, 20, 100);
    bench->host.setFaults("a", deafFor(deafAddressings));
    bench->host.setStreaming("a", true);
    port->sendDevQuery(device, reference, referenceSize, false, noxQueryMode(mode));
    port->sendDevQuery(device, identification, identificationSize);
    port->sendDevQuery(device, configuration, 3976);
    QTRY_VERIFY_WITH_TIMEOUT(journal->measurements.size() > 8, 20000);
    QCOMPARE(journal->lines, expected);
    QCOMPARE(journal->foreignMeasurements(), QVector<ChannelValue>());
}

void TestNoxSerialPort::failedWrite_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("mode normal takes the waiting writes with it, but no read")
        << int(noxQueryModeNormal) << QStringList{"write error 210 @6", "error 210 Unknown error",
                                                  "all writes done",    "reply @51 8 bytes",
                                                  "queries done",       "all queries done"};
    QTest::newRow("another mode: only the failed one goes")
        << int(noxQueryModeFast) << QStringList{"write error 210 @6",
                                                "error 210 Unknown error",
                                                "write failed, more wait",
                                                "written @6",
                                                "writes done",
                                                "all writes done",
                                                "reply @51 8 bytes",
                                                "queries done",
                                                "all queries done"};
}

void TestNoxSerialPort::failedWrite()
{
    QFETCH(int, mode);
    QFETCH(QStringList, expected);
    emit port->onSetDelayTime(device, 100, 20, 100);
    bench->host.setFaults("a", deafFor(12));
    port->sendDevData(device, clockBytes('x'), clockWrite, false, noxQueryMode(mode));
    port->sendDevData(device, clockBytes('y'), clockWrite);
    port->sendDevQuery(device, identification, identificationSize);
    QTRY_VERIFY_WITH_TIMEOUT(journal->lines.contains("all queries done"), 20000);
    QCOMPARE(journal->lines, expected);
}

void TestNoxSerialPort::exchangeFinishedButNotYetProcessedIsNotRepeated()
{
    port->sendDevQuery(device, reference, referenceSize);
    port->sendDevData(device, clockBytes('x'), clockWrite);
    port->sendDevData(device, clockBytes('y'), clockWrite);
    port->sendDevQuery(device, identification, identificationSize);
    // this thread looks away until the worker has done the first read and the first write: when
    // the read's result is processed, the write is still the head but done already
    QElapsedTimer clock;
    clock.start();
    while (exchanged().size() < 2 && clock.elapsed() < 5000)
        QThread::msleep(5);
    QThread::msleep(100);
    QCOMPARE(exchanged(), (QVector<int>{reference, clockWrite}));
    QVERIFY(journal->lines.isEmpty());

    QTRY_VERIFY(journal->lines.contains("all queries done"));
    QCOMPARE(exchanged(), (QVector<int>{reference, clockWrite, clockWrite, identification}));
    QCOMPARE(bench->host.clock("a"), clockBytes('y'));
    QCOMPARE(journal->linesOf("written").size(), 2);
    QCOMPARE(journal->linesOf("reply"), (QStringList{"reply @3 72 bytes", "reply @51 8 bytes"}));
}

void TestNoxSerialPort::emptiedQueuesForgetTheExchangeInProgress()
{
    port->sendDevQuery(device, reference, referenceSize);
    port->sendDevQuery(device, identification, identificationSize);
    port->emptyQueues(device);
    QCOMPARE(journal->lines, QStringList("all queries done"));
    QVERIFY(port->isReadAllQuery());
    // the result that is still to come is not that of the new head
    port->sendDevQuery(device, configuration, 3976);
    QTRY_VERIFY(port->isReadAllQuery());
    QCOMPARE(exchanged(), (QVector<int>{reference, configuration}));

    port->sendDevData(device, clockBytes('x'), clockWrite);
    port->emptyQueues(device);
    QSignalSpy handedOver(port.get(), &NOXSerialPort::readyDevQuery);
    port->sendDevQuery(device, identification, identificationSize);
    QVERIFY2(handedOver.isEmpty(), "a read beside a write, which may begin after it");
    QTRY_VERIFY(port->isReadAllQuery());
    QCOMPARE(exchanged().mid(2), (QVector<int>{clockWrite, identification}));
    bench->host.setStreaming("a", true);
    QTRY_VERIFY(!journal->measurements.isEmpty());
}

void TestNoxSerialPort::wordWritesReachTheInstrument()
{
    // the confirming word is the last that is sent: nothing after it may take it back
    LineWatch line;
    int written = 0;
    for (int tried = 0; written < 12; ++tried) {
        const QByteArray word = QByteArray("abc") + char(tried);
        line.takeSlowestMs();
        port->sendDevWord(device, word + "and more", referenceWrite);
        QTRY_VERIFY(port->isSendAllData());
        QTest::qWait(20);
        if (bench->host.block("a", reference).left(word.size()) == word)
            ++written;
        else // only a pseudo-terminal that holds bytes up can lose them
            QVERIFY2(line.takeSlowestMs() > lineTimeMs && tried < 50, "a word was lost");
    }
}

void TestNoxSerialPort::commandByteFollowsTheDeviceType()
{
    port->setDevType(device, 0x04);
    port->setDevType(7, 0x01);
    port->sendDevQuery(device, reference, referenceSize);
    QTRY_VERIFY(port->isReadAllQuery());
    QVector<int> commands;
    const auto events = bench->host.exchanges("a");
    for (const ExchangeEvent &event : events)
        if (event.kind == ExchangeEvent::CommandReceived)
            commands << event.value;
    QCOMPARE(commands, QVector<int>{0x04});
}

void TestNoxSerialPort::heldRepliesAreDeliveredInOrder()
{
    port->blockEventDev(device, true);
    bench->host.setStreaming("a", true);
    port->sendDevQuery(device, reference, referenceSize);
    port->sendDevQuery(device, identification, identificationSize);
    QTRY_VERIFY(port->isEmptyQueryQueue(device));
    QVERIFY(!port->isReadAllQuery());
    QTest::qWait(150);
    QCOMPARE(journal->lines, QStringList());
    QVERIFY(journal->measurements.isEmpty());

    port->blockEventAll(false);
    QCOMPARE(journal->lines,
             (QStringList{"reply @3 72 bytes", "reply @51 8 bytes", "all queries done"}));
    QTRY_VERIFY(!journal->measurements.isEmpty());
}

void TestNoxSerialPort::removalFromWithinAHeldReply()
{
    const QByteArray block = bench->host.block("a", reference);
    port->blockEventDev(device, true);
    port->sendDevQuery(device, reference, referenceSize);
    port->sendDevQuery(device, identification, identificationSize);
    QTRY_VERIFY(port->isEmptyQueryQueue(device));
    connect(port.get(), QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply), this,
            [this](int index) { port->rmDev(index); });
    QVector<QByteArray> byPointer;
    const QObject listener;
    connect(port.get(), QOverload<int, QByteArray *, quint8>::of(&NOXSerialPort::readyDevReply),
            &listener, [&byPointer](int, const QByteArray *buf) { byPointer << *buf; });
    port->blockEventDev(device, false);
    // the reply that is being delivered outlives its device; the other one goes with it
    QCOMPARE(byPointer, QVector<QByteArray>{block});
    QVERIFY(port->isReadAllQuery());
}

void TestNoxSerialPort::smallestFreeIndexIsGiven()
{
    for (int i = 1; i < 5; ++i) {
        const QString name = QString("p%1").arg(i);
        QVERIFY(bench->add(name));
        QCOMPARE(port->addDev(name), i);
    }
    QCOMPARE(port->getPortName(2), QString("p2"));
    port->rmDev(2);
    QCOMPARE(port->getPortName(2), QString("-"));
    QCOMPARE(port->addDev("p2"), 2);
    // and it works there
    port->sendDevQuery(2, reference, referenceSize);
    QTRY_VERIFY(port->isEmptyQueryQueue(2));
}

void TestNoxSerialPort::refusesMissingAndBusyPorts()
{
    QCOMPARE(port->addDev("no such port"), -1);
    QCOMPARE(port->addDev(QString()), -1);
    port->sendDevQuery(device, identification, identificationSize);
    QTRY_VERIFY(port->isReadAllQuery()); // its port is open by now
    QCOMPARE(port->addDev("a"), -1);
    port->rmDev(device);
    QCOMPARE(port->addDev("a"), 0);
    QCOMPARE(journal->linesOf("error"), QStringList());
}

void TestNoxSerialPort::refusesTheDeviceAfterTheLast()
{
    SimulatedInstrumentOptions options = bench->steadyInstrument();
    options.streaming = false;
    for (int i = 1; i < 255; ++i) {
        const QString name = QString("fleet%1").arg(i);
        QVERIFY(bench->add(name, options));
        QCOMPARE(port->addDev(name), i);
    }
    QCOMPARE(port->addDev("a"), -1);
}

void TestNoxSerialPort::removalWhileBusyIsPromptAndDropsTheQueues()
{
    bench->host.setFaults("a", deafFor(FaultPlan::always));
    port->sendDevQuery(device, reference, referenceSize);
    port->sendDevQuery(device, identification, identificationSize);
    port->sendDevData(device, clockBytes('x'), clockWrite);
    QTRY_VERIFY(bench->addressings("a", reference) > 0);
    QElapsedTimer clock;
    clock.start();
    port->rmDev(device);
    const qint64 removalMs = clock.elapsed();
    QVERIFY2(removalMs < 500, qPrintable(QString("%1 ms").arg(removalMs)));
    QCOMPARE(journal->lines, (QStringList{"all queries done", "all writes done"}));
    QVERIFY(port->isReadAllQuery());
    QVERIFY(port->isSendAllData());
    QVERIFY(!port->isEmptyQueryQueue(device));
    QVERIFY(!port->isEmptyDataQueue(device));
}

void TestNoxSerialPort::removalOfADeviceWhosePortVanished()
{
    port->sendDevQuery(device, reference, referenceSize);
    bench->host.unplug("a");
    port->rmDev(device);
    QCOMPARE(port->getPortName(device), QString("-"));
    QVERIFY(port->isReadAllQuery());
    // one that has ended by itself
    bench->host.plugIn("a");
    QCOMPARE(port->addDev("a"), device);
    bench->host.setStreaming("a", true);
    QTRY_VERIFY(!journal->measurements.isEmpty());
    bench->host.unplug("a");
    QTRY_COMPARE(port->getPortName(device), QString("-"));
    port->rmDev(device);
    QVERIFY(journal->linesOf("error 24").size() >= 1);
}

void TestNoxSerialPort::removalFromWithinAnErrorIsPrompt()
{
    bench->host.setStreaming("a", true);
    QTRY_VERIFY(!journal->measurements.isEmpty());
    qint64 removalMs = -1;
    connect(port.get(), QOverload<int>::of(&NOXSerialPort::onDevError), this, [&](int index) {
        QElapsedTimer clock;
        clock.start();
        port->rmDev(index);
        removalMs = clock.elapsed();
    });
    // this thread looks away until the worker has ended: its error and its end wait side by side
    bench->host.unplug("a");
    QThread::msleep(300);
    QTRY_VERIFY_WITH_TIMEOUT(removalMs >= 0, 10000);
    QVERIFY2(removalMs < 2000, qPrintable(QString("%1 ms").arg(removalMs)));
    QCOMPARE(port->getPortName(device), QString("-"));
}

void TestNoxSerialPort::removalFromWithinAResult()
{
    connect(port.get(), QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply), this,
            [this](int index) { port->rmDev(index); });
    port->sendDevQuery(device, reference, referenceSize);
    port->sendDevQuery(device, identification, identificationSize);
    QTRY_COMPARE(port->getPortName(device), QString("-"));
    QTRY_VERIFY(port->isReadAllQuery());
    QCOMPARE(journal->linesOf("reply"), QStringList("reply @3 72 bytes"));
    QCOMPARE(port->addDev("a"), device);
}

void TestNoxSerialPort::silentStreamReopensThePort()
{
    emit port->onSetMeasTimeout(device, 1);
    bench->host.setStreaming("a", true);
    QTRY_VERIFY(!journal->measurements.isEmpty());
    bench->host.setStreaming("a", false);
    QTRY_COMPARE(journal->lines, QStringList("watchdog reopened"));
    bench->host.setStreaming("a", true);
    journal->clear();
    QTRY_VERIFY(journal->measurements.size() > 8);
    QCOMPARE(journal->foreignMeasurements(), QVector<ChannelValue>());
}

QTEST_GUILESS_MAIN(TestNoxSerialPort)
#include "tst_noxserialport.moc"
