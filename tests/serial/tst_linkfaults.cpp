#include "serial/noxserialport.h"
#include "support/linewatch.h"
#include "support/linkjournal.h"
#include "support/openwatch.h"

#include <QtTest>

#include <algorithm>
#include <cctype>
#include <memory>
#include <numeric>
#include <vector>

namespace
{

constexpr int initDelayMs = 250;
constexpr int attemptDelayMs = 400;
constexpr int startBaseMs = 50;
constexpr int noPatternMs = 20;    // where no unit is ever reached
constexpr int realUnitMs = 500;    // the instrument repeats a unit between two of these waits
constexpr int heldUpMs = 20;       // far below the waits of a link under trial
constexpr int mostRepetitions = 6; // of trials during which the system held bytes up

enum Exchange { BlockRead, RecordRead, WordRead, BlockWrite, WordWrite };

/**
 * A fault in an exchange, and the attempts that are to follow from it, one character each: `x` is
 * not addressed in three tries, `-` fails before the first unit, a digit after so many units, `c`
 * is complete, `C` too but at the third address byte.
 */
struct FaultRow {
    const char *name;
    Exchange exchange;
    FaultPlan faults;
    QByteArray attempts;
    int code = 0;           ///< reported in the end; 0 for a result, be it an empty one
    int unitTimeoutMs = 70; ///< how long the link waits for a unit
    int mode = noxQueryModeNormal;
};

/** Silence after so many units, in so many dialogues. */
FaultPlan silentAfter(int units, int dialogues = FaultPlan::always)
{
    FaultPlan faults = faultPlan(&FaultPlan::silentAfterBlocks, units);
    faults.silentDialogues = dialogues;
    return faults;
}

using P = FaultPlan;
const FaultPlan deaf = faultPlan(&P::ignoredAddressings);
const FaultPlan wrongAddress = faultPlan(&P::wrongAddressEchoes);
const FaultPlan unsynced = faultPlan(&P::missingSynchronisations);
const FaultPlan mute = silentAfter(1);
constexpr int once = noxQueryModeOnce, fast = noxQueryModeFast, empty = noxQueryModeEmpty;

const std::vector<FaultRow> faultRows = {
    {"block read: silence at the address", BlockRead, deaf, "xxxx", 110},
    {"block write: wrong echo of the address", BlockWrite, wrongAddress, "xxxx", 210},
    {"a second byte beside the echo", BlockRead, faultPlan(&P::extraEchoBytes), "xxxx", 110},
    {"the third echo is right", BlockRead, faultPlan(&P::wrongAddressEchoes, 2), "C"},
    {"the last attempt is heard", BlockWrite, faultPlan(&P::ignoredAddressings, 9), "xxxc"},
    {"block read: no pattern", BlockRead, unsynced, "----", 120, noPatternMs},
    {"block write: no pattern", BlockWrite, unsynced, "----", 220, noPatternMs},
    {"a pattern at last", BlockRead, faultPlan(&P::missingSynchronisations, 1), "-c"},
    {"the pattern comes right", BlockRead, faultPlan(&P::wrongPatterns, 5), "c", 0, realUnitMs},
    {"block read: no confirmation", BlockRead, faultPlan(&P::missingConfirmations), "0000", 130},
    {"block read: silence", BlockRead, silentAfter(2), "2222", 130},
    {"block read: silence once", BlockRead, silentAfter(5, 1), "5c"},
    {"block read: byte lost", BlockRead, faultPlan(&P::lostAnswerByte, 7), "c", 0, realUnitMs},
    {"nine confirmations", BlockRead, faultPlan(&P::wrongConfirmations, 9), "c", 0, realUnitMs},
    {"ten", BlockRead, faultPlan(&P::wrongConfirmations, 10), "0", 130, realUnitMs, once},
    {"record read: lost bytes", RecordRead, faultPlan(&P::shortBlocks), "0000", 130},
    {"record read: silence once", RecordRead, silentAfter(3, 1), "3c"},
    {"word read: bytes lost once", WordRead, faultPlan(&P::shortBlocks, 1), "-c"},
    {"block write: silence once", BlockWrite, silentAfter(4, 1), "4c"},
    {"block write: byte lost", BlockWrite, faultPlan(&P::lostAnswerByte, 7), "c", 0, realUnitMs},
    {"ten wrong echoes", BlockWrite, faultPlan(&P::wrongBlockEchoes, 10), "0c", 0, realUnitMs},
    {"word write: wrong echo", WordWrite, faultPlan(&P::wrongBlockEchoes), "----", 230},
    {"fast, heard", BlockRead, faultPlan(&P::ignoredAddressings, 3), "xc", 0, 70, fast},
    {"once and empty, block read", BlockRead, mute, "1", 0, 70, once | empty},
    {"empty, record read", RecordRead, mute, "1111", 0, 70, empty},
    {"once and fast change no record read", RecordRead, mute, "1111", 130, 70, once | fast},
    {"empty changes no word read", WordRead, deaf, "xxxx", 110, 70, empty},
    {"once changes no block write", BlockWrite, mute, "1111", 230, 70, once},
};

/** Gives the exchange of a row with an instrument of its own, and keeps what came of it. */
class FaultTrial
{
public:
    FaultTrial(InstrumentBench &bench, const FaultRow &row)
        : row(row)
        , openWatch(pluggedIn(bench, row))
        , bench(bench)
        , device((port.setLinkTiming(timing(row)), port.addDev(row.name)))
        , before(block())
        , journal(port, device)
    {
    }

