#include "plot/pointframe.h"

PointFrame::PointFrame(QWidget *plot)
    : ValueFrame(plot)
{
    setObjectName(QStringLiteral("pointFrame"));
    addValue(tr("X:"), QStringLiteral("pointX"));
    addValue(tr("Y:"), QStringLiteral("pointY"));
}

void PointFrame::setTexts(const QString &x, const QString &y)
{
    ValueFrame::setTexts({x, y});
}
