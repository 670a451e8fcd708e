#pragma once

#include <QByteArray>
#include <QString>

struct InstrumentModel;

/** Who an instrument says it is. */
struct Identification {
    quint32 typeCode = 0;
    quint16 number = 0;
    QString name; ///< extended instruments only
};

constexpr int identificationSize = 8;
constexpr int extendedIdentificationSize = 24;

/** Reads a block of 8 bytes. False unless its type code, from 1 to 127, belongs to its family; the
 *  code need not be that of a known model. */
bool decodeIdentification(const QByteArray &block, Identification &identification);

/** Reads a block of 24 bytes. False unless its type code is that of an extended model. */
bool decodeExtendedIdentification(const QByteArray &block, Identification &identification);

/** The block to write: 8 bytes, or 20 for an extended model, whose number is a block of its own. */
QByteArray encodeIdentification(const InstrumentModel &model, quint16 number, const QString &name);

/** The block of 4 bytes with the serial number of an extended model. */
QByteArray encodeSerialNumber(quint16 number);
