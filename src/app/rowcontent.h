#pragma once

#include <QColor>
#include <QString>

#include <array>
#include <optional>

// What the rows of the instrument table and of the channel table show, free of any widget.

/** Columns of the instrument table. */
namespace InstrumentColumn
{
enum : int { Show, Name, Number, Value, Unit, Channel, Menu };
}

/** Columns of the channel table. */
namespace ChannelColumn
{
enum : int { Number, Value, Unit, DeltaX, DeltaY, Reference, Menu };
}

constexpr int tableColumns = 7;

/** What one cell shows. */
struct CellContent {
    QString text;
    QColor textColor = Qt::black;
    QColor background; ///< invalid: that of the table
    QColor swatch;     ///< colour of the cell's icon; transparent: an empty icon; invalid: none
    QString toolTip;
    bool waiting = false; ///< it carries the sign that something is awaited
};

using RowContent = std::array<CellContent, tableColumns>;

/** How the latest value of a row stands out. */
struct ValueMarks {
    bool fresh = false;    ///< it is the last one that arrived
    bool alarm = false;    ///< it lies beyond a limit
    bool rejected = false; ///< the plot did not take it
};

/** What is known of an instrument's row. */
struct InstrumentState {
    QString name;
    QString number;
    QString value;
    QString unit;
    std::optional<double> received; ///< the value as the instrument sent it; none: nothing came
    int channel = -1;               ///< where the value came from, from 0; -1: there is no channel
    bool attached = false;
    bool current = false;
    bool hovered = false;    ///< the mouse is over the row
    bool exchanging = false; ///< blocks are still to be read or written; it does not measure
    ValueMarks marks;
};

/** What is known of a channel's row. */
struct ChannelState {
    int number = 0; ///< from 0
    QColor color;
    bool shown = true; ///< its curves are on the plot
    QString value;
    QString unit;
    std::optional<double> received; ///< the value as the instrument sent it; none: nothing came
    QString deltaX;
    QString deltaY;
    int referenceChannel = -1;   ///< from 0; -1: no difference is measured
    QString referenceInstrument; ///< type and number, as the tool tip names it
    bool inactive = false;       ///< the instrument does not measure it
    bool main = false;
    bool hovered = false; ///< the mouse is over the row
    ValueMarks marks;
};

/** Background of the current instrument and of the main channel. */
QColor currentColor();
/** Background of the channel that received the latest point. */
QColor freshColor();

RowContent instrumentRow(const InstrumentState &state);
RowContent channelRow(const ChannelState &state);
