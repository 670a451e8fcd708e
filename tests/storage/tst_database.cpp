#include "storage/noxsql.h"
#include "storage/storeditems.h"
#include "support/fulldisk.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>
#include <memory>

namespace
{

const QByteArray configuration(700, 'c');
const QByteArray otherConfiguration(700, 'n');
const QByteArray reference("\x00\x10", 2);
const QByteArray otherReference("\x00\x20", 2);

/** What the command-line client says to a statement, by lines. */
QStringList rows(const QString &path, const QString &statement)
{
    QProcess client;
    client.start("sqlite3", {"-batch", "-init", "/dev/null", path, statement});
    client.waitForFinished();
    return QString::fromUtf8(client.readAllStandardError() + client.readAllStandardOutput())
        .split('\n', Qt::SkipEmptyParts);
}

/** The lines of a golden file. */
QStringList golden(const QString &name)
{
    QFile file(QFINDTESTDATA("golden/" + name + ".txt"));
    return file.open(QIODevice::ReadOnly)
               ? QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)
               : QStringList{"no file"};
}

/** Everything that is stored, after the file was found to be sound. */
QStringList contents(const QString &path)
{
    return rows(path, "PRAGMA integrity_check") + rows(path, ".dump");
}

void overwrite(const QString &path, int page)
{
    constexpr int pageSize = 4096;
    QFile file(path);
    if (page > 0 && file.open(QIODevice::ReadWrite) && file.seek(qint64(page - 1) * pageSize))
        file.write(QByteArray(pageSize, 'x'));
}

/** The program that is killed: tells the number of each pair of writes that was done. */
int storeUntilKilled(const QString &path)
{
    for (;;) {
        noxSql sql(path); // compacts the file at the end of each round
        const int first = sql.getSnapShotCount(1);
        for (int number = first; number < first + 10; ++number) {
            const QByteArray data = QByteArray::number(number).repeated(200);
            if (sql.setSnapShot(1, &data, &reference, QString::number(number), 0) < 1 ||
                !sql.setAppProperty("last", number))
                return EXIT_FAILURE;
            std::printf("%d\n", number);
            std::fflush(stdout);
        }
    }
}

/** An operation of the database, which it does to the prepared one. */
struct Operation {
    QString name;
    bool isWriting;
    QStringList tables; ///< which it needs
    std::function<bool(noxSql &sql)> isSuccessful;
};

QVector<Operation> operations()
{
    QVector<Operation> all;
    const auto writing = [&all](const char *name, const char *tables, auto isSuccessful) {
        all.append({name, true, QString(tables).split(','), isSuccessful});
    };
    const auto reading = [&all](const char *name, const char *tables, auto isSuccessful) {
        all.append({name, false, QString(tables).split(','), isSuccessful});
    };
    using Sql = noxSql;
    writing("add", "device", [](Sql &sql) { return sql.addDev(0x11, 2, "B") > 0; });
    writing("provide", "device",
            [](Sql &sql) { return sql.provideDev(&otherReference, 0x11, 3, "C") > 0; });
    writing("update", "device",
            [](Sql &sql) { return sql.updRefData(1, &reference, 0x11, 1, "new name"); });
    reading("find by data", "device", [](Sql &sql) {
        quint32 type = 0;
        return sql.findDev(&reference, &type, &type) == 1;
    });
    reading("find by number", "device", [](Sql &sql) { return sql.findDev(0x11, 1) == 1; });
    reading("count", "device_snapshot", [](Sql &sql) { return sql.getSnapShotCount(1) > 0; });
    reading("info", "device_snapshot",
            [](Sql &sql) { return sql.getSnapShotInfo(1) == "factory"; });
    writing("snapshot", "device,device_snapshot", [](Sql &sql) {
        return sql.setSnapShot(1, &otherConfiguration, &reference, "mine", 0) > 0;
    });
    reading("find snapshot", "device,device_snapshot",
            [](Sql &sql) { return !sql.findSnapShot(&configuration, &reference, 0).isEmpty(); });
    writing("characteristic", "feature",
            [](Sql &sql) { return sql.setFeature(&configuration, "renamed", "info", 1) == 1; });
    writing("add characteristic", "feature",
            [](Sql &sql) { return sql.addFeature(&otherConfiguration, "Pt", "info") > 0; });
    reading("find characteristic", "feature",
            [](Sql &sql) { return !sql.findFeature("named").isEmpty(); });
    writing("property", "app_property",
            [](Sql &sql) { return sql.setAppProperty("ust_dir", "new"); });
    writing("remove property", "app_property",
            [](Sql &sql) { return sql.setAppProperty("exit_query", QVariant()); });
    reading("get property", "app_property",
            [](Sql &sql) { return sql.getAppProperty("autoconnect") == "1"; });
    writing("instrument's property", "device_property", [](Sql &sql) {
        sql.setDevProperty(1, "qwt_new", 5);
        return sql.getDevProperty(1).value("qwt_new") == 5;
    });
    reading("instrument's properties", "device_property",
            [](Sql &sql) { return sql.getDevProperty(1).value("qwt_scale") == 4; });
    return all;
}

