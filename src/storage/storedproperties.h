#pragma once

#include <QMap>
#include <QPair>
#include <QString>
#include <QVariant>

#include <optional>

// Properties as they are stored: of the program, and of each instrument, by their keys.

/** Whose the properties are that are of no instrument. */
constexpr int programId = -1;

/** Writes a value under the id of an instrument, or that of the program, and a key, or removes it
 *  when it is not valid; false when that is refused. */
bool writeProperty(const QPair<int, QString> &property, const QVariant &value);

/** The properties of an instrument; nothing when they cannot be read. */
std::optional<QMap<QString, QVariant>> instrumentProperties(int deviceId);

/** A property of the program; not valid when there is none, or it cannot be read. */
QVariant programProperty(const QString &key);
