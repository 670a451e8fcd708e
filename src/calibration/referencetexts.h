#pragma once

#include "device/instrumentblocks.h"

#include <QString>

#include <array>
#include <optional>

/** Reference data as texts: a row of value, a and b for each of R1 to R4 and Uref, and T0. */
struct ReferenceTexts {
    static constexpr int rows = 5;
    static constexpr int columns = 3;

    std::array<std::array<QString, columns>, rows> cells;
    QString t0;
};

/** Whether a row (0 to 4) means something for the model. That of Uref always does. */
bool isRowInUse(quint32 typeCode, int row);

/** Decimals with which the value of a row (0 to 4) is shown. */
int valueDecimals(quint32 typeCode, int row);

/** The texts that show the data of a model; "-" in rows that are not in use. */
ReferenceTexts shownReferences(const ReferenceData &data, quint32 typeCode);

/**
 * The data for which texts stand, where `current` was shown before: numbers whose texts have not
 * changed stay as they are, and resistors that the model lacks become 0. Nothing when any of the
 * texts is no number.
 */
std::optional<ReferenceData> enteredReferences(const ReferenceTexts &entered,
                                               const ReferenceData &current, quint32 typeCode);
