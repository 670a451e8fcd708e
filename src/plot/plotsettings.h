#pragma once

#include "plot/plotmodes.h"

#include <QColor>
#include <QObject>

class FrameClock;
class PlotAxes;
class PlotInteraction;
class PlotRecords;
struct ChannelNumber;
struct PlotDevice;

/**
 * How the instruments are looked at: which one and which of its channels in the first place, what
 * is visible in which colour, by which scales and modes. A setting is stored in the
 * records, applied to axes and mouse, and announced. Numbers are those of QwtNOX, which passes its
 * calls and these signals on.
 */
class PlotSettings : public QObject
{
    Q_OBJECT
public:
    PlotSettings(PlotRecords &records, PlotAxes &axes, PlotInteraction &interaction,
                 FrameClock &frameClock);

    // An instrument or channel that is not on the plot, and a value that does not exist, change
    // and announce nothing.

    /** Shows that instrument alone, its main channel by itself; a negative index means the main
     * one once more, and without one that there is none. */
    void setMainDevice(int qwtIndex);
    /** Shows that channel of its instrument alone; another one than before is followed anew. */
    void setMainChannel(uchar ch, int qwtIndex);

    /** Shows or hides all that is drawn of an instrument. */
    void setDeviceShown(bool show, int qwtIndex);
    /** Shows or hides one channel; its hidden instrument is shown with it, either way. */
    void setChannelShown(bool show, int qwtIndex, uchar ch);
    /** Shows or hides the curves of an instrument's values. */
    void setValuesShown(bool show, int qwtIndex);
    /** Shows or hides the curves of an instrument's averages. */
    void setAveragesShown(bool show, int qwtIndex);
    /** Draws both curves of a channel in `color`. */
    void setColor(const QColor &color, int qwtIndex, uchar ch);

    /** Which limits of an instrument are watched; with any, its main channel is in ModeLimits. */
    void setTrackingMode(TmcTrackingMode mode, int qwtIndex);
    /** What the axes follow and the mouse does while the channel is the main one. */
    void setMode(TmcMode mode, int qwtIndex, uchar ch);
    /** How the times of the channel are written, on the axis and in the measurement. */
    void setModeX(TmcModeX mode, int qwtIndex, uchar ch);
    /** Chooses a step of scalesX() by its index, 0 for "Авто": of the channel, which is followed
     * then, or of the view alone where that is the user's. */
    void setScaleX(uchar scale, int qwtIndex, uchar ch);
    /** The same with scalesY(). */
    void setScaleY(uchar scale, int qwtIndex, uchar ch);
    /** Sets the decimals that suit a step of scalesY(). */
    void setPrecisionFor(uchar scaleY, int qwtIndex, uchar ch);

    /** Lets the axes follow the main channel, and asks for a frame. */
    void rescale();

signals:
    // As the signals of QwtNOX; changed() comes after those of the main instrument and channel, and
    // before the others. What is shown of a channel changes without it.

    void changed(int qwtIndex);
    void mainDeviceChanged(int qwtIndex);
    void mainChannelChanged(int qwtIndex, uchar ch);
    void channelShownChanged(int qwtIndex, uchar ch, bool show);
    void valuesShownChanged(int qwtIndex, bool show);
    void averagesShownChanged(int qwtIndex, bool show);
    void colorChanged(int qwtIndex, uchar ch, QColor color);
    void trackingModeChanged(int qwtIndex, uchar ch, TmcTrackingMode mode);
    void modeChanged(int qwtIndex, uchar ch, TmcMode mode);
    void modeXChanged(int qwtIndex, uchar ch, TmcModeX mode);
    void scaleXChanged(int qwtIndex, uchar ch, uchar scale);
    void scaleYChanged(int qwtIndex, uchar ch, uchar scale);

private:
    void setCurvesShown(bool PlotDevice::*kind, void (PlotSettings::*kindChanged)(int, bool),
                        bool show, int qwtIndex);
    bool chooseScale(int axis, uchar scale, const ChannelNumber &number);

    PlotRecords &m_records;
    PlotAxes &m_axes;
    PlotInteraction &m_interaction;
    FrameClock &m_frameClock;
};
