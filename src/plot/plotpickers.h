#pragma once

#include "plot/plotmodes.h"

#include <QPoint>
#include <QWheelEvent>
#include <qwt_plot_picker.h>
#include <qwt_plot_zoomer.h>

class QwtNOX;

// What listens to the mouse on the canvas: it selects points and rectangles, reads the cross-hair
// and the wheel; and what is a click there.

/** A mouse that stays this near, in pixels, between press and release was clicked, not dragged. */
constexpr int clickPixels = 10;

/** True when the mouse was released where it was pressed. */
bool isClick(const QPoint &pressed, const QPoint &released);
/** True when the mouse has been dragged away from where it was pressed. */
bool isDrag(const QPoint &pressed, const QPoint &now);

/** Leaves the keys to PlotKeys: those of a picker would move the pointer of the user's mouse. */
void takeKeysFrom(QwtPicker *picker);

/** A picker that can be stopped in the middle of a selection. */
class CanvasPicker : public QwtPlotPicker
{
    Q_OBJECT
public:
    using QwtPlotPicker::QwtPlotPicker;
    using QwtPlotPicker::reset;
};

/**
 * Selects rectangles on the canvas with the left button and reports each one.
 *
 * What it inherits would move the axes by itself, keep every rectangle on a stack, refuse small
 * ones and jump back at a right click or a key: all that is switched off. A click, a selection of
 * less than `clickPixels` in both directions, is no rectangle.
 */
class PlotZoomer : public QwtPlotZoomer
{
    Q_OBJECT
public:
    /** `pen` draws the rectangle while it is selected. */
    PlotZoomer(QWidget *canvas, const QPen &pen);

    using QwtPlotZoomer::reset;
    void zoom(const QRectF &rectangle) override;
    void zoom(int offset) override;

protected:
    QSizeF minZoomSize() const override;
    bool accept(QPolygon &selection) const override;
};

/**
 * Reads the cross-hair: tells time and value under the mouse and remembers where on the plot the
 * mouse was last, as the property "pos" (QPointF, coordinates of the axes).
 */
class QwtNoxQwtPlotPicker : public QwtPlotPicker
{
    Q_OBJECT
public:
    /** `plot`, on whose canvas this works, tells how times and values are written. */
    explicit QwtNoxQwtPlotPicker(QwtNOX *plot);

    QwtText trackerTextF(const QPointF &point) const override;

private:
    const QwtNOX *m_plot;
};

/** Listens to the wheel of the mouse over the canvas. */
class QwtNoxPlotPickerWheele : public QwtPlotPicker
{
    Q_OBJECT
public:
    explicit QwtNoxPlotPickerWheele(QWidget *canvas)
        : QwtPlotPicker(canvas)
    {
        takeKeysFrom(this);
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
