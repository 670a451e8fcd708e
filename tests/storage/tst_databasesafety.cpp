#include "storage/noxsql.h"
#include "support/fulldisk.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <cstdio>
#include <memory>
#include <sys/prctl.h>
#include <unistd.h>

/** What is stored survives a killed program, a full disk and a damaged or locked file. */
class TestDatabaseSafety : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void everyOperationWorks();
    void killedWhileWriting();
    void fullDisk();
    void readOnlyFile();
    void lockedFile();
    void missingOrDamagedTables_data();
    void missingOrDamagedTables();
    void damagedHeader();
    void damageAnywhere();

private:
    QString path() const { return m_directory->filePath("nox8.db"); }
    void reopen();

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_sql;
};

namespace
{

const QByteArray configuration(700, 'c');
const QByteArray newConfiguration(700, 'n');
const QByteArray reference("\x00\x10", 2);
const QByteArray newReference("\x00\x20", 2);

struct Operation {
    QString name;
    bool isWriting;
    QStringList tables;                ///< which it needs
    bool (*isSuccessful)(noxSql &sql); ///< does it to the prepared database
};

QVector<Operation> operations()
{
    return {
        {"addDev", true, {"device"}, [](noxSql &sql) { return sql.addDev(0x11, 2, "B") > 0; }},
        {"provideDev",
         true,
         {"device"},
         [](noxSql &sql) { return sql.provideDev(&newReference, 0x11, 3, "C") > 0; }},
        {"updRefData",
         true,
         {"device"},
         [](noxSql &sql) { return sql.updRefData(1, &reference, 0x11, 1, "new name"); }},
        {"findDev by data",
         false,
         {"device"},
         [](noxSql &sql) {
             quint32 type = 0;
             quint32 number = 0;
             return sql.findDev(&reference, &type, &number) == 1;
         }},
        {"findDev by number",
         false,
         {"device"},
         [](noxSql &sql) { return sql.findDev(0x11, 1) == 1; }},
        {"getSnapShotCount",
         false,
         {"device_snapshot"},
         [](noxSql &sql) { return sql.getSnapShotCount(1) > 0; }},
        {"getSnapShotInfo",
         false,
         {"device_snapshot"},
         [](noxSql &sql) { return sql.getSnapShotInfo(1) == "factory"; }},
        {"setSnapShot",
         true,
         {"device", "device_snapshot"},
         [](noxSql &sql) {
             return sql.setSnapShot(1, &newConfiguration, &reference, "mine", 0) > 0;
         }},
        {"findSnapShot",
         false,
         {"device", "device_snapshot"},
         [](noxSql &sql) { return !sql.findSnapShot(&configuration, &reference, 0).isEmpty(); }},
        {"setFeature",
         true,
         {"feature"},
         [](noxSql &sql) { return sql.setFeature(&configuration, "renamed", "info", 1) == 1; }},
        {"addFeature",
         true,
         {"feature"},
         [](noxSql &sql) { return sql.addFeature(&newConfiguration, "Pt", "info") > 0; }},
        {"findFeature",
         false,
         {"feature"},
         [](noxSql &sql) { return !sql.findFeature("named").isEmpty(); }},
        {"setAppProperty",
         true,
         {"app_property"},
         [](noxSql &sql) { return sql.setAppProperty("ust_dir", "new"); }},
        {"setAppProperty, removing",
         true,
         {"app_property"},
         [](noxSql &sql) { return sql.setAppProperty("exit_query", QVariant()); }},
        {"getAppProperty",
         false,
         {"app_property"},
         [](noxSql &sql) { return sql.getAppProperty("autoconnect") == "1"; }},
        {"setDevProperty",
         true,
         {"device_property"},
         [](noxSql &sql) {
             sql.setDevProperty(1, "qwt_new", 5);
             return sql.getDevProperty(1).value("qwt_new") == 5;
         }},
        {"getDevProperty",
         false,
         {"device_property"},
         [](noxSql &sql) { return sql.getDevProperty(1).value("qwt_scale") == 4; }},
    };
}

/** Names of the operations, chosen by what they are. */
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

QStringList allOperations()
{
    return namesOf([](const Operation &) { return true; });
}

/** A second connection to the file, as another program has it. */
class OtherConnection
{
public:
    explicit OtherConnection(const QString &path)
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", name);
        database.setDatabaseName(path);
        database.open();
    }
    ~OtherConnection()
    {
        QSqlDatabase::database(name).close();
        QSqlDatabase::removeDatabase(name);
    }
    Q_DISABLE_COPY_MOVE(OtherConnection)

    /** The rows of a statement, columns joined by "|"; a refused statement is one row "refused". */
    QStringList rows(const QString &statement) const
    {
        QSqlQuery query(QSqlDatabase::database(name));
        if (!query.exec(statement))
            return {"refused"};
        QStringList rows;
        while (query.next()) {
            QStringList values;
            for (int column = 0; column < query.record().count(); ++column)
                values << query.value(column).toString();
            rows << values.join('|');
        }
        return rows;
    }

private:
    const QString name = QStringLiteral("other");
};

