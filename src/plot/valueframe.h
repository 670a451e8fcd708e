#pragma once

#include <QFrame>
#include <QPointF>
#include <QVector>

class QFormLayout;
class QwtLabelClick;

/**
 * A panel of named values that stands on the plot beside a point of it.
 */
class ValueFrame : public QFrame
{
public:
    /** The frame is hidden until it is shown beside a point. */
    explicit ValueFrame(QWidget *plot);

    /** The point that the frame stands beside, in coordinates of the axes. */
    QPointF anchor() const { return m_anchor; }
    void setAnchor(const QPointF &anchor) { m_anchor = anchor; }

    /** The values, in the order of the rows. */
    const QVector<QwtLabelClick *> &values() const { return m_values; }

protected:
    /** Adds a row; `name` becomes the object name of the value. */
    void addValue(const QString &caption, const QString &name);
    void addGap();
    /** Sets the texts in the order of the rows, unmarks all and fits the frame to them. */
    void setTexts(const QStringList &texts);

private:
    QFormLayout *m_rows;
    QVector<QwtLabelClick *> m_values;
    QPointF m_anchor;
};
