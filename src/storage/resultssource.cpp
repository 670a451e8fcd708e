#include "storage/resultssource.h"

#include <algorithm>

const PlotChannel &longestChannel(const QVector<PlotChannel> &channels)
{
    return *std::max_element(channels.cbegin(), channels.cend(),
                             [](const PlotChannel &one, const PlotChannel &other) {
                                 return one.time.size() < other.time.size();
                             });
}

QStringList unitsOf(const PlotDevice &instrument)
{
    QStringList units;
    for (const PlotChannel &channel : instrument.ch)
        units << channel.dim;
    return units;
}
