#pragma once

#include <Qt>

// The signs that RowDelegate paints into the cells of a table beside their texts.

/** What a cell tells by a sign at its left, and not by colour alone. */
enum class CellSign : int {
    None,
    Waiting, ///< three dots: something is still awaited
    Fresh,   ///< one dot: it came last
    Alarm    ///< an exclamation mark: it lies beyond a limit
};

/** Role of the CellSign of a cell, as a number. */
constexpr int signRole = Qt::UserRole + 1;

/** Role of a bool: what the cell shows differs from what the instrument holds; a corner. */
constexpr int changedRole = Qt::UserRole + 2;
