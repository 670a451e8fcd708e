#pragma once

#include "plot/plotrecords.h"

#include <QStringList>

// What of an instrument on the plot goes into a results file.

/** The channel whose times are those of the rows: the first with the most points. There must be a
 *  channel. */
const PlotChannel &longestChannel(const QVector<PlotChannel> &channels);

/** The unit of each channel's latest point. */
QStringList unitsOf(const PlotDevice &instrument);
