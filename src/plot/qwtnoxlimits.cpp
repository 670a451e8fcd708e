#include "plot/plotpickers.h"
#include "plot/qwtnox.h"

#include <qwt_plot_marker.h>
#include <qwt_plot_picker.h>

// Limits of the measured values, and the alarm when a point lies beyond.

TmcTrackingMode QwtNOX::getModeTrack(int qwtIndex) const
{
    const _dev *device = findDevice(qwtIndex);
    return device && !device->ch.isEmpty() ? device->modeTrack : TrackOff;
}

void QwtNOX::setModeTrack(TmcTrackingMode mode, int qwtIndex)
{
    qwtIndex = resolveIndex(qwtIndex);
    _dev *device = findDevice(qwtIndex);
    if (!device || mode < TrackOff || mode > TrackLower)
        return;
    for (QwtPlotMarker *limit : {device->upperMarker, device->lowerMarker}) {
        if (!limit)
            continue;
        limit->setVisible(false);
        limit->setValue(0, qQNaN()); // nowhere, until it is placed
    }
    device->modeTrack = mode;
    if (mode != TrackOff)
        setChMode(ModeLimits, qwtIndex);
    else if (qwtIndex == m_mainIndex)
        m_pickers->limits()->setEnabled(false);
    m_frameClock.request();
    emit onChange(qwtIndex);
    emit onModeTrackChange(qwtIndex, resolveChannel(qwtIndex, 255), mode);
}

void QwtNOX::placeLimit(const QPointF &point)
{
    const _dev *device = findDevice(m_mainIndex);
    if (!device || !device->upperMarker || !device->lowerMarker)
        return;
    QwtPlotMarker *upper = device->upperMarker;
    QwtPlotMarker *lower = device->lowerMarker;
    const auto place = [](QwtPlotMarker *limit, const QPointF &at) {
        limit->setValue(at);
        limit->setVisible(true);
    };
    const bool isFirstOfTwo = device->modeTrack == TrackRange && !upper->isVisible();
    if (isFirstOfTwo || device->modeTrack == TrackUpper) {
        place(upper, point);
    } else if (device->modeTrack == TrackRange && point.y() > upper->yValue()) {
        place(lower, upper->value());
        place(upper, point);
    } else if (device->modeTrack != TrackOff) {
        place(lower, point);
    }
    if (!isFirstOfTwo)
        m_pickers->limits()->setEnabled(false);
    m_frameClock.request();
}

bool QwtNOX::violatesLimit(int qwtIndex, uchar ch) const
{
    const _dev *device = findDevice(qwtIndex);
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel && violatesLimit(*device, *channel);
}

/** Whether the newest value of a channel, or its newest difference, lies beyond a limit. */
bool QwtNOX::violatesLimit(const _dev &device, const _ch &channel) const
{
    const Series &values = channel.hasDifference() ? channel.diffMeas : channel.meas;
    // whoever heard of the point may have cleared the series
    if (device.modeTrack == TrackOff || values.isEmpty())
        return false;
    const auto isChecked = [&device](const QwtPlotMarker *limit, TmcTrackingMode alone) {
        const bool byMode = device.modeTrack == TrackRange || device.modeTrack == alone;
        return byMode && limit && limit->isVisible();
    };
    const double value = values.last();
    return (isChecked(device.upperMarker, TrackUpper) && value > device.upperMarker->yValue()) ||
           (isChecked(device.lowerMarker, TrackLower) && value < device.lowerMarker->yValue());
}
