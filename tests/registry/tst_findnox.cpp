#include "device/featurenox8.h"
#include "registry/findnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "support/instrumentbench.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>

Q_DECLARE_METATYPE(int FaultPlan::*)

/** The discovery dialog over a real multiplexer, with simulated instruments on virtual ports. */
class TestFindNox : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void instrumentsWithAnIdentityConnectByThemselves();
    void olderInstrumentIsKnownByItsReferenceData();
    void olderInstrumentWaitsForTheOperator();
    void instrumentWithoutAModelIsNamedByTheOperator();
    void skippedWhenUnknown();
    void deadPortsAreDropped_data();
    void deadPortsAreDropped();
    void noPorts();
    void cancelledSearchLeavesNoWorker();
    void oneInstrumentIsSearchedFor();
    void measuringInstrumentIsNotDisturbed();
    void lostInstrumentContinuesUnderItsIndex();
    void waitingInstrumentThatGoesTakesItsRow();
    void lostDuringTheScanItGoesAlone_data();
    void lostDuringTheScanItGoesAlone();
    void identificationThatIsNone();
    void wrongModelIsReadAgain();
    void instrumentOnAnotherPortIsMoved();
    void destroyedWhileItSearches();
    void searchedForAgainWhileACancelledSearchEnds();
    void cancelledWhileItClears();
    void configurationIsKeptOnFirstSight_data();
    void configurationIsKeptOnFirstSight();
    void appliedChangesReachTheMemoryOnce();

private:
    void add(const QString &port, const QString &model, quint16 number, bool isOlder = false,
             int faults = 0);
    bool waitUntilClosed() const;
    bool waitUntilListed() const;
    bool waitUntilRead(int index) const;
    noxList::_nox *only() const;
    template<typename Widget>
    Widget *find(const char *name) const
    {
        return dialog->findChild<Widget *>(QString::fromLatin1(name));
    }
    /** Clicks on the number of a row: its editor; null when there is none. */
    QLineEdit *startTyping(int row) const
    {
        const QRect cell = table()->visualItemRect(table()->item(row, 2));
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, cell.center());
        return table()->viewport()->findChild<QLineEdit *>();
    }
    QTableWidget *table() const { return find<QTableWidget>("newDevTable"); }
    QCheckBox *box(int row) const { return table()->cellWidget(row, 3)->findChild<QCheckBox *>(); }
    bool isMarked(int row, int column) const
    {
        return table()->item(row, column)->background().style() != Qt::NoBrush;
    }
    bool isNumberEditable(int row) const
    {
        return table()->item(row, 2)->flags().testFlag(Qt::ItemIsEditable);
    }

    LinkTiming timing;
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<InstrumentBench> bench;
    std::unique_ptr<noxSql> database;
    std::unique_ptr<NOXSerialPort> port;
    std::unique_ptr<noxList> registry;
    std::unique_ptr<findNox> dialog;
};

namespace
{

constexpr int patienceMs = 30000;

} // namespace

void TestFindNox::init()
{
    QLocale::setDefault(QLocale::English); // as the window does
    folder = std::make_unique<QTemporaryDir>();
    bench = std::make_unique<InstrumentBench>();
    QVERIFY(provideDatabase(folder->filePath("nox8.db")));
    database = std::make_unique<noxSql>(folder->filePath("nox8.db"));
    port = std::make_unique<NOXSerialPort>();
    timing = shortTiming();
    timing.startBase = 5;
    timing.initDelay = 50;
    timing.queueDelay = 5;
    timing.attemptDelay = 50;
    port->setLinkTiming(timing);
    registry = std::make_unique<noxList>(port.get(), database.get());
    registry->setWriteDelay(300);
    dialog = std::make_unique<findNox>(nullptr, registry.get());
    dialog->setStyleSheet("QLineEdit { selection-background-color: teal; }"); // has its own too
}

void TestFindNox::cleanup()
{
    dialog.reset();
    registry.reset();
    database.reset();
    port.reset();
    bench.reset();
}

