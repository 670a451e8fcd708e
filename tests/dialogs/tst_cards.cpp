#include "device/featurenox8.h"
#include "device/vocabulary.h"
#include "dialogs/confchmenu.h"
#include "dialogs/confmenu.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "serial/portcatalog.h"
#include "storage/noxsql.h"
#include "support/menukeys.h"

#include <QtTest>
#include <QtWidgets>

#include <fcntl.h>
#include <memory>
#include <stdlib.h>
#include <unistd.h>

/** The cards of an instrument and of a channel, worked by keys and clicks. */
class TestCards : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void openingChangesNothing_data();
    void openingChangesNothing();
    void listsAreStored_data();
    void listsAreStored();
    void linkDecidesWhatConnectDoes();
    void buttonsReachTheInstrument();
    void applyWritesTheMainChannel();
    void switchWritesAtOnce();
    void characteristicsAreChosen();
    void ownUnitIsTyped();
    void editedCharacteristicIsUsed_data();
    void editedCharacteristicIsUsed();
    void unknownChannelIsNotShown();
    void inputStaysInTheCard_data();
    void inputStaysInTheCard();
    void removedWhileOpen_data();
    void removedWhileOpen();

private:
    void add(quint32 type, int devIndex = -1);
    /** The card that is open. */
    QMenu *card() const
    {
        QMenu *const channel = m_channel.get();
        return channel->isVisible() ? channel : m_instrument.get();
    }
    template<typename Widget>
    Widget *find(const char *name) const
    {
        return card()->findChild<Widget *>(QString::fromLatin1(name));
    }
    void click(const char *control) const
    {
        QTest::mouseClick(find<QWidget>(control), Qt::LeftButton);
    }
    void press(const char *control, const QList<Qt::Key> &keys) const
    {
        find<QWidget>(control)->setFocus();
        for (const Qt::Key key : keys)
            QTest::keyClick(find<QWidget>(control), key);
    }
    void showChannel(uchar ch) const { m_channel->show(m_nox->index, {20, 20}, ch); }
    void showInstrument() const { m_instrument->show(m_nox->index, {20, 20}); }

    int m_line = -1; ///< the other end of the port P1
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_database;
    std::unique_ptr<NOXSerialPort> m_port;
    std::unique_ptr<noxList> m_registry;
    std::unique_ptr<confMenu> m_instrument;
    std::unique_ptr<confChMenu> m_channel;
    noxList::_nox *m_nox = nullptr;
    optionsNOX8 *m_image = nullptr;
};

void TestCards::init()
{
    registerExchangeItems();
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(provideDatabase(m_directory->filePath("nox8.db")));
    m_database = std::make_unique<noxSql>(m_directory->filePath("nox8.db"));
    m_line = posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(grantpt(m_line) == 0 && unlockpt(m_line) == 0);
    QVERIFY(QFile::link(ptsname(m_line), m_directory->filePath("P1")));
    PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(m_directory->path()));
    m_port = std::make_unique<NOXSerialPort>();
    m_registry = std::make_unique<noxList>(m_port.get(), m_database.get());
    m_instrument = std::make_unique<confMenu>(nullptr, m_registry.get());
    m_channel = std::make_unique<confChMenu>(nullptr, m_registry.get());
    connect(m_registry.get(), &noxList::onDevChange, m_instrument.get(), &confMenu::onDevChange);
    connect(m_registry.get(), &noxList::onChChange, m_channel.get(), &confChMenu::onChChange);
}

void TestCards::cleanup()
{
    m_channel.reset();
    m_instrument.reset();
    m_registry.reset();
    m_port.reset();
    m_database.reset();
    PortCatalog::setCurrent(nullptr);
    ::close(m_line);
}

void TestCards::add(quint32 type, int devIndex)
{
    m_nox = m_registry->newNox(devIndex, true);
    m_image = m_nox->opt.get();
    m_image->setDevType(type);
    m_image->setDevNumber(123);
    m_image->setData(taken(m_image->getData()), 2); // as when it has been read
    m_image->identApplyPending = false;
}

