#include "plot/movingaverage.h"

#include <array>

namespace
{

constexpr int before = averagingWindow - 1; ///< values in a window beside the newest
constexpr int blockSize = SealedLevels::valuesPerBlock;

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

ValueRange MovingAverages::range(int first, int end, int *read) const
{
    first = std::max(first, 0);
    end = std::min(end, size());
    if (first >= end)
        return {};
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
    std::array<double, before + blockSize> window;
    for (int i = 0; i < before; ++i)
        window[static_cast<std::size_t>(i)] = m_values[first - before + i];
    std::copy_n(m_values.stretch(first), end - first, window.begin() + before);

    // Each sum adds in the same order as sum(); the compiler works on some of them at once.
    std::array<double, blockSize> sums;
    const auto count = static_cast<std::size_t>(end - first);
    for (std::size_t i = 0; i < count; ++i) {
        double sum = 0;
        for (std::size_t j = 0; j < averagingWindow; ++j)
            sum += window[i + j];
        sums[i] = sum;
    }
    const ValueRange ofSums = rangeOf(sums.data(), end - first);
    range.include({ofSums.min / averagingWindow, ofSums.max / averagingWindow});
    return range;
}