void TestFindNox::add(const QString &portName, const QString &model, quint16 number, bool isOlder,
                      int faults)
{
    SimulatedInstrumentOptions options = bench->steadyInstrument();
    options.identity.modelName = model;
    options.identity.serialNumber = number;
    options.identity.answersIdentification = !isOlder;
    options.faults.ignoredAddressings = faults;
    QVERIFY(bench->add(portName, options));
}

bool TestFindNox::waitUntilClosed() const
{
    return QTest::qWaitFor([this] { return !dialog->isVisible(); }, patienceMs);
}

bool TestFindNox::waitUntilListed() const
{
    return QTest::qWaitFor([this] { return table()->isEnabled() && table()->rowCount() > 1; },
                           patienceMs);
}

/** Until the configuration in the registry is that of the instrument. */
bool TestFindNox::waitUntilRead(int index) const
{
    const auto isRead = [this, index] {
        const noxList::_nox *nox = registry->getNoxByIndex(index);
        return nox && taken(nox->opt->getData()) == bench->host.block(nox->portName, 2) &&
               port->isReadAllQuery();
    };
    return QTest::qWaitFor(isRead, patienceMs);
}

/** The one record of the registry; null unless there is exactly one. */
noxList::_nox *TestFindNox::only() const
{
    const auto indices = registry->indices();
    return indices.size() == 1 ? registry->getNoxByIndex(indices.first()) : nullptr;
}

void TestFindNox::instrumentsWithAnIdentityConnectByThemselves()
{
    add("A", "NOX CM1 rev.4", 4071);
    add("B", "NOX B", 1234);
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QCOMPARE(registry->indices().size(), 2);
    QSet<QString> found;
    for (const int index : registry->indices()) {
        QVERIFY(waitUntilRead(index));
        const noxList::_nox &nox = *registry->getNoxByIndex(index);
        found << nox.portName + ' ' + nox.opt->getDevName(true);
        QVERIFY(nox.dbIndex >= 1);
        QVERIFY(nox.opt->identValid);
        // nothing is written to an instrument only because it was found
        QVERIFY(nox.txCodes.isEmpty() && !nox.txTimer->isActive());
        QCOMPARE(bench->addressings(nox.portName, 50), 0);
    }
    QCOMPARE(found, (QSet<QString>{"A NOX CM1 rev.4 № 4071", "B NOX B № 1234"}));
    QCOMPARE(port->devices().size(), 2);
}

void TestFindNox::olderInstrumentIsKnownByItsReferenceData()
{
    add("A", "NOX C", 1, true);
    const QByteArray refdata = bench->host.block("A", 3).left(64) + QByteArray(8, '\0');
    const int row = database->addDev(0x21, 815, "NOX C № 0815");
    QVERIFY(database->updRefData(row, &refdata, 0x21, 815, "NOX C № 0815"));
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QVERIFY(only() && waitUntilRead(only()->index));
    QCOMPARE(only()->dbIndex, row);
    QCOMPARE(only()->opt->getDevName(true), QStringLiteral("NOX C № 0815"));
}

void TestFindNox::olderInstrumentWaitsForTheOperator()
{
    add("A", "NOX D", 1, true);
    dialog->find(true);
    QVERIFY(waitUntilListed());
    QCOMPARE(table()->item(1, 0)->text(), QStringLiteral("A"));
    const auto *models = qobject_cast<QComboBox *>(table()->cellWidget(1, 1));
    QCOMPARE(models->count(), 1);
    QCOMPARE(models->currentText(), QStringLiteral("NOX D"));
    QVERIFY(box(1)->isChecked() && isNumberEditable(1) && isMarked(1, 2));
    QVERIFY(registry->indices().isEmpty());

    QLineEdit *const editor = startTyping(1);
    QTest::keyClicks(editor, "no 65,536\r");
    QCOMPARE(editor->text(), QStringLiteral("65536"));
    QCOMPARE(editor->grab().toImage().pixelColor(2, 2), table()->item(1, 2)->background().color());
    find<QPushButton>("connectBtn")->click();
    QVERIFY(!dialog->isVisible());
    QVERIFY(registry->indices().isEmpty()); // without a number it is nobody
    QVERIFY(port->devices().isEmpty());

    dialog->find(true);
    QVERIFY(waitUntilListed());
    QTest::keyClicks(startTyping(1), "2218000"); // as much of it as is a number up to 65535
    find<QPushButton>("connectBtn")->click();
    QVERIFY(only() && waitUntilRead(only()->index));
    QCOMPARE(only()->opt->getDevName(true), QStringLiteral("NOX D № 22180"));
    QCOMPARE(database->findDev(0x31, 22180), only()->dbIndex);
}

