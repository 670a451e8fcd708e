#pragma once

#include <QStyledItemDelegate>

/** Role of a bool: something is still awaited for the cell, and it carries a quiet sign of that. */
constexpr int waitingRole = Qt::UserRole + 1;

/** Role of a bool: what the cell shows differs from what the instrument holds. */
constexpr int changedRole = Qt::UserRole + 2;

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
