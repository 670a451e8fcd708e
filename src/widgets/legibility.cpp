#include "widgets/legibility.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double neededContrast = 4.5;
constexpr double flare = 0.05; ///< of the screen, as the WCAG assumes it

double linear(double component)
{
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QColor mixed(const QColor &from, const QColor &to, double part)
{
    const auto mix = [part](int one, int other) { return qRound(one + (other - one) * part); };
    return {mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue())};
}

} // namespace

double contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + flare) / (darker + flare);
}

QColor blended(const QColor &color, const QColor &ground)
{
    return mixed(ground, color, color.alphaF());
}

QColor legible(const QColor &text, const QColor &ground)
{
    constexpr int steps = 32;
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    QColor end = contrast(black, ground) >= contrast(white, ground) ? black : white;
    for (int step = 0; step < steps; ++step) {
        QColor color = mixed(text, end, double(step) / steps);
        if (contrast(color, ground) >= neededContrast)
            return color;
    }
    return end;
}
