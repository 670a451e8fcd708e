#include "registry/findnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "windowfixture.h"

#include <QProgressBar>
#include <QStandardPaths>

/** What the window keeps from one start to the next, and what it does when it starts and ends. */
class TestStart : public QObject
{
    Q_OBJECT
private slots:
    void firstStartMakesTheDatabaseAndSearches();
    void settingsAreKept();
    void exitIsAskedFor();
    void progressStandsInTheRow();
    void programTellsItsVersion();
    void emptyWindowTellsWhatToDo_data();
    void emptyWindowTellsWhatToDo();
    void uselessDatabaseIsTold_data();
    void uselessDatabaseIsTold();
};

namespace
{

QCheckBox *settingBox(const WindowFixture &fixture, const QString &title)
{
    const auto boxes =
        fixture.find<QPushButton>("settingsBtn")->menu()->findChildren<QCheckBox *>();
    for (QCheckBox *box : boxes)
        if (box->text() == title)
            return box;
    return nullptr;
}

QProgressBar *progressAt(const WindowFixture &fixture, int row)
{
    return qobject_cast<QProgressBar *>(
        fixture.instruments()->cellWidget(row, InstrumentColumn::Menu));
}

} // namespace

void TestStart::firstStartMakesTheDatabaseAndSearches()
{
    const WindowFixture fixture;
    QVERIFY(QFile::exists(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
                          "/nox8.db"));
    QVERIFY(settingBox(fixture, "Автоподключение")->isChecked());
    QVERIFY(!settingBox(fixture, "Запрос при выходе")->isChecked());
    QVERIFY(!fixture.window->discovery()->isVisible());
    QTRY_VERIFY(fixture.window->discovery()->isVisible());
}

void TestStart::settingsAreKept()
{
    WindowFixture fixture;
    settingBox(fixture, "Автоподключение")->setChecked(false);
    settingBox(fixture, "Запрос при выходе")->setChecked(true);
    fixture.window.reset();
    fixture.window = std::make_unique<MainWindow>();
    QVERIFY(!settingBox(fixture, "Автоподключение")->isChecked());
    QVERIFY(settingBox(fixture, "Запрос при выходе")->isChecked());
    QTest::qWait(700); // longer than a search would wait for
    QVERIFY(!fixture.window->discovery()->isVisible());
    fixture.find<QPushButton>("findDevBtn")->click();
    QVERIFY(fixture.window->discovery()->isVisible());
}

