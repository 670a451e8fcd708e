#pragma once

#include "plot/valueframe.h"

/** Shows the time and the value of the first point of a measurement. */
class PointFrame : public ValueFrame
{
    Q_OBJECT
public:
    explicit PointFrame(QWidget *plot);

    void setTexts(const QString &x, const QString &y);
};
