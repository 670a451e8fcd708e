#include "storage/noxsql.h"

#include "storage/statement.h"
#include "storage/storeditems.h"
#include "storage/storedproperties.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <utility>

namespace
{

constexpr int failure = -1;
constexpr int retryMs = 1000;
constexpr int patienceAtEndMs = 2000;
constexpr int retryAtEndMs = 50;

/** Whether a file takes changes shows, and nothing in it changes. */
constexpr auto emptyChange = "UPDATE app_property SET app_property_val=NULL WHERE FALSE";

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

/** Where a database is made before it takes its place: a crash must not leave half of one there. */
QString makingPlace(const QString &path)
{
    const QString place = path + QStringLiteral(".new");
    QFile::remove(place);
    QDir().mkpath(QFileInfo(path).absolutePath());
    return place;
}

bool takePlace(const QString &made, const QString &path)
{
    return QFile::setPermissions(made, QFile::ReadOwner | QFile::WriteOwner) &&
           QFile::rename(made, path);
}

} // namespace

bool provideDatabase(const QString &path)
{
    if (QFile::exists(path))
        return true;
    const QString copy = makingPlace(path);
    return QFile::copy(QStringLiteral(":/resource/nox8.db"), copy) && takePlace(copy, path);
}

noxSql::noxSql(const QString &path, QObject *parent)
    : QObject(parent)
{
    m_retryTimer.setInterval(retryMs);
    connect(&m_retryTimer, &QTimer::timeout, this, &noxSql::tryAgain);
    if (path.isEmpty())
        return;
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    m_database.setDatabaseName(path);
    openConnection(m_database);
}

noxSql::~noxSql()
{
    if (!m_database.isValid())
        return;
    if (m_retryTimer.isActive())
        storeAtEnd();
    execute("VACUUM;");
    m_database.close();
    m_database = QSqlDatabase(); // a connection in use cannot be removed
    QSqlDatabase::removeDatabase(QLatin1String(QSqlDatabase::defaultConnection));
}

// A file that takes no changes

bool noxSql::canStore()
{
    const bool isStoring = execute(emptyChange).has_value();
    if (!isStoring)
        noteChange(false);
    return isStoring;
}

/** Whether a change gets to the disk; the version, of which nobody makes use, is 0 always. */
bool noxSql::takesChanges()
{
    return execute(emptyChange) && execute("PRAGMA user_version=0");
}

/** Notes how a change went; of one that failed, whether the database takes any. */
void noxSql::noteChange(bool isStored)
{
    if (!m_database.isValid())
        return;
    if (isStored && !m_unwritten.isEmpty()) {
        writeUnwritten(); // and notes how that went
        return;
    }
    const bool isStoring = isStored || (m_unwritten.isEmpty() && takesChanges());
    if (isStoring && m_unwritten.isEmpty())
        m_retryTimer.stop();
    else if (!m_retryTimer.isActive())
        m_retryTimer.start();
    if (std::exchange(m_isStoring, isStoring) != isStoring)
        emit storingChanged(isStoring);
}

/** The id of a row that was to be stored. */
int noxSql::noted(int id)
{
    noteChange(id != failure);
    return id;
}

/** An id or a count that was asked for: who asks while another program holds the file is to hear
 *  when it is free, as who changes it is. */
int noxSql::asked(int answer)
{
    if (answer == failure && isHeldElsewhere())
        noteChange(false);
    return answer;
}

void noxSql::tryAgain()
{
    // one that is held is the right one; any other may have been removed, replaced or opened up
    if (!isHeldElsewhere() && !reopen())
        return;
    if (m_unwritten.isEmpty())
        noteChange(takesChanges());
    else
        writeUnwritten();
}

/** Nobody waits for the program any more: another one that holds the file may take its time. */
void noxSql::storeAtEnd()
{
    const QDeadlineTimer patience(patienceAtEndMs);
    tryAgain();
    while (!m_unwritten.isEmpty() && isHeldElsewhere() && !patience.hasExpired()) {
        QThread::msleep(retryAtEndMs);
        tryAgain();
    }
}

bool noxSql::reopen()
{
    if (!QFile::exists(path()) && !provideFile())
        return false;
    if (isOpen() && !QFileInfo(path()).isWritable())
        return true; // what can be read now, might not even be opened again
    m_database.close();
    return openConnection(m_database);
}

/** In place of a file that was removed: what is still open is all that there is left of it. */
bool noxSql::provideFile()
{
    if (!execute("SELECT count(*) FROM app_property"))
        return !isHeldElsewhere() && provideDatabase(path());
    const QString copy = makingPlace(path());
    return execute("VACUUM INTO :copy", {{":copy", copy}}) && takePlace(copy, path());
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
    const int added = insertedId(
        execute(" INSERT INTO device (device_type, device_number, device_name, device_name_search)"
                " VALUES(:device_type, :device_number, :device_name, :device_name_search)",
                {{":device_type", type},
                 {":device_number", number},
                 {":device_name", name},
                 {":device_name_search", name.toLower()}}));
    noteChange(added != failure);
    return added;
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
    const int added = insertedId(execute(
        " INSERT INTO device (device_type, device_number, device_refdata, device_name,"
        " device_name_search) VALUES(:device_type, :device_number, :device_refdata, :device_name,"
        " :device_name_search)",
        deviceValues(*refdata, type, number, name)));
    noteChange(added != failure);
    return added;
}

