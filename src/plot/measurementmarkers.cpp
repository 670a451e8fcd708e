#include "plot/measurementmarkers.h"

#include <QPen>
#include <qwt_plot.h>
#include <qwt_plot_marker.h>

namespace
{

QwtPlotMarker *addCross(QwtPlot *plot)
{
    auto *cross = new QwtPlotMarker;
    cross->setLineStyle(QwtPlotMarker::Cross);
    cross->setLinePen(QPen(Qt::darkGray, 2, Qt::DotLine));
    cross->setVisible(false);
    cross->attach(plot);
    return cross;
}

void place(QwtPlotMarker *marker, const QPointF &point)
{
    marker->setValue(point);
    marker->setVisible(true);
}

void takeAway(QwtPlotMarker *marker)
{
    marker->setValue(0, 0);
    marker->setVisible(false);
}

} // namespace

MeasurementMarkers::MeasurementMarkers(QwtPlot *plot)
    : m_first(addCross(plot))
    , m_second(addCross(plot))
{
}

bool MeasurementMarkers::hasFirst() const
{
    return m_first->isVisible();
}

bool MeasurementMarkers::hasSecond() const
{
    return m_second->isVisible();
}

QPointF MeasurementMarkers::first() const
{
    return m_first->value();
}

QPointF MeasurementMarkers::second() const
{
    return m_second->value();
}

bool MeasurementMarkers::standAt(const QPointF &point) const
{
    return (hasFirst() && first() == point) || (hasSecond() && second() == point);
}

void MeasurementMarkers::start(const QPointF &point)
{
    takeAway(m_second);
    place(m_first, point);
}

void MeasurementMarkers::add(const QPointF &point)
{
    if (!hasFirst())
        return start(point);
    if (point.x() < first().x()) {
        place(m_second, first());
        place(m_first, point);
    } else {
        place(m_second, point);
    }
}

void MeasurementMarkers::reset()
{
    takeAway(m_first);
    takeAway(m_second);
}
