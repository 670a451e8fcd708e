#include "registrybench.h"

#include <QSqlDatabase>
#include <QSqlQuery>

namespace
{

constexpr auto otherProgram = "other";

/** Another program that holds the database while it lives. */
class Holder
{
public:
    explicit Holder(const QString &path)
    {
        auto other = QSqlDatabase::addDatabase("QSQLITE", otherProgram);
        other.setDatabaseName(path);
        m_holds = other.open() && QSqlQuery("BEGIN EXCLUSIVE", other).isActive();
    }
    ~Holder() { QSqlDatabase::removeDatabase(otherProgram); }
    bool holds() const { return m_holds; }

private:
    bool m_holds = false;
};

} // namespace

/** What is learnt of an instrument while the database refuses to take it. */
class TestRefusals : public QObject
{
    Q_OBJECT
private slots:
    void rowAndFirstConfigurationAreStoredLater()
    {
        RegistryBench bench;
        QByteArray first;
        {
            const Holder holder(bench.database.path());
            QVERIFY(holder.holds());
            optionsNOX8 &image = *identified(bench).opt;
            QVERIFY(bench.isRead(0));
            QCOMPARE(nox(bench).dbIndex, -1);
            first = taken(image.getData());
            image.setChOnOff(1, 0);
            QVERIFY(taken(image.getData()) != first);
        }
        QTRY_COMPARE(nox(bench).dbIndex, 1);
        const QByteArray references = taken(nox(bench).opt->getRefAllData());
        const auto factory = bench.database.findSnapShot(&first, &references, 1);
        QVERIFY(factory.size() == 1 && factory.first().factory);
    }

    void firstConfigurationOfAnotherInstrumentIsForgotten()
    {
        RegistryBench bench;
        {
            const Holder holder(bench.database.path());
            QVERIFY(holder.holds());
            identified(bench);
            QVERIFY(bench.isRead(0));
            nox(bench).opt->setDevNumber(6);
        }
        QTRY_COMPARE(nox(bench).dbIndex, 1);
        QCOMPARE(bench.database.getSnapShotCount(1), 0);
    }

    void referencesThatWereNotReadReplaceNone()
    {
        RegistryBench bench;
        const QByteArray stored(referenceDataSize, '\1');
        QCOMPARE(bench.database.provideDev(&stored, typeB, 5, "B"), 1);
        {
            const Holder holder(bench.database.path());
            QVERIFY(holder.holds());
            optionsNOX8 &image = *bench.list.newNox(-1, true)->opt;
            image.setDevType(typeB);
            image.setDevNumber(5);
            QCOMPARE(nox(bench).dbIndex, -1);
        }
        QTRY_COMPARE(nox(bench).dbIndex, 1);
        quint32 type = 0;
        quint32 number = 0;
        QCOMPARE(bench.database.findDev(&stored, &type, &number), 1);
    }

    void referencesThatWereRefusedAreStoredLater()
    {
        RegistryBench bench;
        optionsNOX8 &image = *bench.list.newNox(-1, true)->opt;
        image.setDevType(typeB);
        image.setDevNumber(5);
        QCOMPARE(nox(bench).dbIndex, 1);
        {
            const Holder holder(bench.database.path());
            QVERIFY(holder.holds());
            image.triggerDevChange();
        }
        const QByteArray references = taken(image.getRefAllData());
        quint32 type = 0;
        quint32 number = 0;
        QTRY_COMPARE(bench.database.findDev(&references, &type, &number), 1);
        QCOMPARE(number, quint32(5));
    }

    void rowIsFoundInAnotherDatabase()
    {
        RegistryBench bench;
        QCOMPARE(identified(bench).dbIndex, 1);
        const QString path = bench.database.path();
        const QString other = bench.folder.filePath("other.db");
        QVERIFY(provideDatabase(other));
        {
            auto connection = QSqlDatabase::addDatabase("QSQLITE", otherProgram);
            connection.setDatabaseName(other);
            QVERIFY(connection.open());
            QSqlQuery query("INSERT INTO device (device_type, device_number) VALUES (17, 9)",
                            connection);
            QVERIFY(query.isActive());
        }
        QSqlDatabase::removeDatabase(otherProgram);
        QVERIFY(QFile::remove(path) && QFile::rename(other, path));
        bench.database.setAppProperty("exit_query", true);
        QTRY_COMPARE(nox(bench).dbIndex, 2);
    }

    void rowThatIsKnownStays()
    {
        RegistryBench bench;
        QCOMPARE(identified(bench).dbIndex, 1);
        const Holder holder(bench.database.path());
        QVERIFY(holder.holds());
        emit nox(bench).opt->onIdentChange();
        QCOMPARE(nox(bench).dbIndex, 1);
        nox(bench).opt->setDevNumber(6); // another one, which cannot be found
        QCOMPARE(nox(bench).dbIndex, -1);
    }

    void rowThatWasRemovedStaysAway()
    {
        RegistryBench bench;
        QVERIFY(bench.database.removeDev(identified(bench).dbIndex));
        nox(bench).dbIndex = -1;
        emit bench.database.storingChanged(true);
        QCoreApplication::processEvents();
        QCOMPARE(nox(bench).dbIndex, -1);
    }

private:
    static noxList::_nox &nox(RegistryBench &bench) { return *bench.list.getNoxByIndex(0); }
    static noxList::_nox &identified(RegistryBench &bench)
    {
        bench.add("SIM1", "NOX B", 5);
        optionsNOX8 &image = *bench.list.newNox(bench.port.addDev("SIM1"), true)->opt;
        image.setDevType(typeB);
        image.setDevNumber(5);
        bench.list.getOptFromNox(0);
        return nox(bench);
    }
};

QTEST_GUILESS_MAIN(TestRefusals)
#include "tst_refusals.moc"
