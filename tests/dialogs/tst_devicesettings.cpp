#include "calibration/featconfui.h"
#include "device/featurenox8.h"
#include "device/vocabulary.h"
#include "dialogs/devconfui.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "support/menukeys.h"
#include "widgets/rowdelegate.h"
#include "widgets/userdialogs.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>

/** The settings of an instrument, worked by keys and clicks; its image is what comes out. */
class TestDeviceSettings : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void openingChangesNothing_data();
    void openingChangesNothing();
    void fieldsAreStored();
    void whatIsOnlyPassedIsNoEntry();
    void columnsAreChosen_data();
    void columnsAreChosen();
    void ownUnitIsWritten();
    void applyAsksForWrites();
    void changesAreMarkedUntilWritten();
    void serviceUnlocks();
    void typedTextOutlivesRefresh();
    void fileIsShownWhole();
    void progress();
    void removedWhileOpen_data();
    void removedWhileOpen();

private:
    template<typename Widget>
    Widget *find(const char *name) const
    {
        return m_dialog->findChild<Widget *>(QString::fromLatin1(name));
    }
    void open(quint32 type);
    void choose(const char *list, const QString &text) const;
    void pressCell(int row, int column) const;

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_database;
    std::unique_ptr<NOXSerialPort> m_port;
    std::unique_ptr<noxList> m_registry;
    std::unique_ptr<devConfUI> m_dialog;
    noxList::_nox *m_nox = nullptr;
    optionsNOX8 *m_image = nullptr;
    QVector<Message> m_told;
};

void TestDeviceSettings::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(provideDatabase(m_directory->filePath("nox8.db")));
    m_database = std::make_unique<noxSql>(m_directory->filePath("nox8.db"));
    m_port = std::make_unique<NOXSerialPort>();
    m_registry = std::make_unique<noxList>(m_port.get(), m_database.get());
    m_dialog = std::make_unique<devConfUI>(nullptr, m_registry.get(), nullptr);
    connect(m_registry.get(), &noxList::onDevChange, m_dialog.get(), &devConfUI::onDevChange);
    connect(m_registry.get(), &noxList::onChChange, m_dialog.get(), &devConfUI::onChChange);
    m_told.clear();
    UserDialogs::current().tell = [this](QWidget *, const Message &message) { m_told << message; };
}

void TestDeviceSettings::cleanup()
{
    UserDialogs::current() = UserDialogs::onScreen();
    m_dialog.reset();
    m_registry.reset();
    m_port.reset();
    m_database.reset();
}

void TestDeviceSettings::open(quint32 type)
{
    m_nox = m_registry->newNox(-1, true);
    m_image = m_nox->opt.get();
    m_image->setDevType(type);
    m_image->setDevNumber(123);
    m_image->setData(taken(m_image->getData()), 2); // as when it has been read
    m_image->identApplyPending = false;
    m_nox->held.noteRead(2, taken(m_image->getData()));
    m_dialog->show(m_nox->index);
}

void TestDeviceSettings::choose(const char *list, const QString &text) const
{
    auto *const box = find<QComboBox>(list);
    QVERIFY2(box->isEnabled() && box->findText(text) >= 0, list);
    box->setCurrentIndex(box->findText(text));
}

void TestDeviceSettings::pressCell(int row, int column) const
{
    const auto *const table = find<QTableWidget>("chTable");
    if (row >= 0) {
        const QRect cell = table->visualItemRect(table->item(row, column));
        QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
        return;
    }
    const QHeaderView *const header = table->horizontalHeader();
    const QPoint place(header->sectionViewportPosition(column) + 20, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, place);
}

void TestDeviceSettings::openingChangesNothing_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QString>("compensation");
    QTest::addColumn<bool>("hasShortCircuit");
    QTest::addColumn<bool>("isExtended");

    QTest::newRow("NOX B") << 17U << "Канал 7" << false << false;
    QTest::newRow("NOX CM") << 34U << "Канал 8" << true << false;
    QTest::newRow("NOX CM1 rev.4") << 157329935U << "Канал 16" << true << true;
}

