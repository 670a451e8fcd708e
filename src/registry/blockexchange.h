#pragma once

#include "registry/noxlist.h"

/** The block that a code asks to be written from the image; empty when the instrument has no such
 *  block, or may not have it written: clock and identification only where the identity came from
 *  the instrument, zero shifts and serial number only on extended models. */
QByteArray pendingBlock(const optionsNOX8 &image, optionsNOX8::tx_code code);

/**
 * Reads the blocks of instruments, and writes those that their images ask for, at the multiplexer.
 *
 * A channel is written at once. Of the other blocks a record notes which ones wait; each is then
 * written once, as the image has it at that moment.
 */
class BlockExchange : public QObject
{
    Q_OBJECT
public:
    /** The multiplexer is not owned. */
    explicit BlockExchange(NOXSerialPort *serialPort)
        : m_serialPort(serialPort)
    {
    }

    /** Does from now on what the image of a record asks for. */
    void follow(noxList::_nox *nox);
    /** Tells the multiplexer from now on which command byte the model of a record takes. */
    void followModel(const noxList::_nox *nox);
    /** Tells it now. */
    void setCommandByte(const noxList::_nox &nox) const;

    /** Reads all blocks of an instrument whose type is known. */
    void readAll(const noxList::_nox &nox) const;
    /** The same without the identification. */
    void readConfiguration(const noxList::_nox &nox) const;

    /** Has a block wait until the record's timer, which begins anew, has run out. */
    static void request(noxList::_nox *nox, optionsNOX8::tx_code code);
    /** Writes the blocks that wait, in the order of the first requests. */
    void writeWaiting(noxList::_nox *nox);

signals:
    /** A block is to be written now; it stays the sender's. */
    void write(int devIndex, QByteArray *block, quint8 address);

private:
    void read(const noxList::_nox &nox, quint8 address, int size,
              noxQueryMode mode = noxQueryModeNormal) const;
    void readAgain(const noxList::_nox &nox) const;
    void writeBlock(int devIndex, QByteArray block, quint8 address);

    NOXSerialPort *m_serialPort;
};
