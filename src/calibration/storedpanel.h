#pragma once

#include "calibration/storedmatch.h"

#include <QObject>

class WorkingCopy;
class noxSql;

namespace Ui
{
class featconfui;
}

/**
 * The group "БД градуировок" of the editor: shows which stored characteristic belongs to the
 * working copy, finds, stores and removes.
 *
 * A description that is being written stays while the characteristic belongs to the same row.
 */
class StoredPanel : public QObject
{
    Q_OBJECT
public:
    /** The form outlives the panel. The database may be null. */
    StoredPanel(Ui::featconfui &form, noxSql *database);

    /** Begins with a record that no row is known of. */
    void begin(const QByteArray &record);

    /** The row that belongs to the working copy; 0: none. */
    int id() const { return m_match.id; }

    /** Shows the row that belongs to a record: that of `id`, else one with the same content. Ends a
     *  search. */
    void match(int id, const QByteArray &record);
    /** Lists what a search finds. */
    void search(const QString &text);
    /** The row that was chosen in the list; 0: none. */
    int chosenId() const;
    /** Whether choosing this row would change nothing. */
    bool isShown(int id, const QByteArray &record, const WorkingCopy &copy) const;

    /** Stores a working copy in its row; false when that fails. */
    bool save(const WorkingCopy &copy);
    /** Stores it in a new row; false when that fails. */
    bool add(const WorkingCopy &copy);

private:
    void showMatch(const StoredMatch &match);
    void showChange();
    void list(const QStringList &names, const QVector<int> &ids);
    bool showStored(int id, const WorkingCopy &copy);

    Ui::featconfui &m_form;
    noxSql *m_database;
    StoredMatch m_match;
};
