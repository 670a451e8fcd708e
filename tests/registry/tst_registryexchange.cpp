#include "device/featurenox8.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"

#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using Action = std::function<void(optionsNOX8 &)>;
Q_DECLARE_METATYPE(Action)

/** What the registry writes, recognises and stores, with the multiplexer's part played by the test.
 */
class TestRegistryExchange : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void appliedBlocksAreWritten_data();
    void appliedBlocksAreWritten();
    void requestsExtendTheDelay();
    void measurementsWaitForTheWrites();
    void recordRemovedWhileWritesWait();
    void recordRemovedWhenAChannelChanges();
    void unitsAreStored();
    void identityGivesTheRow();
    void writtenReferenceDataAreStored();
    void knownByReferenceData();
    void changedConfigurationIsNotTheFactoryState();
    void foundInstrumentIsAdopted();
    void fullRegistryAdoptsNobody();

private:
    noxList::_nox *add(quint32 type, quint16 number, bool hasOwnIdentity);
    void reply(const QByteArray &block, quint8 address);
    QByteArray storedReferenceData(int row) const;

    static constexpr int device = 3;
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<noxSql> database;
    std::unique_ptr<NOXSerialPort> port;
    std::unique_ptr<noxList> registry;
    QStringList written; ///< address and size of each block
};

void TestRegistryExchange::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(provideDatabase(folder->filePath("nox8.db")));
    database = std::make_unique<noxSql>(folder->filePath("nox8.db"));
    port = std::make_unique<NOXSerialPort>();
    registry = std::make_unique<noxList>(port.get(), database.get());
    registry->setWriteDelay(100);
    written.clear();
    connect(registry.get(), &noxList::sendDevData, this,
            [this](int, const QByteArray *block, quint8 address) {
                written << QString("%1:%2").arg(address).arg(block->size());
            });
}

void TestRegistryExchange::cleanup()
{
    registry.reset();
    database.reset();
    port.reset();
}

noxList::_nox *TestRegistryExchange::add(quint32 type, quint16 number, bool hasOwnIdentity)
{
    noxList::_nox *nox = registry->newNox(device, true);
    nox->opt->setDevType(type);
    nox->opt->setDevNumber(number);
    nox->opt->identValid = hasOwnIdentity;
    nox->opt->identApplyPending = false;
    return nox;
}

void TestRegistryExchange::reply(const QByteArray &block, quint8 address)
{
    QByteArray buffer = block;
    emit port->readyDevReply(device, &buffer, address);
}

QByteArray TestRegistryExchange::storedReferenceData(int row) const
{
    QSqlQuery query(QString("SELECT device_refdata FROM device WHERE device_id=%1").arg(row));
    return query.next() ? query.value(0).toByteArray() : QByteArray("no row");
}

void TestRegistryExchange::appliedBlocksAreWritten_data()
{
    using Image = optionsNOX8;
    QTest::addColumn<quint32>("type");
    QTest::addColumn<bool>("hasOwnIdentity");
    QTest::addColumn<Action>("apply");
    QTest::addColumn<QStringList>("blocks");

    const auto row = [](const char *name, quint32 type, bool hasOwnIdentity,
                        const QStringList &blocks, const Action &apply) {
        QTest::newRow(name) << type << hasOwnIdentity << apply << blocks;
    };
    const Action everything = [](Image &image) {
        image.triggerDevChange();
        image.triggerRefChange();
        image.triggerDevChange();
        image.triggerRefShiftChange();
        emit image.onIdentApply();
        emit image.onSNApply();
    };
    row("newer", 0x22, true, {"6:8", "0:3976", "1:72", "50:8"}, everything);
    row("older", 0x22, false, {"0:3976", "1:72"}, everything);
    row("extended", 0x0960AA0F, true, {"6:8", "0:7944", "1:72", "8:148", "50:20", "52:4"},
        everything);
    row("in the order of the first request", 0x22, true, {"1:72", "6:8", "0:3976"},
        [](Image &image) {
            image.triggerRefChange();
            image.triggerDevChange();
            image.triggerRefChange();
        });
    row("channel, at once", 0x22, true, {"4:12"}, [](Image &image) {
        image.triggerChChange(7);
        image.triggerChChange(8);
    });
    row("unknown model", 0, true, {}, everything);
}

