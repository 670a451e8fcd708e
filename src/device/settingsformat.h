#pragma once

#include "device/configuration.h"

#include <QString>

#include <optional>

/**
 * Where everything stands in a settings file: line numbers from 0, for an instrument with so many
 * channels, and with or without the lines on compensation and short circuit. What precedes these
 * has its place without them too.
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

    explicit constexpr SettingsLayout(int channels, bool hasCompensation = false)
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

static_assert(SettingsLayout(8).modelLine() == 634);
static_assert(SettingsLayout(16).modelLine() == 1218);

/**
 * How a settings file writes what an instrument keeps as codes.
 *
 * What a text or number of a file does not mean is not there (`std::nullopt`).
 */

/** The text that ends the name of a model, and the line that begins the part of extended ones. */
constexpr char baseRevisionText[] = "rev3";
constexpr char extendedRevisionText[] = "rev4";

/** "Вкл" or "Выкл". */
QString switchText(qint8 onOff);
bool isSwitchedOn(const QString &text);

/** "Ом", "°C" or "mV"; empty for a code that is none of the instruments'. */
QString unitText(MeasurementType type);
std::optional<MeasurementType> unitFromText(const QString &text);

/** A characteristic as a channel chooses it. */
struct CharacteristicChoice {
    CharacteristicSource source;
    quint8 index;
};

/** 1 to 16, 21 to 33 or 41 to 53; 1 for none, and for one that its list does not have. */
int characteristicCode(const ChannelSettings &channel);
std::optional<CharacteristicChoice> characteristicFromCode(int code);
/** Codes beyond this one are no fault: other programs may mean something by them. */
constexpr int lastCharacteristicCode = 53;

/** The characteristic of a compensation as a channel chooses it. */
struct CompensationChoice {
    CompensationSource source;
    quint8 index;
};

/** 1 to 16 or 21 to 33; empty for thermocouples and none, which a file does not keep, and for one
 *  that its list does not have. */
QString compensationCode(const ChannelSettings &channel);
std::optional<CompensationChoice> compensationFromCode(int code);
constexpr int lastCompensationCode = 33; ///< likewise

/** The measurement time as one character, U+0001 to U+0009. A longer time, whose character would be
 *  a line end or worse, is written as the longest of these. */
QString timeCharacter(quint8 measurementTime);
std::optional<quint8> timeFromText(const QString &text);

/** The type as files number it: tables and the ITS-90 form have each other's number. */
int formCode(int type);
int typeFromFormCode(int code);

/** A pair of a table: tenths in 5 characters, then ten-thousandths in 6. */
QString tableLine(const bFloat &first, const bFloat &second);
/** The two texts of such a line, with one and with four decimals. */
QStringList textsFromTableLine(const QString &line);
/** Whether the pair can be read back from its line. */
bool fitsTableLine(const bFloat &first, const bFloat &second);
