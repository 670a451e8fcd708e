#include "support/instrumentbench.h"
#include "support/workerbench.h"

#include <QtTest>

#include <memory>

namespace
{

constexpr int longWaitMs = 20000; // far beyond any patience of these tests
constexpr int promptMs = 100;
constexpr int entryMs = 15000; // how long a machine that is busy elsewhere may take
constexpr quint8 clockWrite = 6;

const noxSerialPortQueryItem block{3, 72, true, noxQueryModeNormal, false, false};
const noxSerialPortQueryItem identity{51, 8, false, noxQueryModeNormal, false, false};
const noxSerialPortQueryItem records{5, 800, true, noxQueryModeNormal, true, false};
const noxSerialPortQueryItem word{3, 4, true, noxQueryModeNormal, false, true};
const noxSerialPortDataItem data{1, QByteArray(72, 'x'), noxQueryModeNormal, true, false};
const noxSerialPortDataItem dataWord{1, "abcd", noxQueryModeNormal, true, true};
const noxSerialPortDataItem clockData{clockWrite, QByteArray(8, 'x'), noxQueryModeNormal, false,
                                      false};

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

FaultPlan plan(int FaultPlan::*fault, int strikes = FaultPlan::always)
{
    FaultPlan faults;
    faults.*fault = strikes;
    return faults;
}

QVector<Stage> stages()
{
    using E = ExchangeEvent;
    using P = FaultPlan;
    // every wait so long that only a stop or a lost port can end it
    LinkTiming timing = shortTiming();
    timing.initDelay = timing.attemptDelay = timing.unitTimeout = timing.confirmTimeout =
        longWaitMs;
    timing.queueDelay = timing.startBase = 1;
    LinkTiming queued = timing;
    queued.queueDelay = longWaitMs;
    LinkTiming retried = timing;
    retried.initDelay = 60;
    const FaultPlan deaf = plan(&P::ignoredAddressings);
    const FaultPlan unsynced = plan(&P::missingSynchronisations);
    const FaultPlan unconfirmed = plan(&P::missingConfirmations);
    const auto mute = [](int units) { return plan(&P::silentAfterBlocks, units); };
    return {
        {"idle", {}, {}, {}, E::Aborted, 0, timing},
        {"queue delay of a read", block, {}, {}, E::Aborted, 0, queued},
        {"queue delay of a write", {}, data, {}, E::Aborted, 0, queued},
        {"echo of an address", block, {}, deaf, E::AddressIgnored, 1, timing},
        {"synchronisation", block, {}, unsynced, E::EchoSent, 1, timing},
        {"unit of a block", block, {}, mute(2), E::BlockAcknowledged, 2, timing},
        {"confirmation of a block", block, {}, unconfirmed, E::CommandReceived, 1, timing},
        {"record", records, {}, mute(2), E::CommandReceived, 1, timing},
        {"word", word, {}, plan(&P::shortBlocks), E::EchoSent, 1, timing},
        {"echo of a written block", {}, data, mute(1), E::WriteBlockReceived, 2, timing},
        {"answer to a written block", {}, data, unconfirmed, E::WriteBlockReceived, 1, timing},
        {"echo of a written word", {}, dataWord, mute(0), E::WriteBlockReceived, 1, timing},
        {"retry delay of a read", block, {}, deaf, E::AddressIgnored, 3, retried},
        {"retry delay of a write", {}, data, deaf, E::AddressIgnored, 3, retried},
    };
}

} // namespace

/** One link worker alone: the end of its link in each of its waits, and its watchdog. */
class TestLinkWorker : public QObject
{
    Q_OBJECT
private slots:
    void endsInEveryWait_data()
    {
        QTest::addColumn<int>("number");
        const auto all = stages();
        for (int i = 0; i < all.size(); ++i)
            QTest::newRow(all.at(i).name) << i;
    }

    void endsInEveryWait()
    {
        QFETCH(int, number);
        const Stage stage = stages().at(number);
        // by a stop: a machine that is busy elsewhere may be slow once
        qint64 stopMs = promptMs;
        for (int tried = 0; tried < 3 && stopMs >= promptMs; ++tried) {
            const auto link = enter(stage);
            QVERIFY(link);
            stopMs = link->stopMs();
            QCoreApplication::processEvents();
            QCOMPARE(link->lines, QStringList());
        }
        QVERIFY2(stopMs < promptMs, qPrintable(QString("%1 ms").arg(stopMs)));

        // by a lost port: a read or a resource error, as the system happens to name it; nothing
        // else
        const auto link = enter(stage);
        QVERIFY(link);
        if (number == 0) // the one wait in which the stream may flow
            link->hold(false);
        bench.host.unplug("a");
        QTRY_VERIFY(link->worker.isFinished());
        QCoreApplication::processEvents();
        QVERIFY2(link->lines == QStringList("port error 247") ||
                     link->lines == QStringList("port error 246"),
                 qPrintable(link->lines.join(", ")));
    }

