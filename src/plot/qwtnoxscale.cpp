#include "plot/plotmeasurement.h"
#include "plot/plotpickers.h"
#include "plot/qwtnox.h"

// Choosing scales and modes.

void QwtNOX::setDivX(uchar divisions)
{
    m_divX = qMax<uchar>(1, divisions);
}

void QwtNOX::setDivY(uchar divisions)
{
    m_divY = qMax<uchar>(2, divisions);
}

void QwtNOX::calcPrecision(uchar scaleY, int qwtIndex, uchar ch)
{
    _ch *channel = findChannel(qwtIndex, ch);
    if (channel && scaleY < scalesY().size())
        channel->precision = static_cast<uchar>(decimalsForRow(scaleY));
}

void QwtNOX::setChMode(TmcMode mode, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || mode < ModeAuto || mode > ModeLimits)
        return;
    ch = resolveChannel(qwtIndex, ch);
    channel->mode = mode;
    if (mode == ModeAuto || mode == ModeFollow)
        calcPrecision(channel->scaleY, qwtIndex, ch);
    if (isMainChannel(qwtIndex, ch))
        showMode(*channel);
    emit onChange(qwtIndex);
    emit onChModeChange(qwtIndex, ch, mode);
    applyScale();
}

/** The mouse does what the mode of the main channel says. */
void QwtNOX::showMode(const _ch &channel)
{
    m_pickers->enableFor(channel.mode);
    if (channel.mode == ModeAuto || channel.mode == ModeFollow) {
        setCurrentScales(channel);
        m_measurement->reset();
    }
}

TmcMode QwtNOX::getChMode(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel ? channel->mode : ModeAuto;
}

void QwtNOX::setChModeX(TmcModeX mode, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || mode < ModeXSeconds || mode > ModeXAbsolute)
        return;
    if (channel->modeX != mode) {
        channel->modeX = mode;
        emit onChange(qwtIndex);
        emit onChModeXChange(qwtIndex, resolveChannel(qwtIndex, ch), mode);
    }
    installScaleXDraw();
    applyScale();
    rewriteMeasurement();
}

TmcModeX QwtNOX::getChModeX(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel ? channel->modeX : ModeXSeconds;
}

void QwtNOX::setChScaleX(uchar scale, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || scale >= scalesX().size())
        return;
    ch = resolveChannel(qwtIndex, ch);
    if (hasFreeView(qwtIndex, ch) && scale != m_scaleX) {
        m_scaleX = scale;
        const double step = scalesX()[scale].step;
        setAxisView(xBottom, notBelowZero(viewAround(middleOfView().x(), step, m_divX)));
        updLabelScale();
        m_frameClock.request();
    } else {
        channel->scaleX = scale;
        setChMode(channel->scaleX || channel->scaleY ? ModeFollow : ModeAuto, qwtIndex, ch);
    }
    emit onChange(qwtIndex);
    emit onChScaleXChange(qwtIndex, ch, scale);
}

uchar QwtNOX::getChScaleX(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel ? channel->scaleX : 0;
}

void QwtNOX::setChScaleY(uchar scale, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || scale >= scalesY().size())
        return;
    ch = resolveChannel(qwtIndex, ch);
    if (hasFreeView(qwtIndex, ch) && scale != m_scaleY) {
        m_scaleY = scale;
        calcPrecision(scale, qwtIndex, ch);
        setAxisView(yLeft, viewAround(middleOfView().y(), scalesY()[scale].step, m_divY));
        refreshScaleYLabels();
        updLabelScale();
        m_frameClock.request();
    } else {
        channel->scaleY = scale;
        setChMode(channel->scaleX || channel->scaleY ? ModeFollow : ModeAuto, qwtIndex, ch);
    }
    emit onChange(qwtIndex);
    emit onChScaleYChange(qwtIndex, ch, scale);
}

uchar QwtNOX::getChScaleY(int qwtIndex, uchar ch) const
{
    const _ch *channel = findChannel(qwtIndex, ch);
    return channel ? channel->scaleY : 0;
}

/** In the zoom, panning and limits modes a new scale changes the view, not the channel. */
bool QwtNOX::hasFreeView(int qwtIndex, uchar ch) const
{
    const TmcMode mode = getChMode(qwtIndex, ch);
    const bool freeView = mode == ModeZoom || mode == ModeScroll || mode == ModeLimits;
    return freeView && isMainChannel(qwtIndex, ch);
}

void QwtNOX::setCurrentScales(const _ch &channel)
{
    m_scaleX = channel.scaleX;
    m_scaleY = channel.scaleY;
}

void QwtNOX::changeMode(int mode)
{
    setChMode(static_cast<TmcMode>(mode));
}

void QwtNOX::changeModeX(int mode)
{
    setChModeX(static_cast<TmcModeX>(mode));
}

void QwtNOX::changeScaleX(int indexX)
{
    if (indexX >= 0 && indexX < scalesX().size())
        setChScaleX(static_cast<uchar>(indexX));
}

void QwtNOX::changeScaleY(int indexY)
{
    if (indexY >= 0 && indexY < scalesY().size())
        setChScaleY(static_cast<uchar>(indexY));
}

QString QwtNOX::getScaleXLabel() const
{
    return findDevice(m_mainIndex) ? scalesX()[m_scaleX].label : QStringLiteral("-");
}

QString QwtNOX::getScaleYLabel() const
{
    return findDevice(m_mainIndex) ? scalesY()[m_scaleY].label : QStringLiteral("-");
}

QString QwtNOX::getChModeLabel() const
{
    static const QStringList labels = {tr("АВТО"),      tr("СЛЕЖЕНИЕ"), tr("УВЕЛИЧЕНИЕ"),
                                       tr("ИЗМЕРЕНИЕ"), tr("СДВИГ"),    tr("ПРЕДЕЛЫ")};
    return findDevice(m_mainIndex) ? labels.value(getChMode()) : QStringLiteral("-");
}

QString QwtNOX::getChModeXLabel() const
{
    static const QStringList labels = {tr("СЕК"), tr("ОТН"), tr("АБС")};
    return findDevice(m_mainIndex) ? labels.value(getChModeX()) : QStringLiteral("-");
}
