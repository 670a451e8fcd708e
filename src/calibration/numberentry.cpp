#include "calibration/numberentry.h"

#include <cmath>

std::optional<bFloat> enteredNumber(const QString &text, const QString &shown,
                                    const bFloat &current)
{
    if (text.trimmed() == shown)
        return current;
    bFloat number;
    if (!number.setFloat(text) || !std::isfinite(number.value))
        return std::nullopt;
    return number;
}

bool differs(const QByteArray &block, const QByteArray &held, int index)
{
    constexpr int size = sizeof(float);
    return !held.isEmpty() && block.mid(index * size, size) != held.mid(index * size, size);
}
