#pragma once

#include "app/windowtables.h"

#include <array>
#include <bitset>

class HeadedTable;
class QwtNOX;

/**
 * The table of the channels of one instrument, channel c in row c + 1.
 *
 * It remembers how the latest value of each channel stands out. What points do to the rows is only
 * noted when they come, which costs a few nanoseconds, and shown by paintTouched().
 */
class ChannelTable : public QObject
{
    Q_OBJECT
public:
    ChannelTable(HeadedTable *table, const noxList *registry, const QwtNOX *plot,
                 QObject *parent = nullptr);

    /** Brings all rows up to date for an instrument; without one (-1) only the header remains. */
    void refresh(int index);
    /** Brings the marks of the main channel up to date. */
    void refreshMain();
    /** Takes back what marks the freshest value and the rejected ones. */
    void resetBackgrounds();

    /** A point came to the plot; one of an instrument that the table does not show is ignored. */
    void notePoint(int qwtIndex, uchar ch, ValueMark mark);
    /** True when something was noted about a channel that has no row. */
    bool lacksRows() const { return (m_touched >> size_t(m_rows)).any(); }
    /** Brings the rows up to date about which something was noted. */
    void paintTouched();

    /** The channel shown in a row; -1 for the header and beyond the last row. */
    int channelAt(int row) const { return row <= m_rows ? row - 1 : -1; }
    /** The place on the screen right below a cell. */
    QPoint placeBelow(uchar ch, int column) const;
    /** The mouse entered a cell. */
    void hover(int row, int column) { m_hover.enter(row, column); }

private:
    static constexpr int mostChannels = 256; ///< every number that fits

    void setFresh(int ch);
    void setRowCount(bool isOther);
    void forgetMarks(int first);
    void paint(int ch, int first = 0, int last = tableColumns - 1);
    ChannelState stateOf(const noxList::_nox &nox, int ch) const;
    void addReference(ChannelState *state, const noxList::_nox &nox) const;

    HeadedTable *m_table;
    const noxList *m_registry;
    const QwtNOX *m_plot;
    RowHover m_hover;
    int m_index = -1;                              ///< registry index of the instrument shown
    int m_qwtIndex = -1;                           ///< its plot index
    bool m_wasConnected = false;                   ///< when last looked at
    int m_rows = 0;                                ///< channels shown
    int m_main = -1;                               ///< the main channel as it is marked
    int m_fresh = -1;                              ///< the channel of the latest point
    std::array<ValueMark, mostChannels> m_marks{}; ///< by channel
    std::bitset<mostChannels> m_touched;           ///< something was noted and not shown yet
};
