#pragma once

#include "dialogs/channelcells.h"

#include <QVector>

#include <array>

class HeldBlocks;
class optionsNOX8;

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
