#include "plot/movingaverage.h"

#include "plot/series.h"

#include <algorithm>
#include <cmath>

namespace
{

/** A value this much greater than what remains took digits of the others away from the sum. */
constexpr double swamping = 1e6;

double sumOfWindow(const Series &values)
{
    double sum = 0;
    for (int i = std::max(0, values.size() - averagingWindow); i < values.size(); ++i)
        sum += values[i];
    return sum;
}

} // namespace

double movingAverage(double &sum, const Series &values)
{
    const int count = values.size();
    sum += values.last();
    if (count > averagingWindow) {
        const double leaving = values[count - averagingWindow - 1];
        sum -= leaving;
        if (!std::isfinite(sum) || std::abs(leaving) >= swamping * std::abs(sum))
            sum = sumOfWindow(values);
    }
    return sum / std::min(count, averagingWindow);
}
