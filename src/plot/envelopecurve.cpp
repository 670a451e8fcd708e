#include "plot/envelopecurve.h"

#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <qwt_clipper.h>
#include <qwt_scale_map.h>

#include <algorithm>
#include <cmath>
#include <utility>

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

bool isUsable(const PixelColumns &columns)
{
    return std::isfinite(columns.startOf(0)) && std::isfinite(columns.startOf(columns.count));
}

/**
 * What is added at both ends of a stroke, in widths of the pen. A polyline of the painter adds
 * nothing at a point where it turns, and half a width where it ends: this is between.
 */
constexpr qreal capLength = 0.25;

bool lieBeyondOneSide(const QPointF &from, const QPointF &to, const QRectF &near)
{
    return (from.x() < near.left() && to.x() < near.left()) ||
           (from.x() > near.right() && to.x() > near.right()) ||
           (from.y() < near.top() && to.y() < near.top()) ||
           (from.y() > near.bottom() && to.y() > near.bottom());
}

QLineF lengthened(const QPointF &from, const QPointF &to, qreal atBothEnds)
{
    const QPointF along = to - from;
    const qreal length = std::hypot(along.x(), along.y());
    if (length == 0)
        return {from, to};
    const QPointF added = along * (atBothEnds / length);
    return {from - added, to + added};
}

/** The part of a line near the canvas: the painter does not bear coordinates of any size. */
void appendClipped(QVector<QLineF> &lines, const QPointF &from, const QPointF &to,
                   const QRectF &near, qreal cap)
{
    if (near.contains(from) && near.contains(to)) {
        lines.append(lengthened(from, to, cap));
        return;
    }
    if (lieBeyondOneSide(from, to, near) || !std::isfinite(from.y()) || !std::isfinite(to.y()))
        return;
    const QPolygonF clipped = QwtClipper::clipPolygonF(near, QVector<QPointF>{from, to}, false);
    if (clipped.size() >= 2)
        lines.append({clipped.first(), clipped.last()});
}

/** The bars of one curve: as wide and at least as high as its pen, on whole device pixels. */
class BarShape
{
public:
    BarShape(const QRectF &canvasRect, qreal penWidth, qreal columnsPerPixel, const QRectF &near)
        : m_left(qRound(canvasRect.left() * columnsPerPixel))
        , m_width(std::max(1, qRound(penWidth * columnsPerPixel)))
        , m_scale(columnsPerPixel)
        , m_near(near)
    {
    }

    QRect bar(int column, qreal top, qreal bottom) const
    {
        top = qBound(m_near.top(), top, m_near.bottom()) * m_scale;
        bottom = qBound(m_near.top(), bottom, m_near.bottom()) * m_scale;
        const qreal added = std::max(m_width * capLength, (m_width - (bottom - top)) / 2);
        const int firstRow = qRound(top - added);
        const int rows = std::max(m_width, qRound(bottom + added) - firstRow);
        return {m_left + column - m_width / 2, firstRow, m_width, rows};
    }

private:
    int m_left;    ///< device pixels
    int m_width;   ///< device pixels
    qreal m_scale; ///< device pixels per pixel
    QRectF m_near;
};

/**
 * Fills bars of device pixels with the colour of the pen. What is neither smoothed nor scaled the
 * painter copies into the picture; smoothed by whichever hint, or one by one, it costs many times
 * as much.
 */
void drawBars(QPainter *painter, const QVector<QRect> &bars, qreal columnsPerPixel)
{
    painter->save();
    painter->setRenderHints(painter->renderHints(), false);
    painter->scale(1 / columnsPerPixel, 1 / columnsPerPixel);
    painter->setBrush(painter->pen().color());
    painter->setPen(Qt::NoPen);
    painter->drawRects(bars);
    painter->restore();
}

} // namespace

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

EnvelopeCurve::EnvelopeCurve(const QColor &color, qreal width, std::shared_ptr<TimeRuns> times)
    : m_columns(std::move(times))
{
    setPen(QPen(color, width));
    setRenderHint(QwtPlotItem::RenderAntialiased);
    // what is in view is found while drawing: thousands of curves need not hear of each new view
    setItemInterest(QwtPlotItem::ScaleInterest, false);
    setSamples(new SeriesData); // the curve owns it
}

bool EnvelopeCurve::setSeries(const Series &times, const Series &values)
{
    return take(times, values);
}

bool EnvelopeCurve::setSeries(const Series &times, const MovingAverages &averages)
{
    return take(times, averages);
}

