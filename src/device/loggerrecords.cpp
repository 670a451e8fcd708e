#include "device/loggerrecords.h"

#include "device/bfloat.h"
#include "device/vocabulary.h"

#include <utility>

namespace
{

constexpr int recordSize = 8;

enum RecordType : quint8 { empty = 0, timeMark = 1, measurement = 2 };

QDateTime startOf(const QByteArray &records)
{
    const auto byte = [&records](int index) { return int(quint8(records.at(index))); };
    const QDate date(2000 + byte(3), byte(2), byte(1));
    const QTime time(byte(4), byte(5), byte(6));
    if (!date.isValid() || !time.isValid())
        return {};
    const QDateTime start(date, time);
    // instruments know nothing of summer time: the hour that the computer skips is the next one
    return start.isValid() ? start : QDateTime(date, time.addSecs(3600));
}

} // namespace

bool decodeLoggerRecords(const QByteArray &records, quint8 channelCount, LoggerReadout &readout)
{
    if (records.isEmpty() || records.size() % recordSize != 0)
        return false;
    LoggerReadout read;
    read.start = startOf(records);
    if (!read.start.isValid())
        return false;

    float mark = 0.0F;
    for (int record = 0; record < records.size(); record += recordSize) {
        const auto channel = quint8(records.at(record + 1));
        const int word = record / 4;
        switch (quint8(records.at(record))) {
        case empty:
            break;
        case timeMark:
            mark = bFloat::getFloat(&records, word, 4);
            break;
        case measurement:
            if (channel >= channelCount)
                return false;
            read.items[channel].append({mark, bFloat::getFloat(&records, word, 2),
                                        measurementUnit(quint8(records.at(record + 6)))});
            break;
        default:
            return false;
        }
    }
    readout = std::move(read);
    return true;
}
