#include "simulator/instrumentdialogue.h"

#include "simulator/instrumentmemory.h"

#include <utility>

namespace
{

constexpr quint8 goAhead = 0x0F; // confirms an address, an echo, a block
constexpr quint8 hostGaveUp = 0xAA;
constexpr quint8 wrongConfirmation = 0xF0;
constexpr quint8 logAddress = 5;
constexpr int unitSize = 4;
constexpr int recordSize = 8;
constexpr int badBlocksAllowed = 10;

// A host reads for 500 ms, then echoes what came; after an echo it waits 250 ms for the
// confirmation, clears its buffers and reads for 500 ms again. A repetition must fall into that
// second reading, or the clearing eats it.
constexpr int resendAfterEchoMs = 350;
constexpr int resendAfterSilenceMs = 750;

// A host that refuses an echo sends one byte and pauses 50 ms before the block itself.
constexpr int tornBlockMs = 30;

// A host that misses a confirmation while it writes waits for it this long before it goes on.
constexpr int missedConfirmationMs = 2000;

QByteArray pattern()
{
    return QByteArrayLiteral("\xAA\x0F\xFF\x00");
}

QByteArray wordCommit()
{
    return QByteArrayLiteral("\x0F\xAA\x0F\xAA");
}

/** `bytes` with one bit of the first byte turned. */
QByteArray spoilt(QByteArray bytes)
{
    bytes[0] = char(bytes.at(0) ^ 0x40);
    return bytes;
}

} // namespace

InstrumentDialogue::InstrumentDialogue(InstrumentMemory &memory, DialogueSettings settings)
    : m_memory(memory)
    , m_settings(std::move(settings))
{
}

QByteArray InstrumentDialogue::receive(const QByteArray &bytes, qint64 nowMs)
{
    m_nowMs = nowMs;
    m_heardMs = nowMs;
    for (const char byte : bytes)
        if (!m_unplug)
            receiveByte(quint8(byte));
    return std::exchange(m_outbox, {});
}

void InstrumentDialogue::receiveByte(quint8 byte)
{
    switch (m_state) {
    case State::Idle:
        return receiveAddress(byte);
    case State::Addressed:
        // a host that found more than one byte in the echo sends its address once more
        return byte == goAhead ? confirmAddress() : receiveAddress(byte);
    case State::Synchronising:
        note(ExchangeEvent::CommandReceived, byte);
        return beginTransfer();
    case State::AwaitingEcho:
        return receiveEcho(byte);
    case State::ReceivingBlock:
        return receiveBlockByte(byte);
    case State::AwaitingVerdict:
        return takesWords() ? receiveWordVerdict(byte) : receiveVerdict(byte);
    case State::AwaitingResend:
    case State::Mute:
        return;
    }
}

QByteArray InstrumentDialogue::elapse(qint64 nowMs)
{
    m_nowMs = nowMs;
    if (m_state == State::Idle)
        return {};
    if (nowMs >= silenceDeadlineMs())
        finish(ExchangeEvent::TimedOut);
    else if (m_state == State::ReceivingBlock && !m_inbox.isEmpty() && nowMs >= m_dueMs)
        dropTornBlock();
    else if (m_state == State::Synchronising && nowMs >= m_dueMs)
        sendPattern();
    else if ((m_state == State::AwaitingEcho || m_state == State::AwaitingResend) &&
             nowMs >= m_dueMs)
        resendBlock();
    return std::exchange(m_outbox, {});
}

qint64 InstrumentDialogue::nextDeadlineMs() const
{
    switch (m_state) {
    case State::Idle:
        return -1;
    case State::Synchronising:
    case State::AwaitingEcho:
    case State::AwaitingResend:
        return qMin(m_dueMs, silenceDeadlineMs());
    case State::ReceivingBlock:
        return m_inbox.isEmpty() ? silenceDeadlineMs() : qMin(m_dueMs, silenceDeadlineMs());
    default:
        return silenceDeadlineMs();
    }
}

qint64 InstrumentDialogue::silenceDeadlineMs() const
{
    return m_heardMs + m_settings.timeoutMs + m_extraPatienceMs;
}

bool InstrumentDialogue::takeUnplug()
{
    return std::exchange(m_unplug, false);
}

QVector<ExchangeEvent> InstrumentDialogue::takeEvents()
{
    return std::exchange(m_events, {});
}

