#pragma once

#include "plot/frameclock.h"
#include "plot/plotrecords.h"
#include "plot/scalechoice.h"
#include "plot/scaletables.h"

#include <QColor>
#include <QMap>
#include <QPen>
#include <qwt_plot.h>

#include <functional>
#include <memory>

class PlotMeasurement;
class PlotPickers;
class QwtNoxQwtPlotPicker;
class QwtPlotTextLabel;
struct MeasurementTexts;
struct PointOutcome;
struct ScaleRows;
struct TimeFormat;
struct ZoomedView;

/** What the caption in the corner of the canvas tells. */
struct CaptionParts {
    int ch = -1; ///< main channel, -1 without one
    QString unit;
    uchar scaleX = 0; ///< rows of the scale tables
    uchar scaleY = 0;

    bool operator==(const CaptionParts &other) const
    {
        return ch == other.ch && scaleX == other.scaleX && scaleY == other.scaleY &&
               unit == other.unit;
    }
};

/**
 * The time plot of all instruments.
 *
 * Every instrument on the plot has a record under its plot index, `qwtIndex`. In every operation a
 * `qwtIndex` below 0 means the main instrument, and a channel of 255 the main channel of the
 * instrument (channel 0 when the stored one does not exist). Operations on an unknown instrument or
 * channel change nothing and return the value named with them. Times are seconds since the
 * instrument's `startDateTime`.
 *
 * State (records, axes, caption) changes at once and is announced at once; painting is put off to
 * one replot per frame of frameClock(). `replot()` paints without waiting.
 */
class QwtNOX : public QwtPlot
{
    Q_OBJECT

public:
    using _ch = PlotChannel;
    using _dev = PlotDevice;

    explicit QwtNOX(QWidget *parent = nullptr);
    ~QwtNOX() override;

    // Instruments

    /** The records by plot index. Whoever writes to them calls applyScale() for what is on screen.
     */
    QMap<int, _dev> &devices() { return m_devices; }
    const QMap<int, _dev> &devices() const { return m_devices; }

    /**
     * Puts an instrument on the plot: its record with `fixedChCount` channels, two hidden limit
     * lines, and the time origin of the instrument with the lowest plot index (now, if it is the
     * first). Does nothing when `qwtIndex` is negative or taken. It does not become the main one.
     */
    void addDev(int qwtIndex, uchar fixedChCount);

    /** addDev() of an instrument that is shown from now on: the first one becomes the main one,
     *  each further one is announced by onChange(). */
    void attachDev(int qwtIndex, uchar fixedChCount);

    /**
     * Takes an instrument off the plot with its channels, curves and limit lines. Differences
     * against it end without a signal. Without its main instrument the plot has none (-1).
     */
    void removeDev(int qwtIndex);

    /** Plot index of the main instrument, -1 when there is none. */
    int getDevMain() const { return m_mainIndex; }

    /**
     * Makes the instrument the main one, alone on show. A negative index applies the main
     * instrument once more; without one it announces that there is none (index -1 in the signals).
     */
    void setDevMain(int qwtIndex);

    /** The instrument's time origin; an invalid date-time when unknown. */
    QDateTime getStartDateTime(int qwtIndex = -1) const;

    /** The clock that stamps points and tells which day is today; tests set their own. */
    void setClock(std::function<QDateTime()> clock);
    /** What that clock shows. */
    QDateTime now() const { return m_clock(); }

    /** Tells when to paint, the plot and whatever else shows its points. */
    FrameClock &frameClock() { return m_frameClock; }

    /** Red dotted pen, 2 pixels wide: limit lines and the rubber band that places them. */
    static QPen limitPen();

    // Points

    /** Adds a point stamped with the time since the instrument's start; true when accepted. */
    bool addPoint(double val, const QString &dim, int qwtIndex, uchar ch);

    /**
     * Adds a point. Values of -1300 or less, negative times and numbers that are not finite are
     * rejected (onErrorAddPoint). Channel 255 is refused, as is a channel that the model lacks, and
     * 254 where the model is unknown (a channel count of 255 does not exist).
     */
    bool addPoint(double val, double time, const QString &dim, int qwtIndex, uchar ch);

