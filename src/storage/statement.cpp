#include "storage/statement.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>

#include <limits>

namespace
{

constexpr int patienceMs = 10;

// of the connection's driver
constexpr char heldProperty[] = "isHeldElsewhere";
constexpr char rulesProperty[] = "hasOwnRules";

/** What might never end: a view or a module in place of a table, and all that is done at a change
 *  but by our triggers, which delete what has one id. LIKE reads types and names as the database
 *  does: in either case, and to the first zero. */
constexpr auto foreignRules =
    "SELECT count(*) FROM sqlite_master WHERE (type LIKE 'view' AND (name LIKE 'app_property%'"
    " OR name LIKE 'device%' OR name LIKE 'feature%'))"
    " OR (type LIKE 'table' AND sql LIKE '%VIRTUAL%')"
    " OR (type LIKE 'trigger' AND (name NOT IN ('device_delete', 'device_snapshot_delete')"
    " OR sql LIKE '%SELECT%' OR sql LIKE '%UPDATE%' OR lower(sql) GLOB '*[^a-z]in[^a-z]*'))";

/** The connection as it is: closed, it stays closed. */
QSqlDatabase connection()
{
    return QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false);
}

bool isHeld(const QSqlDatabase &database)
{
    return database.driver()->property(heldProperty).toBool();
}

bool saysHeld(const QSqlError &error)
{
    constexpr int primaryCode = 0xff;
    constexpr int busy = 5;
    return (error.nativeErrorCode().toInt() & primaryCode) == busy;
}

void noteHeld(const QSqlDatabase &database, bool held)
{
    if (isHeld(database) == held)
        return;
    database.driver()->setProperty(heldProperty, held);
    QSqlQuery(database).exec(QStringLiteral("PRAGMA busy_timeout=%1").arg(held ? 0 : patienceMs));
}

/** Whether a change is known to do what its statement says, and no more. */
bool hasOwnRules(const QSqlDatabase &database)
{
    const QVariant known = database.driver()->property(rulesProperty);
    if (known.isValid())
        return known.toBool();
    QSqlQuery query(database);
    const bool isAnswered = query.exec(QString::fromLatin1(foreignRules)) && query.next();
    noteHeld(database, !isAnswered && saysHeld(query.lastError()));
    if (!isAnswered)
        return false;
    const bool hasOwn = query.value(0).toInt() == 0;
    database.driver()->setProperty(rulesProperty, hasOwn);
    return hasOwn;
}

} // namespace

bool openConnection(QSqlDatabase &database)
{
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(patienceMs));
    database.driver()->setProperty(heldProperty, false);
    database.driver()->setProperty(rulesProperty, QVariant());
    return database.open();
}

bool isHeldElsewhere()
{
    const QSqlDatabase database = connection();
    return database.isOpen() && isHeld(database);
}

std::optional<QSqlQuery> execute(const QString &sql, const NamedValues &values)
{
    const QSqlDatabase database = connection();
    if (!database.isOpen() || !hasOwnRules(database))
        return std::nullopt;
    QSqlQuery query(database);
    bool isDone = query.prepare(sql);
    if (isDone) {
        for (const auto &value : values)
            query.bindValue(QLatin1String(value.first), value.second);
        isDone = query.exec();
    }
    noteHeld(database, !isDone && saysHeld(query.lastError()));
    if (!isDone)
        return std::nullopt;
    return query;
}

std::optional<QSqlQuery> selectOnly(const QString &sql, const NamedValues &values)
{
    auto query = execute(sql, values);
    if (!query || rowCount(*query) != 1 || !query->first())
        return std::nullopt;
    return query;
}

int rowCount(QSqlQuery &query)
{
    const int position = query.at();
    const int count = query.last() ? query.at() + 1 : 0;
    query.seek(position);
    return count;
}

int idOf(const QVariant &value)
{
    const qlonglong id = value.toLongLong();
    return id >= 1 && id <= std::numeric_limits<int>::max() ? int(id) : -1;
}

int insertedId(const std::optional<QSqlQuery> &query)
{
    return query ? idOf(query->lastInsertId()) : -1;
}
