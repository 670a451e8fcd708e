#include "storage/noxsql.h"

#include "storage/statement.h"
#include "storage/storedcharacteristics.h"
#include "storage/storedsnapshots.h"

#include <QLatin1String>

namespace
{

constexpr int failure = -1;

constexpr auto selectDevice =
    "SELECT device_id FROM device WHERE device_type=:device_type AND device_number=:device_number";

/** The id of an inserted row. */
int insertedId(const std::optional<QSqlQuery> &query)
{
    return query ? query->lastInsertId().toInt() : failure;
}

int typeOf(const QByteArray &characteristic)
{
    return characteristic.isEmpty() ? 0 : qint8(characteristic.at(0));
}

} // namespace

noxSql::noxSql(const QString &path, QObject *parent)
    : QObject(parent)
{
    if (path.isEmpty())
        return;
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    m_database.setDatabaseName(path);
    // Qt waits 5 s for a database that another program holds, and the window stands still as long
    m_database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=250"));
    m_database.open();
}

noxSql::~noxSql()
{
    if (!m_database.isValid())
        return;
    execute(m_database, "VACUUM;", {});
    m_database.close();
    m_database = QSqlDatabase(); // a connection in use cannot be removed
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
}

bool noxSql::canStore()
{
    return execute(m_database, "UPDATE app_property SET app_property_val=NULL WHERE FALSE", {})
        .has_value();
}

int noxSql::querySize(QSqlQuery *query)
{
    return rowCount(*query);
}

// Instruments

int noxSql::addDev(quint32 type, quint32 number, const QString &name)
{
    const int known = findDev(type, number);
    if (known != failure)
        return known;
    return insertedId(
        execute(m_database,
                " INSERT INTO device (device_type, device_number, device_name, device_name_search)"
                " VALUES(:device_type, :device_number, :device_name, :device_name_search)",
                {{":device_type", type},
                 {":device_number", number},
                 {":device_name", name},
                 {":device_name_search", name.toLower()}}));
}

int noxSql::provideDev(const QByteArray *refdata, quint32 type, quint32 number, const QString &name)
{
    const auto row = selectOnly(
        m_database,
        "SELECT device_id FROM device WHERE device_refdata=:device_refdata"
        " AND device_type=:device_type AND device_number=:device_number",
        {{":device_refdata", *refdata}, {":device_type", type}, {":device_number", number}});
    if (row)
        return row->value(0).toInt();
    const int known = findDev(type, number);
    if (known != failure)
        return updRefData(known, refdata, type, number, name) ? known : failure;
    return insertedId(execute(
        m_database,
        " INSERT INTO device (device_type, device_number, device_refdata, device_name,"
        " device_name_search) VALUES(:device_type, :device_number, :device_refdata, :device_name,"
        " :device_name_search)",
        {{":device_type", type},
         {":device_number", number},
         {":device_refdata", *refdata},
         {":device_name", name},
         {":device_name_search", name.toLower()}}));
}

bool noxSql::updRefData(int deviceId, const QByteArray *refdata, quint32 type, quint32 number,
                        const QString &name)
{
    if (deviceId < 1)
        return false;
    return execute(m_database,
                   " UPDATE device SET device_refdata=:device_refdata, device_type=:device_type,"
                   " device_number=:device_number, device_name=:device_name,"
                   " device_name_search=:device_name_search WHERE device_id=:device_id",
                   {{":device_refdata", *refdata},
                    {":device_type", type},
                    {":device_number", number},
                    {":device_name", name},
                    {":device_name_search", name.toLower()},
                    {":device_id", deviceId}})
        .has_value();
}

int noxSql::findDev(const QByteArray *refdata, quint32 *type, quint32 *number)
{
    const auto row = selectOnly(m_database,
                                "SELECT device_id, device_type, device_number FROM device"
                                " WHERE device_refdata=:device_refdata",
                                {{":device_refdata", *refdata}});
    if (!row)
        return failure;
    *type = row->value(1).toUInt();
    *number = row->value(2).toUInt();
    return row->value(0).toInt();
}

int noxSql::findDev(quint32 type, quint32 number)
{
    const auto row =
        selectOnly(m_database, selectDevice, {{":device_type", type}, {":device_number", number}});
    return row ? row->value(0).toInt() : failure;
}

// Snapshots

