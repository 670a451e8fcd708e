#include "calibration/entrytable.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTableWidget>

void EntryDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const auto *const field = qobject_cast<QLineEdit *>(editor);
    if (!field || !field->isModified())
        RowDelegate::setEditorData(editor, index);
}

void prepareEntryTable(QTableWidget *table)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            auto *const item = new QTableWidgetItem;
            item->setTextAlignment(Qt::AlignCenter);
            table->setItem(row, column, item);
        }
    }
    table->setItemDelegate(new EntryDelegate(table));
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
}

void showEntry(QTableWidgetItem *item, const EntryCell &cell)
{
    item->setText(cell.text);
    item->setFlags(item->flags().setFlag(Qt::ItemIsEnabled, cell.isInUse));
    item->setData(changedRole, cell.isChanged);
}
