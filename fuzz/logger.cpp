/// Feeds logger records.
///
/// Input: a byte with the number of channels, then the records.

#include "device/loggerrecords.h"
#include "fuzzinput.h"

namespace
{

constexpr int recordSize = 8;

LoggerReadout untouched()
{
    LoggerReadout readout;
    readout.items[3] = {LoggerItem{1.0F, 2.0F, QStringLiteral("untouched")}};
    readout.start = QDateTime(QDate(2020, 2, 29), QTime(12, 0), Qt::UTC);
    return readout;
}

int measurementsIn(const QByteArray &records)
{
    int measurements = 0;
    for (int i = 0; i < records.size(); i += recordSize)
        measurements += records.at(i) == 2;
    return measurements;
}

void requireWhole(const LoggerReadout &readout, const QByteArray &records, quint8 channelCount)
{
    require(readout.start.isValid());
    int items = 0;
    for (auto channel = readout.items.begin(); channel != readout.items.end(); ++channel) {
        require(channel.key() < channelCount && !channel.value().isEmpty());
        items += channel.value().size();
        for (const LoggerItem &item : channel.value())
            require(!item.dim.isEmpty());
    }
    require(items == measurementsIn(records));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const quint8 channelCount = input.byte();
    const QByteArray records = input.rest();
    LoggerReadout readout = untouched();
    if (decodeLoggerRecords(records, channelCount, readout)) {
        require(!records.isEmpty() && records.size() % recordSize == 0);
        requireWhole(readout, records, channelCount);
    } else {
        require(readout.start == untouched().start && readout.items.size() == 1);
        require(readout.items.value(3).value(0).dim == untouched().items[3].at(0).dim);
    }
    return 0;
}
