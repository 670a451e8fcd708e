#include "app/rowpainter.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QTableWidget>

namespace
{

constexpr int swatchRole = Qt::UserRole;
constexpr int swatchSize = 16;
constexpr int swatchFrame = 2;

QTableWidgetItem *itemAt(QTableWidget *table, int row, int column)
{
    if (QTableWidgetItem *item = table->item(row, column))
        return item;
    auto *item = new QTableWidgetItem;
    item->setTextAlignment(Qt::AlignCenter);
    table->setItem(row, column, item);
    return item;
}

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

QIcon swatchIcon(const QColor &color)
{
    QIcon icon;
    for (const int scale : {1, 2})
        icon.addPixmap(swatchPixmap(color, scale));
    return icon;
}

void paintSwatch(QTableWidgetItem *item, const QColor &color)
{
    if (item->data(swatchRole).value<QColor>() == color)
        return;
    item->setData(swatchRole, color);
    item->setIcon(color.isValid() ? swatchIcon(color) : QIcon());
}

// An item reports a change, and its cell is painted again, only where the new content differs.
void paintCell(QTableWidgetItem *item, const CellContent &content)
{
    item->setText(content.text);
    item->setToolTip(content.toolTip);
    item->setForeground(content.textColor);
    item->setBackground(content.background.isValid() ? QBrush(content.background) : QBrush());
    paintSwatch(item, content.swatch);
}

} // namespace

void paintRow(QTableWidget *table, int row, const RowContent &content, int first, int last)
{
    for (int column = first; column <= last; ++column)
        paintCell(itemAt(table, row, column), content[size_t(column)]);
}