int noxSql::getSnapShotCount(int deviceId)
{
    if (deviceId < 1)
        return failure;
    auto rows =
        execute(m_database, "SELECT device_id FROM device_snapshot WHERE device_id=:device_id",
                {{":device_id", deviceId}});
    return rows ? rowCount(*rows) : failure;
}

QString noxSql::getSnapShotInfo(int snapshotId)
{
    const auto row = selectOnly(m_database,
                                "SELECT device_snapshot_info FROM device_snapshot"
                                " WHERE device_snapshot_id=:device_snapshot_id",
                                {{":device_snapshot_id", snapshotId}});
    return row ? row->value(0).toString() : QString();
}

int noxSql::setSnapShot(int deviceId, const QByteArray *data, const QByteArray *refdata,
                        const QString &info, int snapshotId)
{
    if (deviceId < 1 ||
        !selectOnly(m_database, "SELECT device_id FROM device WHERE device_id=:device_id",
                    {{":device_id", deviceId}}))
        return failure;

    const auto stored =
        snapshotId < 1
            ? selectOnly(m_database,
                         " SELECT device_snapshot_id, device_snapshot_data,"
                         " device_snapshot_refdata, device_snapshot_info FROM device_snapshot"
                         " WHERE device_snapshot_data=:device_snapshot_data"
                         " AND device_snapshot_refdata=:device_snapshot_refdata"
                         " AND device_id=:device_id AND device_snapshot_factory='0'",
                         {{":device_snapshot_data", *data},
                          {":device_snapshot_refdata", *refdata},
                          {":device_id", deviceId}})
            : selectOnly(m_database,
                         " SELECT device_snapshot_id, device_snapshot_data,"
                         " device_snapshot_refdata, device_snapshot_info FROM device_snapshot"
                         " WHERE device_snapshot_id=:device_snapshot_id"
                         " AND device_id=:device_id AND device_snapshot_factory='0'",
                         {{":device_snapshot_id", snapshotId}, {":device_id", deviceId}});
    if (!stored)
        return insertSnapShot(deviceId, *data, *refdata, info);

    const int id = stored->value(0).toInt();
    if (stored->value(1).toByteArray() == *data && stored->value(2).toByteArray() == *refdata &&
        stored->value(3).toString() == info)
        return id;
    const bool isUpdated =
        execute(m_database,
                " UPDATE device_snapshot SET  device_snapshot_info=:device_snapshot_info,"
                " device_snapshot_info_search=:device_snapshot_info_search,"
                " device_snapshot_data=:device_snapshot_data,"
                " device_snapshot_refdata=:device_snapshot_refdata"
                " WHERE device_id=:device_id AND device_snapshot_id=:device_snapshot_id",
                {{":device_snapshot_info", info},
                 {":device_snapshot_info_search", info.toLower()},
                 {":device_snapshot_data", *data},
                 {":device_snapshot_refdata", *refdata},
                 {":device_id", deviceId},
                 {":device_snapshot_id", id}})
            .has_value();
    return isUpdated ? id : failure;
}

int noxSql::insertSnapShot(int deviceId, const QByteArray &data, const QByteArray &refdata,
                           const QString &info)
{
    const char *const insertFactory =
        " INSERT INTO device_snapshot ( device_id, device_snapshot_info,"
        " device_snapshot_info_search, device_snapshot_datetime, device_snapshot_data,"
        " device_snapshot_refdata, device_snapshot_factory )VALUES(:device_id,"
        " :device_snapshot_info, :device_snapshot_info_search, :device_snapshot_datetime,"
        " :device_snapshot_data, :device_snapshot_refdata, 1)";
    const char *const insertOrdinary =
        " INSERT INTO device_snapshot ( device_id, device_snapshot_info,"
        " device_snapshot_info_search, device_snapshot_datetime, device_snapshot_data,"
        " device_snapshot_refdata )VALUES(:device_id, :device_snapshot_info,"
        " :device_snapshot_info_search, :device_snapshot_datetime, :device_snapshot_data,"
        " :device_snapshot_refdata)";
    const int count = getSnapShotCount(deviceId);
    if (count == failure) // a locked database must not get a second factory snapshot
        return failure;
    return insertedId(execute(m_database, count == 0 ? insertFactory : insertOrdinary,
                              {{":device_id", deviceId},
                               {":device_snapshot_info", info},
                               {":device_snapshot_info_search", info.toLower()},
                               {":device_snapshot_datetime", m_clock()},
                               {":device_snapshot_data", data},
                               {":device_snapshot_refdata", refdata}}));
}

