#include "plot/qwtnox.h"

#include <qwt_plot_marker.h>

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
    for (QwtPlotMarker *limit : {device->upperMarker, device->lowerMarker})
        if (limit)
            limit->setVisible(false);
    device->modeTrack = mode;
    if (mode != TrackOff)
        setChMode(ModeLimits, qwtIndex);
    m_frameClock.request();
    emit onChange(qwtIndex);
    emit onModeTrackChange(qwtIndex, resolveChannel(qwtIndex, 255), mode);
}

bool QwtNOX::violatesLimit(int qwtIndex, uchar ch) const
{
    const _dev *device = findDevice(qwtIndex);
    if (!device)
        return false;
    const double value = getChMeas(qwtIndex, ch);
    const auto isChecked = [device](const QwtPlotMarker *limit, TmcTrackingMode alone) {
        const bool byMode = device->modeTrack == TrackRange || device->modeTrack == alone;
        return byMode && limit && limit->isVisible();
    };
    return (isChecked(device->upperMarker, TrackUpper) && value > device->upperMarker->yValue()) ||
           (isChecked(device->lowerMarker, TrackLower) && value < device->lowerMarker->yValue());
}
