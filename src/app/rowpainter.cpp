#include "app/rowpainter.h"

#include "app/swatch.h"
#include "widgets/rowdelegate.h"

#include <QTableWidget>

namespace
{

constexpr int swatchRole = Qt::UserRole;

QTableWidgetItem *itemAt(QTableWidget *table, int row, int column)
{
    if (QTableWidgetItem *item = table->item(row, column))
        return item;
    auto *item = new QTableWidgetItem;
    item->setTextAlignment(Qt::AlignCenter);
    table->setItem(row, column, item);
    return item;
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
    item->setData(waitingRole, content.waiting);
    paintSwatch(item, content.swatch);
}

} // namespace

void paintRow(QTableWidget *table, int row, const RowContent &content, int first, int last)
{
    for (int column = first; column <= last; ++column)
        paintCell(itemAt(table, row, column), content[size_t(column)]);
}