    /** Holds the stream, lets the fault begin and queues the exchange. */
    void start()
    {
        // an instrument that streams may need one more addressing, which would spoil the count
        bench.host.setStreaming(row.name, false);
        bench.host.setFaults(row.name, row.faults);
        bench.host.clearExchanges(row.name);
        journal.clear();
        const auto mode = noxQueryMode(row.mode);
        if (row.exchange == RecordRead)
            port.sendRecQuery(device, address(row), 32768, true, mode);
        else if (row.exchange == WordRead)
            port.sendWordQuery(device, address(row), true, mode);
        else if (row.exchange == BlockRead)
            port.sendDevQuery(device, address(row), quint16(before.size()), true, mode);
        else if (row.exchange == BlockWrite)
            port.sendDevData(device, payload, address(row), true, mode);
        else
            port.sendDevWord(device, &payload, address(row), true, mode);
    }

    bool isStreaming() const { return journal.measurements.size() >= 8; }
    /** Lets the stream go on after the result; whether it flows again. */
    bool isOver()
    {
        if (!hadResult && !journal.linesOf("(reply|written|query error|write error)").isEmpty()) {
            hadResult = true;
            bench.host.setStreaming(row.name, true);
        }
        return journal.measurements.size() >= 12;
    }

    /** What is to be fired, in order. */
    QStringList expectedLines() const
    {
        const bool records = row.exchange == RecordRead;
        const int complete = records ? 19 : 18; // a start, and two marks with eight channels each
        const QString busy = progress(-1, 0, address(row));
        QStringList lines;
        for (const char attempt : row.attempts) {
            const bool failsAtOnce = attempt == 'x' || attempt == '-';
            const int units = isdigit(attempt) ? attempt - '0' : failsAtOnce ? -1 : complete;
            if (!isWord(row)) // an exchange of one word has nothing to show but its end
                lines << busy;
            for (int unit = 0; !isWord(row) && unit <= units; ++unit)
                lines << (records ? progress(8 * unit, 32768, 5)
                                  : progress(4 * unit, 72, address(row)));
            lines << busy;
        }
        return lines + endLines();
    }