    /**
     * Adds points of one instrument in their order; `units` are those of its channels. Series,
     * averages, differences and errors come out as if addPoint() had taken each, but curves, axes
     * and listeners learn of all of them at the end: of each channel once, in the order of their
     * last points, with onErrorAddPoint and onPointTrackOff if any of its points asks for it. How
     * many were accepted.
     */
    int addPoints(int qwtIndex, const QVector<PlotPoint> &points, const QVector<QString> &units);

    /** Empties all series of the instrument; its settings, differences and limits stay. */
    void clear(int qwtIndex = -1);

    /** Empties all series of the instrument and makes `start` its time origin. */
    void prepareMeas(int qwtIndex, const QDateTime &start);

    // Channels

    /** Grows or shrinks the instrument to `count` channels; 255 is ignored. */
    void setChCount(uchar count, int qwtIndex = -1);
    /** Number of channels, 0 when the instrument is unknown. */
    uchar getChCount(int qwtIndex = -1) const;

    /** Makes `ch` the main channel and hides the others. */
    void setChMain(uchar ch = 255, int qwtIndex = -1);
    /** The main channel, -1 when the instrument is unknown or has no channels. */
    int getChMain(int qwtIndex = -1) const;

    /**
     * Makes the channel the difference against a channel of an instrument on the plot, from its
     * first point on; 255 and -1 end the difference. A reference that does not exist leaves it as
     * it was. Either way the channel follows its newest points from then on.
     */
    void setChDiff(uchar diffCh, int diffQwtIndex, int qwtIndex = -1, uchar ch = 255);
    /** The channel's reference channel; 255 and -1 when it has none that is on the plot. */
    void getChDiff(uchar *diffCh, int *diffQwtIndex, int qwtIndex = -1, uchar ch = 255) const;

    // Values. `diff` asks for the difference series, where the channel has one. `index` counts
    // points from 0; -1, or one that does not exist, means the latest point.

    /** Number of points, 0 when unknown. */
    int getChMeasCount(int qwtIndex = -1, uchar ch = 255, bool diff = true) const;
    /** Value of a point, 0 when there is none. */
    double getChMeas(int qwtIndex = -1, uchar ch = 255, int index = -1, bool diff = true) const;
    /** Time of a point in seconds, 0 when there is none. */
    double getChTime(int qwtIndex = -1, uchar ch = 255, int index = -1, bool diff = true) const;

    /**
     * Value as text; "--" when there is none or the latest point was rejected. `precision` is the
     * number of decimals, below 0 the one that suits the Y scale; two are always written.
     */
    QString getChMeasStr(int qwtIndex = -1, uchar ch = 255, signed char precision = -1,
                         int index = -1, bool diff = true) const;
    /**
     * Moving average as text, of the difference whenever there is one, whatever `diff` says; "--"
     * when the latest point was rejected, "" when there is no value.
     */
    QString getChAverStr(int qwtIndex = -1, uchar ch = 255, signed char precision = -1,
                         int index = -1, bool diff = true) const;
    /** Time of a measured point in whole seconds, whatever `diff` says; "" when there is none. */
    QString getChTimeStr(int qwtIndex = -1, uchar ch = 255, int index = -1, bool diff = true) const;
    /** Seconds between the two newest points, one decimal; "" with fewer than two. */
    QString getChDXStr(int qwtIndex = -1, uchar ch = 255) const;
    /** Change between the two newest points; "" with fewer than two. */
    QString getChDYStr(int qwtIndex = -1, uchar ch = 255) const;
    /** Unit text of the latest point; "-" when unknown. */
    QString getChDim(int qwtIndex = -1, uchar ch = 255) const;

    // Appearance

    void setChColor(const QColor &color, int qwtIndex = -1, uchar ch = 255);
    /** Colour of the channel's curves, white when unknown. */
    QColor getChColor(int qwtIndex = -1, uchar ch = 255) const;
    void setChShow(bool show, int qwtIndex = -1, uchar ch = 255);
    bool getChShow(int qwtIndex = -1, uchar ch = 255) const;
    void setDevShow(bool show, int qwtIndex = -1);
    void setMeasShow(bool show, int qwtIndex = -1);
    /** Switches the curves of values and returns the new state. */
    bool toggleMeasShow(int qwtIndex = -1);
    /** True when unknown. */
    bool getMeasShow(int qwtIndex = -1) const;
    void setAverShow(bool show, int qwtIndex = -1);
    /** Switches the curves of averages and returns the new state. */
    bool toggleAverShow(int qwtIndex = -1);
    /** True when unknown. */
    bool getAverShow(int qwtIndex = -1) const;

