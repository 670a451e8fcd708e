#pragma once

#include "device/bfloat.h"

#include <optional>

/**
 * The number for which the text of a field stands, with a decimal point or a decimal comma.
 *
 * As long as the text is `shown`, by which the number `current` is shown, it stands for that number
 * with all its digits. Nothing for a text that is no number, or no finite one.
 */
std::optional<bFloat> enteredNumber(const QString &text, const QString &shown,
                                    const bFloat &current);

/** Whether number `index` of a block of floats differs from that of the block that an instrument
 *  is known to hold. Of an empty one nothing is known, and nothing differs. */
bool differs(const QByteArray &block, const QByteArray &held, int index);
