#include "registry/findnox.h"
#include "registrybench.h"

#include <QtWidgets>

#include <memory>

namespace
{

const QColor incomplete(255, 236, 179); // the ground of a cell where something is missing

} // namespace

/** Discovery: the dialog with simulated instruments on its ports. */
class TestFindNox : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        QLocale::setDefault(QLocale::English); // as the window does
        bench = std::make_unique<RegistryBench>();
        dialog = std::make_unique<findNox>(nullptr, &bench->list);
        dialog->setStyleSheet("QLineEdit { selection-background-color: teal; }"); // as the window
        table = find<QTableWidget>("newDevTable");
    }

    void cleanup()
    {
        dialog.reset();
        bench.reset();
    }

    void identifiedOnesConnectAndAreKept()
    {
        bench->add("A", "NOX CM rev.4", 4071);
        bench->add("B", "NOX B", 1234);
        QStringList shown;
        connect(&bench->list, &noxList::onAddNox, dialog.get(), [&] { shown << row(1); });
        QVERIFY(finds());
        shown.sort();
        QCOMPARE(shown, (QStringList{"A; NOX CM rev.4; 4071; checked, fixed",
                                     "B; NOX B; 1234; checked, fixed"}));
        for (const int index : {0, 1}) {
            QVERIFY(bench->isRead(index));
            const noxList::_nox &nox = *bench->list.getNoxByIndex(index);
            // nothing is written to an instrument only because it was found
            QVERIFY(nox.opt->identValid && nox.txCodes.isEmpty() && !nox.txTimer->isActive());
            QCOMPARE(bench->instruments.addressings(nox.portName, 9) > 0, nox.portName == "A");
            QCOMPARE(nox.dbIndex, bench->database.findDev(nox.opt->devType, nox.opt->devNumber));
            QTRY_COMPARE(bench->database.getSnapShotCount(nox.dbIndex), 1);
            const QByteArray data = taken(nox.opt->getData());
            const QByteArray refdata = taken(nox.opt->getRefAllData());
            const auto stored = bench->database.findSnapShot(&data, &refdata, nox.dbIndex);
            QCOMPARE(stored.value(0).info, QStringLiteral("Заводская настройка"));
        }
    }

    void olderOneIsKnownByItsReferenceData()
    {
        bench->add("A", "NOX C", 1, true);
        const auto refdata = bench->instruments.host.block("A", 3).left(64) + QByteArray(8, '\0');
        const auto stored = bench->database.provideDev(&refdata, 0x21, 815, "NOX C № 0815");
        QVERIFY(finds(0x21, 815) && only()); // be it searched for
        QCOMPARE(only()->dbIndex, stored.value_or(0));
        QCOMPARE(only()->opt->getDevName(true), QStringLiteral("NOX C № 0815"));
    }

    void olderOneWaitsForItsNumber()
    {
        bench->add("A", "NOX D", 1, true);
        QVERIFY(asks());
        QCOMPARE(row(1), QString("A; NOX D; --; checked, open, number!"));
        QCOMPARE(tips(1).last(), QString("Без номера прибор не подключится"));
        QStringList titles;
        for (const int column : {0, 1, 2})
            titles << table->cellWidget(0, column)->property("text").toString();
        QCOMPARE(titles, (QStringList{"Порт", "Имя/тип прибора", "№ прибора"}));
        for (const auto &[column, width] : {std::pair(0, 100), {2, 100}, {3, 48}})
            QCOMPARE(table->columnWidth(column), width);
        QVERIFY(bench->list.indices().isEmpty());
        QLineEdit *const editor = startTyping(1);
        QCOMPARE(editor->placeholderText() + editor->accessibleName(), "1…65535Номер прибора");
        QTest::keyClicks(editor, "no 65,536\r");
        QCOMPARE(editor->text(), QStringLiteral("65536"));
        QCOMPARE(editor->grab().toImage().pixelColor(2, 2), incomplete);
        press("connectBtn");
        QVERIFY(!dialog->isVisible());
        QVERIFY(bench->list.indices().isEmpty() && bench->port.devices().isEmpty()); // nobody

        QVERIFY(asks());
        QTest::keyClicks(startTyping(1), "6553500"); // as much of it as is a number up to 65535
        press("connectBtn");
        QVERIFY(only() && bench->isRead(only()->index));
        QCOMPARE(only()->opt->getDevName(true), QStringLiteral("NOX D № 65535"));
        QCOMPARE(bench->database.findDev(0x31, 65535), only()->dbIndex);
        bench->list.getOptFromNox(only()->index); // though it is too old to tell its name
        QVERIFY(bench->isRead(only()->index) && only()->devIndex >= 0);
    }

    void oneWithoutAModelIsNamedByKeyboard()
    {
        bench->add("A", "NOX CM1", 1, true);
        QVERIFY(asks());
        auto *const models = qobject_cast<QComboBox *>(table->cellWidget(1, 1));
        QCOMPARE(row(1), QString("A; --; --; unchecked, fixed, model!"));
        const QString chooseModel = "Выберите модель прибора";
        QCOMPARE(tips(1), (QStringList{chooseModel, chooseModel, chooseModel}));
        QTest::keyClick(table, Qt::Key_F4);
        QTest::keyClicks(models->view(), "NOX CM1");
        QTest::keyClick(models->view(), Qt::Key_Return);
        QCOMPARE(row(1), QString("A; NOX CM1; --; unchecked, open, number!, check!"));
        QCOMPARE(tips(1), (QStringList{"", "Введите номер прибора, от 1 до 65535",
                                       "Отметьте прибор, чтобы подключиться к нему"}));
        for (const int column : {2, 0}) { // the list of models, which covers its cell, is left out
            QTest::keyClick(table, column == 0 ? Qt::Key_Left : Qt::Key_Right);
            QCOMPARE(table->currentColumn(), column);
        }
        QTest::keyClick(table, Qt::Key_9);
        QTest::keyClicks(dialog->focusWidget(), "9\r");
        QTRY_COMPARE(row(1), QString("A; NOX CM1; 99; unchecked, open, check!"));
        QTest::keyClick(table, Qt::Key_Space);
        QCOMPARE(row(1), QString("A; NOX CM1; 99; checked, open"));
        QCOMPARE(tips(1).last(), QString("Прибор будет подключён"));
        QTest::keyClick(table, Qt::Key_Tab);
        QCOMPARE(dialog->focusWidget(), find<QCheckBox>("skipNoneCB"));
        QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        QVERIFY(only() && bench->isRead(only()->index));
        QCOMPARE(only()->opt->getDevChCount(), quint8(16));
        QCOMPARE(bench->database.findDev(0x41, 99), only()->dbIndex);
    }

    void waitingOnesAreClickedAndGo()
    {
        bench->add("A", "NOX D", 1, true);
        bench->add("B", "NOX D", 1, true);
        QVERIFY(asks());
        const QString kept = table->item(2, 0)->text();
        for (int click = 0; click < 2; ++click) { // beside the box, which takes the first alone
            QTest::mouseClick(table->cellWidget(2, 3), Qt::LeftButton, {}, {1, 1});
            QCOMPARE(row(2), kept + "; NOX D; --; unchecked, fixed");
        }
        QCOMPARE(
            tips(2),
            (QStringList{"", "", "Отметить снова можно щелчком по заголовку столбца (Ctrl+A)"}));
        QCOMPARE(table->cellWidget(2, 1)->accessibleName() + box(2)->accessibleName(),
                 QString("Модель прибора, порт %1Подключить прибор, порт %1").arg(kept));
        QTest::mouseClick(table->cellWidget(0, 3), Qt::LeftButton);
        QVERIFY(!box(1)->isChecked() && !box(2)->isChecked()); // the opposite of the first
        QTest::keyClick(table, Qt::Key_A, Qt::ControlModifier);
        QVERIFY(box(1)->isChecked());
        QCOMPARE(row(2), kept + "; NOX D; --; checked, fixed, open, number!");

        QWidget *const editor = startTyping(2);
        QTest::keyClicks(editor, "22");
        bench->instruments.host.unplug(kept == "A" ? "B" : "A");
        QTRY_COMPARE_WITH_TIMEOUT(table->rowCount(), 2, patienceMs);
        QTest::keyClicks(editor, "7\r");
        QTRY_COMPARE(row(1), kept + "; NOX D; 227; checked, fixed, open");
        QCOMPARE(message(), QString("Найдено приборов: 1"));
        bench->add("C", "NOX B", 2); // takes the device that has become free
        QVERIFY(bench->list.newNox(bench->port.addDev("C"), true));
        bench->instruments.host.unplug(kept);
        QVERIFY(closes());
        QCOMPARE(bench->port.devices(), QList<int>{only()->devIndex});
    }

    void skippedWhenUnknown()
    {
        bench->add("A", "NOX CM1", 1, true);
        bench->add("B", "NOX B", 1, false, FaultPlan::always);
        find<QCheckBox>("skipNoneCB")->setChecked(true);
        QCOMPARE(bench->database.getAppProperty("find_skip_unknown").toBool(), true);
        dialog->find();
        QByteArray rubbish(8, '\x55');
        emit bench->port.readyDevReply(bench->port.devices().last(), &rubbish, 51);
        QVERIFY(closes());
        QVERIFY(bench->list.indices().isEmpty() && bench->port.devices().isEmpty());
    }

    void deadPortsAreDroppedAndDisturbNobody()
    {
        dialog->find(true);
        QCOMPARE(message(), QString("Нет доступных портов"));
        QVERIFY(!table->isEnabled());
        QVERIFY(!find<QPushButton>("connectBtn")->isEnabled());
        bench->add("B", "NOX B", 2);
        press("scanBtn");
        QVERIFY(closes());
        QVERIFY(only() && bench->isRead(only()->index));
        only()->qwtIndex = 0;
        bench->port.setLinkTiming(shortTiming()); // nobody who is to be heard is met from now on
        SimulatedInstrumentOptions options = bench->instruments.steadyInstrument();
        options.faults.silentAfterBlocks = 1;
        QVERIFY(bench->instruments.add("silent", options));
        options.faults.wrongAddressEchoes = FaultPlan::always;
        QVERIFY(bench->instruments.add("none", options));
        options.faults.ignoredAddressings = FaultPlan::always;
        QVERIFY(bench->instruments.add("deaf", options));
        bench->measured.clear();
        QVERIFY(finds() && only() && bench->measured.size() >= 3 &&
                !bench->news().contains("error"));
        QCOMPARE(bench->port.devices(), QList<int>{only()->devIndex});
    }

    void cancelledSearchLeavesNoWorker()
    {
        bench->add("A", "NOX CM1", 1, true);
        bench->add("B", "NOX B", 2, false, FaultPlan::always);
        dialog->find(true);
        QCOMPARE(bench->port.devices().size(), 2);
        press("cancelBtn");
        QVERIFY(!dialog->isVisible() && bench->port.devices().isEmpty());

        bench->instruments.host.unplug("B");
        QVERIFY(asks());
        QTimer::singleShot(0, dialog.get(), [this] { press("cancelBtn"); });
        press("scanBtn"); // which first clears, and lets events in
        QVERIFY(!dialog->isVisible() && bench->port.devices().isEmpty());

        bench->add("C", "NOX B", 3);
        dialog->find(true);
        QTimer::singleShot(0, dialog.get(), [this] { dialog->find(true); });
        press("cancelBtn");
        QVERIFY(lists() && only());
    }

    void destroyedWhileItSearches()
    {
        bench->add("A", "NOX CM1", 1, true);
        bench->add("B", "NOX B", 2, false, FaultPlan::always);
        dialog->find();
        QSignalSpy replies(&bench->port,
                           QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply));
        QVERIFY(replies.wait(patienceMs));
        QTimer::singleShot(0, &bench->port, [this, devices = bench->port.devices()] {
            QByteArray block(72, '\0');
            for (const int device : devices)
                emit bench->port.readyDevReply(device, &block, 3);
        });
        dialog.reset();
        QVERIFY(bench->port.devices().isEmpty());
    }

    void oneIsSearchedForAndContinuesUnderItsIndex()
    {
        bench->add("A", "NOX B", 1);
        bench->add("B", "NOX B", 2);
        bench->add("C", "NOX D", 3);
        dialog->find(true, 0x11, 2);
        const auto *const skip = find<QCheckBox>("skipNoneCB");
        QVERIFY(skip->isChecked() && !skip->isEnabled());
        QVERIFY(closes());
        noxList::_nox *const nox = only();
        QVERIFY(nox && nox->opt->devNumber == 2 && bench->isRead(nox->index));
        QCOMPARE(bench->port.devices(), QList<int>{nox->devIndex});

        nox->qwtIndex = 7;
        nox->txTimer->setInterval(30); // it was made by the dialog, with 5 s
        bench->instruments.host.unplug("B");
        QTRY_COMPARE_WITH_TIMEOUT(nox->devIndex, -1, patienceMs);
        bench->instruments.host.plugIn("B");
        QVERIFY(finds(typeB, 2));
        QCOMPARE(only(), nox); // the same record goes on
        QVERIFY(nox->devIndex >= 0 && nox->qwtIndex == 7);
        bench->measured.clear();
        QTRY_VERIFY_WITH_TIMEOUT(bench->measured.value(0).startsWith("0: "), patienceMs);
    }

    void lostDuringTheScanItGoesAlone()
    {
        for (const int number : {0, 3}) { // unidentified; set aside by the number
            const bool isOlder = number == 0;
            bench->add("A", "NOX D", 1, isOlder);
            bench->add("B", "NOX B", 2);
            // which answers when it is let, and is asked for long enough
            bench->add("C", "NOX B", 3, isOlder, FaultPlan::always);
            LinkTiming timing = RegistryBench::timing();
            timing.initDelay = 1000;
            bench->port.setLinkTiming(timing);
            const auto *const progress = find<QProgressBar>("progressBar");
            dialog->find(true, number ? typeB : 0, quint16(number));
            QTRY_COMPARE_WITH_TIMEOUT(progress->value(), 2, patienceMs);
            QCOMPARE(progress->toolTip(), QStringLiteral("Ожидается ответ: C"));
            QVERIFY(progress->isVisible() && !find<QPushButton>("scanBtn")->isEnabled());
            const int rows = table->rowCount();
            bench->instruments.host.unplug("A");
            QTRY_COMPARE_WITH_TIMEOUT(bench->port.devices().size(), 2, patienceMs);
            QVERIFY(dialog->isVisible() && table->rowCount() == rows);
            bench->instruments.host.setFaults("C", {});
            QVERIFY(isOlder ? lists() : closes());
            QVERIFY(only() && only()->portName == (isOlder ? "B" : "C"));
            QVERIFY(!isOlder || table->item(1, 0)->text() == "C");
            cleanup();
            init();
        }
    }

    void wrongModelIsReadAgainAndChangesReachTheMemoryOnce()
    {
        bench->add("A", "NOX CM1", 77);
        noxList::_nox *const nox = bench->list.newNox(bench->port.addDev("A"), true);
        optionsNOX8 &image = *nox->opt;
        image.setDevType(typeB); // as somebody believed
        bench->list.getOptFromNox(nox->index);
        QVERIFY(bench->isRead(nox->index));
        QCOMPARE(image.devType, 0x41u);
        QCOMPARE(bench->database.getSnapShotCount(nox->dbIndex), 1);

        InstrumentHost &host = bench->instruments.host;
        host.clearExchanges("A");
        image.setChCurrent(2, 2);
        image.triggerChChange(2);
        const auto looksExtended = QByteArray::fromHex("0FAA000A"); // but for the last byte
        image.refT0.setFloat(&looksExtended, 0);
        image.refR[1].value.value = 199.5F;
        image.triggerRefChange();
        emit image.onIdentApply();
        image.triggerRefChange();
        QTRY_VERIFY_WITH_TIMEOUT(nox->txCodes.isEmpty() && bench->port.isSendAllData(), patienceMs);
        QCOMPARE(host.block("A", 2), taken(image.getData()));
        QCOMPARE(host.block("A", 3).left(64), taken(image.getRefData(true)).left(64));
        QVERIFY(host.block("A", 3).startsWith(looksExtended));
        QVector<int> written;
        for (const ExchangeEvent &event : host.exchanges("A"))
            if (event.kind == ExchangeEvent::WriteCompleted)
                written << event.address;
        QCOMPARE(written, (QVector<int>{4, 1, 50}));
        emit image.onChErrorData(); // then it is read once more
        QVERIFY(!bench->port.isReadAllQuery());
        QTRY_VERIFY_WITH_TIMEOUT(bench->port.isReadAllQuery(), patienceMs);
        QVERIFY(nox->devIndex >= 0);
    }

