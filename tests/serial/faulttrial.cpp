#include "faulttrial.h"

namespace
{

constexpr int initDelayMs = 500;
constexpr int attemptDelayMs = 1000;
constexpr int startBaseMs = 100;
constexpr int measurementsAfter = 12;

/**
 * How long the instrument waits for a silent host: longer than the host is silent within an
 * attempt, and over before its next one.
 */
int patienceMs(const FaultRow &row)
{
    const bool hostFallsSilent =
        row.exchange == Exchange::BlockRead && row.faults.silentAfterBlocks >= 0;
    return row.unitTimeoutMs * (hostFallsSilent ? 12 : 4);
}

/** Plugs the instrument in and tells its device. */
QString pluggedIn(InstrumentBench &bench, const QString &portName,
                  const SimulatedInstrumentOptions &options)
{
    return bench.host.add(options, portName);
}

QString nextPortName()
{
    static int count = 0;
    return QString("trial%1").arg(count++);
}

} // namespace

FaultTrial::FaultTrial(InstrumentBench &bench, const FaultRow &row)
    : row(row)
    , portName(nextPortName())
    , bench(bench)
    , openWatch(pluggedIn(bench, portName, instrument()))
    , devIndex((port.setLinkTiming(timing(row)), port.addDev(portName)))
    , before(instrumentBlock())
    , journal(port, devIndex)
{
    for (int i = 0; i < before.size(); ++i)
        payload += char(i + 1);
    payload.resize(isWord() ? 4 : before.size());
}

SimulatedInstrumentOptions FaultTrial::instrument() const
{
    SimulatedInstrumentOptions options = bench.steadyInstrument();
    options.dialogue.timeoutMs = patienceMs(row);
    if (isWord())
        options.dialogue.wordAddresses = {address()};
    return options;
}

LinkTiming FaultTrial::timing(const FaultRow &row)
{
    LinkTiming timing = shortTiming();
    timing.initDelay = initDelayMs;
    timing.attemptDelay = attemptDelayMs;
    timing.startBase = startBaseMs;
    timing.unitTimeout = quint16(row.unitTimeoutMs);
    timing.confirmTimeout = quint16(row.unitTimeoutMs / 2);
    return timing;
}

void FaultTrial::start()
{
    // an instrument that streams may need one more addressing, which would spoil the count
    bench.host.setStreaming(portName, false);
    bench.host.setFaults(portName, row.faults);
    bench.host.clearExchanges(portName);
    journal.clear();
    const auto size = quint16(itemSize());
    switch (row.exchange) {
    case Exchange::BlockRead:
        return port.sendDevQuery(devIndex, address(), size, true, row.mode);
    case Exchange::RecordRead:
        return port.sendRecQuery(devIndex, address(), size, true, row.mode);
    case Exchange::WordRead:
        return port.sendWordQuery(devIndex, address(), true, row.mode);
    case Exchange::BlockWrite:
        return port.sendDevData(devIndex, payload, address(), true, row.mode);
    case Exchange::WordWrite:
        return port.sendDevWord(devIndex, payload, address(), true, row.mode);
    }
}

bool FaultTrial::isOver()
{
    if (!hadResult && journal.hasResult()) {
        hadResult = true;
        bench.host.setStreaming(portName, true);
    }
    return journal.measurements.size() >= measurementsAfter;
}

QVector<qint64> FaultTrial::addressedMs()
{
    QVector<qint64> times;
    const auto events = bench.host.exchanges(portName);
    for (const ExchangeEvent &event : events)
        if (event.kind == ExchangeEvent::AddressReceived && event.address == address())
            times << event.atMs;
    return times;
}

bool FaultTrial::isAsExpected()
{
    return journal.lines == expectedLines() && scheduleFault().isEmpty();
}

