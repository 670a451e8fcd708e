#pragma once

#include "device/channelsettings.h"
#include "device/featurerecord.h"
#include "device/operatingsettings.h"

#include <QVector>

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