void TestDeviceSettings::openingChangesNothing()
{
    QFETCH(quint32, type);
    open(type);
    m_dialog->reject();
    const QByteArray data = taken(m_image->getData());
    const QByteArray references = taken(m_image->getRefAllData());
    QSignalSpy changes(m_image, &optionsNOX8::onDevChange);
    QSignalSpy channelChanges(m_image, &optionsNOX8::onChChange);
    QSignalSpy referenceChanges(m_image, &optionsNOX8::onRefChange);
    m_dialog->show(m_nox->index);
    for (int tab = 0; tab < 4; ++tab)
        find<QTabWidget>("tabWidget")->setCurrentIndex(tab);
    QCOMPARE(changes.count() + channelChanges.count() + referenceChanges.count(), 0);
    QCOMPARE(taken(m_image->getData()), data);
    QCOMPARE(taken(m_image->getRefAllData()), references);

    const auto *const compensation = find<QComboBox>("devCompensTPCB");
    QTEST(compensation->itemText(1), "compensation");
    QTEST(find<QComboBox>("devZakorotkaCB")->isEnabled(), "hasShortCircuit");
    QTEST(
        bool(compensation->model()->flags(compensation->model()->index(2, 0)) & Qt::ItemIsEnabled),
        "hasShortCircuit");
    QTEST(find<QTabWidget>("tabWidget")->isTabVisible(3), "isExtended");
    QTEST(find<QLineEdit>("devNameEdit")->isEnabled(), "isExtended");
    QCOMPARE(find<QTableWidget>("chTable")->rowCount(), int(m_image->getDevChCount()));
    QVERIFY(m_dialog->windowTitle().startsWith("Настройки прибора NOX"));
    QVERIFY(m_dialog->windowTitle().endsWith(" № 0123"));
}

void TestDeviceSettings::fieldsAreStored()
{
    open(157329935);
    choose("devMeasRoundCB", "0.1");
    choose("devMeasTimeCB", "7");
    find<QComboBox>("devMeasModeCB")->setCurrentIndex(1);
    choose("devCompensTPCB", "Все");
    choose("devChReversCB", "Да");
    choose("devZakorotkaCB", "Да");
    QCOMPARE(int(m_image->devMeasRound), 0);
    QCOMPARE(int(m_image->devMeasTime), 6);
    QCOMPARE(int(m_image->devMeasMode), 1);
    QCOMPARE(int(m_image->devCompensTP), 2);
    QCOMPARE(int(m_image->devChRevers), 16);
    QCOMPARE(int(m_image->devZakorotka), 0);
    QCOMPARE(find<QComboBox>("devCompensTPCB")->itemText(1), QString("Канал 15"));

    auto *const name = find<QLineEdit>("devNameEdit");
    name->selectAll();
    QTest::keyClicks(name, "A name of more than sixteen");
    QTest::keyClick(name, Qt::Key_Return);
    QCOMPARE(m_image->devName, QString("A name of more t"));
    QCOMPARE(name->text(), m_image->devName);
    QVERIFY(m_image->identApplyPending);
}

/** The default name is longer than what an instrument keeps, and passes like any other text. */
void TestDeviceSettings::whatIsOnlyPassedIsNoEntry()
{
    open(157329935);
    QSignalSpy identities(m_image, &optionsNOX8::onIdentChange);
    for (const char *field : {"devPortEdit", "devNumEdit", "devNameEdit"}) {
        find<QLineEdit>(field)->setFocus();
        QTest::keyClick(find<QLineEdit>(field), Qt::Key_Tab);
    }
    QCOMPARE(find<QLineEdit>("devNameEdit")->text(), QString("NOX CM1 rev.4 № 0123"));
    QCOMPARE(identities.count(), 0);
    QVERIFY(m_image->devName.isEmpty() && !m_image->identApplyPending);
}

void TestDeviceSettings::columnsAreChosen_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("shown");

    QTest::newRow("off") << 0 << "Выкл."
                         << "-";
    QTest::newRow("unit") << 1 << "мВ"
                          << "мВ";
    QTest::newRow("current") << 2 << optionsNOX8::getDevCurrentList(34).at(3)
                             << optionsNOX8::getDevCurrentList(34).at(3);
    QTest::newRow("resistor") << 3 << optionsNOX8::getDevResistList(34).at(2)
                              << optionsNOX8::getDevResistList(34).at(2);
    QTest::newRow("own") << 4 << "Печь && ко"
                         << "Печь & ко";
    const QString thermocouple = standardThermocouples().at(2);
    QTest::newRow("standard") << 4 << "НСХ ТП/" + thermocouple << thermocouple;
    const QString resistance = standardResistanceThermometers().at(2);
    QTest::newRow("compensation") << 5 << "НСХ ТС/" + resistance << resistance;
}

