#include "simulator/thermometrysignal.h"

#include <cmath>

namespace
{

constexpr double fixedPointHeadStartCelsius = 2.0; // above the set point when cooling begins
constexpr double recalescenceSeconds = 5.0;

/** 64 well-mixed bits from any key. */
quint64 mixed(quint64 key)
{
    key += 0x9E3779B97F4A7C15ULL;
    key = (key ^ (key >> 30)) * 0xBF58476D1CE4E5B9ULL;
    key = (key ^ (key >> 27)) * 0x94D049BB133111EBULL;
    return key ^ (key >> 31);
}

/** Uniform in (0, 1]. */
double uniform(quint64 key)
{
    return (double(mixed(key) >> 11) + 1.0) / 9007199254740992.0;
}

/** Normally distributed with mean 0 and standard deviation 1, a function of its arguments. */
double gaussian(quint32 seed, int channel, double seconds)
{
    const auto milliseconds = quint64(std::llround(seconds * 1000.0));
    const quint64 key = mixed(mixed(seed) ^ quint64(channel) << 48 ^ milliseconds);
    return std::sqrt(-2.0 * std::log(uniform(key))) * std::cos(2.0 * M_PI * uniform(key + 1));
}

double bath(const ThermometrySignal &signal, double seconds)
{
    const double distance = signal.startCelsius - signal.setPointCelsius;
    return signal.setPointCelsius + distance * std::exp(-seconds / signal.settlingSeconds);
}

double fixedPoint(const ThermometrySignal &signal, double seconds)
{
    const double perSecond = signal.rampCelsiusPerMinute / 60.0;
    const double freezing = (fixedPointHeadStartCelsius + signal.supercoolingCelsius) / perSecond;
    const double end = freezing + signal.plateauSeconds;
    if (seconds < freezing)
        return signal.setPointCelsius + fixedPointHeadStartCelsius - perSecond * seconds;
    if (seconds < end)
        return signal.setPointCelsius -
               signal.supercoolingCelsius * std::exp((freezing - seconds) / recalescenceSeconds);
    return signal.setPointCelsius - perSecond * (seconds - end);
}

double ideal(const ThermometrySignal &signal, double seconds)
{
    switch (signal.kind) {
    case ThermometrySignal::FixedPoint:
        return fixedPoint(signal, seconds);
    case ThermometrySignal::Ramp:
        return signal.startCelsius + signal.rampCelsiusPerMinute / 60.0 * seconds;
    default:
        return bath(signal, seconds);
    }
}

} // namespace

double signalTemperature(const ThermometrySignal &signal, int channel, double seconds)
{
    const double spread = signal.channelSpreadMillikelvin * (channel - 1);
    const double noise = signal.noiseMillikelvin * gaussian(signal.seed, channel, seconds);
    return ideal(signal, seconds) + (spread + noise) / 1000.0;
}

double platinumResistance(double celsius)
{
    const double a = 3.9083e-3;
    const double b = -5.775e-7;
    const double c = celsius < 0.0 ? -4.183e-12 : 0.0;
    const double t = celsius;
    return 100.0 * (1.0 + a * t + b * t * t + c * (t - 100.0) * t * t * t);
}

double thermocoupleVoltage(double celsius)
{
    return 0.0394 * celsius + 2.5e-5 * celsius * celsius;
}
