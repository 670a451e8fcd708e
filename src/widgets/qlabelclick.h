#pragma once

#include <QLabel>

/** A label that says when it is pressed. */
class QLabelClick : public QLabel
{
    Q_OBJECT
public:
    using QLabel::QLabel;

signals:
    /** A mouse button went down on the label. */
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
};