/** For one channel by its cell, for all by the header of the column. */
void TestDeviceSettings::columnsAreChosen()
{
    QFETCH(int, column);
    QFETCH(QString, entry);
    QFETCH(QString, shown);
    open(34);
    m_image->features[6]->name = "Печь & ко";
    m_image->devCompensTP = 2;
    for (quint8 ch = 0; ch < 8; ++ch) {
        m_image->setChFeature(ch, featureThermocouple, 0);
        m_image->setChFeatureCompesTP(ch, compensResistanceThermometer, 5);
    }
    const auto *const table = find<QTableWidget>("chTable");
    const QString before = table->item(0, column)->text();

    pressCell(4, column);
    pickEntry(entry);
    for (int row = 0; row < 8; ++row)
        QCOMPARE(table->item(row, column)->text(), row == 4 ? shown : before);
    pressCell(-1, column);
    const auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    for (const QAction *one : menu->actions())
        QVERIFY(!one->isChecked());
    pickEntry(entry);
    for (int row = 0; row < 8; ++row)
        QCOMPARE(table->item(row, column)->text(), shown);
    QCOMPARE(table->item(0, 1)->foreground().color(),
             QColor(column == 0 ? Qt::lightGray : Qt::black));
}

void TestDeviceSettings::ownUnitIsWritten()
{
    open(34);
    auto *const table = find<QTableWidget>("chTable");
    table->setFocus();
    table->setCurrentCell(2, 1);
    QTest::keyClick(table, Qt::Key_Space);
    auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QTest::keyClick(menu, Qt::Key_Up); // the last entry is the line
    auto *const line = menu->findChild<QLineEdit *>();
    QTRY_VERIFY(line->hasFocus());
    QTest::keyClicks(line, "bar");
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(table->item(2, 1)->text(), QString("bar"));
    QCOMPARE(m_image->getCh(2).measType, measTemperatureCustom);
    QCOMPARE(table->item(1, 1)->text(), QString("Ω"));
}

void TestDeviceSettings::applyAsksForWrites()
{
    open(157329935);
    m_image->identApplyPending = true;
    QSignalSpy identities(m_image, &optionsNOX8::onIdentApply);
    QSignalSpy devices(m_image, &optionsNOX8::onDevApply);
    for (int press = 0; press < 2; ++press)
        QTest::mouseClick(find<QPushButton>("pushButton_5"), Qt::LeftButton);
    QCOMPARE(identities.count(), 1);
    QCOMPARE(devices.count(), 2);

    open(0);
    QSignalSpy unknown(m_image, &optionsNOX8::onDevApply);
    QTest::mouseClick(find<QPushButton>("pushButton_5"), Qt::LeftButton);
    QCOMPARE(unknown.count(), 0);
}

void TestDeviceSettings::changesAreMarkedUntilWritten()
{
    open(34);
    const auto *const table = find<QTableWidget>("chTable");
    const auto isMarked = [&] { return table->item(3, 2)->data(changedRole).toBool(); };
    const auto *const rounding = find<QComboBox>("devMeasRoundCB");
    QVERIFY(!isMarked() && rounding->accessibleDescription().isEmpty());
    m_image->setChCurrent(3, 2);
    choose("devMeasRoundCB", "0.1");
    QVERIFY(isMarked() && !rounding->accessibleDescription().isEmpty());
    m_nox->held.noteWritten(0, taken(m_image->getData()));
    emit m_registry->onHeldChange(m_nox->index);
    QVERIFY(!isMarked() && rounding->accessibleDescription().isEmpty());
}

void TestDeviceSettings::serviceUnlocks()
{
    open(34);
    m_nox->opt->identValid = true;
    m_dialog->onDevChange(m_nox->index);
    auto *const close = find<QPushButton>("pushButton_6");
    auto *const number = find<QLineEdit>("devNumEdit");
    QVERIFY(!find<QComboBox>("devTypeCB")->isEnabled() && number->isReadOnly());
    QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
    QVERIFY(m_dialog->isVisible());

    QTest::keyPress(m_dialog.get(), Qt::Key_PageUp);
    QTest::mouseClick(close, Qt::LeftButton);
    QTest::keyRelease(m_dialog.get(), Qt::Key_PageUp);
    QVERIFY(m_dialog->isVisible());
    QVERIFY(find<QComboBox>("devTypeCB")->isEnabled() && !number->isReadOnly());
    QVERIFY(find<QTabWidget>("tabWidget")->isTabVisible(3));
    number->selectAll();
    QTest::keyClicks(number, "65537");
    QTest::keyClick(number, Qt::Key_Return);
    QCOMPARE(int(m_image->devNumber), 1);
    QTest::mouseClick(close, Qt::LeftButton);
    QVERIFY(!m_dialog->isVisible());
}

