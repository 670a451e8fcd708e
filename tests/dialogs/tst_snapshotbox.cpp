#include "device/featurenox8.h"
#include "dialogs/settingsfiles.h"
#include "dialogs/snapshotbox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "widgets/userdialogs.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>

Q_DECLARE_METATYPE(SnapshotMatch)

/** Stored configurations and settings files of an instrument, worked by clicks and keys. */
class TestSnapshotBox : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void decision_data();
    void decision();
    void followsTheConfiguration();
    void factorySnapshotIsNeverChanged();
    void descriptionAloneCanBeSaved();
    void searches_data();
    void searches();
    void chosenSnapshotIsAppliedWhole();
    void snapshotOfAnotherModelIsRefused();
    void removingAsks();
    void goneWhileAsked();
    void closedDatabase();
    void settingsFileRoundTrip();
    void proposedFileNames_data();
    void proposedFileNames();
    void filesThatFail();

private:
    noxList::_nox *add(quint32 type, quint16 number);
    int store(const noxList::_nox *nox, const QString &info);
    QStringList offered() const;
    void click(const QAbstractButton *button) const
    {
        QTest::mouseClick(const_cast<QAbstractButton *>(button), Qt::LeftButton);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_database;
    std::unique_ptr<NOXSerialPort> m_port;
    std::unique_ptr<noxList> m_registry;
    std::unique_ptr<QWidget> m_window;
    SnapshotBox::Widgets m_widgets{};
    std::unique_ptr<SnapshotBox> m_box;
    noxList::_nox *m_nox = nullptr;
    QVector<Message> m_asked;
    QVector<Message> m_told;
    QVector<FileQuestion> m_questions;
    QMessageBox::StandardButton m_answer = QMessageBox::No;
    std::function<void()> m_meanwhile; ///< what happens while a question is open
    QString m_file;
};

void TestSnapshotBox::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(provideDatabase(m_directory->filePath("nox8.db")));
    m_database = std::make_unique<noxSql>(m_directory->filePath("nox8.db"));
    m_port = std::make_unique<NOXSerialPort>();
    m_registry = std::make_unique<noxList>(m_port.get(), m_database.get());
    m_window = std::make_unique<QWidget>();
    m_window->setWindowTitle("Настройки");
    auto *const layout = new QVBoxLayout(m_window.get());
    m_widgets = {new QLabel,    new QPushButton, new QPushButton,   new QPushButton,
                 new QLineEdit, new QComboBox,   new QPlainTextEdit};
    for (QWidget *widget :
         QVector<QWidget *>{m_widgets.status, m_widgets.save, m_widgets.add, m_widgets.remove,
                            m_widgets.search, m_widgets.found, m_widgets.info})
        layout->addWidget(widget);
    m_box = std::make_unique<SnapshotBox>(m_widgets, m_registry.get());
    SnapshotBox *const box = m_box.get();
    connect(m_widgets.save, &QAbstractButton::clicked, box, &SnapshotBox::save);
    connect(m_widgets.add, &QAbstractButton::clicked, box, &SnapshotBox::saveAsNew);
    connect(m_widgets.remove, &QAbstractButton::clicked, box, &SnapshotBox::remove);
    connect(m_widgets.search, &QLineEdit::textChanged, box, &SnapshotBox::search);
    connect(m_widgets.found, QOverload<int>::of(&QComboBox::currentIndexChanged), box,
            &SnapshotBox::choose);
    connect(m_widgets.found, QOverload<int>::of(&QComboBox::activated), box, &SnapshotBox::choose);
    for (const auto change : {&noxList::onDevChange, &noxList::onRefChange})
        connect(m_registry.get(), change, box, &SnapshotBox::match);
    m_window->show();

    m_asked.clear();
    m_told.clear();
    m_questions.clear();
    m_answer = QMessageBox::No;
    m_meanwhile = [] {};
    m_file.clear();
    UserDialogs::current().ask = [this](QWidget *, const Message &message) {
        m_asked << message;
        m_meanwhile();
        return m_answer;
    };
    UserDialogs::current().tell = [this](QWidget *, const Message &message) { m_told << message; };
    UserDialogs::current().chooseFile = [this](QWidget *, const FileQuestion &question) {
        m_questions << question;
        m_meanwhile();
        return m_file;
    };
    m_nox = add(157329935, 12);
    m_box->setIndex(m_nox->index);
}

void TestSnapshotBox::cleanup()
{
    UserDialogs::current() = UserDialogs::onScreen();
    m_box.reset();
    m_window.reset();
    m_registry.reset();
    m_port.reset();
    m_database.reset();
}

