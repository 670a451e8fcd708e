#include "storage/statement.h"

#include <QSqlDatabase>

#include <limits>

std::optional<QSqlQuery> execute(const QString &sql, const NamedValues &values)
{
    // the connection as it is: closed, it stays closed
    const auto database =
        QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false);
    if (!database.isOpen())
        return std::nullopt;
    QSqlQuery query(database);
    if (!query.prepare(sql))
        return std::nullopt;
    for (const auto &value : values)
        query.bindValue(QLatin1String(value.first), value.second);
    if (!query.exec())
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