/** Names of the operations that fulfil a condition. */
template<class Condition>
QStringList namesOf(Condition condition)
{
    QStringList names;
    for (const Operation &operation : operations())
        if (condition(operation))
            names << operation.name;
    return names;
}

QStringList failedOperations(noxSql &sql)
{
    return namesOf([&sql](const Operation &operation) { return !operation.isSuccessful(sql); });
}

QStringList writingOperations()
{
    return namesOf([](const Operation &operation) { return operation.isWriting; });
}

QVector<int> idsOf(const QVector<noxSql::noxSqlItem> &items)
{
    QVector<int> ids;
    for (const noxSql::noxSqlItem &item : items)
        ids << item.id;
    return ids;
}

} // namespace

/** The database: what it is made of, what its operations do, and that nothing stored is lost. */
class TestDatabase : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_now = {{2026, 11, 24}, {17, 5, 9}};
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(provideDatabase(path()));
        open();
    }

    void cleanup()
    {
        m_sql.reset();
        QVERIFY(!QSqlDatabase::contains());
    }

    void freshDatabase()
    {
        // columns: type, default, 1 for the key
        QCOMPARE(rows(path(), "SELECT m.name || ' ' || c.name || ' ' || c.type || ' ' ||"
                              " coalesce(c.dflt_value, '-') || c.pk FROM sqlite_master m,"
                              " pragma_table_info(m.name) c WHERE m.type='table' AND"
                              " m.name<>'sqlite_sequence' ORDER BY m.name, c.cid"),
                 golden("columns"));
        // indices: 1 when unique, columns
        QCOMPARE(rows(path(), "SELECT i.name || ' ' || i.\"unique\" || ' ' || (SELECT"
                              " group_concat(name, ',') FROM (SELECT name FROM"
                              " pragma_index_info(i.name) ORDER BY seqno)) FROM sqlite_master m,"
                              " pragma_index_list(m.name) i WHERE m.type='table' ORDER BY i.name"),
                 golden("indices"));
        // triggers and views; tables whose ids are never used again; rows; last ids
        QCOMPARE(
            rows(path(), "SELECT type, name, tbl_name, sql LIKE '% AFTER DELETE ON %' FROM"
                         " sqlite_master WHERE type IN ('trigger', 'view') ORDER BY name;"
                         " SELECT count(*) FROM sqlite_master WHERE sql LIKE '% PRIMARY KEY"
                         " AUTOINCREMENT%'; SELECT * FROM app_property;"
                         " SELECT * FROM sqlite_sequence ORDER BY name"),
            (QStringList{"trigger|device_delete|device|1",
                         "trigger|device_snapshot_delete|device_snapshot|1", "6", "1|autoconnect|1",
                         "app_property|1", "device|0", "device_snapshot|0", "feature|0"}));
    }

    void existingFileIsKept()
    {
        m_sql->setAppProperty("exit_query", 1);
        m_sql.reset();
        QVERIFY(provideDatabase(path()));
        open();
        QCOMPARE(m_sql->getAppProperty("exit_query").toInt(), 1);
        QVERIFY(provideDatabase(m_directory->filePath("new/folder/nox8.db")));
        QVERIFY(!provideDatabase(path() + "/nox8.db"));
    }

    void instruments()
    {
        QCOMPARE(m_sql->addDev(0x0960AA0F, 1234, "Баня"), 1);
        QCOMPARE(m_sql->addDev(0x0960AA0F, 1234, "another name"), 1);
        QCOMPARE(m_sql->addDev(0x11, 1234, "B"), 2);
        QCOMPARE(m_sql->findDev(0x0960AA0F, 1235), -1);
        QCOMPARE(m_sql->findDev(0x11, 1234), 2);
        // found by reference data, else by its name, which takes them; else new
        QCOMPARE(m_sql->provideDev(&reference, 0x11, 1234, "БАНЯ"), 2);
        QCOMPARE(m_sql->provideDev(&reference, 0x11, 1234, "renamed in vain"), 2);
        QCOMPARE(m_sql->provideDev(&otherReference, 0x21, 7, "C"), 3);
        QVERIFY(!m_sql->updRefData(3, &reference, 0x11, 1234, "taken"));
        QVERIFY(!m_sql->updRefData(0, &reference, 0x31, 1, "nobody"));
        quint32 type = 7;
        quint32 number = 8;
        QCOMPARE(m_sql->findDev(&configuration, &type, &number), -1);
        QCOMPARE(type + number, 15u);
        QCOMPARE(m_sql->findDev(&otherReference, &type, &number), 3);
        QCOMPARE(type + number, 0x21u + 7u);
        QVERIFY(m_sql->updRefData(3, &reference, 0x01, 55, "A"));
        QCOMPARE(m_sql->findDev(&reference, &type, &number), -1); // two of them
        QCOMPARE(rows(path(), "SELECT device_id, device_type, device_number, device_name,"
                              " device_name_search, hex(device_refdata) FROM device"),
                 (QStringList{"1|157329935|1234|Баня|баня|", "2|17|1234|БАНЯ|баня|0010",
                              "3|1|55|A|a|0010"}));
    }

    void snapshots()
    {
        for (const quint32 number : {7, 8})
            m_sql->addDev(0x11, number, "NOX B");
        const auto store = [this](int device, const QByteArray &data, const char *info, int id) {
            return m_sql->setSnapShot(device, &data, &reference, info, id);
        };
        QCOMPARE(m_sql->getSnapShotCount(1), 0);
        QCOMPARE(store(1, configuration, "factory", 0), 1);
        QCOMPARE(store(1, configuration, "mine", 0), 2);
        QCOMPARE(store(1, configuration, "mine", 0), 2);
        QCOMPARE(store(1, configuration, "Renamed", 0), 2);
        QCOMPARE(store(1, otherConfiguration, "changed", 2), 2);
        QCOMPARE(store(1, otherConfiguration, "changed", 1), 3); // the factory one never is
        QCOMPARE(store(1, configuration, "Back", 2), 2);
        QCOMPARE(store(3, configuration, "", 0), -1);
        QCOMPARE(store(0, configuration, "", 0), -1);
        m_now = m_now.addDays(1);
        QCOMPARE(store(2, configuration, "its factory", 0), 4);
        QCOMPARE(store(2, configuration, "new", 0), 5);
        QCOMPARE(m_sql->getSnapShotCount(1), 3);
        QCOMPARE(m_sql->getSnapShotCount(0), -1);
        QCOMPARE(m_sql->getSnapShotInfo(2), QStringLiteral("Back"));
        QCOMPARE(m_sql->getSnapShotInfo(99), QString());

        QCOMPARE(idsOf(m_sql->findSnapShot(&configuration, &reference, 0)),
                 (QVector<int>{5, 2, 4, 1}));
        const auto items = m_sql->findSnapShot(&configuration, &reference, 1);
        QCOMPARE(idsOf(items), (QVector<int>{2, 1}));
        const QString name =
            "NOX B № 0007 от " + m_now.addDays(-1).toString("dddd") + " 24.11.2026 17:05";
        QCOMPARE(items.at(0).name + items.at(0).info, name + "Back");
        QCOMPARE(items.at(1).name, name + " (Заводская)");
        QVERIFY(items.at(1).factory && !items.at(0).factory);
        QVERIFY(m_sql->findSnapShot(&configuration, &otherReference, 0).isEmpty());
        QCOMPARE(idsOf(searchSnapshots("BACK")), QVector<int>{2});
        QCOMPARE(idsOf(searchSnapshots("8")), (QVector<int>{5, 4}));
        QVERIFY(removeSnapshot(1) && removeSnapshot(3)); // which of the first is not true
        QCOMPARE(idsOf(searchSnapshots("nox b")), (QVector<int>{5, 2, 4, 1}));
        QCOMPARE(storedSnapshot(1)->name, items.at(1).name);
        QCOMPARE(snapshotContent(2)->configuration + snapshotContent(2)->references,
                 configuration + reference);
    }

    void characteristics()
    {
        const QByteArray erased(492, char(0xFF));
        QCOMPARE(m_sql->setFeature(&configuration, "Эталон 5", "info", 0), 1);
        QCOMPARE(m_sql->setFeature(&configuration, "Эталон 6", "info", 0), 1);
        m_now = m_now.addDays(1);
        QCOMPARE(m_sql->setFeature(&configuration, "Эталон 6", "info", 1), 1); // as it is
        QCOMPARE(rows(path(), "SELECT feature_type, feature_name_search, feature_datetime"
                              " FROM feature"),
                 QStringList{"99|эталон 6|2026-11-24T17:05:09.000"});
        QCOMPARE(m_sql->setFeature(&erased, "Эталон 6", "info", 1), 1);
        QCOMPARE(m_sql->addFeature(&erased, "эталон", ""), 2);
        QCOMPARE(m_sql->setFeature(&erased, "x", "", 0), 3); // not the only one with these data
        QCOMPARE(rows(path(), "SELECT feature_type FROM feature"), QStringList({"-1", "-1", "-1"}));
        const auto found = m_sql->findFeature("ЭТАЛОН 6");
        QCOMPARE(idsOf(found), QVector<int>{1});
        QCOMPARE(found.at(0).name, "Эталон 6 от " + m_now.toString("dddd dd.MM.yyyy HH:mm"));
        QCOMPARE(idsOf(m_sql->findFeature("талон")), (QVector<int>{1, 2}));
        QCOMPARE(storedCharacteristic(erased)->id, 1);
        QVERIFY(storedRecord(2) == erased && removeStoredCharacteristic(2));
        QVERIFY(!storedCharacteristic(2) && storedRecord(2).isEmpty());
    }

    void namesWithAnyCharacter()
    {
        m_sql->addFeature(&configuration, "another", "");
        const QStringList names{"д'Артаньян '; DROP TABLE feature; --", "100 % of it",
                                "the \"good\" one", QString("Pt") + QChar(0) + "100", "🌡 probe"};
        for (const QString &name : names) {
            const int id = m_sql->addFeature(&configuration, name, name);
            const auto found = m_sql->findFeature(name.toUpper().left(name.indexOf(QChar(0))));
            QCOMPARE(idsOf(found), QVector<int>{id});
            QCOMPARE(found.at(0).info, name);
            QVERIFY(found.at(0).name.startsWith(name + " от "));
            m_sql->setDevProperty(1, name, name);
            QCOMPARE(m_sql->getDevProperty(1).value(name).toString(), name);
        }
    }

    void properties()
    {
        QVERIFY(!m_sql->getAppProperty("exit_query").isValid());
        QVERIFY(m_sql->setAppProperty("exit_query", true));
        QVERIFY(m_sql->setAppProperty("exit_query", false));
        QCOMPARE(m_sql->getAppProperty("exit_query").toBool(), false);
        QVERIFY(m_sql->setAppProperty("main_device_id", 1));
        QVERIFY(m_sql->setAppProperty("exit_query", QVariant()));
        QVERIFY(m_sql->setAppProperty("never there", QVariant()));
        QVERIFY(!m_sql->setAppProperty("", 1) && !m_sql->getAppProperty("").isValid());
        m_sql->setDevProperty(1, "qwt_scale", 5);
        m_sql->setDevProperty(1, "ch_0-dim", "K");
        QCOMPARE(m_sql->getDevProperty(2).keys(), QStringList{"qwt_scale"}); // the main one's
        QVERIFY(!m_sql->hasDevProperty(2));
        for (const QVariant &value : {QVariant(6), QVariant(7)})
            m_sql->setDevProperty(2, "qwt_scale", value);
        m_sql->setDevProperty(2, "gone", 1);
        m_sql->setDevProperty(2, "gone", QVariant());
        m_sql->setDevProperty(2, "", 1);
        m_sql->setDevProperty(-1, "qwt_scale", 1);
        QVERIFY(m_sql->getDevProperty(-1).isEmpty() && m_sql->hasDevProperty(2));
        QVERIFY(m_sql->canStore());
        QCOMPARE(rows(path(), "SELECT * FROM app_property; SELECT * FROM device_property"),
                 (QStringList{"1|autoconnect|1", "3|main_device_id|1", "1|1|qwt_scale|5",
                              "2|1|ch_0-dim|K", "3|2|qwt_scale|7"}));
    }

    void deletingAnInstrumentTakesWhatIsItsOwn()
    {
        for (const int id : {1, 2}) {
            m_sql->addDev(0x11, quint32(id), "");
            m_sql->setSnapShot(id, &configuration, &reference, "", 0);
            m_sql->setDevProperty(id, "qwt", 1);
        }
        rows(path(), "INSERT INTO device_snapshot_property (device_snapshot_id) VALUES (1), (2)");
        QSignalSpy changes(m_sql.get(), &noxSql::onMeasDBChange);
        QVERIFY(m_sql->removeDev(1));
        QCOMPARE(changes.size(), 1);
        QCOMPARE(rows(path(), "SELECT device_id FROM device UNION ALL SELECT device_id FROM"
                              " device_snapshot UNION ALL SELECT device_id FROM device_property"
                              " UNION ALL SELECT device_snapshot_id FROM device_snapshot_property"),
                 QStringList({"2", "2", "2", "2"}));
    }

    void useless_data()
    {
        QTest::addColumn<QString>("file");
        for (const char *file : {"", ".", "none/nox8.db", "noise", "empty"})
            QTest::newRow(file) << file;
    }

    void useless()
    {
        QFETCH(QString, file);
        m_sql.reset();
        QFile noise(m_directory->filePath("noise"));
        QVERIFY(noise.open(QIODevice::WriteOnly) && noise.write(QByteArray(5000, 'x')) == 5000);
        noise.close();
        m_sql = std::make_unique<noxSql>(file.isEmpty() ? "" : m_directory->filePath(file));
        QCOMPARE(failedOperations(*m_sql), namesOf([](const Operation &) { return true; }));
        QVERIFY(!m_sql->canStore() && !m_sql->removeDev(1) && !removeStoredCharacteristic(1) &&
                !removeSnapshot(1));
    }

    void killedWhileWriting()
    {
        prepare();
        m_sql.reset();
        int interrupted = 0;
        for (int kill = 0; kill < 20 || (interrupted == 0 && kill < 200); ++kill) {
            QProcess program;
            program.start(QCoreApplication::applicationFilePath(), {"--store", path()});
            QVERIFY(program.waitForReadyRead());
            QTest::qSleep(QRandomGenerator::global()->bounded(1, 60));
            program.kill();
            QVERIFY(program.waitForFinished());
            QCOMPARE(program.exitStatus(), QProcess::CrashExit); // no write was refused
            interrupted += QFile::exists(path() + "-journal") ? 1 : 0;
            QByteArrayList said = program.readAllStandardOutput().split('\n');
            said.removeLast(); // may be half a number
            const QString question =
                "PRAGMA integrity_check; SELECT app_property_val>=%1 FROM app_property"
                " WHERE app_property_key='last'; SELECT count(*)>%1 FROM device_snapshot;"
                " SELECT count(*) FROM device_snapshot WHERE device_snapshot_id>1 AND"
                " CAST(device_snapshot_data AS TEXT)<>replace(hex(zeroblob(100)), '0', "
                "device_snapshot_info)";
            QCOMPARE(rows(path(), question.arg(said.last().toInt())),
                     (QStringList{"ok", "1", "1", "0"}));
        }
        QVERIFY(interrupted > 0);
    }

    void fullDisk()
    {
        prepare();
        const QByteArray large(1000000, 'x');
        const QStringList before = contents(path());
        {
            const FullDisk disk(0);
            QCOMPARE(failedOperations(*m_sql), writingOperations());
        }
        QCOMPARE(contents(path()), before);
        {
            const FullDisk disk(rlim_t(QFileInfo(path()).size())); // full in the midst of a write
            QCOMPARE(m_sql->addFeature(&large, "large", ""), -1);
            QCOMPARE(m_sql->setSnapShot(1, &large, &reference, "large", 0), -1);
            m_sql.reset(); // compacting needs room, too
        }
        QCOMPARE(contents(path()), before);
        open();
        QVERIFY(m_sql->addFeature(&large, "large", "") > 0);
        QCOMPARE(failedOperations(*m_sql), QStringList());
    }

    void lockedFile()
    {
        prepare();
        const QStringList before = contents(path());
        QVERIFY(QSqlQuery("PRAGMA query_only=1").isActive()); // as in a file that is read-only
        QCOMPARE(failedOperations(*m_sql), writingOperations());
        QVERIFY(!m_sql->canStore());
        QVERIFY(QSqlQuery("PRAGMA query_only=0").isActive());
        {
            auto other = QSqlDatabase::addDatabase("QSQLITE", "other");
            other.setDatabaseName(path());
            QVERIFY(other.open() && QSqlQuery("BEGIN EXCLUSIVE", other).isActive());
            QElapsedTimer watch;
            watch.start();
            QVERIFY(!m_sql->setAppProperty("ust_dir", "new"));
            QVERIFY(watch.elapsed() > 100 && watch.elapsed() < 2000);
            QVERIFY(QSqlQuery("PRAGMA busy_timeout=5").isActive());
            QCOMPARE(failedOperations(*m_sql), namesOf([](const Operation &) { return true; }));
            QVERIFY(m_sql->hasDevProperty(2)); // it cannot be told
            QVERIFY(!m_sql->setDevProperties({{{1, "qwt_scale"}, 5}}));
        }
        QSqlDatabase::removeDatabase("other");
        QCOMPARE(contents(path()), before);
        QCOMPARE(failedOperations(*m_sql), QStringList());
    }

    void missingOrDamagedTables()
    {
        prepare();
        m_sql.reset();
        const QString copy = m_directory->filePath("copy.db");
        for (const QString table :
             {"app_property", "device", "device_snapshot", "device_property", "feature"}) {
            const auto needing = namesOf(
                [&table](const Operation &operation) { return operation.tables.contains(table); });
            for (const bool isDropped : {true, false}) {
                QFile::remove(copy);
                QVERIFY(QFile::copy(path(), copy));
                const QStringList pages = rows(
                    copy, "SELECT rootpage FROM sqlite_master WHERE tbl_name='" + table + '\'');
                if (isDropped)
                    rows(copy, "DROP TABLE " + table);
                for (const QString &page : isDropped ? QStringList() : pages)
                    overwrite(copy, page.toInt());
                m_sql = std::make_unique<noxSql>(copy);
                QCOMPARE(failedOperations(*m_sql), needing);
                m_sql.reset();
            }
        }
    }

private:
    QString path() const { return m_directory->filePath("nox8.db"); }
    void open()
    {
        m_sql = std::make_unique<noxSql>(path());
        m_sql->setClock([this] { return m_now; });
    }
    /** Stores one of each: then every operation succeeds. */
    void prepare()
    {
        QCOMPARE(m_sql->addDev(0x11, 1, "A"), 1);
        QVERIFY(m_sql->updRefData(1, &reference, 0x11, 1, "A"));
        QCOMPARE(m_sql->setSnapShot(1, &configuration, &reference, "factory", 0), 1);
        QCOMPARE(m_sql->addFeature(&configuration, "named", "info"), 1);
        QVERIFY(m_sql->setAppProperty("exit_query", true));
        m_sql->setDevProperty(1, "qwt_scale", 4);
    }

    QDateTime m_now;
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_sql;
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--store")
        return storeUntilKilled(arguments.value(2));
    TestDatabase test;
    return QTest::qExec(&test, arguments);
}

#include "tst_database.moc"
