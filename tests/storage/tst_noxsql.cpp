#include "storage/noxsql.h"

#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class TestNoxSql : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void templateIsEmpty();
    void existingFileIsKept();
    void instruments();
    void referenceDataFindOneInstrument();
    void snapshots();
    void snapshotsAreFoundByContent();
    void characteristics();
    void namesWithAnyCharacter_data();
    void namesWithAnyCharacter();
    void applicationProperties();
    void instrumentProperties();
    void deletingAnInstrumentTakesWhatIsItsOwn();
    void failures_data();
    void failures();

private:
    QString path() const { return m_directory->filePath("nox8.db"); }
    QDateTime m_now{{2026, 11, 24}, {17, 5, 9}};
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_sql;
};

namespace
{

const QByteArray dataA("\x01\x00\xFF", 3);
const QByteArray dataB("\x02", 1);
const QByteArray ref("\x00\x10", 2);

int rowsOf(const QString &table)
{
    QSqlQuery query("SELECT count(*) FROM " + table);
    return query.next() ? query.value(0).toInt() : -1;
}

QVector<int> idsOf(const QVector<noxSql::noxSqlItem> &items)
{
    QVector<int> ids;
    for (const noxSql::noxSqlItem &item : items)
        ids << item.id;
    return ids;
}

} // namespace

void TestNoxSql::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(provideDatabase(path()));
    m_sql = std::make_unique<noxSql>(path());
    m_sql->setClock([this] { return m_now; });
}

void TestNoxSql::cleanup()
{
    m_sql.reset();
    QVERIFY(!QSqlDatabase::contains());
}

void TestNoxSql::templateIsEmpty()
{
    for (const char *table : {"device", "device_snapshot", "device_property", "feature"})
        QCOMPARE(rowsOf(table), 0);
    QCOMPARE(rowsOf("app_property"), 1);
    QCOMPARE(m_sql->getAppProperty("autoconnect").toString(), QStringLiteral("1"));
    QSqlQuery query("SELECT count(*) FROM sqlite_master WHERE type='trigger'");
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), 2);
}

void TestNoxSql::existingFileIsKept()
{
    m_sql->setAppProperty("exit_query", 1);
    m_sql.reset();
    QVERIFY(provideDatabase(path()));
    m_sql = std::make_unique<noxSql>(path());
    QCOMPARE(m_sql->getAppProperty("exit_query").toInt(), 1);
    QVERIFY(provideDatabase(m_directory->filePath("new/folder/nox8.db")));
    QFile blocker(m_directory->filePath("file"));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    QVERIFY(!provideDatabase(m_directory->filePath("file/nox8.db")));
}

void TestNoxSql::instruments()
{
    const int first = m_sql->addDev(0x0960AA0F, 1234, "Баня");
    QVERIFY(first >= 1);
    QCOMPARE(m_sql->addDev(0x0960AA0F, 1234, "another name"), first);
    QVERIFY(m_sql->addDev(0x11, 1234, "") != first);
    QCOMPARE(rowsOf("device"), 2);
    QCOMPARE(m_sql->findDev(0x0960AA0F, 1234), first);
    QCOMPARE(m_sql->findDev(0x0960AA0F, 1235), -1);
    QSqlQuery query("SELECT device_name_search FROM device ORDER BY device_id");
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), QStringLiteral("баня"));
}

void TestNoxSql::referenceDataFindOneInstrument()
{
    quint32 type = 7;
    quint32 number = 8;
    const int first = m_sql->addDev(0x11, 1, "B");
    const int second = m_sql->addDev(0x11, 2, "B");
    QCOMPARE(m_sql->findDev(&ref, &type, &number), -1);
    QCOMPARE(type, 7u);
    QVERIFY(m_sql->updRefData(first, &ref, 0x01, 55, "A"));
    QCOMPARE(m_sql->findDev(&ref, &type, &number), first);
    QCOMPARE(type, 0x01u);
    QCOMPARE(number, 55u);
    QVERIFY(!m_sql->updRefData(second, &dataA, 0x01, 55, "A")); // type and number are taken
    QVERIFY(m_sql->updRefData(second, &ref, 0x11, 2, "B"));
    QCOMPARE(m_sql->findDev(&ref, &type, &number), -1); // two of them
    QVERIFY(!m_sql->updRefData(0, &ref, 1, 1, "A"));
}

