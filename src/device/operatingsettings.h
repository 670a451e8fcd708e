#pragma once

#include <QByteArray>

/** Settings of the instrument as a whole, with the codes that vocabulary.h lists. */
struct OperatingSettings {
    /** Index of the setting "Закоротка". */
    using _devZakorotka = quint8;

    quint8 devMeasTime = 0;         ///< measurement time, 0 to 15
    quint8 devMeasRound = 0x20;     ///< temperature rounding, a high nibble
    quint8 devMeasMode = 2;         ///< measurement mode, 0 to 15
    quint8 devCompensTP = 0;        ///< cold-junction compensation, 0 to 15: 0 no, 1 yes, 2 all
    quint8 devChRevers = 0;         ///< channel reversal, a high nibble
    _devZakorotka devZakorotka = 1; ///< short circuit, 0 to 15: 0 yes, 1 no
};

constexpr int operatingSettingsSize = 4;

/** The four bytes with which a configuration block begins. Of each value only its nibble is taken.
 */
QByteArray encodeOperatingSettings(const OperatingSettings &settings);

/** Reads the settings at the beginning of a block of at least four bytes. */
void decodeOperatingSettings(const QByteArray &block, OperatingSettings &settings);
