#include "plot/unitruns.h"

#include <algorithm>

QString UnitRuns::at(int index) const
{
    const auto next = std::upper_bound(m_runs.cbegin(), m_runs.cend(), index,
                                       [](int point, const Run &run) { return point < run.first; });
    return (next - 1)->unit;
}

void UnitRuns::append(const QString &unit)
{
    if (m_runs.isEmpty() || m_runs.last().unit != unit)
        m_runs.append({m_size, unit});
    ++m_size;
}

void UnitRuns::clear()
{
    m_runs.clear();
    m_size = 0;
}
