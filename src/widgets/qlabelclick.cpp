#include "widgets/qlabelclick.h"

void QLabelClick::mousePressEvent(QMouseEvent *event)
{
    QLabel::mousePressEvent(event);
    emit clicked();
}
