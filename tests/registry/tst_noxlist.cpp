#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "support/instrumentbench.h"

#include <QtTest>

#include <memory>

namespace
{

constexpr quint32 typeB = 0x11; // eight channels
constexpr int plotIndex = 40;

/** The fields that tell who a record is. */
QStringList identityOf(const noxList::_nox &nox)
{
    return {QString::number(nox.index), QString::number(nox.devIndex), nox.portName,
            nox.processed ? "processed" : "held"};
}

} // namespace

Q_DECLARE_METATYPE(optionsNOX8::_chMeasType)

/** The registry over a multiplexer: records without a port, then one with a live instrument. */
class TestNoxList : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void newRecordStartsWithItsDefaults();
    void indexIsOneMoreThanTheLargest();
    void recordsAreFoundByEachIndex();
    void refusesTheRecordAfterTheLast();
    void measurementIsMapped_data();
    void measurementIsMapped();
    void measurementIsHeldBack();
    void processingSwitch();
    void imageChangesCarryTheIndex();
    void imageSetsTheCommandByte();

    void disconnectedRecordStays();
    void removedRecordIsAnnouncedWithItsIndices();
    void liveMeasurementsArriveOnceAfterRemovalAndReturn();
    void lostConnectionIsReportedOnceAndKeepsTheRecord();
    void failedExchangeIsALostConnection();
    void errorOfAnUnknownDeviceIsIgnored();
    void recordRemovedByTheReceiverOfItsError();
    void instrumentOnAnotherPortLeavesNoLinkBehind();

private:
    /** A wired record on the plot for a device. */
    noxList::_nox *onPlot(int devIndex);
    /** Plugs an instrument in under a name and adds it to the multiplexer. */
    int connectInstrument(const QString &portName);
    /** As the multiplexer says it. */
    void fireMeasurement(int devIndex, double value, quint8 ch, char dim);

    noxSql closedDatabase{QString()};
    std::unique_ptr<InstrumentBench> bench;
    std::unique_ptr<NOXSerialPort> port;
    std::unique_ptr<noxList> list;
};

void TestNoxList::init()
{
    bench = std::make_unique<InstrumentBench>();
    port = std::make_unique<NOXSerialPort>();
    LinkTiming timing = shortTiming();
    timing.initDelay = 50;
    port->setLinkTiming(timing);
    list = std::make_unique<noxList>(port.get(), &closedDatabase);
}

void TestNoxList::cleanup()
{
    list.reset();
    port.reset();
    bench.reset();
}

noxList::_nox *TestNoxList::onPlot(int devIndex)
{
    noxList::_nox *nox = list->newNox(devIndex, true);
    nox->qwtIndex = plotIndex + nox->index;
    return nox;
}

int TestNoxList::connectInstrument(const QString &portName)
{
    return bench->add(portName) ? port->addDev(portName) : -1;
}

void TestNoxList::fireMeasurement(int devIndex, double value, quint8 ch, char dim)
{
    emit port->readyDevMeas(devIndex, value, ch, dim);
}

void TestNoxList::newRecordStartsWithItsDefaults()
{
    QSignalSpy added(list.get(), &noxList::onAddNox);
    const noxList::_nox *offline = list->newNox(-1, true);
    QCOMPARE(identityOf(*offline), (QStringList{"0", "-1", "-", "held"}));
    QCOMPARE(offline->dbIndex, 0);
    QCOMPARE(offline->snapShotId, 0);
    QCOMPARE(offline->qwtIndex, -1);
    QCOMPARE(int(offline->mainCh), 0);
    QVERIFY(offline->fileName.isEmpty());
    QVERIFY(!offline->clearOnResume);
    QVERIFY(!offline->recording && offline->recFileName.isEmpty());
    QCOMPARE(offline->recFieldSep, QString(";"));
    QCOMPARE(int(offline->recPrecision), 4);
    QVERIFY(offline->recPointSep.isEmpty());
    QCOMPARE(int(offline->recInterval), 0);
    QCOMPARE(offline->recRow, 0);
    QVERIFY(offline->txCodes.isEmpty());
    QVERIFY(offline->txTimer->isSingleShot() && !offline->txTimer->isActive());
    QCOMPARE(offline->txTimer->interval(), 5000);
    QCOMPARE(offline->opt->devType, 0u);

    const int device = connectInstrument("a");
    const noxList::_nox *online = list->newNox(device, true);
    QCOMPARE(identityOf(*online), (QStringList{"1", "0", "a", "processed"}));
    QCOMPARE(added.size(), 2);
    QCOMPARE(added.at(1), (QVariantList{1, false}));
}

