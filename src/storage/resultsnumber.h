#pragma once

#include <QByteArray>

/**
 * Numbers of results files. They are written and read digit for digit as QString does it, which
 * also serves the rare ones that the fast ways here cannot do exactly.
 */

/** Appends what QString::number(number, 'f', decimals) gives; 0 to 7 decimals. */
void appendFixed(QByteArray *text, double number, int decimals);

/** Appends seconds as a time stamp: what QString::number(std::round(seconds), 'g', 6) gives. */
void appendWholeSeconds(QByteArray *text, double seconds);

/** What QString::toDouble() reads in the text from `begin` to before `end`, which is Windows-1251.
 *  False, and `number` is not touched, when that is no number. */
bool readNumber(const char *begin, const char *end, double *number);
