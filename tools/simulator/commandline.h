#pragma once

#include "simulator/simulatedinstrument.h"

#include <QStringList>

/** What the command line of the program asks for. */
struct SimulatorCommand {
    enum Kind { Play, ListModels, ShowHelp, ShowVersion, Refuse };

    Kind kind = Play;
    QString text; ///< help, version, or the reason for refusing
    SimulatedInstrumentOptions instrument;
    QString portName;      ///< empty: the first free "noxN"
    int fleetSize = 0;     ///< 0: one instrument
    int unplugAfterMs = 0; ///< 0: the plug stays in
};

/** Reads the command line; `arguments` begins with the program's name. */
SimulatorCommand readSimulatorCommand(const QStringList &arguments);

/** The members of a fleet in order: models mixed, serial numbers consecutive, own names and seeds.
 */
QVector<SimulatedInstrumentOptions> fleetOf(const SimulatedInstrumentOptions &first, int size);
