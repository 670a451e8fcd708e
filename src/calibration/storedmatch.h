#pragma once

#include "storage/storeditems.h"

/** What the editor shows of the database about its characteristic. */
struct StoredMatch {
    int id = 0;             ///< of the row that belongs to it; 0: none
    QString name;           ///< the one item of the list of stored ones
    QString info;           ///< description of the row
    QString hint;           ///< in place of an empty description
    bool isStored = false;  ///< there is a row: it can be described and removed
    bool isChanged = false; ///< and it holds something else: it can be saved
};

/**
 * The row that belongs to a characteristic: the one it was matched to before or loaded from, if it
 * is still there, else the one with the same record.
 */
StoredMatch matchStored(const std::optional<StoredCharacteristic> &before,
                        const std::optional<StoredCharacteristic> &withSameRecord);
