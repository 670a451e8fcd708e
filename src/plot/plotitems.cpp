#include "plot/plotitems.h"

#include "plot/envelopecurve.h"

#include <qwt_plot_marker.h>

#include <iterator>
#include <utility>

QColor defaultChannelColor(int ch)
{
    static const QColor colors[] = {
        Qt::red,         Qt::blue,    Qt::green,      Qt::darkGray,  "#c6c600",     Qt::darkCyan,
        Qt::darkMagenta, Qt::black,   Qt::darkRed,    Qt::darkBlue,  Qt::darkGreen, "#00c6c6",
        Qt::gray,        Qt::magenta, Qt::darkYellow, Qt::lightGray,
    };
    return ch < static_cast<int>(std::size(colors)) ? colors[ch] : QColor("red");
}

QPen limitLinePen()
{
    return QPen(Qt::red, 2, Qt::DotLine);
}

void addLimitLines(PlotDevice &device, QwtPlot *plot)
{
    for (QwtPlotMarker **line : {&device.upperMarker, &device.lowerMarker}) {
        *line = new QwtPlotMarker;
        (*line)->setLineStyle(QwtPlotMarker::HLine);
        (*line)->setLinePen(limitLinePen());
        (*line)->setVisible(false);
        (*line)->attach(plot);
    }
}

void removeLimitLines(PlotDevice &device)
{
    delete std::exchange(device.upperMarker, nullptr);
    delete std::exchange(device.lowerMarker, nullptr);
}

void appendChannel(PlotDevice &device, bool isMainDevice, QwtPlot *plot)
{
    const QColor color = defaultChannelColor(device.ch.size());
    const auto times = std::make_shared<TimeRuns>(); // those of values and of averages are the same
    PlotChannel channel;
    channel.averCurve = new EnvelopeCurve(color, 2, times);
    channel.measCurve = new EnvelopeCurve(color, 1, times);
    for (EnvelopeCurve *curve : {channel.averCurve, channel.measCurve}) {
        curve->setVisible(false);
        curve->attach(plot);
    }
    if (isMainDevice)
        updateVisibility(device, channel);
    device.ch.append(channel);
}

void removeLastChannel(PlotDevice &device)
{
    delete device.ch.last().measCurve;
    delete device.ch.last().averCurve;
    device.ch.removeLast();
}

bool showSeries(const PlotChannel &channel)
{
    const bool continuesValues = channel.measCurve->setSeries(channel.times(), channel.values());
    const bool continuesAverages =
        channel.averCurve->setSeries(channel.times(), channel.averages());
    return continuesValues && continuesAverages;
}

void endDifferencesAgainst(int qwtIndex, QMap<int, PlotDevice> &devices)
{
    for (PlotDevice &device : devices) {
        for (PlotChannel &channel : device.ch) {
            if (channel.diffQwtIndex == qwtIndex) {
                channel.endDifference();
                showSeries(channel);
            }
        }
    }
}

ValueRange takeNewTimes(const QMap<int, PlotDevice> &devices)
{
    ValueRange times;
    for (const PlotDevice &device : devices)
        for (const PlotChannel &channel : device.ch)
            for (EnvelopeCurve *curve : {channel.measCurve, channel.averCurve})
                if (curve->isVisible())
                    times.include(curve->takeNewTimes());
    return times;
}

void updateVisibility(const PlotDevice &device, const PlotChannel &channel)
{
    const bool isShown = device.devShow && channel.show;
    channel.measCurve->setVisible(isShown && device.measShow);
    channel.averCurve->setVisible(isShown && device.averShow);
}

void updateVisibility(const PlotDevice &device)
{
    for (const PlotChannel &channel : device.ch)
        updateVisibility(device, channel);
}

void showOnly(PlotDevice &device, int shownCh, bool isMainDevice)
{
    for (int ch = 0; ch < device.ch.size(); ++ch) {
        PlotChannel &channel = device.ch[ch];
        channel.show = ch == shownCh;
        channel.measCurve->setVisible(channel.show && isMainDevice && device.measShow);
        channel.averCurve->setVisible(channel.show && isMainDevice && device.averShow);
    }
}

ValueRange decidingRange(const PlotChannel &channel, int first)
{
    const int end = channel.times().size();
    const bool isByAverage = channel.averCurve->isVisible() && !channel.measCurve->isVisible();
    return isByAverage ? channel.averages().range(first, end) : channel.values().range(first, end);
}
