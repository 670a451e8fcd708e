#pragma once

#include <QString>

class MainWindow;
class QMenu;
class QWidget;
class WindowDriver;
struct PictureOrder;

/**
 * Plays what there is to see of a main window as a whole, and of what opens over it.
 *
 * Each scene takes its picture; it is false, with a message, when what is to be seen does not
 * appear.
 */
class WindowScenes
{
public:
    WindowScenes(MainWindow *window, WindowDriver *driver, const PictureOrder &order);

    /** Plays a scene of PictureOrder::window. */
    bool play(const QString &scene);

private:
    bool playEmpty();
    bool playInstruments();
    bool playManual();
    bool playDiscovery();
    bool playDifference();
    bool playLost();
    bool playLogger();
    bool playAbout();

    QMenu *openReferences(int row) const;
    void openCard() const;
    bool take(QWidget *seen) const;

    MainWindow *m_window;
    WindowDriver *m_driver;
    const PictureOrder &m_order;
};
