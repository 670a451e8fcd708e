#pragma once

#include "device/callendarvandusen.h"
#include "device/featurerecord.h"

#include <optional>

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

/** That deviation in mK for a characteristic after Callendar and Van Dusen. Nothing for another
 *  type, and where the texts are no thermometer with a range. */
std::optional<double> fitDeviation(const FeatureRecord &feature);
