#pragma once

#include "simulator/instrumentmodel.h"

#include <QByteArray>
#include <QMap>

/** What distinguishes one simulated instrument's memory from another's. */
struct InstrumentIdentity {
    QString modelName = QStringLiteral("NOX B");
    quint16 serialNumber = 1234;
    QString name;                      ///< own name, extended models only; 16 characters are kept
    int loggerMarks = 40;              ///< time marks in the recorded log; 0: nothing recorded
    bool answersIdentification = true; ///< false: an older instrument without address 51
};

/**
 * The memory blocks of an instrument and what a write changes in them.
 *
 * Blocks are read at the addresses 2 (configuration), 3 (reference data), 5 (log, without its end
 * record), 9 (zero shifts) and 51 (identification), and written at 0, 1, 4 (one channel), 6
 * (clock), 8, 50 and 52 (serial number). 8, 9 and 52 exist on extended models only.
 */
class InstrumentMemory
{
public:
    /** An unknown model name gives a "NOX B". */
    explicit InstrumentMemory(const InstrumentIdentity &identity);

    const InstrumentModel &model() const { return m_model; }
    /** The serial number as the identification holds it now. */
    quint16 serialNumber() const;

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
    /** Measurement type code of the channel: 0x00 Ω, 0x10 °C, 0x20 mV. */
    quint8 measurementType(int channel) const;
    /** The 8 bytes last written to the clock; empty before the first write. */
    QByteArray clock() const { return m_clock; }

private:
    void overwrite(quint8 address, int offset, const QByteArray &bytes);
    void writeChannel(const QByteArray &bytes);

    InstrumentModel m_model;
    QMap<quint8, QByteArray> m_blocks;
    QByteArray m_clock;
};
