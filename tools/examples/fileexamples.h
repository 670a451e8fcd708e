#pragma once

#include <QStringList>

/** Files of the example image: some of their lines, each behind its number. */

QStringList settingsFileExample();
