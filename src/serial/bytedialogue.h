#pragma once

#include "serial/linkschedule.h"

#include <QByteArray>
#include <QElapsedTimer>

#include <atomic>
#include <functional>

class QSerialPort;

/** Whether an error of QSerialPort means that the port is lost; silence and oddities do not. */
bool isFatalPortError(int serialPortError);

/**
 * The byte dialogue with one instrument: addressing, synchronisation, and the transfer of blocks,
 * records and words, each one attempt.
 *
 * It works on an open port, a stop flag and delays, and knows no thread. Every call blocks until
 * the exchange has ended; once the flag turns false or the port is lost, it returns within 10 ms
 * and its result means nothing. The port's own signals must not feed anybody else meanwhile.
 */
class ByteDialogue
{
public:
    /** Bytes done and bytes in all, called after each step of a transfer. */
    using Progress = std::function<void(int done, int total)>;

    ByteDialogue(QSerialPort &port, const std::atomic<bool> &running, const LinkTiming &timing);

    /**
     * Reads `size` bytes in echoed blocks of four. A reply whose first block is the type code of
     * an extended instrument (0F AA, any, 09) grows by 16 bytes. `command` opens the transfer.
     */
    LinkResult readBlock(quint8 address, int size, char command, QByteArray *reply,
                         const Progress &progress);

    /** Reads records of 8 bytes, up to one that starts with 0xFF or to `size` bytes at least. */
    LinkResult readRecords(quint8 address, int size, char command, QByteArray *reply,
                           const Progress &progress);

    /** Reads one word of 4 bytes. */
    LinkResult readWord(quint8 address, QByteArray *reply);

    /** Writes `data`, whose length is a multiple of four, in echoed blocks of four. */
    LinkResult writeBlock(quint8 address, const QByteArray &data, char command,
                          const Progress &progress);

    /** Writes the first four bytes of `data`. */
    LinkResult writeWord(quint8 address, const QByteArray &data);

    /** Sends what waits to be sent, then throws away what has arrived; true if nothing had. */
    bool clear();

private:
    LinkResult address(quint8 address);
    LinkResult synchronise(quint8 address);
    bool readUnit(QByteArray *unit);
    bool confirmed();
    void rejectUnit(int failures);

    bool goesOn() const;
    void write(const QByteArray &bytes);
    void write(char byte) { write(QByteArray(1, byte)); }
    QByteArray read(int count, int timeoutMs);
    void waitForBytes(int count, int timeoutMs);
    void clearInput();
    void clearBuffers();
    void pause(int milliseconds);
    void letBytesLeave();

    QSerialPort &m_port;
    const std::atomic<bool> &m_running;
    const LinkTiming &m_timing;
    QElapsedTimer m_sinceWrite; ///< runs from the last write
    int m_lastWriteLength = 0;  ///< its bytes; 0 once they have surely left
};
