#pragma once

#include "plot/series.h"

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QVector>

// The steps of the axes, and which part of the data an axis shows by which step, as plain
// arithmetic. A step is named by its index in scalesX() or scalesY().

/** A step of the X axis; the first of the table, "Авто", is 0. */
struct TScaleX {
    QString label;
    qint32 step; ///< seconds
};

/** A step of the Y axis; the first of the table, "Авто", is 0. */
struct TScaleY {
    QString label;
    double step; ///< units of the channel
};

/** The 19 steps of the X axis, from fine to coarse; their labels are in the user's language. */
const QVector<TScaleX> &scalesX();

/** The 30 steps of the Y axis, from fine to coarse. */
const QVector<TScaleY> &scalesY();

/** The step with which `divisions` of it span the data from `first` to `last` seconds. */
int stepForTimes(double first, double last, int divisions);

/** The step with which `divisions` of it span the values. */
int stepForValues(const ValueRange &values, int divisions);

/** The step of that size, or the next finer one; of the X axis in seconds. */
int stepOfSizeX(double seconds);
int stepOfSizeY(double size);

/** Decimals that suit a step of scalesY(). */
int decimalsForStep(int step);

/** What an axis shows: from `lower` to `upper`, with a tick at every multiple of `step`. */
struct AxisView {
    double lower = 0;
    double upper = 0;
    double step = 0;

    double middle() const { return (lower + upper) / 2; }
    /** The same view elsewhere. */
    AxisView moved(double way) const { return {lower + way, upper + way, step}; }
    /** False when rounding has left nothing between the ends. */
    bool isValid() const;
    bool operator==(const AxisView &other) const
    {
        return lower == other.lower && upper == other.upper && step == other.step;
    }
};

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

/** Every how many ticks a label fits between its neighbours, all in pixels; 1 to 100. */
int labelStride(double widestLabel, double tickDistance, double gap);

/** Steps of scalesX() and scalesY(), neither of them "Авто". */
struct ScaleSteps {
    int x = 1;
    int y = 1;
    bool operator==(const ScaleSteps &other) const { return x == other.x && y == other.y; }
};

/** What both axes show after a zoom, and by which steps. */
struct ZoomedView {
    ScaleSteps steps;
    AxisView x; ///< seconds
    AxisView y;
    QPointF centre; ///< what a later change of the scales keeps in the middle
};

/**
 * The view of a rectangle (seconds, values): from its left edge on, but not below 0, and around
 * the multiple of the step that is next to its middle. Where no step is coarse enough it is the
 * coarsest.
 */
ZoomedView viewOfRectangle(const QRectF &rectangle, int divisionsX, int divisionsY);

/** The view around a point (seconds, value), but not below 0 seconds. */
ZoomedView viewAround(const QPointF &centre, const ScaleSteps &steps, int divisionsX,
                      int divisionsY);

/** Both steps one coarser or finer; the same ones when one of them is the last of its kind. */
ScaleSteps neighbouringSteps(const ScaleSteps &steps, bool coarser);
