#pragma once

#include <QObject>
#include <QSet>

#include <functional>

class MainWindow;
class QMenu;
class QTableWidget;

/** Watches a main window find its instruments, and works it the way a user does. */
class WindowDriver : public QObject
{
    Q_OBJECT
public:
    explicit WindowDriver(MainWindow *window);

    /** Whether so many instruments have been found and read and are measuring; waits for it, and
     *  for the dialogs below, as long as `patience` says. */
    bool awaitMeasuring(int instruments, int patience);
    /** Whether the discovery dialog asks the operator about an instrument. */
    bool awaitQuestion(int patience);
    /** Ends the search that begins with the program. */
    bool dismissSearch(int patience);

    /** The instruments by their rows in the table, from the lowest number to the highest. */
    QList<int> rowsByNumber() const;
    /** The number of the instrument in a row, as a text; empty for the header. */
    QString numberAt(int row) const;
    /** Clicks a cell of the table of the instruments, or of the channels. */
    void clickInstrument(int row, int column);
    void clickChannel(int row, int column);
    /** Ticks the box of every instrument. */
    void showAllInstruments();

    /** Presses a button, lets its menu be used while it is open, and closes it; false when it does
     *  not open. */
    bool withMenu(const char *buttonName, const std::function<void(QMenu *)> &use);

private:
    QTableWidget *table(const char *name) const;
    int measuringInstruments() const;

    MainWindow *m_window;
    QSet<int> m_delivered; ///< registry indices that measurements came from
};
