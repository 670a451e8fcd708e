#include "storage/storedproperties.h"

#include "storage/statement.h"

namespace
{

/** How properties of a kind are written; a value is there at most once. */
struct PropertyStatements {
    const char *remove;
    const char *update;
    const char *insert;
    const char *valueName;
};

constexpr PropertyStatements ofProgram = {
    "DELETE FROM app_property WHERE app_property_key=:app_property_key",
    " UPDATE app_property SET app_property_val=:app_property_val"
    " WHERE app_property_key=:app_property_key",
    "INSERT INTO app_property (app_property_key, app_property_val)"
    "VALUES(:app_property_key, :app_property_val)",
    ":app_property_val"};

constexpr PropertyStatements ofInstrument = {
    "DELETE FROM device_property WHERE device_id=:device_id"
    " AND device_property_key=:device_property_key",
    " UPDATE device_property  SET device_property_val=:device_property_val "
    " WHERE device_id=:device_id AND device_property_key=:device_property_key",
    "INSERT INTO device_property (device_id, device_property_key, device_property_val)"
    "VALUES(:device_id, :device_property_key, :device_property_val)",
    ":device_property_val"};

} // namespace

bool writeProperty(const QPair<int, QString> &property, const QVariant &value)
{
    const bool isProgram = property.first == programId;
    const PropertyStatements &statements = isProgram ? ofProgram : ofInstrument;
    const NamedValues key = isProgram ? NamedValues{{":app_property_key", property.second}}
                                      : NamedValues{{":device_id", property.first},
                                                    {":device_property_key", property.second}};
    if (!value.isValid())
        return execute(statements.remove, key).has_value();
    const NamedValues keyAndValue = key + NamedValues{{statements.valueName, value}};
    const auto update = execute(statements.update, keyAndValue);
    if (!update || update->numRowsAffected() > 0)
        return update.has_value();
    return execute(statements.insert, keyAndValue).has_value();
}

std::optional<QMap<QString, QVariant>> instrumentProperties(int deviceId)
{
    auto rows = execute("SELECT device_property_key, device_property_val FROM device_property"
                        " WHERE device_id=:device_id",
                        {{":device_id", deviceId}});
    if (!rows)
        return std::nullopt;
    QMap<QString, QVariant> properties;
    while (rows->next())
        properties.insert(rows->value(0).toString(), rows->value(1));
    return properties;
}

QVariant programProperty(const QString &key)
{
    const auto row = selectOnly(
        "SELECT app_property_val FROM app_property WHERE app_property_key=:app_property_key",
        {{":app_property_key", key}});
    return row ? row->value(0) : QVariant();
}
