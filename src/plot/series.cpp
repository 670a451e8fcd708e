#include "plot/series.h"

#include <utility>

void MinMaxPyramid::append(std::size_t level, const ValueRange &range)
{
    if (level == m_levels.size())
        m_levels.emplace_back();
    Level &blocks = m_levels[level];
    blocks.append(range);
    if (blocks.size() % blocksPerBlock != 0)
        return;
    ValueRange upper;
    for (int i = blocks.size() - blocksPerBlock; i < blocks.size(); ++i)
        upper.include(blocks[i]);
    append(level + 1, upper);
}

/** Range of the blocks of level 0 from number `first` to before `end`. */
ValueRange MinMaxPyramid::blocks(int first, int end) const
{
    // On each level those that fill no block of the next one, on both sides.
    ValueRange range;
    for (std::size_t level = 0; first < end; ++level) {
        const Level &blocks = m_levels[level];
        while (first < end && first % blocksPerBlock != 0)
            range.include(blocks[first++]);
        while (first < end && end % blocksPerBlock != 0)
            range.include(blocks[--end]);
        first /= blocksPerBlock;
        end /= blocksPerBlock;
    }
    return range;
}

int MinMaxPyramid::levelFrom(int first, int end) const
{
    int level = -1;
    const int levels = static_cast<int>(m_levels.size());
    while (level + 1 < levels && first % blockLength(level + 1) == 0 &&
           blockLength(level + 1) <= end - first)
        ++level;
    return level;
}

int MinMaxPyramid::levelBefore(int end) const
{
    int level = -1;
    const int levels = static_cast<int>(m_levels.size());
    while (level + 1 < levels && end % blockLength(level + 1) == 0)
        ++level;
    return level;
}

void Series::Storage::append(double value)
{
    const int before = values.size();
    if (ascending == before && (before == 0 || value >= newest))
        ascending = before + 1;
    newest = value;
    values.append(value);
    constexpr int block = MinMaxPyramid::valuesPerBlock;
    if (values.size() % block == 0)
        pyramid.append(values.range(values.size() - block, block));
}

Series::Series() = default;
Series::~Series() = default;
Series::Series(const Series &) = default;
Series &Series::operator=(const Series &) = default;

Series::Series(Series &&other) noexcept
    : m_storage(std::move(other.m_storage))
    , m_size(std::exchange(other.m_size, 0))
{
}

Series &Series::operator=(Series &&other) noexcept
{
    m_storage = std::move(other.m_storage);
    m_size = std::exchange(other.m_size, 0);
    return *this;
}

void Series::append(double value)
{
    if (!m_storage)
        m_storage = std::make_shared<Storage>();
    if (m_storage->values.size() != m_size) {
        // Another copy has gone on with the shared values: this one needs values of its own.
        const std::shared_ptr<Storage> shared =
            std::exchange(m_storage, std::make_shared<Storage>());
        for (int i = 0; i < m_size; ++i)
            m_storage->append(shared->values[i]);
    }
    m_storage->append(value);
    ++m_size;
}

void Series::clear()
{
    m_storage.reset();
    m_size = 0;
}

ValueRange Series::range(int first, int end) const
{
    first = std::max(first, 0);
    end = std::min(end, m_size);
    if (first >= end)
        return {};
    prefetchEnds(first, end);
    const auto singles = [this](int from, int to) {
        return m_storage->values.range(from, to - from);
    };
    return m_storage->pyramid.range(first, end, singles);
}

int Series::firstNotBelow(double bound) const
{
    for (int i = 0; i < m_size;) {
        int level = levelFrom(i, m_size);
        while (level >= 0 && block(level, i).max >= bound)
            --level;
        if (level < 0 && (*this)[i] >= bound)
            return i;
        i += MinMaxPyramid::blockLength(level);
    }
    return m_size;
}

int Series::lastBelow(double bound) const
{
    for (int end = m_size; end > 0;) {
        int level = m_storage->pyramid.levelBefore(end);
        while (level >= 0 && block(level, end - MinMaxPyramid::blockLength(level)).min < bound)
            --level;
        if (level < 0 && (*this)[end - 1] < bound)
            return end - 1;
        end -= MinMaxPyramid::blockLength(level);
    }
    return -1;
}
