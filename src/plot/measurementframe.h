#pragma once

#include "plot/valueframe.h"

/** What is known between the two points of a measurement, as texts. */
struct MeasurementTexts {
    QString x1;
    QString y1;
    QString x2;
    QString y2;
    QString deltaX;
    QString deltaY;
    QString mean;
    QString deviation;
    QString count;
};

/** Shows what lies between the two points of a measurement. */
class MeasurementFrame : public ValueFrame
{
    Q_OBJECT
public:
    explicit MeasurementFrame(QWidget *plot);

    void setTexts(const MeasurementTexts &texts);
};
