#pragma once

#include <QFrame>
#include <QPoint>
#include <QPointF>
#include <QVector>

class QFormLayout;
class QwtLabelClick;

// The frames that tell on the plot what was measured there.

/**
 * Where a frame stands beside a point of the plot, all in pixels of the plot widget: right below
 * the point, and on its other side where the point is beyond the middle of the canvas.
 */
QPoint placeBeside(const QPoint &point, const QSize &frame, const QSize &canvas);

/** A panel of named values that stands on the plot beside a point of it. */
class ValueFrame : public QFrame
{
    Q_OBJECT
public:
    /** The frame is hidden until it is shown beside a point. */
    explicit ValueFrame(QWidget *plot);

    /** The point that the frame stands beside, in coordinates of the axes. */
    QPointF anchor() const { return m_anchor; }
    void setAnchor(const QPointF &anchor) { m_anchor = anchor; }

    /** The values, from top to bottom. */
    const QVector<QwtLabelClick *> &values() const { return m_values; }

protected:
    /** Adds a value below the others; `name` becomes its object name. */
    void addValue(const QString &caption, const QString &name);
    /** The same with a bold caption: what is computed of many values. */
    void addStatistic(const QString &caption, const QString &name);
    void addGap();
    /** Sets the texts from top to bottom, unmarks all and fits the frame to them. */
    void setTexts(const QStringList &texts);

private:
    QFormLayout *m_layout;
    QVector<QwtLabelClick *> m_values;
    QStringList m_names; ///< of the values, as a screen reader says them
    QPointF m_anchor;
};

/** Shows the time and the value of the first point of a measurement. */
class PointFrame : public ValueFrame
{
    Q_OBJECT
public:
    explicit PointFrame(QWidget *plot);

    void setTexts(const QString &x, const QString &y);
};

/** What is known between the two points of a measurement, as texts. */
struct MeasurementTexts {
    QString x1;
    QString y1;
    QString x2;
    QString y2;
    QString deltaX;
    QString deltaY;
    QString mean;
    QString deviation;
    QString count;
};

/** Shows what lies between the two points of a measurement. */
class MeasurementFrame : public ValueFrame
{
    Q_OBJECT
public:
    explicit MeasurementFrame(QWidget *plot);

    void setTexts(const MeasurementTexts &texts);
};
