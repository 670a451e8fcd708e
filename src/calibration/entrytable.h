#pragma once

#include "widgets/rowdelegate.h"

class QTableWidget;
class QTableWidgetItem;

/**
 * Edits and paints the cells of an entry table: a refresh does not take away what is being typed, a
 * text too long for its cell is written smaller, and a cell that is not in use has a ground of its
 * own.
 */
class EntryDelegate : public RowDelegate
{
    Q_OBJECT
public:
    using RowDelegate::RowDelegate;

    void setEditorData(QWidget *editor, const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

/** Lets the numbers and headings in a tab be read while they are locked. */
void keepReadableWhileLocked(QWidget *tab);

/** Gives a table its empty cells, which share its whole room evenly, and their delegate. */
void prepareEntryTable(QTableWidget *table);

/** Shows a text in an item of an entry table, in which something can be entered if it is in use. */
void showEntry(QTableWidgetItem *item, const QString &text, bool isInUse);
