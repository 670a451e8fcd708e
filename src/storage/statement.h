#pragma once

#include <QPair>
#include <QSqlQuery>
#include <QVariant>
#include <QVector>

#include <optional>

class QSqlDatabase;

// Statements on the user's database, which is the default connection.

/** Values by the names under which a statement has them, as {":device_id", 5}. */
using NamedValues = QVector<QPair<const char *, QVariant>>;

/** Opens the connection, and says whether it is open. */
bool openConnection(QSqlDatabase &database);

/**
 * Executes a statement with its values; nothing when the database is closed or refuses it, or has
 * views, modules or triggers that might never end.
 *
 * One that another program holds is waited for, but for a moment only, because the window stands
 * still as long; and by the first statement alone: those after it fail at once, until one succeeds.
 */
std::optional<QSqlQuery> execute(const QString &sql, const NamedValues &values = {});

/** Whether another program held the database when the last statement was executed. */
bool isHeldElsewhere();

/** Executes a SELECT and stands on its row; nothing unless there is exactly one. */
std::optional<QSqlQuery> selectOnly(const QString &sql, const NamedValues &values);

/** Rows of an executed SELECT; the query stands where it stood. */
int rowCount(QSqlQuery &query);

/** The id that a column holds. -1 for one that is none of ours: cut to an int, it would be that of
 *  another row. */
int idOf(const QVariant &value);

/** The id of the row that a statement has inserted; -1 when it was refused. */
int insertedId(const std::optional<QSqlQuery> &query);
