#include "registry/instrumentstore.h"
#include "registrybench.h"

#include <QSqlQuery>

#include <memory>

namespace
{

using Image = optionsNOX8;

constexpr int device = 3; // has no worker: the test plays its part

} // namespace

/** The registry: its records, what it announces and writes, and what it keeps in the database. */
class TestNoxList : public QObject
{
    Q_OBJECT
private slots:
    void init() { bench = std::make_unique<RegistryBench>(); }
    void cleanup() { bench.reset(); }

    void recordsAndTheirIndices()
    {
        list().newNox(-1, true);
        for (int index = 1; index < 4; ++index)
            list().newNox(7 * index, true);
        list().rmByIndex(1);
        list().newNox(-1, true);
        list().rmByIndex(4);
        list().newNox(-1, false);
        list().getOptFromNox(1); // nobody's
        list().searchFor(3);
        QCOMPARE(bench->news(),
                 QString("added 0 0;added 1 0;added 2 0;added 3 0;change;removed 1 -1;added 4 0;"
                         "change;removed 4 -1;added 4 0;find 3"));
        noxList::_nox *last = list().getNoxByIndex(3);
        last->qwtIndex = 40;
        last->dbIndex = 12;
        QVERIFY(list().getNoxByDevIndex(21) == last && list().getNoxByQwtIndex(40) == last);
        QVERIFY(!list().getNoxByIndex(1) && !list().getNoxByQwtIndex(3));
        QCOMPARE(list().indices(), (QList<int>{0, 2, 3, 4}));
        QList<int> seen{last->processed};
        for (const int device : {21, 7})
            seen << list().getIndexByDev(device) << list().isDevIndex(device);
        for (const int index : {3, 1})
            seen << list().getQWTIndex(index) << list().getDBIndex(index);
        QCOMPARE(seen, (QList<int>{true, 3, true, -1, false, 40, 12, -1, -1}));
    }

    void fullRegistry()
    {
        noxList found(&bench->port, &bench->database);
        for (int i = 0; i < 254; ++i)
            QVERIFY(list().newNox(-1, true));
        bench->news();
        QVERIFY(!list().newNox(-1, true));
        QVERIFY(list().addNox(found.newNox(8, false))); // the 255th
        found.detachByDevIndex(8);
        noxList::_nox *tooMany = found.newNox(9, false);
        QVERIFY(!list().addNox(tooMany) && found.owns(tooMany));
        QCOMPARE(bench->news(), QString("added -1 0;added 254 1"));
    }

    void measurementsAreMapped()
    {
        noxList::_nox *nox = add();
        for (const char unit : {'A', 'B', 'C', 'Z'})
            measure(1, unit);
        nox->opt->setChMeasType(1, measTemperatureCustom, "bar");
        measure(2, 'B');
        nox->opt->setChOnOff(1, 0);
        for (const int ch : {2, 9, 255}) // two of them beyond the model
            measure(ch, 'B');
        emit bench->port.readyDevMeas(device + 1, 20.5, 1, 'A'); // nobody's
        QCOMPARE(bench->measured,
                 (QStringList{"0: 0 20.5 Ω", "0: 0 20.5 °С", "0: 0 20.5 мВ", "0: 0 20.5 -",
                              "0: 1 20.5 bar", "0: 1 20.5 °С", "0: 8 20.5 °С", "0: 254 20.5 °С"}));
        bench->measured.clear();
        nox->qwtIndex = -1; // not on the plot
        measure(1, 'A');
        nox->qwtIndex = 0;
        nox->processed = false;
        measure(2, 'A');
        nox->processed = true;
        nox->opt->triggerDevChange(); // what was measured before it is written
        measure(3, 'A');
        QTRY_VERIFY(nox->txCodes.isEmpty());
        measure(4, 'A');
        QCOMPARE(bench->measured, QStringList{"0: 3 20.5 Ω"});
    }

