#pragma once

#include <QPoint>
#include <QSize>

/**
 * Where a frame stands beside a point of the plot, all in pixels of the plot widget: right below
 * the point, and on its other side where the point is beyond the middle of the canvas.
 */
QPoint placeBeside(const QPoint &point, const QSize &frame, const QSize &canvas);
