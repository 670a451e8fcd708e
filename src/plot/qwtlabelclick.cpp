#include "plot/qwtlabelclick.h"

#include <QMouseEvent>

QwtLabelClick::QwtLabelClick(QWidget *parent)
    : QLabel(parent)
{
    setCursor(Qt::PointingHandCursor);
    setTextFormat(Qt::PlainText);
}

void QwtLabelClick::mousePressEvent(QMouseEvent *event)
{
    event->accept(); // the plot below would take the click for one of its own
    emit clicked();
}

void QwtLabelClick::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
}
