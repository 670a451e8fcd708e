#pragma once

#include "device/configuration.h"
#include "device/featurenox8.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"

#include <cstdlib>
#include <memory>

/** Ends the run, so that the input is kept, unless the condition holds. */
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}

/** Takes the input apart from its front; beyond its end there are zeros and empty arrays. */
class FuzzInput
{
public:
    FuzzInput(const quint8 *data, size_t size)
        : m_rest(QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)))
    {
    }

    bool atEnd() const { return m_rest.isEmpty(); }
    quint8 byte() { return quint8(bytes(1).append('\0').at(0)); }
    /** Two bytes, the least significant first. */
    int word()
    {
        const int low = byte();
        return low | byte() << 8;
    }
    QByteArray bytes(int count)
    {
        const QByteArray taken = m_rest.left(count);
        m_rest.remove(0, count);
        return taken;
    }
    QByteArray rest() { return bytes(m_rest.size()); }

private:
    QByteArray m_rest;
};

inline void requireFitting(const ChannelSettings &channel)
{
    require(fitsNibble(channel.current) && fitsNibble(channel.resist));
    require(fitsNibble(channel.feature) && fitsNibble(channel.featureCompensTP));
    require(channel.measType == measTemperatureCustom || lowNibble(channel.measType) == 0);
    require((channel.featureType & ~0xC0) == 0);
    require((channel.featureTypeCompensTP & ~0x30) == 0);
}

/** Every field has its bits alone, and every block the size that the type gives it. */
inline void requireFitting(const optionsNOX8 &image)
{
    require(fitsNibble(image.devMeasTime) && fitsNibble(image.devMeasMode));
    require(fitsNibble(image.devCompensTP) && fitsNibble(image.devZakorotka));
    require(lowNibble(image.devMeasRound) == 0 && lowNibble(image.devChRevers) == 0);
    require(image.channels.size() == optionsNOX8::channelRecords);
    require(image.features.size() == optionsNOX8::channelRecords);
    for (const ChannelSettings &channel : image.channels)
        requireFitting(channel);

    const bool isExtended = image.getDevRev() != 0;
    const QByteArray configuration = taken(image.getData());
    require(configuration.size() == ConfigurationLayout(image.getDevChCount()).size());
    require(taken(image.getIdentData()).size() == (isExtended ? 20 : 8));
    require(taken(image.getSNData()).size() == 4);
    require(taken(image.getRefData(true)).size() == referenceDataSize);
    require(taken(image.getRefShiftData()).size() == zeroShiftsSize);
    require(taken(image.getRefAllData()).size() ==
            referenceDataSize + (isExtended ? zeroShiftsSize : 0));
    require(image.devType == 0 || configuration.size() == image.getDevDataSize());
}

/** The configuration block as another image of the type gives it after reading this one. */
inline QByteArray readBack(quint32 type, const QByteArray &configuration)
{
    optionsNOX8 image;
    require(image.setDevType(type));
    require(image.setData(configuration, 2));
    return taken(image.getData());
}

/** What an instrument stores of the image comes back as it was stored. Only the second time is it
 *  the same to the byte: the first one trims texts that were cut. */
inline void requireStable(const optionsNOX8 &image)
{
    if (image.devType == 0)
        return;
    const QByteArray stored = readBack(image.devType, taken(image.getData()));
    require(readBack(image.devType, stored) == stored);
}

/** Every channel number has an answer, those that no model has included. */
inline void requireAnswers(const optionsNOX8 &image)
{
    for (int ch = 0; ch <= 0xFF; ++ch) {
        const bool isUsed = ch < image.getDevChCount();
        require((image.getFeature(quint8(ch)) != nullptr) == isUsed);
        require(image.channelBlock(quint8(ch)).isEmpty() != isUsed);
        require(isUsed || image.getCh(quint8(ch)).onOff == 1);
        require(isUsed || image.getChMeasTypeName(quint8(ch)) == QLatin1String("-"));
        require(isUsed || image.getChDimCust(quint8(ch)) == QLatin1String("-"));
        require(isUsed || image.getChFeatureName(quint8(ch)) == QLatin1String("-"));
        require(isUsed || image.getChFeatureCompesTPName(quint8(ch)) == QLatin1String("-"));
        require(!image.getChCurrentStr(quint8(ch)).isNull());
    }
    require(image.getFeatureInfStrList().size() == image.getDevChCount());
    require(!image.getDevName(true).isNull() && !image.getDevNumberStr().isEmpty());
}
