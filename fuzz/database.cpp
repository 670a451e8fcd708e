/// Opens databases that no program has written, and works with them as the program does.
///
/// Input: a byte that chooses what the program does, type and number of its instrument. If the byte
/// is even, the file follows as it is; else steps that prepare a file from the built-in template,
/// each a row for one of its tables, or a damage to one.

#include "imagechecks.h"
#include "plot/qwtnox.h"
#include "registry/instrumentstore.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/plotsettingsstore.h"
#include "storage/storeditems.h"

#include <QApplication>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

namespace
{

constexpr int mostSteps = 12;
constexpr uint sampleInterval = 4;

struct Table {
    const char *name;
    const char *columns;
    int columnCount;
};

constexpr Table tables[] = {
    {"device",
     "device_id, device_type, device_number, device_name, device_name_search, device_refdata", 6},
    {"device_snapshot",
     "device_snapshot_id, device_id, device_snapshot_info, device_snapshot_datetime,"
     " device_snapshot_data, device_snapshot_refdata, device_snapshot_factory",
     7},
    {"device_property", "device_property_id, device_id, device_property_key, device_property_val",
     4},
    {"feature",
     "feature_id, feature_type, feature_datetime, feature_name, feature_info, feature_data", 6},
    {"app_property", "app_property_id, app_property_key, app_property_val", 3},
};

/** What may have happened to a table ("%1"). */
struct Damage {
    const char *sql;
    bool isHarmless; ///< everything still works
};

constexpr Damage damages[] = {
    {"INSERT INTO sqlite_sequence (name, seq) VALUES ('%1', 4294967296)", true},
    {"UPDATE sqlite_sequence SET seq=4294967296 WHERE name='%1'", true},
    {"UPDATE sqlite_sequence SET seq=9223372036854775807 WHERE name='%1'", true},
    {"UPDATE sqlite_sequence SET seq='none' WHERE name='%1'", true},
    {"DROP TABLE %1", false},
    {"ALTER TABLE %1 RENAME TO lost", false},
    {"ALTER TABLE %1 ADD COLUMN more", false},
    {"CREATE UNIQUE INDEX only_one_row ON %1 ((1))", false},
    {"CREATE TRIGGER emptying AFTER INSERT ON %1 BEGIN DELETE FROM %1; END", false},
    {"CREATE VIEW more AS SELECT * FROM %1", true},
};

QSqlQuery run(const QSqlDatabase &database, const QString &sql, const QVariantList &values = {})
{
    QSqlQuery query(database);
    if (query.prepare(sql)) {
        for (const QVariant &value : values)
            query.addBindValue(value);
        query.exec();
    }
    return query;
}

/** A connection beside that of the program; it is gone before the program opens the file. */
template<typename Work>
void workOn(const QString &path, Work work)
{
    const QString name = QStringLiteral("beside");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", name);
        database.setDatabaseName(path);
        if (database.open())
            work(database);
    }
    QSqlDatabase::removeDatabase(name);
}

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

/** The template with the smallest pages: it is written for each input. */
const QByteArray &smallTemplate(const QString &path)
{
    static const QByteArray bytes = [&path] {
        require(provideDatabase(path));
        workOn(path, [](const QSqlDatabase &database) {
            run(database, "PRAGMA page_size=512");
            run(database, "VACUUM");
        });
        return contentsOf(path);
    }();
    return bytes;
}

/** A value of any kind. */
QVariant valueFrom(FuzzInput &input)
{
    const quint8 head = input.byte();
    if ((head & 7) == 4)
        return head >> 3;
    const QByteArray bytes = input.bytes(head >> 3);
    switch (head & 7) {
    case 0:
        return {};
    case 1:
        return bytes;
    case 2:
        return bytes.left(8).toHex().toLongLong(nullptr, 16);
    case 3:
        return bytes.toDouble();
    default:
        return QString::fromUtf8(bytes);
    }
}

