#pragma once

#include "plot/plotkeys.h"
#include "plot/plotmeasurement.h"
#include "plot/plotpickers.h"

#include <QObject>

class PlotAxes;
class PlotRecords;
class QMouseEvent;
class QwtNOX;
class QwtNoxQwtPlotPicker;
struct ZoomedView;

/**
 * What the user does on the plot, by mouse and by keys: measuring, zooming, panning, placing limits
 * and reading values off. It acts on the main channel of the main instrument, as that channel's
 * mode says; a gesture that means another mode asks the plot for it. Points are in seconds and
 * values.
 */
class PlotInteraction : public QObject
{
    Q_OBJECT
public:
    PlotInteraction(QwtNOX *plot, PlotRecords &records, PlotAxes &axes);

    /** Lets the mouse do what the mode of the main channel says. */
    void applyMode(TmcMode mode);
    /** Takes the measurement away; where no channel says what the mouse does a click measures. */
    void reset();
    /** Takes away what is written beside points that may mean nothing any more. */
    void hideFrames() { m_measurement.hideFrames(); }
    /** Ends the placing of limits without one. */
    void stopPlacingLimits() { m_pickers.limits()->setEnabled(false); }

    /** Places a point of the measurement, the first or a second one. */
    void addPoint(const QPointF &point);
    /** Tells of the first point, beside `place` on the canvas in pixels. */
    void showFirstPoint(const QPointF &point, const QPoint &place);
    /** Writes what is shown anew, in place: times may be written otherwise now. */
    void rewriteMeasurement();
    /** Puts what is written back beside its points after the axes have changed. */
    void followAxes() { m_measurement.followAxes(); }
    /** Time and value of a point as the cross-hair tells them. */
    QString pointText(const QPointF &point) const;

    /** Shows a rectangle by the scales that fit it. */
    void zoomTo(const QRectF &rectangle);
    /** Brings the point last under the mouse to `point`, while the right button is held. */
    void panTo(const QPointF &point);
    /** Moves the view by steps of the axes, to later times and higher values, which is ModeScroll.
     */
    void panBySteps(int stepsX, int stepsY);
    /** Makes both scales one step coarser or finer, around a point. */
    void zoom(bool coarser, const QPointF &centre);
    /** Leads out of what the mode shows, step by step, as a click with the right button does. */
    void stepBack();
    /** True from the first corner of a rectangle to the second. */
    bool isPullingRectangle() const { return m_pickers.zoomer()->isActive(); }
    /** Forgets a rectangle of which one corner is set. */
    void giveUpRectangle() { m_pickers.zoomer()->reset(); }
    /** Middle of a view in which a chosen scale takes effect: in the zoom mode, of the last zoom.
     */
    QPointF middleOfView() const;
    /** Where on the plot the mouse was last; the middle when it never was. */
    QPointF cursor() const;
    /** Where on the canvas a point is, in pixels. */
    QPoint placeOf(const QPointF &point) const { return m_measurement.placeOf(point); }

    // Plain events of the plot, for what no picker selects

    /** Notes where a gesture begins, and whether it is one of the right button. */
    void mousePressed(const QMouseEvent *event);
    /** Pans while the right button drags, which is ModeScroll. */
    void mouseMoved(const QMouseEvent *event);
    /** Ends a gesture; one that did not move is a click. */
    void mouseReleased(const QMouseEvent *event);

signals:
    /** Another view was chosen, which is no setting of the channel. */
    void viewChosen();

private:
    void connectPickers();
    void startMeasurement(const QPointF &point);
    void resetMeasurement();
    void show(const ZoomedView &view);
    void placeLimit(const QPointF &point);
    void clickLeft(const QPointF &point);
    TmcMode mode() const;
    QPointF pointUnder(const QPoint &position) const;
    TimeFormat timeFormat() const;

    QwtNOX *m_plot;
    PlotRecords &m_records;
    PlotAxes &m_axes;
    PlotMeasurement m_measurement;
    QwtNoxQwtPlotPicker *m_crossHair; ///< owned by the canvas
    PlotPickers m_pickers;            ///< made after the cross-hair: they see each event before it
    PlotKeys m_keys;                  ///< uses the pickers
    QPoint m_pressed;                 ///< where a button went down, in pixels of the plot
    bool m_isRightHeld = false;       ///< the right button is down, and no other
};
