#pragma once

#include <limits>

/** The least and the greatest of some values; min > max when there are none. */
struct ValueRange {
    double min = std::numeric_limits<double>::infinity();
    double max = -std::numeric_limits<double>::infinity();

    bool isEmpty() const { return min > max; }
    void include(double value) { include(ValueRange{value, value}); }
    void include(const ValueRange &other)
    {
        min = other.min < min ? other.min : min;
        max = other.max > max ? other.max : max;
    }
    bool operator==(const ValueRange &other) const { return min == other.min && max == other.max; }
};

/** Range of `count` values that lie one after the other. */
inline ValueRange rangeOf(const double *values, int count)
{
    ValueRange lanes[4]; // comparisons that do not wait for each other
    int i = 0;
    for (; i + 4 <= count; i += 4)
        for (int lane = 0; lane < 4; ++lane)
            lanes[lane].include(values[i + lane]);
    for (; i < count; ++i)
        lanes[0].include(values[i]);
    for (int lane = 1; lane < 4; ++lane)
        lanes[0].include(lanes[lane]);
    return lanes[0];
}
