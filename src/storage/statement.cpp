#include "storage/statement.h"

#include <QSqlDatabase>

std::optional<QSqlQuery> execute(const QSqlDatabase &database, const char *sql, NamedValues values)
{
    if (!database.isOpen())
        return std::nullopt;
    QSqlQuery query(database);
    if (!query.prepare(QString::fromUtf8(sql)))
        return std::nullopt;
    for (const auto &[name, value] : values)
        query.bindValue(QLatin1String(name), value);
    if (!query.exec())
        return std::nullopt;
    return query;
}

std::optional<QSqlQuery> selectOnly(const QSqlDatabase &database, const char *sql,
                                    NamedValues values)
{
    auto query = execute(database, sql, values);
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
