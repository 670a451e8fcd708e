#include "simulator/instrumentmemory.h"

#include "simulator/factoryblocks.h"

namespace
{

constexpr int channelTableOffset = 4;
constexpr int channelRecordSize = 4;
constexpr int channelBlockSize = 12;
constexpr int clockSize = 8;
constexpr int serialNumberSize = 4;
constexpr int serialNumberOffset = 20; // in the extended identification
constexpr int extendedIdentificationWriteSize = 20;

InstrumentModel modelNamed(const QString &name)
{
    const InstrumentModel *model = findInstrumentModel(name);
    return model ? *model : *findInstrumentModel(QStringLiteral("NOX B"));
}

} // namespace

InstrumentMemory::InstrumentMemory(const InstrumentIdentity &identity)
    : m_model(modelNamed(identity.modelName))
{
    m_blocks[2] = factoryConfiguration(m_model);
    m_blocks[3] = factoryReferenceData(m_model);
    m_blocks[5] = factoryLog(m_model, identity.loggerMarks);
    if (m_model.isExtended())
        m_blocks[9] = factoryZeroShifts();
    if (identity.answersIdentification)
        m_blocks[51] = factoryIdentification(m_model, identity.serialNumber, identity.name);
}

quint16 InstrumentMemory::serialNumber() const
{
    const QByteArray identification = block(51);
    if (identification.isEmpty())
        return 0;
    const auto byteAt = [&](int offset) { return quint8(identification.at(offset)); };
    return m_model.isExtended()
               ? quint16(byteAt(serialNumberOffset) | byteAt(serialNumberOffset + 1) << 8)
               : quint16(byteAt(6) << 8 | byteAt(7));
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
        return m_model.isExtended() ? extendedIdentificationWriteSize : m_blocks.value(51).size();
    case 52:
        return m_model.isExtended() ? serialNumberSize : 0;
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
    return m_blocks[2].at(channelTableOffset + channelRecordSize * channel) == 1;
}

quint8 InstrumentMemory::measurementType(int channel) const
{
    return quint8(m_blocks[2].at(channelTableOffset + channelRecordSize * channel + 1)) & 0xF0;
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
    if (bytes.size() < channelBlockSize || channel >= m_model.channelCount)
        return;
    overwrite(2, 0, bytes.mid(4, 4));
    overwrite(2, channelTableOffset + channelRecordSize * channel, bytes.mid(8, channelRecordSize));
}
