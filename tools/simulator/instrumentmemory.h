#pragma once

#include "device/configuration.h"
#include "simulator/factoryimage.h"

#include <QByteArray>
#include <QMap>

/**
 * The memory blocks of an instrument and what a write changes in them.
 *
 * They begin as the blocks of the factory image. From then on they are bytes, which need not make
 * sense.
 *
 * Blocks are read at the addresses 2 (configuration), 3 (reference data), 5 (log, without its end
 * record), 9 (zero shifts) and 51 (identification), and written at 0, 1, 4 (one channel), 6
 * (clock), 8, 50 and 52 (serial number). 8, 9 and 52 exist on extended models only.
 */
class InstrumentMemory
{
public:
    explicit InstrumentMemory(const InstrumentIdentity &identity);

    const InstrumentModel &model() const { return m_model; }

    bool isReadable(quint8 address) const { return m_blocks.contains(address); }
    bool isWritable(quint8 address) const { return writeLength(address) > 0; }
    /** The block as a read at `address` would deliver it now; empty if there is none. */
    QByteArray block(quint8 address) const { return m_blocks.value(address); }

    /** How many bytes a write to `address` takes; 0 if nothing can be written there. */
    int writeLength(quint8 address) const;
    /** Stores `bytes`; a write shorter than the block changes its beginning only. */
    void write(quint8 address, const QByteArray &bytes);

    /** Whether the channel (0-based) is switched on in the configuration. */
    bool isChannelOn(int channel) const;
    /** What the channel measures. */
    MeasurementType measurementType(int channel) const;
    /** The 8 bytes last written to the clock; empty before the first write. */
    QByteArray clock() const { return m_clock; }

private:
    ChannelSettings settingsOf(int channel) const;
    void overwrite(quint8 address, int offset, const QByteArray &bytes);
    void writeChannel(const QByteArray &bytes);

    const InstrumentModel &m_model;
    QMap<quint8, QByteArray> m_blocks;
    QByteArray m_clock;
};