void TestCards::openingChangesNothing_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QString>("compensation");
    QTest::addColumn<bool>("hasShortCircuit");
    QTest::addColumn<bool>("hasStandards");

    QTest::newRow("NOX B") << 17U << "Канал 7" << false << false;
    QTest::newRow("NOX CM") << 34U << "Канал 8" << true << true;
    QTest::newRow("NOX CM1 rev.4") << 157329935U << "Канал 16" << true << true;
}

void TestCards::openingChangesNothing()
{
    QFETCH(quint32, type);
    QFETCH(bool, hasStandards);
    add(type);
    m_image->setDevZakorotka(1);
    m_image->channels[6] = {
        3,  measTemperatureCustom, "bar",      15, 15, 12,
        15, featureThermocouple,   compensNone}; // as odd as an instrument may hold it
    const QByteArray data = taken(m_image->getData());
    QSignalSpy changes(m_image, &optionsNOX8::onDevChange);
    QSignalSpy channelChanges(m_image, &optionsNOX8::onChChange);
    showInstrument();
    const auto *const compensation = find<QComboBox>("devCompensTPCB");
    const auto all = compensation->model()->index(2, 0).flags();
    QTEST(compensation->itemText(1), "compensation");
    QTEST(find<QComboBox>("devZakorotkaCB")->isEnabled(), "hasShortCircuit");
    QTEST(all.testFlag(Qt::ItemIsEnabled), "hasShortCircuit");
    QVERIFY(find<QLabel>("titleLabel")->text().endsWith(" № 0123"));
    m_instrument->hide();
    for (const uchar ch : {uchar(6), uchar(0), uchar(6)}) {
        showChannel(ch);
        for (QMenu *menu : m_channel->findChildren<QMenu *>())
            if (menu->title().startsWith("НСХ"))
                QCOMPARE(menu->isEnabled(), hasStandards);
        m_channel->onChChange(m_nox->index, ch);
        m_channel->hide();
    }
    QCOMPARE(changes.count() + channelChanges.count(), 0);
    QCOMPARE(taken(m_image->getData()), data);
}

void TestCards::listsAreStored_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<int>("place");
    QTest::addColumn<QByteArray>("block"); ///< that sets the channel; before: 02200100 01000000

    const auto row = [](const char *list, int place, const char *block) {
        QTest::newRow(list) << QByteArray(list) << place << QByteArray(block);
    };
    row("devMeasRoundCB", 1, "02100100 01000000");
    row("devMeasTimeCB", 8, "82200100 01000000");
    row("devMeasModeCB", 1, "01200100 01000000");
    row("devCompensTPCB", 2, "02220100 01000000");
    row("devChReversCB", 1, "02201100 01000000");
    row("devZakorotkaCB", 0, "02200000 01000000");
    row("unitCB", 2, "02200100 01200000");
    row("currentCB", 7, "02200100 01070000");
    row("resistorCB", 3, "02200100 01003000");
}

/** By keys, and only into the image. */
void TestCards::listsAreStored()
{
    QFETCH(QByteArray, list);
    QFETCH(int, place);
    add(65);
    const auto block = [this] {
        const QByteArray hex = m_image->channelBlock(2).toHex();
        return hex.mid(8, 8) + ' ' + hex.mid(16);
    };
    QCOMPARE(block(), QByteArray("02200100 01000000"));
    QSignalSpy devices(m_image, &optionsNOX8::onDevChange);
    QSignalSpy channels(m_image, &optionsNOX8::onChChange);
    QSignalSpy channelWrites(m_image, &optionsNOX8::onChApply);
    QSignalSpy writes(m_image, &optionsNOX8::onDevApply);
    const bool isOfInstrument = list.startsWith("dev");
    if (isOfInstrument)
        showInstrument();
    else
        showChannel(2);
    press(list, QList<Qt::Key>{Qt::Key_Home} + QVector<Qt::Key>(place, Qt::Key_Down).toList());
    QTEST(block(), "block");
    QCOMPARE(devices.isEmpty(), !isOfInstrument);
    QCOMPARE(channels.isEmpty(), isOfInstrument);
    QCOMPARE(channelWrites.count() + writes.count(), 0);
    QVERIFY(card()->isVisible());
}

