#include "app/tableheights.h"

#include "widgets/headedtable.h"

#include <QEvent>

#include <algorithm>

int lowerShare(int total, int upperNeed, int lowerNeed)
{
    if (upperNeed + lowerNeed <= total)
        return lowerNeed;
    return std::max(std::min(lowerNeed, total / 2), total - upperNeed);
}

TableHeights::TableHeights(HeadedTable *upper, HeadedTable *lower, QObject *parent)
    : QObject(parent)
    , m_upper(upper)
    , m_lower(lower)
{
    for (HeadedTable *table : {upper, lower}) {
        table->installEventFilter(this);
        connect(table->model(), &QAbstractItemModel::rowsInserted, this, &TableHeights::divide);
        connect(table->model(), &QAbstractItemModel::rowsRemoved, this, &TableHeights::divide);
    }
}

bool TableHeights::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        divide();
    return QObject::eventFilter(watched, event);
}

void TableHeights::divide()
{
    m_lower->setPreferredHeight(lowerShare(m_upper->height() + m_lower->height(),
                                           m_upper->neededHeight(), m_lower->neededHeight()));
}
