#include "serial/linktiming.h"

#include <QRandomGenerator64>

int startDelay(const LinkTiming &timing, int baseDelay)
{
    const int spread =
        timing.startSpread > 0 ? QRandomGenerator64::global()->bounded(int(timing.startSpread)) : 0;
    return baseDelay + timing.startBase + spread;
}
