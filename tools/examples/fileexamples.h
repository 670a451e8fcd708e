#pragma once

#include <QStringList>

/** Files of the example image: some of their lines, each behind its number. */

QStringList settingsFileExample();
/** A characteristic file of the ITS-90 form. */
QStringList characteristicFileExample();
/** One of a table. */
QStringList tableFileExample();
/** A results file of an instrument with three channels, as the export writes it. */
QStringList resultsFileExample();