void TestNoxSql::snapshots()
{
    const int device = m_sql->addDev(0x11, 1, "B");
    QCOMPARE(m_sql->getSnapShotCount(device), 0);
    const int factory = m_sql->setSnapShot(device, &dataA, &ref, "Заводская настройка", 0);
    QVERIFY(factory >= 1);
    const int copy = m_sql->setSnapShot(device, &dataA, &ref, "mine", 0);
    QVERIFY(copy != factory);
    QCOMPARE(m_sql->setSnapShot(device, &dataA, &ref, "mine", 0), copy);
    QCOMPARE(m_sql->setSnapShot(device, &dataA, &ref, "renamed", 0), copy);
    QCOMPARE(m_sql->getSnapShotInfo(copy), QStringLiteral("renamed"));
    QCOMPARE(m_sql->setSnapShot(device, &dataB, &ref, "changed", copy), copy);
    QCOMPARE(m_sql->getSnapShotCount(device), 2);
    // the factory one is never changed
    QVERIFY(m_sql->setSnapShot(device, &dataB, &ref, "changed", factory) > copy);
    QCOMPARE(m_sql->getSnapShotInfo(factory), QStringLiteral("Заводская настройка"));
    QCOMPARE(m_sql->getSnapShotCount(device), 3);
    QCOMPARE(m_sql->setSnapShot(device + 1, &dataA, &ref, "", 0), -1);
    QCOMPARE(m_sql->setSnapShot(0, &dataA, &ref, "", 0), -1);
    QCOMPARE(m_sql->getSnapShotInfo(99), QString());
}

void TestNoxSql::snapshotsAreFoundByContent()
{
    const int first = m_sql->addDev(0x11, 7, "NOX B");
    const int second = m_sql->addDev(0x11, 8, "NOX B");
    const int factory = m_sql->setSnapShot(first, &dataA, &ref, "f", 0);
    const int older = m_sql->setSnapShot(first, &dataA, &ref, "old", 0);
    m_now = m_now.addDays(1);
    m_sql->setSnapShot(second, &dataB, &ref, "f2", 0);
    const int newer = m_sql->setSnapShot(second, &dataA, &ref, "new", 0);

    QCOMPARE(idsOf(m_sql->findSnapShot(&dataA, &ref, 0)), (QVector<int>{newer, older, factory}));
    const auto items = m_sql->findSnapShot(&dataA, &ref, first);
    QCOMPARE(idsOf(items), (QVector<int>{older, factory}));
    const QString date = m_now.addDays(-1).toString("dddd dd.MM.yyyy HH:mm");
    QVERIFY(date.endsWith("24.11.2026 17:05"));
    QCOMPARE(items.at(0).name, "NOX B № 0007 от " + date);
    QCOMPARE(items.at(1).name, "NOX B № 0007 от " + date + " (Заводская)");
    QVERIFY(items.at(1).factory && !items.at(0).factory);
    QCOMPARE(items.at(0).info, QStringLiteral("old"));
    QVERIFY(m_sql->findSnapShot(&dataB, &dataB, 0).isEmpty());
}

void TestNoxSql::characteristics()
{
    const QByteArray erased(492, char(0xFF));
    const int id = m_sql->setFeature(&dataA, "Эталон 5", "info", 0);
    QVERIFY(id >= 1);
    QCOMPARE(m_sql->setFeature(&dataA, "Эталон 6", "info", 0), id);
    QCOMPARE(m_sql->setFeature(&erased, "Эталон 6", "info", id), id);
    QCOMPARE(rowsOf("feature"), 1);
    QSqlQuery query("SELECT feature_type FROM feature");
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toInt(), -1);
    query.finish();
    const int added = m_sql->addFeature(&erased, "эталон", "");
    QVERIFY(added != id);
    QVERIFY(m_sql->setFeature(&erased, "x", "", 0) > added); // not the only one with these data

    const auto found = m_sql->findFeature("ЭТАЛОН 6");
    QCOMPARE(idsOf(found), QVector<int>{id});
    QCOMPARE(found.at(0).name, "Эталон 6 от " + m_now.toString("dddd dd.MM.yyyy HH:mm"));
    QCOMPARE(m_sql->findFeature("талон").size(), 2);
}

void TestNoxSql::namesWithAnyCharacter_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("searched");

    QTest::newRow("apostrophe") << "д'Артаньян '; DROP TABLE feature; --"
                                << "Д'АРТ";
    QTest::newRow("percent") << "100 % Pt"
                             << "0 % p";
    QTest::newRow("quotes") << "the \"good\" one"
                            << "\"GOOD\"";
    QTest::newRow("zero byte") << QString("Pt") + QChar(0) + "100"
                               << "pt";
    QTest::newRow("beyond the base plane") << "🌡 probe"
                                           << "🌡";
}

void TestNoxSql::namesWithAnyCharacter()
{
    QFETCH(QString, name);
    QFETCH(QString, searched);
    m_sql->addFeature(&dataA, "another", "");
    const int id = m_sql->addFeature(&dataA, name, name);
    const auto found = m_sql->findFeature(searched);
    QCOMPARE(idsOf(found), QVector<int>{id});
    QCOMPARE(found.at(0).info, name);
    QVERIFY(found.at(0).name.startsWith(name + " от "));
    const int device = m_sql->addDev(0x11, 1, name);
    m_sql->setDevProperty(device, name, name);
    QCOMPARE(m_sql->getDevProperty(device).value(name).toString(), name);
}

