#include "device/vocabulary.h"
#include "dialogs/settingscontent.h"
#include "dialogsfixture.h"

/** The settings of an instrument, worked by keys and clicks; its image is what comes out. */
class TestDeviceSettings : public DialogsTest
{
    Q_OBJECT
private slots:
    /** Of the settings and of the cards, whatever an instrument may hold. */
    void openingChangesNothing()
    {
        QStringList shown;
        for (const quint32 type : {0U, noxC, noxCm, noxCm1Rev4}) {
            addOdd(type);
            nox->dbIndex = type == 0 ? 0 : nox->dbIndex;
            settings->show(nox->index); // which matches a snapshot
            const QByteArray before = data() + references();
            heard();
            settings->show(nox->index);
            for (int tab = 0; tab < 4; ++tab)
                find<QTabWidget>("tabWidget")->setCurrentIndex(tab);
            shown << settings->windowTitle() << seenForm(settings.get());
            settings->reject();
            card->show(nox->index, {20, 20});
            QCOMPARE(card->pos(), QPoint(20, 20));
            shown << seenForm(card.get());
            for (const quint8 ch : {6, 0, 7}) {
                channelCard->show(nox->index, {20, 20}, ch);
                if (!channelCard->isVisible())
                    continue; // of an unknown model
                channelCard->onChChange(nox->index, ch);
                shown << seenForm(channelCard.get());
                for (const QMenu *menu : channelCard->findChildren<QMenu *>())
                    shown << seen(menu);
                channelCard->hide();
            }
            QCOMPARE(heard(), QString());
            QVERIFY(data() + references() == before);
        }
        QCOMPARE(shown.replaceInStrings(QRegExp(" от .*\\["), ""),
                 linesOf(QFINDTESTDATA("data/forms.txt")));
    }

    void modelsDecideWhatIsOffered()
    {
        QStringList shown;
        for (const quint32 type : optionsNOX8::getTypeList(true).keys())
            for (const quint8 shortCircuit : {0, 1}) {
                open(type);
                nox->dbIndex = 0;
                image->identValid = shortCircuit != 0;
                image->setDevZakorotka(shortCircuit);
                settings->onDevChange(nox->index);
                shown << see("devTypeCB devCompensTPCB devNameEdit rmDevBtn");
            }
        QCOMPARE(shown, linesOf(QFINDTESTDATA("data/models.txt")));
    }

    void compensationNeedsThermocouple()
    {
        constexpr auto table = FeatureRecord::temperatureOfVoltage;
        constexpr auto thermometer = FeatureRecord::polynomial;
        const auto isOffered = [this](quint32 type, quint8 compensation,
                                      CharacteristicSource source, auto own) {
            open(type);
            image->devCompensTP = compensation;
            image->channels[0].featureType = source;
            image->channels[0].feature = 5;
            image->features[5]->type = own;
            emit image->onDevChange();
            return !seenCell(cell("chTable", 0, CompensationSetting)).contains('~');
        };
        QVERIFY(isOffered(noxCm, 2, featureThermocouple, thermometer));
        QVERIFY(isOffered(noxCm, 2, featureIndividual, table));
        QVERIFY(!isOffered(noxC, 2, featureThermocouple, table));
        QVERIFY(!isOffered(noxCm, 1, featureThermocouple, table));
        QVERIFY(!isOffered(noxCm, 3, featureThermocouple, table));
        QVERIFY(!isOffered(noxCm, 2, featureIndividual, thermometer));
        QVERIFY(!isOffered(noxCm, 2, featureResistanceThermometer, table));
        QVERIFY(!isOffered(noxCm, 2, featureNone, table));
    }

    void entriesAreTaken()
    {
        open(noxCm1);
        operatingListsAreStored();

        open(noxCm1Rev4);
        QVERIFY(QTest::qWaitForWindowActive(settings.get()));
        for (const char *passed : {"devPortEdit", "devNumEdit", "devNameEdit"})
            press(passed, {Qt::Key_Tab});
        enter("devNameEdit", "NOX CM1 rev.4 № 0123"); // as it is shown for one without a name
        QCOMPARE(see("devNameEdit") + heard(), QString("NOX CM1 rev.4 № 0123"));
        QVERIFY(image->devName.isEmpty() && !image->identApplyPending);
        enter("devNameEdit", " A name of more than sixteen");
        QCOMPARE(see("devNameEdit") + '|' + heard(),
                 QString("A name of more t {changed}|identity, device"));
        image->setDevName("Печь"); // from elsewhere: nothing is being written any more
        QCOMPARE(see("devNameEdit"), QString("Печь {changed}"));
        open(0);
        nox->dbIndex = 0;
        settings->onDevChange(nox->index);
        choose("devTypeCB", 1);
        QCOMPARE(image->devType, 1U);
    }

