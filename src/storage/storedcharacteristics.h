#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QVariant;

// Statements of the editor of characteristics, on the default connection. A closed database gives
// nothing.

/** A row of the stored characteristics. */
struct StoredCharacteristic {
    int id = 0;
    QString name; ///< as the user reads it, with its date
    QString info; ///< description
};

/** The characteristic of this id. */
std::optional<StoredCharacteristic> storedCharacteristic(int id);

/** The first one with this record. */
std::optional<StoredCharacteristic> storedCharacteristic(const QByteArray &record);

/** The record of the characteristic of this id; empty when there is none. */
QByteArray storedRecord(int id);

/** Removes a characteristic; false when the database is closed or refuses it. */
bool removeStoredCharacteristic(int id);

/** The name of a stored characteristic as the user reads it, with the date of its row. */
QString datedName(const QString &name, const QVariant &date);
