#pragma once

#include <QPointF>

class MainWindow;

/** Works the plot of a main window with the mouse, the way a user does. */
class PlotDriver
{
public:
    explicit PlotDriver(MainWindow *window);

    /** Shows every channel of the current instrument, around the one in the middle. */
    void showAllChannels();

    // Places are shares of the width and of the height of the canvas, from its upper left corner.

    /** Measures between two points. */
    void measure(const QPointF &first, const QPointF &second);
    /** Enlarges a rectangle. */
    void zoom(const QPointF &corner, const QPointF &oppositeCorner);
    /** Places an upper and a lower limit. */
    void placeLimits(double upper, double lower);

    /** Presses a button of the window. */
    void press(const char *buttonName);

private:
    QPoint place(const QPointF &share) const;

    MainWindow *m_window;
};
