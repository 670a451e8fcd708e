#include "plot/plotaxes.h"

#include "plot/plotitems.h"
#include "plot/qwtnox.h"
#include "plot/qwtnoxscaledraw.h"

#include <QFontMetricsF>
#include <qwt_plot_textlabel.h>
#include <qwt_scale_div.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

#include <cmath>

namespace
{

constexpr int axisFontPoints = 11;
constexpr int captionPoints = 15;

/**
 * A text on the canvas that continues on the next line where the canvas is too narrow for it. Its
 * text has the flag Qt::TextWordWrap, and a font of its own.
 */
class WrappedLabel : public QwtPlotTextLabel
{
public:
    QRectF textRect(const QRectF &canvas, const QSizeF &textSize) const override
    {
        if (textSize.width() <= canvas.width())
            return QwtPlotTextLabel::textRect(canvas, textSize);
        const QFontMetricsF metrics(text().font());
        const QRectF lines = metrics.boundingRect(canvas, text().renderFlags(), text().text());
        // As wide as the longest line, on whole pixels: what lies beside stays in sight.
        return QwtPlotTextLabel::textRect(canvas,
                                          {std::ceil(lines.width()), std::ceil(lines.height())});
    }
};

QwtPlotTextLabel *addCaption(QwtPlot *plot)
{
    auto *caption = new WrappedLabel;
    caption->setZ(100); // above curves and lines
    caption->attach(plot);
    return caption;
}

QwtText captionText(const QString &text)
{
    QwtText caption(text, QwtText::PlainText); // a unit is the user's own text
    QFont font = caption.font();
    font.setPointSize(captionPoints);
    caption.setFont(font);
    caption.setRenderFlags(Qt::AlignRight | Qt::AlignTop | Qt::TextWordWrap);
    caption.setBackgroundBrush(QColor(255, 255, 255, 200)); // legible above curves
    return caption;
}

/** Modes in which the axes go with the data. */
bool followsData(TmcMode mode)
{
    return mode == ModeAuto || mode == ModeFollow || mode == ModeLimits;
}

/** Range of the newest values, back to the first time left of the view. */
ValueRange valuesInView(const PlotChannel &channel, double leftTime)
{
    const int before = leftTime > 0 ? channel.times().lastBelow(leftTime) : -1;
    return decidingRange(channel, before + 1);
}

/** The space to go on with: what was kept, unless labels need more or far less. */
double spaceKept(double kept, double needed)
{
    return needed > kept || needed < 0.7 * kept ? needed : kept;
}

/** Keeps the space beside the axis while labels gain and lose a digit; true when it had to change.
 */
bool reserveExtent(QwtScaleDraw *draw, const QFont &font)
{
    const double kept = draw->minimumExtent();
    draw->setMinimumExtent(0);
    draw->setMinimumExtent(spaceKept(kept, draw->extent(font)));
    return draw->minimumExtent() != kept;
}

/**
 * Keeps space for half a label beyond the ends of the axis, whether a tick is there or not: ticks
 * that pass the edge of the canvas do not move it. True when the space had to change.
 */
bool reserveBorders(QwtScaleWidget *axis)
{
    const QwtScaleDraw *draw = axis->scaleDraw();
    const int label = draw->orientation() == Qt::Horizontal ? draw->maxLabelWidth(axis->font())
                                                            : draw->maxLabelHeight(axis->font());
    int kept = 0;
    int keptAtEnd = 0;
    axis->getMinBorderDist(kept, keptAtEnd);
    const int space = static_cast<int>(spaceKept(kept, label / 2 + 1));
    axis->setMinBorderDist(space, space);
    return space != kept;
}

} // namespace

