#include "plot/envelopecurve.h"
#include "plot/qwtnox.h"

#include <qwt_plot_marker.h>

// Main instrument, main channel, and what of them is visible in which colour.

namespace
{

/** A curve is visible when its instrument, its kind and its channel all are. */
void updateVisibility(const PlotDevice &device, const PlotChannel &channel)
{
    const bool shown = device.devShow && channel.show;
    channel.measCurve->setVisible(shown && device.measShow);
    channel.averCurve->setVisible(shown && device.averShow);
}

void updateVisibility(const PlotDevice &device)
{
    for (const PlotChannel &channel : device.ch)
        updateVisibility(device, channel);
}

/** Shows the limits that `mode` watches, as far as they have been placed. */
void showLimits(const PlotDevice &device, TmcTrackingMode mode)
{
    const auto show = [](QwtPlotMarker *limit, bool isWatched) {
        if (limit)
            limit->setVisible(isWatched && !qIsNaN(limit->yValue()));
    };
    show(device.upperMarker, mode == TrackRange || mode == TrackUpper);
    show(device.lowerMarker, mode == TrackRange || mode == TrackLower);
}

/** Leaves one channel of the instrument on show, and that only on the main instrument. */
void showOnly(PlotDevice &device, int shownCh, bool isMainDevice)
{
    for (int ch = 0; ch < device.ch.size(); ++ch) {
        PlotChannel &channel = device.ch[ch];
        channel.show = ch == shownCh;
        channel.measCurve->setVisible(channel.show && isMainDevice && device.measShow);
        channel.averCurve->setVisible(channel.show && isMainDevice && device.averShow);
    }
}

} // namespace

void QwtNOX::setDevMain(int qwtIndex)
{
    qwtIndex = resolveIndex(qwtIndex);
    if (qwtIndex >= 0 && !m_devices.contains(qwtIndex))
        return;
    m_mainIndex = qwtIndex;
    restMouse();
    for (auto device = m_devices.begin(); device != m_devices.end(); ++device) {
        const bool isMain = device.key() == qwtIndex;
        showLimits(*device, isMain ? device->modeTrack : TrackOff);
        setDevShow(isMain, device.key());
    }
    if (const _dev *device = findDevice(qwtIndex)) {
        const uchar mainCh = device->mainCh;
        restAxes();
        setChMode(ModeFollow, qwtIndex);
        installScaleXDraw();
        applyScale();
        emit onChMainChange(qwtIndex, mainCh);
    }
    emit onDevChange(qwtIndex);
    emit onChange(qwtIndex);
    applyScale();
}

void QwtNOX::setChMain(uchar ch, int qwtIndex)
{
    qwtIndex = resolveIndex(qwtIndex);
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel)
        return;
    _dev *device = findDevice(qwtIndex);
    ch = resolveChannel(qwtIndex, ch);
    showOnly(*device, ch, qwtIndex == m_mainIndex);
    if (device->mainCh != ch) {
        device->mainCh = ch;
        if (qwtIndex == m_mainIndex)
            restAxes();
        const bool hasScale = channel->scaleX != 0 || channel->scaleY != 0;
        setChMode(hasScale ? ModeFollow : ModeAuto, qwtIndex, ch);
        emit onChMainChange(qwtIndex, ch);
    }
    installScaleXDraw();
    applyScale();
    emit onChange(qwtIndex);
}

int QwtNOX::getChMain(int qwtIndex) const
{
    const _dev *device = findDevice(qwtIndex);
    return device && !device->ch.isEmpty() ? device->mainCh : -1;
}

void QwtNOX::setDevShow(bool show, int qwtIndex)
{
    if (_dev *device = findDevice(qwtIndex)) {
        device->devShow = show;
        updateVisibility(*device);
        m_frameClock.request();
    }
}

void QwtNOX::setChShow(bool show, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    _ch *channel = findChannel(qwtIndex, ch);
    if (!channel)
        return;
    if (!findDevice(qwtIndex)->devShow)
        setDevShow(true, qwtIndex);
    channel->show = show;
    updateVisibility(*findDevice(qwtIndex), *channel);
    m_frameClock.request();
    emit onChShowChange(qwtIndex, resolveChannel(qwtIndex, ch), show);
}

bool QwtNOX::getChShow(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel && channel->show;
}

void QwtNOX::setMeasShow(bool show, int qwtIndex)
{
    qwtIndex = resolveIndex(qwtIndex);
    _dev *device = findDevice(qwtIndex);
    if (!device || device->measShow == show)
        return;
    device->measShow = show;
    updateVisibility(*device);
    emit onChange(qwtIndex);
    emit onMeasShowChange(qwtIndex, show);
    applyScale();
}

bool QwtNOX::toggleMeasShow(int qwtIndex)
{
    setMeasShow(!getMeasShow(qwtIndex), qwtIndex);
    return getMeasShow(qwtIndex);
}

bool QwtNOX::getMeasShow(int qwtIndex) const
{
    const _dev *device = findDevice(qwtIndex);
    return !device || device->measShow;
}

void QwtNOX::setAverShow(bool show, int qwtIndex)
{
    qwtIndex = resolveIndex(qwtIndex);
    _dev *device = findDevice(qwtIndex);
    if (!device || device->averShow == show)
        return;
    device->averShow = show;
    updateVisibility(*device);
    emit onChange(qwtIndex);
    emit onAverShowChange(qwtIndex, show);
    applyScale();
}

bool QwtNOX::toggleAverShow(int qwtIndex)
{
    setAverShow(!getAverShow(qwtIndex), qwtIndex);
    return getAverShow(qwtIndex);
}

bool QwtNOX::getAverShow(int qwtIndex) const
{
    const _dev *device = findDevice(qwtIndex);
    return !device || device->averShow;
}

void QwtNOX::setChColor(const QColor &color, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    const _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || !color.isValid())
        return;
    channel->measCurve->setColor(color);
    channel->averCurve->setColor(color);
    m_frameClock.request();
    emit onChange(qwtIndex);
    emit onChColorChange(qwtIndex, resolveChannel(qwtIndex, ch), color);
}

QColor QwtNOX::getChColor(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel ? channel->measCurve->pen().color() : QColor(Qt::white);
}
