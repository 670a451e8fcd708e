#pragma once

#include <qwt_plot_textlabel.h>

/**
 * A text on the canvas that continues on the next line where the canvas is too narrow for it. Its
 * text has the flag Qt::TextWordWrap, and a font of its own.
 */
class WrappedLabel : public QwtPlotTextLabel
{
public:
    /** Where on the canvas the text stands, lines and all. */
    QRectF textRect(const QRectF &canvas, const QSizeF &textSize) const override;
};
