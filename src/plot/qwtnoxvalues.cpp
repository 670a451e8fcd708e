#include "plot/numbertext.h"
#include "plot/qwtnox.h"

#include <cmath>

// Reading values off the plot, as numbers and as texts.

namespace
{

QString noValue()
{
    return QStringLiteral("--");
}

bool readsDifference(const PlotChannel &channel, bool diff)
{
    return diff && channel.hasDifference();
}

const Series &valuesOf(const PlotChannel &channel, bool diff)
{
    return readsDifference(channel, diff) ? channel.diffMeas : channel.meas;
}

const Series &timesOf(const PlotChannel &channel, bool diff)
{
    return readsDifference(channel, diff) ? channel.diffTime : channel.time;
}

/** The value at `index`, or the newest when there is none there; `series` is not empty. */
template<typename Sequence>
double valueAt(const Sequence &series, int index)
{
    return index >= 0 && index < series.size() ? series[index] : series.last();
}

/** Decimals of a value in tables and files: those asked for, else those of the scale; 2 at least.
 */
int decimalsFor(int asked, int ofChannel, int ofMainChannel)
{
    if (asked >= 0)
        return qMax(2, asked);
    return qMax(2, ofChannel != 0 ? ofChannel : ofMainChannel);
}

/** How much the newest value differs from the one before; `series` holds two at least. */
double newestStep(const Series &series)
{
    return series.last() - series[series.size() - 2];
}

} // namespace

uchar QwtNOX::getChCount(int qwtIndex) const
{
    const _dev *device = findDevice(qwtIndex);
    return device ? static_cast<uchar>(device->ch.size()) : 0;
}

int QwtNOX::getChMeasCount(int qwtIndex, uchar ch, bool diff) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel ? valuesOf(*channel, diff).size() : 0;
}

double QwtNOX::getChMeas(int qwtIndex, uchar ch, int index, bool diff) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || valuesOf(*channel, diff).isEmpty())
        return 0;
    return valueAt(valuesOf(*channel, diff), index);
}

double QwtNOX::getChTime(int qwtIndex, uchar ch, int index, bool diff) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || timesOf(*channel, diff).isEmpty())
        return 0;
    return valueAt(timesOf(*channel, diff), index);
}

QString QwtNOX::getChMeasStr(int qwtIndex, uchar ch, signed char precision, int index,
                             bool diff) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || channel->error || valuesOf(*channel, diff).isEmpty())
        return noValue();
    const int decimals = decimalsFor(precision, channel->precision, getPrecision(qwtIndex));
    return QString::number(valueAt(valuesOf(*channel, diff), index), 'f', decimals);
}

QString QwtNOX::getChAverStr(int qwtIndex, uchar ch, signed char precision, int index, bool) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel)
        return {};
    if (channel->error)
        return noValue();
    const MovingAverages &averages = channel->hasDifference() ? channel->diffAver : channel->aver;
    if (averages.isEmpty())
        return {};
    const int decimals = decimalsFor(precision, channel->precision, getPrecision(qwtIndex));
    return QString::number(valueAt(averages, index), 'f', decimals);
}

QString QwtNOX::getChTimeStr(int qwtIndex, uchar ch, int index, bool) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || channel->time.isEmpty())
        return {};
    return QString::number(std::round(valueAt(channel->time, index)), 'g', 6);
}

QString QwtNOX::getChDXStr(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || timesOf(*channel, true).size() < 2)
        return {};
    return QString::number(newestStep(timesOf(*channel, true)), 'f', 1);
}

QString QwtNOX::getChDYStr(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || valuesOf(*channel, true).size() < 2)
        return {};
    const int ofMainChannel = getPrecision(qwtIndex) != 0 ? getPrecision(qwtIndex) : 2;
    const int decimals = channel->precision != 0 ? channel->precision : ofMainChannel;
    return numberText(newestStep(valuesOf(*channel, true)), decimals);
}

QString QwtNOX::getChDim(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel ? channel->dim : QStringLiteral("-");
}

uchar QwtNOX::getPrecision(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel ? channel->precision : 0;
}