bool noxSql::updRefData(int deviceId, const QByteArray *refdata, quint32 type, quint32 number,
                        const QString &name)
{
    if (deviceId < 1)
        return false;
    const bool isStored =
        execute(" UPDATE device SET device_refdata=:device_refdata, device_type=:device_type,"
                " device_number=:device_number, device_name=:device_name,"
                " device_name_search=:device_name_search WHERE device_id=:device_id",
                deviceValues(*refdata, type, number, name) << NamedValues{{":device_id", deviceId}})
            .has_value();
    noteChange(isStored);
    return isStored;
}

int noxSql::findDev(const QByteArray *refdata, quint32 *type, quint32 *number)
{
    const auto row = selectOnly("SELECT device_id, device_type, device_number FROM device"
                                " WHERE device_refdata=:device_refdata",
                                {{":device_refdata", *refdata}});
    if (!row)
        return asked(failure);
    *type = row->value(1).toUInt();
    *number = row->value(2).toUInt();
    return idOf(row->value(0));
}

int noxSql::findDev(quint32 type, quint32 number)
{
    const auto row = selectOnly(selectDevice, {{":device_type", type}, {":device_number", number}});
    return row ? idOf(row->value(0)) : asked(failure);
}

bool noxSql::removeDev(int deviceId)
{
    if (!execute("DELETE FROM device WHERE device_id=:device_id", {{":device_id", deviceId}}))
        return false;
    for (const auto &property : m_unwritten.keys())
        if (property.first == deviceId)
            m_unwritten.remove(property);
    emit onMeasDBChange();
    return true;
}

// Snapshots

int noxSql::getSnapShotCount(int deviceId)
{
    return asked(snapshotCount(deviceId));
}

QString noxSql::getSnapShotInfo(int snapshotId)
{
    return snapshotInfo(snapshotId);
}

int noxSql::setSnapShot(int deviceId, const QByteArray *data, const QByteArray *refdata,
                        const QString &info, int snapshotId)
{
    return noted(storeSnapshot(deviceId, {*data, *refdata, info}, snapshotId, m_clock()));
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
    return noted(storeCharacteristic(*data, name, info, featureId, m_clock()));
}

int noxSql::addFeature(const QByteArray *data, const QString &name, const QString &info)
{
    return noted(addCharacteristic(*data, name, info, m_clock()));
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
    return !key.isEmpty() && storeProperties({{{programId, key}, value}});
}

QVariant noxSql::getAppProperty(const QString &key)
{
    if (key.isEmpty() || !isOpen())
        return {};
    if (const auto unwritten = m_unwritten.constFind({programId, key});
        unwritten != m_unwritten.cend())
        return *unwritten;
    return programProperty(key);
}

void noxSql::setDevProperty(int deviceId, const QString &key, const QVariant &value)
{
    if (deviceId >= 0 && !key.isEmpty())
        storeProperties({{{deviceId, key}, value}});
}

bool noxSql::setDevProperties(const QMap<QPair<int, QString>, QVariant> &properties)
{
    return storeProperties(properties);
}

/** Together with those that wait: a former value must not be written after a later one. */
bool noxSql::storeProperties(const Properties &properties)
{
    if (!m_database.isValid())
        return false;
    for (auto property = properties.cbegin(); property != properties.cend(); ++property)
        m_unwritten.insert(property.key(), property.value());
    return writeUnwritten();
}

/** Writes all that waits; a property that is refused alone does not keep the others. */
bool noxSql::writeUnwritten()
{
    Properties refused;
    bool isWritten = execute("BEGIN IMMEDIATE").has_value();
    if (isWritten) {
        for (auto property = m_unwritten.cbegin(); property != m_unwritten.cend(); ++property)
            if (!writeProperty(property.key(), property.value()))
                refused.insert(property.key(), property.value());
        isWritten = execute("COMMIT").has_value();
        if (!isWritten)
            execute("ROLLBACK");
    }
    if (isWritten)
        m_unwritten = refused;
    isWritten = isWritten && refused.isEmpty();
    noteChange(isWritten);
    return isWritten;
}

bool noxSql::hasDevProperty(int deviceId)
{
    const auto properties = instrumentProperties(deviceId);
    return !properties || !properties->isEmpty();
}

QMap<QString, QVariant> noxSql::getDevProperty(int deviceId)
{
    if (deviceId < 0 || !isOpen())
        return {};
    auto properties = instrumentProperties(deviceId);
    if (properties && properties->isEmpty())
        properties = inheritedProperties();
    return withUnwritten(deviceId, properties.value_or(NamedProperties()));
}

/** What an instrument without properties has: how the main instrument is shown. */
noxSql::NamedProperties noxSql::inheritedProperties()
{
    const int mainId = getAppProperty(QStringLiteral("main_device_id")).toInt();
    if (mainId < 1) // those without a row have no look that others begin with
        return {};
    auto properties =
        withUnwritten(mainId, instrumentProperties(mainId).value_or(NamedProperties()));
    for (const QString &key : properties.keys())
        if (!key.startsWith(QLatin1String("qwt"), Qt::CaseInsensitive))
            properties.remove(key);
    return properties;
}

/** Properties of an instrument with those that wait in place of what is stored. */
noxSql::NamedProperties noxSql::withUnwritten(int deviceId, NamedProperties properties) const
{
    for (auto change = m_unwritten.cbegin(); change != m_unwritten.cend(); ++change) {
        if (change.key().first != deviceId)
            continue;
        if (change.value().isValid())
            properties.insert(change.key().second, change.value());
        else
            properties.remove(change.key().second);
    }
    return properties;
}
