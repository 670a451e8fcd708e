#pragma once

#include "device/channelsettings.h"
#include "device/featurerecord.h"

#include <QString>

#include <optional>

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
