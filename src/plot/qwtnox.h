#pragma once

#include "plot/frameclock.h"
#include "plot/plotrecords.h"
#include "plot/scalechoice.h"

#include <QColor>
#include <qwt_plot.h>

#include <functional>
#include <memory>

class PlotAxes;
class PlotCanvas;
class PlotInteraction;
class PlotSettings;

/**
 * The time plot of all instruments.
 *
 * Every instrument on the plot has a record under its plot index, `qwtIndex`. In every operation a
 * `qwtIndex` below 0 (mainInstrument) means the main instrument, and a channel of 255 (mainChannel)
 * the main channel of the instrument, or channel 0 when the stored one does not exist. Operations
 * on an unknown instrument or channel change nothing and return the value named with them. Times
 * are seconds since the instrument's `startDateTime`.
 *
 * State (records, axes, caption) changes at once and is announced at once; painting is put off to
 * one replot per frame of frameClock(). `replot()` paints without waiting.
 *
 * The numbers are those of PlotRecords, what the axes show is up to PlotAxes, what the mouse does
 * to PlotInteraction, and how all is looked at to PlotSettings. Here instruments and channels come
 * and go, and points arrive.
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
    QMap<int, _dev> &devices() { return m_records.devices(); }
    const QMap<int, _dev> &devices() const { return m_records.devices(); }

    /**
     * Puts an instrument on the plot: its record with `fixedChCount` channels, two hidden limit
     * lines, and the time origin of the instrument with the lowest plot index (now, if it is the
     * first). Does nothing when `qwtIndex` is negative or taken. It does not become the main one.
     */
    void addDev(int qwtIndex, uchar fixedChCount);

    /** addDev() of an instrument that is shown from now on: the first one becomes the main one,
     *  each further one is announced by onChange(). */
    void attachDev(int qwtIndex, uchar fixedChCount)
    {
        addDev(qwtIndex, fixedChCount);
        if (devices().size() == 1)
            setDevMain(qwtIndex);
        else
            emit onChange(qwtIndex);
    }

    /**
     * Takes an instrument off the plot with its channels, curves and limit lines. Differences
     * against it end without a signal. Without its main instrument the plot has none (-1).
     */
    void removeDev(int qwtIndex);

    /** Plot index of the main instrument, -1 when there is none. */
    int getDevMain() const { return m_records.mainIndex(); }

    /**
     * Makes the instrument the main one, alone on show. A negative index applies the main
     * instrument once more; without one it announces that there is none (index -1 in the signals).
     */
    void setDevMain(int qwtIndex);

    /** The instrument's time origin; an invalid date-time when unknown. */
    QDateTime getStartDateTime(int qwtIndex = mainInstrument) const
    {
        return m_records.device(qwtIndex).startDateTime;
    }

    /** The clock that stamps points and tells which day is today; tests set their own. */
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }
    /** What that clock shows. */
    QDateTime now() const { return m_clock ? m_clock() : QDateTime::currentDateTime(); }

    /** Tells when to paint, the plot and whatever else shows its points. */
    FrameClock &frameClock() { return m_frameClock; }

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
    void clear(int qwtIndex = mainInstrument);

    /** Empties all series of the instrument and makes `start` its time origin. */
    void prepareMeas(int qwtIndex, const QDateTime &start);

    // Channels

    /** Grows or shrinks the instrument to `count` channels; 255 is ignored. */
    void setChCount(uchar count, int qwtIndex = mainInstrument);
    /** Number of channels, 0 when the instrument is unknown. */
    uchar getChCount(int qwtIndex = mainInstrument) const
    {
        return static_cast<uchar>(m_records.device(qwtIndex).ch.size());
    }

    /** Makes `ch` the main channel and hides the others. */
    void setChMain(uchar ch = mainChannel, int qwtIndex = mainInstrument);
    /** The main channel, -1 when the instrument is unknown or has no channels. */
    int getChMain(int qwtIndex = mainInstrument) const
    {
        const _dev &device = m_records.device(qwtIndex);
        return device.ch.isEmpty() ? -1 : device.mainCh;
    }

    /**
     * Makes the channel the difference against a channel of an instrument on the plot, from its
     * first point on; 255 and -1 end the difference. A reference that does not exist leaves it as
     * it was. Either way the channel follows its newest points from then on.
     */
    void setChDiff(uchar diffCh, int diffQwtIndex, int qwtIndex = mainInstrument,
                   uchar ch = mainChannel);
    /** The channel's reference channel; 255 and -1 when it has none that is on the plot. */
    void getChDiff(uchar *diffCh, int *diffQwtIndex, int qwtIndex = mainInstrument,
                   uchar ch = mainChannel) const
    {
        const ChannelNumber reference = m_records.referenceOf(m_records.channel(qwtIndex, ch));
        *diffCh = reference.ch;
        *diffQwtIndex = reference.qwtIndex;
    }

    // Values. `diff` asks for the difference series, where the channel has one. `index` counts
    // points from 0; -1, or one that does not exist, means the latest point.

    /** Number of points, 0 when unknown. */
    int getChMeasCount(int qwtIndex = mainInstrument, uchar ch = mainChannel,
                       bool diff = true) const
    {
        return m_records.channel(qwtIndex, ch).values(diff).size();
    }
    /** Value of a point, 0 when there is none. */
    double getChMeas(int qwtIndex = mainInstrument, uchar ch = mainChannel, int index = latestPoint,
                     bool diff = true) const
    {
        return m_records.channel(qwtIndex, ch).valueAt(index, diff);
    }
    /** Time of a point in seconds, 0 when there is none. */
    double getChTime(int qwtIndex = mainInstrument, uchar ch = mainChannel, int index = latestPoint,
                     bool diff = true) const
    {
        return m_records.channel(qwtIndex, ch).timeAt(index, diff);
    }

    /**
     * Value as text; "--" when there is none or the latest point was rejected. `precision` is the
     * number of decimals, below 0 the one that suits the Y scale; two are always written.
     */
    QString getChMeasStr(int qwtIndex = mainInstrument, uchar ch = mainChannel,
                         signed char precision = decimalsOfScale, int index = latestPoint,
                         bool diff = true) const
    {
        return m_records.valueText(qwtIndex, ch, precision, index, diff);
    }
    /**
     * Moving average as text, of the difference whenever there is one, whatever `diff` says; "--"
     * when the latest point was rejected, "" when there is no value.
     */
    QString getChAverStr(int qwtIndex = mainInstrument, uchar ch = mainChannel,
                         signed char precision = decimalsOfScale, int index = latestPoint,
                         bool /*diff*/ = true) const
    {
        return m_records.averageText(qwtIndex, ch, precision, index);
    }
    /** Time of a measured point in whole seconds, whatever `diff` says; "" when there is none. */
    QString getChTimeStr(int qwtIndex = mainInstrument, uchar ch = mainChannel,
                         int index = latestPoint, bool /*diff*/ = true) const
    {
        return m_records.timeText(qwtIndex, ch, index);
    }
    /** Seconds between the two newest points, one decimal; "" with fewer than two. */
    QString getChDXStr(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.timeStepText(qwtIndex, ch);
    }
    /** Change between the two newest points; "" with fewer than two. */
    QString getChDYStr(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.valueStepText(qwtIndex, ch);
    }
    /** Unit text of the latest point; "-" when unknown. */
    QString getChDim(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.channel(qwtIndex, ch).dim;
    }

    // Appearance

    void setChColor(const QColor &color, int qwtIndex = mainInstrument, uchar ch = mainChannel);
    /** Colour of the channel's curves, white when unknown. */
    QColor getChColor(int qwtIndex = mainInstrument, uchar ch = mainChannel) const;
    void setChShow(bool show, int qwtIndex = mainInstrument, uchar ch = mainChannel);
    bool getChShow(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.channel(qwtIndex, ch).show;
    }
    void setDevShow(bool show, int qwtIndex = mainInstrument);
    void setMeasShow(bool show, int qwtIndex = mainInstrument);
    /** Switches the curves of values and returns the new state. */
    bool toggleMeasShow(int qwtIndex = mainInstrument)
    {
        setMeasShow(!getMeasShow(qwtIndex), qwtIndex);
        return getMeasShow(qwtIndex);
    }
    /** True when unknown. */
    bool getMeasShow(int qwtIndex = mainInstrument) const
    {
        return m_records.device(qwtIndex).measShow;
    }
    void setAverShow(bool show, int qwtIndex = mainInstrument);
    /** Switches the curves of averages and returns the new state. */
    bool toggleAverShow(int qwtIndex = mainInstrument)
    {
        setAverShow(!getAverShow(qwtIndex), qwtIndex);
        return getAverShow(qwtIndex);
    }
    /** True when unknown. */
    bool getAverShow(int qwtIndex = mainInstrument) const
    {
        return m_records.device(qwtIndex).averShow;
    }

    /**
     * Chooses the limits that raise an alarm: hides both limit lines and, unless they are switched
     * off, lets the user place those of `mode` with the mouse (ModeLimits).
     */
    void setModeTrack(TmcTrackingMode mode, int qwtIndex = mainInstrument);
    /** TrackOff when unknown or without channels. */
    TmcTrackingMode getModeTrack(int qwtIndex = mainInstrument) const
    {
        const _dev &device = m_records.device(qwtIndex);
        return device.ch.isEmpty() ? TrackOff : device.modeTrack;
    }

    // Scales and modes. A scale is the index of a step in scalesX() or scalesY(); 0
    // chooses by itself.

    /** Number of steps that the X axis spans, at least 1. */
    void setDivX(uchar divisions);
    /** Number of steps that the Y axis spans, at least 2. */
    void setDivY(uchar divisions);

    /** Sets the decimals that suit a step of scalesY(). */
    void calcPrecision(uchar scaleY, int qwtIndex = mainInstrument, uchar ch = mainChannel);
    uchar getPrecision(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.channel(qwtIndex, ch).precision;
    }
    void setChScaleX(uchar scale, int qwtIndex = mainInstrument, uchar ch = mainChannel);
    uchar getChScaleX(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.channel(qwtIndex, ch).scaleX;
    }
    void setChScaleY(uchar scale, int qwtIndex = mainInstrument, uchar ch = mainChannel);
    uchar getChScaleY(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.channel(qwtIndex, ch).scaleY;
    }
    void setChMode(TmcMode mode, int qwtIndex = mainInstrument, uchar ch = mainChannel);
    TmcMode getChMode(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.channel(qwtIndex, ch).mode;
    }
    void setChModeX(TmcModeX mode, int qwtIndex = mainInstrument, uchar ch = mainChannel);
    TmcModeX getChModeX(int qwtIndex = mainInstrument, uchar ch = mainChannel) const
    {
        return m_records.channel(qwtIndex, ch).modeX;
    }

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
    void changeMode(int mode) { setChMode(static_cast<TmcMode>(mode)); }
    void changeModeX(int mode) { setChModeX(static_cast<TmcModeX>(mode)); }
    void changeScaleX(int indexX) { setChScaleX(scaleNumber(indexX)); }
    void changeScaleY(int indexY) { setChScaleY(scaleNumber(indexY)); }

    /** Recomputes the axes from the main channel's data, mode and scales. */
    void applyScale();
    /** Refreshes the caption in the corner of the canvas, and the decimals along the value axis. */
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
    /** Of a number that is no scale, one that is none either. */
    static uchar scaleNumber(int index)
    {
        return static_cast<uchar>(index < 0 ? 255 : qMin(index, 255));
    }
    bool ensureChannel(int qwtIndex, uchar ch);
    void removeLastChannel(int qwtIndex);
    void announce(int qwtIndex, const PointBatch &batch);
    void announce(PointBatch::Event event, int qwtIndex, uchar ch);
    void endDifference(const ChannelNumber &number);
    void passSignalsOn();
    void showFrame(FrameExtent extent);

    PlotCanvas *m_canvas; ///< belongs to the plot
    PlotRecords m_records;
    std::function<QDateTime()> m_clock; ///< none: that of the computer
    FrameClock m_frameClock;
    std::unique_ptr<PlotAxes> m_axes;
    std::unique_ptr<PlotInteraction> m_interaction;
    std::unique_ptr<PlotSettings> m_settings;
};
