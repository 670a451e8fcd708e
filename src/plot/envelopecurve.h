#pragma once

#include "plot/envelope.h"
#include "plot/movingaverage.h"

#include <QColor>
#include <QLineF>
#include <QPointF>
#include <QRect>
#include <QVector>
#include <qwt_plot_curve.h>
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

/**
 * A curve over times and values, or times and averages, that looks like a line through all points
 * and costs a few strokes per pixel column, however many points there are. Reads the series without
 * copying them.
 */
class EnvelopeCurve : public QwtPlotCurve
{
public:
    /**
     * `width` is the width of the line in pixels. Two curves may have one `times`, when they are
     * never drawn with different ones.
     */
    EnvelopeCurve(const QColor &color, qreal width,
                  std::shared_ptr<TimeRuns> times = std::make_shared<TimeRuns>());

    /**
     * Shows the points that both series, of one length, hold at present. Takes no memory. True when
     * they continue what was shown before, false when they are others.
     */
    bool setSeries(const Series &times, const Series &values);
    bool setSeries(const Series &times, const MovingAverages &averages);
    /** The times from the newest point in the picture to the end, which is in it from now on; empty
     *  when it was. */
    ValueRange takeNewTimes();
    /** Recolours the line and keeps its width. */
    void setColor(const QColor &color);

protected:
    void drawLines(QPainter *painter, const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                   const QRectF &canvasRect, int from, int to) const override;

private:
    struct Strokes {
        QVector<QLineF> lines; ///< between points that are a column or more apart
        QVector<QRect> bars;   ///< what the points of one column span, in device pixels
    };
    template<typename Values>
    bool take(const Series &times, const Values &values);
    void divide(const QwtScaleMap &xMap, const QRectF &canvasRect, qreal columnsPerPixel) const;
    std::size_t firstRunAt(int column) const;
    Strokes strokes(const QwtScaleMap &xMap, const QwtScaleMap &yMap, const QRectF &canvasRect,
                    qreal columnsPerPixel, qreal left) const;
    SeriesData *seriesData();
    const SeriesData *seriesData() const;

    mutable ColumnRuns m_columns; ///< of the latest drawing
    int m_painted = 0;            ///< number of points that are in the picture
};
