#pragma once

#include <QList>

#include <optional>

class QwtNOX;
class noxList;
class optionsNOX8;

/** The smallest plot index from 0 that is not in use; -1 when more than 254 are. */
int freePlotIndex(const QList<int> &used);

/**
 * Gives an instrument a place on the plot; the first one there becomes the main instrument.
 * `channelCount` is that of its model, 0 when that is unknown. Returns the plot index, -1 when the
 * plot is full.
 */
int attachToPlot(QwtNOX *plot, uchar channelCount);

/**
 * The image of the instrument that has a place on the plot; null when nobody has it. It tells
 * instruments apart where both indices may have been given to another one meanwhile.
 */
optionsNOX8 *imageOnPlot(const noxList &registry, int qwtIndex);

/** The latest value that the plot took from a channel, as it came; none while there is none. */
std::optional<double> receivedValue(const QwtNOX &plot, int qwtIndex, uchar ch);
