#pragma once

#include "device/featurenox8.h"

/** A characteristic as it stands in the editor. */
struct CharacteristicEntry {
    int type = 0; ///< as FeatureRecord::_featureIndType
    QString name;
    QStringList values; ///< see enteredValues()
};

/**
 * The characteristic on which an editor works, and its record.
 *
 * A record that was loaded stays, byte by byte, as long as what is taken is what it shows. So does
 * each number, with digits that are not shown, when only another name is taken.
 */
class WorkingCopy
{
public:
    /** Becomes what the record tells; ignored unless it has 492 bytes. */
    void load(const QByteArray &record);

    /** Becomes what was entered; false, and nothing changes, when it is rejected (see
     *  enterFeature()). */
    bool take(const CharacteristicEntry &entry);

    const FeatureRecord &feature() const { return m_feature; }
    const QByteArray &record() const { return m_record; }

private:
    FeatureRecord m_feature;
    QByteArray m_record;
};