void TestDeviceSettings::typedTextOutlivesRefresh()
{
    open(157329935);
    auto *const name = find<QLineEdit>("devNameEdit");
    m_dialog->activateWindow();
    name->setFocus();
    QTRY_VERIFY(name->hasFocus());
    name->selectAll();
    QTest::keyClicks(name, "Etalo");
    emit m_image->onDevChange();
    QTest::keyClicks(name, "n");
    QCOMPARE(name->text(), QString("Etalon"));
}

/** A file tells of name and shifts without a word; entries of its own the dialog keeps, until
 *  something else is shown in their place. */
void TestDeviceSettings::fileIsShownWhole()
{
    open(157329935);
    m_image->devName = "Печь";
    m_image->shiftCh[0].value = 0.5F;
    const QString file = m_directory->filePath("a.ust");
    QVERIFY(m_image->saveToFile(file, "COM1"));
    UserDialogs::current().chooseFile = [&](QWidget *, const FileQuestion &) { return file; };
    m_image->devName = "Баня";
    m_image->shiftCh[0].value = 0.25F;
    m_dialog->show(m_nox->index);

    auto *const shift = find<QTableWidget>("ch8ShiftTable")->item(0, 0);
    auto *const reference = find<QTableWidget>("refTable")->item(0, 0);
    shift->setText("0.7");
    reference->setText("75.1");
    choose("devMeasRoundCB", "0.1");
    emit m_registry->onHeldChange(m_nox->index);
    QCOMPARE(shift->text() + ' ' + reference->text(), QString("0.7 75.1"));

    QTest::mouseClick(find<QPushButton>("pushButton_3"), Qt::LeftButton);
    QCOMPARE(shift->text() + ' ' + reference->text(), QString("0.500000 0.0000"));
    QCOMPARE(find<QLineEdit>("devNameEdit")->text(), QString("Печь"));
}

void TestDeviceSettings::progress()
{
    open(34);
    m_nox->devIndex = 5;
    const auto *const bar = find<QProgressBar>("pgBar");
    QVERIFY(bar->isHidden());
    emit m_port->setProgress(4, 10, 20, 2);
    QVERIFY(bar->isHidden());
    emit m_port->setProgress(5, 10, 20, 2);
    QVERIFY(bar->isVisible());
    QCOMPARE(bar->value(), 10);
    emit m_port->setProgress(5, -1, 20, 2);
    QCOMPARE(bar->value(), -1);
    emit m_port->setProgress(5, 0, 0, 2);
    QVERIFY(bar->isHidden());
    emit m_port->setProgress(5, 3, 20, 2);
    m_registry->disConnByIndex(m_nox->index);
    QVERIFY(bar->isHidden());
}

void TestDeviceSettings::removedWhileOpen_data()
{
    QTest::addColumn<QString>("meanwhile");
    for (const char *what : {"nothing", "menu", "editor"})
        QTest::newRow(what) << QString(what);
}

void TestDeviceSettings::removedWhileOpen()
{
    QFETCH(QString, meanwhile);
    open(34);
    const auto remove = [this] { m_registry->rmByIndex(m_nox->index); };
    if (meanwhile == "editor") {
        QTimer::singleShot(0, m_dialog.get(), [&] {
            QWidget *const editor = QApplication::activeModalWidget();
            remove();
            editor->close();
        });
        QTest::keyClick(find<QTableWidget>("featTable"), Qt::Key_Return);
    } else {
        if (meanwhile == "menu")
            pressCell(1, 4);
        remove();
    }
    QVERIFY(!m_dialog->isVisible());
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(m_told.last().text.contains("NOX CM № 0123"));
    m_dialog->onDevChange(m_nox ? 0 : 1); // nobody is shown any more
}

QTEST_MAIN(TestDeviceSettings)
#include "tst_devicesettings.moc"
