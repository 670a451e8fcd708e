#include "device/featurerecord.h"

#include "device/windows1251.h"

namespace
{

constexpr int nameOffset = 4;
constexpr int nameCapacity = 39;
constexpr int ratioOffset = 44;
constexpr int ratioSize = 4;
constexpr int storedRatios = 10;
constexpr int slotsOffset = ratioOffset + ratioSize * storedRatios;
constexpr int slotCapacity = 19;
constexpr int slotSize = 1 + slotCapacity;
constexpr int slotCount = 10;
constexpr int filledSlot = 4; ///< of the ITS-90 form, whose table has a cell without a number there

int ratiosIn(const FeatureRecord &feature)
{
    return feature.type == FeatureRecord::temperatureOfVoltage ? FeatureRecord::ratioCount
                                                               : storedRatios;
}

QByteArray encodeSlots(const FeatureRecord &feature)
{
    QStringList entries = feature.ratioStr;
    if (feature.type == FeatureRecord::its90 && entries.size() >= filledSlot)
        entries.insert(filledSlot, QStringLiteral("0"));
    QByteArray bytes;
    for (const QString &entry : entries.mid(0, slotCount))
        bytes += toCountedText(entry, slotCapacity);
    return bytes;
}

QStringList decodeSlots(const QByteArray &record, FeatureRecord::_featureIndType type)
{
    QStringList entries;
    for (int slot = 0; slot < slotCount; ++slot)
        entries << fromCountedText(record, slotsOffset + slotSize * slot, slotCapacity).trimmed();
    if (type == FeatureRecord::its90)
        entries.removeAt(filledSlot);
    return entries;
}

QStringList tableTexts(const std::array<bFloat, FeatureRecord::ratioCount> &ratio)
{
    QStringList texts;
    for (std::size_t i = 0; i < ratio.size(); i += 2) {
        const float first = ratio[i].value;
        if (i == 0 || first > ratio[i - 2].value)
            texts << QString::number(double(first), 'f', 1)
                  << QString::number(double(ratio[i + 1].value), 'f', 4);
    }
    return texts;
}

} // namespace

QByteArray encodeFeature(const FeatureRecord &feature)
{
    QByteArray record(nameOffset, '\0');
    record.reserve(featureRecordSize);
    record[0] = char(feature.type);
    record += toCountedText(feature.name, nameCapacity);
    const int ratios = ratiosIn(feature);
    for (int i = 0; i < ratios; ++i)
        record += feature.ratio[std::size_t(i)].getByte();
    if (feature.type != FeatureRecord::temperatureOfVoltage)
        record += encodeSlots(feature);
    return record.leftJustified(featureRecordSize, '\0');
}

bool decodeFeature(const QByteArray &record, FeatureRecord &feature)
{
    if (record.size() != featureRecordSize)
        return false;
    feature.type = FeatureRecord::_featureIndType(record.at(0));
    feature.name = fromCountedText(record, nameOffset, nameCapacity);
    const int ratios = ratiosIn(feature);
    for (int i = 0; i < ratios; ++i)
        feature.ratio[std::size_t(i)].setFloat(&record, ratioOffset / ratioSize + i);
    feature.ratioStr = feature.type == FeatureRecord::temperatureOfVoltage
                           ? tableTexts(feature.ratio)
                           : decodeSlots(record, feature.type);
    return true;
}
