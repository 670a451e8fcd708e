#pragma once

#include "app/windowtables.h"

#include <QVector>

class HeadedTable;
class QwtNOX;

/**
 * The table of the instruments: one row per registry entry, in the order of the registry indices.
 *
 * It remembers which channel of each instrument reported last and how that value stands out. What
 * points do to the rows is only noted when they come, which costs a few nanoseconds, and shown by
 * paintTouched(). Instruments that have no row are ignored.
 */
class InstrumentTable : public QObject
{
    Q_OBJECT
public:
    InstrumentTable(HeadedTable *table, const noxList *registry, const QwtNOX *plot,
                    QObject *parent = nullptr);

    /** Brings all rows up to date and selects that of the current instrument. */
    void refresh(int currentIndex);
    /** Brings value, unit and channel of one row up to date. */
    void refreshValue(int index);

    /** A point came to the plot. */
    void notePoint(int qwtIndex, uchar ch, ValueMark mark);
    /** An exchange with the instrument was queued, or its last one is over. */
    void noteExchange(int index);
    /** Brings the rows up to date about which something was noted. */
    void paintTouched();

    /** A transfer's progress in the row of the instrument: -1 for an unknown one, 0 of 0 when the
     *  transfer is over. */
    void showProgress(int index, int progress, int maxProgress);

    /** Does what a click on the check box of a row does. */
    void toggleShow(int row);
    /** Does what a click on the picture above the check boxes does: shows the curves of all
     *  instruments or, where all are shown, hides all but those of the current one. */
    void toggleShowAll();

    /** The registry index shown in a row; -1 for the header and beyond the last row. */
    int indexAt(int row) const;
    /** The place on the screen right below the cell from which the menu of a row opens. */
    QPoint menuPlace(int row) const;
    /** The mouse entered a cell. */
    void hover(int row, int column) { m_hover.enter(row, column); }

signals:
    /** The user switched the curves of an instrument on or off. */
    void showToggled(int index, bool shown);

private:
    /** A row below the header, and what its instrument reported last. */
    struct Row {
        int index = -1;   ///< registry index
        int channel = -1; ///< -1: nothing yet
        ValueMark mark = ValueMark::None;
        bool touched = false; ///< something was noted and not shown yet
    };

    int rowOf(int index) const;
    void setRows(const QList<int> &indices);
    void setRowCount(int instruments);
    void addShowBox(int row);
    void bindShowBox(int row, const noxList::_nox &nox, const InstrumentState &state);
    void paintCells(int row, int first, int last);
    InstrumentState stateOf(const noxList::_nox &nox) const;

    HeadedTable *m_table;
    const noxList *m_registry;
    const QwtNOX *m_plot;
    RowHover m_hover;
    QVector<Row> m_rows;      ///< of table row 1, 2, ...
    QVector<int> m_rowByPlot; ///< where an instrument is in m_rows, by its plot index
    int m_current = -1;
};
