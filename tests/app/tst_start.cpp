#include "device/windows1251.h"
#include "registry/findnox.h"
#include "windowfixture.h"

/** What the window keeps from one start to the next and in files, and how it starts and ends. */
class TestStart : public WindowTest
{
    Q_OBJECT
    /** The check boxes of the settings: "Автоподключение" and "Запрос при выходе". */
    QList<QCheckBox *> boxes() const { return menuOf("settingsBtn")->findChildren<QCheckBox *>(); }
    QString checked() const
    {
        return words({boxes()[0]->text(), boxes()[0]->isChecked(), boxes()[1]->text(),
                      boxes()[1]->isChecked()});
    }
    static QString databaseFolder()
    {
        return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    }
    QTemporaryDir folder;

private slots:
    void firstStartMakesTheDatabaseAndSearches()
    {
        QLocale::setDefault(QLocale::Russian);
        start();
        QCOMPARE(QLocale().language(), QLocale::English); // numbers have a point
        QVERIFY(QFile::exists(databaseFolder() + "/nox8.db"));
        QCOMPARE(checked(), "Автоподключение true Запрос при выходе false");
        QVERIFY(!window->discovery()->isVisible());
        QTRY_VERIFY(window->discovery()->isVisible());
    }

    void settingsAreKept()
    {
        menuOf("settingsBtn")->popup({});
        QTest::mouseClick(boxes()[0], Qt::LeftButton, {}, {8, 8});
        QVERIFY(!menuOf("settingsBtn")->isVisible());
        boxes()[1]->click();
        start();
        QCOMPARE(checked(), "Автоподключение false Запрос при выходе true");
        QTest::qWait(700); // longer than a search would wait for
        QVERIFY(!window->discovery()->isVisible());
        press("findDevBtn");
        QVERIFY(window->discovery()->isVisible());
    }

