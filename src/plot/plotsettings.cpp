#include "plot/plotsettings.h"

#include "plot/envelopecurve.h"
#include "plot/frameclock.h"
#include "plot/plotaxes.h"
#include "plot/plotinteraction.h"
#include "plot/plotitems.h"

PlotSettings::PlotSettings(PlotRecords &records, PlotAxes &axes, PlotInteraction &interaction,
                           FrameClock &frameClock)
    : m_records(records)
    , m_axes(axes)
    , m_interaction(interaction)
    , m_frameClock(frameClock)
{
}

void PlotSettings::setMainDevice(int qwtIndex)
{
    qwtIndex = m_records.resolve(qwtIndex);
    if (qwtIndex >= 0 && !m_records.devices().contains(qwtIndex))
        return;
    m_records.setMainIndex(qwtIndex);
    m_interaction.reset();
    for (auto device = m_records.devices().begin(); device != m_records.devices().end(); ++device) {
        const bool isMain = device.key() == qwtIndex;
        device->showLimits(isMain);
        setDeviceShown(isMain, device.key());
    }
    if (const PlotDevice *device = m_records.findDevice(qwtIndex)) {
        const uchar mainCh = device->mainCh;
        m_axes.reset();
        setMode(ModeFollow, qwtIndex, mainChannel);
        m_axes.labelTimes();
        rescale();
        emit mainChannelChanged(qwtIndex, mainCh);
    }
    emit mainDeviceChanged(qwtIndex);
    emit changed(qwtIndex);
    rescale();
}

void PlotSettings::setMainChannel(uchar ch, int qwtIndex)
{
    const ChannelNumber number = m_records.resolve(qwtIndex, ch);
    const PlotChannel *channel = m_records.findChannel(number.qwtIndex, number.ch);
    if (!channel)
        return;
    PlotDevice *device = m_records.findDevice(number.qwtIndex);
    const bool isMainDevice = number.qwtIndex == m_records.mainIndex();
    showOnly(*device, number.ch, isMainDevice);
    if (device->mainCh != number.ch) {
        device->mainCh = number.ch;
        if (isMainDevice)
            m_axes.reset();
        const bool hasScale = channel->scaleX != 0 || channel->scaleY != 0;
        setMode(hasScale ? ModeFollow : ModeAuto, number.qwtIndex, number.ch);
        emit mainChannelChanged(number.qwtIndex, number.ch);
    }
    m_axes.labelTimes();
    rescale();
    emit changed(number.qwtIndex);
}

void PlotSettings::setDeviceShown(bool show, int qwtIndex)
{
    if (PlotDevice *device = m_records.findDevice(qwtIndex)) {
        device->devShow = show;
        updateVisibility(*device);
        m_frameClock.request();
    }
}

void PlotSettings::setChannelShown(bool show, int qwtIndex, uchar ch)
{
    const ChannelNumber number = m_records.resolve(qwtIndex, ch);
    PlotChannel *channel = m_records.findChannel(number.qwtIndex, number.ch);
    if (!channel)
        return;
    const PlotDevice &device = m_records.device(number.qwtIndex);
    if (!device.devShow)
        setDeviceShown(true, number.qwtIndex);
    channel->show = show;
    updateVisibility(device, *channel);
    m_frameClock.request();
    emit channelShownChanged(number.qwtIndex, number.ch, show);
}

/** Shows or hides the curves of one kind. */
void PlotSettings::setCurvesShown(bool PlotDevice::*kind,
                                  void (PlotSettings::*kindChanged)(int, bool), bool show,
                                  int qwtIndex)
{
    qwtIndex = m_records.resolve(qwtIndex);
    PlotDevice *device = m_records.findDevice(qwtIndex);
    if (!device || device->*kind == show)
        return;
    device->*kind = show;
    updateVisibility(*device);
    emit changed(qwtIndex);
    emit(this->*kindChanged)(qwtIndex, show);
    rescale();
}

void PlotSettings::setValuesShown(bool show, int qwtIndex)
{
    setCurvesShown(&PlotDevice::measShow, &PlotSettings::valuesShownChanged, show, qwtIndex);
}

void PlotSettings::setAveragesShown(bool show, int qwtIndex)
{
    setCurvesShown(&PlotDevice::averShow, &PlotSettings::averagesShownChanged, show, qwtIndex);
}

