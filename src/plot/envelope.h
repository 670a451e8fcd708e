#pragma once

#include "plot/series.h"

#include <memory>
#include <vector>

/**
 * The pixel columns of a canvas along the time axis: column 0 begins at `leftTime`, and each is
 * `secondsPerColumn` wide. All that lies beyond the canvas is column -1 or `count`.
 */
struct PixelColumns {
    double leftTime = 0;         ///< seconds
    double secondsPerColumn = 1; ///< above 0
    int count = 0;

    int columnOf(double time) const;
    /** First time of column 0 to `count`; the times of a column end where the next one begins. */
    double startOf(int column) const { return leftTime + column * secondsPerColumn; }
    bool operator==(const PixelColumns &other) const
    {
        return leftTime == other.leftTime && secondsPerColumn == other.secondsPerColumn &&
               count == other.count;
    }
};

/** A stretch of points, one after the other, that fall into one pixel column. */
struct TimeRun {
    int column = 0;
    int first = 0; ///< index of the first point
    int last = 0;  ///< index of the last point
};

/**
 * Times divided into runs of one pixel column each, in the order of the points. Curves that have
 * their times in common share it, so that they are divided once.
 *
 * The runs of one picture serve the next: as long as the columns stay, only points that have come
 * since are looked at. Whole blocks are taken where they fall into one column, so that a new
 * division costs a few steps per column, however many points there are. Times may step back: the
 * runs then return to columns that were passed before.
 */
class TimeRuns
{
public:
    /** Divides `times`, which continue those of the call before unless forget() was called. */
    void divide(const PixelColumns &columns, const Series &times);

    /** Call it before dividing other times. */
    void forget();

    const std::vector<TimeRun> &runs() const { return m_runs; }
    /** Another number after each begin from the first point on; else runs only grow. */
    int division() const { return m_division; }

private:
    int endOfRun(const Series &times, int first) const;

    PixelColumns m_columns;
    std::vector<TimeRun> m_runs;
    int m_division = 0;
};

/** A run together with the values of its points. */
struct ColumnRun : TimeRun {
    ValueRange values;
    double lastValue = 0; ///< of the last point
};

/**
 * A curve divided into runs of one pixel column each. What a line through all points paints, it
 * paints through the first, least, greatest and last of every run. As with the times, the values of
 * one picture serve the next.
 */
class ColumnRuns
{
public:
    /** `times` may be those of another curve that shows the same times at any moment. */
    explicit ColumnRuns(std::shared_ptr<TimeRuns> times = std::make_shared<TimeRuns>());

    /**
     * Divides `times` and `values`, of one length: both continue those of the call before, unless
     * forget() was called. `Values` is Series or MovingAverages.
     */
    template<typename Values>
    void divide(const PixelColumns &columns, const Series &times, const Values &values);

    /** Call it before dividing another curve. */
    void forget();

    const std::vector<ColumnRun> &runs() const { return m_runs; }

private:
    std::shared_ptr<TimeRuns> m_times;
    int m_division = 0; ///< of the times, to which the runs belong
    std::vector<ColumnRun> m_runs;
};