    /** For one channel by its cell, for all by the header of the column. */
    void columnsAreChosen()
    {
        const QStringList currents = optionsNOX8::getDevCurrentList(noxCm);
        const QStringList resistors = optionsNOX8::getDevResistList(noxCm);
        const QStringList couples = standardThermocouples();
        const QStringList sensors = standardResistanceThermometers();
        struct {
            int column;
            QString ticked; // before
            QString entry;
            QString after;
        } const choices[] = {{0, "Вкл.", "Выкл.", "-"},
                             {1, "Ω", "мВ", "мВ"},
                             {2, currents.at(0), currents.at(3), currents.at(3)},
                             {3, resistors.at(0), resistors.at(2), resistors.at(2)},
                             {4, couples.at(0), "Печь && ко", "Печь & ко"},
                             {4, couples.at(0), "НСХ ТП/" + couples.at(2), couples.at(2)},
                             {5, sensors.at(5), "НСХ ТС/" + sensors.at(2), sensors.at(2)}};
        for (const auto &[column, before, entry, after] : choices) {
            open(noxCm);
            image->features[6]->name = "Печь & ко";
            image->devCompensTP = 2;
            for (quint8 ch = 0; ch < 8; ++ch) {
                image->setChFeature(ch, featureThermocouple, 0);
                image->setChFeatureCompesTP(ch, compensResistanceThermometer, 5);
            }
            QStringList expected = columnTexts(column);
            expected[4] = after;
            pressCell(4, column);
            QCOMPARE(ticked(), before);
            pickEntry(entry);
            QCOMPARE(columnTexts(column), expected);
            pressCell(-1, column);
            QCOMPARE(ticked(), QString());
            pickEntry(entry);
            QCOMPARE(columnTexts(column).count(after), 8);
        }
    }

