#include "eventloopwatch.h"

#include <time.h>

namespace
{

constexpr int periodMs = 1;

ThreadTime operator-(const ThreadTime &a, const ThreadTime &b)
{
    return {a.wall - b.wall, a.running - b.running, a.queued - b.queued};
}

double clockMs(clockid_t clock)
{
    timespec now = {};
    ::clock_gettime(clock, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

} // namespace

EventLoopWatch::EventLoopWatch()
    : m_schedule(QStringLiteral("/proc/thread-self/schedstat"))
{
    m_schedule.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    m_last = now();
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { beat(); });
    m_timer.start(periodMs);
}

void EventLoopWatch::beat()
{
    const ThreadTime current = now();
    const ThreadTime gap = current - m_last;
    m_last = current;
    if (gap.wall > m_longest.wall)
        m_longest = gap;
    m_longestOwn = qMax(m_longestOwn, gap.wall - gap.queued);
    m_gapsAbove50Ms += gap.wall > 50;
}

ThreadTime EventLoopWatch::now()
{
    m_schedule.seek(0); // nanoseconds on a processor, nanoseconds ready, time slices
    const QList<QByteArray> fields = m_schedule.readAll().split(' ');
    return {clockMs(CLOCK_MONOTONIC), clockMs(CLOCK_THREAD_CPUTIME_ID),
            fields.value(1).toDouble() / 1e6};
}
