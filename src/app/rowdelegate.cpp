#include "app/rowdelegate.h"

#include "app/legibility.h"

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

} // namespace

void RowDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant text = index.data(Qt::ForegroundRole);
    if (text.isValid()) {
        const QColor color = legible(text.value<QBrush>().color(), groundOf(*option));
        option->palette.setColor(QPalette::Text, color);
        option->palette.setColor(QPalette::HighlightedText, color);
    }
    if (option->backgroundBrush.style() != Qt::NoBrush)
        option->state &= ~QStyle::State_Selected;
    if (option->features & QStyleOptionViewItem::HasDecoration)
        option->textElideMode = Qt::ElideNone; // beside the swatch two digits just have room
}