void TestNoxList::indexIsOneMoreThanTheLargest()
{
    for (int i = 0; i < 4; ++i)
        QCOMPARE(list->newNox(-1, true)->index, i);
    list->rmByIndex(1);
    QCOMPARE(list->newNox(-1, true)->index, 4);
    list->rmByIndex(4);
    QCOMPARE(list->newNox(-1, false)->index, 4);
    QCOMPARE(list->indices(), (QList<int>{0, 2, 3, 4}));
}

void TestNoxList::recordsAreFoundByEachIndex()
{
    list->newNox(-1, true);
    noxList::_nox *nox = onPlot(7);
    nox->dbIndex = 12;

    QCOMPARE(list->getNoxByIndex(1), nox);
    QCOMPARE(list->getNoxByDevIndex(7), nox);
    QCOMPARE(list->getNoxByQwtIndex(plotIndex + 1), nox);
    QCOMPARE(list->getIndexByDev(7), 1);
    QCOMPARE(list->getQWTIndex(1), plotIndex + 1);
    QCOMPARE(list->getDBIndex(1), 12);
    QVERIFY(list->isDevIndex(7));

    QVERIFY(!list->getNoxByIndex(2));
    QVERIFY(!list->getNoxByDevIndex(8));
    QVERIFY(!list->getNoxByQwtIndex(1));
    QCOMPARE(list->getIndexByDev(8), -1);
    QCOMPARE(list->getQWTIndex(2), -1);
    QCOMPARE(list->getDBIndex(2), -1);
    QVERIFY(!list->isDevIndex(8));
}

void TestNoxList::refusesTheRecordAfterTheLast()
{
    for (int i = 0; i < 254; ++i)
        QVERIFY(list->newNox(-1, true));
    QSignalSpy added(list.get(), &noxList::onAddNox);
    QVERIFY(!list->newNox(-1, true));
    QCOMPARE(added.size(), 1);
    QCOMPARE(added.at(0), (QVariantList{-1, false}));
    list->rmByIndex(100);
    QVERIFY(list->newNox(-1, true));
}

void TestNoxList::measurementIsMapped_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<optionsNOX8::_chMeasType>("measType");
    QTest::addColumn<int>("onOff");
    QTest::addColumn<int>("ch");
    QTest::addColumn<char>("dim");
    QTest::addColumn<QString>("unit");

    const auto custom = measTemperatureCustom;
    const auto plain = measTemperature;
    QTest::newRow("ohm") << typeB << plain << 1 << 2 << 'A' << "Ω";
    QTest::newRow("degree") << typeB << plain << 1 << 2 << 'B' << "°С";
    QTest::newRow("millivolt") << typeB << plain << 1 << 2 << 'C' << "мВ";
    QTest::newRow("unknown letter") << typeB << plain << 1 << 2 << 'Z' << "-";
    QTest::newRow("user's unit") << typeB << custom << 1 << 2 << 'B' << "bar";
    QTest::newRow("user's unit, channel off") << typeB << custom << 0 << 2 << 'B' << "°С";
    QTest::newRow("first channel of an unknown model") << 0u << plain << 1 << 1 << 'B' << "°С";
    QTest::newRow("channel beyond the model") << typeB << custom << 1 << 9 << 'A' << "Ω";
    QTest::newRow("last channel number") << typeB << custom << 1 << 255 << 'A' << "Ω";
}

