#include "widgets/qlabelclick.h"

#include <QKeyEvent>

void QLabelClick::mousePressEvent(QMouseEvent *event)
{
    QLabel::mousePressEvent(event);
    emit clicked();
}

void QLabelClick::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter)
        return QLabel::keyPressEvent(event);
    if (!event->isAutoRepeat())
        emit clicked();
}
