#include "plot/numbertext.h"

QString numberText(double number, int decimals)
{
    const QString text = QString::number(number, 'f', decimals);
    const bool isMinusZero = text.startsWith(QLatin1Char('-')) && text.toDouble() == 0;
    return isMinusZero ? text.mid(1) : text;
}
