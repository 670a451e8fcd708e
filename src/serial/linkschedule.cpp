#include "serial/linkschedule.h"

#include <QRandomGenerator64>

namespace
{

constexpr quint8 lastAttempt = 3;

} // namespace

int startDelay(const LinkTiming &timing, int baseDelay)
{
    const int spread =
        timing.startSpread > 0 ? QRandomGenerator64::global()->bounded(int(timing.startSpread)) : 0;
    return baseDelay + timing.startBase + spread;
}

RetryStep nextRetryStep(ExchangeKind kind, noxQueryMode mode, quint8 failedAttempts)
{
    const bool blockRead = kind == ExchangeKind::BlockRead;
    const quint8 attempts = failedAttempts + 1;

    if (attempts > lastAttempt || (blockRead && (mode & noxQueryModeOnce)))
        return {RetryStep::GiveUp, attempts};
    // a quick retry counts twice, so that the third failure is the last
    if (blockRead && (mode & noxQueryModeFast))
        return {RetryStep::RetryQuickly, quint8(attempts + 1)};
    return {attempts % 2 ? RetryStep::Retry : RetryStep::ReopenAndRetry, attempts};
}

bool deliversEmptyReply(ExchangeKind kind, noxQueryMode mode)
{
    const bool modeActs = kind == ExchangeKind::BlockRead || kind == ExchangeKind::RecordRead;
    return modeActs && (mode & noxQueryModeEmpty);
}