void TestFindNox::instrumentWithoutAModelIsNamedByTheOperator()
{
    add("A", "NOX CM1", 1, true);
    dialog->find(true);
    QVERIFY(waitUntilListed());
    auto *const models = qobject_cast<QComboBox *>(table()->cellWidget(1, 1));
    QCOMPARE(models->count(), 7);
    QVERIFY(!box(1)->isChecked() && !box(1)->isEnabled() && !isNumberEditable(1));
    QCOMPARE(box(1)->toolTip(), QStringLiteral("Выберите модель прибора"));
    models->setCurrentText("NOX CM1");
    QVERIFY(box(1)->isEnabled() && isNumberEditable(1));
    QVERIFY(isMarked(1, 2) && isMarked(1, 3));
    models->setCurrentText("--");
    QVERIFY(!box(1)->isEnabled() && !isNumberEditable(1));
    QVERIFY(!isMarked(1, 2) && !isMarked(1, 3));

    // by keyboard alone
    QTest::keyClick(table(), Qt::Key_F4);
    QWidget *const list = models->view();
    QTest::keyClicks(list, "NOX CM1");
    QTest::keyClick(list, Qt::Key_Return);
    QCOMPARE(models->currentText(), QStringLiteral("NOX CM1"));
    QTest::keyClick(table(), Qt::Key_9);
    QTest::keyClicks(dialog->focusWidget(), "9\r");
    QTRY_VERIFY(!isMarked(1, 2));
    QTest::keyClick(table(), Qt::Key_Space);
    QVERIFY(box(1)->isChecked() && !isMarked(1, 3));
    QTest::keyClick(table(), Qt::Key_Tab);
    QCOMPARE(dialog->focusWidget(), find<QCheckBox>("skipNoneCB"));
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    QVERIFY(only() && waitUntilRead(only()->index));
    QCOMPARE(only()->opt->getDevChCount(), quint8(16));
    QCOMPARE(database->findDev(0x41, 99), only()->dbIndex);
}

void TestFindNox::skippedWhenUnknown()
{
    add("A", "NOX CM1", 1, true);
    find<QCheckBox>("skipNoneCB")->setChecked(true);
    QCOMPARE(database->getAppProperty("find_skip_unknown").toBool(), true);
    dialog->find();
    QVERIFY(waitUntilClosed());
    QVERIFY(registry->indices().isEmpty() && port->devices().isEmpty());
}

void TestFindNox::deadPortsAreDropped_data()
{
    QTest::addColumn<int FaultPlan::*>("fault");
    QTest::newRow("deaf") << &FaultPlan::ignoredAddressings;
    QTest::newRow("no instrument: it echoes anything") << &FaultPlan::wrongAddressEchoes;
    QTest::newRow("silent in the middle of a block") << &FaultPlan::silentDialogues;
}

void TestFindNox::deadPortsAreDropped()
{
    QFETCH(int FaultPlan::*, fault);
    SimulatedInstrumentOptions options = bench->steadyInstrument();
    options.faults.*fault = FaultPlan::always;
    options.faults.silentAfterBlocks = 1;
    QVERIFY(bench->add("A", options));
    add("B", "NOX B", 2);
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QVERIFY(only());
    QCOMPARE(only()->portName, QStringLiteral("B"));
    QCOMPARE(port->devices(), QList<int>{only()->devIndex});
}

