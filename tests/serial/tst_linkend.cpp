#include "support/instrumentbench.h"
#include "support/workerbench.h"

#include <QtTest>

#include <algorithm>

namespace
{

constexpr int longWaitMs = 20000; // far beyond any patience of these tests
constexpr int promptMs = 100;
constexpr int entryMs = 15000; // how long a machine that is busy elsewhere may take
constexpr quint8 readAddress = 3;
constexpr quint8 logAddress = 5;
constexpr quint8 writeAddress = 1;

/** A wait in which a link can be met: what leads into it, and how the instrument notices. */
struct Stage {
    const char *name;
    noxSerialPortQueryItem query; ///< of size 0 when the exchange is a write
    noxSerialPortDataItem data;   ///< without bytes when there is no write either
    FaultPlan faults;
    ExchangeEvent::Kind sign; ///< the step after which the wait begins
    int signs = 1;            ///< how many of them
    LinkTiming timing;
};

/** Every wait so long that only a stop or a lost port can end it. */
LinkTiming longTiming()
{
    LinkTiming timing = shortTiming();
    timing.initDelay = timing.attemptDelay = timing.unitTimeout = timing.confirmTimeout =
        longWaitMs;
    return timing;
}

/** The same, but an exchange is to wait for its start. */
LinkTiming longQueueTiming()
{
    LinkTiming timing = longTiming();
    timing.queueDelay = longWaitMs;
    return timing;
}

/** The same, but addressing is to fail soon. */
LinkTiming longRetryTiming()
{
    LinkTiming timing = longTiming();
    timing.initDelay = 200;
    return timing;
}

FaultPlan plan(int FaultPlan::*fault)
{
    FaultPlan faults;
    faults.*fault = FaultPlan::always;
    return faults;
}

FaultPlan silentAfter(int units)
{
    FaultPlan faults;
    faults.silentAfterBlocks = units;
    return faults;
}

QVector<Stage> stages()
{
    using Event = ExchangeEvent;
    const noxSerialPortQueryItem block{readAddress, 72, true, noxQueryModeNormal, false, false};
    const noxSerialPortQueryItem records{logAddress, 800, true, noxQueryModeNormal, true, false};
    const noxSerialPortQueryItem word{readAddress, 4, true, noxQueryModeNormal, false, true};
    const noxSerialPortDataItem data{writeAddress, QByteArray(72, 'x'), noxQueryModeNormal, true,
                                     false};
    const noxSerialPortDataItem dataWord{writeAddress, "abcd", noxQueryModeNormal, true, true};
    const LinkTiming timing = longTiming();
    const FaultPlan deaf = plan(&FaultPlan::ignoredAddressings);
    const FaultPlan unconfirmed = plan(&FaultPlan::missingConfirmations);
    return {
        {"idle", {}, {}, {}, Event::Aborted, 0, timing},
        {"queue delay of a read", block, {}, {}, Event::Aborted, 0, longQueueTiming()},
        {"queue delay of a write", {}, data, {}, Event::Aborted, 0, longQueueTiming()},
        {"echo of an address", block, {}, deaf, Event::AddressIgnored, 1, timing},
        {"synchronisation",
         block,
         {},
         plan(&FaultPlan::missingSynchronisations),
         Event::EchoSent,
         1,
         timing},
        {"unit of a block", block, {}, silentAfter(2), Event::BlockAcknowledged, 2, timing},
        {"confirmation of a block", block, {}, unconfirmed, Event::CommandReceived, 1, timing},
        {"record", records, {}, silentAfter(2), Event::CommandReceived, 1, timing},
        {"word", word, {}, plan(&FaultPlan::shortBlocks), Event::EchoSent, 1, timing},
        {"echo of a written block", {}, data, silentAfter(1), Event::WriteBlockReceived, 2, timing},
        {"answer to a written block", {}, data, unconfirmed, Event::WriteBlockReceived, 1, timing},
        {"echo of a written word",
         {},
         dataWord,
         silentAfter(0),
         Event::WriteBlockReceived,
         1,
         timing},
        {"retry delay of a read", block, {}, deaf, Event::AddressIgnored, 3, longRetryTiming()},
        {"retry delay of a write", {}, data, deaf, Event::AddressIgnored, 3, longRetryTiming()},
    };
}

} // namespace

