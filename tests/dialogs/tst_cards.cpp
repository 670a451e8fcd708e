#include "device/vocabulary.h"
#include "dialogsfixture.h"

/** The cards of an instrument and of a channel, worked by keys and clicks. */
class TestCards : public DialogsTest
{
    Q_OBJECT
private slots:
    void listsAreStored()
    {
        add(noxCm1);
        showInstrument();
        operatingListsAreStored();
        card->hide();
        showChannel(2);
        QCOMPARE(chosen("unitCB", 2), QString("81121000 01200000 channel 2"));
        QCOMPARE(chosen("currentCB", 7), QString("81121000 01270000 channel 2"));
        QCOMPARE(chosen("resistorCB", 3), QString("81121000 01273000 channel 2"));
    }

    /** What they announce, and whether the instrument is measured then and has its link. */
    void buttonsOfAnInstrument()
    {
        const QVector<QPair<QString, QString>> buttons = {
            {"closeBtn", " 1 0"},
            {"readLogBtn", "read 5 32768 shown records 1 0"},
            {"setupBtn", "settings 1 0"},
            {"readBtn", "read 51 8 shown 1 0 open"},
            {"startBtn", "registry 0 0"},
            {"applyBtn", "write channel 0 1 0"},
            {"connectBtn", "registry 1 -1"},
            {"removeBtn", "registry, removed"}};
        for (const auto &[button, expected] : buttons) {
            const int index = add(noxB, port->addDev("P1"))->index;
            showInstrument();
            heard();
            click(button);
            QString outcome = heard();
            if (const noxList::_nox *const left = registry->getNoxByIndex(index))
                outcome += QString(" %1 %2").arg(left->processed).arg(left->devIndex);
            QCOMPARE(outcome + (card->isVisible() ? " open" : ""), expected);
            registry->rmByIndex(index);
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
        QVERIFY(on.width() > 40 && on.width() <= 55 && on.height() <= 25);
        click("switchLabel");
        QCOMPARE(heard(), QString("channel 2, write channel 2"));
        QVERIFY(!channelCard->isVisible() && image->getCh(2).onOff == 0);
        showChannel(2);
        QCOMPARE(see("switchLabel"), QString("Канал выключен"));
        QVERIFY(find<QLabel>("switchLabel")->pixmap(Qt::ReturnByValue).toImage() != on);
        press("switchLabel", {Qt::Key_Space});
        QCOMPARE(heard(), QString("channel 2, write channel 2"));
        QVERIFY(!channelCard->isVisible() && image->getCh(2).onOff == 1);
        for (const QString button : {"applyBtn", "closeBtn"}) {
            showChannel(4);
            click(button);
            QVERIFY(!channelCard->isVisible());
            QCOMPARE(heard(), QString(button == "applyBtn" ? "write channel 4" : ""));
        }
    }

    void characteristicsAreChosen()
    {
        const QString couple = standardThermocouples().at(1);
        const QString sensor = standardResistanceThermometers().at(2);
        const auto names = [this] {
            return find("featureLabel")->toolTip() + '|' + find("compensationLabel")->toolTip();
        };
        add(noxCm);
        showChannel(1);
        QVERIFY(!find("compensationLabel")->isEnabled());
        click("featureLabel");
        QCOMPARE(QApplication::activePopupWidget()->pos(),
                 find("featureLabel")->mapToGlobal({0, find("featureLabel")->height()}));
        pickEntry("НСХ ТП/" + couple);
        QCOMPARE(heard(), QString("channel 1, channel 1"));
        QCOMPARE(image->getCh(1).featureType, featureThermocouple);
        QCOMPARE(find<QComboBox>("unitCB")->currentText(), QString("°С"));
        press("compensationLabel", {Qt::Key_Return});
        pickEntry("НСХ ТС/" + sensor);
        QCOMPARE(image->getCh(1).featureTypeCompensTP, compensResistanceThermometer);
        QCOMPARE(names(), couple + '|' + sensor);

        const QString own = "<i>не разметка " + QString(60, 'x');
        image->features[2]->name = own;
        click("featureLabel");
        pickEntry(own);
        QCOMPARE(names(), own.toHtmlEscaped() + "|-");
        QVERIFY(find<QLabel>("featureLabel")->text().endsWith(QChar(0x2026)));
        find("compensationLabel")->setEnabled(true);
        for (const QString label : {"featureLabel", "compensationLabel", "editBtn"}) {
            click(label);
            QCOMPARE(ticked(), label == "compensationLabel" ? sensor : own);
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
        typeText(list, "м");
        QCOMPARE(list->currentText(), QString("м")); // not completed to another entry
        typeText(list, " ");
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
        const QStringList orders = {
            "closeBtn devPortEdit devMeasRoundCB devMeasTimeCB devMeasModeCB devCompensTPCB "
            "devChReversCB devZakorotkaCB removeBtn connectBtn readLogBtn readBtn startBtn "
            "setupBtn applyBtn",
            "closeBtn switchLabel unitCB currentCB resistorCB featureLabel editBtn applyBtn"};
        for (const QString &order : orders) {
            if (order == orders.first())
                showInstrument();
            else
                showChannel(0);
            QWidget *const open = form();
            QCOMPARE(open->focusWidget()->accessibleName(), find<QLabel>("titleLabel")->text());
            QStringList reached;
            for (int i = 0; i <= order.count(' '); ++i) {
                QTest::keyClick(open->focusWidget(), Qt::Key_Tab);
                reached << open->focusWidget()->objectName();
                QVERIFY(!open->focusWidget()->accessibleName().isEmpty());
            }
            QCOMPARE(reached.join(' '), order);

            const QByteArray before = data();
            for (QComboBox *list : open->findChildren<QComboBox *>())
                turnWheel(list);
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
                for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Return})
                    QTest::keyClick(QApplication::activePopupWidget(), key);
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
