#pragma once

#include <QObject>

class QLabel;
class QTableWidget;
class noxList;
class noxSql;

/**
 * Tells in the empty table of instruments what can be done next, and in the window that nothing is
 * kept while the database cannot be used.
 *
 * The ports are looked at when the window becomes the active one and when the last instrument goes.
 */
class StartHints : public QObject
{
    Q_OBJECT
public:
    /** The instruments' table is empty but for its header; the label is hidden while there is
     *  nothing to tell. None is owned, and all of them outlive the hints. */
    StartHints(QTableWidget *instruments, QLabel *databaseLabel, const noxList *registry,
               noxSql *database);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void refresh();
    int neededHeight() const;

    QTableWidget *m_table;
    QLabel *m_label; ///< in the table, its child
    const noxList *m_registry;
    int m_leastHeight; ///< of the table with instruments
};
