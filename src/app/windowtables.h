#pragma once

#include "app/rowcontent.h"
#include "registry/noxlist.h"

#include <QObject>
#include <QSet>
#include <QVector>

class HeadedTable;
class QIcon;
class QPoint;
class QTableWidget;
class QwtNOX;

// What the tables of the main window have in common.

/** One column of a table: what its header cell shows, and how wide it is. */
struct TableColumn {
    QString title;   ///< the tool tip of a picture
    QString picture; ///< path of the picture shown instead of the title
    int width = 0;   ///< pixels; 0: the column takes what the others leave
};

/**
 * Prepares a table of the main window: its columns, and row 0 as the header, made of cell widgets.
 * A click selects nothing; selectTableRow() does.
 */
void setUpTable(HeadedTable *table, const QVector<TableColumn> &columns);

/** Fills in what the plot has of a channel of an instrument that is on it. Before the first point
 *  the unit is the name of what the channel measures. */
void readLatest(LatestValue *latest, const QwtNOX &plot, const noxList::_nox &nox, uchar ch);

/**
 * Brings the cells `first` to `last` of a row to their content. Cells that are missing are made;
 * what already is as it should be is not touched, so that nothing is painted again in vain.
 */
void paintRow(QTableWidget *table, int row, const RowContent &content, int first = 0,
              int last = tableColumns - 1);

/** A square of 16x16 pixels in a colour with a white frame of 2; transparent: an empty square. */
QIcon swatchIcon(const QColor &color);

/** Selects a row; a row below 1 selects nothing. */
void selectTableRow(QTableWidget *table, int row);

/** The place on the screen right below a cell. */
QPoint placeBelowCell(const QTableWidget *table, int row, int column);

/** Follows the mouse over a table: which row it is on, and a hand over what a click opens. */
class RowHover : public QObject
{
    Q_OBJECT
public:
    /** `menuColumns`: where a click on a row below the header opens a menu. */
    RowHover(QTableWidget *table, QSet<int> menuColumns, QObject *parent = nullptr);

    /** The row under the mouse; 0 (the header) while there is none. */
    int row() const { return m_row; }
    /** The mouse entered a cell. */
    void enter(int row, int column);

signals:
    /** The mouse went from one row to another; 0 stands for none. */
    void moved(int from, int to);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTableWidget *m_table;
    QSet<int> m_menuColumns;
    int m_row = 0;
};

/**
 * Divides the height that two tables have together, one above the other, by what they need. What
 * one of them does not need the other one gets; where both lack height, each has half. What neither
 * needs is the upper one's.
 */
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