    void processingAndRecordingAreSwitched()
    {
        const noxList::_nox *nox = add();
        QStringList seen;
        const auto process = [&](int index, bool on, bool clears) {
            list().setProccesed(index, on, clears);
            seen << QString("%1%2 ").arg(nox->processed).arg(nox->clearOnResume) + bench->news();
        };
        process(0, true, true); // it is on already
        process(9, false, true);
        process(0, false, true);
        process(0, false, false); // no second time, whatever the flag
        process(0, true, false);
        process(0, false, false);
        process(0, true, true);
        QCOMPARE(seen, (QStringList{"10 ", "10 ", "01 change", "01 ", "10 clear 40;change",
                                    "00 change", "10 change"}));
        list().setRecording(9, true);
        list().setRecording(0, true);
        QVERIFY(nox->recording);
        QCOMPARE(bench->news(), QString("change"));
    }

    void imageChangesCarryTheIndex()
    {
        list().newNox(-1, true);
        const noxList::_nox *nox = add(typeCM1Extended);
        int logged = -1;
        connect(&list(), &noxList::onReadRec, &list(), [&](int index) { logged = index; });
        emit nox->opt->onRecData({}, QDateTime());
        QCOMPARE(logged, 1);
        reply(taken(nox->opt->getRefShiftData()), 9);
        nox->opt->setDevType(typeB);
        nox->opt->setChOnOff(5, 0);
        QCOMPARE(bench->news(),
                 QString("shifts 1;change;identity 1;device 1;references 1;channel 1 5"));
        QSignalSpy command(&bench->port, &NOXSerialPort::onSetDevType);
        for (const bool wire : {false, true}) {
            const int worker = link(wire ? "a" : "b");
            list().newNox(worker, wire)->opt->setDevType(typeB);
            QCOMPARE(command.last(), (QVariantList{worker, QVariant::fromValue(char(1))}));
        }
    }

    void appliedBlocksAreWritten()
    {
        // as the settings dialog does; 0 takes the number away, other digits are channels
        const QMap<QChar, void (Image::*)()> askFor{{'D', &Image::triggerDevChange},
                                                    {'R', &Image::triggerRefChange},
                                                    {'S', &Image::triggerRefShiftChange},
                                                    {'I', &Image::onIdentApply},
                                                    {'N', &Image::onSNApply}};
        const auto written = [&](quint32 type, bool hasOwnIdentity, const QString &requests) {
            Image &image = *add(type, 5, hasOwnIdentity)->opt;
            for (const QChar request : requests) {
                if (request == '0')
                    image.devNumber = 0;
                else if (request.isDigit())
                    image.triggerChChange(quint8(request.digitValue()));
                else
                    (image.*askFor[request])();
            }
            list().writeNow();
            list().rmByIndex(0);
            return bench->news().remove("write 3 ").remove(";change;removed 0 40");
        };
        constexpr bool own = true;
        QCOMPARE(written(typeCM, own, "DRDSIN"),
                 QString("change;[8] 6 0;[3976] 0 0;[72] 1 0;[8] 50 0"));
        QCOMPARE(written(typeCM, !own, "DRDSIN"), QString("change;[3976] 0 0;[72] 1 0"));
        QCOMPARE(written(typeCM1Extended, own, "DRDSIN"),
                 QString("change;[8] 6 0;[7944] 0 0;[72] 1 0;[148] 8 0;[20] 50 0;[4] 52 0"));
        QCOMPARE(written(typeCM1Extended, own, "0SINR"), QString("change;[148] 8 0;[72] 1 0"));
        QCOMPARE(written(typeCM, own, "RDR"), QString("change;[72] 1 0;[8] 6 0;[3976] 0 0"));
        QCOMPARE(written(typeCM, own, "78"), QString("[12] 4 0")); // at once; it has eight
        QCOMPARE(written(0, own, "DRSIN"), QString("change;removed 0 40"));
    }

    void eachRequestBeginsTheWaitAnew()
    {
        const noxList::_nox *nox = add();
        const noxList::_nox *unconnected = list().newNox(-1, true);
        for (const int index : {0, 1, 99})
            list().sendNoxData(index, Image::txReferenceData);
        for (QTimer *wait : {nox->txTimer.get(), unconnected->txTimer.get()}) {
            wait->setTimerType(Qt::PreciseTimer);
            wait->start(100000);
        }
        QTest::qWait(20);
        const int remaining = nox->txTimer->remainingTime();
        list().sendNoxData(0, Image::txReferenceData);
        QVERIFY(nox->txTimer->remainingTime() > remaining);
        list().writeNow();
        list().writeNow();
        QCOMPARE(bench->news(), QString("added 1 0;change;write 3 [72] 1 0"));
        QVERIFY(!nox->txTimer->isActive() && unconnected->txTimer->isActive());
    }

