#pragma once

#include "simulator/exchangeevent.h"
#include "simulator/faultplan.h"

#include <QByteArray>
#include <QSet>
#include <QVector>

class InstrumentMemory;

/** How an instrument conducts its dialogues. */
struct DialogueSettings {
    int timeoutMs = 1500;       ///< silence of the host after which a dialogue is given up
    int patternPeriodMs = 100;  ///< between two patterns of synchronisation
    QSet<quint8> wordAddresses; ///< addresses with the word dialogue instead of the block dialogue
};

/**
 * The instrument's side of the byte dialogue: bytes of the host in, bytes for the host out.
 *
 * It neither waits nor looks at a clock: the caller passes the time (monotonic, ms) with each call
 * and calls `elapse` when `nextDeadlineMs` has come.
 */
class InstrumentDialogue
{
public:
    /** `memory` must outlive the dialogue. */
    explicit InstrumentDialogue(InstrumentMemory &memory, DialogueSettings settings = {});

    /** Takes a fresh plan; strikes of the old one are forgotten. */
    void setFaults(const FaultPlan &faults) { m_faults = faults; }
    /** Takes bytes of the host; returns the bytes to send. */
    QByteArray receive(const QByteArray &bytes, qint64 nowMs);
    /** Does what is due by now (repetitions, time-outs); returns the bytes to send. */
    QByteArray elapse(qint64 nowMs);
    /** When `elapse` is next due; -1 while no dialogue is going on. */
    qint64 nextDeadlineMs() const;
    /** Forgets a dialogue that is going on (nobody listens any more). */
    void reset() { m_state = State::Idle; }

    /** True from an accepted address until the end of its dialogue: the stream is paused. */
    bool isBusy() const { return m_state != State::Idle; }
    /** True once the fault plan has pulled the plug; the call resets it. */
    bool takeUnplug();
    /** The steps since the last call, oldest first. */
    QVector<ExchangeEvent> takeEvents();

private:
    enum class State {
        Idle,
        Addressed,       ///< address echoed, 0x0F awaited
        Synchronising,   ///< patterns go out until the command byte comes
        AwaitingEcho,    ///< block sent, its echo awaited
        AwaitingResend,  ///< the block failed; what the host sends meanwhile is stale
        ReceivingBlock,  ///< a block or word to be written is coming in
        AwaitingVerdict, ///< its echo sent, the host's judgement awaited
        Mute             ///< struck silent by a fault until the time-out
    };

    void receiveByte(quint8 byte);
    void receiveAddress(quint8 address);
    void confirmAddress();
    void beginTransfer();
    void beginWord();
    void sendPattern();
    void sendRecords();
    void sendBlock();
    void receiveEcho(quint8 byte);
    void acknowledgeBlock();
    void awaitResend();
    void resendBlock();
    void receiveBlockByte(quint8 byte);
    void dropTornBlock();
    void receiveVerdict(quint8 byte);
    void acceptWrittenBlock();
    void receiveWordVerdict(quint8 byte);
    void answer(const QByteArray &bytes);
    bool strikesNow(int &answerByte);
    void commitWrite();
    void finish(ExchangeEvent::Kind outcome);
    bool fallsSilent();
    bool takesWords() const { return m_settings.wordAddresses.contains(m_address); }
    qint64 silenceDeadlineMs() const;
    void note(ExchangeEvent::Kind kind, quint8 value = 0);

    InstrumentMemory &m_memory;
    DialogueSettings m_settings;
    FaultPlan m_faults;

    State m_state = State::Idle;
    quint8 m_address = 0;
    QByteArray m_data;     ///< block that is read, or what has been written so far
    int m_position = 0;    ///< bytes of `m_data` that the host has
    QByteArray m_inbox;    ///< bytes of the unit that is coming in
    int m_blocks = 0;      ///< units transferred in this dialogue
    int m_badBlocks = 0;   ///< consecutive failures of one block
    int m_answerBytes = 0; ///< bytes answered since the command byte
    int m_patternsSent = 0;
    int m_extraPatienceMs = 0;
    bool m_unplug = false;

    qint64 m_nowMs = 0;
    qint64 m_heardMs = 0; ///< when the host was last heard
    qint64 m_dueMs = 0;   ///< when the next pattern or repetition is due
    QByteArray m_outbox;
    QVector<ExchangeEvent> m_events;
};
