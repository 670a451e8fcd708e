#include "device/zeroshifts.h"

QByteArray encodeZeroShifts(const ZeroShifts &shifts)
{
    QByteArray block;
    block.reserve(zeroShiftsSize);
    forEachShift(shifts, [&block](const bFloat &shift) { block += shift.getByte(); });
    return block;
}

bool decodeZeroShifts(const QByteArray &block, ZeroShifts &shifts)
{
    if (block.size() != zeroShiftsSize)
        return false;
    int index = 0;
    forEachShift(shifts, [&](bFloat &shift) { shift.setFloat(&block, index++); });
    return true;
}
