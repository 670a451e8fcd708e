#include "plot/series.h"

#include <utility>

void Series::Storage::append(double value)
{
    const int before = values.size();
    if (ascending == before && (before == 0 || value >= values[before - 1]))
        ascending = before + 1;
    values.append(value);
    const int size = before + 1;
    if (size % SealedLevels::valuesPerBlock == 0)
        levels.seal(
            rangeOf(&values[size - SealedLevels::valuesPerBlock], SealedLevels::valuesPerBlock));
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

ValueRange Series::range(int first, int end, int *read) const
{
    first = std::max(first, 0);
    end = std::min(end, m_size);
    if (first >= end)
        return {};
    prefetchEnds(first, end);
    const auto singles = [this](int from, int to) { return rangeOf(stretch(from), to - from); };
    int unread = 0;
    return m_storage->levels.range(first, end, singles, read ? read : &unread);
}

int Series::firstNotBelow(double bound) const
{
    for (int i = 0; i < m_size;) {
        int level = levelFrom(i, m_size);
        while (level >= 0 && block(level, i).max >= bound)
            --level;
        if (level < 0 && (*this)[i] >= bound)
            return i;
        i += SealedLevels::blockLength(level);
    }
    return m_size;
}

int Series::lastBelow(double bound) const
{
    for (int end = m_size; end > 0;) {
        int level = m_storage->levels.levelBefore(end);
        while (level >= 0 && block(level, end - SealedLevels::blockLength(level)).min < bound)
            --level;
        if (level < 0 && (*this)[end - 1] < bound)
            return end - 1;
        end -= SealedLevels::blockLength(level);
    }
    return -1;
}
