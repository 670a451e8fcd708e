#pragma once

#include "plot/series.h"

#include <QColor>
#include <QLineF>
#include <QRectF>
#include <QVector>
#include <qwt_plot_curve.h>

class SeriesData;

/**
 * A curve over two series that looks like a line through all points and costs a few strokes per
 * pixel column, however many points there are. Reads the series without copying them.
 */
class EnvelopeCurve : public QwtPlotCurve
{
public:
    /** `width` is the width of the line in pixels. */
    EnvelopeCurve(const QColor &color, qreal width);

    /** Shows the points that both series, of one length, hold at present. */
    void setSeries(const Series &times, const Series &values);
    /** Recolours the line and keeps its width. */
    void setColor(const QColor &color);

protected:
    void drawLines(QPainter *painter, const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                   const QRectF &canvasRect, int from, int to) const override;

private:
    struct Strokes {
        QVector<QLineF> lines; ///< between points that are a column or more apart
        QVector<QRectF> bars;  ///< what the points of one column span
    };
    Strokes strokes(const QwtScaleMap &xMap, const QwtScaleMap &yMap, const QRectF &canvasRect,
                    qreal columnsPerPixel) const;
};