PlotAxes::PlotAxes(QwtNOX *plot, PlotRecords &records)
    : m_plot(plot)
    , m_records(records)
    , m_caption(addCaption(plot))
{
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        QFont labels = plot->axisFont(axis);
        labels.setPointSize(axisFontPoints);
        plot->setAxisFont(axis, labels);
        plot->setAxisAutoScale(axis, false);
    }
    labelTimes();
    plot->setAxisScaleDraw(QwtPlot::yLeft, new QwtNOXScaleYDraw(plot));
    reset();
}

void PlotAxes::setDivisions(int axis, int divisions)
{
    axisState(axis).divisions = std::max(axis == QwtPlot::xBottom ? 1 : 2, divisions);
}

ScaleSteps PlotAxes::stepsInEffect() const
{
    return {m_x.step > 0 ? m_x.step : stepOfSizeX(view(QwtPlot::xBottom).step),
            m_y.step > 0 ? m_y.step : stepOfSizeY(view(QwtPlot::yLeft).step)};
}

QString PlotAxes::stepLabel(int axis) const
{
    return axis == QwtPlot::xBottom ? scalesX()[m_x.step].label : scalesY()[m_y.step].label;
}

AxisView PlotAxes::view(int axis) const
{
    const QwtInterval interval = m_plot->axisInterval(axis);
    return {interval.minValue(), interval.maxValue(), m_plot->axisStepSize(axis)};
}

void PlotAxes::useStepsOf(const PlotChannel &channel)
{
    m_x.step = channel.scaleX;
    m_y.step = channel.scaleY;
}

void PlotAxes::followPoints()
{
    PlotChannel *channel = m_records.findMainChannel();
    if (channel && followsData(channel->mode) && !channel->times().isEmpty()) {
        useStepsOf(*channel);
        followTimes(*channel);
        followValues(*channel);
    }
    refreshLabels();
}

bool PlotAxes::hasFreeView(const ChannelNumber &number) const
{
    const TmcMode mode = m_records.channel(number.qwtIndex, number.ch).mode;
    const bool isFree = mode == ModeZoom || mode == ModeScroll || mode == ModeLimits;
    return isFree && m_records.isMain(number);
}

void PlotAxes::followTimes(const PlotChannel &channel)
{
    const Series &times = channel.times();
    const bool isAutomatic = channel.mode == ModeAuto || m_x.step == 0;
    if (isAutomatic)
        m_x.step = stepForTimes(times[0], times.last(), m_x.divisions);
    const double step = scalesX()[m_x.step].step;
    setView(QwtPlot::xBottom,
            ::followTimes(view(QwtPlot::xBottom),
                          isAutomatic ? viewFrom(times[0], step, m_x.divisions)
                                      : viewUpTo(times.last(), step, m_x.divisions)));
}

void PlotAxes::followValues(PlotChannel &channel)
{
    const bool isAutomatic = channel.mode == ModeAuto || m_y.step == 0;
    const ValueRange values = isAutomatic ? valuesInView(channel, view(QwtPlot::xBottom).lower)
                                          : decidingRange(channel, channel.times().size() - 1);
    if (isAutomatic) // with nothing in view the axis stays
        m_y.step = values.isEmpty() ? stepOfSizeY(view(QwtPlot::yLeft).step)
                                    : stepForValues(values, m_y.divisions);
    channel.precision = static_cast<uchar>(decimalsForStep(m_y.step));
    setView(QwtPlot::yLeft,
            ::followValues(view(QwtPlot::yLeft), values, scalesY()[m_y.step].step, m_y.divisions));
}

void PlotAxes::showAround(int axis, const QPointF &centre, int step)
{
    axisState(axis).step = step;
    if (axis == QwtPlot::xBottom)
        setView(axis, notBelowZero(::viewAround(centre.x(), scalesX()[step].step, m_x.divisions)));
    else
        setView(axis, ::viewAround(centre.y(), scalesY()[step].step, m_y.divisions));
}

void PlotAxes::show(const ZoomedView &view)
{
    m_x.step = view.steps.x;
    m_y.step = view.steps.y;
    setView(QwtPlot::xBottom, view.x);
    setView(QwtPlot::yLeft, view.y);
}