QString FaultTrial::scheduleFault()
{
    const QVector<qint64> addressed = addressedMs();
    int before = 0;
    for (int i = 0; i + 1 < row.attempts.size(); ++i) {
        before += row.attempts.at(i).addressings;
        if (before >= addressed.size())
            return QString("attempt %1 is missing").arg(i + 2);
        const qint64 pause = addressed.at(before) - addressed.at(before - 1);
        if (pause < leastPauseMs(i))
            return QString("attempt %1 came after %2 ms").arg(i + 2).arg(pause);
    }
    const int expected = before + row.attempts.last().addressings;
    if (addressed.size() != expected)
        return QString("%1 addressings for %2").arg(addressed.size()).arg(expected);
    return {};
}

QStringList FaultTrial::expectedLines() const
{
    QStringList lines;
    for (const Attempt &attempt : row.attempts)
        lines += attemptLines(attempt);
    return lines + endLines();
}

QStringList FaultTrial::attemptLines(const Attempt &attempt) const
{
    const QString busy = QString("progress -1/0 @%1").arg(address());
    // an exchange of one word has nothing to show but its end
    QStringList lines = isWord() ? QStringList() : QStringList{busy};
    for (int unit = 0; !isWord() && unit <= attempt.units; ++unit)
        lines
            << QString("progress %1/%2 @%3").arg(unit * unitSize()).arg(itemSize()).arg(address());
    return lines << busy;
}

QStringList FaultTrial::endLines() const
{
    const QString failed = QString("progress 0/0 @%1").arg(address());
    const QString finished = "progress 0/0 @255";
    const QString reply = "reply @%1 %2 bytes";
    if (row.emptyReply)
        return {failed, reply.arg(address()).arg(0), "queries done", "all queries done"};
    if (row.code == 0 && isRead()) {
        const int length = isWord() ? 4 : before.size();
        return {reply.arg(address()).arg(length), "queries done", "all queries done", finished};
    }
    if (row.code == 0)
        return {QString("written @%1").arg(address()), "writes done", "all writes done", finished};

    const QString error = QString("error %1 Unknown error").arg(row.code);
    if (isRead())
        return {failed, QString("query error %1 @%2").arg(row.code).arg(address()), error,
                "all queries done", "queries failed"};
    return {failed, QString("write error %1 @%2").arg(row.code).arg(address()), error,
            "all writes done"};
}

int FaultTrial::leastPauseMs(int attempt) const
{
    if (row.exchange == Exchange::BlockRead && (row.mode & noxQueryModeFast))
        return startBaseMs;
    return startBaseMs + (attempt == 1 ? 2 : 1) * attemptDelayMs;
}

int FaultTrial::expectedReopenings() const
{
    const bool fast = row.exchange == Exchange::BlockRead && (row.mode & noxQueryModeFast);
    return !fast && row.attempts.size() > 2 ? 1 : 0;
}

QByteArray FaultTrial::instrumentBlock()
{
    return bench.host.block(portName, row.exchange == Exchange::RecordRead ? 5 : 3);
}

QByteArray FaultTrial::expectedBlock() const
{
    const bool changed = !isRead() && row.code == 0;
    return changed ? QByteArray(before).replace(0, payload.size(), payload) : before;
}

QByteArray FaultTrial::expectedReply() const
{
    if (row.emptyReply)
        return {};
    return isWord() ? before.left(4) : before;
}

quint8 FaultTrial::address() const
{
    if (row.exchange == Exchange::RecordRead)
        return 5;
    return isRead() ? 3 : 1; // the reference data
}

int FaultTrial::itemSize() const
{
    return row.exchange == Exchange::RecordRead ? 32768 : before.size();
}

int FaultTrial::unitSize() const
{
    return row.exchange == Exchange::RecordRead ? 8 : 4;
}

bool FaultTrial::isRead() const
{
    return row.exchange != Exchange::BlockWrite && row.exchange != Exchange::WordWrite;
}

bool FaultTrial::isWord() const
{
    return row.exchange == Exchange::WordRead || row.exchange == Exchange::WordWrite;
}
