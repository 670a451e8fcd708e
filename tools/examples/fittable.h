#pragma once

#include <QStringList>

/**
 * What the polynomial of a Callendar-Van Dusen characteristic is worth: a table of the errors over
 * several ranges. Its figures are so coarse that they do not depend on how the last bit is rounded.
 */
QStringList fitTable();
