#include "plot/wrappedlabel.h"

#include <QFontMetricsF>

#include <cmath>

QRectF WrappedLabel::textRect(const QRectF &canvas, const QSizeF &textSize) const
{
    if (textSize.width() <= canvas.width())
        return QwtPlotTextLabel::textRect(canvas, textSize);
    const QFontMetricsF metrics(text().font());
    const QRectF lines = metrics.boundingRect(canvas, text().renderFlags(), text().text());
    // As wide as the longest line, on whole pixels: what lies beside stays in sight.
    return QwtPlotTextLabel::textRect(canvas,
                                      {std::ceil(lines.width()), std::ceil(lines.height())});
}
