#pragma once

#include <QStringList>

class optionsNOX8;

/** Every field of an image, one a line, numbers with all their digits. Left out are empty entries
 * at the end of a characteristic, the identity's flags and the channels beyond those of the model.
 */
QStringList describe(const optionsNOX8 &image);
