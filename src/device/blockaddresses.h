#pragma once

#include <QtGlobal>

/** Addresses at which an instrument's blocks are read. Those of most writes are
 * optionsNOX8::tx_code. */
enum ReadAddress : quint8 {
    configurationAddress = 2,
    referenceDataAddress = 3,
    loggerAddress = 5,
    zeroShiftsAddress = 9,
    identificationAddress = 51,
};

/** The address to which the block that sets one channel is written. */
constexpr quint8 channelWriteAddress = 4;
