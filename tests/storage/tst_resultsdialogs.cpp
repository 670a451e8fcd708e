#include "device/windows1251.h"
#include "plot/qwtnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/recmeas.h"
#include "storage/resultsfileform.h"
#include "storage/savemeas.h"
#include "support/fulldisk.h"
#include "widgets/userdialogs.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/** The two dialogs of results files, worked with keys and clicks. */
class TestResultsDialogs : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void exportByKeyboard();
    void separatorsGoTogether();
    void exportThatFails_data();
    void exportThatFails();
    void longExport();
    void recordingIsSetUp();
    void recordingWithoutFile();
    void recordedInstrumentGoes();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    QByteArray content(const QString &name) const;
    void chooseNext(const QString &fileName);
    template<typename Widget>
    Widget *find(QDialog *dialog, const char *name) const
    {
        return dialog->findChild<Widget *>(name);
    }
    QString status(QDialog *dialog) const { return find<QLabel>(dialog, "statusLabel")->text(); }
    void press(QDialog *dialog, const char *button) const
    {
        QTest::mouseClick(find<QPushButton>(dialog, button), Qt::LeftButton);
    }
    void addPoints(int count, uchar ch = 0);

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<QwtNOX> m_plot;
    std::unique_ptr<savemeas> m_export;
    std::unique_ptr<noxSql> m_database;
    std::unique_ptr<NOXSerialPort> m_port;
    std::unique_ptr<noxList> m_registry;
    std::unique_ptr<recmeas> m_recording;
    QVector<FileQuestion> m_questions;
    QStringList m_told;
};

void TestResultsDialogs::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_plot = std::make_unique<QwtNOX>();
    m_plot->addDev(3, 0);
    m_plot->setDevMain(3);
    m_export = std::make_unique<savemeas>(nullptr, m_plot.get());
    QVERIFY(provideDatabase(path("nox8.db")));
    m_database = std::make_unique<noxSql>(path("nox8.db"));
    m_database->setAppProperty("recmeas_dir", path(""));
    m_port = std::make_unique<NOXSerialPort>();
    m_registry = std::make_unique<noxList>(m_port.get(), m_database.get());
    m_recording = std::make_unique<recmeas>(nullptr, m_registry.get());
    m_questions.clear();
    m_told.clear();
    UserDialogs::current().tell = [this](QWidget *, const Message &message) {
        m_told << message.text;
    };
    chooseNext({});
}

void TestResultsDialogs::cleanup()
{
    m_recording.reset();
    m_export.reset();
    m_registry.reset();
    m_port.reset();
    m_database.reset();
}

QByteArray TestResultsDialogs::content(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

void TestResultsDialogs::chooseNext(const QString &fileName)
{
    UserDialogs::current().chooseFile = [this, fileName](QWidget *, const FileQuestion &question) {
        m_questions << question;
        return fileName;
    };
}

void TestResultsDialogs::addPoints(int count, uchar ch)
{
    for (int i = 0; i < count; ++i)
        m_plot->addPoint(i, i, "K", 3, ch);
}

void TestResultsDialogs::exportByKeyboard()
{
    addPoints(3);
    m_export->showFor("NOX B_N0001_24-11-2026");
    QVERIFY(QTest::qWaitForWindowActive(m_export.get()));
    chooseNext(path("результаты 1.csv"));
    QTest::keyClick(m_export->focusWidget(), Qt::Key_Return); // "Файл"
    QCOMPARE(m_questions.at(0).title, QString("Файл для сохранения результатов"));
    QCOMPARE(m_questions.at(0).filter, QString("CSV (*.csv *.CSV);; * (*.*)"));
    QCOMPARE(m_questions.at(0).directory, QDir::homePath());
    QCOMPARE(m_questions.at(0).name, QString("NOX B_N0001_24-11-2026"));
    QTest::keyClick(m_export->focusWidget(), Qt::Key_Return); // "Сохранить"
    QCOMPARE(status(m_export.get()), QString("Сохранено!"));
    QVERIFY(content("результаты 1.csv").endsWith("3;2;2.0000;\r\n"));
    QTest::keyClick(m_export.get(), Qt::Key_Escape);
    QVERIFY(!m_export->isVisible());
    QCOMPARE(status(m_export.get()), QString());
}

void TestResultsDialogs::separatorsGoTogether()
{
    auto *fields = find<QComboBox>(m_export.get(), "deFieldCB");
    auto *points = find<QComboBox>(m_export.get(), "dePointCB");
    QCOMPARE(points->currentText(), QString("Системный"));
    fields->setCurrentIndex(fields->findText("Запятая"));
    QCOMPARE(points->currentText(), QString("Точка"));
    fields->setCurrentIndex(fields->findText("Пробел"));
    QCOMPARE(points->currentText(), QString("Системный"));
}

void TestResultsDialogs::exportThatFails_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("room");
    QTest::addColumn<QString>("told");

    const QString failed = "Ошибка записи в файл!\nВозможно файл занят другим приложением или не "
                           "доступен для записи.";
    QTest::newRow("no file") << "" << 3 << 1000000 << "Выберите файл для сохранения";
    QTest::newRow("a folder") << "." << 3 << 1000000 << failed;
    QTest::newRow("no such folder") << "none/1.csv" << 3 << 1000000 << failed;
    QTest::newRow("no channels") << "1.csv" << 0 << 1000000 << "Нет данных для сохранения";
    QTest::newRow("full disk, short") << "1.csv" << 3 << 20 << failed;
    QTest::newRow("full disk, long") << "1.csv" << 50000 << 500000 << failed;
}

