#pragma once

#include "widgets/rowdelegate.h"

/** The ground of a cell in which something is still missing. */
QColor incompleteColor();

/** Lets an instrument's number, 1 to 65535, be entered into a table cell, and nothing else. */
class NumberDelegate : public RowDelegate
{
    Q_OBJECT
public:
    using RowDelegate::RowDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
};
