#pragma once

#include "plot/movingaverage.h"
#include "plot/plotmodes.h"
#include "plot/series.h"

#include <QDateTime>
#include <QMap>
#include <QPointF>
#include <QString>
#include <QVector>

#include <functional>

class EnvelopeCurve;
class QwtPlotMarker;

// What the plot knows of every instrument: channels, points, differences, limits. No widget.

constexpr int mainInstrument = -1; ///< as a plot index in a question: the main instrument
constexpr int noInstrument = -1;   ///< as a plot index in an answer
constexpr uchar mainChannel = 255; ///< as a channel in a question: the main one of the instrument
constexpr uchar noChannel = 255;   ///< as a channel in an answer
constexpr int latestPoint = -1;    ///< as the index of a point
constexpr signed char decimalsOfScale = -1; ///< as a number of decimals: those of the Y scale

/** A point as it comes from a record of the past. */
struct PlotPoint {
    int channel;    ///< from 0
    double seconds; ///< since the instrument's start
    double value;
};

/** What became of points that were added together, and what is to be announced of them. */
class PointBatch
{
public:
    enum class Event { Accepted, Rejected, BeyondLimit };

    /** Notes a point of channel `ch`; an accepted one may lie beyond a limit. */
    void note(uchar ch, bool isAccepted, bool isBeyondLimit);
    /** The channels that have points, in the order of their last ones. */
    QVector<uchar> channels() const;
    /** What there is to say of a channel: what its last point was comes last. */
    QVector<Event> eventsOf(uchar ch) const;
    /** How many points were accepted. */
    int accepted() const { return m_accepted; }

private:
    struct Outcome {
        int last = -1; ///< which of all points was the channel's last one; -1: it had none
        bool hasAccepted = false;
        bool hasRejected = false;
        bool hasAlarm = false;     ///< an accepted one lies beyond a limit
        bool endsRejected = false; ///< the last one was rejected
        bool endsInAlarm = false;  ///< the last one that was accepted lies beyond a limit
    };
    QVector<Outcome> m_outcomes; ///< by channel
    int m_count = 0;
    int m_accepted = 0;
};

/** The unit text of every point of a channel, kept once per run of equal units. */
class UnitRuns
{
public:
    int size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    /** The unit of point `index`, which must exist. */
    QString at(int index) const;
    QString operator[](int index) const { return at(index); }

    void append(const QString &unit);
    void clear();

private:
    struct Run {
        int first; ///< index of the run's first point
        QString unit;
    };
    QVector<Run> m_runs;
    int m_size = 0;
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
    QString dim;                        ///< unit text of the latest point
    qint32 diffQwtIndex = noInstrument; ///< instrument of the reference channel
    uchar diffCh = noChannel;           ///< reference channel
    uchar precision = 0;                ///< decimals that suit the Y step
    uchar scaleX = 0;                   ///< index of a step in scalesX(), 0 chooses by itself
    uchar scaleY = 0;                   ///< index of a step in scalesY(), 0 chooses by itself
    TmcMode mode = ModeAuto;
    TmcModeX modeX = ModeXSeconds;
    double averSum = 0;     ///< sum of the averaging window of meas
    double diffAverSum = 0; ///< sum of the averaging window of diffMeas
    bool error = true;      ///< the latest point was rejected, or none has arrived yet
    bool show = true;       ///< the channel's curves may be shown

    /** True when the channel is shown as the difference against another channel. */
    bool hasDifference() const { return diffQwtIndex >= 0 && diffCh != noChannel; }

    // What the channel is shown by: its difference, where it has one; not so when `diff` is false.

    const Series &values(bool diff = true) const
    {
        return diff && hasDifference() ? diffMeas : meas;
    }
    const Series &times(bool diff = true) const
    {
        return diff && hasDifference() ? diffTime : time;
    }
    const MovingAverages &averages() const { return hasDifference() ? diffAver : aver; }
    /** A value, the latest where there is none at `index`; 0 without any. */
    double valueAt(int index, bool diff) const;
    /** The time of a point in seconds, of the latest where there is none at `index`; 0 without any.
     */
    double timeAt(int index, bool diff) const;

    /** Stores a point and its average. The unit becomes that of the channel. */
    void appendPoint(double value, double seconds, const QString &unit);
    /** Stores a difference and its average. */
    void appendDifference(double value, double seconds);
    /** Makes the channel the difference against another one, from its first point on. */
    void startDifference(const PlotChannel &reference, int referenceIndex, uchar referenceCh);
    /** Shows the plain values again. */
    void endDifference();
    /** Empties the difference series. */
    void clearDifferences();
    /** Empties all series. */
    void clearPoints();
};

/**
 * What a local time is in ms since 1970, found once for each: finding it looks at the computer's
 * time zone, which costs more than the rest of what a point costs.
 */
