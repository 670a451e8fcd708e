#pragma once

#include "app/rowcontent.h"
#include "app/rowhover.h"
#include "registry/noxlist.h"

#include <QVector>

class QTableWidget;
class QwtNOX;

/**
 * The table of the channels of one instrument, channel c in row c + 1.
 *
 * It remembers how the latest value of each channel stands out. Channels that have no row are
 * ignored.
 */
class ChannelTable : public QObject
{
    Q_OBJECT
public:
    ChannelTable(QTableWidget *table, const noxList *registry, const QwtNOX *plot,
                 QObject *parent = nullptr);

    /** Brings all rows up to date for an instrument; without one (-1) only the header remains. */
    void refresh(int index);
    /** Brings the marks of the main channel up to date. */
    void refreshMain();
    /** Takes back what marks the freshest value and the rejected ones. */
    void resetBackgrounds();

    bool hasRow(uchar ch) const { return ch < m_marks.size(); }
    /** The plot took a point of the instrument. */
    void acceptPoint(uchar ch);
    /** The plot rejected a point of the instrument. */
    void rejectPoint(uchar ch);
    /** The point just taken lies beyond a limit. */
    void raiseAlarm(uchar ch);

    /** The channel shown in a row; -1 for the header and beyond the last row. */
    int channelAt(int row) const { return row <= m_marks.size() ? row - 1 : -1; }
    /** The mouse entered a cell. */
    void hover(int row, int column) { m_hover.enter(row, column); }

private:
    void paint(int ch, int first = 0, int last = tableColumns - 1);
    ChannelState stateOf(const noxList::_nox &nox, int ch) const;
    void addReference(ChannelState *state, const noxList::_nox &nox) const;

    QTableWidget *m_table;
    const noxList *m_registry;
    const QwtNOX *m_plot;
    RowHover m_hover;
    int m_index = -1;            ///< registry index of the instrument shown
    int m_main = -1;             ///< the main channel as it is marked
    QVector<ValueMarks> m_marks; ///< by channel
};
