#include "plot/plotinteraction.h"

#include "plot/plotaxes.h"
#include "plot/plotitems.h"
#include "plot/qwtlabelclick.h"
#include "plot/qwtnox.h"

#include <QMouseEvent>
#include <qwt_scale_widget.h>

#include <cmath>

namespace
{

bool isFinite(const QRectF &rect)
{
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height());
}

} // namespace

PlotInteraction::PlotInteraction(QwtNOX *plot, PlotRecords &records, PlotAxes &axes)
    : m_plot(plot)
    , m_records(records)
    , m_axes(axes)
    , m_measurement(plot)
    , m_crossHair(new QwtNoxQwtPlotPicker(plot))
    , m_pickers(plot->canvas(), limitLinePen())
    , m_keys(plot, *this)
{
    for (const ValueFrame *frame : std::initializer_list<ValueFrame *>{
             m_measurement.pointFrame(), m_measurement.measurementFrame()})
        for (QwtLabelClick *value : frame->values()) {
            connect(value, &QwtLabelClick::clicked, plot, &QwtNOX::copyToClipboard);
            m_keys.listenTo(value);
        }
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft})
        connect(plot->axisWidget(axis), &QwtScaleWidget::scaleDivChanged, this,
                &PlotInteraction::followAxes);
    m_crossHair->setObjectName(QStringLiteral("crossHair"));
    connectPickers();
}

void PlotInteraction::connectPickers()
{
    using Point = void (QwtPlotPicker::*)(const QPointF &);
    const Point selected = &QwtPlotPicker::selected;
    connect(m_pickers.click(), selected, this, &PlotInteraction::startMeasurement);
    connect(m_pickers.measure(), selected, m_plot, &QwtNOX::setMeasPoint);
    connect(m_pickers.zoomer(), &PlotZoomer::zoomed, m_plot, &QwtNOX::setZoomScale);
    connect(m_pickers.scroll(), &QwtPlotPicker::appended, m_plot, &QwtNOX::scrollCanvas);
    connect(m_pickers.scroll(), &QwtPlotPicker::moved, m_plot, &QwtNOX::scrollCanvas);
    connect(m_pickers.limits(), selected, this, &PlotInteraction::placeLimit);

    auto *wheel = new QwtNoxPlotPickerWheele(m_plot->canvas());
    wheel->setObjectName(QStringLiteral("wheelPicker"));
    connect(wheel, &QwtNoxPlotPickerWheele::zoomed, this,
            [this](bool coarser) { zoom(coarser, cursor()); });
}

void PlotInteraction::applyMode(TmcMode mode)
{
    m_pickers.enableFor(mode);
    if (mode == ModeAuto || mode == ModeFollow)
        m_measurement.reset();
}

void PlotInteraction::reset()
{
    m_measurement.reset();
    m_pickers.enableFor(ModeAuto);
    m_keys.takeCrossAway(); // it would tell of nothing
}

void PlotInteraction::startMeasurement(const QPointF &point)
{
    if (!m_records.findMainChannel())
        return;
    m_plot->setChMode(ModeMeasure);
    if (mode() != ModeMeasure)
        return; // a receiver has removed the instrument or chosen another mode
    m_measurement.start(point);
    m_plot->addMeasPointFirst(point, m_measurement.placeOf(point));
    m_plot->frameClock().request();
}

void PlotInteraction::addPoint(const QPointF &point)
{
    const PlotChannel *channel = m_records.findMainChannel();
    if (!channel)
        return;
    m_measurement.add(point);
    m_plot->frameClock().request();
    if (!m_measurement.hasSecond())
        return m_plot->addMeasPointFirst(point, m_measurement.placeOf(point));
    m_measurement.showInterval(point, measurementTexts(*channel, m_measurement.first(),
                                                       m_measurement.second(), timeFormat()));
    if (channel->mode != ModeMeasure)
        m_plot->setChMode(ModeMeasure);
}

void PlotInteraction::showFirstPoint(const QPointF &point, const QPoint &place)
{
    const PlotChannel &channel = m_records.channel(mainInstrument, mainChannel);
    m_measurement.showPoint(point, place, timeText(timeFormat(), point.x()),
                            readingText(channel, point.y()));
}

void PlotInteraction::rewriteMeasurement()
{
    const PointFrame *point = m_measurement.pointFrame();
    if (!point->isHidden())
        showFirstPoint(point->anchor(), m_measurement.placeOf(point->anchor()));
    const MeasurementFrame *interval = m_measurement.measurementFrame();
    if (!interval->isHidden())
        m_measurement.showInterval(interval->anchor(),
                                   measurementTexts(m_records.channel(mainInstrument, mainChannel),
                                                    m_measurement.first(), m_measurement.second(),
                                                    timeFormat()));
}

void PlotInteraction::resetMeasurement()
{
    m_measurement.reset();
    m_plot->frameClock().request();
}

QString PlotInteraction::pointText(const QPointF &point) const
{
    return timeText(timeFormat(), point.x()) + QStringLiteral(", ") +
           readingText(m_records.channel(mainInstrument, mainChannel), point.y());
}