void TestCards::linkDecidesWhatConnectDoes()
{
    add(17);
    QSignalSpy searches(m_registry.get(), &noxList::doFindNox);
    QSignalSpy changes(m_registry.get(), &noxList::onChange);
    showInstrument();
    for (const char *button : {"readLogBtn", "readBtn", "startBtn"})
        QVERIFY2(!find<QToolButton>(button)->isEnabled(), button);
    QCOMPARE(find<QToolButton>("connectBtn")->toolTip(), QString("Подключить прибор"));
    click("connectBtn");
    QCOMPARE(searches.count(), 1);
    QCOMPARE(searches.first().first().toInt(), m_nox->index);
    QVERIFY(!m_instrument->isVisible() && changes.isEmpty());

    m_image->setDevNumber(0); // who has no number cannot be searched for
    m_nox->portName = "P1";
    showInstrument();
    click("connectBtn");
    QCOMPARE(searches.count(), 1);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(m_nox->devIndex, 0);

    showInstrument();
    QCOMPARE(find<QLineEdit>("devPortEdit")->text(), QString("P1"));
    QCOMPARE(find<QToolButton>("connectBtn")->toolTip(), QString("Отключить прибор"));
    click("connectBtn");
    QCOMPARE(m_nox->devIndex, -1);
}

void TestCards::buttonsReachTheInstrument()
{
    add(17, m_port->addDev("P1"));
    QSignalSpy setups(m_instrument.get(), &confMenu::neadShowSetup);
    QSignalSpy queries(m_port.get(), &NOXSerialPort::readyDevQuery);
    showInstrument();
    QVERIFY(find<QToolButton>("startBtn")->isChecked());
    press("startBtn", {Qt::Key_Return});
    QVERIFY(!m_nox->processed && !m_instrument->isVisible());
    showInstrument();
    click("setupBtn");
    QCOMPARE(setups.value(0).value(0).toInt(), m_nox->index);
    showInstrument();
    click("readLogBtn");
    const auto logger = queries.value(0).value(1).value<noxSerialPortQueryItem>();
    QVERIFY(logger == (noxSerialPortQueryItem{5, 32768}));
    QVERIFY(logger.rec && logger.showPr && logger.qMode == noxQueryModeNormal);
    showInstrument();
    click("removeBtn");
    QVERIFY(m_registry->indices().isEmpty() && !m_instrument->isVisible());
}

void TestCards::applyWritesTheMainChannel()
{
    add(34);
    const auto store = [this](int id) {
        const QByteArray data = taken(m_image->getData());
        const QByteArray references = taken(m_image->getRefAllData());
        return m_database->setSnapShot(m_nox->dbIndex, &data, &references, "Печь 2", id);
    };
    store(0); // the first one is never changed
    m_image->setChCurrent(0, 2);
    m_nox->snapShotId = store(0);
    m_nox->mainCh = 3;
    QSignalSpy writes(m_image, &optionsNOX8::onChApply);
    showInstrument();
    press("devMeasTimeCB", {Qt::Key_End});
    click("applyBtn");
    QCOMPARE(writes.count(), 1);
    QCOMPARE(writes.first().first().toInt(), 3);
    const QByteArray data = taken(m_image->getData());
    const QByteArray references = taken(m_image->getRefAllData());
    const auto found = m_database->findSnapShot(&data, &references, m_nox->dbIndex);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().id, m_nox->snapShotId);
    QCOMPARE(m_database->getSnapShotInfo(m_nox->snapShotId), QString("Печь 2"));

    m_nox->mainCh = 8;
    showInstrument();
    click("applyBtn");
    QCOMPARE(writes.count(), 1);
}

void TestCards::switchWritesAtOnce()
{
    add(34);
    QSignalSpy writes(m_image, &optionsNOX8::onChApply);
    showChannel(2);
    click("switchLabel");
    QCOMPARE(int(m_image->getCh(2).onOff), 0);
    QVERIFY(!m_channel->isVisible());
    showChannel(2);
    press("switchLabel", {Qt::Key_Space});
    QCOMPARE(int(m_image->getCh(2).onOff), 1);
    showChannel(4);
    click("applyBtn");
    QCOMPARE(writes.count(), 3);
    QCOMPARE(writes.at(0).first().toInt(), 2);
    QCOMPARE(writes.at(2).first().toInt(), 4);
}

