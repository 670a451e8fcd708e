#include "plot/envelopecurve.h"

#include "plot/envelope.h"
#include "plot/seriesdata.h"

#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <qwt_clipper.h>
#include <qwt_scale_map.h>

#include <cmath>

namespace
{

PixelColumns columnsOf(const QwtScaleMap &xMap, const QRectF &canvasRect, qreal columnsPerPixel)
{
    PixelColumns columns;
    columns.leftTime = xMap.invTransform(canvasRect.left());
    columns.secondsPerColumn = xMap.sDist() / (xMap.pDist() * columnsPerPixel);
    columns.count = static_cast<int>(std::ceil(canvasRect.width() * columnsPerPixel));
    return columns;
}

/** The part of a line near the canvas: the painter does not bear coordinates of any size. */
void appendClipped(QVector<QLineF> &lines, const QPointF &from, const QPointF &to,
                   const QRectF &near)
{
    if (near.contains(from) && near.contains(to)) {
        lines.append({from, to});
        return;
    }
    if (!std::isfinite(from.y()) || !std::isfinite(to.y()))
        return;
    const QPolygonF clipped = QwtClipper::clipPolygonF(near, QVector<QPointF>{from, to}, false);
    if (clipped.size() >= 2)
        lines.append({clipped.first(), clipped.last()});
}

/** A bar as wide and at least as high as the pen, on whole device pixels, inside `near`. */
QRectF barAt(qreal x, qreal top, qreal bottom, qreal penWidth, const QRectF &near)
{
    top = qBound(near.top(), top, near.bottom());
    bottom = qBound(near.top(), bottom, near.bottom());
    const qreal missing = std::max(0.0, penWidth - (bottom - top)) / 2;
    const qreal left = std::round(x - penWidth / 2);
    return QRectF(QPointF(left, top - missing), QPointF(left + penWidth, bottom + missing))
        .intersected(near);
}

} // namespace

EnvelopeCurve::EnvelopeCurve(const QColor &color, qreal width)
{
    setPen(QPen(color, width));
    setRenderHint(QwtPlotItem::RenderAntialiased);
    setSeries(Series(), Series());
}

void EnvelopeCurve::setSeries(const Series &times, const Series &values)
{
    setSamples(new SeriesData(times, values)); // the curve owns it
}

void EnvelopeCurve::setColor(const QColor &color)
{
    setPen(QPen(color, pen().widthF()));
}

void EnvelopeCurve::drawLines(QPainter *painter, const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                              const QRectF &canvasRect, int, int) const
{
    const qreal columnsPerPixel = std::max(1.0, painter->deviceTransform().m11());
    const Strokes found = strokes(xMap, yMap, canvasRect, columnsPerPixel);
    painter->drawLines(found.lines);
    for (const QRectF &bar : found.bars)
        painter->fillRect(bar, painter->pen().color());
}

EnvelopeCurve::Strokes EnvelopeCurve::strokes(const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                                              const QRectF &canvasRect, qreal columnsPerPixel) const
{
    const auto *series = static_cast<const SeriesData *>(data());
    const auto pointAt = [&](int index) {
        return QPointF(xMap.transform(series->times()[index]),
                       yMap.transform(series->values()[index]));
    };
    const PixelColumns columns = columnsOf(xMap, canvasRect, columnsPerPixel);
    const qreal penWidth = std::max(1.0, pen().widthF());
    const QRectF near = canvasRect.adjusted(-penWidth, -penWidth, penWidth, penWidth);

    Strokes strokes;
    const ColumnRun *previous = nullptr;
    const QVector<ColumnRun> runs = columnRuns(series->times(), series->values(), columns);
    for (const ColumnRun &run : runs) {
        const bool onCanvas = run.column >= 0 && run.column < columns.count;
        const bool isBar = onCanvas && run.first < run.last;
        ValueRange span = run.values;
        if (previous && isBar && previous->column == run.column - 1)
            span.include(series->values()[previous->last]); // the step from the next column
        else if (previous)
            appendClipped(strokes.lines, pointAt(previous->last), pointAt(run.first), near);
        if (isBar) {
            const qreal x = canvasRect.left() + (run.column + 0.5) / columnsPerPixel;
            const QRectF bar =
                barAt(x, yMap.transform(span.max), yMap.transform(span.min), penWidth, near);
            if (!bar.isEmpty())
                strokes.bars.append(bar);
        }
        previous = &run;
    }
    return strokes;
}
