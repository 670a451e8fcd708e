#pragma once

#include <QAccessible>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

/** Colour of what the keyboard acts on. */
inline QColor keyboardColor()
{
    return {0x1b, 0x74, 0x88};
}

/** A label on the plot that is clicked by the mouse, under a pointing hand, or by Space and Return,
 *  in a frame. */
class QwtLabelClick : public QLabel
{
    Q_OBJECT
public:
    explicit QwtLabelClick(QWidget *parent = nullptr)
        : QLabel(parent)
    {
        setCursor(Qt::PointingHandCursor);
        setTextFormat(Qt::PlainText);
        setFocusPolicy(Qt::TabFocus);
        setProperty("accessibleRole", int(QAccessible::Button));
    }

signals:
    /** A mouse button, Space or Return went down on the label. */
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        event->accept(); // the plot below would take the click for one of its own
        emit clicked();
    }
    void mouseReleaseEvent(QMouseEvent *event) override { event->accept(); }
    void keyPressEvent(QKeyEvent *event) override
    {
        const int key = event->key();
        if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter)
            return QLabel::keyPressEvent(event);
        if (!event->isAutoRepeat())
            emit clicked();
    }
    void paintEvent(QPaintEvent *event) override
    {
        QLabel::paintEvent(event);
        if (!hasFocus())
            return;
        QPainter painter(this);
        painter.setPen(keyboardColor());
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
};
