#include "storage/storeditems.h"

#include "storage/statement.h"

namespace
{

constexpr int failure = -1;
constexpr int shortestNumber = 4;

/** The name of something stored as the user reads it, with the date of its row. */
QString datedName(const QString &name, const QVariant &date)
{
    return name + QStringLiteral(" от ") +
           date.toDateTime().toString(QStringLiteral("dddd dd.MM.yyyy HH:mm"));
}

QVariant containing(const QString &text)
{
    return QString('%' + text.toLower() + '%');
}

// Snapshots

/** Selects what the user reads of several snapshots; snapshotOfRow() reads it. */
QString selectShown(const char *condition)
{
    return QStringLiteral(
               " SELECT  device_snapshot.device_snapshot_id,"
               " device_snapshot.device_snapshot_datetime,"
               " device_snapshot.device_snapshot_factory, device_snapshot.device_snapshot_info,"
               " device.device_type,  device.device_number,  device.device_name "
               " FROM device, device_snapshot "
               " WHERE ") +
           QLatin1String(condition) +
           QStringLiteral(" ORDER BY device_snapshot.device_snapshot_factory,"
                          " device_snapshot.device_snapshot_datetime DESC");
}

noxSql::noxSqlItem snapshotOfRow(const QSqlQuery &row)
{
    noxSql::noxSqlItem item;
    item.id = idOf(row.value(0));
    item.factory = row.value(2).toBool();
    item.info = row.value(3).toString();
    const QString number = row.value(5).toString().rightJustified(shortestNumber, QLatin1Char('0'));
    item.name = datedName(row.value(6).toString() + QStringLiteral(" № ") + number, row.value(1));
    if (item.factory)
        item.name += QStringLiteral(" (") + noxSql::tr("Заводская") + QLatin1Char(')');
    return item;
}

QVector<noxSql::noxSqlItem> snapshotsOf(std::optional<QSqlQuery> rows)
{
    QVector<noxSql::noxSqlItem> items;
    while (rows && rows->next())
        items << snapshotOfRow(*rows);
    return items;
}

/** The row that a snapshot takes over: that of the id, or, below 1, the one with the same blocks;
 *  never a factory one. */
std::optional<QSqlQuery> ordinarySnapshot(int deviceId, const SnapshotContent &content,
                                          int snapshotId)
{
    const auto select =
        QStringLiteral(" SELECT device_snapshot_id, device_snapshot_data, device_snapshot_refdata,"
                       " device_snapshot_info FROM device_snapshot WHERE %1"
                       " AND device_id=:device_id AND device_snapshot_factory='0'");
    if (snapshotId >= 1)
        return selectOnly(select.arg("device_snapshot_id=:device_snapshot_id"),
                          {{":device_snapshot_id", snapshotId}, {":device_id", deviceId}});
    return selectOnly(select.arg("device_snapshot_data=:device_snapshot_data"
                                 " AND device_snapshot_refdata=:device_snapshot_refdata"),
                      {{":device_snapshot_data", content.configuration},
                       {":device_snapshot_refdata", content.references},
                       {":device_id", deviceId}});
}

NamedValues snapshotValues(int deviceId, const SnapshotContent &content)
{
    return {{":device_id", deviceId},
            {":device_snapshot_info", content.info},
            {":device_snapshot_info_search", content.info.toLower()},
            {":device_snapshot_data", content.configuration},
            {":device_snapshot_refdata", content.references}};
}

int insertSnapshot(int deviceId, const SnapshotContent &content, const QDateTime &now)
{
    const int count = snapshotCount(deviceId);
    if (count == failure) // a locked database must not get a second factory snapshot
        return failure;
    const bool isFactory = count == 0;
    const auto insert =
        QStringLiteral(
            " INSERT INTO device_snapshot ( device_id, device_snapshot_info,"
            " device_snapshot_info_search, device_snapshot_datetime, device_snapshot_data,"
            " device_snapshot_refdata%1 )VALUES(:device_id, :device_snapshot_info,"
            " :device_snapshot_info_search, :device_snapshot_datetime, :device_snapshot_data,"
            " :device_snapshot_refdata%2)")
            .arg(isFactory ? ", device_snapshot_factory" : "", isFactory ? ", 1" : "");
    return insertedId(execute(insert, snapshotValues(deviceId, content)
                                          << NamedValues{{":device_snapshot_datetime", now}}));
}

// Characteristics

/** Selects what the user reads of characteristics; characteristicOfRow() reads it. */
QString selectShownCharacteristics(const char *condition)
{
    return QStringLiteral("SELECT feature_id, feature_name, feature_datetime, feature_info"
                          " FROM feature WHERE ") +
           QLatin1String(condition);
}

StoredCharacteristic characteristicOfRow(const QSqlQuery &row)
{
    return {idOf(row.value(0)), datedName(row.value(1).toString(), row.value(2)),
            row.value(3).toString()};
}

std::optional<StoredCharacteristic> firstOf(std::optional<QSqlQuery> rows)
{
    if (!rows || !rows->next())
        return {};
    return characteristicOfRow(*rows);
}

/** The row that a characteristic takes over: that of the id, or, below 1, the one with the same
 *  record. */
std::optional<QSqlQuery> formerCharacteristic(const QByteArray &record, int id)
{
    const auto select = QStringLiteral(
        " SELECT feature_id, feature_data, feature_name, feature_info FROM feature WHERE ");
    return id < 1 ? selectOnly(select + "feature_data=:feature_data", {{":feature_data", record}})
                  : selectOnly(select + "feature_id=:feature_id", {{":feature_id", id}});
}

NamedValues characteristicValues(const QByteArray &record, const QString &name, const QString &info,
                                 const QDateTime &now)
{
    const int type = record.isEmpty() ? 0 : qint8(record.at(0));
    return {{":feature_type", type},
            {":feature_name", name},
            {":feature_name_search", name.toLower()},
            {":feature_datetime", now},
            {":feature_info", info},
            {":feature_data", record}};
}

} // namespace

