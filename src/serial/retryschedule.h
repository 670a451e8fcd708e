#pragma once

#include "serial/exchangeitems.h"

/** The kinds of exchange between which the retry schedule tells apart. */
enum class ExchangeKind { BlockRead, RecordRead, WordRead, Write };

/** What follows a failed attempt. */
struct RetryStep {
    enum Action {
        GiveUp,         ///< the failure is final
        RetryQuickly,   ///< at once, save for the spread of starts
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
