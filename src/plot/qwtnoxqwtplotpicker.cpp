#include "plot/qwtnoxqwtplotpicker.h"

#include "plot/qwtnox.h"

#include <qwt_picker_machine.h>
#include <qwt_text.h>

QwtNoxQwtPlotPicker::QwtNoxQwtPlotPicker(QwtNOX *plot)
    : QwtPlotPicker(QwtPlot::xBottom, QwtPlot::yLeft, NoRubberBand, AlwaysOn, plot->canvas())
    , m_plot(plot)
{
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
