#include "serial/noxserialport.h"
#include "support/linkjournal.h"

#include <QtTest>

#include <memory>
#include <vector>

namespace
{

constexpr int longWaitMs = 20000; // far beyond any patience of these tests
constexpr int promptMs = 100;
constexpr int entryMs = 15000; // how long a machine that is busy elsewhere may take
constexpr quint8 clockWrite = 6;

const noxSerialPortQueryItem block{3, 72, false, noxQueryModeOnce, false, false};
const noxSerialPortQueryItem identity{51, 8, false, noxQueryModeNormal, false, false};
const noxSerialPortQueryItem records{5, 800, false, noxQueryModeNormal, true, false};
const noxSerialPortQueryItem word{3, 4, false, noxQueryModeNormal, false, true};
const noxSerialPortDataItem data{1, QByteArray(72, 'x'), noxQueryModeNormal, false, false};
const noxSerialPortDataItem dataWord{1, "abcd", noxQueryModeNormal, false, true};
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
    const FaultPlan deaf = faultPlan(&P::ignoredAddressings);
    const FaultPlan unsynced = faultPlan(&P::missingSynchronisations);
    const FaultPlan unconfirmed = faultPlan(&P::missingConfirmations);
    const auto mute = [](int units) { return faultPlan(&P::silentAfterBlocks, units); };
    return {
        {"idle", {}, {}, {}, E::Aborted, 0, timing},
        {"queue delay of a read", block, {}, {}, E::Aborted, 0, queued},
        {"echo of an address", block, {}, deaf, E::AddressIgnored, 1, timing},
        {"synchronisation", block, {}, unsynced, E::EchoSent, 1, timing},
        {"unit of a block", block, {}, mute(2), E::BlockAcknowledged, 2, timing},
        {"confirmation of a block", block, {}, unconfirmed, E::CommandReceived, 1, timing},
        {"record", records, {}, mute(2), E::CommandReceived, 1, timing},
        {"word", word, {}, faultPlan(&P::shortBlocks), E::EchoSent, 1, timing},
        {"echo of a written block", {}, data, mute(1), E::WriteBlockReceived, 2, timing},
        {"answer to a written block", {}, data, unconfirmed, E::WriteBlockReceived, 1, timing},
        {"echo of a written word", {}, dataWord, mute(0), E::WriteBlockReceived, 1, timing},
        {"retry delay of a read", identity, {}, deaf, E::AddressIgnored, 3, retried},
        {"retry delay of a write", {}, data, deaf, E::AddressIgnored, 3, retried},
    };
}

} // namespace

