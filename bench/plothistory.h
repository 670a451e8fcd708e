#pragma once

#include <cmath>

/**
 * A made-up history of one channel: a slow wave, noise, and now and then an outlier; times in whole
 * milliseconds, values with four decimals, as instruments send them.
 */
struct PlotHistory {
    int count;       ///< points
    int channel = 0; ///< gives each channel a history of its own

    static constexpr double seconds = 900000; ///< that the points spread over, however many

    double time(int point) const { return std::round(point * (seconds / count) * 1e3) / 1e3; }
    double value(int point) const
    {
        const unsigned noise = (static_cast<unsigned>(point) * 16 + channel) * 2654435761u;
        const double outlier = noise % 65537 == 0 ? 4.0 : 0.0;
        const double wave = std::abs(std::remainder(time(point), seconds / 5)) * (20 / seconds);
        const double celsius = 20 + channel + wave + (noise >> 8) * 0x1p-25 + outlier;
        return std::round(celsius * 1e4) / 1e4;
    }
};