noxList::_nox *TestSnapshotBox::add(quint32 type, quint16 number)
{
    noxList::_nox *const nox = m_registry->newNox(-1, true);
    nox->opt->setDevType(type);
    nox->opt->setDevNumber(number);
    nox->opt->setData(taken(nox->opt->getData()), 2); // as when it has been read
    return nox;
}

int TestSnapshotBox::store(const noxList::_nox *nox, const QString &info)
{
    const QByteArray data = taken(nox->opt->getData());
    const QByteArray references = taken(nox->opt->getRefAllData());
    return m_database->setSnapShot(nox->dbIndex, &data, &references, info, 0);
}

QStringList TestSnapshotBox::offered() const
{
    QStringList texts;
    for (int i = 0; i < m_widgets.found->count(); ++i)
        texts << m_widgets.found->itemText(i);
    return texts;
}

void TestSnapshotBox::decision_data()
{
    QTest::addColumn<int>("named");
    QTest::addColumn<bool>("isFactory");
    QTest::addColumn<QVector<int>>("equal");
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("signs"); // found, changed, can be saved, can be removed

    QTest::newRow("nothing") << 0 << false << QVector<int>{} << 0 << "....";
    QTest::newRow("recognised") << 0 << false << QVector<int>{7, 8} << 7 << "f..r";
    QTest::newRow("the same") << 8 << false << QVector<int>{8} << 8 << "f..r";
    QTest::newRow("changed") << 8 << false << QVector<int>{} << 8 << "fcsr";
    QTest::newRow("as another") << 8 << false << QVector<int>{7, 8} << 8 << "fcsr";
    QTest::newRow("factory") << 8 << true << QVector<int>{8} << 8 << "f...";
    QTest::newRow("factory, changed") << 8 << true << QVector<int>{} << 8 << "fc..";
}

void TestSnapshotBox::decision()
{
    QFETCH(int, named);
    QFETCH(bool, isFactory);
    QFETCH(QVector<int>, equal);
    std::optional<noxSql::noxSqlItem> snapshot;
    if (named > 0)
        snapshot = noxSql::noxSqlItem{named, "name", "info", isFactory};
    QVector<noxSql::noxSqlItem> others;
    for (const int id : equal)
        others.append({id, "name", "info", false});

    const SnapshotMatch match = matchSnapshot(snapshot, others);
    QTEST(match.id, "id");
    const QString signs = QString(match.isFound ? "f" : ".") + (match.isChanged ? "c" : ".") +
                          (match.canBeSaved ? "s" : ".") + (match.canBeRemoved ? "r" : ".");
    QTEST(signs, "signs");
}

void TestSnapshotBox::followsTheConfiguration()
{
    m_box->match();
    QCOMPARE(offered(), QStringList("Новая настройка"));
    QCOMPARE(m_widgets.info->placeholderText(), QString("Настройка НЕ найдена в БД"));
    QVERIFY(!m_widgets.info->isEnabled() && !m_widgets.save->isEnabled());

    store(m_nox, "заводская");
    m_nox->opt->setChOnOff(0, 0);
    emit m_nox->opt->onDevChange();
    click(m_widgets.add);
    QVERIFY(m_nox->snapShotId > 1);
    QVERIFY(offered().first().startsWith("NOX CM1 rev.4"));
    QVERIFY(offered().first().contains(" № 0012 от "));
    QVERIFY(m_widgets.status->isHidden() && !m_widgets.save->isEnabled());

    m_nox->opt->devMeasRound = 0;
    emit m_nox->opt->onDevChange();
    QVERIFY(m_widgets.status->isVisible() && m_widgets.save->isEnabled());
    const int snapshot = m_nox->snapShotId;
    click(m_widgets.save);
    QCOMPARE(m_nox->snapShotId, snapshot);
    QVERIFY(m_widgets.status->isHidden() && !m_widgets.save->isEnabled());
    QCOMPARE(m_database->getSnapShotCount(m_nox->dbIndex), 2);
}

void TestSnapshotBox::factorySnapshotIsNeverChanged()
{
    m_nox->snapShotId = store(m_nox, "с завода");
    m_box->match();
    QVERIFY(offered().first().endsWith(" (Заводская)"));
    QCOMPARE(m_widgets.info->toPlainText(), QString("с завода"));
    m_nox->opt->devMeasRound = 0;
    emit m_nox->opt->onDevChange();
    QVERIFY(m_widgets.status->isVisible());
    QTest::keyClicks(m_widgets.info, "x");
    QVERIFY(!m_widgets.save->isEnabled() && !m_widgets.remove->isEnabled());
}

