#include "device/vocabulary.h"
#include "dialogsfixture.h"

/** The cards of an instrument and of a channel, worked by keys and clicks. */
class TestCards : public DialogsTest
{
    Q_OBJECT
private slots:
    void init() { prepare(); }
    void cleanup() { tidyUp(); }

    void openingChangesNothing()
    {
        QStringList shown;
        for (const quint32 type : {0U, noxB, noxCm1Rev4}) {
            add(type);
            image->channels[6] = {3,  measTemperatureCustom, "bar",      15, 15, 12,
                                  15, featureThermocouple,   compensNone}; // as odd as can be
            image->channels[0].feature = 3;
            const QByteArray before = data();
            showInstrument();
            QCOMPARE(card->pos(), QPoint(20, 20));
            shown << seenForm(card.get());
            card->hide();
            for (const uchar ch : {uchar(6), uchar(0)}) {
                showChannel(ch);
                if (!channelCard->isVisible())
                    continue; // of an unknown model
                for (const QMenu *menu : channelCard->findChildren<QMenu *>())
                    if (menu->title().startsWith("НСХ"))
                        QCOMPARE(menu->isEnabled(), type > 33);
                channelCard->onChChange(nox->index, ch);
                shown << seenForm(channelCard.get());
                channelCard->hide();
            }
            QCOMPARE(heard(), QString());
            QCOMPARE(data(), before);
        }
        QCOMPARE(shown, linesOf(QFINDTESTDATA("data/cards.txt")));
    }

    void listsAreStored()
    {
        add(noxCm1);
        showInstrument();
        QCOMPARE(chosen("devMeasRoundCB", 1), QString("02100100 01000000 device"));
        QCOMPARE(chosen("devMeasTimeCB", 8), QString("82100100 01000000 device"));
        QCOMPARE(chosen("devMeasModeCB", 1), QString("81100100 01000000 device"));
        QCOMPARE(chosen("devCompensTPCB", 2), QString("81120100 01000000 device"));
        QCOMPARE(chosen("devChReversCB", 1), QString("81121100 01000000 device"));
        QCOMPARE(chosen("devZakorotkaCB", 0), QString("81121000 01000000 device"));
        card->hide();
        showChannel(2);
        QCOMPARE(chosen("unitCB", 2), QString("81121000 01200000 channel 2"));
        QCOMPARE(chosen("currentCB", 7), QString("81121000 01270000 channel 2"));
        QCOMPARE(chosen("resistorCB", 3), QString("81121000 01273000 channel 2"));
    }

    void buttonsOfAnInstrument()
    {
        const QVector<QPair<QString, QString>> buttons = {
            {"closeBtn", ""},           {"readLogBtn", "read 5 32768 shown records"},
            {"setupBtn", "settings"},   {"readBtn", "read 51 8 shown"},
            {"startBtn", ""},           {"applyBtn", "write channel 0"},
            {"connectBtn", "registry"}, {"removeBtn", "registry, removed"}};
        for (const auto &[button, expected] : buttons) {
            add(noxB, port->addDev("P1"));
            showInstrument();
            heard();
            click(button);
            QVERIFY2((heard() + ' ').startsWith(expected), qPrintable(button));
            QCOMPARE(card->isVisible(), button == "readBtn");
            QCOMPARE(registry->indices().isEmpty(), button == "removeBtn");
            if (button != "removeBtn") {
                QCOMPARE(nox->processed, button != "startBtn");
                QCOMPARE(nox->devIndex, button == "connectBtn" ? -1 : 0);
                registry->rmByIndex(nox->index);
            }
            QVERIFY(!card->isVisible());
        }
    }

    void linkDecidesWhatConnectDoes()
    {
        add(noxB);
        showInstrument();
        const QString buttons = "readLogBtn readBtn startBtn";
        QCOMPARE(see(buttons).count("off"), 3);
        QCOMPARE(find("connectBtn")->toolTip(), QString("Подключить прибор"));
        click("connectBtn");
        QCOMPARE(heard(), QString("search"));
        image->setDevNumber(0); // who has no number cannot be searched for
        nox->portName = "P1";
        showInstrument();
        heard();
        click("connectBtn");
        QCOMPARE(heard(), QString("registry"));
        showInstrument();
        QCOMPARE(see(buttons).count("off"), 0);
        QCOMPARE(see("devPortEdit"), QString("P1 {read only}"));
        QCOMPARE(find("connectBtn")->toolTip(), QString("Отключить прибор"));
        registry->disConnByIndex(nox->index); // while it is shown
        QCOMPARE(find("connectBtn")->accessibleName(), QString("Подключить прибор"));
    }

