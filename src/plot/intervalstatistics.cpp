#include "plot/intervalstatistics.h"

#include <algorithm>
#include <cmath>

namespace
{

double meanOf(const Series &values, int first, int end)
{
    double sum = 0;
    for (int i = first; i < end; ++i)
        sum += values[i];
    return sum / (end - first);
}

double deviationOf(const Series &values, int first, int end, double mean)
{
    double squares = 0;
    for (int i = first; i < end; ++i)
        squares += (mean - values[i]) * (mean - values[i]);
    return std::sqrt(squares / (end - first - 1));
}

} // namespace

IntervalStatistics intervalStatistics(const Series &times, const Series &values, double from,
                                      double to)
{
    const int scanned = times.size() - 1;
    const int first = times.firstNotBelow(from);
    const int later = times.firstNotBelow(std::nextafter(to, HUGE_VAL));
    const int end = std::min(scanned, later);
    IntervalStatistics statistics;
    if (first >= end)
        return statistics;
    statistics.count = end - first;
    statistics.mean = meanOf(values, first, end);
    if (statistics.count > 1)
        statistics.deviation = deviationOf(values, first, end, statistics.mean);
    return statistics;
}
