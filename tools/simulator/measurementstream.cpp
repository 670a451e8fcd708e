#include "simulator/measurementstream.h"

#include "device/vocabulary.h"
#include "simulator/instrumentmemory.h"

namespace
{

/** Value and unit letter of a reading at this temperature. */
QByteArray reading(MeasurementType measurementType, double celsius)
{
    switch (measurementType) {
    case measResistance:
        return QByteArray::number(platinumResistance(celsius), 'f', 5) + 'A';
    case measVoltage:
        return QByteArray::number(thermocoupleVoltage(celsius), 'f', 5) + 'C';
    default:
        return QByteArray::number(celsius, 'f', 4) + 'B';
    }
}

} // namespace

QByteArray MeasurementStream::nextToken(const InstrumentMemory &memory, double seconds)
{
    const int count = memory.model().channels;
    for (int tried = 0; tried < count; ++tried) {
        m_channel = (m_channel + 1) % count;
        if (!memory.isChannelOn(m_channel))
            continue;
        const double celsius = signalTemperature(m_signal, m_channel + 1, seconds);
        return QByteArray::number(m_channel + 1) + ':' +
               reading(memory.measurementType(m_channel), celsius) + ' ';
    }
    return {};
}
