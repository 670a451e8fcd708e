#include "averageerror.h"

#include "plot/movingaverage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

/** Values up to 1e12 in magnitude, of both signs and of very different sizes. */
double largeValue(int point)
{
    const unsigned noise = static_cast<unsigned>(point) * 2654435761u;
    const double size = std::exp2(static_cast<int>(noise % 41));
    return (noise & 0x10000 ? -1 : 1) * size * (1 + (noise >> 12) * 0x1p-20);
}

/** The greatest error relative to the mean of the magnitudes, and at the end of the series. */
struct Error {
    double greatest = 0;
    double last = 0;

    void include(double average, long double exact, long double magnitude)
    {
        last = static_cast<double>(std::abs(average - exact) / magnitude);
        greatest = std::max(greatest, last);
    }
};

} // namespace

void printAverageError(int count)
{
    Series values;
    MovingAverages averages;
    double runningSum = 0;
    Error ofAverages;
    Error ofRunningSum;
    for (int i = 0; i < count; ++i) {
        values.append(largeValue(i));
        averages.follow(values);
        runningSum += values.last() - (i < averagingWindow ? 0 : values[i - averagingWindow]);
        long double sum = 0;
        long double magnitude = 0;
        for (int j = std::max(0, i - averagingWindow + 1); j <= i; ++j) {
            sum += values[j];
            magnitude += std::abs(values[j]);
        }
        const int window = std::min(i + 1, averagingWindow);
        ofAverages.include(averages.last(), sum / window, magnitude / window);
        ofRunningSum.include(runningSum / window, sum / window, magnitude / window);
    }
    std::printf("moving average over %d values, error over the mean of the magnitudes\n", count);
    std::printf("%-24s %12s %12s\n", "", "greatest", "newest");
    std::printf("%-24s %12.2g %12.2g\n", "added up when read", ofAverages.greatest,
                ofAverages.last);
    std::printf("%-24s %12.2g %12.2g\n", "running sum", ofRunningSum.greatest, ofRunningSum.last);
}
