#pragma once

#include "plot/measurementframes.h"
#include "plot/plottexts.h"

class QwtPlot;
class QwtPlotMarker;
struct PlotChannel;
class Series;

/** What is known of the values of an interval. */
struct IntervalStatistics {
    int count = 0;
    double mean = 0;      ///< means nothing when count is 0
    double deviation = 0; ///< standard deviation of a sample; means nothing when count is below 2
};

/**
 * Statistics of the values whose times, in seconds, lie from `from` up to `to`. The newest value is
 * left out: it may belong to a round that is still being measured. Where times step back, the
 * interval begins at its first point and ends before the first point later than `to`.
 */
IntervalStatistics intervalStatistics(const Series &times, const Series &values, double from,
                                      double to);

/** What is known between two points of a channel, of which the first is not the later one. */
MeasurementTexts measurementTexts(const PlotChannel &channel, const QPointF &first,
                                  const QPointF &second, const TimeFormat &format);

/** A value read off the plot: one decimal more than the axis, for there is something to read
 * between two ticks. */
QString readingText(const PlotChannel &channel, double value);

/**
 * A measurement between two points as it is seen: the crosses, of which the first never stands
 * right of the second, and the frames beside them.
 */
class PlotMeasurement
{
public:
    /** Crosses and frames are hidden at first; the plot owns them. */
    explicit PlotMeasurement(QwtPlot *plot);

    bool hasFirst() const;
    bool hasSecond() const;
    QPointF first() const;
    QPointF second() const;
    PointFrame *pointFrame() const { return m_pointFrame; }
    MeasurementFrame *measurementFrame() const { return m_measurementFrame; }

    /** Begins at `point`, which leaves nothing of an earlier measurement. */
    void start(const QPointF &point);
    /** Adds a point to the one or two that are there; begins at it when there is none. */
    void add(const QPointF &point);
    /** Shows what is known of the first point, beside a place on the canvas in pixels. */
    void showPoint(const QPointF &point, const QPoint &place, const QString &x, const QString &y);
    /** Shows what is known of the interval, beside the point that was added last. */
    void showInterval(const QPointF &added, const MeasurementTexts &texts);
    /** Takes crosses and frames away. */
    void reset();
    void hideFrames();

    /** Where on the canvas a point is, in pixels; far beyond it the place is not exact. */
    QPoint placeOf(const QPointF &point) const;
    /** Puts the frames back beside their points after the axes have changed. */
    void followAxes();

private:
    void showBeside(ValueFrame *frame, const QPointF &point, const QPoint &place);
    void moveBeside(ValueFrame *frame, const QPoint &place);

    QwtPlot *m_plot;
    QwtPlotMarker *m_first;
    QwtPlotMarker *m_second;
    PointFrame *m_pointFrame;
    MeasurementFrame *m_measurementFrame;
};
