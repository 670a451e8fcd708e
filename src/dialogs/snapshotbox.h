#pragma once

#include "registry/noxlist.h"
#include "storage/noxsql.h"

#include <QObject>

#include <optional>

namespace Ui
{
class devConfUI;
}

/** What the box of stored configurations shows of the present one. */
struct SnapshotMatch {
    int id = 0;                ///< of the snapshot that the configuration has or comes from
    QString name;              ///< of that snapshot, or that there is none
    QString info;              ///< its description
    QString hint;              ///< stands where there is no description
    bool isFound = false;      ///< there is such a snapshot, which can be described
    bool isChanged = false;    ///< the configuration differs from it
    bool canBeSaved = false;   ///< the snapshot may follow the configuration
    bool canBeRemoved = false; ///< the snapshot is no factory one
};

/**
 * Decides from the snapshot that the record names, if it is stored, and from those that equal the
 * configuration, the one to be preferred first.
 */
SnapshotMatch matchSnapshot(const std::optional<noxSql::noxSqlItem> &named,
                            const QVector<noxSql::noxSqlItem> &equal);

/** Stores the configuration of an instrument with a description in place of a snapshot, or as a new
 *  one (0 or a factory one), which becomes that of its record. False when that fails. */
bool storeSnapshot(noxSql &database, noxList::_nox &nox, const QString &info, int snapshotId);

/**
 * What the database keeps of an instrument: which stored configuration it has, the search for
 * others, and their removal.
 *
 * The instrument may go at any time, also while a question is asked or a snapshot is applied.
 */
class SnapshotBox : public QObject
{
    Q_OBJECT
public:
    /** The form outlives the box; the registry is not owned. */
    SnapshotBox(Ui::devConfUI &form, noxList *registry);

    /** The instrument by its registry index; -1 for none. */
    void setIndex(int index);

    /** Looks for the snapshot that the configuration has. The results of a search and a description
     *  that is being written stay. */
    void match();
    /** Offers the snapshots that a text finds; without a text, the one that there is. */
    void search(const QString &text);
    /** Applies the snapshot that is chosen among those found. */
    void choose();

    /** Stores configuration and description in the snapshot that is shown. */
    void save();
    /** Stores them as a snapshot of its own. */
    void saveAsNew();
    /** Removes the snapshot that is shown, after a question under the title of the dialog. */
    void remove();
    /** Removes all that is stored of the instrument, after a question. */
    void removeInstrument();

signals:
    /** All that was stored of an instrument (registry index) has been removed. */
    void instrumentRemoved(int index);

private:
    bool isRemovalWanted() const;
    void paint(const SnapshotMatch &match);
    void paintInfo(const SnapshotMatch &match);
    void offer(const QString &text, const QVariant &data);
    void apply(int snapshotId);
    void tellUnsuited(bool isModelKnown);
    void store(int snapshotId);
    void noteDescription();
    noxList::_nox *record() const { return m_registry->getNoxByIndex(m_index); }

    Ui::devConfUI &m_form;
    noxList *m_registry;
    int m_index = -1;
    SnapshotMatch m_match;        ///< as it is shown
    bool m_offersResults = false; ///< the list holds what a search has found
    int m_justChosen = 0;         ///< one choice is reported by two signals
};
