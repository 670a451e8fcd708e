#include "plot/plotrecords.h"

#include "plot/envelopecurve.h"

void PlotChannel::appendPoint(double value, double seconds, const QString &unit)
{
    dim = unit;
    dims.append(unit);
    time.append(seconds);
    meas.append(value);
    aver.follow(meas);
    averSum = aver.sum(aver.size() - 1);
}

void PlotChannel::appendDifference(double value, double seconds)
{
    diffTime.append(seconds);
    diffMeas.append(value);
    diffAver.follow(diffMeas);
    diffAverSum = diffAver.sum(diffAver.size() - 1);
}

void PlotChannel::clearDifferences()
{
    diffTime.clear();
    diffMeas.clear();
    diffAver.follow(diffMeas);
    diffAverSum = 0;
}

void PlotChannel::clearPoints()
{
    dims.clear();
    time.clear();
    meas.clear();
    aver.follow(meas);
    averSum = 0;
    clearDifferences();
}

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