void TestFindNox::noPorts()
{
    dialog->find(true);
    QVERIFY(dialog->isVisible());
    const auto labels = dialog->findChildren<QLabel *>();
    QVERIFY(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
        return label->isVisible() && label->text() == "Нет доступных портов";
    }));
    QVERIFY(find<QPushButton>("scanBtn")->isEnabled());
    QVERIFY(!find<QPushButton>("connectBtn")->isEnabled());
    add("A", "NOX B", 5);
    find<QPushButton>("scanBtn")->click();
    QVERIFY(waitUntilClosed());
    QVERIFY(only());
}

void TestFindNox::cancelledSearchLeavesNoWorker()
{
    add("A", "NOX B", 1);
    add("B", "NOX B", 2, false, FaultPlan::always);
    dialog->find(true);
    QCOMPARE(port->devices().size(), 2);
    find<QPushButton>("cancelBtn")->click();
    QVERIFY(!dialog->isVisible());
    QVERIFY(port->devices().isEmpty() && registry->indices().isEmpty());
}

void TestFindNox::oneInstrumentIsSearchedFor()
{
    add("A", "NOX B", 1);
    add("B", "NOX B", 2);
    add("C", "NOX D", 3);
    dialog->find(true, 0x11, 2);
    QVERIFY(!find<QCheckBox>("skipNoneCB")->isEnabled());
    QVERIFY(waitUntilClosed());
    QVERIFY(only());
    QCOMPARE(only()->opt->devNumber, quint16(2));
    QCOMPARE(port->devices(), QList<int>{only()->devIndex});
}

void TestFindNox::measuringInstrumentIsNotDisturbed()
{
    add("A", "NOX B", 1);
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QVERIFY(only() && waitUntilRead(only()->index));
    only()->qwtIndex = 0;
    QSignalSpy measured(registry.get(), &noxList::onReadMeas);
    QSignalSpy lost(registry.get(), &noxList::onDevError);
    QVERIFY(measured.wait(patienceMs));
    add("B", "NOX B", 2, false, FaultPlan::always);
    measured.clear();
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QVERIFY(measured.size() >= 3);
    QVERIFY(lost.isEmpty() && only() && only()->devIndex >= 0);
}

void TestFindNox::lostInstrumentContinuesUnderItsIndex()
{
    add("A", "NOX B", 1);
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QVERIFY(only() && waitUntilRead(only()->index));
    noxList::_nox *const nox = only();
    nox->qwtIndex = 7;
    QSignalSpy lost(registry.get(), &noxList::onDevError);
    bench->host.unplug("A");
    QVERIFY(lost.wait(patienceMs));
    QCOMPARE(nox->devIndex, -1);

    bench->host.plugIn("A");
    dialog->find(true, nox->opt->devType, nox->opt->devNumber);
    QVERIFY(waitUntilClosed());
    QCOMPARE(only(), nox); // the same record goes on
    QVERIFY(nox->devIndex >= 0);
    QCOMPARE(nox->qwtIndex, 7);
    QVERIFY(waitUntilRead(nox->index));
    QSignalSpy measured(registry.get(), &noxList::onReadMeas);
    QVERIFY(measured.wait(patienceMs));
    QCOMPARE(measured.first().first().toInt(), nox->index);
}

void TestFindNox::waitingInstrumentThatGoesTakesItsRow()
{
    add("A", "NOX D", 1, true);
    add("B", "NOX D", 1, true);
    dialog->find(true);
    QVERIFY(waitUntilListed());
    QCOMPARE(table()->rowCount(), 3);
    QWidget *const editor = startTyping(table()->item(1, 0)->text() == "B" ? 1 : 2);
    QVERIFY(editor);
    QTest::keyClicks(editor, "22");
    bench->host.unplug("A");
    QTRY_COMPARE_WITH_TIMEOUT(table()->rowCount(), 2, patienceMs);
    QTest::keyClicks(editor, "7");
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(table()->item(1, 0)->text(), QStringLiteral("B"));
    QTRY_COMPARE(table()->item(1, 2)->text(), QStringLiteral("227"));

    add("C", "NOX B", 2); // takes the device that has become free
    QVERIFY(registry->newNox(port->addDev("C"), true));
    bench->host.unplug("B");
    QVERIFY(waitUntilClosed());
    QVERIFY(only() && port->devices() == QList<int>{only()->devIndex});
}

