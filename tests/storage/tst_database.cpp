#include "storage/noxsql.h"
#include "storage/storeditems.h"
#include "support/databaseholder.h"
#include "support/fulldisk.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

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

/** Everything that is stored, after the file was found to be sound. */
QStringList contents(const QString &path)
{
    return rows(path, "PRAGMA integrity_check") + rows(path, ".dump");
}

/** What can be asked of the database; each succeeds where one of each thing is stored. */
struct Operation {
    QString name;
    bool (*isSuccessful)(noxSql &sql);
};

const QVector<Operation> writing{
    {"add device", [](noxSql &sql) { return sql.addDev(0x11, 2, "B") > 0; }},
    {"update device", [](noxSql &sql) { return sql.updRefData(1, &reference, 0x11, 1, "new"); }},
    {"store snapshot",
     [](noxSql &sql) { return sql.setSnapShot(1, &otherConfiguration, &reference, "", 0) > 0; }},
    {"set feature", [](noxSql &sql) { return sql.setFeature(&configuration, "new", "", 1) == 1; }},
    {"set property", [](noxSql &sql) { return sql.setAppProperty("ust_dir", "new"); }},
    {"remove property", [](noxSql &sql) { return sql.setAppProperty("exit_query", {}); }},
    {"set setting", [](noxSql &sql) {
         return sql.setDevProperties({{{1, "qwt_new"}, 5}});
     }}};

const QVector<Operation> reading{
    {"find device", [](noxSql &sql) { return sql.findDev(0x11, 1) == 1; }},
    {"count snapshots", [](noxSql &sql) { return sql.getSnapShotCount(1) > 0; }},
    {"tell of snapshot", [](noxSql &sql) { return sql.getSnapShotInfo(1) == "factory"; }},
    {"find snapshot",
     [](noxSql &sql) { return !sql.findSnapShot(&configuration, &reference, 0).isEmpty(); }},
    {"find feature", [](noxSql &sql) { return !sql.findFeature("n").isEmpty(); }},
    {"get property", [](noxSql &sql) { return sql.getAppProperty("autoconnect") == "1"; }},
    {"get setting", [](noxSql &sql) { return sql.getDevProperty(1).value("qwt_scale") == 4; }}};

QStringList namesOf(const QVector<Operation> &operations)
{
    QStringList names;
    for (const Operation &operation : operations)
        names << operation.name;
    return names;
}

