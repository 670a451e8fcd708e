#include "dialogsfixture.h"

/** Stored configurations and settings files of an instrument, worked by clicks and keys. */
class TestStoredSettings : public DialogsTest
{
    Q_OBJECT
private slots:
    void init()
    {
        DialogsTest::init();
        open(noxCm1Rev4);
    }

    void followsTheConfiguration()
    {
        const QString found = "<Настройка найдена в БД>";
        QCOMPARE(box(), QString("....[Новая настройка]<Настройка НЕ найдена в БД> {off}"));
        const int factory = store(nox, "с завода");
        settings->findSnapShot();
        QVERIFY(box().startsWith("...i[NOX") && box().endsWith(" (Заводская)]с завода" + found));
        QCOMPARE(nox->snapShotId, factory);
        change();
        typeText(find("infoText"), "x"); // a factory one is never changed
        QCOMPARE(box().left(4), QString("!..i"));
        search("печь"); // what is stored takes the place of what was found
        click("addDBBtn");
        const int snapshot = nox->snapShotId;
        QVERIFY(snapshot > 1);
        QVERIFY(box().startsWith("..ri[NOX CM1 rev.4 № 0123 № 0123 от "));
        QVERIFY(box().endsWith("]xс завода" + found));
        change();
        QCOMPARE(box().left(4), QString("!sri"));
        click("saveDBBtn");
        QCOMPARE(box().left(4), QString("..ri"));
        QCOMPARE(nox->snapShotId, snapshot);
        QCOMPARE(database->getSnapShotCount(nox->dbIndex), 2);

        typeText(find("infoText"), "y"); // a description alone can be saved as well
        emit image->onDevChange();       // a refresh leaves what is being written
        QCOMPARE(box().left(4), QString(".sri"));
        click("saveDBBtn");
        QCOMPARE(box().left(4) + database->getSnapShotInfo(snapshot), QString("..rixyс завода"));
        typeText(find("infoText"), "z");
        nox->snapShotId = 1; // of another snapshot nothing was being written
        emit registry->onChange();
        QVERIFY(box().startsWith("!..i[") && box().endsWith("]с завода" + found));
    }

    void searches()
    {
        store(nox, "заводская");
        image->setChOnOff(0, 0);
        nox->snapShotId = store(nox, "Печь №2");
        const auto *const list = find<QComboBox>("dbFindCB");
        const auto found = [&](const QString &text) {
            search(text);
            emit image->onDevChange(); // a refresh leaves what was found
            return QString("%1 %2").arg(list->count()).arg(list->currentText());
        };
        QCOMPARE(found("Пе"), QString("1 Введите не менее 3-х символов"));
        QCOMPARE(found("Печ"), QString("2 Найдено: 1"));
        QCOMPARE(list->itemData(1).toInt(), nox->snapShotId);
        QCOMPARE(list->itemData(1, Qt::ToolTipRole).toString(), list->itemText(1));
        QCOMPARE(found("nox cm1"), QString("3 Найдено: 2"));
        QCOMPARE(found("холодильник"), QString("1 Найдено: 0"));
        search({});
        QCOMPARE(list->count(), 1);
        QCOMPARE(list->currentData().toInt(), nox->snapShotId);
        search("Печ");
        settings->show(nox->index);
        QCOMPARE(see("dbSearchEdit") + QString::number(list->count()), QString("1"));
    }

    void chosenSnapshotIsAppliedWhole()
    {
        store(nox, "заводская");
        image->setChCurrent(9, 3);
        image->refR[2].a.value = 0.25F;
        image->shiftCh[15].value = 1.5F;
        const QByteArray wanted = data() + references();
        const int snapshot = store(nox, "Печь");
        image->setChCurrent(9, 0);
        image->refR[2].a.value = 0.0F;
        image->shiftCh[15].value = 0.0F;
        search("печь");
        typeText(find("infoText"), "x");
        heard();
        press("dbFindCB", {Qt::Key_Down});
        QVERIFY(data() + references() == wanted);
        QCOMPARE(heard().count("shifts"), 1); // once, though a list tells of each choice twice
        QCOMPARE(nox->snapShotId, snapshot);
        QVERIFY(box().startsWith("..ri[NOX ") && box().endsWith("]Печь<Настройка найдена в БД>"));
        image->setChCurrent(9, 1);
        QCoreApplication::processEvents();              // the choice before is over
        emit find<QComboBox>("dbFindCB")->activated(0); // the only entry of the list again
        QVERIFY(data() + references() == wanted);
    }

    void unsuitedSnapshotIsNotApplied()
    {
        QStringList told;
        store(add(noxDRev4), "восемь каналов");
        for (const quint32 unsuited : {noxCm1Rev4, 0U}) {
            open(unsuited);
            const int snapshotBefore = nox->snapShotId;
            const QByteArray before = references();
            search("восемь");
            press("dbFindCB", {Qt::Key_Down});
            QCOMPARE(nox->snapShotId, snapshotBefore);
            QVERIFY(unsuited == 0 || references() == before);
            told << answers->told.value(told.size()).text;
            QCoreApplication::processEvents();
        }
        QCOMPARE(told, QStringList({"Эта настройка не подходит прибору: у него другое число "
                                    "каналов.",
                                    "Настройку нельзя применить: тип прибора не известен."}));
    }

