#pragma once

#include <QStyledItemDelegate>

/**
 * Paints table cells so that the selection of their row never hides the colours of their own, that
 * faint texts can be read on any ground, and that the cell on which the keyboard acts is framed.
 */
class RowDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
