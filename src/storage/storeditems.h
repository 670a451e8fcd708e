#pragma once

#include "storage/noxsql.h"

#include <QByteArray>
#include <QDateTime>

#include <optional>

// What the user has stored to use it again: configurations of instruments as snapshots, and
// characteristics. A closed database gives nothing, and -1 for ids and counts.

// Snapshots

/** What a snapshot holds. */
struct SnapshotContent {
    QByteArray configuration; ///< the configuration block
    QByteArray references; ///< the reference data, on extended models followed by the zero shifts
    QString info;          ///< its description
};

/** Snapshots of an instrument, the factory one included. */
int snapshotCount(int deviceId);
/** The description of a snapshot; empty when there is none of this id. */
QString snapshotInfo(int snapshotId);
/** Stores a snapshot as noxSql::setSnapShot() says, dated `now` if it is added; its id. */
int storeSnapshot(int deviceId, const SnapshotContent &content, int snapshotId,
                  const QDateTime &now);
/** The snapshot of this id. */
std::optional<noxSql::noxSqlItem> storedSnapshot(int snapshotId);
/** The blocks and the description of the snapshot of this id. */
std::optional<SnapshotContent> snapshotContent(int snapshotId);
/** Snapshots with these blocks, of all instruments when the id is below 1; the factory one last,
 *  else the newest first. */
QVector<noxSql::noxSqlItem> equalSnapshots(const QByteArray &configuration,
                                           const QByteArray &references, int deviceId);
/** Snapshots whose description or whose instrument's name contains the text, in either case, or
 *  whose instrument has this number; factory ones last, else the newest first. */
QVector<noxSql::noxSqlItem> searchSnapshots(const QString &text);
/** Removes a snapshot, but never a factory one; false when the database is closed or refuses it. */
bool removeSnapshot(int snapshotId);

// Characteristics

/** A row of the stored characteristics. */
struct StoredCharacteristic {
    int id = 0;
    QString name; ///< as the user reads it, with its date
    QString info; ///< description
};

/** Adds a characteristic, dated `now`; its id. */
int addCharacteristic(const QByteArray &record, const QString &name, const QString &info,
                      const QDateTime &now);
/** Stores a characteristic as noxSql::setFeature() says, dated `now` if it differs; its id. */
int storeCharacteristic(const QByteArray &record, const QString &name, const QString &info, int id,
                        const QDateTime &now);
/** The characteristic of this id. */
std::optional<StoredCharacteristic> storedCharacteristic(int id);
/** The first one with this record. */
std::optional<StoredCharacteristic> storedCharacteristic(const QByteArray &record);
/** Characteristics whose name contains the text, in either case. */
QVector<StoredCharacteristic> searchCharacteristics(const QString &text);
/** The record of the characteristic of this id; empty when there is none. */
QByteArray storedRecord(int id);
/** Removes a characteristic; false when the database is closed or refuses it. */
bool removeStoredCharacteristic(int id);
