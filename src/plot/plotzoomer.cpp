#include "plot/plotzoomer.h"

#include "plot/mouseclick.h"

PlotZoomer::PlotZoomer(QWidget *canvas, const QPen &pen)
    : QwtPlotZoomer(canvas, false)
{
    setRubberBandPen(pen);
    setTrackerMode(AlwaysOff);
}

void PlotZoomer::zoom(const QRectF &rectangle)
{
    emit zoomed(rectangle.normalized());
}

void PlotZoomer::zoom(int) {}

QSizeF PlotZoomer::minZoomSize() const
{
    return {}; // no rectangle is too small for the finest scales
}

bool PlotZoomer::accept(QPolygon &selection) const
{
    const bool isRectangle = selection.size() >= 2 && !isClick(selection.first(), selection.last());
    return isRectangle && QwtPlotZoomer::accept(selection);
}