    /** What the instrument found wrong with number and times of the address bytes; else empty. */
    QString scheduleFault() const
    {
        QVector<qint64> addressedMs;
        const auto events = bench.host.exchanges(row.name);
        for (const ExchangeEvent &event : events)
            if (event.kind == ExchangeEvent::AddressReceived && event.address == address(row))
                addressedMs << event.atMs;
        int expected = 0;
        for (int i = 0; i < row.attempts.size(); ++i) {
            const int wait = isFast() ? 0 : i == 2 ? 2 * attemptDelayMs : attemptDelayMs;
            if (i > 0 && expected < addressedMs.size() &&
                addressedMs.at(expected) - addressedMs.at(expected - 1) < startBaseMs + wait)
                return QString("attempt %1 came too early").arg(i + 1);
            expected += row.attempts.at(i) == 'x' || row.attempts.at(i) == 'C' ? 3 : 1;
        }
        return addressedMs.size() == expected
                   ? QString()
                   : QString("%1 addressings for %2").arg(addressedMs.size()).arg(expected);
    }

    int expectedReopenings() const { return !isFast() && row.attempts.size() > 2 ? 1 : 0; }
    /** What the instrument is to hold in the end. */
    QByteArray expectedBlock() const
    {
        const bool changed = !isRead() && row.code == 0;
        return changed ? QByteArray(before).replace(0, payload.size(), payload) : before;
    }

    /** What it holds where the exchange reads or writes. */
    QByteArray block() const
    {
        return bench.host.block(row.name, row.exchange == RecordRead ? 5 : 3);
    }
    /** What a read is to deliver. */
    QByteArray expectedReply() const
    {
        return isEmpty() ? QByteArray() : isWord(row) ? before.left(4) : before;
    }

    const FaultRow row;
    OpenWatch openWatch;

private:
    /** Plugs the instrument in and tells its device. */
    static QString pluggedIn(InstrumentBench &bench, const FaultRow &row)
    {
        SimulatedInstrumentOptions options = bench.steadyInstrument();
        // longer than the host is silent within an attempt, and over before its next one
        const bool hostFallsSilent = row.exchange == BlockRead && row.faults.silentAfterBlocks >= 0;
        options.dialogue.timeoutMs = row.unitTimeoutMs * (hostFallsSilent ? 12 : 4);
        if (isWord(row))
            options.dialogue.wordAddresses = {address(row)};
        bench.add(row.name, options);
        // like the beginning of an extended identification, but for one byte
        bench.host.write(row.name, 1, QByteArray::fromHex(row.code == 0 ? "0faa0008" : "0f000009"));
        return bench.host.devicePath(row.name);
    }

    static LinkTiming timing(const FaultRow &row)
    {
        LinkTiming timing = shortTiming();
        timing.initDelay = initDelayMs;
        timing.attemptDelay = attemptDelayMs;
        timing.startBase = startBaseMs;
        timing.unitTimeout = quint16(row.unitTimeoutMs);
        timing.confirmTimeout = quint16(row.unitTimeoutMs / 2);
        return timing;
    }

    QString progress(int done, int total, int shown) const
    {
        return QString("progress %1/%2 @%3").arg(done).arg(total).arg(shown);
    }

    QStringList endLines() const
    {
        const int at = address(row);
        const QString failed = progress(0, 0, at);
        const QString reply = QString("reply @%1 %2 bytes").arg(at).arg(expectedReply().size());
        const QString code = QString("error %1 Unknown error").arg(row.code);
        if (isEmpty())
            return {failed, reply, "queries done", "all queries done"};
        if (row.code == 0 && isRead())
            return {reply, "queries done", "all queries done", progress(0, 0, 255)};
        if (row.code == 0)
            return {"written @1", "writes done", "all writes done", progress(0, 0, 255)};
        if (isRead())
            return {failed, QString("query error %1 @%2").arg(row.code).arg(at), code,
                    "all queries done", "queries failed"};
        return {failed, QString("write error %1 @%2").arg(row.code).arg(at), code,
                "all writes done"};
    }

    bool isRead() const { return row.exchange < BlockWrite; }
    bool isFast() const { return row.exchange == BlockRead && (row.mode & noxQueryModeFast); }
    bool isEmpty() const { return row.code == 0 && tolower(row.attempts.back()) != 'c'; }
    static bool isWord(const FaultRow &row)
    {
        return row.exchange == WordRead || row.exchange == WordWrite;
    }
    static quint8 address(const FaultRow &row)
    {
        return row.exchange == RecordRead ? 5 : row.exchange < BlockWrite ? 3 : 1;
    }

