#pragma once

#include "plot/movingaverage.h"
#include "plot/plotmodes.h"
#include "plot/series.h"
#include "plot/unitruns.h"

#include <QDateTime>
#include <QVector>

class EnvelopeCurve;
class QwtPlotMarker;

/** A point as it comes from a record of the past. */
struct PlotPoint {
    int channel;    ///< from 0
    double seconds; ///< since the instrument's start
    double value;
};

/**
 * One channel on the plot.
 *
 * `meas`, `aver`, `time` and `dims` always have one entry per accepted point; `diffMeas`,
 * `diffAver` and `diffTime` one per difference. A copy shares the numbers (later points of the
 * original do not show in it) and points to the same curves, which the plot destroys together with
 * the channel.
 */
struct PlotChannel {
    Series meas;             ///< measured values
    MovingAverages aver;     ///< moving average after each point
    Series time;             ///< time stamps, seconds since the instrument's startDateTime
    Series diffMeas;         ///< channel minus reference channel
    MovingAverages diffAver; ///< moving average of the differences
    Series diffTime;         ///< time stamps of the differences, seconds
    UnitRuns dims;           ///< unit text received with each point
    EnvelopeCurve *averCurve = nullptr;
    EnvelopeCurve *measCurve = nullptr;
    QString dim;              ///< unit text of the latest point
    qint32 diffQwtIndex = -1; ///< instrument of the reference channel; below 0: no difference
    uchar diffCh = 255;       ///< reference channel; 255: no difference
    uchar precision = 0;      ///< decimals that suit the Y step
    uchar scaleX = 0;         ///< row of the X scale table, 0 chooses by itself
    uchar scaleY = 0;         ///< row of the Y scale table, 0 chooses by itself
    TmcMode mode = ModeAuto;
    TmcModeX modeX = ModeXSeconds;
    double averSum = 0;     ///< sum of the averaging window of meas
    double diffAverSum = 0; ///< sum of the averaging window of diffMeas
    bool error = true;      ///< the latest point was rejected, or none has arrived yet
    bool show = true;       ///< the channel's curves may be shown

    /** True when the channel is shown as the difference against another channel. */
    bool hasDifference() const { return diffQwtIndex >= 0 && diffCh != 255; }

    /** Stores a point and its average. The unit becomes that of the channel. */
    void appendPoint(double value, double seconds, const QString &unit);
    /** Stores a difference and its average. */
    void appendDifference(double value, double seconds);
    /** Empties the difference series. */
    void clearDifferences();
    /** Empties all series. */
    void clearPoints();
};

/** One instrument on the plot. The markers are null until the limits' lines exist; the plot owns
 * them. */
struct PlotDevice {
    uchar mainCh = 0;
    uchar fixedChCount = 0;  ///< channels of the model; 0: unknown, channels come on demand
    QVector<PlotChannel> ch; ///< index = channel number from 0
    bool devShow = false;    ///< the instrument's curves may be shown
    bool measShow = true;    ///< curves of measured values are shown
    bool averShow = true;    ///< curves of moving averages are shown
    QDateTime startDateTime = QDateTime::currentDateTime(); ///< time origin of all series
    TmcTrackingMode modeTrack = TrackOff;
    QwtPlotMarker *upperMarker = nullptr;
    QwtPlotMarker *lowerMarker = nullptr;
};

/** Gives the curves of a channel what they show at present: its difference, else its values. */
void showSeries(const PlotChannel &channel);
