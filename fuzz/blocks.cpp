/// Feeds blocks, as an instrument would answer, to the configuration image.
///
/// Input: a byte that chooses the model, then blocks, each behind its address and a word with its
/// size. In place of an address 0x80 there is a change of the block before: a word with its place,
/// and a byte with the number of bytes that follow and go there.

#include "imagechecks.h"

#include <QDataStream>

namespace
{

constexpr int longestSequence = 8;
constexpr uint sampleInterval = 8;
constexpr quint8 changeOfBlock = 0x80;

QByteArray identityOf(const optionsNOX8 &image)
{
    QByteArray identity;
    QDataStream(&identity, QIODevice::WriteOnly)
        << image.devType << image.devNumber << image.devName << image.identValid
        << image.identApplyPending;
    return identity;
}

/** The image, and how often it has told that it has changed. */
class WatchedImage : public optionsNOX8
{
public:
    WatchedImage()
    {
        const auto increment = [this] { ++changes; };
        connect(this, &optionsNOX8::onDevChange, this, increment);
        connect(this, &optionsNOX8::onRefChange, this, increment);
        connect(this, &optionsNOX8::onRefShiftChange, this, increment);
        connect(this, &optionsNOX8::onChChange, this, increment);
        connect(this, &optionsNOX8::onIdentChange, this, increment);
        connect(this, &optionsNOX8::onRecData, this, increment);
    }

    int changes = 0;
    quint32 configuredType = 0; ///< as which it took its configuration last
};

void feed(WatchedImage &image, quint8 address, const QByteArray &block)
{
    const ImageContent content = contentOf(image);
    const QByteArray identity = identityOf(image);
    image.changes = 0;
    if (image.setData(block, address)) {
        require(image.changes > 0);
        if (address == configurationAddress)
            image.configuredType = image.devType;
        return requireFitting(image);
    }
    require(holds(image, content));
    if (address == identificationAddress && !block.isEmpty())
        require(image.devType == 0 && image.devNumber == 0 && image.changes == 1);
    else
        require(identityOf(image) == identity && image.changes == 0);
}

/** What came from an instrument goes back to it to the byte. */
void requireKept(const optionsNOX8 &image)
{
    const QByteArray configuration = taken(image.getData());
    require(readBack(image.devType, configuration) == configuration);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static WatchedImage image;
    FuzzInput input(data, size);
    renew(image, chosenType(input.byte()));
    image.configuredType = 0;
    quint8 address = 0;
    QByteArray block;
    for (int i = 0; i < longestSequence && !input.atEnd(); ++i) {
        const quint8 head = input.byte();
        const int word = input.word();
        if (head == changeOfBlock) {
            const QByteArray change = input.bytes(input.byte());
            block.replace(word % (block.size() + 1), change.size(), change);
        } else {
            address = head;
            block = input.bytes(word);
        }
        feed(image, address, block);
    }
    requireAnswersOn(image, quint8(size));
    if (!input.isSample(sampleInterval))
        return 0;
    requireAnswers(image);
    requireBlocks(image);
    if (image.devType != 0 && image.devType == image.configuredType)
        requireKept(image);
    return 0;
}
