#include "storage/storedsnapshots.h"

#include "storage/statement.h"
#include "storage/storedcharacteristics.h"

#include <QCoreApplication>
#include <QSqlDatabase>

namespace
{

constexpr int shortestNumber = 4;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(noxSql)
};

/** The connection as it is: closed, it stays closed. */
QSqlDatabase database()
{
    return QSqlDatabase::database(QLatin1String(QSqlDatabase::defaultConnection), false);
}

} // namespace

noxSql::noxSqlItem snapshotOfRow(const QSqlQuery &row)
{
    noxSql::noxSqlItem item;
    item.id = row.value(0).toInt();
    item.factory = row.value(2).toBool();
    item.info = row.value(3).toString();
    const QString number = row.value(5).toString().rightJustified(shortestNumber, QLatin1Char('0'));
    item.name = datedName(row.value(6).toString() + QStringLiteral(" № ") + number, row.value(1));
    if (item.factory)
        item.name += QStringLiteral(" (") + Texts::tr("Заводская") + QLatin1Char(')');
    return item;
}

std::optional<noxSql::noxSqlItem> storedSnapshot(int snapshotId)
{
    const auto row =
        selectOnly(database(),
                   " SELECT  device_snapshot.device_snapshot_id, "
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
        selectOnly(database(),
                   "SELECT device_snapshot_info, device_snapshot_data, device_snapshot_refdata"
                   " FROM device_snapshot WHERE device_snapshot_id=:device_snapshot_id",
                   {{":device_snapshot_id", snapshotId}});
    if (!row)
        return std::nullopt;
    const QByteArray info = row->value(0).toByteArray();
    return SnapshotContent{row->value(1).toByteArray(), row->value(2).toByteArray(),
                           QString::fromUtf8(info.constData())}; // up to the first zero byte
}

QVector<noxSql::noxSqlItem> searchSnapshots(const QString &text)
{
    auto rows = execute(
        database(),
        " SELECT  device_snapshot.device_snapshot_id, device_snapshot.device_snapshot_datetime,"
        " device_snapshot.device_snapshot_factory, device_snapshot.device_snapshot_info,"
        " device.device_type,  device.device_number,  device.device_name "
        " FROM device, device_snapshot "
        " WHERE  (device_snapshot.device_snapshot_info_search LIKE :search_text"
        " OR device.device_name_search LIKE :search_text OR device.device_number=:search)"
        " AND device.device_id=device_snapshot.device_id"
        " ORDER BY device_snapshot.device_snapshot_factory,"
        " device_snapshot.device_snapshot_datetime DESC",
        {{":search", text},
         {":search_text", QLatin1Char('%') + text.toLower() + QLatin1Char('%')}});
    QVector<noxSql::noxSqlItem> items;
    while (rows && rows->next())
        items << snapshotOfRow(*rows);
    return items;
}

bool removeSnapshot(int snapshotId)
{
    return bool(execute(database(),
                        "DELETE FROM device_snapshot WHERE device_snapshot_id=:device_snapshot_id"
                        " AND device_snapshot_factory='0'",
                        {{":device_snapshot_id", snapshotId}}));
}

bool removeStoredInstrument(int deviceId)
{
    return bool(execute(database(), "DELETE FROM device WHERE device_id=:device_id",
                        {{":device_id", deviceId}}));
}
