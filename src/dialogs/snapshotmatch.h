#pragma once

#include "storage/noxsql.h"

#include <optional>

/** What the box of stored configurations shows of the present one. */
struct SnapshotMatch {
    int id = 0;                ///< of the snapshot that the configuration has or comes from
    QString name;              ///< of that snapshot, or that there is none
    QString info;              ///< its description
    QString hint;              ///< stands where there is no description
    bool isFound = false;      ///< there is such a snapshot, which can be described
    bool isChanged = false;    ///< the configuration differs from it
    bool canBeSaved = false;   ///< the snapshot may follow the configuration
    bool canBeRemoved = false; ///< the snapshot is no factory one
};

/**
 * Decides from the snapshot that the record names, if it is stored, and from those that equal the
 * configuration, the one to be preferred first.
 */
SnapshotMatch matchSnapshot(const std::optional<noxSql::noxSqlItem> &named,
                            const QVector<noxSql::noxSqlItem> &equal);
