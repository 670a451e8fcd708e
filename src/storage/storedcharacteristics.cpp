#include "storage/storedcharacteristics.h"

#include "storage/statement.h"

#include <QDateTime>
#include <QSqlDatabase>

namespace
{

QSqlDatabase database()
{
    return QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false);
}

std::optional<StoredCharacteristic> firstOf(std::optional<QSqlQuery> rows)
{
    if (!rows || !rows->next())
        return {};
    return StoredCharacteristic{rows->value(0).toInt(),
                                datedName(rows->value(1).toString(), rows->value(2)),
                                rows->value(3).toString()};
}

} // namespace

std::optional<StoredCharacteristic> storedCharacteristic(int id)
{
    return firstOf(execute(database(),
                           "SELECT feature_id, feature_name, feature_datetime, feature_info"
                           " FROM feature WHERE feature_id=:feature_id",
                           {{":feature_id", id}}));
}

std::optional<StoredCharacteristic> storedCharacteristic(const QByteArray &record)
{
    return firstOf(execute(database(),
                           "SELECT feature_id, feature_name, feature_datetime, feature_info"
                           " FROM feature WHERE feature_data=:feature_data LIMIT 1",
                           {{":feature_data", record}}));
}

QByteArray storedRecord(int id)
{
    const auto row =
        selectOnly(database(), "SELECT feature_data FROM feature WHERE feature_id=:feature_id",
                   {{":feature_id", id}});
    return row ? row->value(0).toByteArray() : QByteArray();
}

bool removeStoredCharacteristic(int id)
{
    return execute(database(), "DELETE FROM feature WHERE feature_id=:feature_id",
                   {{":feature_id", id}})
        .has_value();
}

QString datedName(const QString &name, const QVariant &date)
{
    return name + QStringLiteral(" от ") +
           date.toDateTime().toString(QStringLiteral("dddd dd.MM.yyyy HH:mm"));
}
