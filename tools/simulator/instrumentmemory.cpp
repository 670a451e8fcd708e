#include "simulator/instrumentmemory.h"

#include "device/configuration.h"
#include "device/featurenox8.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"
#include "simulator/factorylog.h"

namespace
{

constexpr int channelBlockSize = 12;
constexpr int channelBlockSettings = 4; // where the operating settings stand in it
constexpr int channelBlockRecord = 8;   // and the channel's record
constexpr int clockSize = 8;
constexpr int serialNumberSize = 4;
constexpr int serialNumberOffset = 20; // in the extended identification

/** The identification as it is read: an extended one has the serial number behind. */
QByteArray identificationOf(const optionsNOX8 &image, const InstrumentModel &model)
{
    const QByteArray written = taken(image.getIdentData());
    return model.extended ? written + taken(image.getSNData()) : written;
}

} // namespace

InstrumentMemory::InstrumentMemory(const InstrumentIdentity &identity)
    : m_model(modelOf(identity))
{
    const auto image = factoryImage(identity);
    m_blocks[2] = taken(image->getData());
    m_blocks[3] = taken(image->getRefData(false));
    m_blocks[5] = factoryLog(m_model.channels, identity.loggerMarks);
    if (m_model.extended)
        m_blocks[9] = taken(image->getRefShiftData());
    if (identity.answersIdentification)
        m_blocks[51] = identificationOf(*image, m_model);
}

int InstrumentMemory::writeLength(quint8 address) const
{
    switch (address) {
    case 0:
        return m_blocks[2].size();
    case 1:
        return m_blocks[3].size();
    case 4:
        return channelBlockSize;
    case 6:
        return clockSize;
    case 8:
        return m_blocks.value(9).size();
    case 50:
        return m_model.extended ? serialNumberOffset : m_blocks.value(51).size();
    case 52:
        return m_model.extended ? serialNumberSize : 0;
    default:
        return 0;
    }
}

void InstrumentMemory::write(quint8 address, const QByteArray &bytes)
{
    const QByteArray accepted = bytes.left(writeLength(address));
    switch (address) {
    case 0:
        return overwrite(2, 0, accepted);
    case 1:
        return overwrite(3, 0, accepted);
    case 4:
        return writeChannel(accepted);
    case 6:
        m_clock = accepted;
        return;
    case 8:
        return overwrite(9, 0, accepted);
    case 50:
        return overwrite(51, 0, accepted);
    case 52:
        return overwrite(51, serialNumberOffset, accepted);
    default:
        return;
    }
}

bool InstrumentMemory::isChannelOn(int channel) const
{
    return settingsOf(channel).onOff == 1;
}

MeasurementType InstrumentMemory::measurementType(int channel) const
{
    return settingsOf(channel).measType;
}

ChannelSettings InstrumentMemory::settingsOf(int channel) const
{
    ChannelSettings settings;
    decodeChannel(m_blocks[2], ConfigurationLayout(m_model.channels).channelOffset(channel),
                  settings);
    return settings;
}

void InstrumentMemory::overwrite(quint8 address, int offset, const QByteArray &bytes)
{
    const auto block = m_blocks.find(address);
    if (block != m_blocks.end())
        block->replace(offset, bytes.size(), bytes);
}

void InstrumentMemory::writeChannel(const QByteArray &bytes)
{
    const int channel = bytes.isEmpty() ? 0xFF : quint8(bytes.at(0));
    if (bytes.size() < channelBlockSize || channel >= m_model.channels)
        return;
    overwrite(2, 0, bytes.mid(channelBlockSettings, operatingSettingsSize));
    overwrite(2, ConfigurationLayout(m_model.channels).channelOffset(channel),
              bytes.mid(channelBlockRecord, channelRecordSize));
}
