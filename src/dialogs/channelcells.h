#pragma once

#include <QString>

#include <array>

class optionsNOX8;

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
