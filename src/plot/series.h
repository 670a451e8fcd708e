#pragma once

#include "plot/packedlist.h"
#include "plot/valuerange.h"

#include <algorithm>
#include <memory>
#include <vector>

// Numbers that are only ever appended, and the minimum and maximum of any stretch of them.

/**
 * A list that grows at its end and never moves an element: it consists of chunks of 2^`shift`
 * elements each. A stretch of elements that begins at a multiple of a power of two, and is no
 * longer than that power or a chunk, is contiguous.
 */
template<typename T, int shift>
class ChunkedList
{
public:
    int size() const { return m_size; }
    const T &operator[](int index) const { return m_chunks[index >> shift][index & mask]; }

    void append(const T &value)
    {
        if ((m_size & mask) == 0)
            m_chunks.emplace_back(new T[length]); // not cleared, as make_unique() would
        m_chunks.back()[m_size & mask] = value;
        ++m_size;
    }

private:
    static constexpr int length = 1 << shift;
    static constexpr int mask = length - 1;

    std::vector<std::unique_ptr<T[]>> m_chunks;
    int m_size = 0;
};

/**
 * Minimum and maximum of a sequence that only grows, per block, on several levels: a block of level
 * 0 is 64 values, one of each further level 16 blocks of the level below. A block is written once,
 * when it is full. Level -1 stands for a single value, which the sequence itself keeps.
 */
class MinMaxPyramid
{
public:
    static constexpr int valuesPerBlock = 64;
    static constexpr int blocksPerBlock = 16;

    /** Number of values in the full blocks, a multiple of valuesPerBlock. */
    int size() const { return m_levels.empty() ? 0 : m_levels.front().size() * valuesPerBlock; }

    /** Adds the next block of level 0, and those above that it completes. */
    void append(const ValueRange &range) { append(0, range); }

    /** Number of values in a block of `level`; 1 for -1. */
    static int blockLength(int level) { return level < 0 ? 1 : valuesPerBlock << (4 * level); }
    /** Index at which the next block of level 0 begins. */
    static int nextBlock(int index) { return (index / valuesPerBlock + 1) * valuesPerBlock; }

    /** Level of the longest block that begins at `first` and fits before `end`; -1 for none. */
    int levelFrom(int first, int end) const;
    /** Level of the longest block that ends before `end`; -1 for none. */
    int levelBefore(int end) const;
    /** Range of the block of `level`, 0 or more, that begins at `first`. */
    const ValueRange &block(int level, int first) const
    {
        return m_levels[static_cast<std::size_t>(level)][first >> (6 + 4 * level)];
    }

    /**
     * Range of the values from `first` to before `end`, all of them existing. `singles(from, to)`
     * gives the range of a stretch inside one block of level 0.
     */
    template<typename Singles>
    ValueRange range(int first, int end, Singles singles) const
    {
        const int firstBlock = (first + valuesPerBlock - 1) / valuesPerBlock;
        const int endBlock = end / valuesPerBlock;
        if (firstBlock > endBlock) // inside one block
            return singles(first, end);
        prefetchEnds(firstBlock, endBlock);
        ValueRange range = blocks(firstBlock, endBlock);
        if (first < firstBlock * valuesPerBlock && mayWiden(range, firstBlock - 1))
            range.include(singles(first, firstBlock * valuesPerBlock));
        if (endBlock * valuesPerBlock < end && mayWiden(range, endBlock))
            range.include(singles(endBlock * valuesPerBlock, end));
        return range;
    }

    /** Fetches the blocks that range() reads of the same stretch. */
    [[gnu::always_inline]] void prefetchRange(int first, int end) const
    {
        prefetchEnds((first + valuesPerBlock - 1) / valuesPerBlock, end / valuesPerBlock);
    }

private:
    using Level = ChunkedList<ValueRange, 6>;

    void append(std::size_t level, const ValueRange &range);
    ValueRange blocks(int first, int end) const;
    /** Whether some of the values of a block of level 0, which need not be full, are outside. */
    bool mayWiden(const ValueRange &range, int block) const
    {
        return block * valuesPerBlock >= size() || !range.contains(m_levels.front()[block]);
    }
    [[gnu::always_inline]] void prefetchEnds(int first, int end) const;

    std::vector<Level> m_levels;
};

/** Fetches what blocks() reads at both ends of the lower levels; those above are small. */
inline void MinMaxPyramid::prefetchEnds(int first, int end) const
{
    constexpr std::size_t largeLevels = 2;
    for (std::size_t level = 0; level < largeLevels && first < end; ++level) {
        const Level &blocks = m_levels[level];
        const int upperFirst = (first + blocksPerBlock - 1) / blocksPerBlock;
        const int upperEnd = end / blocksPerBlock;
        const int right = std::max(first, upperEnd * blocksPerBlock);
        prefetch(&blocks[first], std::min(end, upperFirst * blocksPerBlock) - first);
        if (right < end)
            prefetch(&blocks[right], end - right);
        first = upperFirst;
        end = upperEnd;
    }
}

/** What a stretch of values comes to. */
struct Stretch {
    ValueRange range;
    double last = 0;
};

/**
 * An append-only series of finite numbers that knows its minimum and maximum over any stretch.
 *
 * Every 64 values complete a block with their range, so questions cost the logarithm of the
 * length. Values need not be sorted.
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

    /** Range of the values from `first` to before `end`; places that do not exist are left out. */
    ValueRange range(int first, int end) const;

    /** The same with the last of them; there must be one. */
    Stretch stretch(int first, int end) const { return {range(first, end), at(end - 1)}; }

    /** Fetches the single values that range() reads of the same stretch, which is not empty. */
    [[gnu::always_inline]] void prefetchEnds(int first, int end) const
    {
        const int blockOfEnd = MinMaxPyramid::nextBlock(end - 1) - MinMaxPyramid::valuesPerBlock;
        prefetch(first, std::min(end, MinMaxPyramid::nextBlock(first)) - first);
        prefetch(blockOfEnd, end - blockOfEnd);
    }
    /** Fetches all that range() reads of the same stretch, which is not empty. */
    [[gnu::always_inline]] void prefetchRange(int first, int end) const
    {
        prefetchEnds(first, end);
        m_storage->pyramid.prefetchRange(first, end);
    }

    /** Index of the first value not below `bound`; size() when there is none. */
    int firstNotBelow(double bound) const;
    /** Index of the newest value below `bound`; -1 when there is none. */
    int lastBelow(double bound) const;

    // The blocks themselves, for those who walk them: see MinMaxPyramid.

    int levelFrom(int first, int end) const { return m_storage->pyramid.levelFrom(first, end); }
    /** Range of the full block of `level` that begins at `first`. */
    const ValueRange &block(int level, int first) const
    {
        return m_storage->pyramid.block(level, first);
    }
    /** Fetches `count` values from `first` on, all of them inside one block of 64. */
    [[gnu::always_inline]] void prefetch(int first, int count) const
    {
        m_storage->values.prefetch(first, count);
    }
    /** Copies `count` values from `first` on, all of them existing. */
    void copy(int first, int count, double *values) const
    {
        m_storage->values.copy(first, count, values);
    }

private:
    struct Storage {
        PackedList values;
        MinMaxPyramid pyramid;
        double newest = 0;
        int ascending = 0; ///< number of values up to the first one less than that before it

        void append(double value);
    };

    std::shared_ptr<Storage> m_storage; ///< null until the first append; may hold more than m_size
    int m_size = 0;
};
