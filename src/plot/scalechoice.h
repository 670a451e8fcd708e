#pragma once

#include "plot/series.h"

// Which part of the data an axis shows, as plain arithmetic. Steps are those of the scale tables.

/** What an axis shows: from `lower` to `upper`, with a tick at every multiple of `step`. */
struct AxisView {
    double lower = 0;
    double upper = 0;
    double step = 0;

    double middle() const { return (lower + upper) / 2; }
    /** False when rounding has left nothing between the ends. */
    bool isValid() const;
    bool operator==(const AxisView &other) const
    {
        return lower == other.lower && upper == other.upper && step == other.step;
    }
};

/** Row of scalesX() with which `divisions` steps span the data from `first` to `last` seconds. */
int rowForTimes(double first, double last, int divisions);

/** Row of scalesY() with which `divisions` steps span the values. */
int rowForValues(const ValueRange &values, int divisions);

/** View of all data since `first`, in seconds: begins at the step before it. */
AxisView viewFrom(double first, double step, int divisions);

/** View of the newest data: ends at the step after `last`, in seconds, and never begins below 0. */
AxisView viewUpTo(double last, double step, int divisions);

/** The time view to go on with: `current` as long as it has the step of `wanted` and covers it. */
AxisView followTimes(const AxisView &current, const AxisView &wanted);

/** The value view to go on with: `current` as long as it fits, else one centred on the values. */
AxisView followValues(const AxisView &current, const ValueRange &values, double step,
                      int divisions);

/** View of `divisions` steps around a point. */
AxisView viewAround(double centre, double step, int divisions);

/** The view moved to begin at 0 when it begins below. */
AxisView notBelowZero(const AxisView &view);

/** Every how many ticks there is room for a label, all in pixels; 1 to 100. */
int labelStride(double widestLabel, double tickDistance, double gap);

/** Decimals that suit a row of scalesY(). */
int decimalsForRow(int row);
