#include "plot/movingaverage.h"

#include <array>

namespace
{

constexpr int before = averagingWindow - 1; ///< values in a window beside the newest
constexpr int blockSize = MinMaxPyramid::valuesPerBlock;

using Window = std::array<double, before + blockSize>; ///< a block, and what came before it
using Sums = std::array<double, blockSize>;

constexpr std::size_t lanes = 4; ///< that the processor adds side by side

/** The sums of ten values from each of the first `count` places on, and of some beyond. */
Sums windowSums(const Window &values, std::size_t count)
{
    count = (count + lanes - 1) / lanes * lanes;
    Window pairs;
    for (std::size_t i = 0; i < count + 8; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            pairs[i + lane] = values[i + lane] + values[i + lane + 1];
    Window fours;
    for (std::size_t i = 0; i < count + 4; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            fours[i + lane] = pairs[i + lane] + pairs[i + lane + 2];
    Sums sums;
    for (std::size_t i = 0; i < count; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            sums[i + lane] = (fours[i + lane] + fours[i + lane + 4]) + pairs[i + lane + 8];
    return sums;
}

} // namespace

void MovingAverages::follow(const Series &values)
{
    if (!values.continues(m_values))
        m_pyramid.reset();
    m_values = values;
    int inBlocks = m_pyramid ? m_pyramid->size() : 0;
    for (; inBlocks + blockSize <= size(); inBlocks += blockSize) {
        if (!m_pyramid)
            m_pyramid = std::make_shared<MinMaxPyramid>();
        m_pyramid->append(singles(inBlocks, inBlocks + blockSize));
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
    double values[averagingWindow];
    m_values.copy(index - before, averagingWindow, values);
    const auto pair = [&](int i) { return values[i] + values[i + 1]; };
    return ((pair(0) + pair(2)) + (pair(4) + pair(6))) + pair(8);
}

ValueRange MovingAverages::range(int first, int end) const
{
    first = std::max(first, 0);
    end = std::min(end, size());
    if (first >= end)
        return {};
    m_values.prefetchEnds(first, end);
    const auto inBlock = [this](int from, int to) { return singles(from, to); };
    return m_pyramid ? m_pyramid->range(first, end, inBlock)
                     : MinMaxPyramid().range(first, end, inBlock);
}

Stretch MovingAverages::stretch(int first, int end) const
{
    return end - first <= blockSize ? few(first, end) : Stretch{range(first, end), at(end - 1)};
}

/** Range of the averages of a stretch inside one block of 64. */
ValueRange MovingAverages::singles(int first, int end) const
{
    return few(first, end).range;
}

/** A stretch of 64 averages at the most. */
Stretch MovingAverages::few(int first, int end) const
{
    Stretch found;
    for (; first < std::min(end, before); ++first) {
        found.last = (*this)[first];
        found.range.include(found.last);
    }
    if (first >= end)
        return found;
    Window window{};
    m_values.copy(first - before, end - first + before, window.data());
    const auto count = static_cast<std::size_t>(end - first);
    const Sums sums = windowSums(window, count);
    const ValueRange ofSums = rangeOf(sums.data(), end - first);
    found.range.include({ofSums.min / averagingWindow, ofSums.max / averagingWindow});
    found.last = sums[count - 1] / averagingWindow;
    return found;
}
