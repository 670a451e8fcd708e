#include "plot/scalechoice.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace
{

struct ScaleTexts {
    Q_DECLARE_TR_FUNCTIONS(QwtNOX)
};

/**
 * Index of the first step after "Авто" that fits, size() when none does. The steps are sorted, and
 * all that are coarser than one that fits do so, too.
 */
template<typename Table, typename Fits>
int firstFittingOrEnd(const Table &table, Fits fits)
{
    const auto found = std::partition_point(table.cbegin() + 1, table.cend(),
                                            [&](const auto &scale) { return !fits(scale.step); });
    return static_cast<int>(found - table.cbegin());
}

/** The same, but the last step when none fits. */
template<typename Table, typename Fits>
int firstFitting(const Table &table, Fits fits)
{
    return std::min(firstFittingOrEnd(table, fits), table.size() - 1);
}

/** First step that spans `width` with half a step to spare. */
template<typename Table>
int firstSpanning(const Table &table, double width, int divisions)
{
    return firstFitting(table,
                        [=](double step) { return std::ceil(width / step + 0.5) < divisions; });
}

/** Last step that is not above `size`. */
template<typename Table>
int lastUpTo(const Table &table, double size)
{
    const int coarser =
        firstFittingOrEnd(table, [size](double step) { return step > size * (1 + 1e-9); });
    return std::max(1, coarser - 1);
}

} // namespace

const QVector<TScaleX> &scalesX()
{
    static const QVector<TScaleX> table = {
        {ScaleTexts::tr("Авто"), 0},       {ScaleTexts::tr("1 сек."), 1},
        {ScaleTexts::tr("2 сек."), 2},     {ScaleTexts::tr("5 сек."), 5},
        {ScaleTexts::tr("10 сек."), 10},   {ScaleTexts::tr("15 сек."), 15},
        {ScaleTexts::tr("30 сек."), 30},   {ScaleTexts::tr("1 мин."), 60},
        {ScaleTexts::tr("2 мин."), 120},   {ScaleTexts::tr("5 мин."), 300},
        {ScaleTexts::tr("10 мин."), 600},  {ScaleTexts::tr("15 мин."), 900},
        {ScaleTexts::tr("30 мин."), 1800}, {ScaleTexts::tr("1 ч."), 3600},
        {ScaleTexts::tr("2 ч."), 7200},    {ScaleTexts::tr("5 ч."), 18000},
        {ScaleTexts::tr("10 ч."), 36000},  {ScaleTexts::tr("15 ч."), 54000},
        {ScaleTexts::tr("30 ч."), 108000},
    };
    return table;
}

const QVector<TScaleY> &scalesY()
{
    static const QVector<TScaleY> table = {
        {ScaleTexts::tr("Авто"), 0},
        {QStringLiteral("0.000001"), 0.000001},
        {QStringLiteral("0.000002"), 0.000002},
        {QStringLiteral("0.000005"), 0.000005},
        {QStringLiteral("0.00001"), 0.00001},
        {QStringLiteral("0.00002"), 0.00002},
        {QStringLiteral("0.00005"), 0.00005},
        {QStringLiteral("0.0001"), 0.0001},
        {QStringLiteral("0.0002"), 0.0002},
        {QStringLiteral("0.0005"), 0.0005},
        {QStringLiteral("0.001"), 0.001},
        {QStringLiteral("0.002"), 0.002},
        {QStringLiteral("0.005"), 0.005},
        {QStringLiteral("0.01"), 0.01},
        {QStringLiteral("0.02"), 0.02},
        {QStringLiteral("0.05"), 0.05},
        {QStringLiteral("0.1"), 0.1},
        {QStringLiteral("0.2"), 0.2},
        {QStringLiteral("0.5"), 0.5},
        {QStringLiteral("1"), 1},
        {QStringLiteral("2"), 2},
        {QStringLiteral("5"), 5},
        {QStringLiteral("10"), 10},
        {QStringLiteral("20"), 20},
        {QStringLiteral("50"), 50},
        {QStringLiteral("100"), 100},
        {QStringLiteral("200"), 200},
        {QStringLiteral("500"), 500},
        {QStringLiteral("1000"), 1000},
        {QStringLiteral("2000"), 2000},
    };
    return table;
}

