#include "plot/seriesdata.h"

template<typename Shown>
bool SeriesData::showAny(const Series &times, const Shown &values)
{
    const auto *shown = std::get_if<Shown>(&m_values);
    const bool areContinued = shown && values.continues(*shown) && times.continues(m_times);
    m_times = times;
    m_values = values;
    return areContinued;
}

template bool SeriesData::showAny(const Series &, const Series &);
template bool SeriesData::showAny(const Series &, const MovingAverages &);

double SeriesData::value(int index) const
{
    return std::visit([index](const auto &values) { return values[index]; }, m_values);
}

std::size_t SeriesData::size() const
{
    return static_cast<std::size_t>(m_times.size());
}

QPointF SeriesData::sample(std::size_t index) const
{
    const int point = static_cast<int>(index);
    return {m_times[point], value(point)};
}

QRectF SeriesData::boundingRect() const
{
    if (m_times.isEmpty())
        return {0.0, 0.0, -1.0, -1.0}; // Qwt's sign for nothing to show
    const ValueRange x = m_times.range(0, m_times.size());
    const ValueRange y =
        std::visit([](const auto &values) { return values.range(0, values.size()); }, m_values);
    return {x.min, y.min, x.max - x.min, y.max - y.min};
}
