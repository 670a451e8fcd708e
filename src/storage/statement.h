#pragma once

#include <QSqlQuery>
#include <QVariant>

#include <initializer_list>
#include <optional>
#include <utility>

class QSqlDatabase;

/** Values by the names under which a statement has them, as {":device_id", 5}. */
using NamedValues = std::initializer_list<std::pair<const char *, QVariant>>;

/** Executes a statement with its values; nothing when the database is closed or refuses it. */
std::optional<QSqlQuery> execute(const QSqlDatabase &database, const char *sql, NamedValues values);

/** Executes a SELECT and stands on its row; nothing unless there is exactly one. */
std::optional<QSqlQuery> selectOnly(const QSqlDatabase &database, const char *sql,
                                    NamedValues values);

/** Rows of an executed SELECT; the query stands where it stood. */
int rowCount(QSqlQuery &query);
