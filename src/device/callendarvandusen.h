#pragma once

#include <array>
#include <tuple>

/**
 * A platinum thermometer after Callendar and Van Dusen (IEC 60751), and the range of use.
 *
 * R = R0 (1 + A T + B T²), and below 0 °C R0 C (T - 100) T³ more.
 */
struct CallendarVanDusen {
    double r0 = 0; ///< resistance at 0 °C, Ω
    double a = 0;
    double b = 0;
    double c = 0;
    double lowest = 0;  ///< °C
    double highest = 0; ///< °C

    /** Resistance in Ω at a temperature in °C. */
    double resistance(double celsius) const;
};

/** Coefficients C0 to C9 of T = Σ Ck·R^k, °C and Ω. */
using TemperaturePolynomial = std::array<double, 10>;

/**
 * The polynomial that fits the thermometer over its range by least squares.
 *
 * The fit is over 100 temperatures from the lowest on, equally spaced, the highest not among them.
 * A range or coefficients without a solution give coefficients that are not finite.
 */
TemperaturePolynomial fitTemperaturePolynomial(const CallendarVanDusen &thermometer);

/** The temperature in °C that the polynomial gives for a resistance in Ω. */
double evaluate(const TemperaturePolynomial &polynomial, double resistance);

/** Coefficients C0 to C9 as an instrument holds them. */
using StoredPolynomial = std::array<float, std::tuple_size<TemperaturePolynomial>::value>;

/**
 * How far a stored polynomial lies from the thermometer over its range, both ends included: the
 * largest deviation in °C, infinite where it gives no number.
 *
 * The polynomial is evaluated as an instrument may do it, in single precision by Horner's rule; how
 * the instruments really do it is not known.
 */
double largestDeviation(const StoredPolynomial &polynomial, const CallendarVanDusen &thermometer);
