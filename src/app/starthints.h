#pragma once

#include <QObject>
#include <QString>

class QLabel;
class noxList;
class noxSql;

/** What can be done while there is no instrument, given how many serial ports there are and how
 *  many of them no program has open. */
QString instrumentHint(int ports, int freePorts);

/** That settings are lost, and what can be done about it; the path is that of the database. */
QString databaseHint(const QString &path);

/**
 * Tells in the window what can be done next while nothing is connected, and that nothing is kept
 * when the database cannot be used.
 *
 * The ports are looked at when the window becomes the active one and when the last instrument goes.
 */
class StartHints : public QObject
{
    Q_OBJECT
public:
    /** Where the hints are shown; the labels are hidden while there is nothing to tell. */
    struct Labels {
        QLabel *instruments = nullptr;
        QLabel *database = nullptr;
    };

    /** None is owned; all of them outlive the hints. */
    StartHints(const Labels &labels, const noxList *registry, noxSql *database);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void refresh();

    QLabel *m_label;
    const noxList *m_registry;
};