    void recordRemovedByWhoHearsOfIt()
    {
        bool isRemoved = false;
        const auto remove = [this, &isRemoved] {
            if (!std::exchange(isRemoved, true)) // the removal itself is a change too
                list().rmByIndex(0);
        };
        connect(&list(), &noxList::onChange, &bench->port, remove);
        connect(&list(), &noxList::onChChange, &bench->port, remove);
        // who hears of a removal may let events in for longer than writes wait
        connect(&list(), &noxList::onRmNox, &bench->port, [] { QTest::qWait(60); });
        for (const int change : {0, 1, 2}) {
            const noxList::_nox &nox = *add();
            isRemoved = false;
            nox.opt->triggerRefChange();
            if (change == 1)
                nox.opt->setChMeasType(3, measTemperatureCustom, "K");
            else if (change == 2)
                list().disConnByIndex(0);
            QTRY_VERIFY(list().indices().isEmpty());
            QCOMPARE(bench->news(),
                     (change == 1 ? "channel 0 3" : "change") + QString(";change;removed 0 40"));
            QVERIFY(bench->database.getDevProperty(1).isEmpty());
        }
    }

    void unitsAreStored()
    {
        const noxList::_nox &nox = *add();
        const QMap<QString, QVariant> unit{{"ch_3-dim", "K"}};
        nox.opt->setChMeasType(3, measTemperatureCustom, "K");
        QCOMPARE(bench->database.getDevProperty(1), unit);
        nox.opt->setChMeasType(3, measTemperature, "");
        QVERIFY(bench->database.getDevProperty(1).isEmpty());
        {
            const QSignalBlocker unheard(nox.opt.get());
            nox.opt->setChMeasType(3, measTemperatureCustom, "K");
        }
        nox.opt->triggerChChange(3); // with what is written it is stored, too
        QCOMPARE(bench->database.getDevProperty(1), unit);
    }

    void referenceDataAreStored()
    {
        const noxList::_nox &older = *add(typeB, 0, false);
        QCOMPARE(older.dbIndex, 0);
        emit older.opt->onIdentApply(); // of nobody
        older.opt->setDevNumber(7);
        QCOMPARE(older.dbIndex, bench->database.findDev(typeB, 7));
        QCOMPARE(storedReferenceData(), QByteArray());
        older.opt->refR[0].value.value = 200.0F;
        emit older.opt->onIdentApply(); // it cannot be told; the row takes what is known
        QCOMPARE(storedReferenceData(), taken(older.opt->getRefAllData()));
        QVERIFY(older.txCodes.isEmpty());
        list().rmByIndex(0);

        const noxList::_nox &extended = *add(0x0950AA0F, 7);
        const auto done = [this](quint8 address, int size) {
            const QByteArray block(size, 'x');
            emit bench->port.doneSendDevData(device,
                                             {address, block, noxQueryModeNormal, true, false});
            return storedReferenceData();
        };
        extended.opt->shiftR[0].value = 0.5F;
        QCOMPARE(done(0, 3976), QByteArray());
        QCOMPARE(done(1, 72), taken(extended.opt->getRefAllData()));
        QCOMPARE(storedReferenceData().size(), 72 + 148);
        QVERIFY(extended.held.referenceData().has_value());
        QCOMPARE(bench->news(), QString("held 0;held 0"));
        const QByteArray others = taken(Image().getRefAllData());
        QVERIFY(bench->database.updRefData(1, &others, typeB, 9, "another"));
        extended.opt->blockSignals(true);
        extended.opt->setData(others, 3);
        extended.opt->devNumber = 0;
        extended.opt->devType = typeCM;
        QCOMPARE(done(1, 72), others); // where they are another one's
    }

