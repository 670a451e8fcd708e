#include "plot/measurementframe.h"

namespace
{

QString bold(const QString &caption)
{
    return QStringLiteral("<b>") + caption + QStringLiteral("</b>");
}

} // namespace

MeasurementFrame::MeasurementFrame(QWidget *plot)
    : ValueFrame(plot)
{
    setObjectName(QStringLiteral("measurementFrame"));
    addValue(tr("X1:"), QStringLiteral("measurementX1"));
    addValue(tr("Y1:"), QStringLiteral("measurementY1"));
    addValue(tr("X2:"), QStringLiteral("measurementX2"));
    addValue(tr("Y2:"), QStringLiteral("measurementY2"));
    addGap();
    addValue(tr("ΔX:"), QStringLiteral("measurementDeltaX"));
    addValue(tr("ΔY:"), QStringLiteral("measurementDeltaY"));
    addGap();
    addValue(bold(tr("Среднее:")), QStringLiteral("measurementMean"));
    addValue(bold(tr("СКО:")), QStringLiteral("measurementDeviation"));
    addValue(bold(tr("Точек:")), QStringLiteral("measurementCount"));
}

void MeasurementFrame::setTexts(const MeasurementTexts &texts)
{
    ValueFrame::setTexts({texts.x1, texts.y1, texts.x2, texts.y2, texts.deltaX, texts.deltaY,
                          texts.mean, texts.deviation, texts.count});
}