int stepForTimes(double first, double last, int divisions)
{
    return firstSpanning(scalesX(), last - first, divisions);
}

int stepForValues(const ValueRange &values, int divisions)
{
    return firstSpanning(scalesY(), values.max - values.min, divisions);
}

int stepOfSizeX(double seconds)
{
    return lastUpTo(scalesX(), seconds);
}

int stepOfSizeY(double size)
{
    return lastUpTo(scalesY(), size);
}

int decimalsForStep(int step)
{
    // Three steps share a power of ten: 0.000001, 0.000002 and 0.000005 are written with 6
    // decimals.
    return step < 1 ? 0 : std::max(0, 6 - (step - 1) / 3);
}

bool AxisView::isValid() const
{
    return std::isfinite(lower) && std::isfinite(upper) && lower < upper && step > 0;
}

AxisView viewFrom(double first, double step, int divisions)
{
    const double lower = std::floor(first / step) * step;
    return {lower, lower + divisions * step, step};
}

AxisView viewUpTo(double last, double step, int divisions)
{
    const double lower = std::ceil((last - divisions * step) / step) * step;
    return notBelowZero({lower, lower + divisions * step, step});
}

AxisView followTimes(const AxisView &current, const AxisView &wanted)
{
    const bool covered = wanted.lower >= current.lower && wanted.upper <= current.upper;
    return covered && wanted.step == current.step ? current : wanted;
}

AxisView followValues(const AxisView &current, const ValueRange &values, double step, int divisions)
{
    const bool covered = current.lower <= values.min && current.upper >= values.max;
    if (covered && current.step == step)
        return current;
    const int half = divisions / 2;
    const double centre = std::round(((values.max - values.min) * 0.5 + values.min) / step);
    return {centre * step - half * step, centre * step + half * step, step};
}

AxisView viewAround(double centre, double step, int divisions)
{
    const double half = divisions * step / 2;
    return {centre - half, centre + half, step};
}

AxisView notBelowZero(const AxisView &view)
{
    return view.lower < 0 ? AxisView{0, view.upper - view.lower, view.step} : view;
}

int labelStride(double widestLabel, double tickDistance, double gap)
{
    const double fitting = std::ceil((widestLabel + gap) / std::max(1.0, tickDistance));
    return static_cast<int>(std::clamp(fitting, 1.0, 100.0));
}

ZoomedView viewOfRectangle(const QRectF &rectangle, int divisionsX, int divisionsY)
{
    const double left = std::max(0.0, rectangle.left());
    const double width = rectangle.right() - left;
    const double height = rectangle.height();
    ZoomedView view;
    view.steps.x = firstFitting(scalesX(), [&](double step) { return step >= width / divisionsX; });
    view.steps.y = firstFitting(
        scalesY(), [&](double step) { return std::round(height / step + 0.6) < divisionsY; });
    const double stepX = scalesX()[view.steps.x].step;
    const double stepY = scalesY()[view.steps.y].step;
    const double lower =
        std::round(rectangle.center().y() / stepY) * stepY - divisionsY / 2 * stepY;
    view.x = {left, left + divisionsX * stepX, stepX};
    view.y = {lower, lower + divisionsY / 2 * 2 * stepY, stepY};
    view.centre = {left + divisionsX * stepX / 2, lower + divisionsY * stepY / 2};
    return view;
}

ZoomedView viewAround(const QPointF &centre, const ScaleSteps &steps, int divisionsX,
                      int divisionsY)
{
    return {steps, notBelowZero(viewAround(centre.x(), scalesX()[steps.x].step, divisionsX)),
            viewAround(centre.y(), scalesY()[steps.y].step, divisionsY), centre};
}

ScaleSteps neighbouringSteps(const ScaleSteps &steps, bool coarser)
{
    const ScaleSteps next =
        coarser ? ScaleSteps{steps.x + 1, steps.y + 1} : ScaleSteps{steps.x - 1, steps.y - 1};
    const bool exist =
        next.x >= 1 && next.x < scalesX().size() && next.y >= 1 && next.y < scalesY().size();
    return exist ? next : steps;
}
