#include "plot/timetext.h"

#include <QtGlobal>

#include <cmath>

namespace
{

constexpr double secondsPerDay = 86400;

/** Some 30,000 years: whatever lies beyond is no time of a measurement. */
constexpr double greatestSeconds = 1e12;

qint64 wholeSeconds(double seconds)
{
    if (std::isnan(seconds))
        return 0;
    return static_cast<qint64>(qBound(-greatestSeconds, seconds, greatestSeconds));
}

QString clockFormat(double stepSeconds)
{
    QString format = QStringLiteral("hh:mm");
    if (stepSeconds < 60)
        format += QStringLiteral(":ss");
    if (stepSeconds < 1)
        format += QStringLiteral(":zzz");
    return format;
}

} // namespace

QString secondsText(double seconds)
{
    return QString::number(seconds, 'g', 6);
}

bool needsDay(double seconds)
{
    return seconds > secondsPerDay;
}

QString durationText(double seconds, double stepSeconds, bool withDay)
{
    const QDateTime moment = QDateTime::fromSecsSinceEpoch(wholeSeconds(seconds), Qt::UTC);
    const QString day = withDay ? QStringLiteral("dd ") : QString();
    return moment.toString(day + clockFormat(stepSeconds));
}

QDateTime momentAfter(const QDateTime &start, double seconds)
{
    return start.addSecs(wholeSeconds(seconds));
}

QString momentText(const QDateTime &moment, double stepSeconds, bool withDate)
{
    const QString date = withDate ? QStringLiteral("dd.MM.yy ") : QString();
    return moment.toString(date + clockFormat(stepSeconds));
}