TimeFormat PlotInteraction::timeFormat() const
{
    return {m_plot->getChModeX(), m_plot->getStartDateTime(), m_plot->now().date(),
            m_axes.view(QwtPlot::xBottom).step};
}

void PlotInteraction::zoomTo(const QRectF &rectangle)
{
    if (!m_records.findMainChannel() || !isFinite(rectangle))
        return;
    m_pickers.zoomer()->setProperty("rect", rectangle);
    show(m_axes.viewOf(rectangle.normalized()));
    emit viewChosen();
}

void PlotInteraction::zoom(bool coarser, const QPointF &centre)
{
    PlotChannel *channel = m_records.findMainChannel();
    const ScaleSteps next = neighbouringSteps(m_axes.stepsInEffect(), coarser);
    if (!channel || next == m_axes.chosenSteps())
        return;
    const ZoomedView view = m_axes.viewAround(centre, next);
    if (channel->mode == ModeAuto || channel->mode == ModeFollow) {
        channel->scaleY = static_cast<uchar>(next.y); // both at once: no Y chosen by data between
        m_plot->setChScaleX(static_cast<uchar>(next.x));
        m_plot->setChScaleY(static_cast<uchar>(next.y));
        // Unless a receiver chose otherwise: following waits for the next point.
        if (m_axes.stepsInEffect() == next && mode() == ModeFollow)
            show(view);
    } else {
        show(view);
        emit viewChosen();
    }
}

void PlotInteraction::show(const ZoomedView &view)
{
    m_pickers.zoomer()->setProperty("center", view.centre);
    m_plot->calcPrecision(static_cast<uchar>(view.steps.y)); // first: it decides on the labels
    m_axes.show(view);
    m_plot->updLabelScale();
    m_plot->frameClock().request();
}

void PlotInteraction::panTo(const QPointF &point)
{
    if (!m_isRightHeld)
        return;
    m_axes.pan(cursor() - point);
    m_plot->frameClock().request();
}

void PlotInteraction::panBySteps(int stepsX, int stepsY)
{
    if (!m_records.findMainChannel())
        return;
    if (mode() != ModeScroll)
        m_plot->setChMode(ModeScroll);
    m_axes.pan(
        {stepsX * m_axes.view(QwtPlot::xBottom).step, stepsY * m_axes.view(QwtPlot::yLeft).step});
    m_plot->frameClock().request();
}

QPointF PlotInteraction::middleOfView() const
{
    const QVariant zoomed = m_pickers.zoomer()->property("center");
    return mode() == ModeZoom && zoomed.isValid() ? zoomed.toPointF() : m_axes.middle();
}

QPointF PlotInteraction::cursor() const
{
    const QVariant position = m_crossHair->property("pos");
    return position.isValid() ? position.toPointF() : middleOfView();
}

void PlotInteraction::placeLimit(const QPointF &point)
{
    PlotDevice *device = m_records.findDevice(mainInstrument);
    if (device && device->placeLimit(point))
        stopPlacingLimits();
    m_plot->frameClock().request();
}

void PlotInteraction::mousePressed(const QMouseEvent *event)
{
    m_pressed = event->pos();
    m_isRightHeld = event->buttons() == Qt::RightButton;
}

void PlotInteraction::mouseMoved(const QMouseEvent *event)
{
    m_isRightHeld = event->buttons() == Qt::RightButton;
    if (!m_isRightHeld || !isDrag(m_pressed, event->pos()))
        return;
    if (mode() != ModeScroll)
        m_plot->setChMode(ModeScroll);
    m_crossHair->setProperty("pos", pointUnder(event->pos()));
}

void PlotInteraction::mouseReleased(const QMouseEvent *event)
{
    m_isRightHeld = false;
    if (!isClick(m_pressed, event->pos()))
        return;
    if (event->button() == Qt::LeftButton && m_plot->childAt(m_pressed) == m_plot->canvas())
        clickLeft(pointUnder(event->pos()));
    else if (event->button() == Qt::RightButton)
        stepBack();
}

void PlotInteraction::clickLeft(const QPointF &point)
{
    if (mode() == ModeZoom)
        startMeasurement(point);
}

void PlotInteraction::stepBack()
{
    if (mode() == ModeMeasure && m_measurement.hasFirst())
        resetMeasurement();
    else if (mode() == ModeMeasure || mode() == ModeZoom || mode() == ModeScroll)
        m_plot->setChMode(ModeFollow);
}

TmcMode PlotInteraction::mode() const
{
    return m_records.channel(mainInstrument, mainChannel).mode;
}

/** The point of the axes under a point of the plot widget. */
QPointF PlotInteraction::pointUnder(const QPoint &position) const
{
    const QPoint onCanvas = position - m_plot->canvas()->pos();
    return {m_plot->invTransform(QwtPlot::xBottom, onCanvas.x()),
            m_plot->invTransform(QwtPlot::yLeft, onCanvas.y())};
}
