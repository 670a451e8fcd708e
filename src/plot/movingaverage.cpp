#include "plot/movingaverage.h"

#include <array>

namespace
{

constexpr int before = averagingWindow - 1; ///< values in a window beside the newest
constexpr int blockSize = SealedLevels::valuesPerBlock;

using Window = std::array<double, before + blockSize>; ///< a block, and what came before it
using Sums = std::array<double, blockSize>;

/** The sums of ten values from each of the first `count` places on. */
Sums windowSums(const Window &values, std::size_t count)
{
    Window pairs;
    for (std::size_t i = 0; i < count + 8; ++i)
        pairs[i] = values[i] + values[i + 1];
    Window fours;
    for (std::size_t i = 0; i < count + 4; ++i)
        fours[i] = pairs[i] + pairs[i + 2];
    Sums sums;
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = (fours[i] + fours[i + 4]) + pairs[i + 8];
    return sums;
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
    if (index < before) {
        for (int i = 0; i <= index; ++i)
            sum += m_values[i];
        return sum;
    }
    // In the order of windowSums(): an average is the same to the bit, read singly or in its block.
    const auto pair = [&](int i) { return m_values[index - i] + m_values[index - i - 1]; };
    return ((pair(8) + pair(6)) + (pair(4) + pair(2))) + pair(0);
}

ValueRange MovingAverages::range(int first, int end, int *read) const
{
    first = std::max(first, 0);
    end = std::min(end, size());
    if (first >= end)
        return {};
    m_values.prefetchEnds(first, end);
    const auto inBlock = [this](int from, int to) { return singles(from, to); };
    int unread = 0;
    read = read ? read : &unread;
    return m_levels ? m_levels->range(first, end, inBlock, read)
                    : SealedLevels().range(first, end, inBlock, read);
}

/** Range of the averages of a stretch inside one block of 64. */
ValueRange MovingAverages::singles(int first, int end) const
{
    ValueRange range;
    for (; first < std::min(end, before); ++first)
        range.include((*this)[first]);
    if (first >= end)
        return range;
    Window window;
    for (int i = 0; i < before; ++i)
        window[static_cast<std::size_t>(i)] = m_values[first - before + i];
    std::copy_n(m_values.stretch(first), end - first, window.begin() + before);
    const Sums sums = windowSums(window, static_cast<std::size_t>(end - first));
    const ValueRange ofSums = rangeOf(sums.data(), end - first);
    range.include({ofSums.min / averagingWindow, ofSums.max / averagingWindow});
    return range;
}
