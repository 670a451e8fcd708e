#include "simulator/linefaults.h"

#include <utility>

LineFaults::LineFaults(const FaultPlan &faults)
    : m_faults(faults)
    , m_chance(faults.seed)
{
}

QByteArray LineFaults::passed(const QByteArray &bytes)
{
    if (m_faults.lossProbability <= 0.0 && m_faults.garbleProbability <= 0.0)
        return bytes;
    QByteArray arrived;
    for (const char byte : bytes) {
        if (strikes(m_faults.lossProbability))
            continue;
        const bool garbled = strikes(m_faults.garbleProbability);
        arrived += garbled ? char(byte ^ 1 << chosen(0, 7)) : byte;
    }
    return arrived;
}

QByteArray LineFaults::noisyToken(const QByteArray &token)
{
    const QByteArray burst = foreignBytes(std::exchange(m_faults.streamBurstBytes, 0));
    if (!strikes(m_faults.streamNoiseProbability))
        return burst + token;
    switch (chosen(0, 2)) {
    case 0:
        return burst + foreignBytes(chosen(1, 12)) + token;
    case 1:
        return burst + QByteArray::number(chosen(0, 99)) + "::" + token;
    default:
        return burst + token + foreignBytes(chosen(1, 12)) + ' ';
    }
}

bool LineFaults::strikes(double probability)
{
    return probability > 0.0 && std::uniform_real_distribution<>(0.0, 1.0)(m_chance) < probability;
}

int LineFaults::chosen(int lowest, int highest)
{
    return std::uniform_int_distribution<>(lowest, highest)(m_chance);
}

/** Bytes outside ASCII: no digit, colon or space among them, so that they never make a reading. */
QByteArray LineFaults::foreignBytes(int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes += char(chosen(0x80, 0xFF));
    return bytes;
}