/** Prepares a file of the program's: each step is a row, or, from `damageFrom` on, a damage. True
 *  if all of its tables and rules are there. */
bool prepare(const QString &path, FuzzInput &input)
{
    constexpr int damageFrom = 200;
    constexpr int tableCount = sizeof tables / sizeof tables[0];
    constexpr int damageCount = sizeof damages / sizeof damages[0];
    bool isWhole = true;
    writeFile(path, smallTemplate(path));
    workOn(path, [&](const QSqlDatabase &database) {
        run(database, "BEGIN");
        for (int step = 0; step < mostSteps && !input.atEnd(); ++step) {
            const int choice = input.byte();
            const Table &table = tables[choice % tableCount];
            if (choice >= damageFrom) {
                const Damage &damage = damages[input.byte() % damageCount];
                run(database, QString(damage.sql).arg(table.name));
                isWhole = isWhole && damage.isHarmless;
                continue;
            }
            QVariantList values;
            for (int i = 0; i < table.columnCount; ++i)
                values << valueFrom(input);
            const QStringList places = QVector<QString>(table.columnCount, "?").toList();
            run(database,
                QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                    .arg(table.name, table.columns, places.join(',')),
                values);
        }
        run(database, "COMMIT");
    });
    return isWhole;
}

/** The rows that nothing below removes. */
QVector<QVariantList> keptRows(const QString &path)
{
    QVector<QVariantList> rows;
    workOn(path, [&rows](const QSqlDatabase &database) {
        for (const char *select : {"SELECT feature_id, feature_name, feature_data FROM feature",
                                   "SELECT device_snapshot_id, device_snapshot_info,"
                                   " device_snapshot_data FROM device_snapshot",
                                   "SELECT device_id, device_type, device_number FROM device"}) {
            QSqlQuery query = run(database, select);
            while (query.next())
                rows << QVariantList{select, query.value(0), query.value(1), query.value(2)};
        }
    });
    return rows;
}

/** Parts of the program's work, as bits of the input. */
enum WorkPart { WithStored = 0x10, WithInstrument = 0x20, WithPlot = 0x40, StoringAnew = 0x80 };

/** The program at work with one instrument. */
class Program
{
public:
    Program(const QString &path, bool isWhole)
        : m_isWhole(isWhole)
        , m_database(path)
        , m_registry(&port(), &m_database)
        , m_store(&plot(), &m_registry, &m_database)
    {
    }

    void work(int parts, quint32 type, quint16 number)
    {
        noxList::_nox *nox = m_registry.newNox(-1, true);
        require(nox);
        if (parts & WithStored)
            workWithStored(*nox->opt);
        nox->opt->setDevType(type);
        nox->opt->setDevNumber(number);
        if (m_registry.getNoxByIndex(nox->index) != nox)
            return;
        if (parts & WithInstrument)
            workWithInstrument(*nox);
        if (parts & WithPlot)
            show(*nox);
        if (parts & StoringAnew)
            storeAnew(*nox);
    }

private:
    static NOXSerialPort &port()
    {
        static NOXSerialPort port;
        return port;
    }
    static QwtNOX &plot()
    {
        static QwtNOX plot;
        return plot;
    }

    void show(noxList::_nox &nox)
    {
        plot().addDev(0, nox.opt->getDevChCount());
        nox.qwtIndex = 0;
        m_store.apply(nox.index);
        plot().setChScaleY(3, 0, 0);
        plot().removeDev(0);
    }

    void workWithInstrument(noxList::_nox &nox)
    {
        const InstrumentStore store(&m_database);
        store.find(&nox);
        store.provideWithReferences(&nox, *nox.opt);
        store.provide(&nox);
        require(!m_isWhole || nox.dbIndex != 0);
        store.updateReferences(&nox);
        store.noteWrittenReferences(&nox);
        store.recogniseSnapShot(&nox, true);
        store.recognise(&nox);
        nox.opt->setChMeasType(0, measTemperatureCustom, "K");
        store.keepUnit(&nox, 0);
    }

