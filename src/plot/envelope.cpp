#include "plot/envelope.h"

#include <cmath>

namespace
{

/** Level of the longest block at `first` whose times all fall into one column; -1: the point. */
int levelWithinColumn(const Series &times, int first, const PixelColumns &columns)
{
    int level = times.levelFrom(first, times.size());
    while (level >= 0) {
        const ValueRange span = times.block(level, first);
        if (columns.columnOf(span.min) == columns.columnOf(span.max))
            break;
        --level;
    }
    return level;
}

} // namespace

int PixelColumns::columnOf(double time) const
{
    const double column = std::floor((time - leftTime) / secondsPerColumn);
    if (!(column >= 0))
        return -1;
    return column < count ? static_cast<int>(column) : count;
}

QVector<ColumnRun> columnRuns(const Series &times, const Series &values,
                              const PixelColumns &columns, int *blocksRead)
{
    QVector<ColumnRun> runs;
    int steps = 0;
    for (int i = 0; i < times.size();) {
        const int level = levelWithinColumn(times, i, columns);
        const int column = columns.columnOf(times[i]);
        if (runs.isEmpty() || runs.last().column != column)
            runs.append({column, i, i, {}});
        runs.last().last = i + Series::blockLength(level) - 1;
        runs.last().values.include(values.block(level, i));
        i += Series::blockLength(level);
        ++steps;
    }
    if (blocksRead)
        *blocksRead = steps;
    return runs;
}
