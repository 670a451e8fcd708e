#pragma once

#include "plot/movingaverage.h"

#include <QPointF>
#include <qwt_series_data.h>

#include <variant>

/** Shows times and values, or times and averages, to a curve as points, without copying them. */
class SeriesData : public QwtSeriesData<QPointF>
{
public:
    using Values = std::variant<Series, MovingAverages>;

    /**
     * Shows what both, of one length, hold at present. True when they continue what was shown
     * before, false when they are others. Costs no memory.
     */
    bool show(const Series &times, const Series &values) { return showAny(times, values); }
    bool show(const Series &times, const MovingAverages &values) { return showAny(times, values); }

    const Series &times() const { return m_times; }
    const Values &values() const { return m_values; }
    double value(int index) const;

    std::size_t size() const override;
    QPointF sample(std::size_t index) const override;
    QRectF boundingRect() const override;

private:
    template<typename Shown>
    bool showAny(const Series &times, const Shown &values);

    Series m_times;
    Values m_values;
};