class MomentOf
{
public:
    /** 0 for an invalid time. */
    qint64 milliseconds(const QDateTime &time) const;

private:
    mutable QDateTime m_latest;
    mutable qint64 m_milliseconds = 0; ///< of the latest
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
    MomentOf startMoment; ///< of startDateTime

    /** Seconds from the time origin to a moment in ms since 1970; 0 without an origin. */
    double secondsTo(qint64 moment) const;

    /** Watches other limits, none of which has been placed yet. */
    void watch(TmcTrackingMode mode);
    /** Shows the limits that are watched, as far as they have been placed; hides all if not. */
    void showLimits(bool isShown);
    /** Places a limit that is watched; true when no further one is to be placed. */
    bool placeLimit(const QPointF &point);
    /** Whether the newest value of a channel, or its newest difference, lies beyond a limit. */
    bool isBeyondLimit(const PlotChannel &channel) const;
};

/**
 * Finds for the points of a channel the points of its reference channel that they are compared
 * with, by their times in seconds.
 *
 * The first point takes the first reference point if that is not later; every other point takes the
 * next reference point that lies between its predecessor and itself, both included. Each reference
 * point is taken once at most; points without one are left out. `paired` receives the indices of
 * both, in ascending order.
 */
void pairDifferences(const Series &times, const Series &referenceTimes,
                     const std::function<void(int point, int referencePoint)> &paired);

/** A channel by numbers that mean no other one: of an instrument, and from 0. */
struct ChannelNumber {
    int qwtIndex;
    uchar ch;
};

/**
 * The instruments on the plot, by plot index, and which is the main one. Questions may name
 * mainInstrument and mainChannel (channel 0 where the stored main channel does not exist).
 */
class PlotRecords
{
public:
    QMap<int, PlotDevice> &devices() { return m_devices; }
    const QMap<int, PlotDevice> &devices() const { return m_devices; }

    /** Plot index of the main instrument, or noInstrument. */
    int mainIndex() const { return m_mainIndex; }
    void setMainIndex(int qwtIndex) { m_mainIndex = qwtIndex; }

    /** Whom a question means. */
    int resolve(int qwtIndex) const { return qwtIndex < 0 ? m_mainIndex : qwtIndex; }
    ChannelNumber resolve(int qwtIndex, uchar ch) const;
    /** Whether it is what the plot shows in the first place. */
    bool isMain(const ChannelNumber &number) const;

    /** Null when unknown. */
    PlotDevice *findDevice(int qwtIndex);
    const PlotDevice *findDevice(int qwtIndex) const;
    PlotChannel *findChannel(int qwtIndex, uchar ch);
    const PlotChannel *findChannel(int qwtIndex, uchar ch) const;
    PlotChannel *findMainChannel() { return findChannel(mainInstrument, mainChannel); }
    const PlotChannel *findMainChannel() const { return findChannel(mainInstrument, mainChannel); }

    /** To read from: when unknown, a record of neither channels nor start, that shows all. */
    const PlotDevice &device(int qwtIndex) const;
    /** To read from: when unknown, a record without points that is hidden, with the unit "-". */
    const PlotChannel &channel(int qwtIndex, uchar ch) const;

    /** Every channel that is the difference against that one. */
    QVector<ChannelNumber> differencesAgainst(int qwtIndex, uchar ch) const;
    /** The channel that one is the difference against; none unless it is on the plot. */
    ChannelNumber referenceOf(const PlotChannel &channel) const;

    /**
     * Appends a point and, where the channel has one, its difference. False when the point is
     * rejected: a value of -1300 or less, a negative time or a number that is not finite. False,
     * though the point is stored, when the reference channel has nothing fresh for the difference.
     */
    bool storePoint(PlotChannel &channel, double value, double seconds, const QString &unit) const;
    /**
     * Stores points of one instrument in their order; `units` are those of its channels. Before the
     * first point of a channel `ensureChannel` makes sure of the channel, or refuses it; the
     * records may be others after that.
     */
    PointBatch storePoints(int qwtIndex, const QVector<PlotPoint> &points,
                           const QVector<QString> &units,
                           const std::function<bool(uchar ch)> &ensureChannel);

    // Texts of values, as QwtNOX tells them

    QString valueText(int qwtIndex, uchar ch, int decimals, int index, bool diff) const;
    QString averageText(int qwtIndex, uchar ch, int decimals, int index) const;
    QString timeText(int qwtIndex, uchar ch, int index) const;
    /** Seconds between the two newest points. */
    QString timeStepText(int qwtIndex, uchar ch) const;
    /** Change between the two newest points. */
    QString valueStepText(int qwtIndex, uchar ch) const;

private:
    bool extendDifference(PlotChannel &channel) const;
    int decimalsFor(const PlotChannel &channel, int asked, int qwtIndex) const;

    QMap<int, PlotDevice> m_devices;
    int m_mainIndex = noInstrument;
};
