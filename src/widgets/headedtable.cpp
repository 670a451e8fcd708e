#include "widgets/headedtable.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

HeadedTable::HeadedTable(QWidget *parent)
    : QTableWidget(parent)
{
    setTabKeyNavigation(false);
    setWordWrap(false); // a row has one line: what does not fit into it is cut at its end
}

void HeadedTable::sayTitles(const QStringList &titles)
{
    setHorizontalHeaderLabels(titles);
    for (int column = 0; column < titles.size(); ++column) {
        auto *const title = new QTableWidgetItem; // below the widget that shows it
        title->setData(Qt::AccessibleTextRole, titles.at(column));
        setItem(0, column, title);
    }
    sayRow(0, tr("Заголовок"));
}

void HeadedTable::sayRow(int row, const QString &name)
{
    if (!verticalHeaderItem(row))
        setVerticalHeaderItem(row, new QTableWidgetItem);
    verticalHeaderItem(row)->setText(name);
}

int HeadedTable::neededHeight() const
{
    return verticalHeader()->length() + 2 * frameWidth();
}

void HeadedTable::setPreferredHeight(int height)
{
    if (height == m_preferredHeight)
        return;
    m_preferredHeight = height;
    updateGeometry();
}

QSize HeadedTable::sizeHint() const
{
    const bool isBounded = maximumWidth() < QWIDGETSIZE_MAX;
    return {isBounded ? maximumWidth() : QTableWidget::sizeHint().width(),
            qMax(minimumHeight(), m_preferredHeight)};
}

void HeadedTable::showRow(int row)
{
    executeDelayedItemsLayout();
    updateGeometries(); // the range of the scroll bar counts the new rows
    scrollTo(model()->index(row, 0));
}

void HeadedTable::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    QTableWidget::scrollTo(index, hint);
    const int hidden = rowHeight(0) - visualRect(index).top();
    if (index.row() > 0 && hidden > 0)
        verticalScrollBar()->setValue(verticalScrollBar()->value() - hidden);
}

void HeadedTable::focusInEvent(QFocusEvent *event)
{
    QTableWidget::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        scrollTo(currentIndex()); // it alone shows where the focus is
}

void HeadedTable::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::SelectAll)) {
        emit allToggled();
        return;
    }
    const int row = currentRow();
    const int column = currentColumn();
    const int key = event->key();
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    const bool isMenu = key == Qt::Key_Menu ||
                        (key == Qt::Key_F10 && event->modifiers().testFlag(Qt::ShiftModifier));
    if (row < 1 || !(key == Qt::Key_Space || isReturn || isMenu))
        return QTableWidget::keyPressEvent(event);
    if (event->isAutoRepeat())
        return;
    if (isMenu || (isReturn && m_menuColumns.contains(column)))
        emit menuWanted(row, column);
    else if (isReturn)
        emit chosen(row);
    else
        emit showToggled(row);
}

void HeadedTable::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableWidget::currentChanged(current, previous);
    leaveHeader();
}

void HeadedTable::rowsInserted(const QModelIndex &parent, int first, int last)
{
    QTableWidget::rowsInserted(parent, first, last);
    leaveHeader();
}

void HeadedTable::leaveHeader()
{
    if (currentRow() == 0 && rowCount() > 1)
        setCurrentCell(1, currentColumn());
}

void HeadedTable::scrollContentsBy(int dx, int dy)
{
    QTableWidget::scrollContentsBy(dx, dy);
    pinHeader();
}

void HeadedTable::updateEditorGeometries()
{
    QTableWidget::updateEditorGeometries();
    pinHeader();
}

bool HeadedTable::viewportEvent(QEvent *event)
{
    const bool done = QTableWidget::viewportEvent(event);
    if (event->type() == QEvent::ChildAdded)
        pinHeader(); // a new cell widget lies above all others
    return done;
}

void HeadedTable::pinHeader()
{
    for (int column = 0; column < columnCount(); ++column) {
        QWidget *const title = cellWidget(0, column);
        if (!title)
            continue;
        const QRect cell = visualRect(model()->index(0, column));
        // over the grid lines too, where the rows below would show through
        title->setGeometry(cell.left(), 0, cell.width() + 1, cell.height() + 1);
        title->raise();
    }
}
