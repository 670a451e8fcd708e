#include "plot/plotrecords.h"

#include "plot/envelopecurve.h"

void showSeries(const PlotChannel &channel)
{
    if (channel.hasDifference()) {
        channel.measCurve->setSeries(channel.diffTime, channel.diffMeas);
        channel.averCurve->setSeries(channel.diffTime, channel.diffAver);
    } else {
        channel.measCurve->setSeries(channel.time, channel.meas);
        channel.averCurve->setSeries(channel.time, channel.aver);
    }
}
