#pragma once

#include "plot/qwtnox.h"

#include <QLabel>
#include <QMouseEvent>
#include <QtTest>
#include <QWheelEvent>
#include <qwt_plot_marker.h>

#include <cmath>

/**
 * A plot on the screen and a mouse on it. Its events go to the window, as those of a real mouse do:
 * the widget below gets them, or the one on which a button is held. Places are pixels of the
 * canvas.
 */
class PlotMouse
{
public:
    explicit PlotMouse(QwtNOX &plot)
        : m_plot(plot)
    {
        if (plot.isWindow()) {
            plot.resize(800, 500);
            plot.show();
        }
        m_isReady = QTest::qWaitForWindowExposed(plot.window());
    }

    bool isReady() const { return m_isReady; }

    /** Where a point of the axes is seen. */
    QPoint pixel(double x, double y) const
    {
        return QPointF(m_plot.transform(QwtPlot::xBottom, x), m_plot.transform(QwtPlot::yLeft, y))
            .toPoint();
    }
    /** What is seen at a place, in coordinates of the axes. */
    QPointF point(const QPoint &at) const
    {
        return {m_plot.invTransform(QwtPlot::xBottom, at.x()),
                m_plot.invTransform(QwtPlot::yLeft, at.y())};
    }
    QPoint middle() const { return m_plot.canvas()->rect().center(); }

    void press(const QPoint &at, Qt::MouseButton button = Qt::LeftButton)
    {
        m_buttons |= button;
        send(QEvent::MouseButtonPress, at, button);
    }
    void moveTo(const QPoint &at) { send(QEvent::MouseMove, at, Qt::NoButton); }
    void release(const QPoint &at, Qt::MouseButton button = Qt::LeftButton)
    {
        m_buttons &= ~Qt::MouseButtons(button);
        send(QEvent::MouseButtonRelease, at, button);
    }
    void click(const QPoint &at, Qt::MouseButton button = Qt::LeftButton)
    {
        moveTo(at);
        press(at, button);
        release(at, button);
    }
    void clickOn(const QWidget *widget, Qt::MouseButton button = Qt::LeftButton)
    {
        const QPoint onPlot = widget->mapTo(&m_plot, widget->rect().center());
        click(m_plot.canvas()->mapFrom(&m_plot, onPlot), button);
    }
    /** Presses, moves in eight steps and keeps the button down. */
    void pull(const QPoint &from, const QPoint &to, Qt::MouseButton button = Qt::LeftButton)
    {
        moveTo(from);
        press(from, button);
        for (int step = 1; step <= 8; ++step)
            moveTo(from + (to - from) * step / 8);
    }
    void drag(const QPoint &from, const QPoint &to, Qt::MouseButton button = Qt::LeftButton)
    {
        pull(from, to, button);
        release(to, button);
    }
    /** Turns the wheel by a notch: away from the user, which shows less, or towards him. */
    void wheel(const QPoint &at, bool away)
    {
        moveTo(at);
        const QPointF onWindow = m_plot.canvas()->mapTo(m_plot.window(), at);
        QWheelEvent event(onWindow, m_plot.canvas()->mapToGlobal(at), QPoint(),
                          QPoint(0, away ? 120 : -120), m_buttons, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_plot.window()->windowHandle(), &event);
    }

private:
    void send(QEvent::Type type, const QPoint &at, Qt::MouseButton button)
    {
        const QPoint onWindow = m_plot.canvas()->mapTo(m_plot.window(), at);
        QMouseEvent event(type, onWindow, onWindow, m_plot.canvas()->mapToGlobal(at), button,
                          m_buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(m_plot.window()->windowHandle(), &event);
    }

    QwtNOX &m_plot;
    Qt::MouseButtons m_buttons;
    bool m_isReady = false;
};

/** A plot of two instruments with two channels each, the first one on show, and a mouse on it. */
class PlotOnScreen
{
public:
    PlotOnScreen()
    {
        plot.setClock([this] { return now; });
        plot.addDev(0, 2);
        plot.addDev(1, 2);
        plot.setDevMain(0);
        plot.setChMode(ModeAuto);
    }

    /** Points of channel 0 at 0, 1 ... `last` seconds, rising from 20 by 0.01. */
    void addRamp(int last)
    {
        for (int second = 0; second <= last; ++second)
            add(20 + second * 0.01, second);
    }
    void add(double value, double time, uchar ch = 0, int qwtIndex = 0)
    {
        plot.addPoint(value, time, "°С", qwtIndex, ch);
    }

    double lower(int axis) const { return plot.axisInterval(axis).minValue(); }
    double upper(int axis) const { return plot.axisInterval(axis).maxValue(); }
    double step(int axis) const { return plot.axisStepSize(axis); }
    double middle(int axis) const { return (lower(axis) + upper(axis)) / 2; }
    bool shows(int axis, double from, double step) const
    {
        const double tiny = step * 1e-6;
        return std::abs(lower(axis) - from) < tiny &&
               std::abs(upper(axis) - (from + 10 * step)) < tiny && this->step(axis) == step;
    }

    /** The crosses of the measurement that are seen, the first one first. */
    QVector<QPointF> crosses() const { return markers(QwtPlotMarker::Cross); }
    /** The limits that are seen. */
    QVector<QPointF> limits() const { return markers(QwtPlotMarker::HLine); }
    QwtPlotItem *anyCross() const { return findMarkers(QwtPlotMarker::Cross).value(0); }

    QWidget *frame(const char *name) const { return plot.findChild<QWidget *>(name); }
    QLabel *label(const char *name) const { return plot.findChild<QLabel *>(name); }
    QString text(const char *name) const { return label(name)->text(); }
    QObject *picker(const char *name) const { return plot.findChild<QObject *>(name); }

    QDateTime now{{2026, 3, 1}, {23, 0}};
    QwtNOX plot;
    PlotMouse mouse{plot};

private:
    QVector<QwtPlotMarker *> findMarkers(QwtPlotMarker::LineStyle style) const
    {
        QVector<QwtPlotMarker *> found;
        for (QwtPlotItem *item : plot.itemList(QwtPlotItem::Rtti_PlotMarker)) {
            auto *marker = static_cast<QwtPlotMarker *>(item);
            if (marker->lineStyle() == style)
                found.append(marker);
        }
        return found;
    }
    QVector<QPointF> markers(QwtPlotMarker::LineStyle style) const
    {
        QVector<QPointF> points;
        for (const QwtPlotMarker *marker : findMarkers(style))
            if (marker->isVisible())
                points.append(marker->value());
        return points;
    }
};
