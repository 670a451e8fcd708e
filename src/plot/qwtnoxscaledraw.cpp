#include "plot/qwtnoxscaledraw.h"

#include "plot/plottexts.h"
#include "plot/qwtnox.h"
#include "plot/scalechoice.h"

#include <QPainter>
#include <qwt_scale_div.h>
#include <qwt_scale_map.h>

#include <cmath>

namespace
{

constexpr double labelGap = 10; // pixels that stay free between two labels

} // namespace

void QwtNOXScaleXDraw::drawLabel(QPainter *painter, double value) const
{
    const QList<double> ticks = scaleDiv().ticks(QwtScaleDiv::MajorTick);
    if (ticks.size() > 1) {
        // Counted from zero, not from the edge: labels keep their tick while the view moves.
        const double tick = std::round(value / (ticks[1] - ticks[0]));
        if (std::fmod(tick, stride(painter->font())) != 0)
            return;
    }
    QwtScaleDraw::drawLabel(painter, value);
}

/** Every how many ticks a label fits between its neighbours. */
int QwtNOXScaleXDraw::stride(const QFont &font) const
{
    const QList<double> ticks = scaleDiv().ticks(QwtScaleDiv::MajorTick);
    double widest = 0;
    for (const double tick : ticks)
        widest = std::max(widest, labelSize(font, tick).width());
    const double distance = scaleMap().transform(ticks[1]) - scaleMap().transform(ticks[0]);
    return labelStride(widest, distance, labelGap);
}

QwtText QwtNOXScaleXDrawMode0::label(double value) const
{
    return secondsText(value);
}

QwtNOXScaleXDrawMode1::QwtNOXScaleXDrawMode1(const QwtNOX *plot)
    : m_plot(plot)
{
}

QwtText QwtNOXScaleXDrawMode1::label(double value) const
{
    return durationText(value, m_plot->axisStepSize(QwtPlot::xBottom), needsDay(value));
}

QwtNOXScaleXDrawMode2::QwtNOXScaleXDrawMode2(const QwtNOX *plot)
    : m_plot(plot)
{
}

QwtText QwtNOXScaleXDrawMode2::label(double value) const
{
    const QDateTime moment = momentAfter(m_plot->getStartDateTime(), value);
    const bool isToday = moment.date() == m_plot->now().date();
    return momentText(moment, m_plot->axisStepSize(QwtPlot::xBottom), !isToday);
}

QwtNOXScaleYDraw::QwtNOXScaleYDraw(const QwtNOX *plot)
    : m_plot(plot)
{
}

QwtText QwtNOXScaleYDraw::label(double value) const
{
    return numberText(value, m_plot->getPrecision());
}

QwtNOXScaleXDraw *newScaleXDraw(TmcModeX mode, const QwtNOX *plot)
{
    switch (mode) {
    case ModeXRelative:
        return new QwtNOXScaleXDrawMode1(plot);
    case ModeXAbsolute:
        return new QwtNOXScaleXDrawMode2(plot);
    case ModeXSeconds:
        break;
    }
    return new QwtNOXScaleXDrawMode0;
}
