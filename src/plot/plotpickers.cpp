#include "plot/plotpickers.h"

#include "plot/qwtnox.h"

#include <QPen>
#include <QVariant>
#include <qwt_picker_machine.h>
#include <qwt_text.h>

#include <cstdlib>

namespace
{

CanvasPicker *addPicker(QWidget *canvas, const char *name, QwtPickerMachine *machine,
                        QwtPicker::RubberBand rubberBand, const QPen &pen)
{
    auto *picker = new CanvasPicker(canvas);
    takeKeysFrom(picker);
    picker->setObjectName(QLatin1String(name));
    picker->setStateMachine(machine);
    picker->setRubberBand(rubberBand);
    picker->setRubberBandPen(pen);
    return picker;
}

template<typename Picker>
void stop(Picker *picker)
{
    picker->reset(); // a selection must not go on where the picker is enabled again
    picker->setEnabled(false);
}

} // namespace

bool isClick(const QPoint &pressed, const QPoint &released)
{
    const QPoint way = released - pressed;
    return std::abs(way.x()) < clickPixels && std::abs(way.y()) < clickPixels;
}

bool isDrag(const QPoint &pressed, const QPoint &now)
{
    const QPoint way = now - pressed;
    return std::abs(way.x()) > clickPixels || std::abs(way.y()) > clickPixels;
}

void takeKeysFrom(QwtPicker *picker)
{
    constexpr int noKey = -1;
    for (int code = 0; code < QwtEventPattern::KeyPatternCount; ++code)
        picker->setKeyPattern(QwtEventPattern::KeyPatternCode(code), noKey);
}

PlotZoomer::PlotZoomer(QWidget *canvas, const QPen &pen)
    : QwtPlotZoomer(canvas, false)
{
    takeKeysFrom(this);
    setRubberBandPen(pen);
    setTrackerMode(AlwaysOff);
}

void PlotZoomer::zoom(const QRectF &rectangle)
{
    emit zoomed(rectangle.normalized());
}

void PlotZoomer::zoom(int) {}

QSizeF PlotZoomer::minZoomSize() const
{
    return {}; // no rectangle is too small for the finest scales
}

bool PlotZoomer::accept(QPolygon &selection) const
{
    const bool isRectangle = selection.size() >= 2 && !isClick(selection.first(), selection.last());
    return isRectangle && QwtPlotZoomer::accept(selection);
}

QwtNoxQwtPlotPicker::QwtNoxQwtPlotPicker(QwtNOX *plot)
    : QwtPlotPicker(QwtPlot::xBottom, QwtPlot::yLeft, NoRubberBand, AlwaysOn, plot->canvas())
    , m_plot(plot)
{
    takeKeysFrom(this);
    setStateMachine(new QwtPickerTrackerMachine);
    const auto remember = [this](const QPointF &point) { setProperty("pos", point); };
    connect(this, &QwtPlotPicker::appended, this, remember); // the mouse enters
    connect(this, &QwtPlotPicker::moved, this, remember);
}

QwtText QwtNoxQwtPlotPicker::trackerTextF(const QPointF &point) const
{
    QwtText text(m_plot->pointText(point));
    text.setBackgroundBrush(QColor(255, 255, 255, 200)); // legible above curves
    return text;
}

PlotPickers::PlotPickers(QWidget *canvas, const QPen &limitPen)
{
    const QPen selectionPen(Qt::darkGray, 2, Qt::DotLine);
    m_click = addPicker(canvas, "clickPicker", new QwtPickerClickPointMachine,
                        QwtPicker::CrossRubberBand, selectionPen);
    m_measure = addPicker(canvas, "measurePicker", new QwtPickerDragPointMachine,
                          QwtPicker::CrossRubberBand, selectionPen);
    m_zoomer = new PlotZoomer(canvas, selectionPen);
    m_zoomer->setObjectName(QStringLiteral("zoomer"));
    m_scroll = addPicker(canvas, "scrollTracker", new QwtPickerTrackerMachine,
                         QwtPicker::NoRubberBand, selectionPen);
    m_limits = addPicker(canvas, "limitsPicker", new QwtPickerDragPointMachine,
                         QwtPicker::HLineRubberBand, limitPen);
    enableFor(ModeAuto);
}

void PlotPickers::enableFor(TmcMode mode)
{
    for (CanvasPicker *picker : {m_click, m_measure, m_scroll, m_limits})
        stop(picker);
    stop(m_zoomer);
    m_click->setEnabled(mode == ModeAuto || mode == ModeFollow);
    m_measure->setEnabled(mode == ModeMeasure || mode == ModeScroll);
    m_zoomer->setEnabled(mode == ModeZoom);
    m_scroll->setEnabled(mode == ModeScroll);
    m_limits->setEnabled(mode == ModeLimits);
    // The view may have moved since the last zoom.
    if (mode == ModeZoom)
        m_zoomer->setProperty("center", {});
}
