#pragma once

#include "device/optionsnox8.h"

/** The block that a code asks to be written from the image; empty when the instrument has no such
 *  block, or may not have it written: clock and identification only where the identity came from
 *  the instrument, zero shifts and serial number only on extended models. */
QByteArray pendingBlock(const optionsNOX8 &image, optionsNOX8::tx_code code);
