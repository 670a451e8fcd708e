/// Feeds identifications, as an instrument would answer, to the configuration image.
///
/// Input: a byte that chooses the model that the image has before, and a size; the block.

#include "imagechecks.h"

namespace
{

constexpr int longestName = 16;

/** A block is refused, or says what the program writes back. */
void decode(const QByteArray &block)
{
    Identification read{7, 8, QStringLiteral("untouched")};
    const bool isExtended = decodeExtendedIdentification(block, read);
    if (!isExtended && !decodeIdentification(block, read)) {
        require(read.typeCode == 7 && read.number == 8 && read.name == "untouched");
        return;
    }
    const InstrumentModel *const model = findModel(read.typeCode);
    require(block.size() == (isExtended ? extendedIdentificationSize : identificationSize));
    require(isExtended ? model && model->extended : read.typeCode >= 1 && read.typeCode <= 127);
    require(read.name.size() <= longestName && read.name == read.name.trimmed());
    if (!model)
        return;

    QByteArray written = encodeIdentification(*model, read.number, read.name);
    if (isExtended)
        written += encodeSerialNumber(read.number);
    Identification again;
    require(isExtended ? decodeExtendedIdentification(written, again)
                       : decodeIdentification(written, again));
    require(again.typeCode == read.typeCode && again.number == read.number &&
            again.name == read.name);
}

/** The image tells once at least, and knows all of who it is, or nothing. */
void feed(const QByteArray &block, quint32 formerType, quint8 choice)
{
    static optionsNOX8 image;
    static int changes = 0;
    static const auto listening =
        QObject::connect(&image, &optionsNOX8::onIdentChange, &image, [] { ++changes; });
    Q_UNUSED(listening)
    renew(image, formerType);
    changes = 0;
    const bool isAccepted = image.setData(block, identificationAddress);
    require(changes > 0 || block.isEmpty());
    if (isAccepted)
        require(image.identValid && (image.devType == 0 || findModel(image.devType)));
    else if (!block.isEmpty())
        require(image.devType == 0 && image.devNumber == 0);
    require(taken(image.getIdentData()).size() == (image.getDevRev() != 0 ? 20 : 8));
    require(!image.getDevTitle().isEmpty() && !image.getDevTypeStr(true).isEmpty());
    requireAnswersOn(image, choice);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const quint8 head = input.byte();
    QByteArray block = input.rest();
    // most of them have a size that is right
    if (head >= 0x40)
        block = block.leftJustified(head & 0x80 ? extendedIdentificationSize : identificationSize,
                                    '\0', true);
    decode(block);
    feed(block, chosenType(head & 0x3F), head);
    return 0;
}
