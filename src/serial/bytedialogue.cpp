#include "serial/bytedialogue.h"

#include <QSerialPort>
#include <QThread>

#include <algorithm>

namespace
{

constexpr int addressAttempts = 3;
constexpr int synchronisationReads = 21;
constexpr int mostBadUnits = 10;
constexpr int unitLength = 4;
constexpr int recordLength = 8;
constexpr int extendedIdentificationRest = 16;

constexpr char confirmation = 0x0F;
constexpr char surrender = char(0xAA);
constexpr char endOfRecords = char(0xFF);

constexpr int pollMs = 5; ///< the longest wait that does not look at the stop flag
constexpr int bitsPerByte = 10;

const QByteArray &synchronisationPattern()
{
    static const QByteArray pattern = QByteArray::fromHex("AA0FFF00");
    return pattern;
}

const QByteArray &wordConfirmation()
{
    static const QByteArray bytes = QByteArray::fromHex("0FAA0FAA");
    return bytes;
}

/** The first block of an extended instrument's identification: 0F AA, any, 09. */
bool startsExtendedIdentification(const QByteArray &unit)
{
    return unit.at(0) == char(0x0F) && unit.at(1) == char(0xAA) && unit.at(3) == char(0x09);
}

} // namespace

bool isFatalPortError(int serialPortError)
{
    return serialPortError != QSerialPort::NoError &&
           serialPortError != QSerialPort::UnknownError &&
           serialPortError != QSerialPort::TimeoutError;
}

ByteDialogue::ByteDialogue(QSerialPort &port, const std::atomic<bool> &running,
                           const LinkTiming &timing)
    : m_port(port)
    , m_running(running)
    , m_timing(timing)
{
}

LinkResult ByteDialogue::readBlock(quint8 address, int size, char command, QByteArray *reply,
                                   const Progress &progress)
{
    if (const LinkResult result = synchronise(address); result != LinkResult::Done)
        return result;
    write(command);

    QByteArray block;
    int total = size;
    progress(0, total);
    for (int failures = 0; block.size() < total;) {
        if (failures == mostBadUnits)
            return LinkResult::TransferFailed;
        if (!goesOn())
            return LinkResult::LinkClosed;

        QByteArray unit;
        if (!readUnit(&unit)) {
            clear();
            ++failures;
            continue;
        }
        failures = 0;
        if (block.isEmpty() && startsExtendedIdentification(unit))
            total += extendedIdentificationRest;
        block.append(unit);
        progress(block.size(), total);
    }
    // a size that is no multiple of four ends inside the last unit
    *reply = block.left(total);
    return LinkResult::Done;
}

LinkResult ByteDialogue::readRecords(quint8 address, int size, char command, QByteArray *reply,
                                     const Progress &progress)
{
    if (const LinkResult result = synchronise(address); result != LinkResult::Done)
        return result;
    write(command);

    QByteArray records;
    progress(0, size);
    while (records.size() < size) {
        const QByteArray record = read(recordLength, m_timing.unitTimeout);
        if (record.size() < recordLength) {
            clearBuffers();
            return LinkResult::TransferFailed;
        }
        if (record.at(0) == endOfRecords)
            break;
        records.append(record);
        progress(records.size(), size);
    }
    *reply = records;
    return LinkResult::Done;
}

LinkResult ByteDialogue::readWord(quint8 address, QByteArray *reply)
{
    if (const LinkResult result = this->address(address); result != LinkResult::Done)
        return result;
    *reply = read(unitLength, m_timing.unitTimeout);
    return reply->size() == unitLength ? LinkResult::Done : LinkResult::TransferFailed;
}

LinkResult ByteDialogue::writeBlock(quint8 address, const QByteArray &data, char command,
                                    const Progress &progress)
{
    // half a unit can never be echoed; refused before the instrument expects anything
    if (data.size() % unitLength != 0)
        return LinkResult::TransferFailed;
    if (const LinkResult result = synchronise(address); result != LinkResult::Done)
        return result;
    write(command);
    pause(m_timing.commandPause);

    progress(0, data.size());
    int sent = 0;
    for (int failures = 0; sent < data.size();) {
        if (!goesOn())
            return LinkResult::LinkClosed;

        const QByteArray unit = data.mid(sent, unitLength);
        clearInput();
        write(unit);
        if (read(unitLength, m_timing.unitTimeout) == unit) {
            write(confirmation);
            // the instrument answers with one byte of its own choice
            read(1, m_timing.initDelay);
            failures = 0;
            sent += unitLength;
            progress(sent, data.size());
            continue;
        }
        rejectUnit(++failures);
        if (failures == mostBadUnits) {
            write(surrender);
            return LinkResult::TransferFailed;
        }
    }
    return LinkResult::Done;
}

LinkResult ByteDialogue::writeWord(quint8 address, const QByteArray &data)
{
    if (data.size() < unitLength)
        return LinkResult::TransferFailed;
    if (const LinkResult result = this->address(address); result != LinkResult::Done)
        return result;
    const QByteArray word = data.left(unitLength);
    write(word);
    if (read(unitLength, m_timing.unitTimeout) != word) {
        clearBuffers();
        return LinkResult::TransferFailed;
    }
    write(wordConfirmation());
    return LinkResult::Done;
}