void TestNoxSql::applicationProperties()
{
    QVERIFY(!m_sql->getAppProperty("exit_query").isValid());
    QVERIFY(m_sql->setAppProperty("exit_query", true));
    QVERIFY(m_sql->setAppProperty("exit_query", false));
    QCOMPARE(m_sql->getAppProperty("exit_query").toBool(), false);
    QCOMPARE(rowsOf("app_property"), 2);
    QVERIFY(m_sql->setAppProperty("exit_query", QVariant()));
    QVERIFY(!m_sql->getAppProperty("exit_query").isValid());
    QVERIFY(m_sql->setAppProperty("never there", QVariant()));
    QVERIFY(!m_sql->setAppProperty("", 1));
    QVERIFY(!m_sql->getAppProperty("").isValid());
}

void TestNoxSql::instrumentProperties()
{
    const int main = m_sql->addDev(0x11, 1, "");
    const int other = m_sql->addDev(0x11, 2, "");
    m_sql->setDevProperty(main, "qwt_scale", 5);
    m_sql->setDevProperty(main, "ch_0-dim", "K");
    QVERIFY(m_sql->getDevProperty(other).isEmpty());
    m_sql->setAppProperty("main_device_id", main);
    QCOMPARE(m_sql->getDevProperty(other).keys(), QStringList{"qwt_scale"});
    m_sql->setDevProperty(other, "qwt_scale", 6);
    m_sql->setDevProperty(other, "qwt_scale", 7);
    QCOMPARE(m_sql->getDevProperty(other).value("qwt_scale").toInt(), 7);
    QCOMPARE(m_sql->getDevProperty(main).size(), 2);
    m_sql->setDevProperty(other, "qwt_scale", QVariant());
    m_sql->setDevProperty(other, "", 1);
    m_sql->setDevProperty(-1, "qwt_scale", 1);
    QCOMPARE(rowsOf("device_property"), 2);
    QVERIFY(m_sql->getDevProperty(-1).isEmpty());
}

void TestNoxSql::deletingAnInstrumentTakesWhatIsItsOwn()
{
    for (const quint32 number : {1u, 2u}) {
        const int device = m_sql->addDev(0x11, number, "");
        const int snapshot = m_sql->setSnapShot(device, &dataA, &ref, "", 0);
        m_sql->setDevProperty(device, "qwt", 1);
        QSqlQuery property;
        property.prepare("INSERT INTO device_snapshot_property (device_snapshot_id) VALUES (?)");
        property.addBindValue(snapshot);
        QVERIFY(property.exec());
    }
    QVERIFY(QSqlQuery().exec("DELETE FROM device WHERE device_number=1"));
    for (const char *table :
         {"device", "device_snapshot", "device_property", "device_snapshot_property"})
        QCOMPARE(rowsOf(table), 1);
}

void TestNoxSql::failures_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("no path") << "";
    QTest::newRow("folder") << "folder";
    QTest::newRow("no such folder") << "none/nox8.db";
    QTest::newRow("not a database") << "noise";
    QTest::newRow("database without tables") << "empty";
}

void TestNoxSql::failures()
{
    QFETCH(QString, file);
    m_sql.reset();
    QVERIFY(QDir(m_directory->path()).mkdir("folder"));
    QFile noise(m_directory->filePath("noise"));
    QVERIFY(noise.open(QIODevice::WriteOnly));
    noise.write(QByteArray(5000, 'x'));
    noise.close();

    m_sql = std::make_unique<noxSql>(file.isEmpty() ? QString() : m_directory->filePath(file));
    quint32 type = 0;
    quint32 number = 0;
    QCOMPARE(m_sql->addDev(0x11, 1, "x"), -1);
    QVERIFY(!m_sql->updRefData(1, &ref, 0x11, 1, "x"));
    QCOMPARE(m_sql->findDev(&ref, &type, &number), -1);
    QCOMPARE(m_sql->findDev(0x11, 1), -1);
    QCOMPARE(m_sql->getSnapShotCount(1), -1);
    QCOMPARE(m_sql->getSnapShotInfo(1), QString());
    QCOMPARE(m_sql->setSnapShot(1, &dataA, &ref, "", 0), -1);
    QVERIFY(m_sql->findSnapShot(&dataA, &ref, 0).isEmpty());
    QCOMPARE(m_sql->setFeature(&dataA, "x", "", 0), -1);
    QCOMPARE(m_sql->addFeature(&dataA, "x", ""), -1);
    QVERIFY(m_sql->findFeature("x").isEmpty());
    QVERIFY(!m_sql->setAppProperty("x", 1));
    QVERIFY(!m_sql->getAppProperty("x").isValid());
    m_sql->setDevProperty(1, "x", 1);
    QVERIFY(m_sql->getDevProperty(1).isEmpty());
}

QTEST_GUILESS_MAIN(TestNoxSql)
#include "tst_noxsql.moc"
