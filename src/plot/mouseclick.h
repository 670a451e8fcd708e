#pragma once

#include <QPoint>

#include <cstdlib>

/** A mouse that stays this near, in pixels, between press and release was clicked, not dragged. */
constexpr int clickPixels = 10;

/** True when the mouse was released where it was pressed. */
inline bool isClick(const QPoint &pressed, const QPoint &released)
{
    const QPoint way = released - pressed;
    return std::abs(way.x()) < clickPixels && std::abs(way.y()) < clickPixels;
}

/** True when the mouse has been dragged away from where it was pressed. */
inline bool isDrag(const QPoint &pressed, const QPoint &now)
{
    const QPoint way = now - pressed;
    return std::abs(way.x()) > clickPixels || std::abs(way.y()) > clickPixels;
}
