#pragma once

#include "plot/prefetch.h"
#include "plot/sealedlevels.h"

#include <memory>

/**
 * An append-only series of finite numbers that knows its minimum and maximum over any stretch.
 *
 * Appending never moves a value. Every 64 values seal a block with their range, so questions cost
 * the logarithm of the length. Values need not be sorted.
 *
 * A copy costs nothing: it reads the same values and keeps its own length. Only appending to a copy
 * that has fallen behind its original duplicates the values.
 */
class Series
{
public:
    Series();
    ~Series();
    Series(const Series &);
    Series(Series &&) noexcept;
    Series &operator=(const Series &);
    Series &operator=(Series &&) noexcept;

    int size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    /** The value at `index`, which must exist. */
    double operator[](int index) const { return m_storage->values[index]; }
    double at(int index) const { return (*this)[index]; }
    /** The newest value; there must be one. */
    double last() const { return (*this)[m_size - 1]; }

    void append(double value);
    void clear();

    /** True when this series holds all that `earlier` holds, and perhaps more: the same values,
     * not equal ones. */
    bool continues(const Series &earlier) const
    {
        return m_storage == earlier.m_storage && m_size >= earlier.m_size;
    }

    /** True when no value is less than the one before it. */
    bool isAscending() const { return !m_storage || m_storage->ascending >= m_size; }

    /** Range of the values from `first` to before `end`; places that do not exist are left out.
     * Adds to `read` the number of blocks and single values that it took. */
    ValueRange range(int first, int end, int *read = nullptr) const;

    /** Fetches the single values that range() reads of the same stretch, which is not empty. */
    [[gnu::always_inline]] void prefetchEnds(int first, int end) const
    {
        const int blockOfEnd = SealedLevels::nextBlock(end - 1) - SealedLevels::valuesPerBlock;
        prefetch(stretch(first), std::min(end, SealedLevels::nextBlock(first)) - first);
        prefetch(stretch(blockOfEnd), end - blockOfEnd);
    }

    [[gnu::always_inline]] void prefetchRange(int first, int end) const
    {
        prefetchEnds(first, end);
        m_storage->levels.prefetchRange(first, end);
    }

    /** Index of the first value not below `bound`; size() when there is none. */
    int firstNotBelow(double bound) const;
    /** Index of the newest value below `bound`; -1 when there is none. */
    int lastBelow(double bound) const;

    // The blocks themselves, for those who walk them: see SealedLevels.

    int levelFrom(int first, int end) const { return m_storage->levels.levelFrom(first, end); }
    /** Range of the sealed block of `level` that begins at `first`. */
    const ValueRange &block(int level, int first) const
    {
        return m_storage->levels.block(level, first);
    }
    /** The values from `index` to the end of its block of 64, one after the other. */
    const double *stretch(int index) const { return &m_storage->values[index]; }

private:
    struct Storage {
        ChunkedList<double, 10> values;
        SealedLevels levels;
        int ascending = 0; ///< number of values up to the first one less than that before it

        void append(double value);
    };

    std::shared_ptr<Storage> m_storage; ///< null until the first append; may hold more than m_size
    int m_size = 0;
};
