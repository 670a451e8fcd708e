#pragma once

#include <QFile>
#include <QTimer>

/** Where a thread's time went, in milliseconds. */
struct ThreadTime {
    double wall = 0;
    double running = 0; ///< on a processor
    double queued = 0;  ///< ready to run while other threads had the processors

    /** In the event loop or in the kernel; for a gap, that is a file or a lock. */
    double asleep() const { return wall - running - queued; }
};

/** Measures how long the event loop of its thread does not come round. */
class EventLoopWatch
{
public:
    EventLoopWatch();

    /** The longest time from one beat to the next. */
    const ThreadTime &longest() const { return m_longest; }
    /** The longest such time without waiting for a processor. */
    double longestOwn() const { return m_longestOwn; }
    int gapsAbove50Ms() const { return m_gapsAbove50Ms; }

    /** Does something that is not the program's: its time does not count. */
    template<typename Action>
    void leaveOut(Action action)
    {
        beat();
        action();
        m_last = now();
    }

private:
    void beat();
    ThreadTime now();

    QFile m_schedule;
    QTimer m_timer;
    ThreadTime m_last;
    ThreadTime m_longest;
    double m_longestOwn = 0;
    int m_gapsAbove50Ms = 0;
};
