#include "device/featureentry.h"

#include "device/callendarvandusen.h"

#include <QVector>

#include <algorithm>
#include <cmath>

namespace
{

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
        return count == 6;
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

/** Replaces the thermometer by its polynomial; false when there is no range to fit over. */
bool fit(Entry &entry)
{
    const auto &values = entry.values;
    const CallendarVanDusen thermometer = {values.at(0), values.at(1), values.at(2),
                                           values.at(3), values.at(4), values.at(5)};
    if (thermometer.lowest == thermometer.highest)
        return false; // rounding would still yield a polynomial, of no meaning
    entry.values.clear();
    for (const double coefficient : fitTemperaturePolynomial(thermometer))
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
