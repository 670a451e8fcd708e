#include "app/rowhover.h"

#include <QEvent>
#include <QTableWidget>

#include <utility>

RowHover::RowHover(QTableWidget *table, QSet<int> menuColumns, QObject *parent)
    : QObject(parent)
    , m_table(table)
    , m_menuColumns(std::move(menuColumns))
{
    m_table->viewport()->installEventFilter(this);
}

void RowHover::enter(int row, int column)
{
    const bool opensMenu = row > 0 && m_menuColumns.contains(column);
    m_table->viewport()->setCursor(opensMenu ? Qt::PointingHandCursor : Qt::ArrowCursor);
    if (row == m_row)
        return;
    const int from = std::exchange(m_row, row);
    emit moved(from, row);
}

bool RowHover::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Leave)
        enter(0, 0);
    return QObject::eventFilter(watched, event);
}
