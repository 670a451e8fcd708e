#include "plot/plottexts.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(QwtNOX)
};

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

QString tenthsText(double seconds)
{
    return QString::number(seconds, 'f', 1);
}

} // namespace

QString modeText(TmcMode mode)
{
    static const QStringList texts = {Texts::tr("АВТО"),       Texts::tr("СЛЕЖЕНИЕ"),
                                      Texts::tr("УВЕЛИЧЕНИЕ"), Texts::tr("ИЗМЕРЕНИЕ"),
                                      Texts::tr("СДВИГ"),      Texts::tr("ПРЕДЕЛЫ")};
    return texts.value(mode);
}

QString modeXText(TmcModeX mode)
{
    static const QStringList texts = {Texts::tr("СЕК"), Texts::tr("ОТН"), Texts::tr("АБС")};
    return texts.value(mode);
}

QString noValueText()
{
    return QStringLiteral("--");
}

QString numberText(double number, int decimals)
{
    const QString text = QString::number(number, 'f', decimals);
    const bool isMinusZero = text.startsWith(QLatin1Char('-')) && text.toDouble() == 0;
    return isMinusZero ? text.mid(1) : text;
}

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

QString timeText(const TimeFormat &format, double seconds)
{
    return timeSpanTexts(format, seconds, seconds).first;
}

TimeSpanTexts timeSpanTexts(const TimeFormat &format, double first, double second)
{
    const double between = second - first;
    if (format.mode == ModeXSeconds)
        return {tenthsText(first), tenthsText(second), tenthsText(between)};
    const bool withDay = needsDay(std::max(first, second));
    const auto duration = [&](double seconds) {
        return durationText(seconds, format.stepSeconds, withDay);
    };
    if (format.mode == ModeXRelative)
        return {duration(first), duration(second), duration(between)};
    const QDateTime begin = momentAfter(format.start, first);
    const QDateTime end = momentAfter(format.start, second);
    const bool withDate = begin.date() != format.today || end.date() != format.today;
    return {momentText(begin, format.stepSeconds, withDate),
            momentText(end, format.stepSeconds, withDate), duration(between)};
}
