#pragma once

#include "plot/series.h"

#include <functional>

/**
 * Finds for the points of a channel the points of its reference channel that they are compared
 * with, by their times in seconds.
 *
 * The first point takes the first reference point if that is not later; every other point takes the
 * next reference point that lies between its predecessor and itself, both included. Each reference
 * point is taken once at most; points without one are left out. `paired` receives the indices of
 * both, in ascending order.
 */
void pairDifferences(const Series &times, const Series &referenceTimes,
                     const std::function<void(int point, int referencePoint)> &paired);
