#pragma once

#include <QString>

class QIODevice;
class optionsNOX8;

/**
 * Settings files (*.ust): the whole image of an instrument as text, one item a line, in
 * Windows-1251. docs/file-formats.md has the layout.
 */

/** Writes a file. It takes the place of an existing one only when all of it is written. False when
 *  that fails, or when the image holds a table that the file could not keep. */
bool saveSettingsFile(const optionsNOX8 &image, const QString &fileName);

/** Reads a file into the image (see applySettings()). False, and the image untouched, when it
 *  cannot be opened. */
bool loadSettingsFile(const QString &fileName, optionsNOX8 &image);

/** The same from an open device. More than 1 MiB is no settings file, and is not read further. */
bool readSettings(QIODevice &device, optionsNOX8 &image);