    void removingAsks()
    {
        click("rmDBBtn");
        QVERIFY(answers->asked.isEmpty());
        storeTwo();
        for (const char *button : {"rmDBBtn", "rmDevBtn"}) {
            find<QPushButton>(button)->click();
            QCOMPARE(told(),
                     QString("2 [Настройки прибора NOX CM1 rev.4 № 0123] Вы уверены? 14000/10000"));
        }
        QCOMPARE(database->getSnapShotCount(nox->dbIndex), 2);
        answers->answer = QMessageBox::Yes;
        click("rmDBBtn");
        QCOMPARE(database->getSnapShotCount(nox->dbIndex), 1);
        QCOMPARE(nox->snapShotId, 0);
        QVERIFY(box().startsWith("....[Новая настройка]"));
    }

    /** Nothing is lost but what was to be removed, and nothing written into another. */
    void goneWhileAsked()
    {
        for (const QByteArray gone : {"instrument", "another comes", "dialog"})
            for (const QByteArray button : {"rmDBBtn", "rmDevBtn", "pushButton_3", "pushButton_4",
                                            "pushButton", "pushButton_8"}) {
                const bool isReference = button == "pushButton" || button == "pushButton_8";
                cleanup();
                init();
                storeTwo();
                const int instrument = nox->dbIndex;
                answers->answer = isReference ? QMessageBox::Ok : QMessageBox::Yes;
                answers->file = directory->filePath("x.ust");
                answers->meanwhile = [this, gone] {
                    if (gone == "dialog")
                        return settings.reset();
                    registry->rmByIndex(nox->index);
                    if (gone == "another comes")
                        open(noxDRev4);
                };
                // a button must not be destroyed while it is clicked by an event of its own
                QMetaObject::invokeMethod(settings.get(), "on_" + button + "_clicked");
                QVERIFY(!QFile::exists(answers->file) && !heard().contains("write"));
                QCOMPARE(answers->told.size(), gone == "dialog" ? 0 : 1); // of the removal
                QVERIFY(gone != "another comes" || nox->dbIndex >= 1);
                const bool isRemoved = button == "rmDBBtn" && gone != "dialog";
                QCOMPARE(database->getSnapShotCount(instrument), isRemoved ? 1 : 2);
            }
    }

    void closedDatabase()
    {
        cleanup();
        prepare("none/nox8.db");
        add(noxCm)->snapShotId = 3;
        settings->show(nox->index);
        QVERIFY(box().startsWith("....[Новая настройка]"));
        search("печь");
        click("addDBBtn");
        QCOMPARE(nox->snapShotId, 0);
    }

    void settingsFiles()
    {
        QVERIFY(QDir(directory->path()).mkdir("deep"));
        answers->file = directory->filePath("deep/печь.ust");
        image->setChResist(4, 2);
        const QByteArray saved = data();
        click("pushButton_4");
        image->setChResist(4, 0);
        click("pushButton_3");
        QCOMPARE(data(), saved);
        QCOMPARE(answers->files.first().directory, QDir::homePath());
        QVERIFY(answers->files.first().asksToReplace);
        QCOMPARE(answers->files.last().mode, QFileDialog::AcceptOpen);
        QCOMPARE(answers->files.last().name, QString("печь.ust"));
        for (const char *file : {"", "none/x.ust"}) { // given up, and not to be read or written
            answers->file = *file ? directory->filePath(file) : QString();
            image->setChResist(4, 1);
            click("pushButton_3");
            click("pushButton_4");
            QCOMPARE(image->getCh(4).resist, quint8(1));
        }
        QCOMPARE(answers->told.size(), 2);
        QCOMPARE(answers->told.at(0).title, QString("Ошибка чтения файла настроек"));
        QCOMPARE(answers->told.at(1).title, QString("Ошибка записи настроек в файл"));
    }

    void namesOfSettingsFiles()
    {
        database->setAppProperty("ust_dir", directory->path());
        const auto proposed = [this](quint32 type, const QString &name) { // to write, and to read
            answers->files.clear();
            open(type);
            image->devName = name;
            click("pushButton_4");
            click("pushButton_3");
            return answers->files.at(0).name + '|' + answers->files.at(1).name;
        };
        QCOMPARE(proposed(noxCm, {}), QString("NOX CM № 0123.ust|NOX CM № 0123.ust"));
        QCOMPARE(proposed(noxDRev4, "Эталон"), QString("Эталон_N0123.ust|Эталон.ust"));
        QCOMPARE(proposed(noxDRev4, "a/b:c"), QString("a_b_c_N0123.ust|a_b_c.ust"));
        QCOMPARE(answers->files.at(0).directory, directory->path());
        QVERIFY(answers->told.isEmpty());
    }

private:
    void search(const QString &text) const { write("dbSearchEdit", text); }
    void change() { choose("devMeasRoundCB", (image->devMeasRound / 16 + 1) % 3); }
    void storeTwo()
    {
        store(nox, "заводская");
        image->setChOnOff(0, 0);
        nox->snapShotId = store(nox, "лишняя");
        settings->findSnapShot();
    }
};

QTEST_MAIN(TestStoredSettings)
#include "tst_storedsettings.moc"
