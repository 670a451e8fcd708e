#pragma once

#include "device/configuration.h"
#include "device/featurenox8.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"
#include "fuzzinput.h"

#include <array>
#include <cstring>
#include <memory>

/** What an image holds beside its identity, as values: to be compared, and to be put back. */
struct ImageContent {
    ReferenceData references;
    ZeroShifts shifts;
    OperatingSettings settings;
    QVector<ChannelSettings> channels{InstrumentRecord::channelRecords};
    std::array<FeatureRecord, InstrumentRecord::channelRecords> features;
};

inline ImageContent contentOf(const optionsNOX8 &image)
{
    ImageContent content{image, image, image, image.channels, {}};
    for (std::size_t i = 0; i < content.features.size(); ++i)
        content.features[i] = *image.features.at(int(i));
    return content;
}

/** Whether all bytes of two plain records are the same: numbers may be none. */
template<typename Record>
bool haveSameBytes(const Record &one, const Record &other)
{
    return std::memcmp(&one, &other, sizeof(Record)) == 0;
}

inline bool isSame(const ChannelSettings &one, const ChannelSettings &other)
{
    return encodeChannel(one) == encodeChannel(other) && one.measType == other.measType &&
           one.dimCust == other.dimCust;
}

inline bool isSame(const FeatureRecord &one, const FeatureRecord &other)
{
    return one.type == other.type && haveSameBytes(one.ratio, other.ratio) &&
           one.name == other.name && one.ratioStr == other.ratioStr;
}

/** Whether an image still holds what it held. */
inline bool holds(const optionsNOX8 &image, const ImageContent &content)
{
    const auto areSame = [](const auto &one, const auto &other) { return isSame(one, other); };
    return haveSameBytes<ReferenceData>(image, content.references) &&
           haveSameBytes<ZeroShifts>(image, content.shifts) &&
           haveSameBytes<OperatingSettings>(image, content.settings) &&
           std::equal(image.channels.begin(), image.channels.end(), content.channels.begin(),
                      content.channels.end(), areSame) &&
           std::equal(image.features.begin(), image.features.end(), content.features.begin(),
                      content.features.end(),
                      [](const featureNOX8 *one, const FeatureRecord &other) {
                          return isSame(*one, other);
                      });
}

/** Makes an image what it was when it was new, but for who listens to it, and of a type: making one
 *  costs more than most inputs. */
inline void renew(optionsNOX8 &image, quint32 type = 0)
{
    static const ImageContent fresh;
    image.ReferenceData::operator=(fresh.references);
    image.ZeroShifts::operator=(fresh.shifts);
    image.OperatingSettings::operator=(fresh.settings);
    image.channels = fresh.channels;
    for (std::size_t i = 0; i < fresh.features.size(); ++i)
        image.features.at(int(i))->FeatureRecord::operator=(fresh.features[i]);
    image.devNumber = 0;
    image.devType = 0;
    image.devName.clear();
    image.identValid = image.identApplyPending = false;
    image.setDevType(type);
}

/** A type code, or 0. */
inline quint32 chosenType(int choice)
{
    static const QList<quint32> types = optionsNOX8::getTypeList(true).keys();
    return types.at(choice % types.size());
}

inline void requireFitting(const ChannelSettings &channel)
{
    require(fitsNibble(channel.current) && fitsNibble(channel.resist));
    require(fitsNibble(channel.feature) && fitsNibble(channel.featureCompensTP));
    require(channel.measType == measTemperatureCustom || lowNibble(channel.measType) == 0);
    require((channel.featureType & ~0xC0) == 0);
    require((channel.featureTypeCompensTP & ~0x30) == 0);
}

/** Every field has its bits alone. */
inline void requireFitting(const optionsNOX8 &image)
{
    require(fitsNibble(image.devMeasTime) && fitsNibble(image.devMeasMode));
    require(fitsNibble(image.devCompensTP) && fitsNibble(image.devZakorotka));
    require(lowNibble(image.devMeasRound) == 0 && lowNibble(image.devChRevers) == 0);
    require(image.channels.size() == optionsNOX8::channelRecords);
    require(image.features.size() == optionsNOX8::channelRecords);
    for (const ChannelSettings &channel : image.channels)
        requireFitting(channel);
}

/** The configuration block as another image of the type gives it after reading this one. */
inline QByteArray readBack(quint32 type, const QByteArray &configuration)
{
    static optionsNOX8 image;
    renew(image, type);
    require(image.devType == type && image.setData(configuration, 2));
    return taken(image.getData());
}

/** Every block has the size that the type gives it, and what an instrument stores of the image
 *  comes back as it was stored. Only the second time is it the same to the byte: the first one
 *  trims texts that were cut. */
inline void requireBlocks(const optionsNOX8 &image)
{
    const bool isExtended = image.getDevRev() != 0;
    require(taken(image.getIdentData()).size() == (isExtended ? 20 : 8));
    require(taken(image.getSNData()).size() == 4);
    require(taken(image.getRefData(true)).size() == referenceDataSize);
    require(taken(image.getRefShiftData()).size() == zeroShiftsSize);
    require(taken(image.getRefAllData()).size() ==
            referenceDataSize + (isExtended ? zeroShiftsSize : 0));
    const QByteArray configuration = taken(image.getData());
    require(configuration.size() == ConfigurationLayout(image.getDevChCount()).size());
    if (image.devType == 0)
        return;
    require(configuration.size() == image.getDevDataSize());
    const QByteArray stored = readBack(image.devType, configuration);
    require(readBack(image.devType, stored) == stored);
}

inline void requireAnswersOn(const optionsNOX8 &image, quint8 ch)
{
    const bool isUsed = ch < image.getDevChCount();
    require((image.getFeature(ch) != nullptr) == isUsed);
    require(image.channelBlock(ch).isEmpty() != isUsed);
    require(isUsed || image.getCh(ch).onOff == 1);
    require(isUsed || image.getChMeasTypeName(ch) == QLatin1String("-"));
    require(isUsed || image.getChDimCust(ch) == QLatin1String("-"));
    require(isUsed || image.getChFeatureName(ch) == QLatin1String("-"));
    require(isUsed || image.getChFeatureCompesTPName(ch) == QLatin1String("-"));
    require(!image.getChCurrentStr(ch).isNull());
}

/** Every channel number has an answer, those that no model has included. */
inline void requireAnswers(const optionsNOX8 &image)
{
    for (int ch = 0; ch <= 0xFF; ++ch)
        requireAnswersOn(image, quint8(ch));
    require(image.getFeatureInfStrList().size() == image.getDevChCount());
    require(!image.getDevName(true).isNull() && !image.getDevNumberStr().isEmpty());
}
