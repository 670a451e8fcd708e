#pragma once

#include "device/featurerecord.h"

/** What became of a characteristic that was entered as text. */
enum class EntryResult {
    Stored,
    Rejected,   ///< a text is no number, or a table or thermometer makes no sense
    WrongCount, ///< not the number of values that the type has, or no such type
};

/**
 * Stores a characteristic from the texts of its values: 10 for a polynomial, 6 for Callendar and
 * Van Dusen, 9 for ITS-90, 4 to 112 for a table. Unless it is stored, `feature` does not change.
 *
 * An empty text means 0. A table is continued with its last pair. A pair of it whose first number
 * is below that of the pair before becomes 0 and loses its texts; if it is the second pair, the
 * table is rejected. Numbers that the instrument could not hold are rejected.
 */
EntryResult enterFeature(FeatureRecord &feature, FeatureRecord::_featureIndType type,
                         const QString &name, const QStringList &texts);
