#include "plot/sealedlevels.h"

namespace
{

constexpr int blocksPerBlock = 16;

} // namespace

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
