#include "calibration/tpreper.h"

#include "calibration/fixedpointtables.h"

#include <cfloat>
#include <cmath>
#include <iterator>

// which EMF is the nearest, and the last digit of a sum, are those of single precision
static_assert(FLT_EVAL_METHOD == 0, "Build with -msse2 -mfpmath=sse: float must stay float");

namespace
{

constexpr unsigned short correctedCelsius = 1200;
constexpr double correction = 0.008; // mV, what the parabola exceeds the thermocouple by

bool covers(const FixedPointTable &table, float emf)
{
    return table.begin()->first <= emf && emf <= table.rbegin()->first;
}

/** Of two that are equally near the lower one, but the last one of the table. */
const Contributions &nearestContributions(const FixedPointTable &table, float emf)
{
    auto nearest = std::prev(table.end());
    for (auto candidate = table.begin(); candidate != table.end(); ++candidate)
        if (std::fabs(candidate->first - emf) < std::fabs(nearest->first - emf))
            nearest = candidate;
    return nearest->second;
}

} // namespace

void tpReper::getEDSTable(const float *emfs, std::map<unsigned short, float> &result)
{
    const auto &[zincTable, aluminiumTable, copperTable] = fixedPointTables();
    if (!covers(zincTable, emfs[0]) || !covers(aluminiumTable, emfs[1]) ||
        !covers(copperTable, emfs[2]))
        return;

    const Contributions &zinc = nearestContributions(zincTable, emfs[0]);
    const Contributions &aluminium = nearestContributions(aluminiumTable, emfs[1]);
    const Contributions &copper = nearestContributions(copperTable, emfs[2]);
    result.clear();
    for (const auto &[celsius, contribution] : zinc)
        result[celsius] = contribution + aluminium.at(celsius) + copper.at(celsius);
    result[correctedCelsius] = float(result[correctedCelsius] - correction);
}
