#include "plot/qwtnox.h"

#include <algorithm>
#include <cmath>

// The road of a point: from the instrument into the series.

namespace
{

constexpr double lowestValue = -1300; // what an instrument sends for a broken sensor
constexpr int mostChannels = 255;     // the next number means the main one

bool isAcceptable(double val, double time)
{
    return std::isfinite(val) && val > lowestValue && std::isfinite(time) && time >= 0;
}

} // namespace

/** What has become of the points of one channel. */
struct PointOutcome {
    int last = -1; ///< which of all points was its last one; -1: it had none
    bool hasAccepted = false;
    bool hasRejected = false;
    bool hasAlarm = false;     ///< an accepted one lies beyond a limit
    bool endsRejected = false; ///< the last one was rejected
    bool endsInAlarm = false;  ///< the last one that was accepted lies beyond a limit

    void note(int point, bool isAccepted, bool isAlarm)
    {
        last = point;
        hasAccepted = hasAccepted || isAccepted;
        hasRejected = hasRejected || !isAccepted;
        hasAlarm = hasAlarm || isAlarm;
        endsRejected = !isAccepted;
        endsInAlarm = isAccepted ? isAlarm : endsInAlarm;
    }
};

bool QwtNOX::addPoint(double val, const QString &dim, int qwtIndex, uchar ch)
{
    const _dev *device = findDevice(qwtIndex);
    if (!device)
        return false;
    const double time = static_cast<double>(device->startDateTime.msecsTo(now())) / 1000.0;
    return addPoint(val, time, dim, qwtIndex, ch);
}

bool QwtNOX::addPoint(double val, double time, const QString &dim, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    if (!ensureChannel(qwtIndex, ch))
        return false;
    _ch &channel = *findChannel(qwtIndex, ch);
    if (!storePoint(channel, val, time, dim)) {
        emit onErrorAddPoint(qwtIndex, ch);
        return false;
    }
    showSeries(channel);
    if (isMainChannel(qwtIndex, ch))
        applyScale();
    else
        m_frameClock.request();

    // Whoever hears of the point may change the records: nothing found before holds after this.
    emit onAddPoint(qwtIndex, ch);
    if (violatesLimit(qwtIndex, ch))
        emit onPointTrackOff(qwtIndex, ch);
    return true;
}

/** Appends a point to the series; false when it, or its difference, is none. */
bool QwtNOX::storePoint(_ch &channel, double val, double time, const QString &dim) const
{
    if (!isAcceptable(val, time)) {
        channel.error = true;
        return false;
    }
    channel.appendPoint(val, time, dim);
    if (!extendDifference(channel))
        return false;
    channel.error = false;
    return true;
}

int QwtNOX::addPoints(int qwtIndex, const QVector<PlotPoint> &points, const QVector<QString> &units)
{
    qwtIndex = resolveIndex(qwtIndex);
    int accepted = 0;
    _dev *device = nullptr;
    QVector<PointOutcome> outcomes;
    for (int i = 0; i < points.size(); ++i) {
        const PlotPoint &point = points.at(i);
        if (point.channel < 0 || point.channel >= qMin(units.size(), mostChannels))
            continue;
        if (point.channel >= outcomes.size()) {
            // a new channel is announced at once, and whoever hears of it may change the records
            const bool hasChannel = ensureChannel(qwtIndex, static_cast<uchar>(point.channel));
            device = findDevice(qwtIndex);
            if (!device)
                return accepted;
            if (!hasChannel)
                continue;
            outcomes.resize(device->ch.size());
        }
        _ch &channel = device->ch[point.channel];
        const bool isStored =
            storePoint(channel, point.value, point.seconds, units.at(point.channel));
        outcomes[point.channel].note(i, isStored, isStored && violatesLimit(*device, channel));
        accepted += isStored ? 1 : 0;
    }
    announce(qwtIndex, outcomes);
    return accepted;
}

/** Shows what points have changed, and tells of it in the order of the channels' last points. */
void QwtNOX::announce(int qwtIndex, const QVector<PointOutcome> &outcomes)
{
    QMap<int, uchar> channelsByLastPoint;
    for (int ch = 0; ch < outcomes.size(); ++ch)
        if (outcomes.at(ch).last >= 0)
            channelsByLastPoint.insert(outcomes.at(ch).last, static_cast<uchar>(ch));
    bool hasMain = false;
    for (const uchar ch : qAsConst(channelsByLastPoint)) {
        showSeries(*findChannel(qwtIndex, ch));
        hasMain = hasMain || isMainChannel(qwtIndex, ch);
    }
    if (hasMain)
        applyScale();
    else
        m_frameClock.request();

    for (const uchar ch : qAsConst(channelsByLastPoint)) {
        const PointOutcome &outcome = outcomes.at(ch);
        if (outcome.hasRejected && !outcome.endsRejected)
            emit onErrorAddPoint(qwtIndex, ch);
        if (outcome.hasAccepted)
            emit onAddPoint(qwtIndex, ch);
        if (outcome.hasAlarm)
            emit onPointTrackOff(qwtIndex, ch);
        if (outcome.hasAlarm && !outcome.endsInAlarm)
            emit onAddPoint(qwtIndex, ch); // the last one is as it should be
        if (outcome.endsRejected)
            emit onErrorAddPoint(qwtIndex, ch);
    }
}

void QwtNOX::clear(int qwtIndex)
{
    _dev *device = findDevice(qwtIndex);
    if (!device)
        return;
    for (_ch &channel : device->ch) {
        channel.clearPoints();
        showSeries(channel);
    }
    applyScale();
}

void QwtNOX::prepareMeas(int qwtIndex, const QDateTime &start)
{
    qwtIndex = resolveIndex(qwtIndex);
    _dev *device = findDevice(qwtIndex);
    if (!device)
        return;
    clear(qwtIndex);
    device->startDateTime = start;
    installScaleXDraw();
    emit onChange(qwtIndex);
    applyScale();
}

bool QwtNOX::ensureChannel(int qwtIndex, uchar ch)
{
    const _dev *device = findDevice(qwtIndex);
    if (!device || ch == 255)
        return false;
    if (ch >= device->ch.size() && device->fixedChCount == 0)
        setChCount(static_cast<uchar>(ch + 1), qwtIndex);
    return ch < getChCount(qwtIndex);
}
