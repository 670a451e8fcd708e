#include "plot/scalechoice.h"

#include "plot/scaletables.h"

#include <algorithm>
#include <cmath>

namespace
{

/** First row whose steps span `width` with half a step to spare, else the last row. */
template<typename Table>
int firstFittingRow(const Table &table, double width, int divisions)
{
    // Row 0 has no step of its own and never fits. The others are sorted by their steps.
    const auto row = std::partition_point(table.cbegin() + 1, table.cend(), [&](const auto &scale) {
        return !(std::ceil(width / scale.step + 0.5) < divisions);
    });
    return row == table.cend() ? table.size() - 1 : static_cast<int>(row - table.cbegin());
}

} // namespace

bool AxisView::isValid() const
{
    return std::isfinite(lower) && std::isfinite(upper) && lower < upper && step > 0;
}

int rowForTimes(double first, double last, int divisions)
{
    return firstFittingRow(scalesX(), last - first, divisions);
}

int rowForValues(const ValueRange &values, int divisions)
{
    return firstFittingRow(scalesY(), values.max - values.min, divisions);
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

int decimalsForRow(int row)
{
    // Three rows share a power of ten: 0.000001, 0.000002 and 0.000005 are written with 6 decimals.
    return row < 1 ? 0 : std::max(0, 6 - (row - 1) / 3);
}
