#include "app/swatch.h"

#include <QPainter>
#include <QPixmap>

namespace
{

constexpr int swatchSize = 16;
constexpr int swatchFrame = 2;

QPixmap swatchPixmap(const QColor &color, int scale)
{
    QPixmap pixmap(swatchSize * scale, swatchSize * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(color);
    if (color.alpha() == 0)
        return pixmap;
    QPainter painter(&pixmap);
    painter.setPen(QPen(Qt::white, swatchFrame, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const int inset = swatchFrame / 2;
    const int side = swatchSize - swatchFrame;
    painter.drawRect(inset, inset, side, side);
    return pixmap;
}

} // namespace

QIcon swatchIcon(const QColor &color)
{
    QIcon icon;
    for (const int scale : {1, 2})
        icon.addPixmap(swatchPixmap(color, scale));
    return icon;
}
