#pragma once

#include "plot/chunkedlist.h"
#include "plot/prefetch.h"
#include "plot/valuerange.h"

#include <algorithm>
#include <vector>

/**
 * Minimum and maximum of a sequence that only grows, per block, on several levels: a block of level
 * 0 is 64 values, one of each further level 16 blocks of the level below. A block is written once,
 * when it is full. Level -1 stands for a single value, which the sequence itself keeps.
 */
class SealedLevels
{
public:
    static constexpr int valuesPerBlock = 64;
    static constexpr int blocksPerBlock = 16;

    /** Number of values in the sealed blocks, a multiple of valuesPerBlock. */
    int sealedValues() const
    {
        return m_levels.empty() ? 0 : m_levels.front().size() * valuesPerBlock;
    }

    /** Adds the next block of level 0, and those above that it completes. */
    void seal(const ValueRange &range) { seal(0, range); }

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
     * gives the range of a stretch inside one block of level 0. Adds to `read` the number of blocks
     * and single values that it took.
     */
    template<typename Singles>
    ValueRange range(int first, int end, Singles singles, int *read) const
    {
        const int firstBlock = (first + valuesPerBlock - 1) / valuesPerBlock;
        const int endBlock = end / valuesPerBlock;
        if (firstBlock > endBlock) { // inside one block
            *read += end - first;
            return singles(first, end);
        }
        *read += firstBlock * valuesPerBlock - first + end - endBlock * valuesPerBlock;
        prefetchEnds(firstBlock, endBlock);
        ValueRange range = blocks(firstBlock, endBlock, read);
        if (first < firstBlock * valuesPerBlock)
            range.include(singles(first, firstBlock * valuesPerBlock));
        if (endBlock * valuesPerBlock < end)
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

    void seal(std::size_t level, const ValueRange &range);
    ValueRange blocks(int first, int end, int *read) const;
    [[gnu::always_inline]] void prefetchEnds(int first, int end) const;

    std::vector<Level> m_levels;
};

/** Fetches what blocks() reads at both ends of the lower levels; those above are small. */
inline void SealedLevels::prefetchEnds(int first, int end) const
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