    void watchdog()
    {
        LinkTiming slow = shortTiming();
        slow.queueDelay = 1200; // longer than the watchdog would wait
        for (const char *name : {"silent", "gone", "reads", "writes"})
            QVERIFY(bench.add(name));
        WorkerBench silent("silent", shortTiming());
        WorkerBench gone("gone", shortTiming());
        WorkerBench reads("reads", slow);
        WorkerBench writes("writes", slow);
        for (WorkerBench *link : {&silent, &gone, &reads, &writes}) {
            link->setWatchdogSeconds(1);
            QTRY_VERIFY(link->measurements > 2);
        }
        for (const char *name : {"silent", "gone", "reads", "writes"})
            bench.host.setStreaming(name, false);
        QVERIFY(QFile::remove(bench.steadyInstrument().portsDirectory + "/gone"));
        reads.hold(true); // a token on its way would start it again
        writes.hold(true);
        reads.query(identity);
        writes.write(clockData);

        QTRY_COMPARE(silent.lines, QStringList("watchdog reopened"));
        QTRY_VERIFY(gone.worker.isFinished());
        QCoreApplication::processEvents();
        QCOMPARE(gone.lines, (QStringList{"port error 252", "watchdog failed"}));
        // it rests during an exchange, and begins anew after it
        const QString reopened = "watchdog reopened";
        QTRY_COMPARE(reads.lines, (QStringList{"reply @51 8 bytes", reopened}));
        QTRY_COMPARE(writes.lines, (QStringList{"written", reopened}));
        // after a reopening it rests until the stream comes again
        QCOMPARE(silent.lines, QStringList(reopened));
        const int measured = silent.measurements;
        bench.host.setStreaming("silent", true);
        QTRY_VERIFY(silent.measurements > measured + 2);
        bench.host.setStreaming("silent", false);
        QTRY_COMPARE(silent.lines, (QStringList{reopened, reopened}));
    }

    void whatCameDuringAPauseIsDelivered()
    {
        const QByteArray first = "1:21.5432B ";
        const QByteArray second = "2:32.6543B ";
        SimulatedInstrumentOptions options = bench.steadyInstrument();
        options.streaming = false;
        QVERIFY(bench.add("a", options));
        WorkerBench link("a", shortTiming());
        QVector<ChannelValue> measured;
        const QObject listener;
        connect(&link.worker, &noxSerialPortThread::readyMeas, &listener,
                [&measured](double value, quint8 channel) {
                    measured << ChannelValue(channel, value);
                });
        QTRY_VERIFY((bench.host.sendRaw("a", first), !measured.isEmpty()));
        QTest::qWait(50);

        measured.clear();
        link.hold(true);
        QTest::qWait(50);
        bench.host.sendRaw("a", first + second + '1');
        link.hold(false, WorkerBench::devIndex + 1);
        QTest::qWait(100);
        QCOMPARE(measured, QVector<ChannelValue>());
        // no further byte comes that would announce those
        link.hold(false);
        const QVector<ChannelValue> expected = {{1, 21.5432}, {2, 32.6543}};
        QTRY_COMPARE(measured, expected);

        // the token that the next pause cuts is joined to nothing
        measured.clear();
        link.hold(true);
        bench.host.sendRaw("a", ":99.0B 1");
        link.hold(false);
        QTest::qWait(50);
        bench.host.sendRaw("a", ":21.5432B " + second);
        QTRY_COMPARE(measured, expected);
    }

    void itemsForOthersAndSecondItemsAreDropped()
    {
        QVERIFY(bench.add("a"));
        WorkerBench link("a", shortTiming());
        link.hold(true);
        link.query(identity, WorkerBench::devIndex + 1);
        link.write(clockData, WorkerBench::devIndex + 1);
        link.query(block);
        link.query(identity);  // while one is in progress
        link.write(clockData); // which may be beside it
        link.write(clockData);
        QTRY_COMPARE(link.lines.size(), 2);
        QTest::qWait(200);
        QCOMPARE(link.lines, (QStringList{"reply @3 72 bytes", "written"}));
        // the next ones are taken again
        link.query(identity);
        QTRY_COMPARE(link.lines.last(), QString("reply @51 8 bytes"));
    }

private:
    /** A bench whose worker waits where the stage says; null if it does not come to that. */
    std::unique_ptr<WorkerBench> enter(const Stage &stage)
    {
        SimulatedInstrumentOptions options = bench.steadyInstrument();
        options.tokensPerSecond = 200;
        options.dialogue.timeoutMs = longWaitMs;
        if (stage.query.word || stage.data.word)
            options.dialogue.wordAddresses = {stage.query.word ? word.address : dataWord.address};
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
        QTest::qWait(20); // for the step after the sign
        return streamed && entered ? std::move(link) : nullptr;
    }

    InstrumentBench bench;
};

QTEST_GUILESS_MAIN(TestLinkWorker)
#include "tst_linkworker.moc"