void TestStart::exitIsAskedFor()
{
    WindowFixture fixture;
    settingBox(fixture, "Запрос при выходе")->setChecked(true);
    QVERIFY(!fixture.window->close());
    QCOMPARE(fixture.dialogs.asked.size(), 1);
    const Message &question = fixture.dialogs.asked.first();
    QCOMPARE(question.title, QStringLiteral("Выход из программы"));
    QCOMPARE(question.text, QStringLiteral("Вы уверены что хотите выйти из программы?"));
    QCOMPARE(question.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(question.defaultButton, QMessageBox::No);
    QVERIFY(fixture.window->isVisible());
    fixture.dialogs.answer = QMessageBox::Yes;
    QVERIFY(fixture.window->close());
    settingBox(fixture, "Запрос при выходе")->setChecked(false);
    fixture.window->show();
    QVERIFY(fixture.window->close());
    QCOMPARE(fixture.dialogs.asked.size(), 2);
}

void TestStart::progressStandsInTheRow()
{
    const WindowFixture fixture;
    const int first = fixture.add(0x11, 1);
    const int second = fixture.add(0x11, 2);
    fixture.registry().getNoxByIndex(second)->devIndex = 9;
    const auto report = [&](int devIndex, int progress, int most) {
        emit fixture.window->serialPort()->setProgress(devIndex, progress, most, 2);
    };
    report(9, -1, 0);
    QVERIFY(progressAt(fixture, 2) && progressAt(fixture, 2)->maximum() == 0);
    QVERIFY(!progressAt(fixture, 1));
    report(9, 30, 100);
    QCOMPARE(progressAt(fixture, 2)->value(), 30);
    QCOMPARE(progressAt(fixture, 2)->maximum(), 100);
    report(8, 50, 100);
    report(9, 0, 0);
    QVERIFY(!progressAt(fixture, 2));

    report(9, 30, 100);
    fixture.registry().disConnByIndex(second);
    QVERIFY(!progressAt(fixture, 2));

    fixture.registry().getNoxByIndex(second)->devIndex = 9;
    report(9, 30, 100); // the row moves up: the bar must not speak for another
    fixture.registry().rmByIndex(first);
    QVERIFY(!progressAt(fixture, 1));
}

void TestStart::programTellsItsVersion()
{
    const WindowFixture fixture;
    QCoreApplication::setApplicationVersion("3.4.6");
    fixture.window->setProperty("BUILD_NUMBER", 110);
    fixture.window->setProperty("BUILD_DATE", "Mar  5 2024");
    const auto actions = fixture.find<QPushButton>("settingsBtn")->menu()->actions();
    QCOMPARE(actions.last()->text(), QStringLiteral("О программе"));
    actions.last()->trigger();
    QCOMPARE(fixture.label("versionLabel"), QStringLiteral("3.4.6"));
    QCOMPARE(fixture.label("buildLabel"), QStringLiteral("110"));
    QCOMPARE(fixture.label("buildDateLabel"), QStringLiteral("Mar  5 2024"));
    QCOMPARE(fixture.label("qtLabel"), QStringLiteral(QT_VERSION_STR));
    QVERIFY(fixture.find<QPlainTextEdit>("licenceText")->toPlainText().contains("MIT License"));

    auto *const dialog = fixture.find<QDialog>("appconf");
    QVERIFY(dialog->isVisible());
    QTest::keyClick(dialog, Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
}

void TestStart::emptyWindowTellsWhatToDo_data()
{
    QTest::addColumn<QVector<bool>>("busyPorts");
    QTest::addColumn<QString>("advice");
    QTest::newRow("no port") << QVector<bool>{} << "подключите прибор";
    QTest::newRow("no free port") << QVector<bool>{true, true} << "освободите порт";
    QTest::newRow("a free port") << QVector<bool>{true, false} << "Ручное подключение";
}

void TestStart::emptyWindowTellsWhatToDo()
{
    QFETCH(QVector<bool>, busyPorts);
    QFETCH(QString, advice);
    const WindowFixture fixture;
    QVector<SerialPortEntry> ports;
    for (const bool busy : busyPorts)
        ports.append({QString::number(ports.size()), {}, busy});
    PortCatalog::setCurrent(std::make_unique<ListedPorts>(ports));
    QEvent activation(QEvent::WindowActivate);
    QCoreApplication::sendEvent(fixture.window.get(), &activation);
    const auto *const hint = fixture.find<QLabel>("instrumentHint");
    QVERIFY(hint->isVisible());
    QVERIFY2(hint->text().contains(advice), qPrintable(hint->text()));
    const int index = fixture.add();
    QVERIFY(!hint->isVisible());
    fixture.registry().rmByIndex(index);
    QVERIFY(hint->isVisible());
}

void TestStart::uselessDatabaseIsTold_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isFolderBlocked");
    QTest::newRow("no folder") << QByteArray() << true;
    QTest::newRow("empty file") << QByteArray() << false;
    QTest::newRow("other file") << QByteArray(4096, 'x') << false;
}

void TestStart::uselessDatabaseIsTold()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isFolderBlocked);
    WindowFixture fixture;
    const auto *hint = fixture.find<QLabel>("databaseHint");
    QVERIFY(!hint->isVisible());
    fixture.window.reset();
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(isFolderBlocked || QDir().mkpath(folder));
    QFile file(isFolderBlocked ? folder : folder + "/nox8.db");
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();

    fixture.window = std::make_unique<MainWindow>();
    fixture.window->show();
    hint = fixture.find<QLabel>("databaseHint");
    QVERIFY(hint->isVisible() && hint->text().contains("Настройки не сохраняются"));
}

QTEST_MAIN(TestStart)
#include "tst_start.moc"
