#include "device/fitdeviation.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr int intervals = 20000; // 0.05 °C at the widest range

float evaluateInSingle(const StoredPolynomial &polynomial, float resistance)
{
    float celsius = 0.0F;
    for (std::size_t k = polynomial.size(); k-- > 0;)
        celsius = celsius * resistance + polynomial[k];
    return celsius;
}

std::optional<CallendarVanDusen> thermometerOf(const FeatureRecord &feature)
{
    std::array<double, 6> values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        bool isNumber = false;
        values[i] = double(bFloat::str2Float(feature.ratioStr.value(int(i)), &isNumber));
        if (!isNumber)
            return {};
    }
    const auto [r0, a, b, c, lowest, highest] = values;
    if (lowest == highest)
        return {};
    return CallendarVanDusen{r0, a, b, c, lowest, highest};
}

} // namespace

double largestDeviation(const StoredPolynomial &polynomial, const CallendarVanDusen &thermometer)
{
    double largest = 0.0;
    for (int j = 0; j <= intervals; ++j) {
        const double part = double(j) / intervals;
        const double celsius = thermometer.lowest * (1.0 - part) + thermometer.highest * part;
        const auto resistance = float(thermometer.resistance(celsius));
        const double deviation =
            std::fabs(double(evaluateInSingle(polynomial, resistance)) - celsius);
        if (!std::isfinite(deviation))
            return std::numeric_limits<double>::infinity();
        largest = std::max(largest, deviation);
    }
    return largest;
}

std::optional<double> fitDeviation(const FeatureRecord &feature)
{
    const std::optional<CallendarVanDusen> thermometer = thermometerOf(feature);
    if (feature.type != FeatureRecord::callendarVanDusen || !thermometer)
        return {};
    StoredPolynomial polynomial;
    for (std::size_t k = 0; k < polynomial.size(); ++k)
        polynomial[k] = feature.ratio[k].value;
    constexpr double millikelvins = 1000.0;
    return largestDeviation(polynomial, *thermometer) * millikelvins;
}
