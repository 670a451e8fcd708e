#include "plot/differences.h"
#include "plot/qwtnox.h"

// A channel as the difference against another one.

void QwtNOX::setChDiff(uchar diffCh, int diffQwtIndex, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    _ch *channel = findChannel(qwtIndex, ch);
    if (!channel)
        return;
    ch = resolveChannel(qwtIndex, ch);
    if (diffCh == 255 && diffQwtIndex == -1)
        return endDifference(qwtIndex, ch);
    const auto reference = m_devices.constFind(diffQwtIndex);
    if (reference != m_devices.cend() && diffCh < reference->ch.size()) {
        rebuildDifference(*channel, reference->ch.at(diffCh));
        channel->diffCh = diffCh;
        channel->diffQwtIndex = diffQwtIndex;
        showSeries(*channel);
    }
    setChMode(ModeFollow, qwtIndex, ch);
}

void QwtNOX::getChDiff(uchar *diffCh, int *diffQwtIndex, int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    const bool configured =
        channel && channel->hasDifference() && channel->diffCh < getChCount(channel->diffQwtIndex);
    *diffCh = configured ? channel->diffCh : 255;
    *diffQwtIndex = configured ? channel->diffQwtIndex : -1;
}

void QwtNOX::endDifference(int qwtIndex, uchar ch)
{
    _ch &channel = *findChannel(qwtIndex, ch);
    channel.diffCh = 255;
    channel.diffQwtIndex = -1;
    showSeries(channel);
    setChMode(ModeFollow, qwtIndex, ch);
}

void QwtNOX::rebuildDifference(_ch &channel, const _ch &reference) const
{
    channel.clearDifferences();
    pairDifferences(channel.time, reference.time, [&](int point, int referencePoint) {
        channel.appendDifference(channel.meas[point] - reference.meas[referencePoint],
                                 channel.time[point]);
    });
}

/** Adds the difference of the newest point; false when the reference channel has nothing fresh. */
bool QwtNOX::extendDifference(_ch &channel) const
{
    const _ch *reference =
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
