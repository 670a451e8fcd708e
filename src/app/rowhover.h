#pragma once

#include <QObject>
#include <QSet>

class QTableWidget;

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
