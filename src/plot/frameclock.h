#pragma once

#include <QObject>
#include <QTimer>

/** Gathers wishes to paint into frames: at most 30 a second, however many wishes come. */
class FrameClock : public QObject
{
    Q_OBJECT
public:
    explicit FrameClock(QObject *parent = nullptr);

    /** Asks for a frame. Costs next to nothing while one is due already. */
    void request();
    /** True while a frame was asked for and has not come yet. */
    bool isDue() const { return m_isDue; }
    /** Lets the frame that is due come now; does nothing when none is. */
    void flush();

signals:
    /** Time to paint what has changed. What is asked for meanwhile comes in the next frame. */
    void frame();

private:
    QTimer m_timer;
    bool m_isDue = false;
};
