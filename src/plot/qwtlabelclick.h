#pragma once

#include <QLabel>
#include <QMouseEvent>

/** A label on the plot that can be clicked; it shows the pointing hand. */
class QwtLabelClick : public QLabel
{
    Q_OBJECT
public:
    explicit QwtLabelClick(QWidget *parent = nullptr)
        : QLabel(parent)
    {
        setCursor(Qt::PointingHandCursor);
        setTextFormat(Qt::PlainText);
    }

signals:
    /** A mouse button was pressed on the label. */
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        event->accept(); // the plot below would take the click for one of its own
        emit clicked();
    }
    void mouseReleaseEvent(QMouseEvent *event) override { event->accept(); }
};
