#pragma once

#include <QLabel>

/** A label that says when it is pressed: by the mouse, and by keys where it can have the focus. */
class QLabelClick : public QLabel
{
    Q_OBJECT
public:
    using QLabel::QLabel;

signals:
    /** A mouse button, Space or Return went down on the label. */
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
