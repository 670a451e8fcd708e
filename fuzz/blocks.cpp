/// Feeds blocks, as an instrument would answer, to the configuration image.
///
/// Input: a byte that chooses the model, then blocks, each behind its address and a word with its
/// size.

#include "checks.h"

#include <QDataStream>

namespace
{

constexpr int longestSequence = 8;
constexpr quint8 configurationAddress = 2;
constexpr quint8 identificationAddress = 51;

/** All of the image but its identity, as bytes. */
QByteArray settingsOf(const optionsNOX8 &image)
{
    QByteArray settings = encodeOperatingSettings(image) + taken(image.getRefData(true)) +
                          taken(image.getRefShiftData());
    for (const ChannelSettings &channel : image.channels)
        settings += encodeChannel(channel) + char(channel.measType) + channel.dimCust.toUtf8();
    for (const featureNOX8 *feature : image.features) {
        const QVector<float> ratio = feature->getRatio();
        settings += encodeFeature(*feature) + feature->ratioStr.join('\n').toUtf8();
        settings.append(reinterpret_cast<const char *>(ratio.constData()),
                        int(sizeof(float)) * ratio.size());
    }
    return settings;
}

QByteArray identityOf(const optionsNOX8 &image)
{
    QByteArray identity;
    QDataStream(&identity, QIODevice::WriteOnly)
        << image.devType << image.devNumber << image.devName << image.identValid
        << image.identApplyPending;
    return identity;
}

/** Counts the signals that tell that the image has changed. */
class ChangeCounter : public QObject
{
public:
    explicit ChangeCounter(const optionsNOX8 &image)
    {
        const auto increment = [this] { ++changes; };
        connect(&image, &optionsNOX8::onDevChange, this, increment);
        connect(&image, &optionsNOX8::onRefChange, this, increment);
        connect(&image, &optionsNOX8::onRefShiftChange, this, increment);
        connect(&image, &optionsNOX8::onChChange, this, increment);
        connect(&image, &optionsNOX8::onIdentChange, this, increment);
        connect(&image, &optionsNOX8::onRecData, this, increment);
    }

    int changes = 0;
};

void feed(optionsNOX8 &image, quint8 address, const QByteArray &block)
{
    const QByteArray settings = settingsOf(image);
    const QByteArray identity = identityOf(image);
    const ChangeCounter counter(image);
    const bool isAccepted = image.setData(block, address);

    requireFitting(image);
    if (isAccepted) {
        require(counter.changes > 0);
    } else {
        require(settingsOf(image) == settings);
        if (address == identificationAddress && !block.isEmpty())
            require(image.devType == 0 && image.devNumber == 0 && counter.changes == 1);
        else
            require(identityOf(image) == identity && counter.changes == 0);
    }
    if (isAccepted && address == configurationAddress) {
        const QByteArray configuration = taken(image.getData());
        require(readBack(image.devType, configuration) == configuration);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QList<quint32> types = optionsNOX8::getTypeList(true).keys();
    FuzzInput input(data, size);
    optionsNOX8 image;
    image.setDevType(types.at(input.byte() % types.size()));
    for (int i = 0; i < longestSequence && !input.atEnd(); ++i) {
        const quint8 address = input.byte();
        const int blockSize = input.word();
        feed(image, address, input.bytes(blockSize));
    }
    requireAnswers(image);
    return 0;
}
