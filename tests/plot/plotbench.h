#pragma once

#include "plot/series.h"
#include "plotmouse.h"

#include <QImage>
#include <QLabel>
#include <QMetaMethod>
#include <QRegularExpression>
#include <qwt_plot_marker.h>
#include <qwt_plot_textlabel.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>

#include <cmath>
#include <memory>
#include <tuple>
#include <utility>

using Numbers = QVector<double>;

inline Series seriesOf(const Numbers &numbers)
{
    Series series;
    for (const double number : numbers)
        series.append(number);
    return series;
}

/** Of a Series or of MovingAverages. */
template<typename Values>
Numbers numbersOf(const Values &values)
{
    Numbers numbers;
    for (int i = 0; i < values.size(); ++i)
        numbers.append(values[i]);
    return numbers;
}

/** True where something was drawn in the colour on white, be it smoothed. */
inline bool isInked(QRgb pixel, const QColor &color)
{
    const auto isBetween = [](int seen, int drawn) {
        return 255 - seen >= 0.4 * (255 - drawn) && seen >= drawn - 60;
    };
    return isBetween(qRed(pixel), color.red()) && isBetween(qGreen(pixel), color.green()) &&
           isBetween(qBlue(pixel), color.blue());
}

/** True when a dotted line of the colour, level or upright, was drawn there, be it a pixel beside.
 */
inline bool isDotted(const QImage &picture, const QPoint &from, const QPoint &to,
                     const QColor &color)
{
    const QPoint along = from.y() == to.y() ? QPoint(1, 0) : QPoint(0, 1);
    const int length = (to - from).manhattanLength();
    int best = 0;
    for (const int beside : {-1, 0, 1}) {
        int inked = 0;
        for (int i = 0; i < length; ++i)
            inked += isInked(picture.pixel(from + i * along + beside * along.transposed()), color);
        best = std::max(best, inked);
    }
    return best > 0.2 * length && best < 0.9 * length;
}

/** The smallest rectangle around what is drawn in the colour, of a part of a picture. */
inline QRect inkOf(const QImage &picture, const QRect &part, const QColor &color)
{
    QRect ink;
    const QRect seen = part & picture.rect();
    for (int y = seen.top(); y <= seen.bottom(); ++y)
        for (int x = seen.left(); x <= seen.right(); ++x)
            if (isInked(picture.pixel(x, y), color))
                ink |= QRect(x, y, 1, 1);
    return ink;
}

/**
 * For each test a plot of two instruments with two channels each, the first one on show, a mouse on
 * it, and a clock that stands still.
 */
class PlotTest : public QObject
{
    Q_OBJECT

protected:
    QwtNOX &plot() const { return *m_plot; }
    PlotMouse &mouse() const { return *m_mouse; }
    /**
     * What was announced since the last call, in order, as "signal qwtIndex [channel] [value]":
     * "Change 0" is onChange(), "ChMode 0 1 2" onChModeChange().
     */
    QString told() { return std::exchange(m_told, {}).join(", "); }

    /** Begins with another plot. */
    void renew()
    {
        m_mouse.reset();
        m_plot = std::make_unique<QwtNOX>();
        using Plot = QwtNOX;
        follow(&Plot::onChScaleXChange, &Plot::onChScaleYChange, &Plot::onChColorChange,
               &Plot::onChShowChange, &Plot::onChMainChange, &Plot::onChModeXChange,
               &Plot::onChModeChange, &Plot::onModeTrackChange, &Plot::onMeasShowChange,
               &Plot::onAverShowChange, &Plot::onAddPoint, &Plot::onAddCh, &Plot::onChange,
               &Plot::onDevChange, &Plot::onPointTrackOff, &Plot::onErrorAddPoint);
        now = QDateTime({2026, 3, 1}, {23, 0});
        plot().setClock([this] { return now; });
        plot().addDev(0, 2);
        plot().addDev(1, 2);
        plot().setDevMain(0);
        plot().setChMode(ModeAuto);
        told();
        m_mouse = std::make_unique<PlotMouse>(plot());
    }
    /** Points of channel 0 at 0, 1 ... `last` seconds, rising from 20 by 0.01. */
    void withRamp(int last = 65)
    {
        for (int second = 0; second <= last; ++second)
            add(20 + second * 0.01, second);
        told();
    }
    bool add(double value, double time, int ch = 0, int qwtIndex = 0)
    {
        return plot().addPoint(value, time, "°С", qwtIndex, uchar(ch));
    }

