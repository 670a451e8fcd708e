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
    const int end = std::min(times.size(), SealedLevels::nextBlock(first));
    const double *stretch = times.stretch(first);
    int i = first;
    while (i < end && span.contains(stretch[i - first]))
        ++i;
    return i;
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

template<typename Values>
void ColumnRuns::divide(const PixelColumns &columns, const Series &times, const Values &values)
{
    if (!(columns == m_columns))
        forget();
    m_columns = columns;
    m_blocksRead = 0;
    int next = m_runs.empty() ? 0 : m_runs.back().last + 1;
    while (next < times.size()) {
        const int column = columns.columnOf(times[next]);
        if (m_runs.empty() || m_runs.back().column != column)
            m_runs.push_back({column, next, next - 1, {}});
        next = extendRun(m_runs.back(), times, values);
    }
}

/** Takes in the points after the run as far as they stay in its column; returns the next one. */
template<typename Values>
int ColumnRuns::extendRun(ColumnRun &run, const Series &times, const Values &values)
{
    const TimeSpan span = spanOf(m_columns, run.column);
    int next = run.last + 1;
    for (int from = -1; next < times.size() && next != from;) {
        from = next;
        const int level = levelWithin(span, times, from);
        next =
            level < 0 ? endOfSingles(span, times, from) : from + SealedLevels::blockLength(level);
        if (next != from)
            run.values.include(level < 0 ? values.singles(from, next) : values.block(level, from));
        m_blocksRead += level < 0 ? next - from + 1 : 1;
    }
    run.last = next - 1;
    return next;
}

void ColumnRuns::forget()
{
    m_runs.clear();
}

template void ColumnRuns::divide(const PixelColumns &, const Series &, const Series &);
template void ColumnRuns::divide(const PixelColumns &, const Series &, const MovingAverages &);
