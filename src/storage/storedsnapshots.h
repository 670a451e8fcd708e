#pragma once

#include "storage/noxsql.h"

#include <QByteArray>

#include <optional>

// Statements about stored configurations that the settings of an instrument use, on the default
// connection. A closed database gives nothing.

/** What a snapshot holds. */
struct SnapshotContent {
    QByteArray configuration; ///< the configuration block
    QByteArray references; ///< the reference data, on extended models followed by the zero shifts
    QString info;          ///< its description
};

/** The snapshot of this id. */
std::optional<noxSql::noxSqlItem> storedSnapshot(int snapshotId);

/** The blocks and the description of the snapshot of this id. */
std::optional<SnapshotContent> snapshotContent(int snapshotId);

/** Snapshots whose description or whose instrument's name contains the text, in either case, or
 *  whose instrument has this number; factory ones last, else the newest first. */
QVector<noxSql::noxSqlItem> searchSnapshots(const QString &text);

/** Removes a snapshot, but never a factory one; false when the database is closed or refuses it. */
bool removeSnapshot(int snapshotId);

/** Removes an instrument with its snapshots and properties; false when the database is closed or
 *  refuses it. */
bool removeStoredInstrument(int deviceId);

/** The snapshot of a row {id, date, factory, description, type, number, name of the instrument}. */
noxSql::noxSqlItem snapshotOfRow(const QSqlQuery &row);