void TestNoxList::measurementIsMapped()
{
    QFETCH(quint32, type);
    QFETCH(optionsNOX8::_chMeasType, measType);
    QFETCH(int, onOff);
    QFETCH(int, ch);
    QFETCH(char, dim);
    QFETCH(QString, unit);
    noxList::_nox *nox = onPlot(3);
    nox->processed = true;
    nox->opt->setDevType(type);
    for (quint8 i = 0; i < nox->opt->getDevChCount(); ++i) {
        nox->opt->setChMeasType(i, measType, "bar");
        nox->opt->setChOnOff(i, optionsNOX8::_chOnOff(onOff));
    }
    QSignalSpy measured(list.get(), &noxList::onReadMeas);
    fireMeasurement(3, 20.125, quint8(ch), dim);
    QCOMPARE(measured.size(), 1);
    QCOMPARE(measured.at(0).at(0).toInt(), nox->index);
    QCOMPARE(measured.at(0).at(1).toDouble(), 20.125);
    QCOMPARE(measured.at(0).at(2).toInt(), ch - 1);
    QCOMPARE(measured.at(0).at(3).toString(), unit);
}

void TestNoxList::measurementIsHeldBack()
{
    noxList::_nox *nox = onPlot(3);
    QSignalSpy measured(list.get(), &noxList::onReadMeas);
    const auto passes = [&] {
        const int before = measured.size();
        fireMeasurement(3, 20.0, 1, 'B');
        return measured.size() > before;
    };
    QVERIFY(passes());
    nox->qwtIndex = -1;
    QVERIFY2(!passes(), "not on the plot");
    nox->qwtIndex = 0;
    nox->processed = false;
    QVERIFY2(!passes(), "not processed");
    nox->processed = true;
    nox->txCodes = {optionsNOX8::txConfiguration};
    QVERIFY2(!passes(), "a write is pending");
    nox->txCodes.clear();
    QVERIFY(passes());
    fireMeasurement(4, 20.0, 1, 'B');
    QCOMPARE(measured.size(), 2);
}

void TestNoxList::processingSwitch()
{
    const noxList::_nox *nox = onPlot(3);
    QSignalSpy changed(list.get(), &noxList::onChange);
    QSignalSpy cleared(list.get(), &noxList::doClearQwt);
    list->setProccesed(0, true, true); // it is on already
    list->setProccesed(9, false, true);
    QCOMPARE(changed.size(), 0);

    list->setProccesed(0, false, true);
    QVERIFY(!nox->processed && nox->clearOnResume);
    list->setProccesed(0, false, false); // no second time, whatever the flag
    QVERIFY(nox->clearOnResume);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(cleared.size(), 0);

    list->setProccesed(0, true, false);
    QVERIFY(nox->processed && !nox->clearOnResume);
    QCOMPARE(cleared.size(), 1);
    QCOMPARE(cleared.at(0).at(0).toInt(), plotIndex);

    list->setProccesed(0, false, false);
    list->setProccesed(0, true, true);
    QCOMPARE(cleared.size(), 1);
    QCOMPARE(changed.size(), 4);
}

void TestNoxList::imageChangesCarryTheIndex()
{
    list->newNox(-1, true);
    const noxList::_nox *nox = list->newNox(-1, true);
    QSignalSpy device(list.get(), &noxList::onDevChange);
    QSignalSpy identity(list.get(), &noxList::onIdentChange);
    QSignalSpy references(list.get(), &noxList::onRefChange);
    QSignalSpy channel(list.get(), &noxList::onChChange);
    nox->opt->setDevType(typeB);
    nox->opt->setChOnOff(5, 0);
    for (const QSignalSpy *spy : {&device, &identity, &references}) {
        QCOMPARE(spy->size(), 1);
        QCOMPARE(spy->at(0).at(0).toInt(), 1);
    }
    QCOMPARE(channel.size(), 1);
    QCOMPARE(channel.at(0).at(0).toInt(), 1);
    QCOMPARE(channel.at(0).at(1).toInt(), 5);
}

