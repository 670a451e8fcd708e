#include "simulator/factorylog.h"

#include "device/bfloat.h"

namespace
{

QByteArray timeMark(float seconds)
{
    return QByteArray("\x01\0\0\0", 4) + bFloat(seconds).getByte();
}

QByteArray storedTemperature(int channel, float celsius)
{
    return QByteArray(1, 2) + char(channel) + bFloat(celsius).getByte() + char(0x10) + '\0';
}

} // namespace

QByteArray factoryLog(int channels, int marks)
{
    if (marks <= 0)
        return {};
    QByteArray records("\x00\x11\x05\x17\x09\x1E\x00\x00", 8);
    for (int mark = 0; mark < marks; ++mark) {
        records += timeMark(10.0F * float(mark));
        for (int channel = 0; channel < channels; ++channel)
            records +=
                storedTemperature(channel, 21.0F + 0.05F * float(mark) + 0.1F * float(channel));
    }
    return records;
}
