#include "plot/sealedlevels.h"

void SealedLevels::seal(std::size_t level, const ValueRange &range)
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
    seal(level + 1, upper);
}

/** Range of the blocks of level 0 from number `first` to before `end`. */
ValueRange SealedLevels::blocks(int first, int end, int *read) const
{
    // On each level those that fill no block of the next one, on both sides.
    ValueRange range;
    for (std::size_t level = 0; first < end; ++level) {
        const Level &blocks = m_levels[level];
        for (; first < end && first % blocksPerBlock != 0; ++*read)
            range.include(blocks[first++]);
        for (; first < end && end % blocksPerBlock != 0; ++*read)
            range.include(blocks[--end]);
        first /= blocksPerBlock;
        end /= blocksPerBlock;
    }
    return range;
}

int SealedLevels::levelFrom(int first, int end) const
{
    int level = -1;
    const int levels = static_cast<int>(m_levels.size());
    while (level + 1 < levels && first % blockLength(level + 1) == 0 &&
           blockLength(level + 1) <= end - first)
        ++level;
    return level;
}

int SealedLevels::levelBefore(int end) const
{
    int level = -1;
    const int levels = static_cast<int>(m_levels.size());
    while (level + 1 < levels && end % blockLength(level + 1) == 0)
        ++level;
    return level;
}