    void applyWritesTheMainChannel()
    {
        add(noxCm);
        store(nox, "Печь 2"); // the first one is never changed
        image->setChCurrent(0, 2);
        nox->snapShotId = store(nox, "Печь 2");
        nox->mainCh = 3;
        showInstrument();
        choose("devMeasTimeCB", 8);
        heard();
        click("applyBtn");
        QCOMPARE(heard(), QString("write channel 3"));
        settings->show(nox->index);
        QVERIFY(find("dbStatusLabel")->isHidden());
        QCOMPARE(see("infoText"), QString("Печь 2<Настройка найдена в БД>"));
        nox->mainCh = 8;
        nox->snapShotId = 0;
        showInstrument();
        click("applyBtn");
        QCOMPARE(heard() + QString::number(nox->snapShotId), QString("0"));
    }

    void switchWritesAtOnce()
    {
        add(noxCm);
        showChannel(2);
        QCOMPARE(see("switchLabel"), QString("Канал включён"));
        const QImage on = find<QLabel>("switchLabel")->pixmap(Qt::ReturnByValue).toImage();
        click("switchLabel");
        QCOMPARE(heard(), QString("channel 2, write channel 2"));
        QVERIFY(!channelCard->isVisible() && image->getCh(2).onOff == 0);
        showChannel(2);
        QCOMPARE(see("switchLabel"), QString("Канал выключен"));
        QVERIFY(find<QLabel>("switchLabel")->pixmap(Qt::ReturnByValue).toImage() != on);
        QVERIFY(on.width() > 40 && on.width() <= 55 && on.height() <= 25);
        press("switchLabel", {Qt::Key_Space});
        QVERIFY(!channelCard->isVisible() && image->getCh(2).onOff == 1);
        heard();
        showChannel(4);
        click("applyBtn");
        QCOMPARE(heard(), QString("write channel 4"));
        showChannel(4);
        click("closeBtn");
        QVERIFY(!channelCard->isVisible());
    }

    void characteristicsAreChosen()
    {
        add(noxCm);
        showChannel(1);
        const auto names = [this] {
            return find("featureLabel")->toolTip() + '|' + find("compensationLabel")->toolTip();
        };
        QVERIFY(!find("compensationLabel")->isEnabled());
        click("featureLabel");
        QCOMPARE(QApplication::activePopupWidget()->pos(),
                 find("featureLabel")->mapToGlobal({0, find("featureLabel")->height()}));
        pickEntry("НСХ ТП/" + standardThermocouples().at(1));
        QCOMPARE(heard(), QString("channel 1, channel 1"));
        QCOMPARE(image->getCh(1).featureType, featureThermocouple);
        QCOMPARE(find<QComboBox>("unitCB")->currentText(), QString("°С"));
        press("compensationLabel", {Qt::Key_Return});
        pickEntry("НСХ ТС/" + standardResistanceThermometers().at(2));
        QCOMPARE(image->getCh(1).featureTypeCompensTP, compensResistanceThermometer);
        QCOMPARE(names(),
                 standardThermocouples().at(1) + '|' + standardResistanceThermometers().at(2));

        image->features[2]->name = "<i>не разметка " + QString(60, 'x');
        click("featureLabel");
        pickEntry(image->features[2]->name);
        QCOMPARE(names(), image->features[2]->name.toHtmlEscaped() + "|-");
        QVERIFY(find<QLabel>("featureLabel")->text().endsWith(QChar(0x2026)));
        for (const QString label : {"featureLabel", "compensationLabel", "editBtn"}) {
            find("compensationLabel")->setEnabled(true);
            click(label);
            QStringList ticked;
            for (const QAction *entry :
                 QApplication::activePopupWidget()->findChildren<QAction *>())
                if (entry->isChecked())
                    ticked << entry->text();
            QCOMPARE(ticked, QStringList(label == "compensationLabel"
                                             ? standardResistanceThermometers().at(2)
                                             : image->features[2]->name));
            QApplication::activePopupWidget()->close();
        }
    }

    /** Letter by letter: a refresh must take nothing away, not even the space at the end. */
    void ownUnitIsTyped()
    {
        add(noxCm);
        showChannel(1);
        auto *const list = find<QComboBox>("unitCB");
        QVERIFY(!list->isEditable());
        press("unitCB", {Qt::Key_End});
        typeText(list, "м ");
        channelCard->onChChange(nox->index, 1);
        emit image->onDevChange();
        typeText(list, "В");
        QCOMPARE(list->currentText() + '|' + image->getChDimCust(1), QString("м В|м В"));
        press("unitCB", {Qt::Key_Backspace, Qt::Key_Backspace});
        typeText(list, "В"); // no choice of the voltage
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(image->getCh(1).measType, measTemperatureCustom);
        typeText(list, "1234567890");
        QCOMPARE(image->getChMeasTypeName(1), QString("мВ12345678"));
        press("unitCB", {Qt::Key_Up});
        QVERIFY(!list->isEditable());
        QCOMPARE(image->getCh(1).measType, measVoltage);
        QCOMPARE(image->getChDimCust(1), QString("мВ12345678"));
    }