ZoomedView PlotAxes::viewOf(const QRectF &rectangle) const
{
    return viewOfRectangle(rectangle, m_x.divisions, m_y.divisions);
}

ZoomedView PlotAxes::viewAround(const QPointF &centre, const ScaleSteps &steps) const
{
    return ::viewAround(centre, steps, m_x.divisions, m_y.divisions);
}

void PlotAxes::pan(const QPointF &way)
{
    const AxisView times = view(QwtPlot::xBottom);
    setView(QwtPlot::xBottom, times.moved(std::max(way.x(), -times.lower)));
    setView(QwtPlot::yLeft, view(QwtPlot::yLeft).moved(way.y()));
}

/** The view of another channel would be labelled with decimals that do not suit it. */
void PlotAxes::reset()
{
    const PlotChannel *channel = m_records.findMainChannel();
    if (channel && !channel->times().isEmpty())
        return;
    setView(QwtPlot::xBottom, viewFrom(0, 1, m_x.divisions));
    setView(QwtPlot::yLeft, viewFrom(0, 1, m_y.divisions));
}

void PlotAxes::setView(int axis, const AxisView &wanted)
{
    if (!wanted.isValid() || wanted == view(axis))
        return;
    m_plot->setAxisScale(axis, wanted.lower, wanted.upper, wanted.step);
    m_plot->updateAxes();
    reserveLabelSpace(axis);
    m_plot->frameClock().request();
}

/** Where labels need other space the canvas gets its new place at once: what is under the mouse is
 *  asked for before the next event. */
void PlotAxes::reserveLabelSpace(int axis)
{
    const bool hasOtherExtent = reserveExtent(m_plot->axisScaleDraw(axis), m_plot->axisFont(axis));
    const bool hasOtherBorders = reserveBorders(m_plot->axisWidget(axis));
    if (hasOtherExtent || hasOtherBorders) {
        m_plot->updateAxes();
        m_plot->updateLayout();
    }
}

void PlotAxes::labelTimes()
{
    m_labelledDay = m_plot->now().date();
    m_plot->setAxisScaleDraw(QwtPlot::xBottom, newScaleXDraw(m_plot->getChModeX(), m_plot));
    reserveLabelSpace(QwtPlot::xBottom);
}

void PlotAxes::labelNewDay()
{
    if (m_labelledDay != m_plot->now().date())
        labelTimes();
}

void PlotAxes::refreshLabels()
{
    labelValues(m_plot->getPrecision());
    const PlotChannel *channel = m_records.findMainChannel();
    const int ch = m_records.resolve(mainInstrument, mainChannel).ch;
    writeCaption(channel ? CaptionParts{ch, channel->dim, m_x.step, m_y.step} : CaptionParts{});
}

/** Labels are kept per value: other decimals need new ones though the axis stays. */
void PlotAxes::labelValues(int decimals)
{
    if (m_labelledDecimals == decimals)
        return;
    m_labelledDecimals = decimals;
    QwtScaleDraw *draw = m_plot->axisScaleDraw(QwtPlot::yLeft);
    draw->setScaleDiv(QwtScaleDiv(draw->scaleDiv())); // drops the labels
    m_plot->axisWidget(QwtPlot::yLeft)->update();
}

void PlotAxes::writeCaption(const CaptionParts &parts)
{
    if (parts == m_captionParts)
        return;
    m_captionParts = parts;
    const QString text = QwtNOX::tr("Кн. № %1 [%2], dX: %3, dY: %4")
                             .arg(QString::number(parts.ch + 1), parts.unit,
                                  stepLabel(QwtPlot::xBottom), stepLabel(QwtPlot::yLeft));
    m_caption->setText(captionText(parts.ch < 0 ? QString() : text));
    m_plot->frameClock().request();
}
