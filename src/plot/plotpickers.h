#pragma once

#include "plot/plotmodes.h"

#include <qwt_plot_picker.h>

class PlotZoomer;

/** A picker that can be stopped in the middle of a selection. */
class CanvasPicker : public QwtPlotPicker
{
    Q_OBJECT
public:
    using QwtPlotPicker::QwtPlotPicker;
    using QwtPlotPicker::reset;
};

/**
 * What the mouse does on the canvas: five pickers, of which the mode of the plot enables some. The
 * canvas owns them.
 */
class PlotPickers
{
public:
    /** `limitPen` draws the line with which a limit is placed. */
    PlotPickers(QWidget *canvas, const QPen &limitPen);

    QwtPlotPicker *click() const { return m_click; }
    QwtPlotPicker *measure() const { return m_measure; }
    PlotZoomer *zoomer() const { return m_zoomer; }
    QwtPlotPicker *scroll() const { return m_scroll; }
    QwtPlotPicker *limits() const { return m_limits; }

    /** Enables what a mode needs and disables the others. */
    void enableFor(TmcMode mode);

private:
    CanvasPicker *m_click;
    CanvasPicker *m_measure;
    PlotZoomer *m_zoomer;
    CanvasPicker *m_scroll;
    CanvasPicker *m_limits;
};
