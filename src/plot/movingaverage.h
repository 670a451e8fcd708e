#pragma once

class Series;

/** Number of points that a moving average looks back over. */
constexpr int averagingWindow = 10;

/**
 * Takes the newest of `values` into the running sum of the last ten and returns their average; of
 * all of them while there are fewer. Call it once after each append; `sum` starts at 0.
 */
double movingAverage(double &sum, const Series &values);
