#pragma once

#include <QSize>
#include <QString>

/** What the command line asks for. */
struct PictureOrder {
    QString output; ///< file name of the PNG
    QSize size = QSize(1280, 800);
    int instruments = 1;    ///< how many the program has to find by itself; 0: it shall not search
    int patience = 120;     ///< seconds until what is waited for has to come
    int seconds = 45;       ///< how long they measure before the picture is taken
    QString portsDirectory; ///< the only place of ports; empty: the ports of the user
    // One of these says what is to be seen; the window as it is when all are empty.
    QString window;   ///< a scene of the window as a whole, and of what opens over it
    QString plot;     ///< what is done on the plot
    QString results;  ///< of results on their way into files and back
    QString settings; ///< of the settings of an instrument
    QString error;    ///< not empty: the command line makes no sense
};

/** Reads the command line of the application; ends the program for --help. */
PictureOrder readPictureOrder();
