#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>

class MainWindow;

/** Works a main window the way a user does: opens its menu, ticks boxes, clicks rows. */
class WindowDriver : public QObject
{
    Q_OBJECT
public:
    explicit WindowDriver(MainWindow *window);

    /** Chooses ports in the menu of manual connection, all of them when `names` is empty. */
    void connectPorts(const QStringList &names);
    /** Clicks the row of the first instrument. */
    void clickFirstInstrument();
    /** Ticks the box of every instrument. */
    void showAllInstruments();

    /** The ports asked for that have delivered nothing so far. */
    QStringList silentPorts() const;

private:
    QStringList offeredPorts();
    bool choosePort(const QString &name);

    MainWindow *m_window;
    QStringList m_asked;
    QSet<QString> m_delivered; ///< names of the ports that measurements came from
};