void TestFindNox::lostDuringTheScanItGoesAlone_data()
{
    QTest::addColumn<bool>("isOlder");
    QTest::addColumn<quint16>("number");
    QTest::newRow("unidentified") << true << quint16(0);
    QTest::newRow("set aside by the number") << false << quint16(3);
}

void TestFindNox::lostDuringTheScanItGoesAlone()
{
    QFETCH(bool, isOlder);
    QFETCH(quint16, number);
    add("A", "NOX D", 1, isOlder);
    add("B", "NOX B", 2);
    add("C", "NOX B", 3, isOlder, isOlder ? 8 : 5);
    timing.initDelay = 300; // so that it answers when the others have been dealt with
    port->setLinkTiming(timing);
    const auto *const progress = find<QProgressBar>("progressBar");
    dialog->find(true, number ? 0x11 : 0, number);
    QTRY_COMPARE_WITH_TIMEOUT(progress->value(), 2, patienceMs);
    QCOMPARE(progress->toolTip(), QStringLiteral("Ожидается ответ: C"));
    const int rows = table()->rowCount();
    bench->host.unplug("A");
    QTRY_COMPARE_WITH_TIMEOUT(port->devices().size(), 2, patienceMs);
    QVERIFY(dialog->isVisible());
    QCOMPARE(table()->rowCount(), rows);
    if (isOlder) {
        QVERIFY(waitUntilListed());
        QCOMPARE(table()->item(1, 0)->text(), QStringLiteral("C"));
    } else {
        QVERIFY(waitUntilClosed());
    }
    QVERIFY(only());
    QCOMPARE(only()->portName, isOlder ? QStringLiteral("B") : QStringLiteral("C"));
}

void TestFindNox::identificationThatIsNone()
{
    add("A", "NOX B", 1, false, FaultPlan::always);
    dialog->find();
    QByteArray rubbish(8, '\x55');
    emit port->readyDevReply(port->devices().first(), &rubbish, 51);
    QVERIFY(waitUntilClosed());
    QVERIFY(port->devices().isEmpty() && registry->indices().isEmpty());
}

void TestFindNox::wrongModelIsReadAgain()
{
    add("A", "NOX CM1", 77);
    noxList::_nox *const nox = registry->newNox(port->addDev("A"), true);
    nox->opt->setDevType(0x11); // as somebody believed
    registry->getOptFromNox(nox->index);
    QVERIFY(waitUntilRead(nox->index));
    QCOMPARE(nox->opt->devType, 0x41u);
    const QByteArray data = taken(nox->opt->getData());
    const QByteArray refdata = taken(nox->opt->getRefAllData());
    QCOMPARE(database->getSnapShotCount(nox->dbIndex), 1);
    QCOMPARE(database->findSnapShot(&data, &refdata, nox->dbIndex).size(), 1);
}

void TestFindNox::instrumentOnAnotherPortIsMoved()
{
    add("A", "NOX B", 1);
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QVERIFY(only() && waitUntilRead(only()->index));
    const int former = only()->devIndex;
    add("B", "NOX B", 1);
    connect(registry.get(), &noxList::onChange, dialog.get(), [this, former] {
        if (only()->devIndex != former && dialog->isVisible())
            QTimer::singleShot(0, find<QPushButton>("cancelBtn"), &QPushButton::click);
    });
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QTRY_COMPARE_WITH_TIMEOUT(port->devices(), QList<int>{only()->devIndex}, patienceMs);
    QVERIFY(only()->devIndex != former);
}