    void changedConfigurationIsNotTheFactoryState()
    {
        const noxList::_nox &nox = *add();
        nox.opt->setData(taken(nox.opt->getData()), 2); // as it is once it has been read
        const QByteArray factory = taken(nox.opt->getData());
        const QByteArray refdata = taken(nox.opt->getRefAllData());
        const int id = bench->database.setSnapShot(nox.dbIndex, &factory, &refdata, "factory", 0);
        QByteArray changed = factory;
        changed[4 + 4 * 2 + 1] = 0x11;
        reply(changed, 2);
        QCOMPARE(nox.snapShotId, 0);
        QCOMPARE(bench->database.getSnapShotCount(nox.dbIndex), 1);
        reply(factory, 2);
        QCOMPARE(nox.snapShotId, id);
        nox.opt->setData(changed, 2); // by the user: it is still that of his snapshot
        reply(changed, 2);
        QCOMPARE(nox.snapShotId, id);
        reply(QByteArray(72, '\1'), 3); // by somebody else: it is that of none
        QVERIFY(bench->news().endsWith("references 0;change") && nox.snapShotId == 0);
    }

    void refusedRowIsNone()
    {
        noxList::_nox *const nox = identify(list().newNox(-1, false), typeB, 5);
        const InstrumentStore store(&bench->database);
        QVERIFY(QSqlQuery("PRAGMA query_only=1").isActive());
        store.provideWithReferences(nox, *nox->opt);
        QCOMPARE(std::exchange(nox->dbIndex, 0), -1);
        QSqlDatabase::database().close();
        store.provideWithReferences(nox, *nox->opt);
        QCOMPARE(nox->dbIndex, 0);
    }

    void whoTakesTheIndexIsNotMeant()
    {
        connect(add(typeB, 5)->opt.get(), &Image::onRefChange, &list(), [this] {
            list().rmByIndex(0);
            add()->dbIndex = 0;
        });
        reply(taken(Image().getRefData(true)), 3);
        QCOMPARE(list().getNoxByIndex(0)->dbIndex, 0);
    }

    void foundInstrumentIsAdopted()
    {
        noxList found(&bench->port, &bench->database);
        const auto adopt = [&](int foundDevice, quint32 type, quint16 number) {
            noxList::_nox *nox = identify(found.newNox(foundDevice, false), type, number);
            QVERIFY(list().addNox(nox));
            if (list().owns(nox))
                found.detachByDevIndex(foundDevice);
        };
        noxList::_nox &known = *add();
        adopt(8, typeCM, 5);
        QCOMPARE(known.devIndex, 8);
        adopt(9, typeCM, 6);
        adopt(10, typeB, 5); // another model with that number
        adopt(11, typeB, 0); // unknown ones are never the same
        adopt(12, typeB, 0);
        QCOMPARE(found.indices(), QList<int>{0}); // the one that was known
        QCOMPARE(bench->news(), QString("change;added 1 1;added 2 1;added 3 1;added 4 1"));
        Image &other = *list().getNoxByDevIndex(9)->opt;
        other.devZakorotka = 0;
        other.setDevZakorotka(1);
        QCOMPARE(bench->news(), QString("device 1"));
    }

    void instrumentOnAnotherPortLeavesNoLinkBehind()
    {
        const noxList::_nox *nox = identify(list().newNox(link("a"), true), typeB, 5);
        noxList found(&bench->port, &bench->database);
        noxList::_nox *same = identify(found.newNox(link("b"), false), typeB, 5);
        for (const quint8 address : {3, 9}) // what was asked for before is let go
            bench->port.sendDevQuery(same->devIndex, address, 72, false, noxQueryModeOnce);
        QSignalSpy command(&bench->port, &NOXSerialPort::onSetDevType);
        QVERIFY(list().addNox(same));
        QCOMPARE(command.value(0), (QVariantList{same->devIndex, QVariant::fromValue(char(1))}));
        QCOMPARE(nox->portName, QString("b"));
        QCOMPARE(bench->port.devices().size(), 2); // what would let events in comes later
        QTRY_COMPARE(bench->port.devices(), QList<int>{same->devIndex});
        QTRY_VERIFY(bench->port.isReadAllQuery());
        QCOMPARE(bench->instruments.addressings("b", 9), 0);
        QVERIFY(list().addNox(same)); // once more where it is
        QCoreApplication::processEvents();
        QCOMPARE(bench->port.devices(), QList<int>{nox->devIndex});

        list().sendNoxData(list().newNox(-1, true)->index, Image::txConfiguration);
        found.detachByIndex(0);
        delete same;
        cleanup(); // the write would begin while the link is ending
    }

