#pragma once

#include <QtGlobal>

/** One step of a dialogue, as the instrument saw it. */
struct ExchangeEvent {
    enum Kind {
        AddressReceived,    ///< an address byte came, answered or not
        AddressIgnored,     ///< ... and was left without an echo
        EchoSent,           ///< ... and was echoed
        SyncSent,           ///< a pattern of synchronisation was sent
        CommandReceived,    ///< the command byte came (`value`)
        BlockAcknowledged,  ///< the host echoed a block rightly and got its confirmation
        BlockRepeated,      ///< a block is sent again
        WriteBlockReceived, ///< a block or word to be written came and was echoed
        WriteBlockRefused,  ///< the host found the echo wrong (`value`: its count of failures)
        ReadCompleted,      ///< everything that was asked for has been sent
        WriteCompleted,     ///< the memory has changed
        Aborted,            ///< given up by the host, or after ten bad blocks
        TimedOut,           ///< given up because the host fell silent
        Unplugged           ///< the plug is pulled
    };

    qint64 atMs = 0; ///< monotonic, on the clock of `simulatorClockMs`
    Kind kind = Aborted;
    quint8 address = 0; ///< block address of the dialogue
    quint8 value = 0;   ///< the byte of the host that caused the step, where it matters
};
