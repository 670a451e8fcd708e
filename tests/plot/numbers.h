#pragma once

#include "plot/series.h"

#include <QVector>

using Numbers = QVector<double>;

inline Series seriesOf(const Numbers &numbers)
{
    Series series;
    for (const double number : numbers)
        series.append(number);
    return series;
}

/** Of a Series or of MovingAverages. */
template<typename Values>
Numbers numbersOf(const Values &values)
{
    Numbers numbers;
    for (int i = 0; i < values.size(); ++i)
        numbers.append(values[i]);
    return numbers;
}
