#include "examples/fittable.h"

#include "device/callendarvandusen.h"

#include <QVector>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

constexpr int thermometers = 1000;
constexpr int steps = 200;
constexpr int lastFittedStep = steps * 99 / 100;
constexpr double millikelvin = 1000.0;

struct Range {
    double lowest;
    double highest;
};

constexpr Range ranges[] = {{-200, 850}, {-200, 660}, {-100, 450}, {-50, 200}, {-200, 0},
                            {0, 850},    {0, 660},    {0, 420},    {0, 200},   {0, 100}};

/** Largest errors over a range, mK, of the ways in which the polynomial can be evaluated. */
struct Errors {
    double fitted = 0;          ///< in double precision throughout
    double fittedInside = 0;    ///< the same, but not above the last fitted point
    double stored = 0;          ///< coefficients of single precision, evaluated in double
    double storedAndSingle = 0; ///< evaluated in single precision too
};

/** A thermometer of IEC 60751 whose numbers, as those that are entered, are of single precision. */
CallendarVanDusen platinum(float r0, const Range &range)
{
    return {r0, 3.9083e-3F, -5.775e-7F, -4.183e-12F, range.lowest, range.highest};
}

double evaluateInSingle(const TemperaturePolynomial &polynomial, float resistance)
{
    float celsius = 0.0F;
    for (std::size_t k = polynomial.size(); k-- > 0;)
        celsius = celsius * resistance + float(polynomial[k]);
    return double(celsius);
}

void raise(double &largest, double celsius, double expected)
{
    largest = std::max(largest, std::abs(celsius - expected) * millikelvin);
}

Errors errorsOf(const CallendarVanDusen &thermometer)
{
    const TemperaturePolynomial fitted = fitTemperaturePolynomial(thermometer);
    TemperaturePolynomial stored = fitted;
    for (double &coefficient : stored)
        coefficient = double(float(coefficient));

    Errors errors;
    const double range = thermometer.highest - thermometer.lowest;
    for (int i = 0; i <= steps; ++i) {
        const double celsius = thermometer.lowest + range * i / steps;
        const double resistance = thermometer.resistance(celsius);
        raise(errors.fitted, evaluate(fitted, resistance), celsius);
        if (i <= lastFittedStep)
            raise(errors.fittedInside, evaluate(fitted, resistance), celsius);
        raise(errors.stored, evaluate(stored, resistance), celsius);
        raise(errors.storedAndSingle, evaluateInSingle(stored, float(resistance)), celsius);
    }
    return errors;
}

/** Thermometers that differ by 0.1 mΩ each. */
QVector<Errors> errorsOver(const Range &range)
{
    QVector<Errors> all;
    for (int i = -thermometers / 2; i < thermometers / 2; ++i)
        all << errorsOf(platinum(float(100.0 + 1e-4 * i), range));
    return all;
}

/** The error that so many of 1000 thermometers do not exceed. */
double quantile(const QVector<Errors> &all, double Errors::*error, int ofThousand)
{
    QVector<double> sorted;
    for (const Errors &errors : all)
        sorted << errors.*error;
    std::sort(sorted.begin(), sorted.end());
    return sorted.at((sorted.size() - 1) * ofThousand / 1000);
}

/** Two digits of what the shape of the curve causes; a bound for what rounding does. */
QString errorText(double error)
{
    for (const double bound : {0.05, 0.2, 0.5, 1.0})
        if (error < bound)
            return QStringLiteral("< %1").arg(bound);
    return QString::number(error, 'g', 2);
}

QString spreadText(const QVector<Errors> &all)
{
    const double half = quantile(all, &Errors::storedAndSingle, 500);
    const double worst = quantile(all, &Errors::storedAndSingle, 1000);
    if (worst < 5 * half)
        return QStringLiteral("all alike");
    const bool isCommon = quantile(all, &Errors::storedAndSingle, 990) > 1.0;
    return isCommon ? QStringLiteral("1 in 100: > 1") : QStringLiteral("few apart");
}

QString line(const QString &range, const std::array<QString, 5> &cells)
{
    QString text = range.leftJustified(13);
    for (const QString &cell : cells)
        text += cell.rightJustified(15);
    return text;
}

QString lineOf(const Range &range)
{
    const QVector<Errors> all = errorsOver(range);
    const auto half = [&all](double Errors::*error) {
        return errorText(quantile(all, error, 500));
    };
    return line(QStringLiteral("%1 ... %2").arg(range.lowest, 4).arg(range.highest),
                {half(&Errors::fitted), half(&Errors::fittedInside), half(&Errors::stored),
                 half(&Errors::storedAndSingle), spreadText(all)});
}

} // namespace

QStringList fitTable()
{
    QStringList lines{line("range, °C", {"fitted", "inside", "stored", "single", "spread"})};
    for (const Range &range : ranges)
        lines << lineOf(range);
    return lines;
}
