#pragma once

#include "device/bfloat.h"

#include <array>

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

/**
 * The block of 72 bytes: T0, R1 to R4 as triples, Uref as a triple, then `stamp`, the 8 bytes of
 * the moment of writing (see encodeDateTime()), zeros where the block is only kept.
 */
QByteArray encodeReferenceData(const ReferenceData &data, const QByteArray &stamp);

/** Reads the sixteen numbers of a block; false, and nothing read, unless it has 72 bytes. */
bool decodeReferenceData(const QByteArray &block, ReferenceData &data);
