#include "plot/envelopecurve.h"
#include "plot/qwtnox.h"
#include "plot/qwtnoxscaledraw.h"
#include "plot/zoomchoice.h"

#include <qwt_plot_textlabel.h>
#include <qwt_scale_div.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

// The axes: what they show, how they are labelled, and when that is painted.

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

/** Range, from point `first` on, of the curve that decides on the Y scale: of the visible ones,
 * values first. */
ValueRange decidingRange(const PlotChannel &channel, int first)
{
    const bool byAverage = channel.averCurve->isVisible() && !channel.measCurve->isVisible();
    const int end = shownTimes(channel).size();
    if (channel.hasDifference())
        return byAverage ? channel.diffAver.range(first, end) : channel.diffMeas.range(first, end);
    return byAverage ? channel.aver.range(first, end) : channel.meas.range(first, end);
}

/** Range of the newest values, back to the first time left of the view. */
ValueRange valuesInView(const PlotChannel &channel, double leftTime)
{
    const int before = leftTime > 0 ? shownTimes(channel).lastBelow(leftTime) : -1;
    return decidingRange(channel, before + 1);
}

QString captionText(const CaptionParts &parts, const QString &labelX, const QString &labelY)
{
    return QwtNOX::tr("Кн. № %1 [%2], dX: %3, dY: %4")
        .arg(QString::number(parts.ch + 1), parts.unit, labelX, labelY);
}

/** The room to go on with: what was kept, unless labels need more or far less. */
double steadyRoom(double kept, double needed)
{
    return needed > kept || needed < 0.7 * kept ? needed : kept;
}

/** Keeps the room beside the axis while labels gain and lose a digit; true when it had to change.
 */
bool steadyExtent(QwtScaleDraw *draw, const QFont &font)
{
    const double kept = draw->minimumExtent();
    draw->setMinimumExtent(0);
    draw->setMinimumExtent(steadyRoom(kept, draw->extent(font)));
    return draw->minimumExtent() != kept;
}

/**
 * Keeps room for half a label beyond the ends of the axis, whether a tick is there or not: ticks
 * that pass the edge of the canvas do not move it. True when the room had to change.
 */
bool steadyBorders(QwtScaleWidget *axis)
{
    const QwtScaleDraw *draw = axis->scaleDraw();
    const int label = draw->orientation() == Qt::Horizontal ? draw->maxLabelWidth(axis->font())
                                                            : draw->maxLabelHeight(axis->font());
    int kept = 0;
    int keptAtEnd = 0;
    axis->getMinBorderDist(kept, keptAtEnd);
    const int room = static_cast<int>(steadyRoom(kept, label / 2 + 1));
    axis->setMinBorderDist(room, room);
    return room != kept;
}

} // namespace

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
    m_frameClock.request();
}

void QwtNOX::scaleX(const _ch &channel)
{
    const Series &times = shownTimes(channel);
    const bool isAutomatic = channel.mode == ModeAuto || m_scaleX == 0;
    if (isAutomatic)
        m_scaleX = static_cast<uchar>(rowForTimes(times[0], times.last(), m_divX));
    const double step = scalesX()[m_scaleX].step;
    const AxisView wanted =
        isAutomatic ? viewFrom(times[0], step, m_divX) : viewUpTo(times.last(), step, m_divX);
    setAxisView(xBottom, followTimes(axisView(xBottom), wanted));
}

void QwtNOX::scaleY(_ch &channel)
{
    const bool isAutomatic = channel.mode == ModeAuto || m_scaleY == 0;
    const ValueRange values = isAutomatic ? valuesInView(channel, axisView(xBottom).lower)
                                          : decidingRange(channel, shownTimes(channel).size() - 1);
    if (isAutomatic) // with nothing in view the axis stays
        m_scaleY = static_cast<uchar>(values.isEmpty() ? rowOfStepY(axisStepSize(yLeft))
                                                       : rowForValues(values, m_divY));
    channel.precision = static_cast<uchar>(decimalsForRow(m_scaleY));
    const double step = scalesY()[m_scaleY].step;
    setAxisView(yLeft, followValues(axisView(yLeft), values, step, m_divY));
}

/** Without points of the main channel the axes are as in the beginning: those of another one would
 * be labelled with decimals that do not suit them. */
void QwtNOX::restAxes()
{
    const _ch *channel = findChannel(m_mainIndex, 255);
    if (channel && !shownTimes(*channel).isEmpty())
        return;
    setAxisView(xBottom, viewFrom(0, 1, m_divX));
    setAxisView(yLeft, viewFrom(0, 1, m_divY));
}

AxisView QwtNOX::axisView(int axis) const
{
    const QwtInterval interval = axisInterval(axis);
    return {interval.minValue(), interval.maxValue(), axisStepSize(axis)};
}

void QwtNOX::setAxisView(int axis, const AxisView &view)
{
    if (!view.isValid() || view == axisView(axis))
        return;
    setAxisScale(axis, view.lower, view.upper, view.step);
    updateAxes();
    steadyLabels(axis);
}

/** Where labels need another room the canvas gets its new place at once: what is under the mouse is
 *  asked for before the next event. */
void QwtNOX::steadyLabels(int axis)
{
    const bool hasOtherExtent = steadyExtent(axisScaleDraw(axis), axisFont(axis));
    const bool hasOtherBorders = steadyBorders(axisWidget(axis));
    if (hasOtherExtent || hasOtherBorders) {
        updateAxes();
        updateLayout();
    }
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
    steadyLabels(xBottom);
}

/** Labels are kept per value: other decimals need new ones though the axis stays. */
void QwtNOX::refreshScaleYLabels()
{
    if (m_labelPrecision == getPrecision())
        return;
    m_labelPrecision = getPrecision();
    QwtScaleDraw *draw = axisScaleDraw(yLeft);
    draw->setScaleDiv(QwtScaleDiv(draw->scaleDiv())); // drops the labels
    axisWidget(yLeft)->update();
}

void QwtNOX::paintFrame()
{
    if (m_labelDay != now().date())
        installScaleXDraw(); // what was today now needs its date
    replot();
}

void QwtNOX::updLabelScale()
{
    const _ch *channel = findChannel(m_mainIndex, 255);
    const CaptionParts parts =
        channel ? CaptionParts{resolveChannel(m_mainIndex, 255), channel->dim, m_scaleX, m_scaleY}
                : CaptionParts{};
    if (parts == m_captionParts)
        return;
    m_captionParts = parts;
    const QString text =
        channel ? captionText(parts, getScaleXLabel(), getScaleYLabel()) : QString();
    QwtText caption(text, QwtText::PlainText); // a unit is the user's own text
    QFont font = caption.font();
    font.setPointSize(captionPoints);
    caption.setFont(font);
    caption.setRenderFlags(Qt::AlignRight | Qt::AlignTop | Qt::TextWordWrap);
    caption.setBackgroundBrush(QColor(255, 255, 255, 200)); // legible above curves
    m_caption->setText(caption);
}
