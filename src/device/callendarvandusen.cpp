#include "device/callendarvandusen.h"

#include <cstddef>

namespace
{

constexpr int points = 100;
constexpr std::size_t unknowns = std::tuple_size<TemperaturePolynomial>::value;

/** The equations M c = y, as rows of M with y behind. */
using Equations = std::array<std::array<double, unknowns + 1>, unknowns>;

/** Adds what one point of the curve T(R) contributes to the normal equations. */
void addPoint(Equations &equations, double resistance, double celsius)
{
    std::array<double, 2 * unknowns - 1> powers;
    powers[0] = 1.0;
    for (std::size_t k = 1; k < powers.size(); ++k)
        powers[k] = powers[k - 1] * resistance;
    for (std::size_t i = 0; i < unknowns; ++i) {
        for (std::size_t k = 0; k < unknowns; ++k)
            equations[i][k] += powers[i + k];
        equations[i][unknowns] += celsius * powers[i];
    }
}

/** Gaussian elimination in the order of the rows. */
TemperaturePolynomial solve(Equations equations)
{
    for (std::size_t pivot = 0; pivot < unknowns; ++pivot)
        for (std::size_t row = pivot + 1; row < unknowns; ++row) {
            const double factor = equations[row][pivot] / equations[pivot][pivot];
            for (std::size_t column = pivot; column <= unknowns; ++column)
                equations[row][column] -= factor * equations[pivot][column];
        }

    TemperaturePolynomial solution{};
    for (std::size_t row = unknowns; row-- > 0;) {
        double rest = equations[row][unknowns];
        for (std::size_t column = row + 1; column < unknowns; ++column)
            rest -= equations[row][column] * solution[column];
        solution[row] = rest / equations[row][row];
    }
    return solution;
}

} // namespace

double CallendarVanDusen::resistance(double celsius) const
{
    const double quadratic = r0 * (1.0 + a * celsius + b * celsius * celsius);
    if (celsius >= 0.0)
        return quadratic;
    return quadratic + r0 * c * (celsius - 100.0) * celsius * celsius * celsius;
}

TemperaturePolynomial fitTemperaturePolynomial(const CallendarVanDusen &thermometer)
{
    Equations equations{};
    const double range = thermometer.highest - thermometer.lowest;
    for (int j = 0; j < points; ++j) {
        const double celsius = thermometer.lowest + range * j / points;
        addPoint(equations, thermometer.resistance(celsius), celsius);
    }
    return solve(equations);
}

double evaluate(const TemperaturePolynomial &polynomial, double resistance)
{
    double celsius = 0.0;
    for (std::size_t k = polynomial.size(); k-- > 0;)
        celsius = celsius * resistance + polynomial[k];
    return celsius;
}
