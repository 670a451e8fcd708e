#pragma once

#include <QtGlobal>

/** The waits of one link, in milliseconds. Tests shorten them; the program keeps the defaults. */
struct LinkTiming {
    quint16 initDelay = 2000;     ///< each write, the echo of an address, the first pattern
    quint16 queueDelay = 5000;    ///< from accepting an exchange to starting it
    quint16 attemptDelay = 3000;  ///< from a failed attempt to the next
    quint16 unitTimeout = 500;    ///< 4 bytes of a block, 8 of a record
    quint16 confirmTimeout = 250; ///< the confirmation of a block that was read
    quint16 commandPause = 50;    ///< after the command byte of a write, and after a bad block
    quint16 startBase = 400;      ///< added to every scheduled start
    quint16 startSpread =
        500; ///< and a random part below this, so that workers do not march in step
};

/** `baseDelay` + `startBase` + a random part, in milliseconds: when a scheduled start is due. */
int startDelay(const LinkTiming &timing, int baseDelay);
