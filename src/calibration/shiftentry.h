#pragma once

#include "device/instrumentblocks.h"

#include <QStringList>
#include <QVector>

// The zero shifts as 37 texts in the order of their block: 17 of the measuring ranges, 16 of the
// channels, 4 of the resistors.

/**
 * The place in the block of the range shift in a cell of the table of three input ranges (rows) by
 * zero and eight calibration voltages (columns); -1 for a cell without one. Column by column, from
 * top to bottom, the cells are in the order of the block.
 */
int rangeShiftIndex(int row, int column);

/** The texts that show the shifts. */
QStringList shownShifts(const ZeroShifts &shifts);

/** The places in the block in the order in which entered texts are taken. */
QVector<int> shiftEntryOrder();

/**
 * Takes entered texts into `shifts`; numbers whose texts have not changed stay as they are. False
 * at the first text that is no number: what was taken before stays, the others are unchanged.
 * False, and nothing taken, unless there are 37.
 */
bool enterShifts(const QStringList &entered, ZeroShifts &shifts);
