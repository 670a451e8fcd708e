#include "device/windows1251.h"
#include "registry/findnox.h"
#include "windowfixture.h"

#include <qwt_global.h>

/** What the window keeps from one start to the next and in files, and how it starts and ends. */
class TestStart : public WindowTest
{
    Q_OBJECT
    /** The check boxes of the settings: "Автоподключение" and "Запрос при выходе". */
    QList<QCheckBox *> boxes() const { return menuOf("settingsBtn")->findChildren<QCheckBox *>(); }
    QString checked() const { return seen(boxes()[0]) + ", " + seen(boxes()[1]); }
    static QString database()
    {
        return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/nox8.db";
    }
    /** Chooses a results file of one's own, which begins at six, and lets the window read it. */
    void read(const QString &name, const QString &content)
    {
        answers->file = data->filePath(name);
        QFile file(answers->file);
        const QString start = "Начало измерений. Дата 23.11.2026 Время 06:00:00;\r\n\r\n";
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(toWindows1251(start + content)) > 0);
        file.close();
        press("toolButton_3");
    }

private slots:
    void firstStartMakesTheDatabaseAndSearches()
    {
        QLocale::setDefault(QLocale::Russian);
        start();
        QCOMPARE(QLocale().language(), QLocale::English); // numbers have a point
        QVERIFY(QFile::exists(database()));
        QCOMPARE(checked(), "Автоподключение {hidden, on}, Запрос при выходе {hidden}");
        QVERIFY(!window->discovery()->isVisible());
        QTRY_VERIFY(window->discovery()->isVisible());
    }

    void settingsAndTheCurrentInstrumentAreKept()
    {
        addSome(3);
        choose(2);
        menuOf("settingsBtn")->popup({});
        QTest::mouseClick(boxes()[0], Qt::LeftButton, {}, {8, 8});
        QVERIFY(!menuOf("settingsBtn")->isVisible());
        boxes()[1]->click();
        start();
        addSome(3);
        QCOMPARE(title() + checked(),
                 "NOX B № 0002Автоподключение {hidden}, Запрос при выходе {hidden, on}");
        registry().rmByIndex(1); // the newest of the others is current, now and later
        QTest::qWait(700);       // longer than a search would wait for
        QVERIFY(!window->discovery()->isVisible());
        press("findDevBtn");
        QVERIFY(window->discovery()->isVisible());
        press("exitBtm");
        QVERIFY(window->isVisible());
        QCOMPARE(seen(answers->asked.value(0)),
                 "4 [Выход из программы] Вы уверены что хотите выйти из программы? 14000/10000");
        answers->answer = QMessageBox::Yes;
        QVERIFY(window->close());
        start();
        addSome(3);
        QCOMPARE(title(), "NOX B № 0003");
        boxes()[1]->click();
        press("exitBtm");
        QVERIFY(!window->isVisible() && answers->asked.size() == 2);
    }

    void programTellsItsVersion()
    {
        QCoreApplication::setApplicationVersion("3.4.6");
        window->setProperty("BUILD_NUMBER", 110);
        window->setProperty("BUILD_DATE", "Mar  5 2024");
        pick(menuOf("settingsBtn"), "О программе");
        QWidget *const dialog = find("appconf");
        QCOMPARE(see("versionLabel buildLabel buildDateLabel qtLabel qwtLabel databaseEdit"),
                 "3.4.6|110|Mar  5 2024|" QT_VERSION_STR "|" QWT_VERSION_STR "|" + database() +
                     " {read only}");
        QVERIFY(find<QPlainTextEdit>("licenceText")->toPlainText().contains("MIT License"));
        QTest::keyClick(dialog, Qt::Key_Escape);
        QVERIFY(!dialog->isVisible());
    }

    void emptyWindowTellsWhatToDo()
    {
        const QStringList advices = {"подключите прибор", "освободите порт",
                                     "опрашивает все свободные порты"};
        QVector<SerialPortEntry> ports;
        const auto *const hint = find<QLabel>("instrumentHint");
        window->resize(window->minimumSizeHint());
        for (const QString &advice : advices) {
            usePorts(ports);
            QEvent activation(QEvent::WindowActivate);
            QCoreApplication::sendEvent(window.get(), &activation);
            QVERIFY2(hint->text().contains(advice), qPrintable(hint->text()));
            QVERIFY(hint->isVisible() && hint->height() >= hint->heightForWidth(hint->width()));
            ports.prepend({"1", {}, ports.isEmpty()}); // one that is busy, then one that is free
        }
        add();
        QVERIFY(!hint->isVisible());
        usePorts({});
        registry().rmByIndex(0);
        QVERIFY(hint->isVisible() && hint->text().contains("подключите прибор"));
    }

    void deniedPortsAreNamedWhereTheyAreLookedFor()
    {
        usePorts({{"ttyUSB0", {}, false, true, "serial"}, {"ttyS1", {}}});
        const QString told = "Нет доступа к порту ttyUSB0: вступите в группу serial (sudo usermod "
                             "-aG serial $USER) и войдите в систему заново.";
        QEvent activation(QEvent::WindowActivate);
        QCoreApplication::sendEvent(window.get(), &activation);
        QCOMPARE(find<QLabel>("instrumentHint")->text().section('\n', 1), told);

        QMenu *const menu = menuOf("addDevBtn");
        QCOMPARE(entriesOf(menu), "без подключния, |, ttyUSB0, ttyS1, |, " + told);
        QCOMPARE(words({menu->actions()[2]->isEnabled(), menu->actions()[3]->isEnabled()}),
                 "false true");
        QCOMPARE(menu->findChild<QLabel *>("accessHint")->text(), told);

        usePorts({{"ttyUSB0", {}, false, true, "serial"},
                  {"a", {}, true, true, "serial"},
                  {"b", {}, false, true}});
        press("findDevBtn");
        const auto *const dialog = find<QDialog>("findNox");
        const auto *const hint = dialog->findChild<QLabel *>("accessHint");
        QVERIFY(hint->isVisible() &&
                hint->text().contains("к портам ttyUSB0, a: вступите в группу serial"));
        QVERIFY(hint->text().startsWith("Нет доступа к порту b.\n")); // no group may
        QVERIFY(hint->height() >= hint->heightForWidth(hint->width()));
        QVERIFY(window->registry()->serialPort()->devices().isEmpty());
        usePorts({});
        pressIn(dialog, {"scanBtn"});
        QVERIFY(dialog->isVisible() && !hint->isVisible());
    }

    void uselessDatabaseIsTold()
    {
        QVERIFY(!find("databaseHint")->isVisible());
        window.reset();
        QFile file(database());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no database") > 0);
        file.close();
        start();
        const QString told = see("databaseHint").remove(QChar(0x200b)); // may be wrapped there
        QVERIFY(find("databaseHint")->isVisible());
        QVERIFY(told.startsWith("Настройки не сохраняются: ") && told.endsWith(file.fileName()));
        QVERIFY(file.remove()); // then there is room for another one
        QTRY_VERIFY(!find("databaseHint")->isVisible());
    }

    void recordsAndTellsOfLostRows()
    {
        addSome(2);
        auto *button = find<QToolButton>("recBtn");
        const auto shown = [button] { // a star for its mark, and what it says
            const QImage picture = button->grab().toImage();
            const bool isMarked = picture.pixelColor(picture.width() / 2, 0) == QColor("#c62828");
            return (isMarked ? "*" : "") + button->toolTip();
        };
        press("recBtn");
        QVERIFY(!button->isChecked()); // before the dialog has begun it
        answers->file = data->filePath("запись/1.csv");
        pressIn(find("recmeas"), {"selectFileBtn", "saveBtn", "closeBtn"});
        const auto measureRound = [this] {
            now = now.addSecs(1);
            measure(0, now.time().second(), 0);
            measure(0, 2, 1);
        };
        measureRound();
        measureRound();                // there is no folder yet
        for (const int row : {1, 2}) { // it is down for the current instrument, but speaks of all
            choose(row);
            QCOMPARE(button->isChecked(), row == 1);
        }
        QCOMPARE(shown(), "*Запись в файл\nNOX B № 0001: Запись не ведётся с 24.11.2026 07:05:11: "
                          "файл не открывается для записи");
        QCOMPARE(button->accessibleDescription(), button->toolTip());
        QVERIFY(QDir(data->path()).mkdir("запись"));
        measureRound();
        QCOMPARE(shown(), "Запись в файл");
        QCOMPARE(linesOf(answers->file).last(), "1;2;11.0000;2.0000;--;--;--;--;--;--;\r");
        QVERIFY(QDir(data->filePath("запись")).removeRecursively());
        measureRound();
        QVERIFY(shown().startsWith('*'));
        registry().rmByIndex(0);
        QCOMPARE(shown(), "Запись в файл");
    }

    void filesAreAskedForWhereTheLastOneWas()
    {
        add(0x0970AA0F, 7);
        press("toolButton"); // nothing is chosen
        answers->file = data->filePath("plot.png");
        press("toolButton");
        QVERIFY(!QImage(answers->file).isNull() && answers->told.isEmpty());
        start();
        answers->file = data->filePath("none/plot.png");
        press("toolButton");
        QCOMPARE(answers->told.size(), 1);
        press("toolButton_3");
        QStringList places;
        for (const FileQuestion &question : qAsConst(answers->files))
            places << question.directory + ' ' + question.name;
        const QString first = QDir::homePath() + " NOX D rev_4_N0007_24-11-2026";
        QCOMPARE(places,
                 (QStringList{first, first, data->path() + ' ', data->filePath("none") + ' '}));
    }

    void readsIntoAnEmptyRegistry()
    {
        read("results.csv", "№;dT;Канал 1;Канал 2;\r\n ;[c];[°С];[Ом];\r\n"
                            "1;5;21.5000;101.2500;\r\n2;6;21.7500;--;\r\n");
        showFrame();
        QCOMPARE(column(channels(), ChannelColumn::Value), "21.75 101.25");
        QCOMPARE(column(channels(), ChannelColumn::Unit), "°С Ω");
        QTRY_VERIFY(find("readingBar")->isHidden()); // a slow machine needs a second slice
        QCOMPARE(see("readingLabel"), "Чтение: results.csv");

        // once more the same, and nothing else is left; what the instrument measures stays away
        // from what was read
        registry().setProccesed(0, true, false);
        for (const quint8 ch : {2, 0})
            measure(0, 1, ch);
        press("toolButton_3");
        QCOMPARE(plot().getChMeasCount(0, 0), 2);
        QCOMPARE(column(channels(), ChannelColumn::Value), "21.75 101.25 --");
        QVERIFY(!record(0).processed);
        record(0).opt->setDevType(0x11);
        QVERIFY(title().startsWith("NOX B"));
    }

    void longReadingIsShownAndStopped()
    {
        const QString name = QString(60, 'w') + ".csv";
        const int rows = 2000000;
        read(name, "№;dT;Канал 1;\r\n ;[c];[°С];\r\n" + QString("1;5;21.5;\r\n").repeated(rows));
        const auto *const progress = find<QProgressBar>("readingProgress");
        const int begun = progress->value();
        QVERIFY(find("readingBar")->isVisible() && begun < 50);
        QTRY_VERIFY(progress->value() > begun);
        const QString shown = see("readingLabel");
        QVERIFY2(shown.startsWith("Чтение: ww") && shown.contains("…"), qPrintable(shown));
        QCOMPARE(find("readingLabel")->toolTip(), name);
        press("stopReadingBtn");
        QTRY_VERIFY(find("readingBar")->isHidden());
        QVERIFY(plot().getChMeasCount(0, 0) < rows);
    }
};

QTEST_MAIN(TestStart)
#include "tst_start.moc"