void TestRegistryExchange::appliedBlocksAreWritten()
{
    QFETCH(quint32, type);
    QFETCH(bool, hasOwnIdentity);
    QFETCH(Action, apply);
    QFETCH(QStringList, blocks);
    noxList::_nox &nox = *add(type, 5, hasOwnIdentity);
    QSignalSpy changed(registry.get(), &noxList::onChange);
    apply(*nox.opt);
    QTRY_VERIFY(nox.txCodes.isEmpty());
    QCOMPARE(written, blocks);
    QVERIFY(!nox.txTimer->isActive());
}

void TestRegistryExchange::requestsExtendTheDelay()
{
    noxList::_nox &nox = *add(0x22, 5, true);
    nox.txTimer->setTimerType(Qt::PreciseTimer);
    nox.txTimer->setInterval(100000);
    nox.opt->triggerDevChange();
    QTest::qWait(20);
    const int remaining = nox.txTimer->remainingTime();
    nox.opt->triggerDevChange();
    QVERIFY(nox.txTimer->remainingTime() > remaining);
    registry->sendNoxData(99, optionsNOX8::txConfiguration); // nobody
    QVERIFY(written.isEmpty());
}

void TestRegistryExchange::measurementsWaitForTheWrites()
{
    noxList::_nox &nox = *add(0x22, 5, true);
    nox.qwtIndex = 0;
    QSignalSpy measured(registry.get(), &noxList::onReadMeas);
    emit port->readyDevMeas(device, 20.0, 1, 'B');
    nox.opt->triggerDevChange();
    emit port->readyDevMeas(device, 21.0, 1, 'B');
    QCOMPARE(measured.size(), 1);
    QTRY_VERIFY(nox.txCodes.isEmpty());
    emit port->readyDevMeas(device, 22.0, 1, 'B');
    QCOMPARE(measured.size(), 2);
}

void TestRegistryExchange::recordRemovedWhileWritesWait()
{
    noxList::_nox &nox = *add(0x22, 5, true);
    const int index = nox.index;
    bool isRemoved = false;
    connect(registry.get(), &noxList::onChange, this, [&] {
        if (!std::exchange(isRemoved, true)) // the removal itself is a change too
            registry->rmByIndex(index);
    });
    nox.opt->triggerDevChange();
    QTRY_VERIFY(registry->indices().isEmpty());
    QVERIFY(written.isEmpty());

    // who hears of a removal may let events in for longer than writes wait
    connect(registry.get(), &noxList::onRmNox, this, [] { QTest::qWait(200); });
    noxList::_nox &leaving = *add(0x22, 5, true);
    leaving.opt->triggerRefChange();
    registry->rmByIndex(leaving.index);
    QVERIFY(written.isEmpty());
}

void TestRegistryExchange::recordRemovedWhenAChannelChanges()
{
    noxList::_nox &nox = *add(0x22, 5, true);
    connect(registry.get(), &noxList::onChChange, this,
            [this](int index) { registry->rmByIndex(index); });
    const int row = nox.dbIndex;
    nox.opt->setChMeasType(3, measTemperatureCustom, "K");
    QVERIFY(registry->indices().isEmpty());
    QVERIFY(!database->getDevProperty(row).contains("ch_3-dim"));
}

void TestRegistryExchange::unitsAreStored()
{
    noxList::_nox &nox = *add(0x22, 5, true);
    nox.opt->setChMeasType(3, measTemperatureCustom, "K");
    QCOMPARE(database->getDevProperty(nox.dbIndex).value("ch_3-dim").toString(),
             QStringLiteral("K"));
    nox.opt->setChMeasType(3, measTemperature, "");
    QVERIFY(!database->getDevProperty(nox.dbIndex).contains("ch_3-dim"));
}

void TestRegistryExchange::identityGivesTheRow()
{
    noxList::_nox &nox = *add(0x11, 0, false);
    QCOMPARE(nox.dbIndex, 0);
    nox.opt->setDevNumber(7);
    QCOMPARE(nox.dbIndex, database->findDev(0x11, 7));
    const int row = nox.dbIndex;
    nox.opt->refR[0].value.value = 200.0F;
    emit nox.opt->onIdentApply(); // an older one cannot be told; the row takes what is known
    QCOMPARE(storedReferenceData(row), taken(nox.opt->getRefAllData()));
    QVERIFY(nox.txCodes.isEmpty());
}

