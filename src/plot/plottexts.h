#pragma once

#include "plot/plotmodes.h"

#include <QDateTime>
#include <QString>

// How modes, numbers and times on the plot are written. Times are seconds; a fraction of a second
// is dropped, except from plain seconds. A clock shows seconds when the axis step is below 60 s,
// and milliseconds when it is below 1 s.

/** What the plot does by itself, or the mouse on it; and how its time axis is labelled. */
QString modeText(TmcMode mode);
QString modeXText(TmcModeX mode);

/** What stands in place of a value that is not there. */
QString noValueText();
/** A number with so many decimals; what is rounded to zero is written without a sign. */
QString numberText(double number, int decimals);

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

/** How times are written where they are read off the plot. */
struct TimeFormat {
    TmcModeX mode = ModeXSeconds;
    QDateTime start;        ///< time origin of the plot
    QDate today;            ///< the date that need not be written
    double stepSeconds = 1; ///< step of the time axis
};

/** Two times, written alike, and the time between them. */
struct TimeSpanTexts {
    QString first;
    QString second;
    QString between;
};

/** A single time. */
QString timeText(const TimeFormat &format, double seconds);
/** Two times of which the first is not the later one. */
TimeSpanTexts timeSpanTexts(const TimeFormat &format, double first, double second);
