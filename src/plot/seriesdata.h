#pragma once

#include "plot/series.h"

#include <QPointF>
#include <qwt_series_data.h>

/** Shows two series, times and values, to a curve as points, without copying them. */
class SeriesData : public QwtSeriesData<QPointF>
{
public:
    /** Both series have the same length. */
    SeriesData(const Series &times, const Series &values);

    const Series &times() const { return m_times; }
    const Series &values() const { return m_values; }

    std::size_t size() const override;
    QPointF sample(std::size_t index) const override;
    QRectF boundingRect() const override;

private:
    Series m_times;
    Series m_values;
};
