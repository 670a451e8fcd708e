#include "app/tablesetup.h"

#include "widgets/qlabelclick.h"
#include "widgets/rowdelegate.h"

#include <QHeaderView>
#include <QIcon>
#include <QTableWidget>

namespace
{

constexpr QSize pictureSize(20, 20);
constexpr int titleMargin = 2;

/** Makes the title as small as it must be to be read whole. */
void fitTitle(QLabel *label, int width)
{
    const int needed = label->fontMetrics().horizontalAdvance(label->text());
    const int available = width - 2 * titleMargin;
    if (width == 0 || needed <= available)
        return;
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * available / needed);
    label->setFont(font);
}

QLabel *headerCell(const TableColumn &column, bool clickable)
{
    QLabel *label = nullptr;
    if (clickable) {
        label = new QLabelClick;
        label->setCursor(Qt::PointingHandCursor);
    } else {
        label = new QLabel;
        label->setCursor(Qt::ArrowCursor);
    }
    label->setAlignment(Qt::AlignCenter);
    label->setAutoFillBackground(true);
    label->setAttribute(Qt::WA_NoMousePropagation); // the rows may lie below it
    if (!column.picture.isEmpty()) {
        label->setToolTip(column.title);
        label->setAccessibleName(column.title);
        label->setPixmap(QIcon(column.picture).pixmap(pictureSize));
        return label;
    }
    label->setText(column.title);
    fitTitle(label, column.width);
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

QPoint placeBelowCell(const QTableWidget *table, int row, int column)
{
    const QRect cell = table->visualRect(table->model()->index(row, column));
    return table->viewport()->mapToGlobal(cell.bottomLeft());
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
