#include "plot/plotmeasurement.h"

#include "plot/frameplacement.h"
#include "plot/measurementframe.h"
#include "plot/pointframe.h"

#include <qwt_plot.h>
#include <qwt_scale_widget.h>

PlotMeasurement::PlotMeasurement(QwtPlot *plot)
    : m_plot(plot)
    , m_markers(plot)
    , m_pointFrame(new PointFrame(plot))
    , m_measurementFrame(new MeasurementFrame(plot))
{
}

void PlotMeasurement::start(const QPointF &point)
{
    m_measurementFrame->hide();
    m_markers.start(point);
}

void PlotMeasurement::add(const QPointF &point)
{
    m_markers.add(point);
    if (!m_markers.standAt(m_pointFrame->anchor()))
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
    m_markers.reset();
    hideFrames();
}

void PlotMeasurement::hideFrames()
{
    m_pointFrame->hide();
    m_measurementFrame->hide();
}

void PlotMeasurement::followAxes()
{
    for (ValueFrame *frame :
         {static_cast<ValueFrame *>(m_pointFrame), static_cast<ValueFrame *>(m_measurementFrame)})
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
