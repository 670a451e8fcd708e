#include "widgets/mlineedit.h"

#include <QKeyEvent>

void mLineEdit::mousePressEvent(QMouseEvent *event)
{
    emit clicked();
    QLineEdit::mousePressEvent(event);
}

void mLineEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        emit enterPress();
    QLineEdit::keyPressEvent(event);
}