void TestResultsDialogs::exportThatFails()
{
    QFETCH(QString, fileName);
    QFETCH(int, points);
    QFETCH(int, room);
    QFETCH(QString, told);

    QFile before(path("1.csv"));
    QVERIFY(before.open(QIODevice::WriteOnly) && before.write("before") == 6);
    before.close();
    addPoints(points);
    m_export->showFor("x");
    chooseNext(fileName.isEmpty() ? QString() : path(fileName));
    press(m_export.get(), "selectFileBtn");
    const FullDisk disk{rlim_t(room)};
    press(m_export.get(), "saveBtn");
    QTRY_COMPARE(m_told, QStringList{told});
    QCOMPARE(status(m_export.get()), QString("Сохраняю..."));
    QCOMPARE(content("1.csv"), QByteArray("before"));
    QCOMPARE(QDir(path("")).entryList({"*csv*"}), QStringList{"1.csv"}); // no other file left
    QVERIFY(find<QPushButton>(m_export.get(), "saveBtn")->isEnabled());
}

void TestResultsDialogs::longExport()
{
    addPoints(1000000, 1);
    m_export->showFor("x");
    chooseNext(path("1.csv"));
    press(m_export.get(), "selectFileBtn");
    for (const bool givesUp : {true, false}) {
        press(m_export.get(), "saveBtn");
        QVERIFY(!find<QPushButton>(m_export.get(), "saveBtn")->isEnabled());
        QTRY_VERIFY(find<QProgressBar>(m_export.get(), "progressBar")->value() > 10);
        m_plot->removeDev(3); // what it has measured is exported all the same
        if (givesUp) {
            QTest::keyClick(m_export->focusWidget(), Qt::Key_Space);
            QCOMPARE(status(m_export.get()), QString());
            QCOMPARE(content("1.csv"), QByteArray("no file"));
            m_plot->addDev(3, 0);
            m_plot->setDevMain(3);
            addPoints(1000000, 1);
        }
    }
    QTRY_COMPARE_WITH_TIMEOUT(status(m_export.get()), QString("Сохранено!"), 60000);
    QVERIFY(!find<QProgressBar>(m_export.get(), "progressBar")->isVisible());
    QVERIFY(content("1.csv").endsWith("\r\n1000000;999999;--;999999.0000;\r\n"));
}

void TestResultsDialogs::recordingIsSetUp()
{
    noxList::_nox *nox = m_registry->newNox(-1, true);
    nox->recFieldSep = "\t";
    nox->recPointSep = ",";
    nox->recPrecision = 7;
    nox->recInterval = 120;
    m_recording->showFor(nox->index, "name");
    QCOMPARE(status(m_recording.get()), QString("Запись остановлена"));
    chooseNext(path("folder.csv"));
    press(m_recording.get(), "selectFileBtn");
    QCOMPARE(m_questions.at(0).directory, path(""));
    QCOMPARE(m_questions.at(0).name, QString("name"));
    QCOMPARE(m_database->getAppProperty("recmeas_dir").toString(), m_directory->path());
    find<QSpinBox>(m_recording.get(), "timePointSB")->setValue(119);
    QSignalSpy changes(m_registry.get(), &noxList::onChange);
    press(m_recording.get(), "saveBtn");
    QCOMPARE(changes.size(), 1);
    QCOMPARE(status(m_recording.get()), QString("Идёт запись..."));
    QVERIFY(nox->recording);
    QCOMPARE(nox->recFileName, path("folder.csv"));
    QCOMPARE(nox->recFieldSep + nox->recPointSep, QString("\t,"));
    QCOMPARE(int(nox->recPrecision), 7);
    QCOMPARE(int(nox->recInterval), 119);
    nox->recRow = 5;
    press(m_recording.get(), "saveBtn");
    QVERIFY(!nox->recording);
    QCOMPARE(nox->recRow, 0);
}

void TestResultsDialogs::recordingWithoutFile()
{
    const noxList::_nox *nox = m_registry->newNox(-1, true);
    m_recording->showFor(nox->index, "name");
    press(m_recording.get(), "saveBtn");
    QVERIFY(!nox->recording);
    QVERIFY(!find<QPushButton>(m_recording.get(), "saveBtn")->isChecked());
    QCOMPARE(status(m_recording.get()), QString("Запись остановлена"));
}

void TestResultsDialogs::recordedInstrumentGoes()
{
    const int index = m_registry->newNox(-1, true)->index;
    m_recording->showFor(index, "name");
    UserDialogs::current().chooseFile = [&](QWidget *, const FileQuestion &) {
        m_registry->rmByIndex(index);
        return path("1.csv");
    };
    press(m_recording.get(), "selectFileBtn");
    QVERIFY(!m_recording->isVisible());
    QCOMPARE(m_registry->newNox(-1, true)->index, index);
    press(m_recording.get(), "saveBtn");
    QVERIFY(!m_registry->getNoxByIndex(index)->recording);
}

QTEST_MAIN(TestResultsDialogs)
#include "tst_resultsdialogs.moc"