    /** Beside the cell, or below the header for all channels; not from a cell out of use. */
    void keysOpenTheMenus()
    {
        open(noxCm);
        const int right =
            channels()->viewport()->mapToGlobal({channels()->columnViewportPosition(2), 0}).x();
        channels()->setCurrentCell(3, 1);
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Menu})
            for (const auto modifier : {Qt::NoModifier, Qt::ControlModifier}) {
                QTest::keyClick(channels(), key, modifier);
                QCOMPARE(ticked(), QString(modifier ? "" : "Ω"));
                QCOMPARE(QApplication::activePopupWidget()->x(), right);
                QApplication::activePopupWidget()->close();
            }
        emit channels()->cellPressed(3, 5);
        QCOMPARE(ticked(), QString("no menu"));
        QString hands;
        for (int column = 0; column < 6; ++column) {
            emit channels()->cellEntered(0, column);
            hands += channels()->cursor().shape() == Qt::PointingHandCursor ? 'x' : '.';
        }
        QCOMPARE(hands, QString("....xx"));
    }

    void ownUnitIsWritten()
    {
        open(noxCm);
        QStringList units;
        for (const QString text : {"", "бар\x1b", "бар на метр\r"}) {
            channels()->setCurrentCell(2, 1);
            QTest::keyClick(channels(), Qt::Key_Space);
            QWidget *const menu = QApplication::activePopupWidget();
            QTest::keyClick(menu, Qt::Key_Up); // the last entry is the line
            auto *const line = menu->findChild<QLineEdit *>();
            QTRY_VERIFY(line->hasFocus());
            typeText(line, text.left(11));
            QTest::keyClick(line, text.endsWith('\r') ? Qt::Key_Return : Qt::Key_Escape);
            menu->close();
            units << channels()->item(2, 1)->text();
        }
        QCOMPARE(units, QStringList({"Ω", "Ω", "бар на мет"}));
        pressCell(1, 1); // by the mouse: the press alone chooses
        QTest::mouseClick(QApplication::activePopupWidget()->findChild<QLineEdit *>(),
                          Qt::LeftButton);
        QCOMPARE(image->getCh(1).measType, measTemperatureCustom);
        QCOMPARE(ticked(), QString(":"));
    }

    void buttonsReachTheInstrument_data()
    {
        QTest::addColumn<quint32>("type");
        QTest::addColumn<QString>("expected"); // of two clicks
        const auto add = [](const char *button, quint32 type, const char *expected) {
            QTest::newRow(button) << type << expected;
        };
        add("pushButton_5", noxDRev4, "write identity, write device; write device");
        add("pushButton_5 ", 0, "; ");
        add("devGetConfBtn", noxB, "read 51 8 shown; ");
        add("pushButton_2", noxB, "read 3 72 shown; ");
        add("pushButton_7", noxDRev4, "read 9 148 shown; ");
        add("pushButton_7 ", noxB, "; ");
        add("rmDevBtn", noxB, "database; ");
        add("pushButton_6", noxB, "; ");
    }

    void buttonsReachTheInstrument()
    {
        QFETCH(quint32, type);
        const QString button = QString(QTest::currentDataTag()).trimmed();
        open(type, port->addDev("P1"));
        image->identApplyPending = true;
        for (const char *group : {"refGBox", "refShiftGBox"})
            find<QGroupBox>(group)->setChecked(true);
        answers->answer = QMessageBox::Yes;
        QStringList clicks;
        for (int time = 0; time < 2; ++time) {
            find<QPushButton>(button)->click();
            clicks << heard();
        }
        QTEST(clicks.join("; "), "expected");
        QCOMPARE(settings->isVisible(), button != "pushButton_6");
        QCOMPARE(nox->dbIndex < 1 || !find("rmDevBtn")->isEnabled(), button == "rmDevBtn" || !type);
        settings->reject();
        settings->show(nox->index);
        QVERIFY(!find<QGroupBox>("refGBox")->isChecked());
        QVERIFY(!find<QGroupBox>("refShiftGBox")->isChecked());
    }

    /** Each change of the image is marked in its place and in no other. */
    void changesAreMarkedUntilWritten()
    {
        open(noxCm1);
        QCOMPARE(marks(), QString("......."));
        image->devMeasRound = 0;
        image->devMeasTime = 5;
        image->devCompensTP = 2;
        image->identApplyPending = true; // the model has no name to be written
        QCOMPARE(marks(), QString("xx.x..."));
        image->devMeasMode = 0;
        image->devChRevers = 16;
        image->setDevZakorotka(image->devZakorotka == 0);
        image->setChMeasType(0, measTemperature, QString());
        QCOMPARE(marks(), QString("xxxxxx. c0:1"));
        nox->held.noteWritten(0, data());
        emit registry->onHeldChange(nox->index);
        image->setChMeasType(0, measTemperatureCustom, "бар"); // an instrument knows of no units
        QCOMPARE(marks(), QString("......."));
        image->setChOnOff(1, 0);
        image->setChMeasType(2, measVoltage, QString());
        image->setChCurrent(3, 3);
        image->setChResist(4, 2);
        image->setChFeature(5, featureThermocouple, 0);
        image->channels[6].feature = 2;
        image->channels[14].featureTypeCompensTP = compensThermocouple;
        image->channels[15].featureCompensTP = 2;
        image->getFeature(15)->name = "Эталон";
        QCOMPARE(marks(), QString("....... c1:0 c2:1 c3:2 c4:3 c5:4 c6:4 c14:5 c15:5 f15:0"));
    }

    void serviceUnlocks()
    {
        open(noxCm);
        image->identValid = true;
        settings->onDevChange(nox->index);
        const QString parts = "devNumEdit uShiftGBox chUPB";
        QCOMPARE(see(parts),
                 QString("0123 {read only} | Смещения <U>  {hidden, off} | > U < {hidden, off}"));
        QVERIFY(!find("devTypeCB")->isEnabled());
        QTest::keyClick(settings.get(), Qt::Key_Escape);
        QTest::keyPress(settings.get(), Qt::Key_PageUp);
        click("pushButton_6");
        QTest::keyRelease(settings.get(), Qt::Key_PageUp);
        QCOMPARE(see(parts), QString("0123 | Смещения <U>  {off} | > U < {off}"));
        QVERIFY(see("tabWidget").endsWith("Смещение <0> ") && find("devTypeCB")->isEnabled());
        enter("devNumEdit", "65537");
        QCOMPARE(int(image->devNumber), 1);
        click("pushButton_6");
        QVERIFY(!settings->isVisible());
        settings->show(nox->index);
        QCOMPARE(see(parts).left(16), QString("0001 {read only}"));
    }

    /** A file tells of name and shifts without a word; entries of its own the dialog keeps, until
     *  something else is shown in their place. */
    void typedTextOutlivesRefresh()
    {
        open(noxCm1Rev4);
        image->devName = "Печь";
        image->shiftCh[0].value = 0.5F;
        answers->file = directory->filePath("a.ust");
        QVERIFY(image->saveToFile(answers->file, "COM1"));
        image->devName = "Баня";
        image->shiftCh[0].value = 0.25F;
        settings->show(nox->index);
        QVERIFY(QTest::qWaitForWindowActive(settings.get()));
        press("devNameEdit", {Qt::Key_1});
        emit image->onDevChange();
        typeText(find("devNameEdit"), "?");
        QCOMPARE(see("devNameEdit"), QString("Баня1?"));

        QTableWidgetItem *const shift = cell("ch8ShiftTable", 0, 0);
        QTableWidgetItem *const reference = cell("refTable", 0, 0);
        shift->setText("0.7");
        reference->setText("75.1");
        choose("devMeasRoundCB", 0);
        emit registry->onHeldChange(nox->index);
        QCOMPARE(shift->text() + ' ' + reference->text(), QString("0.7 75.1"));
        click("pushButton_3");
        QCOMPARE(shift->text() + ' ' + reference->text() + ' ' + see("devNameEdit"),
                 QString("0.500000 0.0000 Печь {changed}"));
    }

    void showsTheTransfer()
    {
        open(noxCm, port->addDev("P1"));
        const auto *const bar = find<QProgressBar>("pgBar");
        const auto told = [&](int devIndex, int progress, int most) {
            emit port->setProgress(devIndex, progress, most, 2);
            return bar->isHidden() ? "hidden"
                                   : QString("%1/%2").arg(bar->value()).arg(bar->maximum());
        };
        QCOMPARE(told(4, 10, 20), QString("hidden"));
        QCOMPARE(told(0, 10, 20), QString("10/20"));
        QCOMPARE(told(0, -1, 20), QString("-1/20"));
        QCOMPARE(told(0, 0, 20), QString("0/20"));
        QCOMPARE(told(0, 0, 0), QString("hidden"));
        QCOMPARE(told(0, 3, 20), QString("3/20"));
        QCOMPARE(see("devPortEdit connectionLabel"), QString("P1 {read only} | "));
        registry->disConnByIndex(nox->index);
        QCOMPARE(see("connectionLabel"), QString("Прибор не подключён"));
        QVERIFY(bar->isHidden());
        settings->reject();
        QCOMPARE(told(0, 3, 20), QString("hidden"));
    }

    void removedWhileOpen()
    {
        for (const QByteArray meanwhile : {"nothing", "menu", "editor"}) {
            open(noxCm);
            const int index = nox->index;
            registry->rmByIndex(registry->newNox(-1, true)->index); // another one
            QVERIFY(settings->isVisible());
            if (meanwhile == "editor") {
                QTimer::singleShot(0, this, [&] {
                    QWidget *const editor = QApplication::activeModalWidget();
                    registry->rmByIndex(index);
                    editor->close();
                });
                QTest::keyClick(find<QTableWidget>("featTable"), Qt::Key_Return);
            } else {
                if (meanwhile == "menu")
                    pressCell(1, 4);
                registry->rmByIndex(index);
            }
            QVERIFY(!settings->isVisible() && !QApplication::activePopupWidget());
            QCOMPARE(answers->told.takeLast().text, QString("Прибор удалён:\nNOX CM № 0123"));
            settings->onDevChange(index); // nobody is shown any more
        }
    }

