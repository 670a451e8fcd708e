#pragma once

#include "app/rowcontent.h"
#include "app/rowhover.h"
#include "registry/noxlist.h"

#include <QHash>
#include <QVector>

class QTableWidget;
class QwtNOX;

/**
 * The table of the instruments: one row per registry entry, in the order of the registry indices.
 *
 * It remembers which channel of each instrument reported last and how that value stands out.
 * Registry indices that have no row are ignored.
 */
class InstrumentTable : public QObject
{
    Q_OBJECT
public:
    InstrumentTable(QTableWidget *table, const noxList *registry, const QwtNOX *plot,
                    QObject *parent = nullptr);

    /** Brings all rows up to date and selects that of the current instrument. */
    void refresh(int currentIndex);
    /** Brings value, unit and channel of one row up to date. */
    void refreshValue(int index);

    /** The plot took a point. */
    void acceptPoint(int index, uchar ch);
    /** The plot rejected a point. */
    void rejectPoint(int index, uchar ch);
    /** The point just taken lies beyond a limit. */
    void raiseAlarm(int index, uchar ch);

    /** A transfer's progress in the row of the instrument: -1 for an unknown one, 0 of 0 when the
     *  transfer is over. */
    void showProgress(int index, int progress, int maxProgress);

    /** The registry index shown in a row; -1 for the header and beyond the last row. */
    int indexAt(int row) const;
    /** The mouse entered a cell. */
    void hover(int row, int column) { m_hover.enter(row, column); }

signals:
    /** The user switched the curves of an instrument on or off. */
    void showToggled(int index, bool shown);

private:
    /** What the instrument reported last. */
    struct Latest {
        int channel = -1; ///< -1: nothing yet
        ValueMarks marks;
    };

    int rowOf(int index) const { return int(m_indices.indexOf(index)) + 1; }
    void mark(int index, uchar ch, const ValueMarks &marks);
    void setRowCount(int instruments);
    void addShowBox(int row);
    void bindShowBox(int row, const noxList::_nox &nox);
    void paintMark(int row);
    InstrumentState stateOf(const noxList::_nox &nox) const;

    QTableWidget *m_table;
    const noxList *m_registry;
    const QwtNOX *m_plot;
    RowHover m_hover;
    QVector<int> m_indices; ///< registry index of row 1, 2, ...
    QHash<int, Latest> m_latest;
    int m_current = -1;
};