    /** What is read of a channel: count, value, average, time, unit, and the newest steps. */
    QString row(int qwtIndex, int channel) const
    {
        const auto ch = uchar(channel);
        return QStringList({QString::number(plot().getChMeasCount(qwtIndex, ch)),
                            plot().getChMeasStr(qwtIndex, ch), plot().getChAverStr(qwtIndex, ch),
                            plot().getChTimeStr(qwtIndex, ch), plot().getChDim(qwtIndex, ch),
                            plot().getChDXStr(qwtIndex, ch), plot().getChDYStr(qwtIndex, ch)})
            .join('|');
    }

    // What the axes show, as "0 to 100 by 10".
    QString seenX() const { return view(QwtPlot::xBottom); }
    QString seenY() const { return view(QwtPlot::yLeft); }
    QString seenViews() const { return seenX() + ", " + seenY(); }
    /** The middle of what is shown. */
    QPointF middleOfView() const
    {
        const auto of = [](const QwtInterval &shown) {
            return (shown.minValue() + shown.maxValue()) / 2;
        };
        return {of(plot().axisInterval(QwtPlot::xBottom)), of(plot().axisInterval(QwtPlot::yLeft))};
    }
    double stepX() const { return plot().axisStepSize(QwtPlot::xBottom); }
    double stepY() const { return plot().axisStepSize(QwtPlot::yLeft); }
    QString labelX(double value) const
    {
        return plot().axisScaleDraw(QwtPlot::xBottom)->label(value).text();
    }

    /** The crosses of the measurement, the first one first; those that are seen, or the others. */
    QVector<QPointF> seenCrosses(bool areSeen = true) const
    {
        QVector<QPointF> points;
        for (const QwtPlotItem *item : plot().itemList(QwtPlotItem::Rtti_PlotMarker)) {
            const auto *marker = static_cast<const QwtPlotMarker *>(item);
            if (marker->lineStyle() == QwtPlotMarker::Cross && marker->isVisible() == areSeen)
                points.append(marker->value());
        }
        return points;
    }
    /** Upper and lower limit of an instrument; "-" for one that is not seen. */
    QString seenLimits(int qwtIndex = 0) const
    {
        const QwtNOX::_dev device = plot().devices().value(qwtIndex);
        const auto text = [](const QwtPlotMarker *limit) {
            return limit->isVisible() ? QString::number(limit->yValue(), 'f', 2) : QString("-");
        };
        return text(device.upperMarker) + ' ' + text(device.lowerMarker);
    }

    QwtText caption() const
    {
        const auto items = plot().itemList(QwtPlotItem::Rtti_PlotTextLabel);
        return static_cast<const QwtPlotTextLabel *>(items.value(0))->text();
    }
    QWidget *frameOf(const char *name) const { return plot().findChild<QWidget *>(name); }
    /** What the mouse has come to: the mode, the number of crosses, and the frames on show. */
    QString state() const
    {
        return plot().getChModeLabel() + ' ' + QString::number(seenCrosses().size()) +
               (frameOf("pointFrame")->isVisible() ? " point" : "") +
               (frameOf("measurementFrame")->isVisible() ? " interval" : "");
    }
    /** What labels say. */
    QStringList textsOf(const QStringList &names) const
    {
        QStringList texts;
        for (const QString &name : names)
            texts += plot().findChild<QLabel *>(name)->text();
        return texts;
    }

    /** What is seen on the canvas. */
    QImage grabbed()
    {
        plot().updateLayout();
        plot().replot();
        return plot().canvas()->grab().toImage();
    }

    QDateTime now;

private slots:
    void init() { renew(); }

private:
    static QString text(int number) { return QString::number(number); }
    static QString text(const QColor &color) { return color.name(); }

    template<typename... Signals>
    void follow(Signals... signalsOfPlot)
    {
        (followOne(signalsOfPlot), ...);
    }
    template<typename... Arguments>
    void followOne(void (QwtNOX::*signal)(Arguments...))
    {
        const QString name = QString(QMetaMethod::fromSignal(signal).name().mid(2))
                                 .remove(QRegularExpression("\\BChange$"));
        connect(&plot(), signal, this, [this, name](Arguments... arguments) {
            m_told.append((QStringList(name) + ... + QStringList(text(arguments))).join(' '));
        });
    }
    QString view(int axis) const
    {
        const double step = plot().axisStepSize(axis);
        const auto text = [step](double value) {
            return QString::number(std::round(value / step * 1000) * step / 1000 + 0.0, 'g', 9);
        };
        const QwtInterval shown = plot().axisInterval(axis);
        return QString("%1 to %2 by %3")
            .arg(text(shown.minValue()), text(shown.maxValue()), QString::number(step));
    }

    QStringList m_told;
    std::unique_ptr<QwtNOX> m_plot;
    std::unique_ptr<PlotMouse> m_mouse;
};
