#pragma once

#include "plot/scalechoice.h"

#include <QPointF>
#include <QRectF>

// What the axes show after a zoom, as plain arithmetic.

/** Rows of scalesX() and scalesY(), 1 or above. */
struct ScaleRows {
    int x = 1;
    int y = 1;
    bool operator==(const ScaleRows &other) const { return x == other.x && y == other.y; }
};

/** What both axes show and by which rows. */
struct ZoomedView {
    ScaleRows rows;
    AxisView x; ///< seconds
    AxisView y;
    QPointF centre; ///< what a later change of the scales keeps in the middle
};

/**
 * The view of a rectangle (seconds, values): from its left edge on, but not below 0, and around
 * the multiple of the step that is next to its middle. Where no row is coarse enough it is the
 * coarsest.
 */
ZoomedView viewOfRectangle(const QRectF &rectangle, int divisionsX, int divisionsY);

/** The view around a point (seconds, value), but not below 0 seconds. */
ZoomedView viewAround(const QPointF &centre, const ScaleRows &rows, int divisionsX, int divisionsY);

/** The row whose step is that of an axis, or the next finer one. */
int rowOfStepX(double stepSeconds);
int rowOfStepY(double step);

/** Both rows one step coarser or finer; the same rows when one of them is the last of its kind. */
ScaleRows neighbouringRows(const ScaleRows &rows, bool coarser);