private:
    bool closes() const
    {
        return QTest::qWaitFor([this] { return !dialog->isVisible(); }, patienceMs);
    }
    bool lists() const
    {
        return QTest::qWaitFor([this] { return table->isEnabled() && table->rowCount() > 1; },
                               patienceMs);
    }
    /** Searches until the dialog closes. */
    bool finds(uint type = 0, quint16 number = 0) const
    {
        dialog->find(true, type, number);
        return closes();
    }
    /** Searches until it asks the operator. */
    bool asks() const
    {
        dialog->find(true);
        return lists();
    }
    /** The one record of the registry; null unless there is exactly one. */
    noxList::_nox *only() const
    {
        const auto indices = bench->list.indices();
        return indices.size() == 1 ? bench->list.getNoxByIndex(indices.first()) : nullptr;
    }
    template<typename Widget>
    Widget *find(const char *name) const
    {
        return dialog->findChild<Widget *>(name);
    }
    void press(const char *name) const
    {
        QTest::mouseClick(find<QPushButton>(name), Qt::LeftButton);
    }
    /** What is shown in the place of the progress bar. */
    QString message() const
    {
        return find<QStackedWidget>("progressStack")->currentWidget()->property("text").toString();
    }
    QCheckBox *box(int row) const { return table->cellWidget(row, 3)->findChild<QCheckBox *>(); }
    /** A row as the operator sees it. */
    QString row(int row) const
    {
        const auto isMarked = [this, row](int column) {
            const QTableWidgetItem *const item = table->item(row, column);
            return item && item->background() == incomplete;
        };
        const auto *models = qobject_cast<QComboBox *>(table->cellWidget(row, 1));
        const bool isOpen = table->item(row, 2)->flags().testFlag(Qt::ItemIsEditable);
        const bool isLacking = models && models->palette().color(QPalette::Button) == incomplete;
        return QString("%1; %2; %3; %4%5%6%7%8%9")
            .arg(table->item(row, 0)->text(),
                 models ? models->currentText() : table->item(row, 1)->text(),
                 table->item(row, 2)->text(), box(row)->isChecked() ? "checked" : "unchecked",
                 box(row)->isEnabled() ? "" : ", fixed", isOpen ? ", open" : "",
                 isMarked(2) ? ", number!" : "", isMarked(3) ? ", check!" : "",
                 isLacking ? ", model!" : "");
    }
    /** What is told of the model, the number and the check box of a row. */
    QStringList tips(int row) const
    {
        return {table->cellWidget(row, 1)->toolTip(), table->item(row, 2)->toolTip(),
                box(row)->toolTip()};
    }
    /** Clicks on the number of a row: its editor; null when there is none. */
    QLineEdit *startTyping(int row) const
    {
        const QRect cell = table->visualItemRect(table->item(row, 2));
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
        return table->viewport()->findChild<QLineEdit *>();
    }

    std::unique_ptr<RegistryBench> bench;
    std::unique_ptr<findNox> dialog;
    QTableWidget *table = nullptr;
};

QTEST_MAIN(TestFindNox)
#include "tst_findnox.moc"
