#include "registry/instrumentstore.h"
#include "registrybench.h"
#include "support/databaseholder.h"

/** What is learnt of an instrument while the database refuses to take it. */
class TestRefusals : public QObject
{
    Q_OBJECT
private slots:
    void allOfANewInstrumentIsStoredLater()
    {
        RegistryBench bench;
        QByteArray first;
        QByteArray references;
        {
            const DatabaseHolder holder(bench.database.path());
            QVERIFY(holder.holds());
            optionsNOX8 &image = *identified(bench).opt;
            QCOMPARE(nox(bench).dbIndex, -1);
            first = taken(image.getData());
            references = taken(image.getRefAllData());
            image.setChOnOff(1, 0);
            QVERIFY(taken(image.getData()) != first && nox(bench).held.referenceData());
            image.refT0.value = 1.5F;
            image.triggerRefChange();
            QTRY_COMPARE(nox(bench).held.referenceData()->refT0.value, 1.5F); // it is written
        }
        QTRY_COMPARE(nox(bench).dbIndex, 1);
        const auto factory = bench.database.findSnapShot(&first, &references, 1);
        QVERIFY(factory.size() == 1 && factory.first().factory);
        QCOMPARE(rowWith(bench, taken(nox(bench).opt->getRefAllData())), 1);
    }

    void olderOneIsStoredWithItsReferences()
    {
        RegistryBench bench;
        bench.add("SIM1", "NOX B", 5, true);
        optionsNOX8 &image = *bench.list.newNox(bench.port.addDev("SIM1"), true)->opt;
        {
            const DatabaseHolder holder(bench.database.path());
            QVERIFY(holder.holds());
            image.setDevType(typeB);
            bench.list.getOptFromNox(0);
            QVERIFY(bench.isRead(0));
            image.setDevNumber(5); // as the operator knows it
            QCOMPARE(nox(bench).dbIndex, -1);
        }
        const QByteArray references = taken(image.getRefAllData());
        image.refT0.value = 1.5F; // which has not been written yet
        QTRY_COMPARE(nox(bench).dbIndex, 1);
        QCOMPARE(rowWith(bench, references), 1);
    }

    void onlyAnOlderOneIsKnownByItsReferences()
    {
        for (const bool isOlder : {true, false}) {
            RegistryBench bench;
            bench.add("SIM1", "NOX B", 0, isOlder);
            optionsNOX8 &image = *bench.list.newNox(bench.port.addDev("SIM1"), true)->opt;
            image.setDevType(typeB);
            bench.list.getOptFromNox(0);
            QVERIFY(bench.isRead(0));
            QCOMPARE(image.identValid, !isOlder);
            const QByteArray references = taken(image.getRefAllData());
            QCOMPARE(bench.database.provideDev(&references, typeB, 100, "B"), 1);
            emit bench.database.storingChanged(true);
            QCoreApplication::processEvents();
            QCOMPARE(int(image.devNumber), isOlder ? 100 : 0); // which would be written to it
        }
    }

    void firstConfigurationThatOnlyIsRefusedIsStoredLater()
    {
        RegistryBench bench;
        described(bench);
        QCOMPARE(nox(bench).dbIndex, 1);
        {
            const DatabaseHolder holder(bench.database.path());
            QVERIFY(holder.holds());
            InstrumentStore(&bench.database).recogniseSnapShot(&nox(bench), true);
        }
        QTRY_COMPARE(bench.database.getSnapShotCount(1), 1);
    }

    void firstConfigurationOfAnotherInstrumentIsForgotten()
    {
        RegistryBench bench;
        {
            const DatabaseHolder holder(bench.database.path());
            QVERIFY(holder.holds());
            identified(bench);
            QVERIFY(!nox(bench).refused.firstSnapShot.first.isEmpty());
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
            const DatabaseHolder holder(bench.database.path());
            QVERIFY(holder.holds());
            described(bench);
            QCOMPARE(nox(bench).dbIndex, -1);
        }
        QTRY_COMPARE(nox(bench).dbIndex, 1);
        QCOMPARE(rowWith(bench, stored), 1);
    }

    void referencesThatWereRefusedAreStoredLater()
    {
        RegistryBench bench;
        optionsNOX8 &image = described(bench);
        QCOMPARE(nox(bench).dbIndex, 1);
        {
            const DatabaseHolder holder(bench.database.path());
            QVERIFY(holder.holds());
            image.triggerDevChange();
        }
        const QByteArray references = taken(image.getRefAllData());
        image.refT0.value = 1.5F; // later
        QTRY_COMPARE(rowWith(bench, references), 1);
    }

    void rowIsFoundInAnotherDatabase()
    {
        RegistryBench bench;
        QCOMPARE(identified(bench).dbIndex, 1);
        const QString path = bench.database.path();
        const QString other = bench.folder.filePath("other.db");
        QVERIFY(provideDatabase(other));
        {
            auto connection = QSqlDatabase::addDatabase("QSQLITE", "another");
            connection.setDatabaseName(other);
            QVERIFY(connection.open());
            QSqlQuery query("INSERT INTO device (device_type, device_number) VALUES (17, 9)",
                            connection);
            QVERIFY(query.isActive());
        }
        QSqlDatabase::removeDatabase("another");
        QVERIFY(QFile::remove(path) && QFile::rename(other, path));
        bench.database.setAppProperty("exit_query", true);
        QTRY_COMPARE(nox(bench).dbIndex, 2);
    }

    void rowThatIsKnownStays()
    {
        RegistryBench bench;
        QCOMPARE(identified(bench).dbIndex, 1);
        const DatabaseHolder holder(bench.database.path());
        QVERIFY(holder.holds());
        emit nox(bench).opt->onIdentChange();
        nox(bench).snapShotId = 7;
        emit bench.database.storingChanged(true); // but it is held again
        QCoreApplication::processEvents();
        QCOMPARE(nox(bench).dbIndex, 1);
        QCOMPARE(nox(bench).snapShotId, 7);
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
    /** An instrument of which the operator has told who it is. */
    static optionsNOX8 &described(RegistryBench &bench)
    {
        optionsNOX8 &image = *bench.list.newNox(-1, true)->opt;
        image.setDevType(typeB);
        image.setDevNumber(5);
        return image;
    }
    static int rowWith(RegistryBench &bench, const QByteArray &references)
    {
        quint32 type = 0;
        quint32 number = 0;
        return bench.database.findDev(&references, &type, &number);
    }
    static noxList::_nox &identified(RegistryBench &bench)
    {
        bench.add("SIM1", "NOX B", 5);
        optionsNOX8 &image = *bench.list.newNox(bench.port.addDev("SIM1"), true)->opt;
        image.setDevType(typeB);
        image.setDevNumber(5);
        bench.list.getOptFromNox(0);
        bench.isRead(0); // no answer changes anything later
        return nox(bench);
    }
};

QTEST_GUILESS_MAIN(TestRefusals)
#include "tst_refusals.moc"
