#pragma once

class QString;
class QwtPlot;

/** Saves what the plot shows now, in the size that it has on the screen, as a PNG file. False, and
 *  an existing file unharmed, when that fails. */
bool savePlotImage(QwtPlot *plot, const QString &fileName);
