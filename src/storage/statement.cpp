#include "storage/statement.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>

#include <limits>

namespace
{

constexpr int patienceMs = 10;

constexpr char heldProperty[] = "isHeldElsewhere"; // of the connection's driver

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

} // namespace

bool openConnection(QSqlDatabase &database)
{
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(patienceMs));
    database.driver()->setProperty(heldProperty, false);
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
    if (!database.isOpen())
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
