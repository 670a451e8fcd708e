#pragma once

#include <QStringList>

class optionsNOX8;

/**
 * Takes the lines of a settings file into the image, which announces what changes.
 *
 * Everything that can be taken is, in the order of the file. A number that does not parse becomes
 * 0, and those after it stay; so do the characteristics after one that is rejected. What a line
 * says in no code of the format leaves the image as it is, and so does a line that is not there.
 * True only when nothing of all this happened; zero shifts that do not parse do not count.
 *
 * A channel never keeps a characteristic that its standard list does not have.
 *
 * Without a line that names a model the image's type becomes unknown, and nothing else is taken.
 */
bool applySettings(const QStringList &lines, optionsNOX8 &image);