// Snapshots

int snapshotCount(int deviceId)
{
    if (deviceId < 1)
        return failure;
    auto rows = execute("SELECT device_id FROM device_snapshot WHERE device_id=:device_id",
                        {{":device_id", deviceId}});
    return rows ? rowCount(*rows) : failure;
}

QString snapshotInfo(int snapshotId)
{
    const auto row = selectOnly("SELECT device_snapshot_info FROM device_snapshot"
                                " WHERE device_snapshot_id=:device_snapshot_id",
                                {{":device_snapshot_id", snapshotId}});
    return row ? row->value(0).toString() : QString();
}

int storeSnapshot(int deviceId, const SnapshotContent &content, int snapshotId,
                  const QDateTime &now)
{
    if (deviceId < 1 || !selectOnly("SELECT device_id FROM device WHERE device_id=:device_id",
                                    {{":device_id", deviceId}}))
        return failure;
    const auto stored = ordinarySnapshot(deviceId, content, snapshotId);
    if (!stored)
        return insertSnapshot(deviceId, content, now);

    const int id = idOf(stored->value(0));
    if (stored->value(1).toByteArray() == content.configuration &&
        stored->value(2).toByteArray() == content.references &&
        stored->value(3).toString() == content.info)
        return id;
    const auto update =
        execute(" UPDATE device_snapshot SET  device_snapshot_info=:device_snapshot_info,"
                " device_snapshot_info_search=:device_snapshot_info_search,"
                " device_snapshot_data=:device_snapshot_data,"
                " device_snapshot_refdata=:device_snapshot_refdata"
                " WHERE device_id=:device_id AND device_snapshot_id=:device_snapshot_id",
                snapshotValues(deviceId, content) << NamedValues{{":device_snapshot_id", id}});
    return update ? id : failure;
}

std::optional<noxSql::noxSqlItem> storedSnapshot(int snapshotId)
{
    const auto row =
        selectOnly(" SELECT  device_snapshot.device_snapshot_id, "
                   " device_snapshot.device_snapshot_datetime, "
                   " device_snapshot.device_snapshot_factory, device_snapshot.device_snapshot_info,"
                   " device.device_type,  device.device_number,  device.device_name "
                   " FROM device, device_snapshot "
                   " WHERE  device_snapshot.device_id=device.device_id "
                   " AND device_snapshot.device_snapshot_id=:device_snapshot_id ",
                   {{":device_snapshot_id", snapshotId}});
    if (!row)
        return std::nullopt;
    return snapshotOfRow(*row);
}

std::optional<SnapshotContent> snapshotContent(int snapshotId)
{
    const auto row =
        selectOnly("SELECT device_snapshot_info, device_snapshot_data, device_snapshot_refdata"
                   " FROM device_snapshot WHERE device_snapshot_id=:device_snapshot_id",
                   {{":device_snapshot_id", snapshotId}});
    if (!row)
        return std::nullopt;
    const QByteArray info = row->value(0).toByteArray();
    return SnapshotContent{row->value(1).toByteArray(), row->value(2).toByteArray(),
                           QString::fromUtf8(info.constData())}; // up to the first zero byte
}