    void exitIsAskedFor()
    {
        boxes()[1]->click();
        press("exitBtm");
        QVERIFY(window->isVisible());
        const Message question = dialogs.asked.value(0);
        QCOMPARE(question.icon, QMessageBox::Question);
        QCOMPARE(question.title, "Выход из программы");
        QCOMPARE(question.text, "Вы уверены что хотите выйти из программы?");
        QCOMPARE(question.buttons, QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(question.defaultButton, QMessageBox::No);
        dialogs.answer = QMessageBox::Yes;
        QVERIFY(window->close());
        start();
        boxes()[1]->click();
        press("exitBtm");
        QVERIFY(!window->isVisible());
        QCOMPARE(dialogs.asked.size(), 2);
    }

    void programTellsItsVersion()
    {
        QCoreApplication::setApplicationVersion("3.4.6");
        window->setProperty("BUILD_NUMBER", 110);
        window->setProperty("BUILD_DATE", "Mar  5 2024");
        pick(menuOf("settingsBtn"), "О программе");
        QStringList told;
        for (const char *name : {"versionLabel", "buildLabel", "buildDateLabel", "qtLabel"})
            told << label(name);
        QCOMPARE(told, (QStringList{"3.4.6", "110", "Mar  5 2024", QT_VERSION_STR}));
        QVERIFY(label("qwtLabel").startsWith("6."));
        QVERIFY(find<QLineEdit>("databaseEdit")->text().endsWith("/nox8.db"));
        QVERIFY(find<QPlainTextEdit>("licenceText")->toPlainText().contains("MIT License"));
        QWidget *const dialog = find("appconf");
        QVERIFY(dialog->isVisible());
        QTest::keyClick(dialog, Qt::Key_Escape);
        QVERIFY(!dialog->isVisible());
    }

    void emptyWindowTellsWhatToDo()
    {
        const SerialPortEntry busy{"1", {}, true};
        const SerialPortEntry free{"2", {}, false};
        const QVector<QPair<QVector<SerialPortEntry>, QString>> advices = {
            {{}, "подключите прибор"},
            {{busy, busy}, "освободите порт"},
            {{busy, free}, "опрашивает все свободные порты"}};
        const auto *const hint = find<QLabel>("instrumentHint");
        window->resize(window->minimumSizeHint());
        for (const auto &advice : advices) {
            ListedPorts::use(advice.first);
            QEvent activation(QEvent::WindowActivate);
            QCoreApplication::sendEvent(window.get(), &activation);
            QVERIFY2(hint->text().contains(advice.second), qPrintable(hint->text()));
            QVERIFY(hint->isVisible() && hint->height() >= hint->heightForWidth(hint->width()));
        }
        add();
        QVERIFY(!hint->isVisible());
        ListedPorts::use({});
        registry().rmByIndex(0);
        QVERIFY(hint->isVisible() && hint->text().contains("подключите прибор"));
    }

    void uselessDatabaseIsTold()
    {
        const QByteArray contents[] = {"", QByteArray(4096, 'x'), "in place of the folder"};
        for (const QByteArray &content : contents) {
            window.reset();
            const QFileInfo place(databaseFolder());
            QVERIFY(QDir(place.filePath()).removeRecursively());
            const bool isBlocked = content.startsWith("in");
            QVERIFY(isBlocked || QDir().mkpath(place.filePath()));
            QFile file(isBlocked ? place.filePath() : place.filePath() + "/nox8.db");
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
            file.close();
            start();
            QVERIFY(find("databaseHint")->isVisible());
            const QString told =
                label("databaseHint").remove(QChar(0x200b)); // may be wrapped there
            QVERIFY(told.startsWith("Настройки не сохраняются: "));
            QVERIFY(told.endsWith(place.filePath() + "/nox8.db"));
            QVERIFY(!isBlocked || QFile::remove(place.filePath()));
        }
        start();
        QVERIFY(!find("databaseHint")->isVisible());
    }

    void recordsAndTellsOfLostRows()
    {
        addSome(2);
        auto *button = find<QToolButton>("recBtn");
        const auto isMarked = [button] {
            const QImage picture = button->grab().toImage();
            return picture.pixelColor(picture.width() / 2, 0) == QColor("#c62828");
        };
        press("recBtn");
        QVERIFY(!button->isChecked()); // before the dialog has begun it
        dialogs.file = folder.filePath("запись/1.csv");
        for (const char *name : {"selectFileBtn", "saveBtn", "closeBtn"})
            QTest::mouseClick(find("recmeas")->findChild<QWidget *>(name), Qt::LeftButton);
        for (const int row : {2, 1}) { // the button speaks of the current instrument
            choose(row);
            QCOMPARE(button->isChecked(), row == 1);
        }
        const auto measureRound = [this] {
            now = now.addSecs(1);
            measure(0, 1, 0);
            measure(0, 2, 1);
        };
        measureRound();
        measureRound(); // there is no folder yet
        QVERIFY(isMarked());
        QCOMPARE(button->toolTip(), "Запись в файл\nNOX B № 0001: Запись не ведётся с 24.11.2026 "
                                    "07:05:11: файл не открывается для записи");
        QCOMPARE(button->accessibleDescription(), button->toolTip());
        choose(2); // but its mark of all
        QVERIFY(isMarked() && QDir(folder.path()).mkdir("запись"));
        measureRound();
        QVERIFY(!isMarked() && QFile::exists(dialogs.file));
        QCOMPARE(button->toolTip(), "Запись в файл");
        QVERIFY(QDir(folder.filePath("запись")).removeRecursively());
        measureRound();
        QVERIFY(isMarked());
        registry().rmByIndex(0);
        QVERIFY(!isMarked());
    }

    void filesAreAskedForWhereTheLastOneWas()
    {
        add(0x0970AA0F, 7);
        press("toolButton"); // nothing is chosen
        dialogs.file = folder.filePath("plot.png");
        press("toolButton");
        QVERIFY(!QImage(dialogs.file).isNull() && dialogs.told.isEmpty());
        start();
        dialogs.file = folder.filePath("none/plot.png");
        press("toolButton");
        QCOMPARE(dialogs.told.size(), 1);
        press("toolButton_3");
        QStringList places;
        for (const FileQuestion &question : qAsConst(dialogs.fileQuestions))
            places << question.directory + ' ' + question.name;
        const QString first = QDir::homePath() + " NOX D rev_4_N0007_24-11-2026";
        QCOMPARE(places,
                 (QStringList{first, first, folder.path() + ' ', folder.filePath("none") + ' '}));
    }

    void readsIntoAnEmptyRegistry()
    {
        dialogs.file = folder.filePath("results.csv");
        QFile file(dialogs.file);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(toWindows1251("Начало измерений. Дата 23.11.2026 Время 06:00:00;\r\n\r\n"
                                 "№;dT;Канал 1;Канал 2;\r\n ;[c];[°С];[Ом];\r\n"
                                 "1;5;21.5000;101.2500;\r\n2;6;21.7500;--;\r\n"));
        file.close();
        press("toolButton_3");
        showFrame();
        QCOMPARE(column(channels(), ChannelColumn::Value), "21.75 101.25");
        QCOMPARE(column(channels(), ChannelColumn::Unit), "°С Ω");
        QCOMPARE(plot().getStartDateTime(), QDateTime({2026, 11, 23}, {6, 0}));
        QVERIFY(find("readingBar")->isHidden());
        QCOMPARE(label("readingLabel"), "Чтение: results.csv");

        // once more the same; what the instrument measures stays away from what was read
        registry().setProccesed(0, true, false);
        press("toolButton_3");
        QCOMPARE(plot().getChMeasCount(0, 0), 2);
        QVERIFY(!record(0).processed);
        record(0).opt->setDevType(0x11);
        QVERIFY(title().startsWith("NOX B"));
    }

    void longReadingIsShownAndStopped()
    {
        dialogs.file = folder.filePath(QString(60, 'w') + ".csv");
        QFile results(dialogs.file);
        QVERIFY(results.open(QIODevice::WriteOnly));
        results.write(toWindows1251("Начало измерений. Дата 23.11.2026 Время 06:00:00;\r\n\r\n"
                                    "№;dT;Канал 1;\r\n ;[c];[°С];\r\n"));
        const int rows = 2000000;
        results.write(QByteArray("1;5;21.5;\r\n").repeated(rows));
        results.close();
        press("toolButton_3");
        const auto *const progress = find<QProgressBar>("readingProgress");
        const int begun = progress->value();
        QVERIFY(find("readingBar")->isVisible() && begun < 50);
        QTRY_VERIFY(progress->value() > begun);
        QVERIFY(label("readingLabel").startsWith("Чтение: ww") &&
                label("readingLabel").contains("…"));
        QCOMPARE(find("readingLabel")->toolTip(), QFileInfo(dialogs.file).fileName());
        press("stopReadingBtn");
        QTRY_VERIFY(find("readingBar")->isHidden());
        QVERIFY(plot().getChMeasCount(0, 0) < rows);
    }

    void remembersThePlotOfEachInstrument()
    {
        addSome(2);
        click(channels(), 2, ChannelColumn::Value);
        choose(2);
        click(channels(), 4, ChannelColumn::Value);
        press("mainAverLabel");
        const auto restartWith = [this](std::initializer_list<quint16> numbers) {
            start();
            for (const quint16 number : numbers)
                add(0x11, number);
        };
        // the second one is current again although it comes last; the new third one inherits from
        // it
        restartWith({1, 3, 2});
        QCOMPARE(words({title(), plot().getChMain(0), plot().getChMain(1), plot().getChMain(2)}),
                 "NOX B № 0002 1 3 3");
        QVERIFY(!plot().getAverShow(1) && !plot().getAverShow(2));
        // after its removal the newest of the others is current, now and later
        registry().rmByIndex(2);
        restartWith({2, 1, 3});
        QCOMPARE(title(), "NOX B № 0003");
    }
};

QTEST_MAIN(TestStart)
#include "tst_start.moc"
