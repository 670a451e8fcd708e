#pragma once

#include <QtGlobal>

/** The thermometry that an instrument sees; every value follows from these settings and the time.
 */
struct ThermometrySignal {
    enum Kind {
        Bath,       ///< settles exponentially from `startCelsius` to `setPointCelsius`
        FixedPoint, ///< freezing at `setPointCelsius`: supercooling, recalescence, plateau, cooling
        Ramp        ///< rises from `startCelsius` for good
    };

    Kind kind = Bath;
    double startCelsius = 21.0;
    double setPointCelsius = 30.0;
    double settlingSeconds = 120.0;    ///< time constant of the bath
    double rampCelsiusPerMinute = 1.0; ///< also the rate of cooling of the fixed point
    double supercoolingCelsius = 0.5;  ///< how far below the set point freezing starts
    double plateauSeconds = 600.0;
    double channelSpreadMillikelvin = 8.0; ///< between one channel and the next
    double noiseMillikelvin = 1.0;         ///< standard deviation
    quint32 seed = 1;
};

/** Temperature in °C that channel `channel` (1-based) sees after `seconds`, noise included. */
double signalTemperature(const ThermometrySignal &signal, int channel, double seconds);

/** Resistance in Ω of a platinum sensor of 100 Ω (-200 to 850 °C). */
double platinumResistance(double celsius);

/** Voltage in mV of a nickel-chromium thermocouple with its cold junction at 0 °C, roughly. */
double thermocoupleVoltage(double celsius);
