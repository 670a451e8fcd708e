#include "plot/envelopecurve.h"
#include "plot/qwtnox.h"
#include "plot/qwtnoxscaledraw.h"

#include <qwt_plot_textlabel.h>
#include <qwt_scale_div.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

// Scales and modes: what the axes show and how they are labelled.

namespace
{

constexpr int captionPoints = 15;

/** Modes in which the axes go with the data. */
bool followsData(TmcMode mode)
{
    return mode == ModeAuto || mode == ModeFollow || mode == ModeLimits;
}

const Series &shownTimes(const PlotChannel &channel)
{
    return channel.hasDifference() ? channel.diffTime : channel.time;
}

/** The series of the curve that decides on the Y scale: of the visible ones, values first. */
const Series &decidingValues(const PlotChannel &channel)
{
    const bool byAverage = channel.averCurve->isVisible() && !channel.measCurve->isVisible();
    if (channel.hasDifference()) {
        return byAverage ? channel.diffAver : channel.diffMeas;
    }
    return byAverage ? channel.aver : channel.meas;
}

/** Range of the newest values, back to the first time left of the view. */
ValueRange valuesInView(const PlotChannel &channel, double leftTime)
{
    const int before = leftTime > 0 ? shownTimes(channel).lastBelow(leftTime) : -1;
    const Series &values = decidingValues(channel);
    return values.range(before + 1, values.size());
}

QString captionText(const PlotChannel &channel, int ch, const QString &labelX,
                    const QString &labelY)
{
    return QwtNOX::tr("Кн. № %1 [%2], dX: %3, dY: %4")
        .arg(QString::number(ch + 1), channel.dim, labelX, labelY);
}

} // namespace

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
    if (channel && scaleY < scalesY().size()) {
        channel->precision = static_cast<uchar>(decimalsForRow(scaleY));
    }
}

