#pragma once

#include <QObject>
#include <QPoint>
#include <QString>

class PlotInteraction;
class QKeyEvent;
class QwtNOX;
class KeyCross;

/**
 * Works the plot from the keyboard while its canvas, or a value beside a point, has the focus.
 *
 * Arrows move the view by a step of the axes, + and - zoom, Home follows the newest point, Escape
 * leads out of what the mode shows. With Ctrl the arrows move a cross over the canvas, with Shift
 * too by single pixels; Return and Space click where it is. The cross is a mouse to the canvas: it
 * is read out, measures, zooms and places limits in the way that one does, and gives way to it.
 */
class PlotKeys : public QObject
{
    Q_OBJECT
public:
    PlotKeys(QwtNOX *plot, PlotInteraction &interaction);

    /** Takes the keys of a widget of the plot, before they come to it. */
    void listenTo(QWidget *widget);
    /** Takes the cross away, with what it has begun. */
    void takeCrossAway();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool press(const QKeyEvent *event);
    void pressArrow(const QPoint &direction, Qt::KeyboardModifiers modifiers);
    void zoom(bool coarser);
    void stepBack();
    void moveCross(const QPoint &way);
    void showCrossAt(const QPoint &place);
    void click();
    void send(QEvent::Type type, Qt::MouseButton button);

    QwtNOX *m_plot;
    PlotInteraction &m_interaction;
    KeyCross *m_cross;        ///< owned by the canvas
    QString m_canvasName;     ///< accessible name of the canvas while no cross is on it
    bool m_isSending = false; ///< an event on the canvas is one of ours
};
