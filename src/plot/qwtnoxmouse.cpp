#include "plot/measurementframe.h"
#include "plot/mouseclick.h"
#include "plot/plotmeasurement.h"
#include "plot/plotpickers.h"
#include "plot/plotzoomer.h"
#include "plot/pointframe.h"
#include "plot/qwtlabelclick.h"
#include "plot/qwtnox.h"
#include "plot/qwtnoxplotpickerwheele.h"
#include "plot/qwtnoxqwtplotpicker.h"

#include <QMouseEvent>
#include <qwt_scale_widget.h>

// What the mouse does on the plot: pickers for what each mode selects, the rest by plain events.

void QwtNOX::buildInteraction()
{
    m_measurement = std::make_unique<PlotMeasurement>(this);
    for (const ValueFrame *frame : {static_cast<ValueFrame *>(m_measurement->pointFrame()),
                                    static_cast<ValueFrame *>(m_measurement->measurementFrame())})
        for (const QwtLabelClick *value : frame->values())
            connect(value, &QwtLabelClick::clicked, this, &QwtNOX::copyToClipboard);
    for (const int axis : {xBottom, yLeft})
        connect(axisWidget(axis), &QwtScaleWidget::scaleDivChanged, this,
                [this] { m_measurement->followAxes(); });

    m_crossHair = new QwtNoxQwtPlotPicker(this);
    m_crossHair->setObjectName(QStringLiteral("crossHair"));
    auto *wheel = new QwtNoxPlotPickerWheele(canvas());
    wheel->setObjectName(QStringLiteral("wheelPicker"));
    connect(wheel, &QwtNoxPlotPickerWheele::zoomed, this, &QwtNOX::zoomByWheel);

    using Point = void (QwtPlotPicker::*)(const QPointF &);
    const Point selected = &QwtPlotPicker::selected;
    m_pickers = std::make_unique<PlotPickers>(canvas(), limitPen());
    connect(m_pickers->click(), selected, this, &QwtNOX::startMeasurement);
    connect(m_pickers->measure(), selected, this, &QwtNOX::setMeasPoint);
    connect(m_pickers->zoomer(), &PlotZoomer::zoomed, this, &QwtNOX::setZoomScale);
    connect(m_pickers->scroll(), &QwtPlotPicker::appended, this, &QwtNOX::scrollCanvas);
    connect(m_pickers->scroll(), &QwtPlotPicker::moved, this, &QwtNOX::scrollCanvas);
    connect(m_pickers->limits(), selected, this, &QwtNOX::placeLimit);
}

/** What the mouse does where no channel says it: nothing is selected, and a click would measure. */
void QwtNOX::restMouse()
{
    m_measurement->reset();
    m_pickers->enableFor(ModeAuto);
}

void QwtNOX::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->pos();
    m_rightHeld = event->buttons() == Qt::RightButton;
}

void QwtNOX::mouseMoveEvent(QMouseEvent *event)
{
    m_rightHeld = event->buttons() == Qt::RightButton;
    if (!m_rightHeld || !isDrag(m_pressed, event->pos()))
        return;
    if (getChMode() != ModeScroll)
        setChMode(ModeScroll);
    m_crossHair->setProperty("pos", plotPosition(event->pos()));
}

void QwtNOX::mouseReleaseEvent(QMouseEvent *event)
{
    m_rightHeld = false;
    if (!isClick(m_pressed, event->pos()))
        return;
    if (event->button() == Qt::LeftButton && childAt(m_pressed) == canvas())
        clickLeft(plotPosition(event->pos()));
    else if (event->button() == Qt::RightButton)
        clickRight();
}

void QwtNOX::clickLeft(const QPointF &point)
{
    if (getChMode() == ModeZoom)
        startMeasurement(point);
}

/** Leads out of what the mode shows, step by step. */
void QwtNOX::clickRight()
{
    const TmcMode mode = getChMode();
    if (mode == ModeMeasure && m_measurement->markers().hasFirst())
        resetMeasurement();
    else if (mode == ModeMeasure || mode == ModeZoom || mode == ModeScroll)
        setChMode(ModeFollow);
}

/** The point of the axes under a point of this widget. */
QPointF QwtNOX::plotPosition(const QPoint &position) const
{
    const QPoint onCanvas = position - canvas()->pos();
    return {invTransform(xBottom, onCanvas.x()), invTransform(yLeft, onCanvas.y())};
}

void QwtNOX::updateLayout()
{
    QwtPlot::updateLayout();
    if (m_measurement)
        m_measurement->followAxes();
}
