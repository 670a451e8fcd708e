#pragma once

#include "serial/exchangeitems.h"

/** Bits per second, both directions. */
constexpr int defaultBaudRate = 9600;
/** Seconds of a silent stream after which the watchdog reopens the port. */
constexpr quint8 defaultMeasTimeout = 15;

/** The waits of one link, in milliseconds. Tests shorten them; the program keeps the defaults. */
struct LinkTiming {
    quint16 initDelay = 2000;     ///< each write, the echo of an address, the first
                                  ///< pattern, the byte after a written block
    quint16 queueDelay = 5000;    ///< from accepting an exchange to starting it
    quint16 attemptDelay = 3000;  ///< from a failed attempt to the next
    quint16 unitTimeout = 500;    ///< 4 bytes, be they sent, echoed or of a pattern
                                  ///< again; 8 of a record
    quint16 confirmTimeout = 250; ///< the confirmation of a block that was read
    quint16 commandPause = 50;    ///< after the command byte of a write, and after a bad block
    quint16 leavingSlack = 2;     ///< beyond the time that written bytes take on the line, until
                                  ///< they have surely left the driver
    quint16 startBase = 400;      ///< added to every scheduled start
    quint16 startSpread =
        500; ///< and a random part below this, so that workers do not march in step
};

/** `baseDelay` + `startBase` + a random part, in milliseconds: when a scheduled start is due. */
int startDelay(const LinkTiming &timing, int baseDelay);

/** The kinds of exchange that the retry schedule and its end tell apart. */
enum class ExchangeKind { BlockRead, RecordRead, WordRead, Write };

/** What follows a failed attempt. */
struct RetryStep {
    enum Action {
        GiveUp,         ///< the failure is final
        RetryQuickly,   ///< without a delay but that of every start
        Retry,          ///< after the attempt delay
        ReopenAndRetry, ///< reopen the port, then after twice the attempt delay
    };
    Action action = GiveUp;
    quint8 attempts = 0; ///< the failed attempts to remember, counted as the schedule counts them
};

/**
 * The schedule after one more failure of an exchange that had failed `failedAttempts` times:
 * try, retry, reopen and retry, retry, give up. The modes Once and Fast shorten a block read.
 */
RetryStep nextRetryStep(ExchangeKind kind, noxQueryMode mode, quint8 failedAttempts);

/** Whether the final failure of a read is delivered as an empty reply. */
bool deliversEmptyReply(ExchangeKind kind, noxQueryMode mode);
