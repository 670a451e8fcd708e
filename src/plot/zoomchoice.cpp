#include "plot/zoomchoice.h"

#include "plot/scaletables.h"

#include <algorithm>
#include <cmath>

namespace
{

/** First row from 1 on that fits, else the last. */
template<typename Table, typename Fits>
int firstRow(const Table &table, Fits fits)
{
    const auto row = std::find_if(table.cbegin() + 1, table.cend(),
                                  [&](const auto &scale) { return fits(scale.step); });
    return row == table.cend() ? table.size() - 1 : static_cast<int>(row - table.cbegin());
}

/** Last row from 1 on whose step is not above `step`. */
template<typename Table>
int lastRowUpTo(const Table &table, double step)
{
    const int coarser = static_cast<int>(
        std::find_if(table.cbegin() + 1, table.cend(),
                     [step](const auto &scale) { return scale.step > step * (1 + 1e-9); }) -
        table.cbegin());
    return std::max(1, coarser - 1);
}

} // namespace

ZoomedView viewOfRectangle(const QRectF &rectangle, int divisionsX, int divisionsY)
{
    const double left = std::max(0.0, rectangle.left());
    const double width = rectangle.right() - left;
    const double height = rectangle.height();
    ZoomedView view;
    view.rows.x = firstRow(scalesX(), [&](double step) { return step >= width / divisionsX; });
    view.rows.y = firstRow(
        scalesY(), [&](double step) { return std::round(height / step + 0.6) < divisionsY; });
    const double stepX = scalesX()[view.rows.x].step;
    const double stepY = scalesY()[view.rows.y].step;
    const double lower =
        std::round(rectangle.center().y() / stepY) * stepY - divisionsY / 2 * stepY;
    view.x = {left, left + divisionsX * stepX, stepX};
    view.y = {lower, lower + divisionsY / 2 * 2 * stepY, stepY};
    view.centre = {left + divisionsX * stepX / 2, lower + divisionsY * stepY / 2};
    return view;
}

ZoomedView viewAround(const QPointF &centre, const ScaleRows &rows, int divisionsX, int divisionsY)
{
    return {rows, notBelowZero(viewAround(centre.x(), scalesX()[rows.x].step, divisionsX)),
            viewAround(centre.y(), scalesY()[rows.y].step, divisionsY), centre};
}

int rowOfStepX(double stepSeconds)
{
    return lastRowUpTo(scalesX(), stepSeconds);
}

int rowOfStepY(double step)
{
    return lastRowUpTo(scalesY(), step);
}

ScaleRows neighbouringRows(const ScaleRows &rows, bool coarser)
{
    const ScaleRows next =
        coarser ? ScaleRows{rows.x + 1, rows.y + 1} : ScaleRows{rows.x - 1, rows.y - 1};
    const bool exist =
        next.x >= 1 && next.x < scalesX().size() && next.y >= 1 && next.y < scalesY().size();
    return exist ? next : rows;
}
