#pragma once

#include <QByteArray>
#include <QString>

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
