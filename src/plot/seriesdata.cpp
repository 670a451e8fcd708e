#include "plot/seriesdata.h"

SeriesData::SeriesData(const Series &times, const Series &values)
    : m_times(times)
    , m_values(values)
{
}

std::size_t SeriesData::size() const
{
    return static_cast<std::size_t>(m_times.size());
}

QPointF SeriesData::sample(std::size_t index) const
{
    const int point = static_cast<int>(index);
    return {m_times[point], m_values[point]};
}

QRectF SeriesData::boundingRect() const
{
    if (m_times.isEmpty())
        return {0.0, 0.0, -1.0, -1.0}; // Qwt's sign for nothing to show
    const ValueRange x = m_times.range(0, m_times.size());
    const ValueRange y = m_values.range(0, m_values.size());
    return {x.min, y.min, x.max - x.min, y.max - y.min};
}
