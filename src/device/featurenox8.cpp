#include "device/featurenox8.h"

#include "device/callendarvandusen.h"
#include "device/windows1251.h"

#include <algorithm>
#include <cmath>

// The record

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

// What was entered

namespace
{

constexpr int thermometerValues = 6;

struct Entry {
    QStringList texts;
    QVector<float> values;
};

bool isCountOf(FeatureRecord::_featureIndType type, int count)
{
    switch (type) {
    case FeatureRecord::polynomial:
        return count == 10;
    case FeatureRecord::callendarVanDusen:
        return count == thermometerValues;
    case FeatureRecord::its90:
        return count == 9;
    case FeatureRecord::temperatureOfVoltage:
        return count >= 2 && count <= FeatureRecord::ratioCount;
    }
    return false;
}

bool convert(Entry &entry)
{
    for (QString &text : entry.texts) {
        text = text.trimmed();
        bool ok = false;
        entry.values << bFloat::str2Float(text, &ok);
        if (!ok)
            return false;
    }
    return true;
}

bool completeTable(Entry &entry)
{
    const int entered = entry.values.size();
    if (entered < 4)
        return false;
    for (int i = entered; i < FeatureRecord::ratioCount; ++i)
        entry.values << entry.values.at(i - 2);

    for (int i = 2; i < entered; i += 2) {
        if (!(entry.values.at(i) < entry.values.at(i - 2)))
            continue;
        if (i == 2)
            return false;
        entry.values[i] = entry.values[i + 1] = 0.0F;
        for (int k = i; k < qMin(i + 2, entered); ++k)
            entry.texts[k].clear();
    }
    return true;
}

/** The thermometer of the values R0, A, B, C, Tmin, Tmax; nothing when there is no range to fit
 *  over: rounding would still yield a polynomial, of no meaning. */
std::optional<CallendarVanDusen> thermometerOf(const QVector<float> &values)
{
    const CallendarVanDusen thermometer = {values.at(0), values.at(1), values.at(2),
                                           values.at(3), values.at(4), values.at(5)};
    if (thermometer.lowest == thermometer.highest)
        return {};
    return thermometer;
}

/** Replaces the thermometer by its polynomial; false when there is none. */
bool fit(Entry &entry)
{
    const auto thermometer = thermometerOf(entry.values);
    if (!thermometer)
        return false;
    entry.values.clear();
    for (const double coefficient : fitTemperaturePolynomial(*thermometer))
        entry.values << float(coefficient);
    return true;
}

bool areFinite(const QVector<float> &values)
{
    return std::all_of(values.begin(), values.end(),
                       [](float value) { return std::isfinite(value); });
}

} // namespace

EntryResult enterFeature(FeatureRecord &feature, FeatureRecord::_featureIndType type,
                         const QString &name, const QStringList &texts)
{
    if (!isCountOf(type, texts.size()))
        return EntryResult::WrongCount;
    Entry entry{texts, {}};
    if (!convert(entry))
        return EntryResult::Rejected;
    if (type == FeatureRecord::temperatureOfVoltage && !completeTable(entry))
        return EntryResult::Rejected;
    if (type == FeatureRecord::callendarVanDusen && !fit(entry))
        return EntryResult::Rejected;
    if (!areFinite(entry.values))
        return EntryResult::Rejected;

    for (int i = 0; i < entry.values.size(); ++i)
        feature.ratio[std::size_t(i)].value = entry.values.at(i);
    feature.ratioStr = entry.texts;
    feature.name = name.trimmed();
    feature.type = type;
    return EntryResult::Stored;
}

std::optional<double> fitDeviation(const FeatureRecord &feature)
{
    Entry entry{feature.ratioStr.mid(0, thermometerValues), {}};
    while (entry.texts.size() < thermometerValues)
        entry.texts << QString();
    if (feature.type != FeatureRecord::callendarVanDusen || !convert(entry))
        return {};
    const auto thermometer = thermometerOf(entry.values);
    if (!thermometer)
        return {};
    StoredPolynomial polynomial;
    for (std::size_t k = 0; k < polynomial.size(); ++k)
        polynomial[k] = feature.ratio[k].value;
    constexpr double millikelvins = 1000.0;
    return largestDeviation(polynomial, *thermometer) * millikelvins;
}

// The object

featureNOX8::featureNOX8(QObject *parent)
    : QObject(parent)
    , m_typeNames{tr("T=f(R); Полином 9 степени.  Коэфф. C0-C9"),
                  tr("R=f(T); Каллендар-Ван Дюзен. Коэфф. R0, A, B, C"),
                  tr("МТШ-90 от 54.3584 К до 961.78 °C"), tr("Таблица T от U (для термопар)")}
{
}

QByteArray *featureNOX8::getData() const
{
    return new QByteArray(encodeFeature(*this));
}

void featureNOX8::setData(const QByteArray *buf)
{
    if (decodeFeature(*buf, *this))
        emit onChange();
}

void featureNOX8::setData(const QByteArray &buf)
{
    setData(&buf);
}

void featureNOX8::assign(const FeatureRecord &record)
{
    FeatureRecord::operator=(record);
    emit onChange();
}

int featureNOX8::setFeature(_featureIndType featureType, const QString &featureName,
                            const QStringList &values)
{
    const EntryResult result = enterFeature(*this, featureType, featureName, values);
    if (result == EntryResult::Stored)
        emit onChange();
    return result == EntryResult::Rejected ? 0 : 1;
}

QVector<float> featureNOX8::getRatio() const
{
    QVector<float> numbers;
    numbers.reserve(ratioCount);
    for (const bFloat &number : ratio)
        numbers << number.value;
    return numbers;
}

QString featureNOX8::getRatioStr(quint8 i) const
{
    return ratioStr.value(i);
}