bool ByteDialogue::clear()
{
    // clearing a port that is closed would raise an error of its own
    if (!m_port.isOpen())
        return true;
    if (m_port.bytesToWrite() > 0)
        m_port.flush();
    letBytesLeave();
    // what still stands in the driver counts as arrived
    m_port.waitForReadyRead(0);
    const bool wasEmpty = m_port.bytesAvailable() == 0;
    char discarded = 0;
    while (m_port.bytesAvailable() > 0 && m_port.read(&discarded, 1) == 1) {
    }
    clearBuffers();
    return wasEmpty;
}

/** Sends the block's address until the instrument echoes it alone, then confirms. */
LinkResult ByteDialogue::address(quint8 address)
{
    if (!goesOn())
        return LinkResult::LinkClosed;
    for (int attempt = 0; attempt < addressAttempts; ++attempt) {
        clear();
        write(char(address));
        // a second byte beside the echo is a stream that has not stopped yet
        waitForBytes(1, m_timing.initDelay);
        if (m_port.bytesAvailable() == 1 && read(1, 0) == QByteArray(1, char(address)) &&
            goesOn()) {
            write(confirmation);
            return LinkResult::Done;
        }
        if (!goesOn())
            break;
    }
    return LinkResult::NotAddressed;
}

LinkResult ByteDialogue::synchronise(quint8 address)
{
    if (const LinkResult result = this->address(address); result != LinkResult::Done)
        return result;
    waitForBytes(1, m_timing.initDelay);
    QByteArray pattern = read(unitLength, m_timing.initDelay);
    for (int reads = 1; pattern != synchronisationPattern(); ++reads) {
        if (reads == synchronisationReads)
            return LinkResult::NotSynchronised;
        if (!goesOn())
            return LinkResult::LinkClosed;
        clear();
        pattern = read(unitLength, m_timing.unitTimeout);
    }
    return LinkResult::Done;
}

/** Reads one unit, returns it to the instrument and waits for the confirmation. */
bool ByteDialogue::readUnit(QByteArray *unit)
{
    *unit = read(unitLength, m_timing.unitTimeout);
    write(*unit);
    return unit->size() == unitLength && confirmed();
}

bool ByteDialogue::confirmed()
{
    return read(1, m_timing.confirmTimeout) == QByteArray(1, confirmation);
}

/** Tells the instrument how often in a row its echo was wrong. */
void ByteDialogue::rejectUnit(int failures)
{
    clearBuffers();
    write(char(failures));
    pause(m_timing.commandPause);
}

/** False once the worker is to stop or the port is lost, whatever its signals could say. */
bool ByteDialogue::goesOn() const
{
    return m_running && m_port.isOpen() && !isFatalPortError(m_port.error());
}

void ByteDialogue::write(const QByteArray &bytes)
{
    // waiting for nothing to be written would take the whole delay
    if (bytes.isEmpty() || !goesOn())
        return;
    m_port.write(bytes);
    QElapsedTimer waited;
    waited.start();
    while (m_port.bytesToWrite() > 0 && goesOn() && waited.elapsed() < m_timing.initDelay)
        m_port.waitForBytesWritten(pollMs);
    m_sinceWrite.start();
    m_lastWriteLength = bytes.size();
}

QByteArray ByteDialogue::read(int count, int timeoutMs)
{
    waitForBytes(count, timeoutMs);
    return m_port.isOpen() ? m_port.read(count) : QByteArray();
}

void ByteDialogue::waitForBytes(int count, int timeoutMs)
{
    // bounded by the clock: on a lost port each wait returns at once
    QElapsedTimer waited;
    waited.start();
    while (m_port.bytesAvailable() < count && goesOn()) {
        const qint64 left = timeoutMs - waited.elapsed();
        if (left <= 0)
            return;
        m_port.waitForReadyRead(int(std::min<qint64>(left, pollMs)));
    }
}

void ByteDialogue::clearInput()
{
    if (m_port.isOpen())
        m_port.clear(QSerialPort::Input);
}

void ByteDialogue::clearBuffers()
{
    if (!m_port.isOpen())
        return;
    letBytesLeave();
    // Output that has left needs no clearing, and on a pseudo-terminal it would be taken back from
    // a peer that has not read it yet.
    m_port.clear(m_port.bytesToWrite() > 0 ? QSerialPort::AllDirections : QSerialPort::Input);
}

void ByteDialogue::pause(int milliseconds)
{
    QElapsedTimer waited;
    waited.start();
    while (goesOn()) {
        const qint64 left = milliseconds - waited.elapsed();
        if (left <= 0)
            return;
        QThread::msleep(ulong(std::min<qint64>(left, pollMs)));
    }
}

/** Clearing the output takes back bytes that still stand in the driver: wait until they are out. */
void ByteDialogue::letBytesLeave()
{
    if (m_lastWriteLength == 0)
        return;
    const qint64 onTheLineMs =
        qint64(m_lastWriteLength) * bitsPerByte * 1000 / std::max(1, m_port.baudRate());
    const qint64 left = onTheLineMs + m_timing.leavingSlack - m_sinceWrite.elapsed();
    if (left > 0)
        QThread::msleep(ulong(left));
    m_lastWriteLength = 0;
}
