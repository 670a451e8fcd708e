#pragma once

#include "device/instrumentblocks.h"

#include <QStringList>

#include <array>
#include <optional>

// Reference data and zero shifts as texts, and the numbers for which entered texts stand. A text
// has a decimal point or a decimal comma. As long as it is the one by which a number is shown, it
// stands for that number with all its digits.

/** Reference data as texts: a row of value, a and b for each of R1 to R4 and Uref, and T0. */
struct ReferenceTexts {
    static constexpr int rows = 5;
    static constexpr int columns = 3;

    std::array<std::array<QString, columns>, rows> cells;
    QString t0;
};

/** Whether a row (0 to 4) means something for the model. That of Uref always does. */
bool isRowInUse(quint32 typeCode, int row);

/** The texts that show the data of a model; "-" in rows that are not in use. */
ReferenceTexts shownReferences(const ReferenceData &data, quint32 typeCode);

/**
 * The data for which texts stand, where `current` was shown before: numbers whose texts have not
 * changed stay as they are, and resistors that the model lacks become 0. Nothing when any of the
 * texts is no number.
 */
std::optional<ReferenceData> enteredReferences(const ReferenceTexts &entered,
                                               const ReferenceData &current, quint32 typeCode);

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

/**
 * Takes entered texts into `shifts`; numbers whose texts have not changed stay as they are. False
 * at the first text that is no number: what was taken before stays, the others are unchanged.
 * False, and nothing taken, unless there are 37.
 */
bool enterShifts(const QStringList &entered, ZeroShifts &shifts);
