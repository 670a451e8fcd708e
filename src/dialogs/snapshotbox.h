#pragma once

#include "dialogs/snapshotmatch.h"
#include "registry/noxlist.h"

#include <QObject>

class QAbstractButton;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

/**
 * The box of an instrument's stored configurations: which one it has, and the search for others.
 *
 * The instrument may go at any time, also while a question is asked or a snapshot is applied.
 */
class SnapshotBox : public QObject
{
    Q_OBJECT
public:
    struct Widgets {
        QLabel *status; ///< seen while the configuration differs from its snapshot
        QAbstractButton *save;
        QAbstractButton *add;
        QAbstractButton *remove;
        QLineEdit *search;
        QComboBox *found;
        QPlainTextEdit *info;
    };

    /** The widgets and the registry are not owned. */
    SnapshotBox(const Widgets &widgets, noxList *registry);

    /** The instrument by its registry index; -1 for none. */
    void setIndex(int index);

    /** Looks for the snapshot that the configuration has. The results of a search and a description
     *  that is being written stay. */
    void match();
    /** Offers the snapshots that a text finds; without a text, the one that there is. */
    void search(const QString &text);
    /** Applies the snapshot that is chosen among those found. */
    void choose();

    void save();
    void saveAsNew();
    /** Asks first, under the title of the dialog. */
    void remove(QWidget *dialog);

private:
    void paint(const SnapshotMatch &match);
    void paintInfo(const SnapshotMatch &match);
    void offer(const QString &text, const QVariant &data);
    void apply(int snapshotId);
    void tellUnsuited(bool isModelKnown);
    void store(int snapshotId);
    void noteDescription();
    noxList::_nox *record() const { return m_registry->getNoxByIndex(m_index); }

    Widgets m_widgets;
    noxList *m_registry;
    int m_index = -1;
    SnapshotMatch m_match;        ///< as it is shown
    bool m_offersResults = false; ///< the list holds what a search has found
    int m_justChosen = 0;         ///< one choice is reported by two signals
};