void TestFindNox::destroyedWhileItSearches()
{
    add("A", "NOX CM1", 1, true);
    add("B", "NOX B", 2, false, FaultPlan::always);
    dialog->find();
    QSignalSpy replies(port.get(),
                       QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply));
    QVERIFY(replies.wait(patienceMs));
    const QList<int> devices = port->devices();
    QTimer::singleShot(0, port.get(), [this, devices] {
        QByteArray block(72, '\0');
        for (const int device : devices)
            emit port->readyDevReply(device, &block, 3);
    });
    dialog.reset();
    QVERIFY(port->devices().isEmpty());
}

void TestFindNox::searchedForAgainWhileACancelledSearchEnds()
{
    add("A", "NOX B", 1);
    add("B", "NOX B", 2);
    dialog->find(true);
    QTimer::singleShot(0, dialog.get(), [this] { dialog->find(true); });
    find<QPushButton>("cancelBtn")->click();
    QVERIFY(waitUntilClosed());
    QCOMPARE(registry->indices().size(), 2);
}

void TestFindNox::cancelledWhileItClears()
{
    add("A", "NOX CM1", 1, true);
    dialog->find(true);
    QVERIFY(waitUntilListed());
    QTimer::singleShot(0, find<QPushButton>("cancelBtn"), &QPushButton::click);
    find<QPushButton>("scanBtn")->click();
    QVERIFY(!dialog->isVisible());
    QVERIFY(port->devices().isEmpty());
}

void TestFindNox::configurationIsKeptOnFirstSight_data()
{
    QTest::addColumn<QString>("model");
    QTest::newRow("with zero shifts") << "NOX CM rev.4";
    QTest::newRow("without") << "NOX B";
}

void TestFindNox::configurationIsKeptOnFirstSight()
{
    QFETCH(QString, model);
    add("A", model, 5);
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QVERIFY(only() && waitUntilRead(only()->index));
    const int dbIndex = only()->dbIndex;
    QTRY_VERIFY_WITH_TIMEOUT(database->getSnapShotCount(dbIndex) == 1, patienceMs);
    const QByteArray data = taken(only()->opt->getData());
    const QByteArray refdata = taken(only()->opt->getRefAllData());
    const auto stored = database->findSnapShot(&data, &refdata, dbIndex);
    QCOMPARE(stored.size(), 1);
    QVERIFY(stored.first().factory);
    QCOMPARE(stored.first().info, QStringLiteral("Заводская настройка"));

    registry->getOptFromNox(only()->index); // the second time it is found
    QTRY_COMPARE_WITH_TIMEOUT(only()->snapShotId, stored.first().id, patienceMs);
    QVERIFY(waitUntilRead(only()->index));
    QCOMPARE(database->getSnapShotCount(dbIndex), 1);
}

void TestFindNox::appliedChangesReachTheMemoryOnce()
{
    add("A", "NOX CM rev.4", 5);
    dialog->find(true);
    QVERIFY(waitUntilClosed());
    QVERIFY(only() && waitUntilRead(only()->index));
    noxList::_nox &nox = *only();
    QTRY_VERIFY_WITH_TIMEOUT(nox.txCodes.isEmpty() && port->isSendAllData(), patienceMs);
    bench->host.clearExchanges("A");

    nox.opt->setChCurrent(2, 5);
    nox.opt->refR[1].value.value = 199.5F;
    nox.opt->triggerDevChange();
    nox.opt->triggerRefChange();
    nox.opt->triggerDevChange();
    QVERIFY(!nox.txCodes.isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(nox.txCodes.isEmpty() && port->isSendAllData(), patienceMs);
    QCOMPARE(bench->host.block("A", 2), taken(nox.opt->getData()));
    QCOMPARE(bench->host.block("A", 3).left(64), taken(nox.opt->getRefData(true)).left(64));
    QVector<int> written;
    for (const ExchangeEvent &event : bench->host.exchanges("A"))
        if (event.kind == ExchangeEvent::WriteCompleted)
            written << event.address;
    QCOMPARE(written, (QVector<int>{6, 0, 1}));
}

QTEST_MAIN(TestFindNox)
#include "tst_findnox.moc"
