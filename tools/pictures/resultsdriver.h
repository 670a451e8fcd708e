#pragma once

#include <QString>

class MainWindow;
class QWidget;

/** Works the results of a main window with the mouse; files are those of the current folder. */
class ResultsDriver
{
public:
    explicit ResultsDriver(MainWindow *window);

    // Each returns what there is to see.

    /** Records the current instrument, and leaves the dialog open. */
    QWidget *record();
    /** Exports it, and leaves the dialog open. */
    QWidget *exportTable();
    /** Reads results that were measured for days half of the way; null when there is no room for
     * them. */
    QWidget *readBack();

private:
    void press(const char *buttonName);
    QWidget *workDialog(const char *toolName, const char *dialogName, const QString &fileName);

    MainWindow *m_window;
};