    void editedCharacteristicIsUsed()
    {
        for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
            add(noxCm);
            for (quint8 k = 0; k < 8; ++k)
                image->features[k]->setFeature(FeatureRecord::its90, QString(k + 1, 'k'),
                                               {"25", "1", "2", "3", "4", "5", "6", "7", "3"});
            heard();
            showChannel(1);
            bool isEdited = false;
            QTimer editing;
            connect(&editing, &QTimer::timeout, channelCard.get(), [&] {
                if (QWidget *const editor = QApplication::activeModalWidget()) {
                    isEdited = !channelCard->isVisible();
                    QCOMPARE(seen(editor, "featName"), QStringList("kkkkk"));
                    QTest::keyClick(editor->findChild<QPushButton *>("pushButton"), key);
                }
            });
            editing.start(10);
            press("editBtn", {Qt::Key_Return});
            QVERIFY(find<QToolButton>("editBtn")->isChecked());
            pickEntry("kkkkk");
            QVERIFY(!find<QToolButton>("editBtn")->isChecked());
            QTRY_VERIFY(isEdited && channelCard->isVisible());
            QCOMPARE(channelCard->pos(), QPoint(20, 20));
            const bool isApplied = key == Qt::Key_Return;
            QCOMPARE(int(image->getCh(1).feature), isApplied ? 4 : 0);
            QCOMPARE(image->getCh(1).measType, isApplied ? measTemperature : measResistance);
            QCOMPARE(heard().contains("write device"), isApplied);
        }
    }

    void unknownChannelIsNotShown()
    {
        add(noxCm);
        showChannel(8);
        channelCard->show(nox->index + 1, {}, 0);
        card->show(nox->index + 1, {});
        QVERIFY(!channelCard->isVisible() && !card->isVisible());
        showChannel(7);
        image->setData(QByteArray::fromHex("0100000021000001"), 51); // refused: no model any more
        QCOMPARE(see("titleLabel featureLabel currentCB"), QString("Канал № 8 | - | "));
    }

    void inputStaysInTheCard()
    {
        add(noxCm, port->addDev("P1"));
        for (const bool isOfChannel : {false, true}) {
            if (isOfChannel)
                showChannel(0);
            else
                showInstrument();
            QWidget *const open = form();
            QSet<QWidget *> expected;
            for (QWidget *control : open->findChildren<QWidget *>())
                if ((control->focusPolicy() & Qt::TabFocus) && control->isVisible() &&
                    control->isEnabled())
                    expected << control;
            QCOMPARE(open->focusWidget()->accessibleName(), find<QLabel>("titleLabel")->text());
            QSet<QWidget *> reached;
            for (int i = 0; i < expected.size(); ++i) {
                QTest::keyClick(open->focusWidget(), Qt::Key_Tab);
                reached << open->focusWidget();
                QVERIFY(!open->focusWidget()->accessibleName().isEmpty());
            }
            QCOMPARE(reached, expected);

            const QByteArray before = data();
            for (QComboBox *list : open->findChildren<QComboBox *>()) {
                QWheelEvent turn({5, 5}, list->mapToGlobal(QPoint(5, 5)), {}, {0, -120},
                                 Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(list, &turn);
            }
            QCOMPARE(data(), before);
            for (const char *beside : {"headerLine", "titleLabel", "buttonLine"})
                click(beside);
            QVERIFY(open->isVisible());
            QTest::keyClick(open->focusWidget(), Qt::Key_Escape);
            QVERIFY(!open->isVisible());
        }
    }

    void removedWhileOpen()
    {
        for (const QByteArray meanwhile : {"instrument", "channel", "list", "menu", "editor"}) {
            add(noxCm); // under the same index
            bool isRemoved = false;
            if (meanwhile == "instrument")
                showInstrument();
            else
                showChannel(1);
            if (meanwhile == "list")
                press("currentCB", {Qt::Key_Space});
            if (meanwhile == "menu" || meanwhile == "editor")
                click(meanwhile == "menu" ? "featureLabel" : "editBtn");
            QTimer::singleShot(20, this, [&] {
                registry->rmByIndex(nox->index);
                isRemoved = true;
                if (QWidget *const editor = QApplication::activeModalWidget())
                    editor->close();
            });
            if (meanwhile == "editor")
                QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
            if (meanwhile == "editor")
                QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
            QTRY_VERIFY(isRemoved);
            QVERIFY(!QApplication::activeModalWidget() && !QApplication::activePopupWidget());
            QVERIFY(!card->isVisible() && !channelCard->isVisible());
        }
    }

private:
    void showChannel(uchar ch) const { channelCard->show(nox->index, {20, 20}, ch); }
    void showInstrument() const { card->show(nox->index, {20, 20}); }
};

QTEST_MAIN(TestCards)
#include "tst_cards.moc"
