#pragma once

#include <QDateTime>
#include <QString>

// How a time on the plot is written. Times are seconds; a fraction of a second is dropped, except
// from plain seconds. A clock shows seconds when the axis step is below 60 s, and milliseconds when
// it is below 1 s.

/** Plain seconds, six significant digits. */
QString secondsText(double seconds);

/** A duration of more than a day is written with its day. */
bool needsDay(double seconds);
/** A duration as a time of day, in front of it the day of the month counted from 1. */
QString durationText(double seconds, double stepSeconds, bool withDay);

/** The moment `seconds` after `start`. */
QDateTime momentAfter(const QDateTime &start, double seconds);
/** A moment as a time of day, in front of it the date if wanted. */
QString momentText(const QDateTime &moment, double stepSeconds, bool withDate);
