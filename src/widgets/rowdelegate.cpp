#include "widgets/rowdelegate.h"

#include "widgets/changemark.h"
#include "widgets/legibility.h"

#include <QPainter>

namespace
{

/** The opaque ground on which the text of a cell is painted: its own over that of its row. */
QColor groundOf(const QStyleOptionViewItem &option)
{
    const bool isSelected = option.state & QStyle::State_Selected;
    const QColor row = option.palette.color(isSelected ? QPalette::Highlight : QPalette::Base);
    const bool hasOwn = option.backgroundBrush.style() != Qt::NoBrush;
    return hasOwn ? blended(option.backgroundBrush.color(), row) : row;
}

void paintFocus(QPainter *painter, const QRect &cell)
{
    constexpr int width = 2;
    painter->setPen(QPen(accentColor(), width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(cell.adjusted(width / 2, width / 2, -width / 2, -width / 2));
}

/** Three dots at the left of the cell. */
void paintWaiting(QPainter *painter, const QRect &cell)
{
    constexpr int dot = 3;
    constexpr int pitch = 5;
    QRect place(0, 0, dot, dot);
    place.moveCenter({cell.left() + 2 * pitch, cell.center().y()});
    for (const int shift : {-pitch, 0, pitch})
        painter->fillRect(place.translated(shift, 0), accentColor());
}

} // namespace

void RowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                        const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    painter->save();
    if (index.data(waitingRole).toBool())
        paintWaiting(painter, option.rect);
    if (index.data(changedRole).toBool())
        paintChange(painter, option.rect);
    if (option.state & QStyle::State_HasFocus)
        paintFocus(painter, option.rect);
    painter->restore();
}

void RowDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant text = index.data(Qt::ForegroundRole);
    if (text.isValid()) {
        const QColor color = legible(text.value<QBrush>().color(), groundOf(*option));
        option->palette.setColor(QPalette::Text, color);
        option->palette.setColor(QPalette::HighlightedText, color);
    }
    option->state &= ~QStyle::State_HasFocus; // paintFocus() shows it
    if (option->backgroundBrush.style() != Qt::NoBrush)
        option->state &= ~QStyle::State_Selected;
    if (option->features & QStyleOptionViewItem::HasDecoration)
        option->textElideMode = Qt::ElideNone; // beside the swatch two digits just have room
}
