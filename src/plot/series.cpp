#include "plot/series.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

namespace
{

constexpr int valuesPerBlock = 64;
constexpr int blocksPerBlock = 16;

} // namespace

struct Series::Storage {
    std::deque<double> values;
    std::vector<std::deque<ValueRange>> levels;

    void append(double value);
    void seal(std::size_t level, const ValueRange &range);
};

void Series::Storage::append(double value)
{
    values.push_back(value);
    if (values.size() % valuesPerBlock != 0)
        return;
    ValueRange range;
    std::for_each(values.end() - valuesPerBlock, values.end(),
                  [&range](double sealed) { range.include(sealed); });
    seal(0, range);
}

void Series::Storage::seal(std::size_t level, const ValueRange &range)
{
    if (level == levels.size())
        levels.emplace_back();
    levels[level].push_back(range);
    if (levels[level].size() % blocksPerBlock != 0)
        return;
    ValueRange upper;
    std::for_each(levels[level].end() - blocksPerBlock, levels[level].end(),
                  [&upper](const ValueRange &sealed) { upper.include(sealed); });
    seal(level + 1, upper);
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

double Series::operator[](int index) const
{
    return m_storage->values[static_cast<std::size_t>(index)];
}

void Series::append(double value)
{
    if (!m_storage)
        m_storage = std::make_shared<Storage>();
    if (m_storage->values.size() != static_cast<std::size_t>(m_size)) {
        // Another copy has gone on with the shared values: this one needs values of its own.
        const std::shared_ptr<Storage> shared =
            std::exchange(m_storage, std::make_shared<Storage>());
        std::for_each(shared->values.begin(), shared->values.begin() + m_size,
                      [this](double own) { m_storage->append(own); });
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
    ValueRange range;
    end = std::min(end, m_size);
    for (int i = std::max(first, 0); i < end;) {
        const int level = levelFrom(i, end);
        range.include(block(level, i));
        i += blockLength(level);
    }
    return range;
}

int Series::firstNotBelow(double bound) const
{
    for (int i = 0; i < m_size;) {
        int level = levelFrom(i, m_size);
        while (level >= 0 && block(level, i).max >= bound)
            --level;
        if (level < 0 && (*this)[i] >= bound)
            return i;
        i += blockLength(level);
    }
    return m_size;
}

int Series::lastBelow(double bound) const
{
    for (int end = m_size; end > 0;) {
        int level = levelBefore(end);
        while (level >= 0 && block(level, end - blockLength(level)).min < bound)
            --level;
        if (level < 0 && (*this)[end - 1] < bound)
            return end - 1;
        end -= blockLength(level);
    }
    return -1;
}

int Series::blockLength(int level)
{
    // 64 values on level 0, and 16 times as many on each further level
    return level < 0 ? 1 : valuesPerBlock << (4 * level);
}

int Series::levelFrom(int first, int end) const
{
    int level = -1;
    const int levels = m_storage ? static_cast<int>(m_storage->levels.size()) : 0;
    while (level + 1 < levels && first % blockLength(level + 1) == 0 &&
           blockLength(level + 1) <= end - first)
        ++level;
    return level;
}

int Series::levelBefore(int end) const
{
    int level = -1;
    const int levels = m_storage ? static_cast<int>(m_storage->levels.size()) : 0;
    while (level + 1 < levels && end % blockLength(level + 1) == 0)
        ++level;
    return level;
}

ValueRange Series::block(int level, int first) const
{
    if (level < 0) {
        const double value = (*this)[first];
        return {value, value};
    }
    return m_storage->levels[static_cast<std::size_t>(level)]
                            [static_cast<std::size_t>(first / blockLength(level))];
}