QStringList failed(noxSql &sql)
{
    QStringList names;
    for (const Operation &operation : writing + reading)
        if (!operation.isSuccessful(sql))
            names << operation.name;
    return names;
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
        // columns: type, default, 1 for the key; indices: 1 when unique, columns; triggers and
        // views; tables whose ids are never used again; rows; last ids
        const QString question =
            "SELECT m.name || ' ' || c.name || ' ' || c.type || ' ' || coalesce(c.dflt_value, '-')"
            " || c.pk FROM sqlite_master m, pragma_table_info(m.name) c WHERE m.type='table' AND"
            " m.name<>'sqlite_sequence' ORDER BY m.name, c.cid;"
            "SELECT i.name || ' ' || i.\"unique\" || ' ' || (SELECT group_concat(name, ',') FROM"
            " (SELECT name FROM pragma_index_info(i.name) ORDER BY seqno)) FROM sqlite_master m,"
            " pragma_index_list(m.name) i WHERE m.type='table' ORDER BY i.name;"
            "SELECT type, name, tbl_name, sql LIKE '% AFTER DELETE ON %' FROM sqlite_master WHERE"
            " type IN ('trigger', 'view') ORDER BY name; SELECT count(*) FROM sqlite_master WHERE"
            " sql LIKE '% PRIMARY KEY AUTOINCREMENT%'; SELECT * FROM app_property;"
            "SELECT * FROM sqlite_sequence ORDER BY name";
        QFile golden(QFINDTESTDATA("golden/schema.txt"));
        QVERIFY(golden.open(QIODevice::ReadOnly));
        QCOMPARE(rows(path(), question), QString(golden.readAll()).split('\n', Qt::SkipEmptyParts));
    }

    void instruments()
    {
        QVector<int> ids{m_sql->addDev(0x0960AA0F, 1234, "Баня"),
                         m_sql->addDev(0x0960AA0F, 1234, "another name"),
                         m_sql->addDev(0x11, 1234, "B"), m_sql->findDev(0x0960AA0F, 1235),
                         m_sql->findDev(0x11, 1234)};
        // found by reference data, else by its name, which takes them; else new
        ids << m_sql->provideDev(&reference, 0x11, 1234, "БАНЯ").value_or(0)
            << m_sql->provideDev(&reference, 0x11, 1234, "renamed in vain").value_or(0)
            << m_sql->provideDev(&otherReference, 0x21, 7, "C").value_or(0);
        QCOMPARE(ids, (QVector<int>{1, 1, 2, -1, 2, 2, 2, 3}));
        QVERIFY(!m_sql->updRefData(3, &reference, 0x11, 1234, "taken"));
        QVERIFY(!m_sql->updRefData(0, &reference, 0x31, 1, "nobody"));
        quint32 type = 7;
        quint32 number = 8;
        QVERIFY(m_sql->findDev(&configuration, &type, &number) == -1 && type + number == 15);
        QCOMPARE(m_sql->findDev(&otherReference, &type, &number), 3);
        QVERIFY(type == 0x21 && number == 7);
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
        QVector<int> ids;
        ids << store(1, configuration, "factory", 0) << store(1, configuration, "mine", 0)
            << store(1, configuration, "mine", 0) << store(1, configuration, "Renamed", 0)
            << store(1, otherConfiguration, "changed", 2)
            << store(1, otherConfiguration, "changed", 1) // the factory one never is
            << store(1, configuration, "Back", 2) << store(3, configuration, "", 0)
            << store(0, configuration, "", 0);
        m_now = m_now.addDays(1);
        ids << store(2, configuration, "its factory", 0) << store(2, configuration, "new", 0)
            << m_sql->getSnapShotCount(1) << m_sql->getSnapShotCount(0);
        QCOMPARE(ids, (QVector<int>{1, 2, 2, 2, 2, 3, 2, -1, -1, 4, 5, 3, -1}));
        QCOMPARE(m_sql->getSnapShotInfo(2) + m_sql->getSnapShotInfo(99), QString("Back"));
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
        QVERIFY(m_sql->setAppProperty("main_device_id", QVariant()));
        m_sql->setDevProperty(0, "qwt_scale", 3); // of those without a row
        QVERIFY(m_sql->getDevProperty(3).isEmpty());
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

    void useless()
    {
        prepare();
        m_sql.reset();
        QVERIFY(QFile::copy(path(), m_directory->filePath("damaged")));
        QFile damaged(m_directory->filePath("damaged")); // but for its first page
        QVERIFY(damaged.open(QIODevice::ReadWrite) && damaged.seek(4096) &&
                damaged.write(QByteArray(int(damaged.size()) - 4096, 'x')) > 0);
        damaged.close();
        QFile noise(m_directory->filePath("noise"));
        QVERIFY(noise.open(QIODevice::WriteOnly) && noise.write(QByteArray(5000, 'x')) == 5000);
        noise.close();
        // what these do would not end
        const QString endless = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
                                " SELECT i AS feature_id, i AS feature_name FROM n";
        const QMap<QString, QString> rules = {
            {"view", "DROP TABLE feature; CREATE VIEW Feature AS " + endless +
                         "; PRAGMA writable_schema=1; UPDATE sqlite_master SET type='View' WHERE"
                         " name='Feature'"},
            {"module", "CREATE VIRTUAL TABLE more USING fts5(text)"},
            {"trigger",
             "CREATE TRIGGER more AFTER INSERT ON feature BEGIN DELETE FROM device; END"},
            {"own trigger",
             "CREATE VIEW endless AS " + endless +
                 "; DROP TRIGGER device_delete; CREATE TRIGGER device_delete AFTER"
                 " DELETE ON device BEGIN DELETE FROM feature WHERE 0 IN endless; END"}};
        for (auto rule = rules.cbegin(); rule != rules.cend(); ++rule) {
            const QString file = m_directory->filePath(rule.key());
            QVERIFY(QFile::copy(path(), file));
            rows(file, rule.value());
        }
        for (const QString file : {"", ".", "none/nox8.db", "noise", "damaged", "empty", "view",
                                   "module", "trigger", "own trigger"}) {
            m_sql = std::make_unique<noxSql>(file.isEmpty() ? "" : m_directory->filePath(file));
            QCOMPARE(failed(*m_sql), namesOf(writing + reading));
            QVERIFY(!m_sql->canStore() && !m_sql->removeDev(1) && !removeStoredCharacteristic(1) &&
                    !removeSnapshot(1));
            m_sql.reset();
        }
    }

    void numbersThatNoRowHasHere()
    {
        prepare();
        // cut to an int, the next numbers would be those of the first rows
        rows(path(), "UPDATE sqlite_sequence SET seq=4294967296");
        QCOMPARE(failed(*m_sql), (QStringList{"add device", "store snapshot"}));
        QCOMPARE(m_sql->addDev(0x11, 2, "B"), -1);
        QCOMPARE(m_sql->findDev(0x11, 2), -1);
        QCOMPARE(m_sql->addFeature(&reference, "other", ""), -1);
        const auto found = m_sql->findSnapShot(&otherConfiguration, &reference, 1);
        QCOMPARE(idsOf(found), QVector<int>{-1});
        QCOMPARE(m_sql->setSnapShot(1, &otherConfiguration, &reference, "again", 0), -1);
        QCOMPARE(m_sql->getSnapShotInfo(1), QString("factory"));
    }

    void tornWritesAreTakenBack()
    {
        prepare();
        const QByteArray large(1000000, 'x');
        const QStringList before = contents(path());
        {
            const FullDisk disk(0);
            QCOMPARE(failed(*m_sql), namesOf(writing));
            m_sql.reset(); // and what would be tried again with it
        }
        QCOMPARE(contents(path()), before);
        open();
        {
            const FullDisk disk(rlim_t(QFileInfo(path()).size())); // full in the midst of a write
            QCOMPARE(m_sql->addFeature(&large, "large", ""), -1);
            QCOMPARE(m_sql->setSnapShot(1, &large, &reference, "large", 0), -1);
            m_sql.reset(); // compacting needs room, too
        }
        QCOMPARE(contents(path()), before);
        open();
        // killed in the midst of a write
        QVERIFY(QSqlQuery("PRAGMA cache_size=1").isActive() && QSqlQuery("BEGIN").isActive());
        QVERIFY(m_sql->addFeature(&large, "large", "") > 0);
        const QString torn = m_directory->filePath("torn.db");
        QVERIFY(QFile::copy(path(), torn) && QFile::copy(path() + "-journal", torn + "-journal"));
        QVERIFY(QFileInfo(torn).size() > large.size());
        m_sql.reset();
        m_sql = std::make_unique<noxSql>(torn);
        QCOMPARE(contents(torn), before);
        QVERIFY(m_sql->addFeature(&large, "large", "") > 0);
        QCOMPARE(failed(*m_sql), QStringList());
    }

    void lockedFile()
    {
        prepare();
        const QStringList before = contents(path());
        QVERIFY(QSqlQuery("PRAGMA query_only=1").isActive()); // as in a file that is read-only
        QCOMPARE(failed(*m_sql), namesOf(writing));
        QVERIFY(!m_sql->canStore() && !m_sql->provideDev(&otherReference, 0x11, 1, "A"));
        QVERIFY(QSqlQuery("PRAGMA query_only=0").isActive());
        {
            const DatabaseHolder holder(path());
            QVERIFY(holder.holds());
            m_sql.reset();
            open();
            QElapsedTimer watch;
            watch.start();
            for (int round = 0; round < 50; ++round)
                QCOMPARE(failed(*m_sql), namesOf(writing + reading));
            QVERIFY(watch.elapsed() < 5000);   // no statement but the first waits
            QVERIFY(m_sql->hasDevProperty(2)); // it cannot be told
        }
        QCOMPARE(contents(path()), before);
        QCOMPARE(failed(*m_sql), QStringList());
    }

    void whatWasRefusedIsStoredLater()
    {
        prepare();
        QSignalSpy storing(m_sql.get(), &noxSql::storingChanged);
        const QString stored = "PRAGMA integrity_check; SELECT app_property_key FROM app_property;"
                               "SELECT device_property_val FROM device_property;"
                               "SELECT device_snapshot_info FROM device_snapshot";
        {
            const FullDisk disk(0);
            QVERIFY(!m_sql->setAppProperty("exit_query", QVariant()));
            for (const int scale : {5, 6})
                m_sql->setDevProperty(1, "qwt_scale", scale);
            QVERIFY(!m_sql->getAppProperty("exit_query").isValid());
            QCOMPARE(m_sql->getDevProperty(1).value("qwt_scale").toInt(), 6);
            m_sql->setAppProperty("main_device_id", 1);
            QCOMPARE(m_sql->getDevProperty(2).value("qwt_scale").toInt(), 6); // the main one's
            m_sql->setAppProperty("main_device_id", QVariant());
            QCOMPARE(rows(path(), stored),
                     (QStringList{"ok", "autoconnect", "exit_query", "4", "factory"}));
            QCOMPARE(storing.takeFirst().first().toBool(), false);
        }
        QTRY_COMPARE(storing.value(0), QVariantList{true});
        QCOMPARE(rows(path(), stored), (QStringList{"ok", "autoconnect", "6", "factory"}));
        QVERIFY(QFile::remove(path()));
        m_sql->setDevProperty(1, "qwt_scale", 7); // and all that was in it is there again
        QTRY_COMPARE(storing.size(), 3);
        QCOMPARE(rows(path(), stored), (QStringList{"ok", "autoconnect", "7", "factory"}));
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

QTEST_GUILESS_MAIN(TestDatabase)
#include "tst_database.moc"
