#pragma once

#include <QString>
#include <QVector>

class QPoint;
class QTableWidget;

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
void setUpTable(QTableWidget *table, const QVector<TableColumn> &columns);

/** The place on the screen right below a cell. */
QPoint placeBelowCell(const QTableWidget *table, int row, int column);

/** Selects a row; a row below 1 selects nothing. */
void selectTableRow(QTableWidget *table, int row);