    /**
     * Chooses the limits that raise an alarm: hides both limit lines and, unless they are switched
     * off, lets the user place those of `mode` with the mouse (ModeLimits).
     */
    void setModeTrack(TmcTrackingMode mode, int qwtIndex = -1);
    /** TrackOff when unknown or without channels. */
    TmcTrackingMode getModeTrack(int qwtIndex = -1) const;

    // Scales and modes. A scale is a row of scalesX() or scalesY(); 0 chooses by itself.

    /** Number of steps that the X axis spans, at least 1. */
    void setDivX(uchar divisions);
    /** Number of steps that the Y axis spans, at least 2. */
    void setDivY(uchar divisions);

    /** Sets the decimals that suit a row of scalesY(). */
    void calcPrecision(uchar scaleY, int qwtIndex = -1, uchar ch = 255);
    uchar getPrecision(int qwtIndex = -1, uchar ch = 255) const;
    void setChScaleX(uchar scale, int qwtIndex = -1, uchar ch = 255);
    uchar getChScaleX(int qwtIndex = -1, uchar ch = 255) const;
    void setChScaleY(uchar scale, int qwtIndex = -1, uchar ch = 255);
    uchar getChScaleY(int qwtIndex = -1, uchar ch = 255) const;
    void setChMode(TmcMode mode, int qwtIndex = -1, uchar ch = 255);
    TmcMode getChMode(int qwtIndex = -1, uchar ch = 255) const;
    void setChModeX(TmcModeX mode, int qwtIndex = -1, uchar ch = 255);
    TmcModeX getChModeX(int qwtIndex = -1, uchar ch = 255) const;

    // The mouse on the plot; it acts on the main channel of the main instrument

    /** Fills the frame of the first point and shows it beside `pos`, in pixels of the canvas. */
    void addMeasPointFirst(const QPointF &p, QPoint pos);
    /** Time and value of a point as the cross-hair tells them. */
    QString pointText(const QPointF &point) const;

    // Captions of what is in effect for the main channel; "-" without a main instrument.
    QString getScaleXLabel() const;
    QString getScaleYLabel() const;
    QString getChModeLabel() const;
    QString getChModeXLabel() const;

public slots:
    // The same for the main channel of the main instrument; a number out of range is ignored.
    void changeMode(int mode);
    void changeModeX(int mode);
    void changeScaleX(int indexX);
    void changeScaleY(int indexY);

    /** Recomputes the axes from the main channel's data, mode and scales. */
    void applyScale();
    /** Refreshes the caption in the corner of the canvas. */
    void updLabelScale();

    // What the mouse selects on the canvas, in seconds and values

    /** Places a point of the measurement, the first or a second one. */
    void setMeasPoint(const QPointF &p);
    /** Shows a rectangle by the scales that fit it. */
    void setZoomScale(const QRectF &rect);
    /** Moves the view so that the point last under the mouse comes to `p`, while the right button
     *  is held. */
    void scrollCanvas(const QPointF &p);
    /** Copies the text of the value that sends this, and marks it. */
    void copyToClipboard();

    /** Lays the plot out; what stands beside a point stays there. */
    void updateLayout() override;

signals:
    // Every qwtIndex is the resolved plot index. All signals come from the GUI thread.

