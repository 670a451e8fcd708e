#include "device/instrumentblocks.h"

#include "device/bword.h"
#include "device/vocabulary.h"
#include "device/windows1251.h"

#include <QDateTime>
#include <QtEndian>

namespace
{

constexpr int typeOffset = 4;
constexpr int numberOffset = 6;
constexpr int nameOffset = 4;
constexpr int nameCapacity = 16;
constexpr int numberWord = 5;

template<typename Number>
QByteArray leastSignificantFirst(Number number)
{
    QByteArray bytes(sizeof number, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

/** A visitor that appends the bytes of each number to a block. */
auto appendingTo(QByteArray &block)
{
    return [&block](const bFloat &number) { block += number.getByte(); };
}

/** A visitor that reads one number of a block after the other. */
auto takingFrom(const QByteArray &block)
{
    return [&block, index = 0](bFloat &number) mutable { number.setFloat(&block, index++); };
}

/** Calls `visit` with each number in the order of the block; `Data` may be const. */
template<typename Data, typename Visit>
void forEachReference(Data &data, Visit visit)
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

QByteArray noStamp()
{
    return {8, '\0'};
}

QByteArray encodeReferenceData(const ReferenceData &data, const QByteArray &stamp)
{
    QByteArray block;
    block.reserve(referenceDataSize);
    forEachReference(data, appendingTo(block));
    return block + stamp;
}

bool decodeReferenceData(const QByteArray &block, ReferenceData &data)
{
    if (block.size() != referenceDataSize)
        return false;
    forEachReference(data, takingFrom(block));
    return true;
}

QByteArray encodeZeroShifts(const ZeroShifts &shifts)
{
    QByteArray block;
    block.reserve(zeroShiftsSize);
    forEachShift(shifts, appendingTo(block));
    return block;
}

bool decodeZeroShifts(const QByteArray &block, ZeroShifts &shifts)
{
    if (block.size() != zeroShiftsSize)
        return false;
    forEachShift(shifts, takingFrom(block));
    return true;
}

QByteArray encodeDateTime(const QDateTime &moment)
{
    const QDate date = moment.date();
    const QTime time = moment.time();
    QByteArray bytes;
    for (const int part : {time.hour(), time.minute(), time.second(), 0, date.day(), date.month(),
                           date.year() + 48, date.dayOfWeek()})
        bytes += char(part & 0xFF);
    return bytes;
}

bool decodeIdentification(const QByteArray &block, Identification &identification)
{
    if (block.size() != identificationSize)
        return false;
    const auto type = qint8(block.at(typeOffset));
    if (type < 1 || type >> 4 != block.at(0))
        return false;
    identification = {quint32(type), qFromBigEndian<quint16>(block.constData() + numberOffset), {}};
    return true;
}

bool decodeExtendedIdentification(const QByteArray &block, Identification &identification)
{
    if (block.size() != extendedIdentificationSize)
        return false;
    const auto type = quint32(bWord::getWord(&block, 0));
    const InstrumentModel *const model = findModel(type);
    if (!model || !model->extended)
        return false;
    identification = {type, quint16(bWord::getWord(&block, numberWord)),
                      fromFixedText(block, nameOffset, nameCapacity)};
    return true;
}

QByteArray encodeIdentification(const InstrumentModel &model, quint16 number, const QString &name)
{
    if (model.extended)
        return leastSignificantFirst(model.typeCode) + toFixedText(name, nameCapacity);

    QByteArray block(identificationSize, '\0');
    block[0] = char(model.familyCode);
    block[typeOffset] = char(model.typeCode);
    qToBigEndian(number, block.data() + numberOffset);
    return block;
}

QByteArray encodeSerialNumber(quint16 number)
{
    return leastSignificantFirst(quint32(number));
}
