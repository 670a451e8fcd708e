#include "app/tablesetup.h"

#include "app/rowdelegate.h"
#include "widgets/qlabelclick.h"

#include <QHeaderView>
#include <QIcon>
#include <QTableWidget>

namespace
{

constexpr QSize pictureSize(20, 20);

QLabel *headerCell(const TableColumn &column, bool clickable)
{
    QLabel *label = nullptr;
    if (clickable) {
        label = new QLabelClick;
        label->setCursor(Qt::PointingHandCursor);
    } else {
        label = new QLabel;
    }
    label->setAlignment(Qt::AlignCenter);
    label->setAutoFillBackground(true);
    if (column.picture.isEmpty())
        label->setText(column.title);
    else
        label->setPixmap(QIcon(column.picture).pixmap(pictureSize));
    return label;
}

void setWidth(QHeaderView *header, int section, int width)
{
    header->setSectionResizeMode(section, width > 0 ? QHeaderView::Fixed : QHeaderView::Stretch);
    if (width > 0)
        header->resizeSection(section, width);
}

} // namespace

void setUpTable(QTableWidget *table, const QVector<TableColumn> &columns)
{
    table->setColumnCount(columns.size());
    table->setRowCount(1);
    for (int column = 0; column < columns.size(); ++column) {
        setWidth(table->horizontalHeader(), column, columns.at(column).width);
        table->setCellWidget(0, column, headerCell(columns.at(column), column == 0));
    }
    table->setItemDelegate(new RowDelegate(table));
    table->setSelectionMode(QAbstractItemView::NoSelection);
    table->setMouseTracking(true);
}

void selectTableRow(QTableWidget *table, int row)
{
    if (row < 1) {
        table->clearSelection();
        return;
    }
    table->selectionModel()->select(table->model()->index(row, 0),
                                    QItemSelectionModel::ClearAndSelect |
                                        QItemSelectionModel::Rows);
}
