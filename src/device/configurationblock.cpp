#include "device/configurationblock.h"

namespace
{

QByteArray withThreeZeros(quint8 byte)
{
    return QByteArray(1, char(byte)) + QByteArray(3, '\0');
}

} // namespace

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
