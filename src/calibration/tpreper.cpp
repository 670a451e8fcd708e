#include "calibration/tpreper.h"

#include <cfloat>
#include <cmath>
#include <iterator>

// which EMF is the nearest, and the last digit of a sum, are those of single precision
static_assert(FLT_EVAL_METHOD == 0, "Build with -msse2 -mfpmath=sse: float must stay float");

namespace
{

/** A freezing point of ITS-90, and the EMFs of a type S thermocouple that are accepted there. */
struct FixedPoint {
    double celsius;
    int lowestMicrovolts;
    int highestMicrovolts;
};

constexpr std::array<FixedPoint, 3> fixedPoints = {{
    {419.527, 3437, 3460},
    {660.323, 5842, 5877},
    {1084.62, 10542, 10607},
}};

/** The Lagrange basis polynomial: 1 at its own fixed point, 0 at the two others. */
double basisPolynomial(const FixedPoint &own, double celsius)
{
    double product = 1.0;
    for (const FixedPoint &other : fixedPoints)
        if (other.celsius != own.celsius)
            product *= (celsius - other.celsius) / (own.celsius - other.celsius);
    return product;
}

float roundedToTenthMicrovolt(double millivolts)
{
    return float(std::round(millivolts * 10000.0) / 10000.0);
}

FixedPointTable tableOf(const FixedPoint &point)
{
    FixedPointTable table;
    for (int microvolts = point.lowestMicrovolts; microvolts <= point.highestMicrovolts;
         ++microvolts) {
        const double emf = microvolts / 1000.0;
        Contributions &contributions = table[float(emf)];
        for (unsigned short celsius = 300; celsius <= 1200; celsius += 100)
            contributions[celsius] = roundedToTenthMicrovolt(emf * basisPolynomial(point, celsius));
    }
    return table;
}

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

const std::array<FixedPointTable, 3> &fixedPointTables()
{
    static const std::array<FixedPointTable, 3> tables = {
        tableOf(fixedPoints[0]), tableOf(fixedPoints[1]), tableOf(fixedPoints[2])};
    return tables;
}

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
