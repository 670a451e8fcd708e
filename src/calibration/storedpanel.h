#pragma once

#include "storage/storeditems.h"

#include <QObject>

class WorkingCopy;
class noxSql;

namespace Ui
{
class featconfui;
}

/** What the editor shows of the database about its characteristic. */
struct StoredMatch {
    int id = 0;             ///< of the row that belongs to it; 0: none
    QString name;           ///< the one item of the list of stored ones
    QString info;           ///< description of the row
    QString hint;           ///< in place of an empty description
    bool isStored = false;  ///< there is a row: it can be described and removed
    bool isChanged = false; ///< and it holds something else: it can be saved
};

/**
 * The row that belongs to a characteristic: the one it was matched to before or loaded from, if it
 * is still there, else the one with the same record.
 */
StoredMatch matchStored(const std::optional<StoredCharacteristic> &before,
                        const std::optional<StoredCharacteristic> &withSameRecord);

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
