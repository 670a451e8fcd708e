#pragma once

#include <qwt_plot_picker.h>

class QwtNOX;

/**
 * Reads the cross-hair: tells time and value under the mouse and remembers where on the plot the
 * mouse was last, as the property "pos" (QPointF, coordinates of the axes).
 */
class QwtNoxQwtPlotPicker : public QwtPlotPicker
{
    Q_OBJECT
public:
    /** `plot`, on whose canvas this works, tells how times and values are written. */
    explicit QwtNoxQwtPlotPicker(QwtNOX *plot);

    QwtText trackerTextF(const QPointF &point) const override;

private:
    const QwtNOX *m_plot;
};
