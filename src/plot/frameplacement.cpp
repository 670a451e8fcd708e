#include "plot/frameplacement.h"

namespace
{

constexpr int distance = 10; // pixels between the point and the frame

int placeBeside(int point, int frame, int canvas)
{
    return point > canvas / 2 ? point - (frame + distance) : point + distance;
}

} // namespace

QPoint placeBeside(const QPoint &point, const QSize &frame, const QSize &canvas)
{
    return {placeBeside(point.x(), frame.width(), canvas.width()),
            placeBeside(point.y(), frame.height(), canvas.height())};
}