/** Everything that is stored, after the file was found to be sound. */
QStringList contents(const QString &path)
{
    const OtherConnection other(path);
    QStringList all = other.rows("PRAGMA integrity_check");
    for (const char *table : {"app_property", "device", "device_snapshot",
                              "device_snapshot_property", "device_property", "feature"})
        all << table << other.rows(QStringLiteral("SELECT * FROM %1").arg(table));
    return all;
}

/** File permissions hold for the superuser, too. */
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        if (m_user == 0)
            m_isOrdinary = seteuid(65534) == 0;
    }
    ~OrdinaryUser()
    {
        if (m_user != 0 || seteuid(m_user) != 0)
            return;
        prctl(PR_SET_DUMPABLE, 1); // the leak check at the end has to look into this process
    }
    Q_DISABLE_COPY_MOVE(OrdinaryUser)

    bool isOrdinary() const { return m_isOrdinary; }

private:
    const uid_t m_user = geteuid();
    bool m_isOrdinary = m_user != 0;
};

void overwrite(const QString &path, qint64 offset, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(offset));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

/** What the n-th snapshot of the killed program holds. */
QByteArray numberedData(int number)
{
    return QByteArray::number(number).repeated(200);
}

bool say(const char *what, int number)
{
    std::printf("%s %d\n", what, number);
    return std::fflush(stdout) == 0;
}

/** The program that is killed: names each write that was reported as done. */
int storeUntilKilled(const QString &path)
{
    std::puts("started");
    std::fflush(stdout);
    for (int round = 0;; ++round) {
        noxSql sql(path); // compacts the file at the end of each round
        const int first = sql.getSnapShotCount(1);
        for (int number = first; number < first + 10; ++number) {
            const QByteArray data = numberedData(number);
            const bool isDone =
                sql.setSnapShot(1, &data, &reference, QString::number(number), 0) > 0 &&
                say("snapshot", number) &&
                sql.setAppProperty("number " + QString::number(number), number) &&
                say("property", number) && sql.setAppProperty("last", number) &&
                say("last", number);
            if (!isDone)
                return EXIT_FAILURE;
        }
    }
}

/** The lines that the killed program may have said, by what the file holds. */
QSet<QString> storedWrites(const QString &path)
{
    const OtherConnection other(path);
    QStringList stored = other.rows("SELECT 'property ' || app_property_val FROM app_property"
                                    " WHERE app_property_key LIKE 'number %'");
    const int last =
        other.rows("SELECT app_property_val FROM app_property WHERE app_property_key='last'")
            .value(0)
            .toInt();
    for (int number = 1; number <= last; ++number)
        stored << QStringLiteral("last %1").arg(number);
    const QStringList snapshots =
        other.rows("SELECT device_snapshot_info, device_snapshot_data FROM device_snapshot");
    for (const QString &row : snapshots) {
        const QString number = row.section('|', 0, 0);
        if (row.section('|', 1, 1).toLatin1() == numberedData(number.toInt()))
            stored << "snapshot " + number;
    }
    return QSet<QString>(stored.cbegin(), stored.cend());
}

} // namespace

void TestDatabaseSafety::reopen()
{
    m_sql.reset(); // only one of them can be the default connection
    m_sql = std::make_unique<noxSql>(path());
}

void TestDatabaseSafety::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(provideDatabase(path()));
    reopen();
    QCOMPARE(m_sql->addDev(0x11, 1, "A"), 1);
    QVERIFY(m_sql->updRefData(1, &reference, 0x11, 1, "A"));
    QCOMPARE(m_sql->setSnapShot(1, &configuration, &reference, "factory", 0), 1);
    QCOMPARE(m_sql->addFeature(&configuration, "named", "info"), 1);
    QVERIFY(m_sql->setAppProperty("exit_query", true));
    m_sql->setDevProperty(1, "qwt_scale", 4);
}

void TestDatabaseSafety::cleanup()
{
    m_sql.reset();
}

void TestDatabaseSafety::everyOperationWorks()
{
    QCOMPARE(failedOperations(*m_sql), QStringList());
}

void TestDatabaseSafety::killedWhileWriting()
{
    m_sql.reset();
    QStringList said;
    int interrupted = 0;
    for (int kill = 0; kill < 100; ++kill) {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {"--store", path()});
        QVERIFY(program.waitForReadyRead());
        QTest::qSleep(QRandomGenerator::global()->bounded(1, 60));
        program.kill();
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::CrashExit); // no write was refused
        interrupted += QFile::exists(path() + "-journal") ? 1 : 0;
        QByteArray lines = program.readAllStandardOutput();
        lines.truncate(lines.lastIndexOf('\n') + 1);
        said << QString::fromLatin1(lines).split('\n', Qt::SkipEmptyParts);
        said.removeAll("started");

        QCOMPARE(OtherConnection(path()).rows("PRAGMA integrity_check"), QStringList{"ok"});
        const QSet<QString> lost = QSet<QString>(said.cbegin(), said.cend()) - storedWrites(path());
        QVERIFY2(lost.isEmpty(), qPrintable(QStringList(lost.values()).join(", ")));
    }
    qInfo("%d writes kept, %d interrupted", said.size(), interrupted);
    QVERIFY(said.size() > 100);
    QVERIFY(interrupted > 0);
    m_sql = std::make_unique<noxSql>(path());
    QCOMPARE(failedOperations(*m_sql), QStringList());
}

