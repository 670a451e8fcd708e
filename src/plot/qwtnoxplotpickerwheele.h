#pragma once

#include <QWheelEvent>
#include <qwt_plot_picker.h>

/** Listens to the wheel of the mouse over the canvas. */
class QwtNoxPlotPickerWheele : public QwtPlotPicker
{
    Q_OBJECT
public:
    explicit QwtNoxPlotPickerWheele(QWidget *canvas)
        : QwtPlotPicker(canvas)
    {
    }

signals:
    /** The wheel was turned by a notch: towards the user (true) or away from the user. */
    void zoomed(bool zoomIN);

protected:
    void widgetWheelEvent(QWheelEvent *event) override
    {
        QwtPlotPicker::widgetWheelEvent(event);
        emit zoomed(event->angleDelta().y() < 0);
    }
};
