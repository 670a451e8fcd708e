#pragma once

#include "device/featurenox8.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/** Two values of four bits in one byte: the high one in its place, the low one beside it. */
constexpr quint8 lowNibble(quint8 byte)
{
    return byte & 0x0F;
}

constexpr quint8 highNibble(quint8 byte)
{
    return byte & 0xF0;
}

/** Whether a number can be kept in four bits. */
constexpr bool fitsNibble(int number)
{
    return number >= 0 && number <= 0x0F;
}

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

/** What a channel shows. */
enum MeasurementType : quint8 {
    measResistance = 0x00,
    measTemperature = 0x10,
    measTemperatureCustom = 0x11, ///< in a user's unit; to the instrument it is 0x10
    measVoltage = 0x20,
};

/** Where the characteristic of a channel comes from. */
enum CharacteristicSource : quint8 {
    featureIndividual = 0x00,            ///< one of the instrument's 16 own
    featureResistanceThermometer = 0x40, ///< the standard list of resistance thermometers
    featureThermocouple = 0x80,          ///< the standard list of thermocouples
    featureNone = 0xC0,
};

/** Where the characteristic of a channel's cold-junction compensation comes from. */
enum CompensationSource : quint8 {
    compensIndividual = 0x00,
    compensResistanceThermometer = 0x10,
    compensThermocouple = 0x20,
    compensNone = 0x30,
};

/** The source of a compensation and that of a characteristic are the same, two bits apart. */
constexpr CompensationSource compensationSource(CharacteristicSource source)
{
    return CompensationSource(source >> 2);
}
constexpr CharacteristicSource characteristicSource(CompensationSource source)
{
    return CharacteristicSource(source << 2);
}

/** Settings of one channel. */
struct ChannelSettings {
    qint8 onOff = 1; ///< the whole first byte of the channel's record; 0 is off, 1 is on
    MeasurementType measType = measResistance;
    QString dimCust;             ///< the user's unit, at most 10 characters; not in the record
    quint8 current = 0;          ///< index of the excitation current, 0 to 15
    quint8 resist = 0;           ///< index of the reference resistor, 0 to 15
    quint8 feature = 0;          ///< index of the characteristic, 0 to 15
    quint8 featureCompensTP = 0; ///< index of the compensation's characteristic, 0 to 15
    CharacteristicSource featureType = featureIndividual;
    CompensationSource featureTypeCompensTP = compensIndividual;
};

constexpr int channelRecordSize = 4;

/** The record of four bytes. Of each index only its nibble is taken. */
QByteArray encodeChannel(const ChannelSettings &channel);

/** Reads the record at `offset` of a block, which must hold it. A temperature is in the user's unit
 *  where the channel has one. */
void decodeChannel(const QByteArray &block, int offset, ChannelSettings &channel);

/** Where everything stands in the configuration block of an instrument with so many channels. */
class ConfigurationLayout
{
public:
    explicit constexpr ConfigurationLayout(int channels)
        : m_channels(channels)
    {
    }

    constexpr int channelOffset(int channel) const
    {
        return operatingSettingsSize + channelRecordSize * channel;
    }
    constexpr int familyOffset() const { return channelOffset(m_channels); }
    constexpr int featureOffset(int channel) const
    {
        return familyOffset() + 4 + featureRecordSize * channel;
    }
    constexpr int size() const { return featureOffset(m_channels); }

private:
    int m_channels;
};

static_assert(ConfigurationLayout(8).size() == 3976);
static_assert(ConfigurationLayout(16).size() == 7944);

/** What a configuration block holds: as many characteristics as channels, 8 or 16. */
struct Configuration {
    OperatingSettings settings;
    QVector<ChannelSettings> channels;
    QVector<FeatureRecord> features;
};

/** The configuration block of 3976 or 7944 bytes. */
QByteArray encodeConfiguration(const Configuration &configuration, quint8 familyCode);

/**
 * Reads a block into a configuration that has the right number of channels and characteristics.
 * What the block does not hold, as the users' units, stays. False, and nothing read, unless the
 * block has the size for them.
 */
bool decodeConfiguration(const QByteArray &block, Configuration &configuration);

/** The block of 12 bytes that sets one channel (from 0) and, with it, the operating settings. */
QByteArray encodeChannelBlock(quint8 channel, const OperatingSettings &settings,
                              const ChannelSettings &channelSettings);
