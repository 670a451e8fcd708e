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

/** 1 to 16, 21 to 33 or 41 to 53; beyond that for an index outside the standard list. 1 for none.
 */
int characteristicCode(const ChannelSettings &channel);
std::optional<CharacteristicChoice> characteristicFromCode(int code);

/** The characteristic of a compensation as a channel chooses it. */
struct CompensationChoice {
    CompensationSource source;
    quint8 index;
};

/** 1 to 16 or 21 to 33; empty for thermocouples and none, which a file does not keep. */
QString compensationCode(const ChannelSettings &channel);
std::optional<CompensationChoice> compensationFromCode(int code);

/** The type as files number it: tables and the ITS-90 form have each other's number. */
int formCode(int type);
int typeFromFormCode(int code);

/** A pair of a table: tenths in 5 characters, then ten-thousandths in 6. */
QString tableLine(const bFloat &first, const bFloat &second);
/** The two texts of such a line, with one and with four decimals. */
QStringList textsFromTableLine(const QString &line);
/** Whether the pair can be read back from its line. */
bool fitsTableLine(const bFloat &first, const bFloat &second);
