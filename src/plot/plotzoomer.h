#pragma once

#include <qwt_plot_zoomer.h>

/**
 * Selects rectangles on the canvas with the left button and reports each one.
 *
 * What it inherits would move the axes by itself, keep every rectangle on a stack, refuse small
 * ones and jump back at a right click or a key: all that is switched off. A click, a selection of
 * less than `clickPixels` in both directions, is no rectangle.
 */
class PlotZoomer : public QwtPlotZoomer
{
    Q_OBJECT
public:
    /** `pen` draws the rectangle while it is selected. */
    PlotZoomer(QWidget *canvas, const QPen &pen);

    using QwtPlotZoomer::reset;
    void zoom(const QRectF &rectangle) override;
    void zoom(int offset) override;

protected:
    QSizeF minZoomSize() const override;
    bool accept(QPolygon &selection) const override;
};
