#include "registry/pendingblock.h"

#include "device/featurenox8.h"

namespace
{

using Image = optionsNOX8;

bool always(const Image &)
{
    return true;
}

bool hasOwnIdentity(const Image &image)
{
    return image.identValid;
}

bool isExtended(const Image &image)
{
    return image.getDevRev() != 0;
}

QByteArray *writtenReferenceData(const Image &image)
{
    return image.getRefData(false);
}

QByteArray *dateTime(const Image &image)
{
    return new QByteArray(image.dateTimeBlock());
}

template<QByteArray *(InstrumentRecord::*block)() const>
QByteArray *from(const Image &image)
{
    return (image.*block)();
}

struct PendingBlock {
    Image::tx_code code;
    bool (*isAllowed)(const Image &);
    QByteArray *(*make)(const Image &);
};

constexpr PendingBlock blocks[] = {
    {Image::txConfiguration, always, from<&Image::getData>},
    {Image::txReferenceData, always, writtenReferenceData},
    {Image::txDateTime, hasOwnIdentity, dateTime},
    {Image::txZeroShifts, isExtended, from<&Image::getRefShiftData>},
    {Image::txIdentification, hasOwnIdentity, from<&Image::getIdentData>},
    {Image::txSerialNumber, isExtended, from<&Image::getSNData>},
};

} // namespace

QByteArray pendingBlock(const optionsNOX8 &image, optionsNOX8::tx_code code)
{
    for (const PendingBlock &block : blocks)
        if (block.code == code && block.isAllowed(image))
            return taken(block.make(image));
    return {};
}
