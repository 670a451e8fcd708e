#include "device/datetimeblock.h"

#include <QDateTime>

QByteArray encodeDateTime(const QDateTime &moment)
{
    const QDate date = moment.date();
    const QTime time = moment.time();
    QByteArray bytes;
    for (const int part : {time.hour(), time.minute(), time.second(), 0, date.day(), date.month(),
                           date.year() + 48, date.dayOfWeek()})
        bytes += char(part & 0xFF);
    return bytes;
}
