#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

/** What the command line asks for. */
struct PictureOrder {
    QString output; ///< file name of the PNG
    QSize size = QSize(1280, 800);
    int instruments = 1;    ///< how many the program has to find by itself; 0: it shall not search
    int patience = 120;     ///< seconds until they have to measure
    int seconds = 45;       ///< how long they measure before the picture is taken
    QString portsDirectory; ///< the only place of ports; empty: the ports of the user
    QString window;         ///< one of windowScenes(), to be taken; empty: none
    QString plot;           ///< one of plotScenes(), to be seen on the plot; empty: none
    QString results;        ///< one of resultsScenes(), to be taken instead; empty: none
    QString settings;       ///< one of settingsScenes(), to be taken instead; empty: none
    QString error;          ///< not empty: the command line makes no sense
};

/** What can be taken of the window as a whole, and of what opens over it. */
QStringList windowScenes();

/** What can be done on the plot before the picture is taken. */
QStringList plotScenes();

/** What can be taken of results on their way into files and back. */
QStringList resultsScenes();

/** What can be taken of the settings of an instrument. */
QStringList settingsScenes();

/** Reads the command line of the application; ends the program for --help. */
PictureOrder readPictureOrder();
