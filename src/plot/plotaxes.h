#pragma once

#include "plot/scalechoice.h"

#include <QDate>
#include <QPointF>
#include <QString>
#include <qwt_plot.h>

class PlotRecords;
class QwtNOX;
class QwtPlotTextLabel;
struct ChannelNumber;
struct PlotChannel;

/**
 * The axes of the plot, which show the main channel of the main instrument, and the caption that
 * names their steps. What they show changes at once, with the place of the canvas; painting is left
 * to the plot. An axis is QwtPlot::xBottom, in seconds, or QwtPlot::yLeft.
 */
class PlotAxes
{
public:
    /** Sets up the axes of `plot` and adds the caption, which the plot owns. */
    PlotAxes(QwtNOX *plot, PlotRecords &records);

    /** Number of steps that an axis spans, at least 1 for X and 2 for Y. */
    void setDivisions(int axis, int divisions);

    /** Index of the step in effect, chosen by the user or by the data; 0 before any choice. */
    int step(int axis) const { return axisState(axis).step; }
    /** The steps in effect; 0 where none was chosen yet. */
    ScaleSteps chosenSteps() const { return {m_x.step, m_y.step}; }
    /** The steps in effect; where none was chosen, those of what the axes show. */
    ScaleSteps stepsInEffect() const;
    /** How the step in effect is called. */
    QString stepLabel(int axis) const;

    /** What an axis shows at present. */
    AxisView view(int axis) const;
    /** Middle of what both axes show. */
    QPointF middle() const
    {
        return {view(QwtPlot::xBottom).middle(), view(QwtPlot::yLeft).middle()};
    }

    /** The steps that were chosen for a channel come into effect; what is shown stays. */
    void useStepsOf(const PlotChannel &channel);
    /** Shows the newest points as the mode of the main channel says, which may choose the steps and
     * the channel's precision; then all labels. Nothing moves where the view is the user's. */
    void followPoints();
    /** Whether a new scale of that channel changes the view at once, and not the channel. */
    bool hasFreeView(const ChannelNumber &number) const;
    /** Shows the surroundings of a point by another step along one axis. */
    void showAround(int axis, const QPointF &centre, int step);
    /** Shows what was zoomed to. */
    void show(const ZoomedView &view);
    /** The view of a rectangle in seconds and values. */
    ZoomedView viewOf(const QRectF &rectangle) const;
    /** The view of `steps` around a point in seconds and values. */
    ZoomedView viewAround(const QPointF &centre, const ScaleSteps &steps) const;
    /** Moves the view along both axes, but not below 0 seconds. */
    void pan(const QPointF &way);
    /** Shows what is shown in the beginning, unless the main channel has points. */
    void reset();

    /** Labels the X axis as the main channel says. */
    void labelTimes();
    /** Labels the X axis anew when the day is another one: what was today needs its date. */
    void labelNewDay();
    /** Brings the decimals of the Y axis and the caption up to date. */
    void refreshLabels();

private:
    /** What the caption tells of the main channel. */
    struct CaptionParts {
        int ch = -1; ///< from 0; -1 without one: no caption
        QString unit;
        int stepX = 0;
        int stepY = 0;

        bool operator==(const CaptionParts &other) const
        {
            return ch == other.ch && stepX == other.stepX && stepY == other.stepY &&
                   unit == other.unit;
        }
    };
    struct AxisState {
        int divisions = 10; ///< number of steps that the axis spans
        int step = 0;       ///< index of the step in effect
    };
    AxisState &axisState(int axis) { return axis == QwtPlot::xBottom ? m_x : m_y; }
    const AxisState &axisState(int axis) const { return axis == QwtPlot::xBottom ? m_x : m_y; }

    void labelValues(int decimals);
    void writeCaption(const CaptionParts &parts);
    void followTimes(const PlotChannel &channel);
    void followValues(PlotChannel &channel);
    void setView(int axis, const AxisView &view);
    void reserveLabelSpace(int axis);

    QwtNOX *m_plot;
    PlotRecords &m_records;
    QwtPlotTextLabel *m_caption; ///< owned by the plot's item list
    AxisState m_x;
    AxisState m_y;
    CaptionParts m_captionParts; ///< what it shows at present
    int m_labelledDecimals = 0;  ///< with which the Y axis was labelled last
    QDate m_labelledDay;         ///< what was today when the X axis was labelled last
};
