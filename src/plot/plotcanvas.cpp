#include "plot/plotcanvas.h"

#include <QPainter>
#include <QPaintEvent>
#include <qwt_plot.h>
#include <qwt_scale_map.h>

namespace
{

/** Pixels that the strokes of a point reach to its left or right at most: its column with those
 *  beside it, and the width of a line. */
constexpr double widestStroke = 4;

} // namespace

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

void PlotCanvas::repaintStretch(double first, double last)
{
    if (isOld())
        return replot();
    const QwtScaleMap map = plot()->canvasMap(QwtPlot::xBottom);
    // a time may lie any number of pixels beyond the canvas
    const double left = qBound(0.0, map.transform(first) - widestStroke, double(width()));
    const double right = qBound(0.0, map.transform(last) + widestStroke, double(width()));
    const QRect part = rect() & QRectF(left, 0, right - left, height()).toAlignedRect();
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
    painter.fillRect(rect(), Qt::white); // clipped as what is drawn, to the device pixel
    plot()->drawCanvas(&painter);
}
