#pragma once

#include <QList>
#include <QObject>
#include <QString>

class FittedLabel;
class QFrame;
class QLabel;

/**
 * The two numeric panels: value and unit above, moving average below. Both numbers end at the same
 * position.
 */
class NumericPanels : public QObject
{
    Q_OBJECT
public:
    /** Fills the two frames, which own the labels. */
    NumericPanels(QFrame *valueFrame, QFrame *averageFrame, QObject *parent = nullptr);

    /** Shows the numbers; touches only what changed. */
    void showNumbers(const QString &value, const QString &average, const QString &unit);
    /** Colours a number by whether its kind of curve is on the plot. */
    void showCurveKinds(bool values, bool averages);
    /** Shows by the ground of the panels that nothing renews the numbers of a lost instrument. */
    void showConnection(bool connected);

signals:
    // A click on the number, or Space or Return on its panel.
    void valueClicked();
    void averageClicked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void describe();

    QList<QFrame *> m_frames;
    QList<QLabel *> m_hiddenSigns; ///< of the frames
    FittedLabel *m_value;
    QLabel *m_unit;
    FittedLabel *m_average;
};
