#include "plot/qwtnox.h"

#include <cmath>

// The road of a point: from the instrument into the series.

namespace
{

constexpr double lowestValue = -1300; // what an instrument sends for a broken sensor

bool isAcceptable(double val, double time)
{
    return std::isfinite(val) && val > lowestValue && std::isfinite(time) && time >= 0;
}

} // namespace

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
    if (!isAcceptable(val, time)) {
        channel.error = true; // first, so that whoever hears of it reads "--"
        emit onErrorAddPoint(qwtIndex, ch);
        return false;
    }
    channel.appendPoint(val, time, dim);
    if (!extendDifference(channel)) {
        emit onErrorAddPoint(qwtIndex, ch);
        return false;
    }
    showSeries(channel);
    channel.error = false;
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
