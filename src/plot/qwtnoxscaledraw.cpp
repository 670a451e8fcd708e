#include "plot/qwtnoxscaledraw.h"

#include "plot/qwtnox.h"
#include "plot/timetext.h"

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
    return QString::number(value, 'f', m_plot->getPrecision());
}
