#include "storage/noxsql.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/** What other programs, and the databases of older installations, rely on. */
class TestDatabaseSchema : public QObject
{
    Q_OBJECT
private slots:
    void freshDatabase_data();
    void freshDatabase();
};

void TestDatabaseSchema::freshDatabase_data()
{
    QTest::addColumn<QString>("question");
    QTest::addColumn<QStringList>("answer");

    QTest::newRow("columns: table, name, type, default, 1 for the key")
        << "SELECT m.name, c.name, c.type, c.dflt_value, c.pk"
           " FROM sqlite_master m, pragma_table_info(m.name) c"
           " WHERE m.type='table' AND m.name<>'sqlite_sequence' ORDER BY m.name, c.cid"
        << QStringList{
               "app_property|app_property_id|INTEGER||1",
               "app_property|app_property_key|TEXT||0",
               "app_property|app_property_val|TEXT||0",
               "device|device_id|INTEGER||1",
               "device|device_type|INTEGER|0|0",
               "device|device_number|INTEGER|0|0",
               "device|device_name|TEXT||0",
               "device|device_name_search|TEXT||0",
               "device|device_refdata|BLOB||0",
               "device_property|device_property_id|INTEGER||1",
               "device_property|device_id|INTEGER||0",
               "device_property|device_property_key|TEXT||0",
               "device_property|device_property_val|TEXT||0",
               "device_snapshot|device_snapshot_id|INTEGER||1",
               "device_snapshot|device_id|INTEGER||0",
               "device_snapshot|device_snapshot_info|TEXT||0",
               "device_snapshot|device_snapshot_info_search|TEXT||0",
               "device_snapshot|device_snapshot_datetime|DATETIME||0",
               "device_snapshot|device_snapshot_data|BLOB||0",
               "device_snapshot|device_snapshot_refdata|BLOB||0",
               "device_snapshot|device_snapshot_factory|INTEGER|0|0",
               "device_snapshot_property|device_snapshot_property_id|INTEGER||1",
               "device_snapshot_property|device_snapshot_id|INTEGER||0",
               "device_snapshot_property|device_snapshot_property_key|TEXT||0",
               "device_snapshot_property|device_snapshot_property_val|TEXT||0",
               "feature|feature_id|INTEGER||1",
               "feature|feature_type|INTEGER||0",
               "feature|feature_datetime|TEXT||0",
               "feature|feature_name|TEXT||0",
               "feature|feature_name_search|TEXT||0",
               "feature|feature_info|TEXT||0",
               "feature|feature_data|BLOB||0",
           };
    QTest::newRow("tables whose ids are never used again")
        << "SELECT name FROM sqlite_master WHERE sql LIKE '% PRIMARY KEY AUTOINCREMENT%'"
           " ORDER BY name"
        << QStringList{"app_property",
                       "device",
                       "device_property",
                       "device_snapshot",
                       "device_snapshot_property",
                       "feature"};
    QTest::newRow("indices: table, name, 1 when unique, columns")
        << "SELECT m.name, i.name, i.\"unique\","
           " (SELECT group_concat(name, ',') FROM"
           " (SELECT name FROM pragma_index_info(i.name) ORDER BY seqno))"
           " FROM sqlite_master m, pragma_index_list(m.name) i"
           " WHERE m.type='table' ORDER BY m.name, i.name"
        << QStringList{
               "app_property|app_property-app_property_key|1|app_property_key",
               "device|device-device_refdata|0|device_refdata",
               "device|device-device_type|0|device_type",
               "device|device-type_name|0|device_type,device_name_search",
               "device|device-type_number|1|device_type,device_number",
               "device|device-type_number_ref|1|device_type,device_number,device_refdata",
               "device_property|device_property-device_id|0|device_id",
               "device_property|device_property-device_id_key|1|device_id,device_property_key",
               "device_snapshot|device_snapshot-device_id|0|device_id",
               "device_snapshot|device_snapshot-device_snapshot_data|0|"
               "device_snapshot_data,device_snapshot_refdata",
               "device_snapshot_property|device_snapshot_property-device_snapshot_id|0|"
               "device_snapshot_id",
               "device_snapshot_property|device_snapshot_property-device_snapshot_id_key|1|"
               "device_snapshot_id,device_snapshot_property_key",
               "feature|feature-feature_data|0|feature_data",
               "feature|feature-feature_name_search|0|feature_name_search",
               "feature|feature-feature_type|0|feature_type",
           };
    QTest::newRow("triggers and views: kind, name, table, 1 when after a deletion")
        << "SELECT type, name, tbl_name, sql LIKE '% AFTER DELETE ON %' FROM sqlite_master"
           " WHERE type IN ('trigger', 'view') ORDER BY name"
        << QStringList{"trigger|device_delete|device|1",
                       "trigger|device_snapshot_delete|device_snapshot|1"};
    QTest::newRow("properties of the program")
        << "SELECT * FROM app_property" << QStringList{"1|autoconnect|1"};
    QTest::newRow("last ids") << "SELECT * FROM sqlite_sequence ORDER BY name"
                              << QStringList{"app_property|1", "device|0", "device_snapshot|0",
                                             "feature|0"};
}

void TestDatabaseSchema::freshDatabase()
{
    QFETCH(QString, question);
    QFETCH(QStringList, answer);
    const QTemporaryDir directory;
    const QString path = directory.filePath("nox8.db");
    QVERIFY(provideDatabase(path));

    QProcess client;
    client.start("sqlite3", {"-batch", "-init", "/dev/null", path, question});
    QVERIFY(client.waitForFinished());
    QCOMPARE(QString::fromUtf8(client.readAllStandardError()), QString());
    QCOMPARE(QString::fromUtf8(client.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts),
             answer);
}

QTEST_GUILESS_MAIN(TestDatabaseSchema)
#include "tst_databaseschema.moc"
