#include "plot/envelope.h"

#include "plot/movingaverage.h"

#include <algorithm>
#include <cmath>

namespace
{

/** The times of one column. */
struct TimeSpan {
    double start;
    double end; ///< beyond it

    bool contains(double time) const { return time >= start && time < end; }
    bool contains(const ValueRange &times) const { return times.min >= start && times.max < end; }
};

TimeSpan spanOf(const PixelColumns &columns, int column)
{
    const double infinity = std::numeric_limits<double>::infinity();
    return {column < 0 ? -infinity : columns.startOf(column),
            column >= columns.count ? infinity : columns.startOf(column + 1)};
}

/** Level of the longest block at `first` whose times all lie in `span`; -1: none of 64 or more. */
int levelWithin(const TimeSpan &span, const Series &times, int first)
{
    int level = times.levelFrom(first, times.size());
    while (level >= 0 && !span.contains(times.block(level, first)))
        --level;
    return level;
}

/** The first point from `first` on outside of `span`, or else the end of the block of 64. */
int endOfSingles(const TimeSpan &span, const Series &times, int first)
{
    const int end = std::min(times.size(), MinMaxPyramid::nextBlock(first));
    int i = first;
    while (i < end && span.contains(times[i]))
        ++i;
    return i;
}

/** The first point from `first` on outside of `span`. */
int walkOutOf(const TimeSpan &span, const Series &times, int first)
{
    int next = first;
    do {
        first = next;
        const int level = levelWithin(span, times, first);
        next = level < 0 ? endOfSingles(span, times, first)
                         : first + MinMaxPyramid::blockLength(level);
    } while (next != first && next < times.size());
    return next;
}

/**
 * The first point from `first` on whose time, in ascending times, is not below `bound`: first
 * sought around `guess`, where it is when points come regularly.
 */
int searchFrom(int guess, const Series &times, int first, double bound)
{
    int low = first;         // the points before it are below
    int high = times.size(); // the points from it on are not
    int step = 1;
    for (int probe = guess - 1; probe >= low && probe < high; step *= 2) {
        if (times[probe] < bound)
            low = probe + 1;
        else
            high = probe;
        probe = low > probe ? probe + step : probe - step;
    }
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (times[middle] < bound)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

} // namespace

int PixelColumns::columnOf(double time) const
{
    if (!(time >= startOf(0)))
        return -1;
    if (time >= startOf(count))
        return count;
    // The quotient may be rounded to the column beside.
    int column =
        static_cast<int>(std::clamp((time - leftTime) / secondsPerColumn, 0.0, count - 1.0));
    while (time < startOf(column))
        --column;
    while (time >= startOf(column + 1))
        ++column;
    return column;
}

void TimeRuns::divide(const PixelColumns &columns, const Series &times)
{
    if (!(columns == m_columns))
        forget();
    m_columns = columns;
    int next = m_runs.empty() ? 0 : m_runs.back().last + 1;
    while (next < times.size()) {
        const int column = columns.columnOf(times[next]);
        if (m_runs.empty() || m_runs.back().column != column)
            m_runs.push_back({column, next, next - 1});
        next = endOfRun(times, next);
        m_runs.back().last = next - 1;
    }
}

/** End of the stretch of points from `first` on that lie in the column of the newest run. */
int TimeRuns::endOfRun(const Series &times, int first) const
{
    const TimeSpan span = spanOf(m_columns, m_runs.back().column);
    if (!times.isAscending())
        return walkOutOf(span, times, first);
    const TimeRun &before = m_runs[m_runs.size() < 2 ? 0 : m_runs.size() - 2];
    const int length = before.last - before.first + 1;
    const int guess = std::min(first + length, times.size());
    times.prefetch(std::min(guess + length, times.size() - 1), 1); // of the run after it
    return searchFrom(guess, times, first, span.end);
}

void TimeRuns::forget()
{
    m_runs.clear();
    ++m_division;
}

ColumnRuns::ColumnRuns(std::shared_ptr<TimeRuns> times)
    : m_times(std::move(times))
{
}

template<typename Values>
void ColumnRuns::divide(const PixelColumns &columns, const Series &times, const Values &values)
{
    m_times->divide(columns, times);
    if (m_division != m_times->division())
        m_runs.clear();
    m_division = m_times->division();

    const std::vector<TimeRun> &divided = m_times->runs();
    for (std::size_t i = m_runs.empty() ? 0 : m_runs.size() - 1; i < divided.size(); ++i) {
        if (i + 1 < divided.size())
            values.prefetchRange(divided[i + 1].first, divided[i + 1].last + 1);
        if (i == m_runs.size())
            m_runs.push_back({{divided[i].column, divided[i].first, divided[i].first - 1}, {}, 0});
        ColumnRun &run = m_runs[i];
        if (run.last == divided[i].last)
            continue;
        const Stretch added = values.stretch(run.last + 1, divided[i].last + 1);
        run.values.include(added.range);
        run.last = divided[i].last;
        run.lastValue = added.last;
    }
}

void ColumnRuns::forget()
{
    m_times->forget();
}

template void ColumnRuns::divide(const PixelColumns &, const Series &, const Series &);
template void ColumnRuns::divide(const PixelColumns &, const Series &, const MovingAverages &);