/** The worker of a link: the end of its link in each of its waits, and its watchdog. */
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
        const QString emptied = stage.query.size > 0 ? "all queries done" : "all writes done";
        // by a stop: a machine that is busy elsewhere may be slow once
        qint64 stopMs = promptMs;
        for (int tried = 0; tried < 3 && stopMs >= promptMs; ++tried) {
            enter(stage);
            QElapsedTimer clock;
            clock.start();
            port->rmDev(0);
            stopMs = clock.elapsed();
            QCOMPARE(journal->lines, number == 0 ? QStringList() : QStringList(emptied));
        }
        QVERIFY2(stopMs < promptMs, qPrintable(QString("%1 ms").arg(stopMs)));

        // by a lost port: a read or a resource error, as the system happens to name it, only
        enter(stage);
        if (number == 0) // the one wait in which the stream may flow
            emit port->blockStatusEvent(0, false);
        bench.host.unplug("a");
        QTRY_COMPARE(port->getPortName(0), QString("-"));
        QVERIFY2(journal->lines == QStringList("error 247 Unknown error") ||
                     journal->lines == QStringList("error 246 Unknown error"),
                 qPrintable(journal->lines.join(", ")));
    }

    void watchdog()
    {
        const QStringList names{"silent", "gone", "fails", "writes"};
        LinkTiming timing = shortTiming();
        std::vector<std::unique_ptr<LinkJournal>> links;
        start(names[0], timing);
        for (int i = 0; i < 4; ++i) {
            timing.queueDelay = i < 2 ? 20 : 1200; // longer than the watchdog would wait
            port->setLinkTiming(timing);
            QVERIFY(i == 0 || (bench.add(names[i]) && port->addDev(names[i]) == i));
            links.push_back(std::make_unique<LinkJournal>(*port, i));
            emit port->onSetMeasTimeout(i, 1);
            QTRY_VERIFY(links.back()->measurements.size() > 2);
        }
        for (const QString &name : names)
            bench.host.setStreaming(name, false);
        QVERIFY(QFile::remove(bench.steadyInstrument().portsDirectory + "/gone"));
        bench.host.setFaults("fails", faultPlan(&FaultPlan::ignoredAddressings));
        port->sendDevQuery(2, 51, 8, false, noxQueryModeOnce);
        port->sendDevData(3, clockData);

        const auto said = [&links](size_t i) { // of this device, and not of all
            return links[i]->lines.filter(QRegularExpression("^(?!all)")).join(", ");
        };
        const QString reopened = "watchdog reopened";
        QTRY_COMPARE(said(0), reopened);
        QTRY_COMPARE(port->getPortName(1), QString("-"));
        QCOMPARE(said(1), QString("error 252 Unknown error, watchdog failed"));
        // it rests during an exchange, and begins anew after it
        QTRY_COMPARE(said(2),
                     "query error 110 @51, error 110 Unknown error, queries failed, " + reopened);
        QTRY_COMPARE(said(3), "written @6, writes done, " + reopened);
        // after a reopening it rests until the stream comes again
        QCOMPARE(said(0), reopened);
        links[0]->measurements.clear();
        bench.host.setStreaming("silent", true);
        QTRY_VERIFY(links[0]->measurements.size() > 2);
        bench.host.setStreaming("silent", false);
        QTRY_COMPARE(said(0), reopened + ", " + reopened);
    }

    void whatCameDuringAPauseIsDelivered()
    {
        const QByteArray first = "1:21.5432B ";
        const QByteArray second = "2:32.6543B ";
        start("a", shortTiming(), false);
        QVector<ChannelValue> &measured = journal->measurements;
        QTRY_VERIFY((bench.host.sendRaw("a", first), !measured.isEmpty()));
        QTest::qWait(50);

        measured.clear();
        emit port->blockStatusEvent(0, true);
        QTest::qWait(50);
        bench.host.sendRaw("a", first + second + '1');
        emit port->blockStatusEvent(1, false);
        QTest::qWait(100);
        QCOMPARE(measured, QVector<ChannelValue>());
        // no further byte comes that would announce those
        emit port->blockStatusEvent(0, false);
        const QVector<ChannelValue> expected = {{1, 21.5432}, {2, 32.6543}};
        QTRY_COMPARE(measured, expected);

        // the token that the next pause cuts is joined to nothing
        measured.clear();
        emit port->blockStatusEvent(0, true);
        bench.host.sendRaw("a", ":99.0B 1");
        emit port->blockStatusEvent(0, false);
        QTest::qWait(50);
        bench.host.sendRaw("a", ":21.5432B " + second);
        QTRY_COMPARE(measured, expected);
    }

private:
    /** Plugs an instrument in and links it as device 0. */
    void start(const QString &name, const LinkTiming &timing, bool streaming = true,
               const DialogueSettings &dialogue = {})
    {
        port = std::make_unique<NOXSerialPort>(); // without the link of the case before
        port->setLinkTiming(timing);
        SimulatedInstrumentOptions options = bench.steadyInstrument();
        options.streaming = streaming;
        options.tokensPerSecond = 200;
        options.dialogue = dialogue;
        QVERIFY(bench.add(name, options));
        QCOMPARE(port->addDev(name), 0);
        journal = std::make_unique<LinkJournal>(*port, 0);
    }

    /** Brings the link to where the stage says. */
    void enter(const Stage &stage)
    {
        DialogueSettings dialogue;
        dialogue.timeoutMs = longWaitMs;
        if (stage.query.word || stage.data.word)
            dialogue.wordAddresses = {stage.query.word ? word.address : dataWord.address};
        start("a", stage.timing, true, dialogue);
        QTRY_VERIFY_WITH_TIMEOUT(journal->measurements.size() > 2, entryMs);
        bench.host.setStreaming("a", false);
        bench.host.setFaults("a", stage.faults);
        emit port->blockStatusEvent(0, true);
        port->sendDevQuery(0, stage.query); // the one or the other is nothing
        port->sendDevData(0, stage.data);
        QTRY_VERIFY_WITH_TIMEOUT(bench.blocksAt("a", {stage.sign}).size() >= stage.signs, entryMs);
        QTest::qWait(20); // for the step after the sign
    }

    InstrumentBench bench;
    std::unique_ptr<NOXSerialPort> port;
    std::unique_ptr<LinkJournal> journal;
};

QTEST_GUILESS_MAIN(TestLinkWorker)
#include "tst_linkworker.moc"
