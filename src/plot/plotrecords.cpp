#include "plot/plotrecords.h"

#include "plot/plottexts.h"

#include <qwt_plot_marker.h>

#include <algorithm>
#include <cmath>

namespace
{

// what an instrument sends for a sensor that is broken; nothing real is as low
constexpr double brokenSensorValue = -1300;

bool isAcceptable(double value, double seconds)
{
    return std::isfinite(value) && value > brokenSensorValue && std::isfinite(seconds) &&
           seconds >= 0;
}

/** The value at `index`, or the newest when there is none there; `series` is not empty. */
template<typename Sequence>
double valueOf(const Sequence &series, int index)
{
    return index >= 0 && index < series.size() ? series[index] : series.last();
}

/** How much the newest value differs from the one before; `series` holds two at least. */
double newestStep(const Series &series)
{
    return series.last() - series[series.size() - 2];
}

void place(QwtPlotMarker *limit, const QPointF &point)
{
    limit->setValue(point);
    limit->setVisible(true);
}

bool isWatched(TmcTrackingMode watched, TmcTrackingMode limit)
{
    return watched == TrackRange || watched == limit;
}

PlotDevice unknownDevice()
{
    PlotDevice device;
    device.startDateTime = QDateTime();
    return device;
}

PlotChannel unknownChannel()
{
    PlotChannel channel;
    channel.dim = QStringLiteral("-");
    channel.error = false;
    channel.show = false;
    return channel;
}

} // namespace

QString UnitRuns::at(int index) const
{
    const auto next = std::upper_bound(m_runs.cbegin(), m_runs.cend(), index,
                                       [](int point, const Run &run) { return point < run.first; });
    return (next - 1)->unit;
}

void UnitRuns::append(const QString &unit)
{
    if (m_runs.isEmpty() || m_runs.last().unit != unit)
        m_runs.append({m_size, unit});
    ++m_size;
}

void UnitRuns::clear()
{
    m_runs.clear();
    m_size = 0;
}

void PointBatch::note(uchar ch, bool isAccepted, bool isBeyondLimit)
{
    if (ch >= m_outcomes.size())
        m_outcomes.resize(ch + 1);
    Outcome &outcome = m_outcomes[ch];
    outcome.last = m_count++;
    m_accepted += isAccepted ? 1 : 0;
    outcome.hasAccepted = outcome.hasAccepted || isAccepted;
    outcome.hasRejected = outcome.hasRejected || !isAccepted;
    outcome.hasAlarm = outcome.hasAlarm || isBeyondLimit;
    outcome.endsRejected = !isAccepted;
    outcome.endsInAlarm = isAccepted ? isBeyondLimit : outcome.endsInAlarm;
}

QVector<uchar> PointBatch::channels() const
{
    QMap<int, uchar> byLastPoint;
    for (int ch = 0; ch < m_outcomes.size(); ++ch)
        if (m_outcomes.at(ch).last >= 0)
            byLastPoint.insert(m_outcomes.at(ch).last, static_cast<uchar>(ch));
    return byLastPoint.values().toVector();
}

QVector<PointBatch::Event> PointBatch::eventsOf(uchar ch) const
{
    const Outcome &outcome = m_outcomes.at(ch);
    QVector<Event> events;
    if (outcome.hasRejected && !outcome.endsRejected)
        events.append(Event::Rejected);
    if (outcome.hasAccepted)
        events.append(Event::Accepted);
    if (outcome.hasAlarm)
        events.append(Event::BeyondLimit);
    if (outcome.hasAlarm && !outcome.endsInAlarm)
        events.append(Event::Accepted); // the last one is as it should be
    if (outcome.endsRejected)
        events.append(Event::Rejected);
    return events;
}

double PlotChannel::valueAt(int index, bool diff) const
{
    return values(diff).isEmpty() ? 0 : valueOf(values(diff), index);
}

double PlotChannel::timeAt(int index, bool diff) const
{
    return times(diff).isEmpty() ? 0 : valueOf(times(diff), index);
}

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

void PlotChannel::startDifference(const PlotChannel &reference, int referenceIndex,
                                  uchar referenceCh)
{
    clearDifferences();
    pairDifferences(time, reference.time, [&](int point, int referencePoint) {
        appendDifference(meas[point] - reference.meas[referencePoint], time[point]);
    });
    diffCh = referenceCh;
    diffQwtIndex = referenceIndex;
}

