#include "plot/plotpickers.h"
#include "plot/plotzoomer.h"
#include "plot/qwtnox.h"
#include "plot/qwtnoxqwtplotpicker.h"
#include "plot/zoomchoice.h"

#include <cmath>

// Zooming by rectangle and by wheel, and panning.

namespace
{

bool isFinite(const QRectF &rect)
{
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height());
}

AxisView moved(const AxisView &view, double way)
{
    return {view.lower + way, view.upper + way, view.step};
}

} // namespace

void QwtNOX::setZoomScale(const QRectF &rect)
{
    if (!findChannel(m_mainIndex, 255) || !isFinite(rect))
        return;
    m_pickers->zoomer()->setProperty("rect", rect);
    showZoomed(viewOfRectangle(rect.normalized(), m_divX, m_divY));
    emit onChange(m_mainIndex);
}

void QwtNOX::zoomByWheel(bool coarser)
{
    _ch *channel = findChannel(m_mainIndex, 255);
    const ScaleRows next = neighbouringRows(rowsInEffect(), coarser);
    if (!channel || next == ScaleRows{m_scaleX, m_scaleY})
        return;
    const ZoomedView view = viewAround(cursor(), next, m_divX, m_divY);
    if (channel->mode == ModeAuto || channel->mode == ModeFollow) {
        channel->scaleY = static_cast<uchar>(next.y); // both at once: no Y chosen by data between
        setChScaleX(static_cast<uchar>(next.x));
        setChScaleY(static_cast<uchar>(next.y));
        // Unless whoever heard of it chose otherwise: following waits for the next point.
        if (rowsInEffect() == next && getChMode() == ModeFollow)
            showZoomed(view);
    } else {
        showZoomed(view);
        emit onChange(m_mainIndex);
    }
}

/** The rows of what is on screen; where none was chosen, those of the steps of the axes. */
ScaleRows QwtNOX::rowsInEffect() const
{
    return {m_scaleX > 0 ? m_scaleX : rowOfStepX(axisStepSize(xBottom)),
            m_scaleY > 0 ? m_scaleY : rowOfStepY(axisStepSize(yLeft))};
}

void QwtNOX::showZoomed(const ZoomedView &view)
{
    m_scaleX = static_cast<uchar>(view.rows.x);
    m_scaleY = static_cast<uchar>(view.rows.y);
    calcPrecision(m_scaleY, m_mainIndex);
    m_pickers->zoomer()->setProperty("center", view.centre);
    setAxisView(xBottom, view.x);
    setAxisView(yLeft, view.y);
    refreshScaleYLabels();
    updLabelScale();
    m_frameClock.request();
}

/** Middle of a view in which a chosen scale takes effect: in the zoom mode, of the last zoom. */
QPointF QwtNOX::middleOfView() const
{
    const QVariant zoomed = m_pickers->zoomer()->property("center");
    if (getChMode() == ModeZoom && zoomed.isValid())
        return zoomed.toPointF();
    return {axisView(xBottom).middle(), axisView(yLeft).middle()};
}

/** Where on the plot the mouse was last; the middle when it never was. */
QPointF QwtNOX::cursor() const
{
    const QVariant position = m_crossHair->property("pos");
    return position.isValid() ? position.toPointF() : middleOfView();
}

void QwtNOX::scrollCanvas(const QPointF &p)
{
    if (!m_rightHeld)
        return;
    const QPointF way = cursor() - p;
    const AxisView x = axisView(xBottom);
    setAxisView(xBottom, moved(x, std::max(way.x(), -x.lower)));
    setAxisView(yLeft, moved(axisView(yLeft), way.y()));
    m_frameClock.request();
}