void PlotSettings::setColor(const QColor &color, int qwtIndex, uchar ch)
{
    const ChannelNumber number = m_records.resolve(qwtIndex, ch);
    const PlotChannel *channel = m_records.findChannel(number.qwtIndex, number.ch);
    if (!channel || !color.isValid())
        return;
    channel->measCurve->setColor(color);
    channel->averCurve->setColor(color);
    m_frameClock.request();
    emit changed(number.qwtIndex);
    emit colorChanged(number.qwtIndex, number.ch, color);
}

void PlotSettings::setTrackingMode(TmcTrackingMode mode, int qwtIndex)
{
    qwtIndex = m_records.resolve(qwtIndex);
    PlotDevice *device = m_records.findDevice(qwtIndex);
    if (!device || mode < TrackOff || mode > TrackLower)
        return;
    device->watch(mode);
    if (mode != TrackOff)
        setMode(ModeLimits, qwtIndex, mainChannel);
    else if (qwtIndex == m_records.mainIndex())
        m_interaction.stopPlacingLimits();
    m_frameClock.request();
    emit changed(qwtIndex);
    emit trackingModeChanged(qwtIndex, m_records.resolve(qwtIndex, mainChannel).ch, mode);
}

void PlotSettings::setPrecisionFor(uchar scaleY, int qwtIndex, uchar ch)
{
    PlotChannel *channel = m_records.findChannel(qwtIndex, ch);
    if (channel && scaleY < scalesY().size())
        channel->precision = static_cast<uchar>(decimalsForStep(scaleY));
}

void PlotSettings::setMode(TmcMode mode, int qwtIndex, uchar ch)
{
    const ChannelNumber number = m_records.resolve(qwtIndex, ch);
    PlotChannel *channel = m_records.findChannel(number.qwtIndex, number.ch);
    if (!channel || mode < ModeAuto || mode > ModeLimits)
        return;
    const bool isByItself = mode == ModeAuto || mode == ModeFollow;
    channel->mode = mode;
    if (isByItself)
        setPrecisionFor(channel->scaleY, number.qwtIndex, number.ch);
    if (m_records.isMain(number)) {
        m_interaction.applyMode(mode);
        if (isByItself)
            m_axes.useStepsOf(*channel);
    }
    emit changed(number.qwtIndex);
    emit modeChanged(number.qwtIndex, number.ch, mode);
    rescale();
}

void PlotSettings::setModeX(TmcModeX mode, int qwtIndex, uchar ch)
{
    const ChannelNumber number = m_records.resolve(qwtIndex, ch);
    PlotChannel *channel = m_records.findChannel(number.qwtIndex, number.ch);
    if (!channel || mode < ModeXSeconds || mode > ModeXAbsolute)
        return;
    if (channel->modeX != mode) {
        channel->modeX = mode;
        emit changed(number.qwtIndex);
        emit modeXChanged(number.qwtIndex, number.ch, mode);
    }
    m_axes.labelTimes();
    rescale();
    m_interaction.rewriteMeasurement();
}

void PlotSettings::setScaleX(uchar scale, int qwtIndex, uchar ch)
{
    const ChannelNumber number = m_records.resolve(qwtIndex, ch);
    if (chooseScale(QwtPlot::xBottom, scale, number))
        emit scaleXChanged(number.qwtIndex, number.ch, scale);
}

void PlotSettings::setScaleY(uchar scale, int qwtIndex, uchar ch)
{
    const ChannelNumber number = m_records.resolve(qwtIndex, ch);
    if (chooseScale(QwtPlot::yLeft, scale, number))
        emit scaleYChanged(number.qwtIndex, number.ch, scale);
}

/** False when there is no such channel or scale. */
bool PlotSettings::chooseScale(int axis, uchar scale, const ChannelNumber &number)
{
    const bool isX = axis == QwtPlot::xBottom;
    PlotChannel *channel = m_records.findChannel(number.qwtIndex, number.ch);
    if (!channel || scale >= (isX ? scalesX().size() : scalesY().size()))
        return false;
    if (m_axes.hasFreeView(number) && scale != m_axes.step(axis)) {
        if (!isX) // first: it decides on the labels
            setPrecisionFor(scale, number.qwtIndex, number.ch);
        m_axes.showAround(axis, m_interaction.middleOfView(), scale);
        m_axes.refreshLabels();
        m_frameClock.request();
    } else {
        (isX ? channel->scaleX : channel->scaleY) = scale;
        const bool hasScale = channel->scaleX != 0 || channel->scaleY != 0;
        setMode(hasScale ? ModeFollow : ModeAuto, number.qwtIndex, number.ch);
    }
    emit changed(number.qwtIndex);
    return true;
}

void PlotSettings::rescale()
{
    m_axes.followPoints();
    m_frameClock.request();
}
