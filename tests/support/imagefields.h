#pragma once

#include <QStringList>

class optionsNOX8;

/** Every field of an image, one a line, numbers with all their digits; the identity's flags and the
 *  channels beyond those of the model are left out. */
QStringList describe(const optionsNOX8 &image);
