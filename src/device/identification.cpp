#include "device/identification.h"

#include "device/bword.h"
#include "device/vocabulary.h"
#include "device/windows1251.h"

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

} // namespace

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
