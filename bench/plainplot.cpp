#include "plainplot.h"

#include "plot/plotitems.h"
#include "plothistory.h"

#include <QCoreApplication>
#include <QPen>
#include <qwt_plot_curve.h>

namespace
{

QwtPlotCurve *addCurve(QwtPlot *plot, int channel, qreal width)
{
    auto *curve = new QwtPlotCurve;
    curve->setPen(QPen(defaultChannelColor(channel), width));
    curve->attach(plot);
    return curve;
}

} // namespace

PlainPlot::PlainPlot(int channels, double span)
    : m_channels(static_cast<std::size_t>(channels))
{
    int number = 0;
    for (Channel &channel : m_channels) {
        channel.valueCurve = addCurve(&m_plot, number, 1);
        channel.averageCurve = addCurve(&m_plot, number++, 2);
    }
    m_plot.setAxisScale(QwtPlot::yLeft, 15, 45);
    m_plot.resize(1280, 800);
    showSpan(0, span);
    m_plot.show();
    paint();
}

void PlainPlot::fill(int count)
{
    for (std::size_t number = 0; number < m_channels.size(); ++number) {
        const PlotHistory history{count, static_cast<int>(number)};
        for (int i = 0; i < count; ++i)
            append(history.channel, history.value(i), history.time(i));
        showSamples(m_channels[number]);
    }
}

void PlainPlot::append(int channel, double value, double time)
{
    Channel &to = m_channels[static_cast<std::size_t>(channel)];
    to.times.append(time);
    to.values.append(value);
    to.sum += value;
    const int count = to.values.size();
    if (count > 10)
        to.sum -= to.values.at(count - 11);
    to.averages.append(to.sum / qMin(count, 10));
}

void PlainPlot::addPoint(double value, double time)
{
    append(0, value, time);
    showSamples(m_channels.front());
    paint();
}

void PlainPlot::showSamples(Channel &channel)
{
    channel.valueCurve->setSamples(channel.times, channel.values);
    channel.averageCurve->setSamples(channel.times, channel.averages);
}

void PlainPlot::showSpan(double from, double to)
{
    m_plot.setAxisScale(QwtPlot::xBottom, from, to);
}

void PlainPlot::paint()
{
    m_plot.replot();
    QCoreApplication::processEvents();
}
