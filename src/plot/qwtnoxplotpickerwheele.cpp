#include "plot/qwtnoxplotpickerwheele.h"

#include <QWheelEvent>

QwtNoxPlotPickerWheele::QwtNoxPlotPickerWheele(QWidget *canvas)
    : QwtPlotPicker(canvas)
{
}

void QwtNoxPlotPickerWheele::widgetWheelEvent(QWheelEvent *event)
{
    QwtPlotPicker::widgetWheelEvent(event);
    emit zoomed(event->angleDelta().y() < 0);
}
