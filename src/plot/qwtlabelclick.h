#pragma once

#include <QLabel>

/** A label on the plot that can be clicked; it shows the pointing hand. */
class QwtLabelClick : public QLabel
{
    Q_OBJECT
public:
    explicit QwtLabelClick(QWidget *parent = nullptr);

signals:
    /** A mouse button was pressed on the label. */
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
};
