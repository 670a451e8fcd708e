#include "device/callendarvandusen.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace
{

constexpr int fittedPoints = 100;
constexpr int comparedIntervals = 20000; // 0.05 °C at the widest range
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

/** The value of a polynomial, in the precision of its coefficients. */
template<typename Number>
Number byHorner(const std::array<Number, unknowns> &coefficients, Number argument)
{
    Number value = 0;
    for (std::size_t k = coefficients.size(); k-- > 0;)
        value = value * argument + coefficients[k];
    return value;
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
    for (int j = 0; j < fittedPoints; ++j) {
        const double celsius = thermometer.lowest + range * j / fittedPoints;
        addPoint(equations, thermometer.resistance(celsius), celsius);
    }
    return solve(equations);
}

double evaluate(const TemperaturePolynomial &polynomial, double resistance)
{
    return byHorner(polynomial, resistance);
}

double largestDeviation(const StoredPolynomial &polynomial, const CallendarVanDusen &thermometer)
{
    double largest = 0.0;
    for (int j = 0; j <= comparedIntervals; ++j) {
        const double part = double(j) / comparedIntervals;
        const double celsius = thermometer.lowest * (1.0 - part) + thermometer.highest * part;
        const auto resistance = float(thermometer.resistance(celsius));
        const double deviation = std::fabs(double(byHorner(polynomial, resistance)) - celsius);
        if (!std::isfinite(deviation))
            return std::numeric_limits<double>::infinity();
        largest = std::max(largest, deviation);
    }
    return largest;
}
