#pragma once

#include "plot/qwtnox.h"

#include <QMouseEvent>
#include <QtTest>
#include <QWheelEvent>

/**
 * A mouse on a plot that is on the screen. Its events go to the window, as those of a real mouse
 * do: the widget below gets them, or the one on which a button is held. Places are pixels of the
 * canvas.
 */
class PlotMouse
{
public:
    explicit PlotMouse(QwtNOX &plot)
        : m_plot(plot)
    {
        plot.resize(800, 500);
        plot.show();
        QVERIFY(QTest::qWaitForWindowExposed(&plot));
    }

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
        QWheelEvent event(onWindow(at), m_plot.canvas()->mapToGlobal(at), QPoint(),
                          QPoint(0, away ? 120 : -120), m_buttons, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_plot.window()->windowHandle(), &event);
    }

private:
    QPointF onWindow(const QPoint &at) const { return m_plot.canvas()->mapTo(m_plot.window(), at); }
    void send(QEvent::Type type, const QPoint &at, Qt::MouseButton button)
    {
        QMouseEvent event(type, onWindow(at), onWindow(at), m_plot.canvas()->mapToGlobal(at),
                          button, m_buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(m_plot.window()->windowHandle(), &event);
    }

    QwtNOX &m_plot;
    Qt::MouseButtons m_buttons;
};
