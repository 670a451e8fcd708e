#pragma once

#include "simulator/thermometrysignal.h"

#include <QByteArray>

class InstrumentMemory;

/** Goes round the channels that are on and words each reading as a token of the stream. */
class MeasurementStream
{
public:
    explicit MeasurementStream(const ThermometrySignal &signal = {})
        : m_signal(signal)
    {
    }

    /** The next token, for example "3:21.5123B "; empty when no channel is on. */
    QByteArray nextToken(const InstrumentMemory &memory, double seconds);

private:
    ThermometrySignal m_signal;
    int m_channel = -1; ///< 0-based, the one that was measured last
};
