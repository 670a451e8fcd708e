#pragma once

#include <QObject>
#include <QTimer>

/** What a frame has to paint; each includes those before it. */
enum class FrameExtent {
    Texts,     ///< what stands around the plot
    NewPoints, ///< what points have added to the picture of the plot
    WholePlot
};

/**
 * Gathers wishes to paint into frames, however many wishes come: at most 30 a second, and fewer
 * where painting is dear: it leaves three times as long to the rest of the program, up to 0.5 s.
 */
class FrameClock : public QObject
{
    Q_OBJECT
public:
    explicit FrameClock(QObject *parent = nullptr);

    /** Asks for a frame of at least that extent. Costs next to nothing while one is due already. */
    void request(FrameExtent extent = FrameExtent::WholePlot);
    /** True while a frame was asked for and has not come yet. */
    bool isDue() const { return m_isDue; }
    /** Lets the frame that is due come now; does nothing when none is. */
    void flush();

signals:
    /** Time to paint what has changed. What is asked for meanwhile comes in the next frame. */
    void frame(FrameExtent extent);

private:
    QTimer m_timer;
    FrameExtent m_extent = FrameExtent::Texts; ///< the greatest that was asked for
    bool m_isDue = false;
    int m_rest = 0; ///< ms, that the latest frame leaves to others
};
