#pragma once

#include <QByteArray>

class QDateTime;

/** The 8 bytes of a moment: hour, minute, second, 0, day, month, year, day of the week from 1 for
 *  Monday. The year is the low byte of year + 48, which is year - 2000 from 2000 to 2207. */
QByteArray encodeDateTime(const QDateTime &moment);