void TestRegistryExchange::writtenReferenceDataAreStored()
{
    noxList::_nox &nox = *add(0x0950AA0F, 7, true);
    nox.opt->shiftR[0].value = 0.5F;
    emit port->doneSendDevData(device, {0, QByteArray(3976, 'x'), noxQueryModeNormal, true, false});
    QVERIFY(storedReferenceData(nox.dbIndex).isEmpty());
    emit port->doneSendDevData(device, {1, QByteArray(72, 'x'), noxQueryModeNormal, true, false});
    QCOMPARE(storedReferenceData(nox.dbIndex), taken(nox.opt->getRefAllData()));
    QCOMPARE(storedReferenceData(nox.dbIndex).size(), 72 + 148);
}

void TestRegistryExchange::knownByReferenceData()
{
    optionsNOX8 before;
    before.setDevType(0x21);
    before.refR[0].value.value = 75.0F;
    const QByteArray refdata = taken(before.getRefAllData());
    const int row = database->addDev(0x21, 815, "NOX C");
    QVERIFY(database->updRefData(row, &refdata, 0x21, 815, "NOX C"));

    noxList::_nox &nox = *registry->newNox(device, true);
    reply(refdata, 3);
    QCOMPARE(nox.dbIndex, row);
    QCOMPARE(nox.opt->getDevName(true), QStringLiteral("NOX C № 0815"));
    reply(QByteArray(71, 'x'), 3);
    emit port->readyDevReply(device + 1, nullptr, 3); // nobody's
    QCOMPARE(nox.opt->devNumber, quint16(815));
}

void TestRegistryExchange::changedConfigurationIsNotTheFactoryState()
{
    noxList::_nox &nox = *add(0x22, 5, true);
    nox.opt->setData(taken(nox.opt->getData()), 2); // as it is once it has been read
    const QByteArray factory = taken(nox.opt->getData());
    const QByteArray refdata = taken(nox.opt->getRefAllData());
    const int id = database->setSnapShot(nox.dbIndex, &factory, &refdata, "factory", 0);
    QByteArray changed = factory;
    changed[4 + 4 * 2 + 1] = 0x11;
    reply(changed, 2);
    QCOMPARE(nox.snapShotId, 0);
    QCOMPARE(database->getSnapShotCount(nox.dbIndex), 1);
    reply(factory, 2);
    QCOMPARE(nox.snapShotId, id);
}

void TestRegistryExchange::foundInstrumentIsAdopted()
{
    noxList found(port.get(), database.get());
    noxList::_nox &known = *add(0x22, 5, true);
    known.devIndex = -1;
    noxList::_nox *same = found.newNox(8, false);
    same->opt->setDevType(0x22);
    same->opt->setDevNumber(5);
    QVERIFY(registry->addNox(same));
    QVERIFY(!registry->owns(same));
    QCOMPARE(known.devIndex, 8);
    QCOMPARE(registry->indices().size(), 1);

    noxList::_nox *other = found.newNox(9, false);
    other->opt->setDevType(0x22);
    other->opt->setDevNumber(6);
    QSignalSpy added(registry.get(), &noxList::onAddNox);
    QVERIFY(registry->addNox(other));
    QCOMPARE(added, (QList<QVariantList>{{1, true}}));
    found.detachByDevIndex(9);
    QVERIFY(registry->owns(other));
    QCOMPARE(found.indices().size(), 1);
    QSignalSpy changes(registry.get(), &noxList::onDevChange);
    other->opt->devZakorotka = 0;
    other->opt->setDevZakorotka(1);
    QCOMPARE(changes, (QList<QVariantList>{{1}}));
}

void TestRegistryExchange::fullRegistryAdoptsNobody()
{
    noxList found(port.get(), database.get());
    for (int i = 0; i < 254; ++i)
        QVERIFY(registry->newNox(-1, true));
    noxList::_nox *last = found.newNox(8, false);
    QVERIFY(registry->addNox(last)); // the 255th
    found.detachByDevIndex(8);
    noxList::_nox *tooMany = found.newNox(9, false);
    QVERIFY(!registry->addNox(tooMany));
    QVERIFY(found.owns(tooMany));
}

QTEST_GUILESS_MAIN(TestRegistryExchange)
#include "tst_registryexchange.moc"
