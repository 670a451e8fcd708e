#pragma once

#include <QObject>

class HeadedTable;

/**
 * The height of the lower of two tables that share `total`, all in pixels. What one of them does
 * not need the other one gets; where both lack room, each has half. What neither needs is the upper
 * one's.
 */
int lowerShare(int total, int upperNeed, int lowerNeed);

/** Divides the height that two tables have together, one above the other, by what they need. */
class TableHeights : public QObject
{
    Q_OBJECT
public:
    TableHeights(HeadedTable *upper, HeadedTable *lower, QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void divide();

    HeadedTable *m_upper;
    HeadedTable *m_lower;
};
