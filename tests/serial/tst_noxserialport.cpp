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
constexpr int lineTimeMs = 4; // of four bytes
constexpr int longMs = 30000;

/** Two tokens of the steady instrument. */
const QByteArray firstToken = "1:21.5432B ";
const QByteArray secondToken = "2:32.6543B ";

quint16 sizeOf(quint8 address)
{
    return address == configuration ? 3976 : address == reference ? 72 : 8;
}

} // namespace

/** The multiplexer with live workers and one instrument, whose stream is off at first. */
class TestNoxSerialPort : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        seen.clear();
        bench = std::make_unique<InstrumentBench>();
        options = bench->steadyInstrument();
        options.streaming = false;
        options.dialogue.wordAddresses = {referenceWrite};
        QVERIFY(bench->add("a", options));
        port = std::make_unique<NOXSerialPort>();
        port->setLinkTiming(shortTiming());
        QCOMPARE(port->addDev("a"), 0);
        journal = std::make_unique<LinkJournal>(*port, 0);
    }

    void cleanup()
    {
        port.reset();
        journal.reset();
        bench.reset();
    }

    void writesGoBeforeReadsAndEqualOnesWaitOnce()
    {
        // the head is at the worker already, one equal to it waits, and so need no third
        for (int i = 0; i < 3; ++i)
            read(reference);
        for (const char fill : {'x', 'y', 'y', 'z'})
            setClock(fill);
        // behind a write they wait however equal they are
        read(identification);
        read(identification);
        QTRY_VERIFY(journal->lines.contains("all queries done"));
        QCOMPARE(bench->exchanged("a"), (QVector<int>{reference, clockWrite, clockWrite, clockWrite,
                                                      reference, identification, identification}));
        QCOMPARE(bench->host.clock("a"), QByteArray(8, 'z'));
        QCOMPARE(journal->lines.join(", "),
                 "reply @3 72 bytes, written @6, written @6, written @6, writes done, "
                 "all writes done, reply @3 72 bytes, reply @51 8 bytes, reply @51 8 bytes, "
                 "queries done, all queries done");
    }

    void progressAndQueuesFollowTheExchanges()
    {
        port->sendDevQuery(0, reference, 0); // nothing is queued for nothing, or for nobody
        port->sendDevData(0, QByteArray(), clockWrite);
        port->sendDevQuery(7, reference, 72);
        port->sendDevData(7, QByteArray(8, 'x'), clockWrite);
        QVERIFY(port->isReadAllQuery() && port->isSendAllData() && !port->isEmptyQueryQueue(0) &&
                !port->isEmptyDataQueue(0) && !port->hasExchanges(0));
        bench->host.setStreaming("a", true);
        QTRY_VERIFY(!journal->measurements.isEmpty());

        connect(port.get(), QOverload<int, int>::of(&NOXSerialPort::setProgress), this,
                [this](int done, int total) { seen << QString("%1/%2").arg(done).arg(total); });
        for (const quint8 address : {identification, reference, configuration, identification})
            read(address);
        // counted before each item is added
        QCOMPARE(seen, (QStringList{"0/0", "0/1"}));
        QVERIFY(!port->isEmptyQueryQueue(0) && port->hasExchanges(0) && !port->isReadAllQuery());
        QTRY_VERIFY(port->isReadAllQuery());
        QCOMPARE(seen, (QStringList{"0/0", "0/1", "1/3", "2/3", "0/0"}));
        QCOMPARE(bench->exchanged("a"),
                 (QVector<int>{identification, reference, configuration, identification}));
        setClock('x');
        QVERIFY(port->hasExchanges(0) && !port->isSendAllData() && !port->isEmptyDataQueue(0));
        QTRY_VERIFY(port->isSendAllData());
        QVERIFY(port->isEmptyQueryQueue(0) && port->isEmptyDataQueue(0) && !port->hasExchanges(0));
    }

    void failures_data()
    {
        QTest::addColumn<bool>("reading");
        QTest::addColumn<noxQueryMode>("mode");
        QTest::addColumn<QString>("expected");
        const QString bothRead = "reply @51 8 bytes, reply @2 3976 bytes, queries done, "
                                 "all queries done";
        QTest::newRow("read, normal: the waiting reads go too")
            << true << noxQueryModeNormal
            << "query error 110 @3, error 110 Unknown error, all queries done, queries failed";
        QTest::newRow("read, fast: only the failed one")
            << true << noxQueryModeFast
            << "query error 110 @3, error 110 Unknown error, " + bothRead;
        QTest::newRow("write, normal: the waiting writes go too, but no read")
            << false << noxQueryModeNormal
            << "write error 210 @6, error 210 Unknown error, all writes done, " + bothRead;
        QTest::newRow("write, fast: only the failed one")
            << false << noxQueryModeFast
            << "write error 210 @6, error 210 Unknown error, write failed, more wait, written @6, "
               "writes done, all writes done, " +
                   bothRead;
    }

    void failures()
    {
        QFETCH(bool, reading);
        QFETCH(noxQueryMode, mode);
        emit port->onSetDelayTime(0, 40, 5, 40);
        // three addressings in each of the attempts, and in the first one of what follows
        const int addressings = 3 + (reading && mode == noxQueryModeFast ? 9 : 12);
        bench->host.setFaults("a", faultPlan(&FaultPlan::ignoredAddressings, addressings));
        bench->host.setStreaming("a", true);
        if (reading) {
            read(reference, mode);
        } else {
            setClock('x', mode);
            setClock('y');
        }
        read(identification);
        read(configuration);
        QTRY_VERIFY_WITH_TIMEOUT(journal->measurements.size() > 8, longMs);
        QTEST(journal->lines.join(", "), "expected");
        QCOMPARE(journal->foreignMeasurements(), QVector<ChannelValue>());
    }

    void emptiedQueuesForgetTheExchangeInProgress()
    {
        port->emptyQueues(7);
        read(reference);
        read(identification);
        port->emptyQueues(0);
        QCOMPARE(journal->lines, QStringList("all queries done"));
        QVERIFY(port->isReadAllQuery());
        // the result that is still to come is not that of the new head
        read(configuration);
        QTRY_VERIFY(port->isReadAllQuery());
        QCOMPARE(bench->exchanged("a"), (QVector<int>{reference, configuration}));

        setClock('x');
        port->emptyQueues(0);
        QSignalSpy handedOver(port.get(), &NOXSerialPort::readyDevQuery);
        read(identification);
        QVERIFY2(handedOver.isEmpty(), "a read beside a write, which may begin after it");
        QTRY_VERIFY(port->isReadAllQuery());
        QCOMPARE(bench->exchanged("a").mid(2), (QVector<int>{clockWrite, identification}));
        bench->host.setStreaming("a", true);
        QTRY_VERIFY(!journal->measurements.isEmpty());
    }

    void exchangesCarryTheCommandByteOfTheModel()
    {
        port->setDevType(0, 7);
        emit port->onSetDevType(1, 5); // of another
        read(reference);
        setClock('x');
        QTRY_VERIFY(port->isReadAllQuery() && port->isSendAllData());
        QByteArray commands;
        for (const ExchangeEvent &event : bench->host.exchanges("a"))
            if (event.kind == ExchangeEvent::CommandReceived)
                commands += char(event.value);
        QCOMPARE(commands.toHex(), QByteArray("0707"));
    }

    void wordWritesReachTheInstrument()
    {
        // the confirming word is the last that is sent: nothing after it may take it back
        LineWatch line;
        int written = 0;
        for (int tried = 0; written < 8; ++tried) {
            const QByteArray word = QByteArray("abc") + char(tried);
            line.takeSlowestMs();
            port->sendDevWord(0, word + "and more", referenceWrite);
            QTRY_VERIFY(port->isSendAllData());
            QTest::qWait(20);
            if (bench->host.block("a", reference).left(word.size()) == word)
                ++written;
            else // only a pseudo-terminal that holds bytes up can lose them
                QVERIFY2(line.takeSlowestMs() > lineTimeMs && tried < 50, "a word was lost");
        }
    }

    void heldRepliesAreDeliveredInOrder()
    {
        port->blockEventAll(false); // none is
        port->blockEventDev(0, true);
        bench->host.setStreaming("a", true);
        read(reference);
        read(identification);
        QTRY_VERIFY(port->isEmptyQueryQueue(0));
        QVERIFY(!port->isReadAllQuery());
        QTest::qWait(150);
        QCOMPARE(journal->lines, QStringList());
        QVERIFY(journal->measurements.isEmpty());
        port->blockEventAll(false);
        QCOMPARE(journal->lines.join(", "),
                 QString("reply @3 72 bytes, reply @51 8 bytes, all queries done"));
        QTRY_VERIFY(!journal->measurements.isEmpty());

        // emptied queues forget them too
        port->blockEventDev(0, true);
        read(reference);
        QTRY_VERIFY(port->isEmptyQueryQueue(0));
        port->emptyQueues(0);
        QVERIFY(port->isReadAllQuery());
        port->blockEventDev(0, false);
        QCOMPARE(journal->replies.size(), 2);

        // a reply that is being delivered outlives its device; the others go with it
        port->blockEventDev(0, true);
        read(reference);
        read(identification);
        QTRY_VERIFY(port->isEmptyQueryQueue(0));
        QVector<QByteArray> byPointer;
        connect(port.get(), QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply),
                this, [this](int index) { port->rmDev(index); });
        connect(port.get(), QOverload<int, QByteArray *, quint8>::of(&NOXSerialPort::readyDevReply),
                port.get(), [&byPointer](int, const QByteArray *buf) { byPointer << *buf; });
        port->blockEventDev(0, false);
        QCOMPARE(byPointer, QVector<QByteArray>{bench->host.block("a", reference)});
        QVERIFY(port->isReadAllQuery());
    }

    void indicesAndPorts()
    {
        read(identification);
        QTRY_VERIFY(port->isReadAllQuery()); // its port is open by now
        for (const char *name : {"a", "no such port", ""})
            QCOMPARE(port->addDev(name), -1);
        for (int i = 1; i < 255; ++i) {
            const QString name = QString("p%1").arg(i);
            QVERIFY(bench->add(name, options));
            QCOMPARE(port->addDev(name), i);
        }
        QVERIFY(bench->add("one too many", options));
        QCOMPARE(port->addDev("one too many"), -1);
        QCOMPARE(port->getPortName(2), QString("p2"));
        port->rmDev(2);
        QCOMPARE(port->getPortName(2), QString("-"));
        QCOMPARE(port->addDev("p2"), 2);
        read(identification, noxQueryModeNormal, 2); // and it works there
        QTRY_VERIFY(port->isEmptyQueryQueue(2));
        QCOMPARE(journal->linesOf("error"), QStringList());
    }

    void removalDropsTheQueues()
    {
        bench->host.setFaults("a", faultPlan(&FaultPlan::ignoredAddressings));
        read(reference);
        read(identification);
        setClock('x');
        QTRY_VERIFY(bench->addressings("a", reference) > 0);
        const qint64 removalMs = removedMs(0);
        QVERIFY2(removalMs < 500, qPrintable(QString("%1 ms").arg(removalMs)));
        QCOMPARE(journal->lines, (QStringList{"all queries done", "all writes done"}));
        QVERIFY(port->isReadAllQuery() && port->isSendAllData());
        QVERIFY(!port->isEmptyQueryQueue(0) && !port->isEmptyDataQueue(0));

        // one whose port has vanished
        QCOMPARE(port->addDev("a"), 0);
        read(reference);
        bench->host.unplug("a");
        port->rmDev(0);
        QCOMPARE(port->getPortName(0), QString("-"));
        QVERIFY(port->isReadAllQuery());
    }

    void removalFromWithinAResult()
    {
        connect(port.get(), QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply),
                this, [this](int index) { port->rmDev(index); });
        read(reference);
        read(identification);
        QTRY_VERIFY(port->devices().isEmpty() && port->isReadAllQuery());
        QCOMPARE(journal->linesOf("reply"), QStringList("reply @3 72 bytes"));
    }

    void nobodyIsTakenForHisPredecessor()
    {
        QVERIFY(bench->add("b", options));
        const auto giveIndex = [this](int index) {
            const bool wasA = port->getPortName(index) == "a";
            port->rmDev(index);
            QCOMPARE(port->addDev(wasA ? "b" : "a"), index);
        };
        const auto heard = [this](bool isReading, int strikes) {
            bench->host.setFaults(port->getPortName(0),
                                  faultPlan(&FaultPlan::ignoredAddressings, strikes));
            isReading ? read(reference, noxQueryModeOnce) : setClock('x', noxQueryModeOnce);
            const bool isOver =
                QTest::qWaitFor([this] { return !journal->lines.isEmpty(); }, longMs);
            return isOver ? std::exchange(journal->lines, {}).join(", ") : QString("nothing");
        };
        connect(port.get(), QOverload<int, QByteArray *, quint8>::of(&NOXSerialPort::readyDevReply),
                this, giveIndex);
        connect(port.get(), &NOXSerialPort::doneSendDevData, this, giveIndex);
        QCOMPARE(heard(true, 0), "all queries done");
        QCOMPARE(heard(false, 0), "written @6, all writes done");
        connect(port.get(), &NOXSerialPort::onDevQueryError, this, giveIndex);
        connect(port.get(), &NOXSerialPort::onDevDataError, this, giveIndex);
        QCOMPARE(heard(true, 99), "query error 110 @3, all queries done");
        QCOMPARE(heard(false, 99), "write error 210 @6, all writes done");
    }

    void removalFromWithinAnErrorIsPrompt()
    {
        bench->host.setStreaming("a", true);
        QTRY_VERIFY(!journal->measurements.isEmpty());
        qint64 removalMs = -1;
        connect(port.get(), QOverload<int>::of(&NOXSerialPort::onDevError), this,
                [&](int index) { removalMs = removedMs(index); });
        // this thread looks away until the worker has ended: its error and its end wait side by
        // side
        bench->host.unplug("a");
        QThread::msleep(300);
        QTRY_VERIFY_WITH_TIMEOUT(removalMs >= 0, longMs);
        QVERIFY2(removalMs < 2000, qPrintable(QString("%1 ms").arg(removalMs)));
        QCOMPARE(port->getPortName(0), QString("-"));
        QCOMPARE(journal->linesOf("error 24").size(), 1);
    }

    void garbageAndPausesSpoilNoMeasurement()
    {
        QTRY_VERIFY((bench->host.sendRaw("a", firstToken), !journal->measurements.isEmpty()));
        QTest::qWait(50);
        journal->clear();
        connect(port.get(), &NOXSerialPort::readyDevSource, this,
                [this](int, const QByteArray &token) {
                    if (!token.startsWith('x')) // of which the rest comes in whatever pieces
                        seen << QString(token);
                });
        connect(port.get(), &NOXSerialPort::readyDevStatus, this,
                [this](int, const QStringList &status) { seen << "status " + status.join('|'); });
        bench->host.sendRaw("a", firstToken + QByteArray(5000, 'x') + " ::7::::9 257:1.5B " +
                                     "2:#E1#E2X " + secondToken);
        const QVector<ChannelValue> expected = {{1, 21.5432}, {2, 32.6543}};
        QTRY_COMPARE(journal->measurements, expected);
        QCOMPARE(seen, (QStringList{firstToken, "::7::::9 ", "257:1.5B ", "2:#E1#E2X ",
                                    "status E1|E2", secondToken}));

        // "1" and "2:32.6543B" together would read as channel 12
        for (const char *head : {"1", "1:21.543", "1:21.5432B"}) {
            journal->clear();
            bench->host.sendRaw("a", head);
            QTest::qWait(30);
            read(identification);
            QTRY_VERIFY(port->isReadAllQuery());
            QTest::qWait(30);
            bench->host.sendRaw("a", firstToken + secondToken);
            QTRY_COMPARE(journal->measurements, expected);
        }

        // a silent stream reopens the port, and the token that was begun is joined to nothing
        emit port->onSetMeasTimeout(0, 1);
        journal->clear();
        bench->host.sendRaw("a", firstToken + '1');
        QTRY_COMPARE(journal->lines, QStringList("watchdog reopened"));
        QTRY_VERIFY((bench->host.sendRaw("a", firstToken), journal->measurements.size() > 1));
        QCOMPARE(journal->foreignMeasurements(), QVector<ChannelValue>());
    }

    void silenceIsBorneForAsLongAsAsked()
    {
        QVERIFY(bench->add("silent", options));
        QElapsedTimer borne;
        borne.start();
        QSignalSpy reopenings(port.get(), &NOXSerialPort::onMeasTimeOut);
        QCOMPARE(port->addDev("silent", 0, 9600, 1), 1);
        QTRY_COMPARE(reopenings, (QList<QVariantList>{{1, true}}));
        QVERIFY(borne.elapsed() >= 950); // a coarse timer may be a twentieth early
    }

    void neighbourLosesNothing()
    {
        options.streaming = true;
        options.tokensPerSecond = 150;
        QVERIFY(bench->add("good", options));
        options.faults.streamNoiseProbability = 0.3;
        options.faults.streamBurstBytes = 5000;
        options.faults.unplugAfterAnswerBytes = 20;
        QVERIFY(bench->add("bad", options));
        LinkJournal good(*port, port->addDev("good"));
        LinkJournal bad(*port, port->addDev("bad"));
        QTRY_VERIFY(good.measurements.size() > 50 && bad.measurements.size() > 50);

        read(reference, noxQueryModeNormal, 2);
        QTRY_COMPARE(port->getPortName(2), QString("-"));
        bench->plugIn("bad");
        QCOMPARE(port->addDev("bad"), 2);
        bench->host.setFaults("bad", faultPlan(&FaultPlan::ignoredAddressings));
        read(reference, noxQueryModeOnce, 2);
        QTRY_COMPARE(bad.linesOf("error 110").size(), 1);
        port->rmDev(2);

        bench->host.setStreaming("good", false);
        QTRY_COMPARE(qint64(good.measurements.size()), bench->host.tokensSent("good"));
        QCOMPARE(good.foreignMeasurements() + bad.foreignMeasurements(), QVector<ChannelValue>());
        QCOMPARE(good.linesOf("error"), QStringList());
    }

private:
    void read(quint8 address, noxQueryMode mode = noxQueryModeNormal, int index = 0)
    {
        port->sendDevQuery(index, address, sizeOf(address), false, mode);
    }
    void setClock(char fill, noxQueryMode mode = noxQueryModeNormal)
    {
        port->sendDevData(0, QByteArray(8, fill), clockWrite, false, mode);
    }
    /** Removes a device; how long that took. */
    qint64 removedMs(int index)
    {
        QElapsedTimer clock;
        clock.start();
        port->rmDev(index);
        return clock.elapsed();
    }

    std::unique_ptr<InstrumentBench> bench;
    SimulatedInstrumentOptions options; ///< of the instrument
    std::unique_ptr<NOXSerialPort> port;
    std::unique_ptr<LinkJournal> journal;
    QStringList seen; ///< what else a case listens to
};

QTEST_GUILESS_MAIN(TestNoxSerialPort)
#include "tst_noxserialport.moc"
