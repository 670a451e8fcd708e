#pragma once

/**
 * Where everything stands in a settings file: line numbers from 0, for an instrument with so many
 * channels, and with or without the lines on compensation and short circuit.
 */
class SettingsLayout
{
public:
    static constexpr int resistorLine = 1;
    static constexpr int voltageLine = 5;
    static constexpr int modeLine = 6;
    static constexpr int roundingLine = 7;
    static constexpr int compensationModeLine = 8;
    static constexpr int linesOfChannel = 5;
    static constexpr int entryLines = 56;
    static constexpr int coefficientLines = 10;
    static constexpr int reservedLines = 41;

    constexpr SettingsLayout(int channels, bool hasCompensation)
        : m_channels(channels)
        , m_hasCompensation(hasCompensation)
    {
    }

    constexpr int channelLine(int channel) const { return 9 + linesOfChannel * channel; }
    constexpr int nameLine(int channel) const { return channelLine(m_channels) + channel; }
    constexpr int entryLine(int channel) const
    {
        return nameLine(m_channels) + entryLines * channel;
    }
    constexpr int coefficientLine(int channel) const
    {
        return entryLine(m_channels) + coefficientLines * channel;
    }
    constexpr int formLine(int channel) const { return coefficientLine(m_channels) + channel; }
    constexpr int modelLine() const { return formLine(m_channels) + reservedLines; }
    constexpr int timeLine() const { return modelLine() + 1; }
    constexpr int temperatureLine() const { return timeLine() + 1; }
    /** Two lines for each reference resistor, then two for the voltage. */
    constexpr int correctionLine() const { return temperatureLine() + 1; }
    constexpr int reversalLine() const { return correctionLine() + 10; }
    constexpr int compensationLine(int channel) const { return reversalLine() + 1 + channel; }
    constexpr int shortCircuitLine() const { return compensationLine(m_channels); }
    constexpr int unitLine(int channel) const
    {
        return (m_hasCompensation ? shortCircuitLine() : reversalLine()) + 1 + channel;
    }
    constexpr int extendedPart() const { return unitLine(m_channels); }

private:
    int m_channels;
    bool m_hasCompensation;
};

static_assert(SettingsLayout(8, false).modelLine() == 634);
static_assert(SettingsLayout(16, false).modelLine() == 1218);