// Addressing and synchronisation

void InstrumentDialogue::receiveAddress(quint8 address)
{
    const bool known = m_memory.isReadable(address) || m_memory.isWritable(address);
    if (!known && m_state != State::Idle)
        return;
    m_address = address;
    note(ExchangeEvent::AddressReceived, address);
    if (!known || takeFault(m_faults.ignoredAddressings))
        return note(ExchangeEvent::AddressIgnored, address);

    m_state = State::Addressed;
    m_extraPatienceMs = 0;
    const QByteArray echo(1, char(address));
    m_outbox += takeFault(m_faults.wrongAddressEchoes) ? spoilt(echo) : echo;
    if (takeFault(m_faults.extraEchoBytes))
        m_outbox += spoilt(echo);
    note(ExchangeEvent::EchoSent);
}

void InstrumentDialogue::confirmAddress()
{
    m_data.clear();
    m_inbox.clear();
    m_position = m_blocks = m_badBlocks = m_answerBytes = m_patternsSent = 0;
    if (takesWords())
        return beginWord();
    if (takeFault(m_faults.missingSynchronisations)) {
        m_state = State::Mute;
        return;
    }
    m_state = State::Synchronising;
    // wrong patterns keep the dialogue alive for as long as a host tries (20 more readings)
    const int patternsTried = qMin(m_faults.wrongPatterns, 20);
    const int triedMs = m_settings.patternPeriodMs * (patternsTried + 3);
    m_extraPatienceMs = patternsTried > 0 ? qMax(0, triedMs - m_settings.timeoutMs) : 0;
    sendPattern();
}

void InstrumentDialogue::sendPattern()
{
    m_outbox += takeFault(m_faults.wrongPatterns) ? spoilt(pattern()) : pattern();
    m_dueMs = m_nowMs + m_settings.patternPeriodMs;
    note(ExchangeEvent::SyncSent);
}

void InstrumentDialogue::beginTransfer()
{
    m_extraPatienceMs = 0;
    if (m_memory.isWritable(m_address)) {
        m_state = State::ReceivingBlock;
    } else if (m_address == logAddress) {
        sendRecords();
    } else {
        m_data = m_memory.block(m_address);
        sendBlock();
    }
}

void InstrumentDialogue::beginWord()
{
    if (m_memory.isWritable(m_address)) {
        m_state = State::ReceivingBlock;
    } else if (takeFault(m_faults.shortBlocks)) {
        m_state = State::Mute;
        answer(m_memory.block(m_address).left(unitSize - 2));
    } else {
        answer(m_memory.block(m_address).left(unitSize));
        finish(ExchangeEvent::ReadCompleted);
    }
}

// Reading

void InstrumentDialogue::sendRecords()
{
    const QByteArray records =
        m_memory.block(logAddress) + QByteArray(recordSize, char(0xFF)); // the end record
    for (int at = 0; at < records.size(); at += recordSize, ++m_blocks) {
        if (fallsSilent())
            return;
        if (takeFault(m_faults.shortBlocks)) {
            m_state = State::Mute;
            return answer(records.mid(at, recordSize - 2));
        }
        answer(records.mid(at, recordSize));
    }
    finish(ExchangeEvent::ReadCompleted);
}

void InstrumentDialogue::sendBlock()
{
    if (fallsSilent())
        return;
    const int size = takeFault(m_faults.shortBlocks) ? unitSize - 2 : unitSize;
    m_state = State::AwaitingEcho;
    m_inbox.clear();
    m_dueMs = m_nowMs + resendAfterSilenceMs;
    answer(m_data.mid(m_position, size));
}

void InstrumentDialogue::receiveEcho(quint8 byte)
{
    m_inbox += char(byte);
    m_dueMs = m_nowMs + resendAfterEchoMs;
    if (m_inbox.size() < unitSize)
        return;
    if (m_inbox == m_data.mid(m_position, unitSize))
        acknowledgeBlock();
    else
        awaitResend();
}

