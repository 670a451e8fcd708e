#pragma once

#include "widgets/cellsigns.h"

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
    QString spoken; ///< what a screen reader says in place of the text; empty: the text
    CellSign sign = CellSign::None;
};

using RowContent = std::array<CellContent, tableColumns>;

/** What became of the latest point of a row. */
enum class ValueMark {
    None,     ///< nothing came since the row was brought up to date as a whole
    Accepted, ///< the plot took it
    Alarm,    ///< the plot took it, and it lies beyond a limit
    Rejected, ///< the plot did not take it
};

/** The latest value of a row. */
struct LatestValue {
    QString value;
    QString unit;
    std::optional<double> received; ///< the value as the instrument sent it; none: nothing came
    ValueMark mark = ValueMark::None;
};

/** What is known of an instrument's row. */
struct InstrumentState : LatestValue {
    QString name;
    QString number;
    int channel = -1; ///< where the value came from, from 0; -1: there is no channel
    bool connected = false;
    bool shown = true; ///< its curves are on the plot
    bool current = false;
    bool hovered = false;    ///< the mouse is over the row
    bool exchanging = false; ///< blocks are still to be read or written; it does not measure
};

/** What is known of a channel's row. */
struct ChannelState : LatestValue {
    int number = 0; ///< from 0
    QColor color;
    bool shown = true;  ///< its curves are on the plot
    bool fresh = false; ///< the latest point of the instrument is its
    QString deltaX;
    QString deltaY;
    int referenceChannel = -1;   ///< from 0; -1: no difference is measured
    QString referenceInstrument; ///< type and number, as the tool tip names it
    bool inactive = false;       ///< the instrument does not measure it
    bool main = false;
    bool hovered = false; ///< the mouse is over the row
};

/** What stands in place of a value that is not there. */
QString missingValue();
/** A text of the user's own as a tool tip: what looks like markup in it is none. */
QString asToolTip(const QString &text);

/** Background of the current instrument and of the main channel. */
QColor currentColor();
/** Background of the channel that received the latest point. */
QColor freshColor();

RowContent instrumentRow(const InstrumentState &state);
RowContent channelRow(const ChannelState &state);
