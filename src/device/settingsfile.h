#pragma once

#include <QStringList>

class QIODevice;
class optionsNOX8;

/**
 * Settings files (*.ust): the whole image of an instrument as text, one item a line, in
 * Windows-1251. docs/file-formats.md has the layout.
 */

/** Writes a file. It takes the place of an existing one only when all of it is written. False when
 *  that fails, or when the file could not keep the image. */
bool saveSettingsFile(const optionsNOX8 &image, const QString &fileName);

/** Whether a settings file can keep the image: its model is known, and all numbers of its tables
 *  fit their lines. */
bool fitsSettingsFile(const optionsNOX8 &image);

/** The lines of a settings file of the image, each without its end. */
QStringList settingsLines(const optionsNOX8 &image);

/** Reads a file into the image (see applySettings()). False, and the image untouched, when it
 *  cannot be opened. */
bool loadSettingsFile(const QString &fileName, optionsNOX8 &image);

/** The same from an open device. More than 1 MiB is no settings file, and is not read further. */
bool readSettings(QIODevice &device, optionsNOX8 &image);

/**
 * Takes the lines of a settings file into the image, which announces what changes.
 *
 * Everything that can be taken is, in the order of the file. A number that does not parse becomes
 * 0, and those after it stay; so do the characteristics after one that is rejected. What a line
 * says in no code of the format leaves the image as it is, and so does a line that is not there.
 * True only when nothing of all this happened; zero shifts that do not parse do not count.
 *
 * Taken without a word are: another text for a switch that is on, as off; a unit that is unknown;
 * a code beyond the standard lists, as the channel's own characteristic, since a channel never
 * keeps one that its list does not have.
 *
 * Without a line that names a model the image's type becomes unknown, and nothing else is taken.
 * False, too, when a receiver of a change takes the image away.
 */
bool applySettings(const QStringList &lines, optionsNOX8 &image);
