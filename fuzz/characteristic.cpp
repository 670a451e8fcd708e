/// Feeds records and entered texts to a calibration characteristic.
///
/// Input: a byte that chooses, then the bytes of a record, or a type and lines of text, the name
/// first.

#include "device/featurenox8.h"
#include "device/windows1251.h"
#include "fuzzinput.h"

#include <cstring>

namespace
{

constexpr quint8 anySize = 0xFE;
constexpr std::size_t storedRatios = 10;

/** A characteristic that shows in every field whether it was written to. */
FeatureRecord untouched()
{
    FeatureRecord feature;
    feature.type = FeatureRecord::polynomial;
    feature.name = QStringLiteral("untouched");
    feature.ratio.fill(bFloat(7.0F));
    feature.ratioStr = QStringList{QStringLiteral("7")};
    return feature;
}

bool sameNumbers(const FeatureRecord &one, const FeatureRecord &other, std::size_t from,
                 std::size_t end)
{
    return std::memcmp(one.ratio.data() + from, other.ratio.data() + from,
                       (end - from) * sizeof(bFloat)) == 0;
}

bool areSame(const FeatureRecord &one, const FeatureRecord &other)
{
    return one.type == other.type && one.name == other.name && one.ratioStr == other.ratioStr &&
           sameNumbers(one, other, 0, one.ratio.size());
}

std::size_t ratiosOf(const FeatureRecord &feature)
{
    return feature.type == FeatureRecord::temperatureOfVoltage ? feature.ratio.size()
                                                               : storedRatios;
}

void feedRecord(const QByteArray &record)
{
    FeatureRecord feature = untouched();
    if (!decodeFeature(record, feature)) {
        require(record.size() != featureRecordSize && areSame(feature, untouched()));
        return;
    }
    require(feature.name.size() <= 39 && feature.ratioStr.size() <= FeatureRecord::ratioCount);
    require(sameNumbers(feature, untouched(), ratiosOf(feature), feature.ratio.size()));

    const QByteArray encoded = encodeFeature(feature);
    FeatureRecord again = untouched();
    require(decodeFeature(encoded, again));
    require(areSame(again, feature) && encodeFeature(again) == encoded);
}

void feedTexts(FeatureRecord::_featureIndType type, const QString &name, const QStringList &texts)
{
    FeatureRecord feature = untouched();
    if (enterFeature(feature, type, name, texts) != EntryResult::Stored) {
        require(areSame(feature, untouched()));
        return;
    }
    require(feature.type == type && feature.ratioStr.size() == texts.size());
    for (const bFloat &number : feature.ratio)
        require(qIsFinite(number.value));

    FeatureRecord read;
    const QByteArray encoded = encodeFeature(feature);
    require(encoded.size() == featureRecordSize && decodeFeature(encoded, read));
    require(read.type == type && sameNumbers(read, feature, 0, ratiosOf(feature)));

    FeatureRecord entered = untouched();
    require(enterFeature(entered, type, feature.name, feature.ratioStr) == EntryResult::Stored);
    require(entered.name == feature.name && entered.ratioStr == feature.ratioStr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const quint8 head = input.byte();
    if (head % 2 == 0) {
        const QByteArray record = input.rest();
        // most of them have the size that is right
        feedRecord(head == anySize ? record : record.leftJustified(featureRecordSize, '\0', true));
        return 0;
    }
    const auto type = FeatureRecord::_featureIndType(input.byte());
    QStringList texts = fromWindows1251(input.rest()).split('\n');
    const QString name = texts.takeFirst();
    feedTexts(type, name, texts);
    return 0;
}
