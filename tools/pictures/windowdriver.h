#pragma once

#include <QObject>
#include <QSet>

class MainWindow;

/** Watches a main window find its instruments, and works it the way a user does. */
class WindowDriver : public QObject
{
    Q_OBJECT
public:
    explicit WindowDriver(MainWindow *window);

    /** How many instruments have been found and read and are measuring. */
    int measuringInstruments() const;
    /** How many instruments the discovery dialog asks the operator about. */
    int waitingInstruments() const;

    /** Clicks the row of the first instrument. */
    void clickFirstInstrument();
    /** Ticks the box of every instrument. */
    void showAllInstruments();

private:
    MainWindow *m_window;
    QSet<int> m_delivered; ///< registry indices that measurements came from
};