QVector<noxSql::noxSqlItem> noxSql::findSnapShot(const QByteArray *data, const QByteArray *refdata,
                                                 int deviceId)
{
    auto rows =
        deviceId < 1
            ? execute(m_database,
                      " SELECT  device_snapshot.device_snapshot_id,"
                      " device_snapshot.device_snapshot_datetime,"
                      " device_snapshot.device_snapshot_factory,"
                      " device_snapshot.device_snapshot_info, device.device_type, "
                      " device.device_number,  device.device_name  FROM device, device_snapshot "
                      " WHERE  device_snapshot.device_snapshot_data=:device_snapshot_data"
                      " AND device_snapshot.device_snapshot_refdata=:device_snapshot_refdata"
                      " AND device.device_id=device_snapshot.device_id"
                      " ORDER BY device_snapshot.device_snapshot_factory,"
                      " device_snapshot.device_snapshot_datetime DESC",
                      {{":device_snapshot_data", *data}, {":device_snapshot_refdata", *refdata}})
            : execute(m_database,
                      " SELECT  device_snapshot.device_snapshot_id,"
                      " device_snapshot.device_snapshot_datetime,"
                      " device_snapshot.device_snapshot_factory,"
                      " device_snapshot.device_snapshot_info, device.device_type, "
                      " device.device_number,  device.device_name  FROM device, device_snapshot "
                      " WHERE  device_snapshot.device_snapshot_data=:device_snapshot_data "
                      " AND device_snapshot.device_snapshot_refdata=:device_snapshot_refdata "
                      " AND device.device_id=device_snapshot.device_id "
                      " AND device_snapshot.device_id=:device_id"
                      " ORDER BY device_snapshot.device_snapshot_factory,"
                      " device_snapshot.device_snapshot_datetime DESC",
                      {{":device_snapshot_data", *data},
                       {":device_snapshot_refdata", *refdata},
                       {":device_id", deviceId}});
    QVector<noxSqlItem> items;
    while (rows && rows->next())
        items << snapshotOfRow(*rows);
    return items;
}

// Characteristics

int noxSql::setFeature(const QByteArray *data, const QString &name, const QString &info,
                       int featureId)
{
    const auto stored =
        featureId < 1 ? selectOnly(m_database,
                                   " SELECT feature_id, feature_data, feature_name, feature_info"
                                   " FROM feature WHERE feature_data=:feature_data",
                                   {{":feature_data", *data}})
                      : selectOnly(m_database,
                                   " SELECT feature_id, feature_data, feature_name, feature_info"
                                   " FROM feature WHERE feature_id=:feature_id",
                                   {{":feature_id", featureId}});
    if (!stored)
        return addFeature(data, name, info);

    const int id = stored->value(0).toInt();
    if (stored->value(1).toByteArray() == *data && stored->value(2).toString() == name &&
        stored->value(3).toString() == info)
        return id;
    const bool isUpdated =
        execute(m_database,
                " UPDATE feature  SET  feature_type=:feature_type, "
                " feature_datetime=:feature_datetime,  feature_name=:feature_name, "
                " feature_name_search=:feature_name_search,  feature_info=:feature_info, "
                " feature_data=:feature_data WHERE feature_id=:feature_id",
                {{":feature_type", typeOf(*data)},
                 {":feature_datetime", m_clock()},
                 {":feature_name", name},
                 {":feature_name_search", name.toLower()},
                 {":feature_info", info},
                 {":feature_data", *data},
                 {":feature_id", id}})
            .has_value();
    return isUpdated ? id : failure;
}

int noxSql::addFeature(const QByteArray *data, const QString &name, const QString &info)
{
    return insertedId(execute(
        m_database,
        " INSERT INTO feature  (feature_type, feature_name, feature_name_search,"
        " feature_datetime, feature_info, feature_data) VALUES(:feature_type, :feature_name,"
        " :feature_name_search, :feature_datetime, :feature_info, :feature_data)",
        {{":feature_type", typeOf(*data)},
         {":feature_name", name},
         {":feature_name_search", name.toLower()},
         {":feature_datetime", m_clock()},
         {":feature_info", info},
         {":feature_data", *data}}));
}