    /** Everything that the dialogs offer is chosen. */
    void workWithStored(optionsNOX8 &image)
    {
        for (const auto &snapshot : searchSnapshots({})) {
            const auto content = snapshotContent(snapshot.id);
            if (!content)
                continue;
            image.setData(content->references.left(referenceDataSize), referenceDataAddress);
            image.setData(content->configuration, configurationAddress);
            image.setData(content->references.mid(referenceDataSize), zeroShiftsAddress);
            require(m_database.getSnapShotInfo(snapshot.id) == content->info ||
                    content->info.isEmpty() || !m_isWhole);
            equalSnapshots(content->configuration, content->references, 0);
            storedSnapshot(snapshot.id);
        }
        for (const auto &characteristic : searchCharacteristics({})) {
            const QByteArray record = storedRecord(characteristic.id);
            image.features.at(0)->setData(record);
            storedCharacteristic(characteristic.id);
            storedCharacteristic(record);
        }
        requireFitting(image);
        requireAnswersOn(image, 0);
        for (const char *property : {"autoconnect", "exit_query", "main_device_id", "none"})
            m_database.getAppProperty(property).toInt();
    }

    /** What is reported as stored is there. */
    void storeAnew(const noxList::_nox &nox)
    {
        const QByteArray data(40, 'c');
        const QByteArray record(featureRecordSize, '\1');
        const int snapshot = m_database.setSnapShot(nox.dbIndex, &data, &record, "kept", 0);
        const auto content = snapshotContent(snapshot);
        require(snapshot < 1 || !m_isWhole ||
                (content && content->configuration == data && content->references == record &&
                 content->info == "kept"));
        const int feature = m_database.setFeature(&record, "Pt100", "kept", 0);
        require(feature < 1 || !m_isWhole || storedRecord(feature) == record);
        const bool isKept = m_database.setAppProperty("main_device_id", nox.dbIndex);
        require(!isKept || !m_isWhole ||
                m_database.getAppProperty("main_device_id").toInt() == nox.dbIndex);
        require(!m_isWhole || m_database.canStore());
    }

    bool m_isWhole;
    noxSql m_database;
    noxList m_registry;
    PlotSettingsStore m_store;
};

void startQt()
{
    static int argc = 1;
    static char name[] = "fuzz-database";
    static char *argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // never ended: Qt takes its drivers down with it, and finds some of it gone by then
    static auto *const application = new QApplication(argc, argv);
    Q_UNUSED(application)
}

void removeAll(const QString &path)
{
    for (const char *suffix : {"", "-journal", "-wal", "-shm", ".new"})
        QFile::remove(path + suffix);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    startQt();
    static const QTemporaryDir folder;
    static const QString path = folder.filePath("nox8.db");

    FuzzInput input(data, size);
    const quint8 head = input.byte();
    const bool isRaw = head % 2 == 0;
    const quint32 type = chosenType(input.byte());
    const auto number = quint16(input.word());
    const bool isWhole = !isRaw && prepare(path, input);
    const QByteArray raw = input.rest();
    if (isRaw)
        writeFile(path, raw);
    const bool isCompared = isWhole && input.isSample(sampleInterval);
    const QVector<QVariantList> before = isCompared ? keptRows(path) : QVector<QVariantList>();

    require(provideDatabase(path));
    Program(path, isWhole).work(head, type, number);

    // a file of one byte is an empty database to SQLite
    if (isRaw && raw.size() > 1 && !raw.startsWith("SQLite format 3"))
        require(contentsOf(path) == raw);
    const QVector<QVariantList> after = isCompared ? keptRows(path) : QVector<QVariantList>();
    for (const QVariantList &row : before)
        require(after.contains(row));
    removeAll(path);
    return 0;
}
