#include "mouse.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>

namespace
{

void send(QWidget *target, QEvent::Type type, const QPoint &place, Qt::MouseButtons held)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, target->mapToGlobal(place), button, held, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &event);
}

} // namespace

void dragMouse(QWidget *target, const QPoint &from, const QPoint &to)
{
    constexpr int steps = 8;
    send(target, QEvent::MouseMove, from, Qt::NoButton);
    send(target, QEvent::MouseButtonPress, from, Qt::LeftButton);
    for (int step = 1; step <= steps; ++step)
        send(target, QEvent::MouseMove, from + (to - from) * step / steps, Qt::LeftButton);
    send(target, QEvent::MouseButtonRelease, to, Qt::NoButton);
}

void clickMouse(QWidget *target, const QPoint &place)
{
    send(target, QEvent::MouseButtonPress, place, Qt::LeftButton);
    send(target, QEvent::MouseButtonRelease, place, Qt::NoButton);
}