    void anotherThatTakesTheIndexIsNotRemoved()
    {
        list().newNox(link("a"), true);
        QTimer::singleShot(0, &list(), [this] { // while its worker is ending
            list().rmByIndex(0);
            list().newNox(-1, true);
        });
        list().rmByIndex(0);
        QCOMPARE(list().indices(), QList<int>{0});
        QCOMPARE(bench->news(), QString("added 0 0;change;removed 0 -1;added 0 0;change"));
    }

    void lostLinkIsReportedOnce()
    {
        const noxList::_nox *nox = add();
        nox->opt->blockSignals(true);
        // while the first is handled the same error comes again, as a dying port may repeat it
        connect(&list(), &noxList::onChange, &bench->port,
                [this] { emit bench->port.onDevError(device, quint16(247)); });
        emit bench->port.onDevError(device, quint16(247));
        QCOMPARE(bench->news(), QString("change;error 0 200 Обрыв связи [код 247]"));
        QVERIFY(nox->devIndex == -1 && !nox->opt->signalsBlocked());
    }

    void linksComeGoAndFail()
    {
        const noxList::_nox *nox = list().newNox(link("a"), true);
        list().disConnByIndex(0);
        list().disConnByIndex(9); // nobody
        QVERIFY(nox->devIndex == -1 && bench->port.devices().isEmpty());
        list().connByIndex(9);
        list().connByIndex(0);   // where it was
        list().getOptFromNox(0); // unknown, it is not read
        QVERIFY(bench->port.isReadAllQuery());
        QCOMPARE(bench->port.devices(), QList<int>{nox->devIndex});
        FaultPlan deaf;
        deaf.ignoredAddressings = FaultPlan::always;
        bench->instruments.host.setFaults("a", deaf);
        connect(&list(), &noxList::onDevError, &list(), &noxList::rmByIndex);
        for (const quint8 address : {3, 2})
            bench->port.sendDevQuery(nox->devIndex, address, 72, false, noxQueryModeOnce);
        QTRY_VERIFY(list().indices().isEmpty() && bench->port.devices().isEmpty());
        QCOMPARE(bench->news(), QString("added 0 0;change;change;change;error 0 200 "
                                        "Обрыв связи [код 110];change;removed 0 -1"));
        QVERIFY(bench->port.isReadAllQuery());
    }

private:
    noxList &list() { return bench->list; }
    static noxList::_nox *identify(noxList::_nox *nox, quint32 type, quint16 number)
    {
        nox->opt->setDevType(type);
        nox->opt->setDevNumber(number);
        return nox;
    }
    noxList::_nox *add(quint32 type = typeCM, quint16 number = 5, bool hasOwnIdentity = true)
    {
        noxList::_nox *nox = list().newNox(device, true);
        nox->qwtIndex = 40 + nox->index;
        identify(nox, type, number)->opt->identValid = hasOwnIdentity;
        nox->opt->identApplyPending = false;
        bench->news();
        return nox;
    }
    /** Plugs an instrument in: its worker. */
    int link(const QString &portName)
    {
        return bench->instruments.add(portName) ? bench->port.addDev(portName) : -1;
    }
    void measure(int ch, char unit)
    {
        emit bench->port.readyDevMeas(device, 20.5, quint8(ch), unit);
    }
    void reply(QByteArray block, quint8 address)
    {
        emit bench->port.readyDevReply(device, &block, address);
    }
    static QByteArray storedReferenceData()
    {
        QSqlQuery query("SELECT device_refdata FROM device ORDER BY device_id DESC");
        return query.next() ? query.value(0).toByteArray() : QByteArray("no row");
    }

    std::unique_ptr<RegistryBench> bench;
};

QTEST_GUILESS_MAIN(TestNoxList)
#include "tst_noxlist.moc"
