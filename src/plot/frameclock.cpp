#include "plot/frameclock.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace
{

constexpr int frameMilliseconds = 34; // 30 a second would be one every 33.3 ms
constexpr int restPerFrame = 3;       // in times of the frame
constexpr int longestRest = 500;      // ms: alarms and numbers come with frames too

} // namespace

FrameClock::FrameClock(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer); // a coarse one may come early
    connect(&m_timer, &QTimer::timeout, this, &FrameClock::flush);
}

void FrameClock::request(FrameExtent extent)
{
    m_extent = std::max(m_extent, extent);
    if (m_isDue)
        return;
    m_isDue = true;
    m_timer.start(std::max(frameMilliseconds, m_rest));
}

void FrameClock::flush()
{
    if (!m_isDue)
        return;
    m_timer.stop();
    m_isDue = false;
    QElapsedTimer painting;
    painting.start();
    emit frame(std::exchange(m_extent, FrameExtent::Texts));
    m_rest = static_cast<int>(std::min<qint64>(restPerFrame * painting.elapsed(), longestRest));
}
