#pragma once

#include <QPointF>

class QwtPlot;
class QwtPlotMarker;

/** The two crosses of a measurement on the plot; the first never lies right of the second. */
class MeasurementMarkers
{
public:
    /** Adds the two markers, hidden; the plot owns them. */
    explicit MeasurementMarkers(QwtPlot *plot);

    bool hasFirst() const;
    bool hasSecond() const;
    QPointF first() const;
    QPointF second() const;
    /** True when one of the crosses stands at `point`. */
    bool standAt(const QPointF &point) const;

    /** Begins a measurement: the first cross at `point`, no second one. */
    void start(const QPointF &point);
    /** Puts the second cross at `point`; the first one when there is none. */
    void add(const QPointF &point);
    /** Takes both away. */
    void reset();

private:
    QwtPlotMarker *m_first;
    QwtPlotMarker *m_second;
};
