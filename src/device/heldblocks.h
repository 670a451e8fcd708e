#pragma once

#include "device/configuration.h"
#include "device/instrumentblocks.h"

#include <optional>

/** What an instrument is known to hold: the blocks last read from it or written to it. */
class HeldBlocks
{
public:
    /** A block was read at an address; what is no configuration, reference or shift block, or has
     *  not its size, changes nothing. */
    void noteRead(quint8 address, const QByteArray &block);
    /** A block was written to an address. That of one channel changes what is known of it. */
    void noteWritten(quint8 address, const QByteArray &block);

    /** The configuration of an instrument with so many channels; nothing when none is known. */
    std::optional<Configuration> configuration(int channels) const;
    std::optional<ReferenceData> referenceData() const { return m_referenceData; }
    std::optional<ZeroShifts> zeroShifts() const { return m_zeroShifts; }

private:
    void patchChannel(const QByteArray &channelBlock);

    QByteArray m_configuration; ///< the block; empty while unknown
    std::optional<ReferenceData> m_referenceData;
    std::optional<ZeroShifts> m_zeroShifts;
};
