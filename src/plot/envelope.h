#pragma once

#include "plot/series.h"

#include <QVector>

/**
 * The pixel columns of a canvas along the time axis: column 0 begins at `leftTime`, and each is
 * `secondsPerColumn` wide. Times beyond the canvas fall into column -1 or `count`.
 */
struct PixelColumns {
    double leftTime = 0;         ///< seconds
    double secondsPerColumn = 1; ///< above 0
    int count = 0;

    int columnOf(double time) const;
};

/** A stretch of points, one after the other, that fall into one pixel column. */
struct ColumnRun {
    int column = 0;
    int first = 0; ///< index of the first point
    int last = 0;  ///< index of the last point
    ValueRange values;
};

/**
 * Divides a curve into runs of one pixel column each, in the order of the points. What a line
 * through all points paints, it paints through the first, least, greatest and last of every run.
 *
 * Costs a few steps per column, however many points there are. Times may step back: the runs then
 * return to columns that were passed before. Both series have the same length.
 */
QVector<ColumnRun> columnRuns(const Series &times, const Series &values,
                              const PixelColumns &columns);
