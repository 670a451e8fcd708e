#include "device/channelsettings.h"

#include "device/nibbles.h"

namespace
{

constexpr quint8 sourceBits = 0xC0;
constexpr quint8 compensationSourceBits = 0x30;

} // namespace

QByteArray encodeChannel(const ChannelSettings &channel)
{
    QByteArray record(channelRecordSize, '\0');
    record[0] = char(channel.onOff);
    // the high nibble of both kinds of temperature is the same
    record[1] = char(highNibble(channel.measType) | lowNibble(channel.current));
    record[2] = char(lowNibble(channel.resist) << 4 | lowNibble(channel.feature));
    record[3] = char((channel.featureType & sourceBits) |
                     (channel.featureTypeCompensTP & compensationSourceBits) |
                     lowNibble(channel.featureCompensTP));
    return record;
}

void decodeChannel(const QByteArray &block, int offset, ChannelSettings &channel)
{
    const auto typeAndCurrent = quint8(block.at(offset + 1));
    const auto resistorAndFeature = quint8(block.at(offset + 2));
    const auto sources = quint8(block.at(offset + 3));

    channel.onOff = qint8(block.at(offset));
    channel.measType = MeasurementType(highNibble(typeAndCurrent));
    if (channel.measType == measTemperature && !channel.dimCust.isEmpty())
        channel.measType = measTemperatureCustom;
    channel.current = lowNibble(typeAndCurrent);
    channel.resist = resistorAndFeature >> 4;
    channel.feature = lowNibble(resistorAndFeature);
    channel.featureType = CharacteristicSource(sources & sourceBits);
    channel.featureTypeCompensTP = CompensationSource(sources & compensationSourceBits);
    channel.featureCompensTP = lowNibble(sources);
}