private:
    /** The lists and the name that are marked as changed, and the cells: c of the channels, f of
     *  the characteristics. */
    QString marks() const
    {
        emit image->onDevChange();
        const QString fields = "devMeasRoundCB devMeasTimeCB devMeasModeCB devCompensTPCB "
                               "devChReversCB devZakorotkaCB devNameEdit";
        QString marks;
        for (const QString &text : seen(settings.get(), fields))
            marks += text.contains("changed") ? 'x' : '.';
        for (const char *table : {"chTable", "featTable"})
            for (int row = 0; row < 16; ++row)
                for (int column = 0; column < find<QTableWidget>(table)->columnCount(); ++column)
                    if (seenCell(cell(table, row, column)).startsWith('*'))
                        marks += QString(" %1%2:%3").arg(table[0]).arg(row).arg(column);
        return marks;
    }
    QTableWidget *channels() const { return find<QTableWidget>("chTable"); }
    QStringList columnTexts(int column) const
    {
        QStringList texts;
        for (int row = 0; row < channels()->rowCount(); ++row)
            texts << channels()->item(row, column)->text();
        return texts;
    }
    void pressCell(int row, int column) const
    {
        const QHeaderView *const header = channels()->horizontalHeader();
        const QPoint place(header->sectionViewportPosition(column) + 20, 5);
        if (row < 0)
            QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        else
            QTest::mouseClick(channels()->viewport(), Qt::LeftButton, Qt::NoModifier,
                              place + QPoint(0, channels()->rowViewportPosition(row)));
    }
};

QTEST_MAIN(TestDeviceSettings)
#include "tst_devicesettings.moc"
