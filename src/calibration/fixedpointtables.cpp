#include "calibration/fixedpointtables.h"

#include <cmath>

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

} // namespace

const std::array<FixedPointTable, 3> &fixedPointTables()
{
    static const std::array<FixedPointTable, 3> tables = {
        tableOf(fixedPoints[0]), tableOf(fixedPoints[1]), tableOf(fixedPoints[2])};
    return tables;
}