void TestCards::characteristicsAreChosen()
{
    add(34);
    showChannel(1);
    const auto *const compensation = find<QLabel>("compensationLabel");
    QVERIFY(!compensation->isEnabled() && compensation->text() == "-");
    click("featureLabel");
    pickEntry("НСХ ТП/" + standardThermocouples().at(1));
    QCOMPARE(m_image->getCh(1).featureType, featureThermocouple);
    QCOMPARE(int(m_image->getCh(1).feature), 1);
    QCOMPARE(m_image->getCh(1).measType, measTemperature);
    QCOMPARE(find<QLabel>("featureLabel")->text(), standardThermocouples().at(1));
    QCOMPARE(find<QComboBox>("unitCB")->currentText(), QString("°С"));

    QVERIFY(m_channel->isVisible() && compensation->isEnabled());
    press("compensationLabel", {Qt::Key_Return});
    pickEntry("НСХ ТС/" + standardResistanceThermometers().at(2));
    QCOMPARE(m_image->getCh(1).featureTypeCompensTP, compensResistanceThermometer);
    QCOMPARE(int(m_image->getCh(1).featureCompensTP), 2);
    QCOMPARE(compensation->text(), standardResistanceThermometers().at(2));
}

/** Letter by letter: a refresh must take nothing away, not even the space at the end. */
void TestCards::ownUnitIsTyped()
{
    add(34);
    showChannel(1);
    auto *const list = find<QComboBox>("unitCB");
    QVERIFY(!list->isEditable());
    press("unitCB", {Qt::Key_End});
    QVERIFY(list->isEditable());
    const auto type = [list](const QString &text) {
        for (const QChar letter : text)
            QTest::sendKeyEvent(QTest::Click, list, Qt::Key_unknown, letter, Qt::NoModifier);
    };
    type("м");
    QCOMPARE(list->currentText(), QString("м"));
    type(" ");
    m_channel->onChChange(m_nox->index, 1);
    emit m_image->onDevChange();
    type("В");
    QCOMPARE(list->currentText(), QString("м В"));
    QCOMPARE(m_image->getChDimCust(1), QString("м В"));
    QTest::keyClick(list, Qt::Key_Backspace);
    QTest::keyClick(list, Qt::Key_Backspace);
    type("В"); // no choice of the voltage
    QTest::keyClick(list, Qt::Key_Return);
    QCOMPARE(m_image->getCh(1).measType, measTemperatureCustom);
    QCOMPARE(m_image->getChMeasTypeName(1), QString("мВ"));
    press("unitCB", {Qt::Key_Up});
    QVERIFY(!list->isEditable());
    QCOMPARE(m_image->getCh(1).measType, measVoltage);
    QCOMPARE(m_image->getChDimCust(1), QString("мВ"));
}

void TestCards::editedCharacteristicIsUsed_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("applied") << Qt::Key_Return;
    QTest::newRow("given up") << Qt::Key_Escape;
}

void TestCards::editedCharacteristicIsUsed()
{
    QFETCH(Qt::Key, key);
    add(34);
    for (quint8 k = 0; k < 8; ++k)
        m_image->features[k]->setFeature(FeatureRecord::callendarVanDusen, QString(k + 1, 'k'),
                                         {"100", "3.9083e-3", "-5.775e-7", "0", "-50", "150"});
    QSignalSpy writes(m_image, &optionsNOX8::onDevApply);
    showChannel(1);
    int edits = 0;
    QTimer editing;
    connect(&editing, &QTimer::timeout, m_channel.get(), [&] {
        QWidget *const editor = QApplication::activeModalWidget();
        if (!editor)
            return;
        ++edits;
        QVERIFY(!m_channel->isVisible());
        QCOMPARE(editor->findChild<QLineEdit *>("featName")->text(), QString("kkkkk"));
        QTest::keyClick(editor->findChild<QPushButton *>("pushButton"), key);
    });
    editing.start(10);
    press("editBtn", {Qt::Key_Return});
    QVERIFY(find<QToolButton>("editBtn")->isChecked());
    pickEntry("kkkkk");
    QVERIFY(!find<QToolButton>("editBtn")->isChecked());
    QTRY_COMPARE(edits, 1);
    QVERIFY(m_channel->isVisible());
    const bool isApplied = key == Qt::Key_Return;
    QCOMPARE(int(m_image->getCh(1).feature), isApplied ? 4 : 0);
    QCOMPARE(m_image->getCh(1).measType, isApplied ? measTemperature : measResistance);
    QCOMPARE(writes.count(), isApplied ? 1 : 0);
}