QVector<noxSql::noxSqlItem> noxSql::findFeature(const QString &text)
{
    auto rows = execute(m_database,
                        "SELECT feature_id, feature_name, feature_datetime, feature_info"
                        " FROM feature WHERE feature_name_search LIKE :feature_name_search",
                        {{":feature_name_search", '%' + text.toLower() + '%'}});
    QVector<noxSqlItem> items;
    while (rows && rows->next())
        items.append({rows->value(0).toInt(), datedName(rows->value(1).toString(), rows->value(2)),
                      rows->value(3).toString(), false});
    return items;
}

// Properties

bool noxSql::setAppProperty(const QString &key, const QVariant &value)
{
    if (key.isEmpty())
        return false;
    if (!value.isValid())
        return execute(m_database,
                       "DELETE FROM app_property WHERE app_property_key=:app_property_key",
                       {{":app_property_key", key}})
            .has_value();

    const auto update = execute(m_database,
                                " UPDATE app_property SET app_property_val=:app_property_val"
                                " WHERE app_property_key=:app_property_key",
                                {{":app_property_val", value}, {":app_property_key", key}});
    if (!update || update->numRowsAffected() == 1)
        return update.has_value();
    return execute(m_database,
                   "INSERT INTO app_property (app_property_key, app_property_val)"
                   "VALUES(:app_property_key, :app_property_val)",
                   {{":app_property_key", key}, {":app_property_val", value}})
        .has_value();
}

QVariant noxSql::getAppProperty(const QString &key)
{
    if (key.isEmpty())
        return {};
    const auto row = selectOnly(
        m_database,
        "SELECT app_property_val FROM app_property WHERE app_property_key=:app_property_key",
        {{":app_property_key", key}});
    return row ? row->value(0) : QVariant();
}

void noxSql::setDevProperty(int deviceId, const QString &key, const QVariant &value)
{
    if (deviceId < 0 || key.isEmpty())
        return;
    if (!value.isValid()) {
        execute(m_database,
                "DELETE FROM device_property WHERE device_id=:device_id"
                " AND device_property_key=:device_property_key",
                {{":device_id", deviceId}, {":device_property_key", key}});
        return;
    }
    const auto update = execute(
        m_database,
        " UPDATE device_property  SET device_property_val=:device_property_val "
        " WHERE device_id=:device_id AND device_property_key=:device_property_key",
        {{":device_property_val", value}, {":device_id", deviceId}, {":device_property_key", key}});
    if (update && update->numRowsAffected() == 0)
        execute(m_database,
                "INSERT INTO device_property"
                " (device_id, device_property_key, device_property_val)"
                "VALUES(:device_id, :device_property_key, :device_property_val)",
                {{":device_id", deviceId},
                 {":device_property_key", key},
                 {":device_property_val", value}});
}

bool noxSql::setDevProperties(const QMap<QPair<int, QString>, QVariant> &properties)
{
    if (!execute(m_database, "BEGIN IMMEDIATE", {}))
        return false;
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        setDevProperty(property.key().first, property.key().second, property.value());
    if (execute(m_database, "COMMIT", {}))
        return true;
    execute(m_database, "ROLLBACK", {});
    return false;
}

bool noxSql::hasDevProperty(int deviceId)
{
    const auto count =
        selectOnly(m_database, "SELECT count(*) FROM device_property WHERE device_id=:device_id",
                   {{":device_id", deviceId}});
    return !count || count->value(0).toInt() > 0;
}

QMap<QString, QVariant> noxSql::getDevProperty(int deviceId)
{
    if (deviceId < 0)
        return {};
    auto rows = execute(m_database,
                        "SELECT device_property_key, device_property_val FROM device_property"
                        " WHERE device_id=:device_id",
                        {{":device_id", deviceId}});
    if (rows && rowCount(*rows) == 0)
        rows = execute(m_database,
                       "SELECT device_property.device_property_key, device_property_val"
                       " FROM app_property, device_property"
                       " WHERE device_property.device_id=app_property.app_property_val"
                       " AND app_property.app_property_key='main_device_id'"
                       " AND device_property.device_property_key LIKE 'qwt%'",
                       {});
    QMap<QString, QVariant> properties;
    while (rows && rows->next())
        properties.insert(rows->value(0).toString(), rows->value(1));
    return properties;
}
