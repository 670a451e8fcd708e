#include "app/rowdelegate.h"

void RowDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->backgroundBrush.style() != Qt::NoBrush)
        option->state &= ~QStyle::State_Selected;
    if (option->features & QStyleOptionViewItem::HasDecoration)
        option->textElideMode = Qt::ElideNone; // beside the swatch two digits just have room
    const QVariant text = index.data(Qt::ForegroundRole);
    if (text.isValid())
        option->palette.setBrush(QPalette::HighlightedText, text.value<QBrush>());
}
