#pragma once

#include <QStyledItemDelegate>

/**
 * Paints table cells so that the selection of their row never hides the colours of their own, and
 * that faint texts can be read on any ground.
 */
class RowDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
