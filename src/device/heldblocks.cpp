#include "device/heldblocks.h"

#include "device/optionsnox8.h"

namespace
{

constexpr int eightChannels = 8;
constexpr int sixteenChannels = 16;

bool isConfiguration(const QByteArray &block)
{
    return block.size() == ConfigurationLayout(eightChannels).size() ||
           block.size() == ConfigurationLayout(sixteenChannels).size();
}

} // namespace

void HeldBlocks::noteRead(quint8 address, const QByteArray &block)
{
    ReferenceData references;
    ZeroShifts shifts;
    if (address == configurationAddress && isConfiguration(block))
        m_configuration = block;
    else if (address == referenceDataAddress && decodeReferenceData(block, references))
        m_referenceData = references;
    else if (address == zeroShiftsAddress && decodeZeroShifts(block, shifts))
        m_zeroShifts = shifts;
}

void HeldBlocks::noteWritten(quint8 address, const QByteArray &block)
{
    switch (address) {
    case optionsNOX8::txConfiguration:
        return noteRead(configurationAddress, block);
    case optionsNOX8::txReferenceData:
        return noteRead(referenceDataAddress, block);
    case optionsNOX8::txZeroShifts:
        return noteRead(zeroShiftsAddress, block);
    case channelWriteAddress:
        return patchChannel(block);
    default:
        break;
    }
}

/** A channel's block is its number in four bytes, the operating settings and its record. */
void HeldBlocks::patchChannel(const QByteArray &channelBlock)
{
    constexpr int settingsOffset = 4;
    constexpr int recordOffset = settingsOffset + operatingSettingsSize;
    if (m_configuration.isEmpty() || channelBlock.size() != recordOffset + channelRecordSize)
        return;
    const bool isSmall = m_configuration.size() == ConfigurationLayout(eightChannels).size();
    const int channels = isSmall ? eightChannels : sixteenChannels;
    const int channel = quint8(channelBlock.at(0));
    if (channel >= channels)
        return;
    m_configuration.replace(0, operatingSettingsSize,
                            channelBlock.mid(settingsOffset, operatingSettingsSize));
    m_configuration.replace(ConfigurationLayout(channels).channelOffset(channel), channelRecordSize,
                            channelBlock.mid(recordOffset));
}

std::optional<Configuration> HeldBlocks::configuration(int channels) const
{
    Configuration held;
    held.channels.resize(channels);
    held.features.resize(channels);
    if (channels == 0 || !decodeConfiguration(m_configuration, held))
        return std::nullopt;
    return held;
}