template<typename Values>
bool EnvelopeCurve::take(const Series &times, const Values &values)
{
    const bool areContinued = seriesData()->show(times, values);
    if (!areContinued) {
        m_columns.forget();
        m_painted = 0;
    }
    itemChanged();
    return areContinued;
}

ValueRange EnvelopeCurve::takeNewTimes()
{
    const Series &times = seriesData()->times();
    const int painted = std::exchange(m_painted, times.size());
    return painted == times.size() ? ValueRange{} : times.range(painted - 1, times.size());
}

SeriesData *EnvelopeCurve::seriesData()
{
    return static_cast<SeriesData *>(data());
}

const SeriesData *EnvelopeCurve::seriesData() const
{
    return static_cast<const SeriesData *>(data());
}

void EnvelopeCurve::setColor(const QColor &color)
{
    setPen(QPen(color, pen().widthF()));
}

void EnvelopeCurve::drawLines(QPainter *painter, const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                              const QRectF &canvasRect, int, int) const
{
    const qreal columnsPerPixel = std::max(1.0, painter->deviceTransform().m11());
    divide(xMap, canvasRect, columnsPerPixel);
    const qreal left =
        painter->hasClipping() ? painter->clipBoundingRect().left() : canvasRect.left();
    const Strokes found = strokes(xMap, yMap, canvasRect, columnsPerPixel, left);
    QPen flat = painter->pen();
    flat.setCapStyle(Qt::FlatCap);
    painter->setPen(flat);
    painter->drawLines(found.lines);
    drawBars(painter, found.bars, columnsPerPixel);
}

/** Brings the columns up to date. */
void EnvelopeCurve::divide(const QwtScaleMap &xMap, const QRectF &canvasRect,
                           qreal columnsPerPixel) const
{
    const PixelColumns columns = columnsOf(xMap, canvasRect, columnsPerPixel);
    if (!isUsable(columns))
        return m_columns.forget();
    const auto divideValues = [&](const auto &values) {
        m_columns.divide(columns, seriesData()->times(), values);
    };
    std::visit(divideValues, seriesData()->values());
}

/** The first run whose strokes may reach `column`, or the end: that before the first one there. */
std::size_t EnvelopeCurve::firstRunAt(int column) const
{
    const std::vector<ColumnRun> &runs = m_columns.runs();
    if (!seriesData()->times().isAscending())
        return 0;
    const auto isLeft = [](const ColumnRun &run, int bound) { return run.column < bound; };
    const auto found = std::lower_bound(runs.begin(), runs.end(), column, isLeft);
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, found - runs.begin() - 1));
}

/** What is to be painted from the pixel `left` on; there may be more. */
EnvelopeCurve::Strokes EnvelopeCurve::strokes(const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                                              const QRectF &canvasRect, qreal columnsPerPixel,
                                              qreal left) const
{
    const SeriesData &series = *seriesData();
    const auto pointOf = [&](int index, double value) {
        return QPointF(xMap.transform(series.times()[index]), yMap.transform(value));
    };
    const int columnCount = columnsOf(xMap, canvasRect, columnsPerPixel).count;
    const qreal penWidth = std::max(1.0, pen().widthF());
    const QRectF near = canvasRect.adjusted(-penWidth, -penWidth, penWidth, penWidth);
    const BarShape shape(canvasRect, penWidth, columnsPerPixel, near);

    Strokes strokes;
    const std::vector<ColumnRun> &runs = m_columns.runs();
    const qreal leftmost = std::floor((left - canvasRect.left() - penWidth) * columnsPerPixel);
    const std::size_t first = firstRunAt(static_cast<int>(leftmost));
    const ColumnRun *previous = first > 0 ? &runs[first - 1] : nullptr;
    for (std::size_t i = first; i < runs.size(); ++i) {
        const ColumnRun &run = runs[i];
        const bool onCanvas = run.column >= 0 && run.column < columnCount;
        const bool isBar = onCanvas && run.first < run.last;
        ValueRange span = run.values;
        if (previous && isBar && previous->column >= 0 && previous->column == run.column - 1)
            span.include(previous->lastValue); // the step from the column before
        else if (previous)
            appendClipped(strokes.lines, pointOf(previous->last, previous->lastValue),
                          pointOf(run.first, series.value(run.first)), near, penWidth * capLength);
        const qreal top = yMap.transform(span.max);
        const qreal bottom = yMap.transform(span.min);
        if (isBar && top <= near.bottom() && bottom >= near.top())
            strokes.bars.append(shape.bar(run.column, top, bottom));
        previous = &run;
    }
    return strokes;
}