void QwtNOX::setChMode(TmcMode mode, int qwtIndex, uchar ch)
{
    qwtIndex = resolveIndex(qwtIndex);
    _ch *channel = findChannel(qwtIndex, ch);
    if (!channel || mode < ModeAuto || mode > ModeLimits) {
        return;
    }
    ch = resolveChannel(qwtIndex, ch);
    if (mode == ModeAuto || mode == ModeFollow) {
        calcPrecision(channel->scaleY, qwtIndex, ch);
        if (isMainChannel(qwtIndex, ch)) {
            setCurrentScales(*channel);
        }
    }
    channel->mode = mode;
    emit onChange(qwtIndex);
    emit onChModeChange(qwtIndex, ch, mode);
    applyScale();
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
    if (!channel || mode < ModeXSeconds || mode > ModeXAbsolute) {
        return;
    }
    if (channel->modeX != mode) {
        channel->modeX = mode;
        emit onChange(qwtIndex);
        emit onChModeXChange(qwtIndex, resolveChannel(qwtIndex, ch), mode);
    }
    installScaleXDraw();
    applyScale();
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
    if (!channel || scale >= scalesX().size()) {
        return;
    }
    ch = resolveChannel(qwtIndex, ch);
    if (keepsChosenScales(qwtIndex, ch) && scale != m_scaleX) {
        m_scaleX = scale;
        const double step = scalesX()[scale].step;
        setAxisView(xBottom, notBelowZero(viewAround(axisView(xBottom).middle(), step, m_divX)));
        updLabelScale();
        scheduleReplot();
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
    if (!channel || scale >= scalesY().size()) {
        return;
    }
    ch = resolveChannel(qwtIndex, ch);
    if (keepsChosenScales(qwtIndex, ch) && scale != m_scaleY) {
        m_scaleY = scale;
        calcPrecision(scale, qwtIndex, ch);
        setAxisView(yLeft, viewAround(axisView(yLeft).middle(), scalesY()[scale].step, m_divY));
        refreshScaleYLabels();
        updLabelScale();
        scheduleReplot();
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
bool QwtNOX::keepsChosenScales(int qwtIndex, uchar ch) const
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
    if (indexX >= 0 && indexX < scalesX().size()) {
        setChScaleX(static_cast<uchar>(indexX));
    }
}

void QwtNOX::changeScaleY(int indexY)
{
    if (indexY >= 0 && indexY < scalesY().size()) {
        setChScaleY(static_cast<uchar>(indexY));
    }
}

void QwtNOX::applyScale()
{
    _ch *channel = findChannel(m_mainIndex, 255);
    if (channel && followsData(channel->mode) && !shownTimes(*channel).isEmpty()) {
        setCurrentScales(*channel);
        scaleX(*channel);
        scaleY(*channel);
    }
    refreshScaleYLabels();
    updLabelScale();
    scheduleReplot();
}

void QwtNOX::scaleX(const _ch &channel)
{
    const Series &times = shownTimes(channel);
    const bool isAutomatic = channel.mode == ModeAuto || m_scaleX == 0;
    if (isAutomatic) {
        m_scaleX = static_cast<uchar>(rowForTimes(times[0], times.last(), m_divX));
    }
    const double step = scalesX()[m_scaleX].step;
    const AxisView wanted =
        isAutomatic ? viewFrom(times[0], step, m_divX) : viewUpTo(times.last(), step, m_divX);
    setAxisView(xBottom, followTimes(axisView(xBottom), wanted));
}

void QwtNOX::scaleY(_ch &channel)
{
    ValueRange values;
    if (channel.mode == ModeAuto || m_scaleY == 0) {
        values = valuesInView(channel, axisView(xBottom).lower);
        m_scaleY = static_cast<uchar>(rowForValues(values, m_divY));
    } else {
        values.include(decidingValues(channel).last());
    }
    channel.precision = static_cast<uchar>(decimalsForRow(m_scaleY));
    const double step = scalesY()[m_scaleY].step;
    setAxisView(yLeft, followValues(axisView(yLeft), values, step, m_divY));
}

AxisView QwtNOX::axisView(int axis) const
{
    const QwtInterval interval = axisInterval(axis);
    return {interval.minValue(), interval.maxValue(), axisStepSize(axis)};
}

void QwtNOX::setAxisView(int axis, const AxisView &view)
{
    if (!view.isValid() || view == axisView(axis)) {
        return;
    }
    setAxisScale(axis, view.lower, view.upper, view.step);
    updateAxes();

    // The canvas keeps its width when labels get shorter again.
    QwtScaleDraw *draw = axisScaleDraw(axis);
    draw->setMinimumExtent(qMax(draw->minimumExtent(), draw->extent(axisFont(axis))));
}

void QwtNOX::installScaleXDraw()
{
    m_labelDay = now().date();
    switch (getChModeX()) {
    case ModeXSeconds:
        setAxisScaleDraw(xBottom, new QwtNOXScaleXDrawMode0);
        break;
    case ModeXRelative:
        setAxisScaleDraw(xBottom, new QwtNOXScaleXDrawMode1(this));
        break;
    case ModeXAbsolute:
        setAxisScaleDraw(xBottom, new QwtNOXScaleXDrawMode2(this));
        break;
    }
}

/** Labels are kept per value: other decimals need new ones though the axis stays. */
void QwtNOX::refreshScaleYLabels()
{
    if (m_labelPrecision == getPrecision()) {
        return;
    }
    m_labelPrecision = getPrecision();
    QwtScaleDraw *draw = axisScaleDraw(yLeft);
    draw->setScaleDiv(QwtScaleDiv(draw->scaleDiv())); // drops the labels
    axisWidget(yLeft)->update();
}

void QwtNOX::scheduleReplot()
{
    if (!m_replotTimer.isActive()) {
        m_replotTimer.start();
    }
}

void QwtNOX::paintFrame()
{
    if (m_labelDay != now().date()) {
        installScaleXDraw(); // what was today now needs its date
    }
    replot();
}

void QwtNOX::updLabelScale()
{
    const _ch *channel = findChannel(m_mainIndex, 255);
    const QString text = channel ? captionText(*channel, resolveChannel(m_mainIndex, 255),
                                               getScaleXLabel(), getScaleYLabel())
                                 : QString();
    if (text == m_caption->text().text()) {
        return;
    }
    QwtText caption(text);
    QFont font = caption.font();
    font.setPointSize(captionPoints);
    caption.setFont(font);
    caption.setRenderFlags(Qt::AlignRight | Qt::AlignTop);
    m_caption->setText(caption);
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