void TestNoxList::imageSetsTheCommandByte()
{
    const int device = connectInstrument("a");
    QSignalSpy command(port.get(), &NOXSerialPort::onSetDevType);
    for (bool wire : {false, true}) {
        command.clear();
        const noxList::_nox *nox = list->newNox(device, wire);
        nox->opt->setDevType(typeB);
        QVERIFY(!command.isEmpty());
        QCOMPARE(command.last().at(0).toInt(), device);
        QCOMPARE(int(command.last().at(1).value<char>()), 1);
    }
}

void TestNoxList::disconnectedRecordStays()
{
    const int device = connectInstrument("a");
    const noxList::_nox *nox = onPlot(device);
    QSignalSpy changed(list.get(), &noxList::onChange);
    QSignalSpy errors(list.get(), &noxList::onDevError);
    list->disConnByIndex(nox->index);
    QCOMPARE(nox->devIndex, -1);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(port->getPortName(device), QString("-"));
    list->disConnByIndex(nox->index); // nothing left to end
    list->disConnByIndex(9);
    QCOMPARE(list->indices(), QList<int>{0});
    QCOMPARE(errors.size(), 0);
    QCOMPARE(port->addDev("a"), device);
}

void TestNoxList::removedRecordIsAnnouncedWithItsIndices()
{
    const int device = connectInstrument("a");
    onPlot(-1);
    onPlot(device);
    QSignalSpy removed(list.get(), &noxList::onRmNox);
    list->rmByIndex(1);
    list->rmByIndex(1);
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed.at(0), (QVariantList{1, plotIndex + 1}));
    QCOMPARE(port->getPortName(device), QString("-"));
    QCOMPARE(list->indices(), QList<int>{0});
}

void TestNoxList::liveMeasurementsArriveOnceAfterRemovalAndReturn()
{
    QSignalSpy measured(list.get(), &noxList::onReadMeas);
    QSignalSpy streamed(port.get(), &NOXSerialPort::readyDevMeas);
    const int device = connectInstrument("a");
    for (int round = 0; round < 3; ++round) {
        const noxList::_nox *nox = onPlot(device);
        const noxList::_nox *other = onPlot(-1);
        measured.clear();
        streamed.clear();
        QTRY_VERIFY(measured.size() > 8);
        QCOMPARE(measured.size(), streamed.size());
        for (const QVariantList &arguments : measured)
            QVERIFY(isSteadyMeasurement({arguments.at(2).toInt() + 1, arguments.at(1).toDouble()}));
        list->rmByIndex(nox->index);
        list->rmByIndex(other->index);
        QCOMPARE(port->addDev("a"), device);
        // nobody listens while the registry is empty
        measured.clear();
        fireMeasurement(device, 20.0, 1, 'B');
        QCOMPARE(measured.size(), 0);
    }
}

