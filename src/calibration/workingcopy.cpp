#include "calibration/workingcopy.h"

#include "calibration/characteristictable.h"
#include "device/featurenox8.h"

namespace
{

bool hasNumbersOf(const FeatureRecord &feature, const CharacteristicEntry &entry)
{
    if (entry.type != feature.type)
        return false;
    const CharacteristicLayout layout = characteristicLayout(feature.type);
    return entry.values ==
           (layout.isOfPairs ? feature.ratioStr : enteredValues(layout, cellTexts(feature)));
}

} // namespace

void WorkingCopy::load(const QByteArray &record)
{
    if (decodeFeature(record, m_feature))
        m_record = record;
}

bool WorkingCopy::take(const CharacteristicEntry &entry)
{
    FeatureRecord entered = m_feature;
    const EntryResult result =
        enterFeature(entered, FeatureRecord::_featureIndType(entry.type), entry.name, entry.values);
    const bool hasSameNumbers = hasNumbersOf(m_feature, entry);
    if (hasSameNumbers && entry.name == m_feature.name)
        return result != EntryResult::Rejected; // a type without a table has the wrong count
    if (result != EntryResult::Stored)
        return false;

    if (hasSameNumbers)
        m_feature.name = entered.name;
    else
        m_feature = entered;
    m_record = encodeFeature(m_feature);
    return true;
}
