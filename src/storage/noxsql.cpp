#include "storage/noxsql.h"

#include "storage/statement.h"
#include "storage/storeditems.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{

constexpr int failure = -1;

constexpr auto selectDevice =
    "SELECT device_id FROM device WHERE device_type=:device_type AND device_number=:device_number";

/** Of a row that has the reference data too. */
NamedValues deviceValues(const QByteArray &refdata, quint32 type, quint32 number,
                         const QString &name)
{
    return {{":device_type", type},
            {":device_number", number},
            {":device_refdata", refdata},
            {":device_name", name},
            {":device_name_search", name.toLower()}};
}

/** How properties of a kind are written; a value is there at most once. */
struct PropertyStatements {
    const char *remove;
    const char *update;
    const char *insert;
};

/** Writes a value under a key, or removes it when it is not valid; false when that is refused. */
bool writeProperty(const PropertyStatements &statements, const NamedValues &key,
                   const char *valueName, const QVariant &value)
{
    if (!value.isValid())
        return execute(statements.remove, key).has_value();
    const NamedValues keyAndValue = key + NamedValues{{valueName, value}};
    const auto update = execute(statements.update, keyAndValue);
    if (!update || update->numRowsAffected() > 0)
        return update.has_value();
    return execute(statements.insert, keyAndValue).has_value();
}

} // namespace

bool provideDatabase(const QString &path)
{
    if (QFile::exists(path))
        return true;
    // a copy under another name first: a crash must not leave half a database under this one
    const QString copy = path + QStringLiteral(".new");
    QFile::remove(copy);
    return QDir().mkpath(QFileInfo(path).absolutePath()) &&
           QFile::copy(QStringLiteral(":/resource/nox8.db"), copy) &&
           QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner) &&
           QFile::rename(copy, path);
}

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
    execute("VACUUM;");
    m_database.close();
    m_database = QSqlDatabase(); // a connection in use cannot be removed
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
}

bool noxSql::canStore()
{
    return execute("UPDATE app_property SET app_property_val=NULL WHERE FALSE").has_value();
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
        execute(" INSERT INTO device (device_type, device_number, device_name, device_name_search)"
                " VALUES(:device_type, :device_number, :device_name, :device_name_search)",
                {{":device_type", type},
                 {":device_number", number},
                 {":device_name", name},
                 {":device_name_search", name.toLower()}}));
}

std::optional<int> noxSql::provideDev(const QByteArray *refdata, quint32 type, quint32 number,
                                      const QString &name)
{
    if (!isOpen())
        return std::nullopt;
    const auto row = selectOnly(
        "SELECT device_id FROM device WHERE device_refdata=:device_refdata"
        " AND device_type=:device_type AND device_number=:device_number",
        {{":device_refdata", *refdata}, {":device_type", type}, {":device_number", number}});
    if (row)
        return idOf(row->value(0));
    const int known = findDev(type, number);
    if (known != failure)
        return updRefData(known, refdata, type, number, name) ? std::optional(known) : std::nullopt;
    return insertedId(execute(
        " INSERT INTO device (device_type, device_number, device_refdata, device_name,"
        " device_name_search) VALUES(:device_type, :device_number, :device_refdata, :device_name,"
        " :device_name_search)",
        deviceValues(*refdata, type, number, name)));
}

bool noxSql::updRefData(int deviceId, const QByteArray *refdata, quint32 type, quint32 number,
                        const QString &name)
{
    if (deviceId < 1)
        return false;
    return execute(" UPDATE device SET device_refdata=:device_refdata, device_type=:device_type,"
                   " device_number=:device_number, device_name=:device_name,"
                   " device_name_search=:device_name_search WHERE device_id=:device_id",
                   deviceValues(*refdata, type, number, name)
                       << NamedValues{{":device_id", deviceId}})
        .has_value();
}

int noxSql::findDev(const QByteArray *refdata, quint32 *type, quint32 *number)
{
    const auto row = selectOnly("SELECT device_id, device_type, device_number FROM device"
                                " WHERE device_refdata=:device_refdata",
                                {{":device_refdata", *refdata}});
    if (!row)
        return failure;
    *type = row->value(1).toUInt();
    *number = row->value(2).toUInt();
    return idOf(row->value(0));
}