void TestSnapshotBox::descriptionAloneCanBeSaved()
{
    store(m_nox, "заводская");
    m_nox->opt->setChOnOff(0, 0);
    m_nox->snapShotId = store(m_nox, "старое");
    m_box->match();
    QVERIFY(!m_widgets.save->isEnabled());
    m_widgets.info->selectAll();
    QTest::keyClicks(m_widgets.info, "new");
    emit m_nox->opt->onDevChange(); // a refresh leaves what is being written
    QCOMPARE(m_widgets.info->toPlainText(), QString("new"));
    click(m_widgets.save);
    QCOMPARE(m_database->getSnapShotInfo(m_nox->snapShotId), QString("new"));
    QVERIFY(!m_widgets.save->isEnabled());
}

void TestSnapshotBox::searches_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("first");
    QTest::addColumn<int>("count");

    QTest::newRow("too short") << "Пе"
                               << "Введите не менее 3-х символов" << 1;
    QTest::newRow("capitals") << "ПЕЧЬ"
                              << "Найдено: 1" << 2;
    QTest::newRow("instrument") << "nox cm1"
                                << "Найдено: 2" << 3;
    QTest::newRow("number") << "0012"
                            << "Найдено: 2" << 3;
    QTest::newRow("none") << "холодильник"
                          << "Найдено: 0" << 1;
}

void TestSnapshotBox::searches()
{
    QFETCH(QString, text);
    store(m_nox, "заводская");
    m_nox->opt->setChOnOff(0, 0);
    store(m_nox, "Печь №2");
    m_widgets.search->setText(text);
    QTEST(offered().first(), "first");
    QTEST(offered().size(), "count");

    emit m_nox->opt->onDevChange(); // a refresh leaves what was found
    QTEST(offered().size(), "count");
    m_widgets.search->clear();
    QCOMPARE(offered().size(), 1);
    QCOMPARE(m_widgets.found->currentData().toInt(), m_nox->snapShotId);
}

void TestSnapshotBox::chosenSnapshotIsAppliedWhole()
{
    store(m_nox, "заводская");
    optionsNOX8 &image = *m_nox->opt;
    image.setChCurrent(9, 3);
    image.refR[2].a.value = 0.25F;
    image.shiftCh[15].value = 1.5F;
    const QByteArray data = taken(image.getData());
    const QByteArray references = taken(image.getRefAllData());
    const int wanted = store(m_nox, "Печь");
    image.setChCurrent(9, 0);
    image.refR[2].a.value = 0.0F;
    image.shiftCh[15].value = 0.0F;

    m_widgets.search->setText("печь");
    QSignalSpy reads(&image, &optionsNOX8::onRefShiftChange);
    m_widgets.found->setFocus();
    QTest::keyClick(m_widgets.found, Qt::Key_Down);
    QCOMPARE(taken(image.getData()), data);
    QCOMPARE(taken(image.getRefAllData()), references);
    QCOMPARE(reads.count(), 1);
    QCOMPARE(m_nox->snapShotId, wanted);
    QCOMPARE(m_widgets.info->toPlainText(), QString("Печь"));
    QVERIFY(m_widgets.status->isHidden());

    image.setChCurrent(9, 1);
    QCoreApplication::processEvents();  // the choice before is over
    emit m_widgets.found->activated(0); // the only entry of the list, chosen again
    QCOMPARE(taken(image.getData()), data);
}

void TestSnapshotBox::snapshotOfAnotherModelIsRefused()
{
    const noxList::_nox *const small = add(158378511, 99);
    store(small, "восемь каналов");
    const QByteArray references = taken(m_nox->opt->getRefAllData());
    small->opt->refT0.value = 3.0F;
    m_widgets.search->setText("восемь");
    m_widgets.found->setCurrentIndex(1);
    QCOMPARE(m_told.size(), 1);
    QCOMPARE(taken(m_nox->opt->getRefAllData()), references);
    QCOMPARE(m_nox->snapShotId, 0);
}

void TestSnapshotBox::removingAsks()
{
    store(m_nox, "заводская");
    m_nox->opt->setChOnOff(0, 0);
    m_nox->snapShotId = store(m_nox, "лишняя");
    m_box->match();
    click(m_widgets.remove);
    QCOMPARE(m_asked.first().title, QString("Настройки"));
    QCOMPARE(m_asked.first().text, QString("Вы уверены?"));
    QCOMPARE(m_asked.first().defaultButton, QMessageBox::No);
    QCOMPARE(m_database->getSnapShotCount(m_nox->dbIndex), 2);
    m_answer = QMessageBox::Yes;
    click(m_widgets.remove);
    QCOMPARE(m_database->getSnapShotCount(m_nox->dbIndex), 1);
    QCOMPARE(m_nox->snapShotId, 0);
    QCOMPARE(offered(), QStringList("Новая настройка"));
}