    /** An X scale was chosen, or shown for the time being in the zoom, panning and limits modes. */
    void onChScaleXChange(int qwtIndex, uchar ch, uchar scale);
    /** A Y scale was chosen, or shown for the time being in the zoom, panning and limits modes. */
    void onChScaleYChange(int qwtIndex, uchar ch, uchar scale);
    void onChColorChange(int qwtIndex, uchar ch, QColor color);
    void onChShowChange(int qwtIndex, uchar ch, bool show);
    /** The main channel changed, or its instrument became the main one. */
    void onChMainChange(int qwtIndex, uchar mainCh);
    void onChModeXChange(int qwtIndex, uchar ch, TmcModeX mode);
    /** The mode was set, be it to the one it had. */
    void onChModeChange(int qwtIndex, uchar ch, TmcMode mode);
    void onModeTrackChange(int qwtIndex, uchar ch, TmcTrackingMode mode);
    void onMeasShowChange(int qwtIndex, bool show);
    void onAverShowChange(int qwtIndex, bool show);
    /** A point was accepted; it is in the series and its average is known. */
    void onAddPoint(int qwtIndex, uchar ch);
    /** A channel was created; several are announced from the highest number down. */
    void onAddCh(int qwtIndex, uchar ch);
    /** Some setting of this instrument changed; -1 when the plot lost its main instrument. */
    void onChange(int qwtIndex);
    /** The main instrument changed; -1 when there is none any more. */
    void onDevChange(int qwtIndex);
    /** An accepted point lies beyond a limit; follows its onAddPoint. */
    void onPointTrackOff(int qwtIndex, uchar ch);
    /** A point was rejected, or its difference could not be formed. */
    void onErrorAddPoint(int qwtIndex, uchar ch);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    int resolveIndex(int qwtIndex) const { return qwtIndex < 0 ? m_mainIndex : qwtIndex; }
    uchar resolveChannel(int qwtIndex, uchar ch) const;
    _dev *findDevice(int qwtIndex);
    const _dev *findDevice(int qwtIndex) const;
    _ch *findChannel(int qwtIndex, uchar ch);
    const _ch *findChannel(int qwtIndex, uchar ch) const;
    bool isMainChannel(int qwtIndex, uchar ch) const;

    bool ensureChannel(int qwtIndex, uchar ch);
    bool storePoint(_ch &channel, double val, double time, const QString &dim) const;
    void announce(int qwtIndex, const QVector<PointOutcome> &outcomes);
    void appendChannel(int qwtIndex);
    void removeLastChannel(int qwtIndex);
    void endDifference(int qwtIndex, uchar ch);
    bool extendDifference(_ch &channel) const;
    void rebuildDifference(_ch &channel, const _ch &reference) const;
    bool violatesLimit(int qwtIndex, uchar ch) const;
    bool violatesLimit(const _dev &device, const _ch &channel) const;

    bool hasFreeView(int qwtIndex, uchar ch) const;
    void setCurrentScales(const _ch &channel);
    void showMode(const _ch &channel);
    void scaleX(const _ch &channel);
    void scaleY(_ch &channel);
    void restAxes();
    AxisView axisView(int axis) const;
    void setAxisView(int axis, const AxisView &view);
    void steadyLabels(int axis);
    void installScaleXDraw();
    void refreshScaleYLabels();
    void paintFrame();

    void buildInteraction();
    void restMouse();
    void startMeasurement(const QPointF &point);
    void resetMeasurement();
    void rewriteMeasurement();
    MeasurementTexts measurementTexts() const;
    QString valueText(double value) const;
    TimeFormat timeFormat() const;
    void zoomByWheel(bool coarser);
    ScaleRows rowsInEffect() const;
    void showZoomed(const ZoomedView &view);
    QPointF middleOfView() const;
    QPointF cursor() const;
    void placeLimit(const QPointF &point);
    void clickLeft(const QPointF &point);
    void clickRight();
    QPointF plotPosition(const QPoint &position) const;

    QMap<int, _dev> m_devices;
    int m_mainIndex = -1;
    std::function<QDateTime()> m_clock = &QDateTime::currentDateTime;
    uchar m_divX = 10;
    uchar m_divY = 10;
    uchar m_scaleX = 0; ///< row of scalesX() in effect, chosen by the user or by the data
    uchar m_scaleY = 0; ///< row of scalesY() in effect
    QwtPlotTextLabel *m_caption = nullptr; ///< owned by the plot's item list
    CaptionParts m_captionParts;           ///< what it shows at present
    uchar m_labelPrecision = 0;            ///< decimals with which the Y axis was labelled last
    QDate m_labelDay;                      ///< what was today when the X axis was labelled last
    FrameClock m_frameClock;

    std::unique_ptr<PlotMeasurement> m_measurement;
    std::unique_ptr<PlotPickers> m_pickers;
    QwtNoxQwtPlotPicker *m_crossHair = nullptr; ///< owned by the canvas
    QPoint m_pressed;         ///< where a button went down, in pixels of this widget
    bool m_rightHeld = false; ///< the right button is down, and no other
};
