#pragma once

#include "device/bfloat.h"

#include <QByteArray>
#include <QString>

#include <array>

class QDateTime;
struct InstrumentModel;

// The memory blocks of an instrument beside its configuration.

/** Addresses at which an instrument's blocks are read. Those of most writes are
 * optionsNOX8::tx_code. */
enum ReadAddress : quint8 {
    configurationAddress = 2,
    referenceDataAddress = 3,
    loggerAddress = 5,
    zeroShiftsAddress = 9,
    identificationAddress = 51,
};

/** The address to which the block that sets one channel is written. */
constexpr quint8 channelWriteAddress = 4;

/** A reference value and the coefficients of its correction. */
struct ReferenceTriple {
    bFloat value;
    bFloat a;
    bFloat b;
};

/** Reference data ("опоры"): what the instrument compares its sensors with. */
struct ReferenceData {
    std::array<ReferenceTriple, 4> refR; ///< reference resistors R1 to R4, Ω
    ReferenceTriple refU;                ///< reference voltage Uref, mV
    bFloat refT0;                        ///< temperature T0, °C
};

constexpr int referenceDataSize = 72;

/** The stamp of a block that is kept, and not written to an instrument. */
QByteArray noStamp();

/**
 * The block of 72 bytes: T0, R1 to R4 as triples, Uref as a triple, then `stamp`, the 8 bytes of
 * the moment of writing (see encodeDateTime()) or noStamp().
 */
QByteArray encodeReferenceData(const ReferenceData &data, const QByteArray &stamp);

/** Reads the sixteen numbers of a block; false, and nothing read, unless it has 72 bytes. */
bool decodeReferenceData(const QByteArray &block, ReferenceData &data);

/** Zero shifts of an extended instrument. */
struct ZeroShifts {
    std::array<bFloat, 4> shiftR;   ///< resistance offsets, for each reference resistor
    std::array<bFloat, 16> shiftCh; ///< voltage offsets, for each channel
    std::array<bFloat, 17> shiftU;  ///< voltage offsets of the measuring ranges
};

constexpr int zeroShiftsSize = 148;

/** The block of 148 bytes: the offsets of the ranges, of the channels, of the resistors. */
QByteArray encodeZeroShifts(const ZeroShifts &shifts);

/** Reads a block; false, and nothing read, unless it has 148 bytes. */
bool decodeZeroShifts(const QByteArray &block, ZeroShifts &shifts);

/** Calls `visit` with each of the 37 numbers in the order of the block; `Shifts` may be const. */
template<typename Shifts, typename Visit>
void forEachShift(Shifts &shifts, Visit visit)
{
    for (auto &shift : shifts.shiftU)
        visit(shift);
    for (auto &shift : shifts.shiftCh)
        visit(shift);
    for (auto &shift : shifts.shiftR)
        visit(shift);
}

/** The 8 bytes of a moment: hour, minute, second, 0, day, month, year, day of the week from 1 for
 *  Monday. The year is the low byte of year + 48, which is year - 2000 from 2000 to 2207. */
QByteArray encodeDateTime(const QDateTime &moment);

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