int noxSql::findDev(quint32 type, quint32 number)
{
    const auto row = selectOnly(selectDevice, {{":device_type", type}, {":device_number", number}});
    return row ? idOf(row->value(0)) : failure;
}

bool noxSql::removeDev(int deviceId)
{
    if (!execute("DELETE FROM device WHERE device_id=:device_id", {{":device_id", deviceId}}))
        return false;
    emit onMeasDBChange();
    return true;
}

// Snapshots

int noxSql::getSnapShotCount(int deviceId)
{
    return snapshotCount(deviceId);
}

QString noxSql::getSnapShotInfo(int snapshotId)
{
    return snapshotInfo(snapshotId);
}

int noxSql::setSnapShot(int deviceId, const QByteArray *data, const QByteArray *refdata,
                        const QString &info, int snapshotId)
{
    return storeSnapshot(deviceId, {*data, *refdata, info}, snapshotId, m_clock());
}

QVector<noxSql::noxSqlItem> noxSql::findSnapShot(const QByteArray *data, const QByteArray *refdata,
                                                 int deviceId)
{
    return equalSnapshots(*data, *refdata, deviceId);
}

// Characteristics

int noxSql::setFeature(const QByteArray *data, const QString &name, const QString &info,
                       int featureId)
{
    return storeCharacteristic(*data, name, info, featureId, m_clock());
}

int noxSql::addFeature(const QByteArray *data, const QString &name, const QString &info)
{
    return addCharacteristic(*data, name, info, m_clock());
}

QVector<noxSql::noxSqlItem> noxSql::findFeature(const QString &text)
{
    QVector<noxSqlItem> items;
    const auto found = searchCharacteristics(text);
    for (const StoredCharacteristic &characteristic : found)
        items.append({characteristic.id, characteristic.name, characteristic.info, false});
    return items;
}

// Properties

bool noxSql::setAppProperty(const QString &key, const QVariant &value)
{
    return !key.isEmpty() &&
           writeProperty({"DELETE FROM app_property WHERE app_property_key=:app_property_key",
                          " UPDATE app_property SET app_property_val=:app_property_val"
                          " WHERE app_property_key=:app_property_key",
                          "INSERT INTO app_property (app_property_key, app_property_val)"
                          "VALUES(:app_property_key, :app_property_val)"},
                         {{":app_property_key", key}}, ":app_property_val", value);
}

QVariant noxSql::getAppProperty(const QString &key)
{
    if (key.isEmpty())
        return {};
    const auto row = selectOnly(
        "SELECT app_property_val FROM app_property WHERE app_property_key=:app_property_key",
        {{":app_property_key", key}});
    return row ? row->value(0) : QVariant();
}

void noxSql::setDevProperty(int deviceId, const QString &key, const QVariant &value)
{
    if (deviceId < 0 || key.isEmpty())
        return;
    writeProperty({"DELETE FROM device_property WHERE device_id=:device_id"
                   " AND device_property_key=:device_property_key",
                   " UPDATE device_property  SET device_property_val=:device_property_val "
                   " WHERE device_id=:device_id AND device_property_key=:device_property_key",
                   "INSERT INTO device_property"
                   " (device_id, device_property_key, device_property_val)"
                   "VALUES(:device_id, :device_property_key, :device_property_val)"},
                  {{":device_id", deviceId}, {":device_property_key", key}}, ":device_property_val",
                  value);
}

bool noxSql::setDevProperties(const QMap<QPair<int, QString>, QVariant> &properties)
{
    if (!execute("BEGIN IMMEDIATE"))
        return false;
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        setDevProperty(property.key().first, property.key().second, property.value());
    if (execute("COMMIT"))
        return true;
    execute("ROLLBACK");
    return false;
}

bool noxSql::hasDevProperty(int deviceId)
{
    const auto count = selectOnly("SELECT count(*) FROM device_property WHERE device_id=:device_id",
                                  {{":device_id", deviceId}});
    return !count || count->value(0).toInt() > 0;
}

QMap<QString, QVariant> noxSql::getDevProperty(int deviceId)
{
    if (deviceId < 0)
        return {};
    auto rows = execute("SELECT device_property_key, device_property_val FROM device_property"
                        " WHERE device_id=:device_id",
                        {{":device_id", deviceId}});
    if (rows && rowCount(*rows) == 0)
        rows = execute("SELECT device_property.device_property_key, device_property_val"
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
