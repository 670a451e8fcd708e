#pragma once

#include <QStringList>

/** Records of the example image's characteristics as annotated lines, one for each type. */

QStringList polynomialExample();
QStringList callendarVanDusenExample();
QStringList its90Example();
QStringList tableExample();
