#pragma once

#include <QStringList>

class optionsNOX8;

/** Whether a settings file can keep the image: its model is known, and all numbers of its tables
 * fit their lines. */
bool fitsSettingsFile(const optionsNOX8 &image);

/** The lines of a settings file of the image, each without its end. */
QStringList settingsLines(const optionsNOX8 &image);