void TestSnapshotBox::goneWhileAsked()
{
    store(m_nox, "заводская");
    m_nox->opt->setChOnOff(0, 0);
    m_nox->snapShotId = store(m_nox, "лишняя");
    m_box->match();
    m_answer = QMessageBox::Yes;
    m_meanwhile = [this] { m_registry->rmByIndex(m_nox->index); };
    click(m_widgets.remove);
    m_box->match();

    m_nox = add(34, 6);
    m_file = m_directory->filePath("x.ust");
    SettingsFiles(m_window.get(), m_registry.get()).save(m_nox->index);
    QVERIFY(!QFile::exists(m_file));
    QVERIFY(m_told.isEmpty());
}

void TestSnapshotBox::closedDatabase()
{
    m_box.reset();
    m_registry.reset();
    m_database = std::make_unique<noxSql>(m_directory->filePath("none/nox8.db"));
    m_registry = std::make_unique<noxList>(m_port.get(), m_database.get());
    m_box = std::make_unique<SnapshotBox>(m_widgets, m_registry.get());
    m_nox = add(34, 5);
    m_nox->snapShotId = 3;
    m_box->setIndex(m_nox->index);
    m_box->match();
    QCOMPARE(offered(), QStringList("Новая настройка"));
    m_box->search("печь");
    QCOMPARE(offered(), QStringList("Найдено: 0"));
    m_box->saveAsNew();
    QCOMPARE(m_nox->snapShotId, 0);
}

void TestSnapshotBox::settingsFileRoundTrip()
{
    SettingsFiles files(m_window.get(), m_registry.get());
    m_file = m_directory->filePath("deep/печь.ust");
    QVERIFY(QDir(m_directory->path()).mkdir("deep"));
    m_nox->opt->setChResist(4, 2);
    const QByteArray data = taken(m_nox->opt->getData());
    files.save(m_nox->index);
    m_nox->opt->setChResist(4, 0);
    files.load(m_nox->index);
    QCOMPARE(taken(m_nox->opt->getData()), data);
    QVERIFY(m_told.isEmpty());
    QCOMPARE(m_questions.first().directory, QDir::homePath());
    QVERIFY(m_questions.first().asksToReplace);
    QCOMPARE(m_questions.last().mode, QFileDialog::AcceptOpen);
    QCOMPARE(m_questions.last().name, QString("печь.ust"));
    QCOMPARE(m_database->getAppProperty("ust_dir").toString(), m_directory->filePath("deep"));
    m_nox->opt->setChResist(4, 1);
    m_file.clear();
    files.load(m_nox->index); // given up
    QCOMPARE(m_nox->opt->getCh(4).resist, quint8(1));
}

void TestSnapshotBox::proposedFileNames_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("loaded");

    QTest::newRow("plain") << 34U << ""
                           << "NOX CM № 0123.ust"
                           << "NOX CM № 0123.ust";
    QTest::newRow("extended") << 158378511U << "Эталон"
                              << "Эталон_N0123.ust"
                              << "Эталон.ust";
    QTest::newRow("no file name") << 158378511U << "a/b:c"
                                  << "a_b_c_N0123.ust"
                                  << "a_b_c.ust";
}

void TestSnapshotBox::proposedFileNames()
{
    QFETCH(quint32, type);
    QFETCH(QString, name);
    noxList::_nox *const nox = add(type, 123);
    nox->opt->devName = name;
    SettingsFiles files(m_window.get(), m_registry.get());
    files.save(nox->index);
    files.load(nox->index);
    QTEST(m_questions.first().name, "saved");
    QTEST(m_questions.last().name, "loaded");
}

void TestSnapshotBox::filesThatFail()
{
    SettingsFiles files(m_window.get(), m_registry.get());
    m_file = m_directory->filePath("none/x.ust");
    files.save(m_nox->index);
    QCOMPARE(m_told.size(), 1);
    QCOMPARE(m_told.last().title, QString("Ошибка записи настроек в файл"));
    const QByteArray data = taken(m_nox->opt->getData());
    files.load(m_nox->index);
    QCOMPARE(m_told.size(), 2);
    QCOMPARE(m_told.last().title, QString("Ошибка чтения файла настроек"));
    QCOMPARE(taken(m_nox->opt->getData()), data);
}

QTEST_MAIN(TestSnapshotBox)
#include "tst_snapshotbox.moc"
