#pragma once

#include "device/bfloat.h"

#include <array>

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
