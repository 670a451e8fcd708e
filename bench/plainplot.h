#pragma once

#include <QVector>
#include <qwt_plot.h>

#include <memory>
#include <vector>

struct PlotHistory;
class QwtPlotCurve;

/**
 * The plain way of plotting, for comparison: vectors of times, values and averages, shared with a
 * QwtPlotCurve each, and a replot after every point.
 */
class PlainPlot
{
public:
    /** Shows nothing yet; `span` is the time axis in seconds. */
    PlainPlot(int channels, double span);

    /** Gives every channel a history of `count` points. */
    void fill(int count);
    /** Stores a point of channel 0 and shows it. */
    void addPoint(double value, double time);
    /** Stores a point, without showing it. */
    void append(int channel, double value, double time);
    void showSpan(double from, double to);
    void paint();

private:
    struct Channel {
        QVector<double> times;
        QVector<double> values;
        QVector<double> averages;
        double sum = 0;
        QwtPlotCurve *valueCurve = nullptr;
        QwtPlotCurve *averageCurve = nullptr;
    };
    void showSamples(Channel &channel);

    QwtPlot m_plot; ///< owns the curves
    std::vector<Channel> m_channels;
};
