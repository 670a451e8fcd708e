#pragma once

#include "outagerig.h"

#include <QVector>

/** Something that goes wrong outside the program. */
struct Fault {
    QString name;
    Playground playground;
    /** Lets it strike so many times, and notes what the operator was promised. */
    std::function<void(OutageRig &rig, int times)> strike;
    int times;
    int cutRounds = 0; ///< for each time: rounds that the fault cuts, which may lack their row
    std::function<void()> prepare = [] {}; ///< before the program starts
};

/** Plugs pulled and returned, alone and with their hub, in all that a program can be at. */
QVector<Fault> plugFaults();
/** The computer: it sleeps, its clock is set, its drivers hang, its sound goes. */
QVector<Fault> machineFaults();
/** What the database's file can suffer. */
QVector<Fault> databaseFaults();
/** What the recordings' files can suffer. */
QVector<Fault> recordingFaults();