void TestCards::unknownChannelIsNotShown()
{
    add(34);
    showChannel(8);
    QVERIFY(!m_channel->isVisible());
    m_channel->show(m_nox->index + 1, {}, 0);
    m_instrument->show(m_nox->index + 1, {});
    QVERIFY(!m_channel->isVisible() && !m_instrument->isVisible());
    showChannel(7);
    QCOMPARE(find<QLabel>("titleLabel")->text(), QString("Канал № 8"));
    m_image->setData(QByteArray::fromHex("0100000021000001"), 51); // refused: no model any more
    QCOMPARE(find<QLabel>("featureLabel")->text(), QString("-"));
}

void TestCards::inputStaysInTheCard_data()
{
    QTest::addColumn<bool>("isOfChannel");
    QTest::newRow("instrument") << false;
    QTest::newRow("channel") << true;
}

void TestCards::inputStaysInTheCard()
{
    QFETCH(bool, isOfChannel);
    add(34, m_port->addDev("P1"));
    if (isOfChannel)
        showChannel(0);
    else
        showInstrument();
    QSet<QWidget *> expected;
    const auto controls = card()->findChildren<QWidget *>();
    for (QWidget *control : controls)
        if ((control->focusPolicy() & Qt::TabFocus) && control->isVisible() && control->isEnabled())
            expected << control;
    QCOMPARE(card()->focusWidget()->accessibleName(), find<QLabel>("titleLabel")->text());
    QSet<QWidget *> reached;
    for (int i = 0; i < expected.size(); ++i) {
        QTest::keyClick(card()->focusWidget(), Qt::Key_Tab);
        QWidget *const stop = card()->focusWidget();
        reached << stop;
        QVERIFY2(!stop->accessibleName().isEmpty(), qPrintable(stop->objectName()));
    }
    QCOMPARE(reached, expected);

    const QByteArray data = taken(m_image->getData());
    for (QComboBox *list : card()->findChildren<QComboBox *>()) {
        QWheelEvent turn({5, 5}, list->mapToGlobal(QPoint(5, 5)), {}, {0, -120}, Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(list, &turn);
    }
    QCOMPARE(taken(m_image->getData()), data);
    for (const char *beside : {"headerLine", "titleLabel", "buttonLine"})
        click(beside);
    QVERIFY(card()->isVisible());
    QTest::keyClick(card()->focusWidget(), Qt::Key_Escape);
    QVERIFY(!m_channel->isVisible() && !m_instrument->isVisible());
}

void TestCards::removedWhileOpen_data()
{
    QTest::addColumn<QString>("meanwhile");
    for (const char *what : {"instrument", "channel", "list", "menu", "editor"})
        QTest::newRow(what) << QString(what);
}

void TestCards::removedWhileOpen()
{
    QFETCH(QString, meanwhile);
    add(34);
    if (meanwhile == "instrument")
        showInstrument();
    else
        showChannel(1);
    if (meanwhile == "list")
        press("currentCB", {Qt::Key_Space});
    if (meanwhile == "menu") {
        click("featureLabel");
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Up);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Right);
    }
    bool isRemoved = false;
    const auto remove = [&] {
        m_registry->rmByIndex(m_nox->index);
        isRemoved = true;
        if (QWidget *const editor = QApplication::activeModalWidget())
            editor->close();
    };
    if (meanwhile == "editor") {
        click("editBtn");
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        QTimer::singleShot(20, m_channel.get(), remove);
    } else {
        remove();
    }
    QTRY_VERIFY(isRemoved);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(!m_channel->isVisible() && !m_instrument->isVisible());
    add(34); // under the same index
    m_channel->onChChange(m_nox->index, 1);
    QVERIFY(!QApplication::activePopupWidget());
}

QTEST_MAIN(TestCards)
#include "tst_cards.moc"
