#include "plot/plotmeasurement.h"

#include "plot/plotrecords.h"

#include <QPen>
#include <qwt_plot.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_widget.h>

#include <algorithm>
#include <cmath>

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

void place(QwtPlotMarker *cross, const QPointF &point)
{
    cross->setValue(point);
    cross->setVisible(true);
}

void takeAway(QwtPlotMarker *cross)
{
    cross->setValue(0, 0);
    cross->setVisible(false);
}

bool standsAt(const QwtPlotMarker *cross, const QPointF &point)
{
    return cross->isVisible() && cross->value() == point;
}

double meanOf(const Series &values, int first, int end)
{
    double sum = 0;
    for (int i = first; i < end; ++i)
        sum += values[i];
    return sum / (end - first);
}

double deviationOf(const Series &values, int first, int end, double mean)
{
    double squares = 0;
    for (int i = first; i < end; ++i)
        squares += (mean - values[i]) * (mean - values[i]);
    return std::sqrt(squares / (end - first - 1));
}

} // namespace

IntervalStatistics intervalStatistics(const Series &times, const Series &values, double from,
                                      double to)
{
    const int scanned = times.size() - 1;
    const int first = times.firstNotBelow(from);
    const int later = times.firstNotBelow(std::nextafter(to, HUGE_VAL));
    const int end = std::min(scanned, later);
    IntervalStatistics statistics;
    if (first >= end)
        return statistics;
    statistics.count = end - first;
    statistics.mean = meanOf(values, first, end);
    if (statistics.count > 1)
        statistics.deviation = deviationOf(values, first, end, statistics.mean);
    return statistics;
}

QString readingText(const PlotChannel &channel, double value)
{
    return numberText(value, channel.precision + 1);
}

MeasurementTexts measurementTexts(const PlotChannel &channel, const QPointF &first,
                                  const QPointF &second, const TimeFormat &format)
{
    const TimeSpanTexts times = timeSpanTexts(format, first.x(), second.x());
    const IntervalStatistics statistics =
        intervalStatistics(channel.times(), channel.values(), first.x(), second.x());

    MeasurementTexts texts;
    texts.x1 = times.first;
    texts.x2 = times.second;
    texts.deltaX = times.between;
    texts.y1 = readingText(channel, first.y());
    texts.y2 = readingText(channel, second.y());
    texts.deltaY = readingText(channel, second.y() - first.y());
    texts.count = QString::number(statistics.count);
    texts.mean = statistics.count > 0 ? readingText(channel, statistics.mean) : noValueText();
    texts.deviation = statistics.count > 1
                          ? QString::number(statistics.deviation, 'f', channel.precision + 2)
                          : noValueText();
    return texts;
}

PlotMeasurement::PlotMeasurement(QwtPlot *plot)
    : m_plot(plot)
    , m_first(addCross(plot))
    , m_second(addCross(plot))
    , m_pointFrame(new PointFrame(plot))
    , m_measurementFrame(new MeasurementFrame(plot))
{
}

bool PlotMeasurement::hasFirst() const
{
    return m_first->isVisible();
}

bool PlotMeasurement::hasSecond() const
{
    return m_second->isVisible();
}

QPointF PlotMeasurement::first() const
{
    return m_first->value();
}

QPointF PlotMeasurement::second() const
{
    return m_second->value();
}

void PlotMeasurement::start(const QPointF &point)
{
    m_measurementFrame->hide();
    takeAway(m_second);
    place(m_first, point);
}

void PlotMeasurement::add(const QPointF &point)
{
    if (!hasFirst()) {
        takeAway(m_second);
        place(m_first, point);
    } else if (point.x() < first().x()) {
        place(m_second, first());
        place(m_first, point);
    } else {
        place(m_second, point);
    }
    const QPointF told = m_pointFrame->anchor();
    if (!standsAt(m_first, told) && !standsAt(m_second, told))
        m_pointFrame->hide(); // its point has given way to the new one
}

void PlotMeasurement::showPoint(const QPointF &point, const QPoint &place, const QString &x,
                                const QString &y)
{
    m_pointFrame->setTexts(x, y);
    showBeside(m_pointFrame, point, place);
}

void PlotMeasurement::showInterval(const QPointF &added, const MeasurementTexts &texts)
{
    m_measurementFrame->setTexts(texts);
    showBeside(m_measurementFrame, added, placeOf(added));
}

void PlotMeasurement::reset()
{
    takeAway(m_first);
    takeAway(m_second);
    hideFrames();
}

void PlotMeasurement::hideFrames()
{
    m_pointFrame->hide();
    m_measurementFrame->hide();
}

void PlotMeasurement::followAxes()
{
    for (ValueFrame *frame : std::initializer_list<ValueFrame *>{m_pointFrame, m_measurementFrame})
        if (!frame->isHidden())
            moveBeside(frame, placeOf(frame->anchor()));
}

QPoint PlotMeasurement::placeOf(const QPointF &point) const
{
    constexpr double farBeyond = 1e6; // pixels; a frame there is as little seen as farther off
    return {qRound(qBound(-farBeyond, m_plot->transform(QwtPlot::xBottom, point.x()), farBeyond)),
            qRound(qBound(-farBeyond, m_plot->transform(QwtPlot::yLeft, point.y()), farBeyond))};
}

void PlotMeasurement::showBeside(ValueFrame *frame, const QPointF &point, const QPoint &place)
{
    frame->setAnchor(point);
    moveBeside(frame, place);
    frame->show();
    frame->raise();
}

/** `place` is one of the canvas; the frame stands on the plot, where the Y axis comes first. */
void PlotMeasurement::moveBeside(ValueFrame *frame, const QPoint &place)
{
    const QPoint onPlot = place + QPoint(m_plot->axisWidget(QwtPlot::yLeft)->width(), 0);
    frame->move(placeBeside(onPlot, frame->size(), m_plot->canvas()->size()));
}