QVector<noxSql::noxSqlItem> equalSnapshots(const QByteArray &configuration,
                                           const QByteArray &references, int deviceId)
{
    NamedValues values = {{":device_snapshot_data", configuration},
                          {":device_snapshot_refdata", references}};
    if (deviceId < 1)
        return snapshotsOf(
            execute(selectShown(" device_snapshot.device_snapshot_data=:device_snapshot_data"
                                " AND device_snapshot.device_snapshot_refdata="
                                ":device_snapshot_refdata"
                                " AND device.device_id=device_snapshot.device_id"),
                    values));
    values << NamedValues{{":device_id", deviceId}};
    return snapshotsOf(
        execute(selectShown(" device_snapshot.device_snapshot_data=:device_snapshot_data "
                            " AND device_snapshot.device_snapshot_refdata="
                            ":device_snapshot_refdata "
                            " AND device.device_id=device_snapshot.device_id "
                            " AND device_snapshot.device_id=:device_id"),
                values));
}

QVector<noxSql::noxSqlItem> searchSnapshots(const QString &text)
{
    return snapshotsOf(
        execute(selectShown(" (device_snapshot.device_snapshot_info_search LIKE :search_text"
                            " OR device.device_name_search LIKE :search_text"
                            " OR device.device_number=:search)"
                            " AND device.device_id=device_snapshot.device_id"),
                {{":search", text}, {":search_text", containing(text)}}));
}

bool removeSnapshot(int snapshotId)
{
    return bool(execute("DELETE FROM device_snapshot WHERE device_snapshot_id=:device_snapshot_id"
                        " AND device_snapshot_factory='0'",
                        {{":device_snapshot_id", snapshotId}}));
}

// Characteristics

int addCharacteristic(const QByteArray &record, const QString &name, const QString &info,
                      const QDateTime &now)
{
    return insertedId(execute(
        " INSERT INTO feature  (feature_type, feature_name, feature_name_search,"
        " feature_datetime, feature_info, feature_data) VALUES(:feature_type, :feature_name,"
        " :feature_name_search, :feature_datetime, :feature_info, :feature_data)",
        characteristicValues(record, name, info, now)));
}

int storeCharacteristic(const QByteArray &record, const QString &name, const QString &info, int id,
                        const QDateTime &now)
{
    const auto stored = formerCharacteristic(record, id);
    if (!stored)
        return addCharacteristic(record, name, info, now);

    const int storedId = idOf(stored->value(0));
    if (stored->value(1).toByteArray() == record && stored->value(2).toString() == name &&
        stored->value(3).toString() == info)
        return storedId;
    const auto update = execute(
        " UPDATE feature  SET  feature_type=:feature_type, "
        " feature_datetime=:feature_datetime,  feature_name=:feature_name, "
        " feature_name_search=:feature_name_search,  feature_info=:feature_info, "
        " feature_data=:feature_data WHERE feature_id=:feature_id",
        characteristicValues(record, name, info, now) << NamedValues{{":feature_id", storedId}});
    return update ? storedId : failure;
}

std::optional<StoredCharacteristic> storedCharacteristic(int id)
{
    return firstOf(
        execute(selectShownCharacteristics("feature_id=:feature_id"), {{":feature_id", id}}));
}

std::optional<StoredCharacteristic> storedCharacteristic(const QByteArray &record)
{
    return firstOf(execute(selectShownCharacteristics("feature_data=:feature_data LIMIT 1"),
                           {{":feature_data", record}}));
}

QVector<StoredCharacteristic> searchCharacteristics(const QString &text)
{
    auto rows = execute(selectShownCharacteristics("feature_name_search LIKE :feature_name_search"),
                        {{":feature_name_search", containing(text)}});
    QVector<StoredCharacteristic> found;
    while (rows && rows->next())
        found << characteristicOfRow(*rows);
    return found;
}

QByteArray storedRecord(int id)
{
    const auto row = selectOnly("SELECT feature_data FROM feature WHERE feature_id=:feature_id",
                                {{":feature_id", id}});
    return row ? row->value(0).toByteArray() : QByteArray();
}

bool removeStoredCharacteristic(int id)
{
    return bool(execute("DELETE FROM feature WHERE feature_id=:feature_id", {{":feature_id", id}}));
}
