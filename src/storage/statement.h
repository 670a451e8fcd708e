#pragma once

#include <QPair>
#include <QSqlQuery>
#include <QVariant>
#include <QVector>

#include <optional>

// Statements on the user's database, which is the default connection.

/** Values by the names under which a statement has them, as {":device_id", 5}. */
using NamedValues = QVector<QPair<const char *, QVariant>>;

/** Executes a statement with its values; nothing when the database is closed or refuses it. */
std::optional<QSqlQuery> execute(const QString &sql, const NamedValues &values = {});

/** Executes a SELECT and stands on its row; nothing unless there is exactly one. */
std::optional<QSqlQuery> selectOnly(const QString &sql, const NamedValues &values);

/** Rows of an executed SELECT; the query stands where it stood. */
int rowCount(QSqlQuery &query);

/** The id that a column holds. -1 for one that is none of ours: cut to an int, it would be that of
 *  another row. */
int idOf(const QVariant &value);

/** The id of the row that a statement has inserted; -1 when it was refused. */
int insertedId(const std::optional<QSqlQuery> &query);
