#include "plot/frameclock.h"

namespace
{

constexpr int frameMilliseconds = 34; // 30 a second would be one every 33.3 ms

} // namespace

FrameClock::FrameClock(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer); // a coarse one may come early
    m_timer.setInterval(frameMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, &FrameClock::flush);
}

void FrameClock::request()
{
    if (m_isDue)
        return;
    m_isDue = true;
    m_timer.start();
}

void FrameClock::flush()
{
    if (!m_isDue)
        return;
    m_timer.stop();
    m_isDue = false;
    emit frame();
}
