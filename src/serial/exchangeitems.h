#pragma once

#include <QByteArray>
#include <QMetaType>

/**
 * How an exchange is retried and what its failure means; a set of bits in 32 bits.
 *
 * Bits 0 and 1 act in the block read only, bit 3 in the block read and the record read. To the
 * port multiplexer every value but `noxQueryModeNormal` means "drop only the failed item".
 */
enum noxQueryMode : qint32 {
    noxQueryModeNormal = 0, ///< full retry schedule with reopening of the port
    noxQueryModeOnce = 1,   ///< the first failure is final
    noxQueryModeFast = 2,   ///< two quick retries without reopening
    noxQueryModeEmpty = 8,  ///< after the final failure an empty reply instead of an error
};

/** The address that names no block: inside the worker, "no exchange in progress". */
constexpr quint8 noBlockAddress = 255;

/** One read of a memory block. Equality looks at `address` and `size` alone. */
struct noxSerialPortQueryItem {
    quint8 address = 0;                      ///< block to read
    quint16 size = 0;                        ///< bytes to read; of a record read, the most bytes
    bool showPr = false;                     ///< report progress
    noxQueryMode qMode = noxQueryModeNormal; ///< retries and failure
    bool rec = false;                        ///< a run of 8-byte records (the logger)
    bool word = false;                       ///< one 4-byte word without synchronisation
};

/** One write of a memory block. Equality looks at `address` and `data` alone. */
struct noxSerialPortDataItem {
    quint8 address = 0;                      ///< block to write
    QByteArray data;                         ///< its bytes, a multiple of four
    noxQueryMode qMode = noxQueryModeNormal; ///< what a failure does to the waiting writes
    bool showPr = false;                     ///< report progress
    bool word = false;                       ///< only the first 4 bytes, without synchronisation
};

bool operator==(const noxSerialPortQueryItem &left, const noxSerialPortQueryItem &right);
bool operator==(const noxSerialPortDataItem &left, const noxSerialPortDataItem &right);

/** Why an exchange ended. The multiplexer reports +100 for a read, +200 for a write. */
enum class LinkResult : quint16 {
    Done = 0,
    NotAddressed = 10,    ///< the address was not echoed in three attempts
    NotSynchronised = 20, ///< the synchronisation pattern did not arrive
    TransferFailed = 30,  ///< ten bad blocks in a row, a short record, a wrong word echo
    LinkClosed = 40,      ///< the port is not open or the worker is stopping
};

/** A failure of the port itself is reported as this minus QSerialPort::SerialPortError. */
constexpr quint16 portErrorBase = 255;
constexpr quint16 portNameEmptyCode = 254;
constexpr quint16 portOpenFailedCode = 252;

/** Makes the item records known by name, so that they can cross threads. May be called again. */
void registerExchangeItems();

Q_DECLARE_METATYPE(noxQueryMode)
Q_DECLARE_METATYPE(noxSerialPortQueryItem)
Q_DECLARE_METATYPE(noxSerialPortDataItem)
Q_DECLARE_METATYPE(QByteArray *)