void PlotChannel::endDifference()
{
    diffCh = noChannel;
    diffQwtIndex = noInstrument;
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

qint64 MomentOf::milliseconds(const QDateTime &time) const
{
    if (m_latest != time) {
        m_latest = time;
        m_milliseconds = time.toMSecsSinceEpoch();
    }
    return m_milliseconds;
}

double PlotDevice::secondsTo(qint64 moment) const
{
    if (!startDateTime.isValid())
        return 0;
    return static_cast<double>(moment - startMoment.milliseconds(startDateTime)) / 1000.0;
}

void PlotDevice::watch(TmcTrackingMode mode)
{
    for (QwtPlotMarker *limit : {upperMarker, lowerMarker}) {
        if (!limit)
            continue;
        limit->setVisible(false);
        limit->setValue(0, qQNaN()); // nowhere, until it is placed
    }
    modeTrack = mode;
}

void PlotDevice::showLimits(bool isShown)
{
    const auto show = [&](QwtPlotMarker *limit, TmcTrackingMode alone) {
        if (limit)
            limit->setVisible(isShown && isWatched(modeTrack, alone) && !qIsNaN(limit->yValue()));
    };
    show(upperMarker, TrackUpper);
    show(lowerMarker, TrackLower);
}

bool PlotDevice::placeLimit(const QPointF &point)
{
    if (!upperMarker || !lowerMarker)
        return false;
    const bool isFirstOfTwo = modeTrack == TrackRange && !upperMarker->isVisible();
    if (isFirstOfTwo || modeTrack == TrackUpper) {
        place(upperMarker, point);
    } else if (modeTrack == TrackRange && point.y() > upperMarker->yValue()) {
        place(lowerMarker, upperMarker->value());
        place(upperMarker, point);
    } else if (modeTrack != TrackOff) {
        place(lowerMarker, point);
    }
    return !isFirstOfTwo;
}

bool PlotDevice::isBeyondLimit(const PlotChannel &channel) const
{
    // a receiver of the point may have cleared the series
    if (modeTrack == TrackOff || channel.values().isEmpty())
        return false;
    const auto isChecked = [this](const QwtPlotMarker *limit, TmcTrackingMode alone) {
        return isWatched(modeTrack, alone) && limit && limit->isVisible();
    };
    const double value = channel.values().last();
    return (isChecked(upperMarker, TrackUpper) && value > upperMarker->yValue()) ||
           (isChecked(lowerMarker, TrackLower) && value < lowerMarker->yValue());
}

void pairDifferences(const Series &times, const Series &referenceTimes,
                     const std::function<void(int point, int referencePoint)> &paired)
{
    int reference = 0;
    for (int i = 0; i < times.size(); ++i) {
        while (i > 0 && reference < referenceTimes.size() &&
               referenceTimes[reference] < times[i - 1])
            ++reference;
        if (reference == referenceTimes.size())
            return;
        if (referenceTimes[reference] <= times[i])
            paired(i, reference++);
    }
}

ChannelNumber PlotRecords::resolve(int qwtIndex, uchar ch) const
{
    const PlotDevice *device = findDevice(qwtIndex);
    if (ch == mainChannel && device)
        ch = device->mainCh < device->ch.size() ? device->mainCh : 0;
    return {resolve(qwtIndex), ch};
}

bool PlotRecords::isMain(const ChannelNumber &number) const
{
    return number.qwtIndex == m_mainIndex && number.ch == resolve(m_mainIndex, mainChannel).ch;
}

PlotDevice *PlotRecords::findDevice(int qwtIndex)
{
    const auto device = m_devices.find(resolve(qwtIndex));
    return device == m_devices.end() ? nullptr : &*device;
}

const PlotDevice *PlotRecords::findDevice(int qwtIndex) const
{
    const auto device = m_devices.constFind(resolve(qwtIndex));
    return device == m_devices.cend() ? nullptr : &*device;
}

PlotChannel *PlotRecords::findChannel(int qwtIndex, uchar ch)
{
    PlotDevice *device = findDevice(qwtIndex);
    ch = resolve(qwtIndex, ch).ch;
    return device && ch < device->ch.size() ? &device->ch[ch] : nullptr;
}

const PlotChannel *PlotRecords::findChannel(int qwtIndex, uchar ch) const
{
    const PlotDevice *device = findDevice(qwtIndex);
    ch = resolve(qwtIndex, ch).ch;
    return device && ch < device->ch.size() ? &device->ch[ch] : nullptr;
}

const PlotDevice &PlotRecords::device(int qwtIndex) const
{
    static const PlotDevice unknown = unknownDevice();
    const PlotDevice *device = findDevice(qwtIndex);
    return device ? *device : unknown;
}

const PlotChannel &PlotRecords::channel(int qwtIndex, uchar ch) const
{
    static const PlotChannel unknown = unknownChannel();
    const PlotChannel *channel = findChannel(qwtIndex, ch);
    return channel ? *channel : unknown;
}

QVector<ChannelNumber> PlotRecords::differencesAgainst(int qwtIndex, uchar ch) const
{
    QVector<ChannelNumber> found;
    for (auto device = m_devices.cbegin(); device != m_devices.cend(); ++device)
        for (int i = 0; i < device->ch.size(); ++i)
            if (device->ch[i].diffQwtIndex == qwtIndex && device->ch[i].diffCh == ch)
                found.append({device.key(), static_cast<uchar>(i)});
    return found;
}

ChannelNumber PlotRecords::referenceOf(const PlotChannel &channel) const
{
    const bool isThere =
        channel.hasDifference() && channel.diffCh < device(channel.diffQwtIndex).ch.size();
    return isThere ? ChannelNumber{channel.diffQwtIndex, channel.diffCh}
                   : ChannelNumber{noInstrument, noChannel};
}

bool PlotRecords::storePoint(PlotChannel &channel, double value, double seconds,
                             const QString &unit) const
{
    if (!isAcceptable(value, seconds)) {
        channel.error = true;
        return false;
    }
    channel.appendPoint(value, seconds, unit);
    if (!extendDifference(channel))
        return false;
    channel.error = false;
    return true;
}

PointBatch PlotRecords::storePoints(int qwtIndex, const QVector<PlotPoint> &points,
                                    const QVector<QString> &units,
                                    const std::function<bool(uchar ch)> &ensureChannel)
{
    PointBatch batch;
    PlotDevice *device = nullptr;
    int knownChannels = 0;
    for (const PlotPoint &point : points) {
        if (point.channel < 0 || point.channel >= qMin<int>(units.size(), mainChannel))
            continue;
        const auto ch = static_cast<uchar>(point.channel);
        if (ch >= knownChannels) {
            // a new channel is announced at once, and whoever hears of it may change the records
            const bool hasChannel = ensureChannel(ch);
            device = findDevice(qwtIndex);
            if (!device)
                return batch;
            knownChannels = device->ch.size();
            if (!hasChannel)
                continue;
        }
        PlotChannel &channel = device->ch[ch];
        const bool isStored = storePoint(channel, point.value, point.seconds, units.at(ch));
        batch.note(ch, isStored, isStored && device->isBeyondLimit(channel));
    }
    return batch;
}

/** Adds the difference of the newest point; false when the reference channel has nothing fresh. */
bool PlotRecords::extendDifference(PlotChannel &channel) const
{
    const PlotChannel *reference =
        channel.hasDifference() ? findChannel(channel.diffQwtIndex, channel.diffCh) : nullptr;
    if (!reference || reference->meas.isEmpty())
        return true;
    const bool isStale =
        !channel.diffTime.isEmpty() && reference->time.last() <= channel.diffTime.last();
    if (isStale || reference->error)
        return false;
    channel.appendDifference(channel.meas.last() - reference->meas.last(), channel.time.last());
    return true;
}

/** Decimals of a value in tables and files: those asked for, else those of the scale; 2 at least.
 */
int PlotRecords::decimalsFor(const PlotChannel &of, int asked, int qwtIndex) const
{
    if (asked >= 0)
        return qMax(2, asked);
    return qMax<int>(2,
                     of.precision != 0 ? of.precision : channel(qwtIndex, mainChannel).precision);
}

QString PlotRecords::valueText(int qwtIndex, uchar ch, int decimals, int index, bool diff) const
{
    const PlotChannel &read = channel(qwtIndex, ch);
    if (read.error || read.values(diff).isEmpty())
        return noValueText();
    return QString::number(read.valueAt(index, diff), 'f', decimalsFor(read, decimals, qwtIndex));
}

QString PlotRecords::averageText(int qwtIndex, uchar ch, int decimals, int index) const
{
    const PlotChannel &read = channel(qwtIndex, ch);
    if (read.error)
        return noValueText();
    if (read.averages().isEmpty())
        return {};
    return QString::number(valueOf(read.averages(), index), 'f',
                           decimalsFor(read, decimals, qwtIndex));
}

QString PlotRecords::timeText(int qwtIndex, uchar ch, int index) const
{
    const PlotChannel &read = channel(qwtIndex, ch);
    if (read.time.isEmpty())
        return {};
    return QString::number(std::round(valueOf(read.time, index)), 'g', 6);
}

QString PlotRecords::timeStepText(int qwtIndex, uchar ch) const
{
    const Series &times = channel(qwtIndex, ch).times();
    return times.size() < 2 ? QString() : QString::number(newestStep(times), 'f', 1);
}

QString PlotRecords::valueStepText(int qwtIndex, uchar ch) const
{
    const PlotChannel &read = channel(qwtIndex, ch);
    if (read.values().size() < 2)
        return {};
    const uchar ofMain = channel(qwtIndex, mainChannel).precision;
    const int decimals = read.precision != 0 ? read.precision : ofMain != 0 ? ofMain : 2;
    return numberText(newestStep(read.values()), decimals);
}
