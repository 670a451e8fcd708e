#pragma once

#include "plot/plotmodes.h"

#include <qwt_scale_draw.h>
#include <qwt_text.h>

class QwtNOX;

/** A time axis that leaves out labels where they would run into each other. */
class QwtNOXScaleXDraw : public QwtScaleDraw
{
protected:
    void drawLabel(QPainter *painter, double value) const override;

private:
    int stride(const QFont &font) const;
};

/** Labels of the time axis in seconds. */
class QwtNOXScaleXDrawMode0 : public QwtNOXScaleXDraw
{
public:
    QwtText label(double value) const override;
};

/** Labels of the time axis as a duration since the time origin. */
class QwtNOXScaleXDrawMode1 : public QwtNOXScaleXDraw
{
public:
    /** `plot`, whose axis this is, tells the step. */
    explicit QwtNOXScaleXDrawMode1(const QwtNOX *plot);
    QwtText label(double value) const override;

private:
    const QwtNOX *m_plot;
};

/** Labels of the time axis as the time of day, with the date unless it is today. */
class QwtNOXScaleXDrawMode2 : public QwtNOXScaleXDraw
{
public:
    /** `plot`, whose axis this is, tells the time origin, the step and which day is today. */
    explicit QwtNOXScaleXDrawMode2(const QwtNOX *plot);
    QwtText label(double value) const override;

private:
    const QwtNOX *m_plot;
};

/** Labels of the value axis with the decimals that suit the main channel's scale. */
class QwtNOXScaleYDraw : public QwtScaleDraw
{
public:
    /** `plot`, whose axis this is, tells the decimals. */
    explicit QwtNOXScaleYDraw(const QwtNOX *plot);
    QwtText label(double value) const override;

private:
    const QwtNOX *m_plot;
};

/** Labels of the time axis of `plot` in a mode of its main channel; the caller owns them. */
QwtNOXScaleXDraw *newScaleXDraw(TmcModeX mode, const QwtNOX *plot);
