#include "device/loggerrecords.h"

#include "device/bfloat.h"
#include "device/vocabulary.h"

#include <array>

namespace
{

constexpr int recordSize = 8;

enum RecordType : quint8 { empty = 0, timeMark = 1, measurement = 2 };

/** A record and the texts of units, each of which is looked up only once. */
class RecordReader
{
public:
    explicit RecordReader(const QByteArray &records)
        : m_records(records)
    {
    }

    void goTo(int record) { m_offset = recordSize * record; }
    quint8 byte(int index) const { return quint8(m_records.at(m_offset + index)); }
    float number(int index) const
    {
        return bFloat::getFloat(&m_records, m_offset / 4, qint8(index));
    }
    QString unit(int index)
    {
        QString &text = m_units[byte(index)];
        if (text.isEmpty())
            text = measurementUnit(byte(index));
        return text;
    }

private:
    const QByteArray &m_records;
    int m_offset = 0;
    std::array<QString, 256> m_units;
};

QDateTime startOf(const RecordReader &record)
{
    const QDate date(2000 + record.byte(3), record.byte(2), record.byte(1));
    const QTime time(record.byte(4), record.byte(5), record.byte(6));
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
    RecordReader record(records);
    LoggerReadout read;
    read.start = startOf(record);
    if (!read.start.isValid())
        return false;

    float mark = 0.0F;
    const int count = records.size() / recordSize;
    for (int i = 0; i < count; ++i) {
        record.goTo(i);
        switch (record.byte(0)) {
        case empty:
            break;
        case timeMark:
            mark = record.number(4);
            break;
        case measurement:
            if (record.byte(1) >= channelCount)
                return false;
            read.items[record.byte(1)].append({mark, record.number(2), record.unit(6)});
            break;
        default:
            return false;
        }
    }
    readout = read;
    return true;
}
