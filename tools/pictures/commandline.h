#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

/** What the command line asks for. */
struct PictureOrder {
    QString output; ///< file name of the PNG
    QSize size = QSize(1280, 800);
    int seconds = 45;     ///< how long the instruments measure before the picture is taken
    QStringList ports;    ///< names of the ports to connect; empty: all that are free
    bool showAll = false; ///< the curves of all instruments, not those of the first alone
    QString error;        ///< not empty: the command line makes no sense
};

/** Reads the command line of the application; ends the program for --help. */
PictureOrder readPictureOrder();