void InstrumentDialogue::acknowledgeBlock()
{
    if (takeFault(m_faults.missingConfirmations))
        return awaitResend();
    if (takeFault(m_faults.wrongConfirmations)) {
        answer(QByteArray(1, char(wrongConfirmation)));
        return awaitResend();
    }
    answer(QByteArray(1, char(goAhead)));
    note(ExchangeEvent::BlockAcknowledged);
    m_position += unitSize;
    ++m_blocks;
    m_badBlocks = 0;
    if (m_position < m_data.size())
        sendBlock();
    else
        finish(ExchangeEvent::ReadCompleted);
}

void InstrumentDialogue::awaitResend()
{
    m_state = State::AwaitingResend;
    m_dueMs = m_nowMs + resendAfterEchoMs;
}

void InstrumentDialogue::resendBlock()
{
    if (++m_badBlocks >= badBlocksAllowed)
        return finish(ExchangeEvent::Aborted);
    note(ExchangeEvent::BlockRepeated);
    sendBlock();
}

// Writing

void InstrumentDialogue::receiveBlockByte(quint8 byte)
{
    m_inbox += char(byte);
    m_dueMs = m_nowMs + tornBlockMs;
    if (m_inbox.size() < unitSize)
        return;
    note(ExchangeEvent::WriteBlockReceived);
    if (fallsSilent())
        return;
    m_state = State::AwaitingVerdict;
    answer(takeFault(m_faults.wrongBlockEchoes) ? spoilt(m_inbox) : m_inbox);
    m_data.resize(m_position);
    m_data += std::exchange(m_inbox, {});
}

void InstrumentDialogue::dropTornBlock()
{
    const bool gaveUp = m_inbox.at(0) == char(hostGaveUp) && m_inbox.size() == 1;
    m_inbox.clear();
    if (gaveUp)
        finish(ExchangeEvent::Aborted);
}

void InstrumentDialogue::receiveVerdict(quint8 byte)
{
    if (byte == goAhead)
        return acceptWrittenBlock();
    if (byte == hostGaveUp)
        return finish(ExchangeEvent::Aborted);
    note(ExchangeEvent::WriteBlockRefused, byte);
    m_state = State::ReceivingBlock;
}

void InstrumentDialogue::acceptWrittenBlock()
{
    m_position = m_data.size();
    ++m_blocks;
    m_extraPatienceMs = 0;
    if (takeFault(m_faults.missingConfirmations))
        m_extraPatienceMs = missedConfirmationMs;
    else if (takeFault(m_faults.wrongConfirmations))
        answer(QByteArray(1, char(wrongConfirmation)));
    else
        answer(QByteArray(1, char(goAhead)));
    m_state = State::ReceivingBlock;
    if (m_position >= m_memory.writeLength(m_address))
        commitWrite();
}

void InstrumentDialogue::receiveWordVerdict(quint8 byte)
{
    m_inbox += char(byte);
    if (m_inbox.size() < unitSize)
        return;
    if (m_inbox == wordCommit())
        commitWrite();
    else
        finish(ExchangeEvent::Aborted);
}

void InstrumentDialogue::commitWrite()
{
    if (m_unplug)
        return;
    m_memory.write(m_address, m_data);
    finish(ExchangeEvent::WriteCompleted);
}

// Common to all

void InstrumentDialogue::answer(const QByteArray &bytes)
{
    for (const char byte : bytes) {
        if (m_unplug)
            return;
        ++m_answerBytes;
        if (strikesNow(m_faults.garbledAnswerByte))
            m_outbox += spoilt(QByteArray(1, byte));
        else if (!strikesNow(m_faults.lostAnswerByte))
            m_outbox += byte;
        if (strikesNow(m_faults.unplugAfterAnswerBytes)) {
            m_unplug = true;
            note(ExchangeEvent::Unplugged);
        }
    }
}

bool InstrumentDialogue::strikesNow(int &answerByte)
{
    if (m_answerBytes != answerByte)
        return false;
    answerByte = 0;
    return true;
}

bool InstrumentDialogue::fallsSilent()
{
    if (m_blocks != m_faults.silentAfterBlocks || !takeFault(m_faults.silentDialogues))
        return false;
    m_state = State::Mute;
    return true;
}

void InstrumentDialogue::finish(ExchangeEvent::Kind outcome)
{
    if (m_unplug)
        return;
    m_state = State::Idle;
    note(outcome);
}

void InstrumentDialogue::note(ExchangeEvent::Kind kind, quint8 value)
{
    m_events.append({m_nowMs, kind, m_address, value});
}