void TestNoxList::lostConnectionIsReportedOnceAndKeepsTheRecord()
{
    const int device = connectInstrument("a");
    const int neighbour = connectInstrument("b");
    const noxList::_nox *nox = onPlot(device);
    onPlot(neighbour);
    nox->opt->blockSignals(true);
    QSignalSpy measured(list.get(), &noxList::onReadMeas);
    QSignalSpy errors(list.get(), &noxList::onDevError);
    QSignalSpy removed(list.get(), &noxList::onRmNox);
    QTRY_VERIFY(measured.size() > 8);

    bench->host.unplug("a");
    QTRY_COMPARE(errors.size(), 1);
    QCOMPARE(errors.at(0).at(0).toInt(), nox->index);
    QCOMPARE(errors.at(0).at(1).toInt(), 200);
    const QString text = errors.at(0).at(2).toString();
    QVERIFY2(text == "Обрыв связи [код 247]" || text == "Обрыв связи [код 246]", qPrintable(text));
    QCOMPARE(nox->devIndex, -1);
    QVERIFY(!nox->opt->signalsBlocked());
    QCOMPARE(list->indices(), (QList<int>{0, 1}));

    const int before = measured.size();
    QTRY_VERIFY(measured.size() > before + 8);
    QCOMPARE(errors.size(), 1);
    QCOMPARE(removed.size(), 0);
    QVERIFY(list->isDevIndex(neighbour));
}

void TestNoxList::failedExchangeIsALostConnection()
{
    const int device = connectInstrument("a");
    const noxList::_nox *nox = onPlot(device);
    FaultPlan deaf;
    deaf.ignoredAddressings = FaultPlan::always;
    bench->host.setFaults("a", deaf);
    QSignalSpy errors(list.get(), &noxList::onDevError);
    port->sendDevQuery(device, 3, 72, false, noxQueryModeOnce);
    port->sendDevQuery(device, 2, 3976, false, noxQueryModeOnce);
    QTRY_COMPARE(errors.size(), 1);
    QCOMPARE(errors.at(0).at(2).toString(), QString("Обрыв связи [код 110]"));
    QCOMPARE(nox->devIndex, -1);
    QTest::qWait(300);
    QCOMPARE(errors.size(), 1);
    QVERIFY(port->isReadAllQuery());
}

void TestNoxList::errorOfAnUnknownDeviceIsIgnored()
{
    onPlot(3);
    QSignalSpy errors(list.get(), &noxList::onDevError);
    QSignalSpy changed(list.get(), &noxList::onChange);
    emit port->onDevError(4, quint16(247));
    QCOMPARE(errors.size() + changed.size(), 0);
    // while the first is handled the same error comes again, as a dying port may repeat it
    connect(list.get(), &noxList::onChange, this,
            [this] { emit port->onDevError(3, quint16(247)); });
    emit port->onDevError(3, quint16(247));
    QCOMPARE(errors.size(), 1);
    QCOMPARE(changed.size(), 1);
}

void TestNoxList::recordRemovedByTheReceiverOfItsError()
{
    const int device = connectInstrument("a");
    onPlot(device);
    QSignalSpy removed(list.get(), &noxList::onRmNox);
    connect(list.get(), &noxList::onDevError, this, [this](int index) { list->rmByIndex(index); });
    port->sendDevQuery(device, 3, 72);
    bench->host.unplug("a");
    QTRY_COMPARE(removed.size(), 1);
    QVERIFY(list->indices().isEmpty());
    QTRY_COMPARE(port->getPortName(device), QString("-"));
}

void TestNoxList::instrumentOnAnotherPortLeavesNoLinkBehind()
{
    noxList::_nox *nox = onPlot(connectInstrument("a"));
    noxList found(port.get(), &closedDatabase);
    noxList::_nox *same = found.newNox(connectInstrument("b"), false);
    for (const noxList::_nox *record : {nox, same}) {
        record->opt->setDevType(typeB);
        record->opt->setDevNumber(5);
    }
    const int former = nox->devIndex;
    QVERIFY(list->addNox(same));
    QCOMPARE(nox->portName, QString("b"));
    QTRY_COMPARE(port->devices(), QList<int>{nox->devIndex});
    QVERIFY(nox->devIndex != former);

    list->setWriteDelay(0);
    list->sendNoxData(onPlot(-1)->index, optionsNOX8::txConfiguration);
    list.reset(); // the write would begin while the link is ending
    QVERIFY(port->devices().isEmpty());
}

QTEST_GUILESS_MAIN(TestNoxList)
#include "tst_noxlist.moc"