/** The end of a link, by a stop or by a lost port, in each of its waits. */
class TestLinkEnd : public QObject
{
    Q_OBJECT
private slots:
    void stopRequestIsSeenInEveryWait_data() { stageRows(); }
    void stopRequestIsSeenInEveryWait();
    void lostPortEndsTheLinkInEveryWait_data() { stageRows(); }
    void lostPortEndsTheLinkInEveryWait();
    void lostPortIsNoticedWithTheStreamFlowing();
    void cleanupTestCase();

private:
    void stageRows();
    /** A bench whose worker waits where the stage says; null, after a failure, if it does not. */
    std::unique_ptr<WorkerBench> enter(const Stage &stage);

    InstrumentBench bench;
    qint64 slowestStopMs = 0;
};

void TestLinkEnd::stageRows()
{
    QTest::addColumn<int>("number");
    const auto all = stages();
    for (int i = 0; i < all.size(); ++i)
        QTest::newRow(all.at(i).name) << i;
}

std::unique_ptr<WorkerBench> TestLinkEnd::enter(const Stage &stage)
{
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.dialogue.timeoutMs = longWaitMs;
    if (stage.query.word)
        options.dialogue.wordAddresses = {readAddress};
    if (stage.data.word)
        options.dialogue.wordAddresses = {writeAddress};
    bench.add("a", options);

    auto link = std::make_unique<WorkerBench>("a", stage.timing);
    const bool streamed = QTest::qWaitFor([&] { return link->measurements > 2; }, entryMs);
    bench.host.setStreaming("a", false);
    bench.host.setFaults("a", stage.faults);
    link->hold(true);
    if (stage.query.size > 0)
        link->query(stage.query);
    if (!stage.data.data.isEmpty())
        link->write(stage.data);
    const bool entered =
        QTest::qWaitFor([&] { return bench.steps("a", stage.sign) >= stage.signs; }, entryMs);
    QTest::qWait(100); // for the step after the sign
    return streamed && entered ? std::move(link) : nullptr;
}

void TestLinkEnd::stopRequestIsSeenInEveryWait()
{
    QFETCH(int, number);
    // a machine that is busy elsewhere may be slow once
    qint64 stopMs = promptMs;
    for (int tried = 0; tried < 3 && stopMs >= promptMs; ++tried) {
        const auto link = enter(stages().at(number));
        QVERIFY(link);
        stopMs = link->stopMs();
        QCoreApplication::processEvents();
        QCOMPARE(link->lines, QStringList());
    }
    slowestStopMs = std::max(slowestStopMs, stopMs);
    QVERIFY2(stopMs < promptMs, qPrintable(QString("%1 ms").arg(stopMs)));
}

void TestLinkEnd::lostPortEndsTheLinkInEveryWait()
{
    QFETCH(int, number);
    const auto link = enter(stages().at(number));
    QVERIFY(link);
    bench.host.unplug("a");
    QTRY_VERIFY(link->worker.isFinished());
    QCoreApplication::processEvents();
    // a read error or a resource error, as the system happens to name it; once, and nothing else
    QCOMPARE(link->lines.size(), 1);
    QVERIFY2(link->lines == QStringList("port error 247") ||
                 link->lines == QStringList("port error 246"),
             qPrintable(link->lines.join(", ")));
}

void TestLinkEnd::lostPortIsNoticedWithTheStreamFlowing()
{
    bench.add("a");
    WorkerBench link("a", shortTiming());
    QTRY_VERIFY(link.measurements > 2);
    bench.host.unplug("a");
    QTRY_VERIFY(link.worker.isFinished());
    QCoreApplication::processEvents();
    QCOMPARE(link.lines.size(), 1);
}

void TestLinkEnd::cleanupTestCase()
{
    qInfo("slowest stop: %lld ms", slowestStopMs);
}

QTEST_GUILESS_MAIN(TestLinkEnd)
#include "tst_linkend.moc"