void TestDatabaseSafety::fullDisk()
{
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
    reopen();
    QVERIFY(m_sql->addFeature(&large, "large", "") > 0);
    QCOMPARE(failedOperations(*m_sql), QStringList());
}

void TestDatabaseSafety::readOnlyFile()
{
    m_sql.reset();
    const QStringList before = contents(path());
    const auto readable = QFile::ReadOwner | QFile::ReadUser | QFile::ReadGroup | QFile::ReadOther;
    const auto enterable = QFile::ExeOwner | QFile::ExeUser | QFile::ExeGroup | QFile::ExeOther;
    QVERIFY(QFile::setPermissions(path(), readable));
    QVERIFY(QFile::setPermissions(m_directory->path(), readable | enterable));
    {
        const OrdinaryUser user;
        QVERIFY(user.isOrdinary());
        m_sql = std::make_unique<noxSql>(path());
        QCOMPARE(failedOperations(*m_sql), writingOperations());
        m_sql.reset();
    }
    QCOMPARE(contents(path()), before);
    QVERIFY(QFile::setPermissions(m_directory->path(), readable | enterable | QFile::WriteOwner));
}

void TestDatabaseSafety::lockedFile()
{
    const QStringList before = contents(path());
    {
        const OtherConnection other(path());
        QCOMPARE(other.rows("BEGIN EXCLUSIVE"), QStringList());
        for (const Operation &operation : operations()) {
            QElapsedTimer watch;
            watch.start();
            QVERIFY2(!operation.isSuccessful(*m_sql), qPrintable(operation.name));
            QVERIFY2(watch.elapsed() < 1000, qPrintable(operation.name)); // at most four waits
        }
    }
    QCOMPARE(contents(path()), before);
    QCOMPARE(failedOperations(*m_sql), QStringList());
}

void TestDatabaseSafety::missingOrDamagedTables_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<bool>("isDamaged");

    for (const char *table :
         {"app_property", "device", "device_snapshot", "device_property", "feature"}) {
        QTest::addRow("%s missing", table) << table << false;
        QTest::addRow("%s overwritten", table) << table << true;
    }
}

void TestDatabaseSafety::missingOrDamagedTables()
{
    QFETCH(QString, table);
    QFETCH(bool, isDamaged);
    m_sql.reset();
    const auto other = std::make_unique<OtherConnection>(path());
    const int pageSize = other->rows("PRAGMA page_size").value(0).toInt();
    const QStringList pages = other->rows("SELECT rootpage FROM sqlite_master WHERE tbl_name='" +
                                          table + "' AND rootpage>0");
    QVERIFY(pages.size() > 1);
    if (!isDamaged)
        QCOMPARE(other->rows("DROP TABLE " + table), QStringList());
    else
        for (const QString &page : pages)
            overwrite(path(), qint64(page.toInt() - 1) * pageSize, QByteArray(pageSize, 'x'));

    m_sql = std::make_unique<noxSql>(path());
    QCOMPARE(failedOperations(*m_sql), namesOf([&table](const Operation &operation) {
                 return operation.tables.contains(table);
             }));
}

void TestDatabaseSafety::damagedHeader()
{
    m_sql.reset();
    overwrite(path(), 0, QByteArray(16, 'x'));
    m_sql = std::make_unique<noxSql>(path());
    QCOMPARE(failedOperations(*m_sql), allOperations());
}

/** Whatever the operations then give, they come to an end. */
void TestDatabaseSafety::damageAnywhere()
{
    m_sql.reset();
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray sound = file.readAll();
    QRandomGenerator random(8);
    int harmed = 0;
    for (int round = 0; round < 50; ++round) {
        QByteArray noise(random.bounded(1, 3000), 0);
        for (char &byte : noise)
            byte = char(random.bounded(256));
        overwrite(path(), 0, sound);
        overwrite(path(), random.bounded(sound.size()), noise);
        QElapsedTimer watch;
        watch.start();
        m_sql = std::make_unique<noxSql>(path());
        harmed += failedOperations(*m_sql).isEmpty() ? 0 : 1;
        m_sql.reset();
        QVERIFY(watch.elapsed() < 5000);
    }
    QVERIFY(harmed > 0);
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--store")
        return storeUntilKilled(arguments.value(2));
    TestDatabaseSafety test;
    return QTest::qExec(&test, arguments);
}

#include "tst_databasesafety.moc"
