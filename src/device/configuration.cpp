#include "device/configuration.h"

namespace
{

constexpr quint8 sourceBits = 0xC0;
constexpr quint8 compensationSourceBits = 0x30;

QByteArray withThreeZeros(quint8 byte)
{
    return QByteArray(1, char(byte)) + QByteArray(3, '\0');
}

} // namespace

QByteArray encodeOperatingSettings(const OperatingSettings &settings)
{
    QByteArray bytes(operatingSettingsSize, '\0');
    bytes[0] = char(lowNibble(settings.devMeasTime) << 4 | lowNibble(settings.devMeasMode));
    bytes[1] = char(highNibble(settings.devMeasRound) | lowNibble(settings.devCompensTP));
    bytes[2] = char(highNibble(settings.devChRevers) | lowNibble(settings.devZakorotka));
    return bytes;
}

void decodeOperatingSettings(const QByteArray &block, OperatingSettings &settings)
{
    const auto timeAndMode = quint8(block.at(0));
    const auto roundAndCompensation = quint8(block.at(1));
    const auto reversalAndShortCircuit = quint8(block.at(2));
    settings.devMeasTime = timeAndMode >> 4;
    settings.devMeasMode = lowNibble(timeAndMode);
    settings.devMeasRound = highNibble(roundAndCompensation);
    settings.devCompensTP = lowNibble(roundAndCompensation);
    settings.devChRevers = highNibble(reversalAndShortCircuit);
    settings.devZakorotka = lowNibble(reversalAndShortCircuit);
}

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

QByteArray encodeConfiguration(const Configuration &configuration, quint8 familyCode)
{
    QByteArray block = encodeOperatingSettings(configuration.settings);
    block.reserve(ConfigurationLayout(configuration.channels.size()).size());
    for (const ChannelSettings &channel : configuration.channels)
        block += encodeChannel(channel);
    block += withThreeZeros(familyCode);
    for (const FeatureRecord &feature : configuration.features)
        block += encodeFeature(feature);
    return block;
}

bool decodeConfiguration(const QByteArray &block, Configuration &configuration)
{
    const int channels = configuration.channels.size();
    const ConfigurationLayout layout(channels);
    if (block.size() != layout.size() || configuration.features.size() != channels)
        return false;
    decodeOperatingSettings(block, configuration.settings);
    for (int i = 0; i < channels; ++i) {
        decodeChannel(block, layout.channelOffset(i), configuration.channels[i]);
        decodeFeature(block.mid(layout.featureOffset(i), featureRecordSize),
                      configuration.features[i]);
    }
    return true;
}

QByteArray encodeChannelBlock(quint8 channel, const OperatingSettings &settings,
                              const ChannelSettings &channelSettings)
{
    return withThreeZeros(channel) + encodeOperatingSettings(settings) +
           encodeChannel(channelSettings);
}