    InstrumentBench &bench;
    NOXSerialPort port;
    int device;
    QByteArray before; ///< the block before the exchange
    QByteArray payload = isWord(row) ? "abcd" : QByteArray("abcdefghijkl").repeated(6);
    bool hadResult = false;

public:
    LinkJournal journal;
};

} // namespace

/**
 * Faults in every stage of every exchange, seen from both ends: what the multiplexer fires and what
 * the instrument receives. Nearly all of a trial is waiting, so all of them run at once.
 */
class TestLinkFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        std::vector<size_t> due(faultRows.size());
        std::iota(due.begin(), due.end(), 0);
        trials.resize(due.size());
        LineWatch line;
        // what was seen while the system held bytes up tells nothing; else it is the last word
        for (int i = 0; i <= mostRepetitions && !due.empty(); ++i) {
            for (size_t one : due)
                trials.at(one) = std::make_unique<FaultTrial>(bench, faultRows.at(one));
            line.takeSlowestMs();
            run(due);
            if (line.takeSlowestMs() < heldUpMs)
                return;
            const auto isAsExpected = [this](size_t one) {
                return trials.at(one)->journal.lines == trials.at(one)->expectedLines() &&
                       trials.at(one)->scheduleFault().isEmpty();
            };
            due.erase(std::remove_if(due.begin(), due.end(), isAsExpected), due.end());
        }
    }

    void bothEndsSeeWhatTheyAreTo_data()
    {
        QTest::addColumn<int>("index");
        for (size_t i = 0; i < faultRows.size(); ++i)
            QTest::newRow(faultRows.at(i).name) << int(i);
    }

    void bothEndsSeeWhatTheyAreTo()
    {
        QFETCH(int, index);
        FaultTrial &trial = *trials.at(size_t(index));
        QCOMPARE(trial.journal.lines.join('\n'), trial.expectedLines().join('\n'));
        QCOMPARE(trial.scheduleFault(), QString());
        QCOMPARE(trial.openWatch.opens(), 1 + trial.expectedReopenings());
        QCOMPARE(trial.journal.foreignMeasurements(), QVector<ChannelValue>());
        QCOMPARE(trial.block(), trial.expectedBlock());
        for (const QByteArray &reply : trial.journal.replies)
            QCOMPARE(reply, trial.expectedReply());
        if (trial.row.faults.wrongBlockEchoes != 10)
            return;
        // the instrument hears 1 to 10, and the failure of the tenth ends the attempt
        QByteArray refusals;
        const auto events = bench.host.exchanges(trial.row.name);
        for (const ExchangeEvent &event : events)
            if (event.kind == ExchangeEvent::WriteBlockRefused)
                refusals += char(event.value);
        QCOMPARE(refusals.toHex(), QByteArray("0102030405060708090a"));
        QCOMPARE(bench.blocksAt(trial.row.name, {ExchangeEvent::Aborted}).size(), 1);
    }

private:
    /** Runs the trials of these numbers side by side. */
    void run(const std::vector<size_t> &due)
    {
        const auto all = [&](auto isTrue) { // each of them is asked
            return std::count_if(due.begin(), due.end(), [&](size_t one) {
                       return isTrue(*trials.at(one));
                   }) == std::ptrdiff_t(due.size());
        };
        QTRY_VERIFY_WITH_TIMEOUT(all([](const FaultTrial &one) { return one.isStreaming(); }),
                                 30000);
        for (size_t one : due)
            trials.at(one)->start();
        QTRY_VERIFY_WITH_TIMEOUT(all([](FaultTrial &one) { return one.isOver(); }), 60000);
    }

    InstrumentBench bench;
    std::vector<std::unique_ptr<FaultTrial>> trials;
};

QTEST_GUILESS_MAIN(TestLinkFaults)
#include "tst_linkfaults.moc"
