#include "plot/movingaverage.h"

#include <array>

namespace
{

constexpr int before = averagingWindow - 1; ///< values in a window beside the newest
constexpr int blockSize = SealedLevels::valuesPerBlock;

using Window = std::array<double, before + blockSize>;

/** The values from `first` to before `end` and those that their averages look back on; 0 for those
 * that do not exist. */
Window lookBack(const Series &values, int first, int end)
{
    Window window{};
    for (int i = std::max(0, first - before); i < end; ++i)
        window[static_cast<std::size_t>(i - first + before)] = values[i];
    return window;
}

} // namespace

void MovingAverages::follow(const Series &values)
{
    if (!values.continues(m_values))
        m_levels.reset();
    m_values = values;
    int sealed = m_levels ? m_levels->sealedValues() : 0;
    for (; sealed + blockSize <= size(); sealed += blockSize) {
        if (!m_levels)
            m_levels = std::make_shared<SealedLevels>();
        m_levels->seal(singles(sealed, sealed + blockSize));
    }
}

double MovingAverages::sum(int index) const
{
    double sum = 0;
    for (int i = std::max(0, index - before); i <= index; ++i)
        sum += m_values[i];
    return sum;
}

ValueRange MovingAverages::range(int first, int end) const
{
    first = std::max(first, 0);
    end = std::min(end, size());
    if (first >= end)
        return {};
    if (!m_levels)
        return singles(first, end);
    return m_levels->range(first, end, [this](int from, int to) { return singles(from, to); });
}

ValueRange MovingAverages::singles(int first, int end) const
{
    // All averages at once, each adding in the same order as sum(): the compiler does it in lanes.
    const Window window = lookBack(m_values, first, end);
    std::array<double, blockSize> averages{};
    for (std::size_t back = 0; back < averagingWindow; ++back)
        for (std::size_t i = 0; i < blockSize; ++i)
            averages[i] += window[i + back];
    for (int i = 0; i < blockSize; ++i)
        averages[static_cast<std::size_t>(i)] /= std::min(first + i + 1, averagingWindow);
    return rangeOf(averages.data(), end - first);
}
