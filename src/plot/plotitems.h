#pragma once

#include "plot/plotrecords.h"

#include <QColor>
#include <QPen>

class QwtPlot;

// What is drawn of the records: two curves of each channel, of its values and of its averages, and
// two limit lines of each instrument. The plot owns them.

/** Red dotted pen, 2 pixels wide: limit lines and the rubber band that places them. */
QPen limitLinePen();
/** Gives an instrument its limit lines, hidden. */
void addLimitLines(PlotDevice &device, QwtPlot *plot);
void removeLimitLines(PlotDevice &device);

/** The colour in which a new channel is drawn. `ch` is the channel number from 0. */
QColor defaultChannelColor(int ch);

/** Adds a channel to an instrument, with its curves; they are hidden unless it is the main one. */
void appendChannel(PlotDevice &device, bool isMainDevice, QwtPlot *plot);
/** Removes the last channel of an instrument with its curves. */
void removeLastChannel(PlotDevice &device);

/**
 * Gives the curves of a channel what they show at present: its difference, else its values. True
 * when that continues what they showed before.
 */
bool showSeries(const PlotChannel &channel);

/** Every channel that shows a difference against an instrument shows its values again. */
void endDifferencesAgainst(int qwtIndex, QMap<int, PlotDevice> &devices);

/**
 * The times at which the curves that are shown have got new points since the call before, from the
 * last one before; empty when there are none. They count as painted from now on.
 */
ValueRange takeNewTimes(const QMap<int, PlotDevice> &devices);

/** A curve is visible when its instrument, its kind and its channel all are. */
void updateVisibility(const PlotDevice &device, const PlotChannel &channel);
void updateVisibility(const PlotDevice &device);
/** Leaves one channel of the instrument on show, and that only on the main instrument. */
void showOnly(PlotDevice &device, int shownCh, bool isMainDevice);

/** Range, from point `first` on, of the curve that decides on the Y scale: of the visible ones,
 * values first. */
ValueRange decidingRange(const PlotChannel &channel, int first);
