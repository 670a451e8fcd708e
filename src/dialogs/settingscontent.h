#pragma once

#include <QString>
#include <QVector>

#include <array>

class HeldBlocks;
class optionsNOX8;

// What the settings dialog and the cards show of an instrument, as plain values.

/** What of an instrument can be seen and changed in its settings. */
struct FieldStates {
    bool isKnown = false;    ///< its model is known: it has references, and can be read
    bool isExtended = false; ///< it has a name of its own, and zero shifts
    bool isTypeOpen = false; ///< nobody has told its model yet: the user may
    bool isStored = false;   ///< it stands in the database
};

/** `databaseId` is below 1 for an instrument that is not stored. */
FieldStates fieldStates(const optionsNOX8 &image, int databaseId);

/** Codes of the cold-junction compensation. */
constexpr quint8 compensationByOneChannel = 1;
constexpr quint8 compensationOfAllChannels = 2;

/**
 * How the settings call the cold-junction compensation by one channel: by the channel that carries
 * the sensor. That is the model's last one, or the one before when the short circuit (code 0)
 * occupies the last; models without a short circuit have it in channel 7.
 */
QString compensatingChannelText(quint32 typeCode, quint8 shortCircuitCode);

/** The columns in which the settings of a channel are shown. */
enum ChannelSetting {
    OnOffSetting,
    UnitSetting,
    CurrentSetting,
    ResistorSetting,
    CharacteristicSetting,
    CompensationSetting,
    channelSettings ///< how many there are
};

/** What the row of a channel shows. */
struct ChannelCells {
    std::array<QString, channelSettings> texts;
    bool isOn = false;          ///< else all but the first cell are faint
    bool isCompensated = false; ///< a characteristic for its compensation can be chosen
};

/** The row of a channel (from 0) that the model has. */
ChannelCells channelCells(const optionsNOX8 &image, quint8 ch);

/** Whether the channel uses a thermocouple, and so may have a compensation of its own. */
bool usesThermocouple(const optionsNOX8 &image, quint8 ch);

/** What of a configuration differs from the one that the instrument is known to hold. */
struct ConfigurationChanges {
    bool identity = false; ///< the name is still to be written
    bool rounding = false;
    bool measurementTime = false;
    bool mode = false;
    bool compensation = false;
    bool reversal = false;
    bool shortCircuit = false;
    QVector<std::array<bool, channelSettings>> channels; ///< as many as the model has, or none
    QVector<bool> characteristics;                       ///< likewise
};

/** Nothing differs while nothing is known of the instrument. */
ConfigurationChanges configurationChanges(const HeldBlocks &held, const optionsNOX8 &image);
