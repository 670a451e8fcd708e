#include "device/referencedata.h"

namespace
{

/** Calls `visit` with each number in the order of the block; `Data` may be const. */
template<typename Data, typename Visit>
void forEachNumber(Data &data, Visit visit)
{
    const auto visitTriple = [&visit](auto &triple) {
        visit(triple.value);
        visit(triple.a);
        visit(triple.b);
    };
    visit(data.refT0);
    for (auto &resistor : data.refR)
        visitTriple(resistor);
    visitTriple(data.refU);
}

} // namespace

QByteArray encodeReferenceData(const ReferenceData &data, const QByteArray &stamp)
{
    QByteArray block;
    block.reserve(referenceDataSize);
    forEachNumber(data, [&block](const bFloat &number) { block += number.getByte(); });
    return block + stamp;
}

bool decodeReferenceData(const QByteArray &block, ReferenceData &data)
{
    if (block.size() != referenceDataSize)
        return false;
    int index = 0;
    forEachNumber(data, [&](bFloat &number) { number.setFloat(&block, index++); });
    return true;
}
