#pragma once

#include "plot/series.h"

/** What is known of the values of an interval. */
struct IntervalStatistics {
    int count = 0;
    double mean = 0;      ///< means nothing when count is 0
    double deviation = 0; ///< standard deviation of a sample; means nothing when count is below 2
};

/**
 * Statistics of the values whose times, in seconds, lie from `from` up to `to`. The newest value is
 * left out: it may belong to a round that is still being measured. Where times step back, the
 * interval begins at its first point and ends before the first point later than `to`.
 */
IntervalStatistics intervalStatistics(const Series &times, const Series &values, double from,
                                      double to);
