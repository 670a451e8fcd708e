#include "plot/plotcanvas.h"

#include <QPainter>
#include <QPaintEvent>
#include <qwt_plot.h>

#include <cmath>

PlotCanvas::PlotCanvas(QwtPlot *plot)
    : QwtPlotCanvas(plot)
{
    setObjectName(QStringLiteral("QwtPlotCanvas")); // as that of any plot is called
    setPaintAttribute(BackingStore, false);         // the picture takes its place
}

void PlotCanvas::replot()
{
    m_isOld = true;
    update();
}

void PlotCanvas::bringUpToDate()
{
    if (isOld() && isVisible())
        paintAll();
}

void PlotCanvas::repaintStretch(double left, double right)
{
    if (isOld())
        return replot();
    const QRectF stretch(left, 0, right - left, height());
    const QRect part = rect() & stretch.toAlignedRect();
    if (part.isEmpty())
        return;
    paint(part);
    update(part);
}

void PlotCanvas::paintEvent(QPaintEvent *event)
{
    if (isOld())
        paintAll();
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.drawPixmap(0, 0, m_picture);
    if (hasFocus() && focusIndicator() == CanvasFocusIndicator)
        drawFocusIndicator(&painter);
}

void PlotCanvas::paintAll()
{
    m_picture = QPixmap(size() * devicePixelRatioF());
    m_picture.setDevicePixelRatio(devicePixelRatioF());
    paint(rect());
    m_isOld = false;
}

void PlotCanvas::paint(const QRect &part)
{
    QPainter painter(&m_picture);
    painter.setClipRect(part);
    painter.fillRect(part, Qt::white);
    plot()->drawCanvas(&painter);
}
