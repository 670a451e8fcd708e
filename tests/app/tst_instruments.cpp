#include "dialogs/devconfui.h"
#include "windowfixture.h"

/** Instruments come, go, become current, exchange and fail; the window finds space for them. */
class TestInstruments : public WindowTest
{
    Q_OBJECT
    /** Rows of both tables, the current instrument here and on the plot, and what is shown of it.
     */
    QString shown() const
    {
        return words({instruments()->rowCount() - 1, channels()->rowCount() - 1,
                      window->currentIndex(), plot().getDevMain(), title(), panels(),
                      find<QPushButton>("dXBtn")->text()});
    }

    QCheckBox *showBox(int row) const
    {
        return instruments()->cellWidget(row, InstrumentColumn::Show)->findChild<QCheckBox *>();
    }

private slots:
    void connectsByHand()
    {
        usePorts({{"ttyS1", "/dev/ttyS1", false}, {"ttyS0", "/dev/ttyS0", true}});
        QCOMPARE(entriesOf(menuOf("addDevBtn")), "без подключния, |, ttyS1");
        usePorts({{"bath&2", "/nowhere", false}});
        QCOMPARE(entriesOf(menuOf("addDevBtn")), "без подключния, |, bath&&2");
        QCOMPARE(shown(), "0 0 -1 -1 - --|--| X: -");
        pick(menuOf("addDevBtn"), "без подключния");
        QCOMPARE(shown(), "1 0 0 0 -- № -- --||- X: Авто");
        QCOMPARE(QString(instrument(1)).remove("[gray current]"), "|--|--|--|-|-|<");
        pick(menuOf("addDevBtn"), "bath&&2");
        QCOMPARE(record(1).portName, "bath&2");
        emit registry().onAddNox(-1, false); // which was refused
        QCOMPARE(instruments()->rowCount(), 3);
    }

    void headersNameTheColumns()
    {
        QStringList columns; // title, width (0 for a flexible one), width of the picture
        for (const QTableWidget *table : {instruments(), channels()})
            for (int column = 0; column < table->columnCount(); ++column) {
                const auto *cell = qobject_cast<QLabel *>(table->cellWidget(0, column));
                const auto mode = table->horizontalHeader()->sectionResizeMode(column);
                columns << words({cell->text() + cell->toolTip().section('\n', 0, 0),
                                  mode == QHeaderView::Stretch ? 0 : table->columnWidth(column),
                                  cell->pixmap(Qt::ReturnByValue).width()});
            }
        QCOMPARE(columns.join('|'),
                 "Графики прибора: флажок показывает и скрывает их, 50 20|Имя/тип 0 0|Номер 75 0|"
                 "Результат 0 0|Разм. 50 0|Канал 55 0|Меню прибора 50 20|"
                 "Графики каналов: левая кнопка мыши — показать или скрыть, 50 20|Результат 0 0|"
                 "Разм. 50 0|ΔX 75 0|ΔY 75 0|ΔКанал 55 0|Меню канала 50 20");
    }

    void openSettingsFollowTheImage()
    {
        add(0x0970AA0F, 1);
        optionsNOX8 &image = *record(0).opt;
        const auto follows = [](const QWidget *form, const std::function<void()> &change) {
            const QStringList before = seenForm(form);
            change();
            return seenForm(form) != before;
        };
        const auto switchShortCircuit = [&] { image.setDevZakorotka(1 - image.devZakorotka); };
        ReferenceData references;
        references.refT0 = bFloat(21.5F);
        ZeroShifts shifts;
        shifts.shiftCh[0] = bFloat(0.25F);
        window->deviceSettings()->show(0);
        const QWidget *const settings = window->deviceSettings();
        QVERIFY(follows(settings, switchShortCircuit));
        QVERIFY(follows(settings, [&] { image.setReferenceData(references); }));
        QVERIFY(follows(settings, [&] { image.setZeroShifts(shifts); }));
        QVERIFY(follows(settings, [&] { image.setChCurrent(0, 1); }));
        click(instruments(), 1, InstrumentColumn::Menu);
        QVERIFY(follows(window->instrumentCard(), switchShortCircuit));
        window->instrumentCard()->close();
        click(channels(), 1, ChannelColumn::Menu);
        QVERIFY(follows(window->channelCard(), [&] { image.setChCurrent(0, 0); }));
    }

    void growsWithTheModel()
    {
        add(0x41, 7);
        const QString numbers = "1 2 3 4 5 6 7 8";
        QCOMPARE(column(channels(), ChannelColumn::Number), numbers + " 9 10 11 12 13 14 15 16");
        QCOMPARE(channel(15), "16|--|Ω|||-|");
        measure(0, 20, 8);
        QVERIFY(instrument(1).contains("|20.00|°С|9|"));
        record(0).opt->setDevType(0x11);
        QCOMPARE(column(channels(), ChannelColumn::Number), numbers);
        QVERIFY(instrument(1).contains("|--[gray current]|Ω[gray current]|1[gray current]|"));
        record(0).opt->setChMeasType(2, measTemperature, {});
        QCOMPARE(channel(2), "3|--|°С|||-|");
    }

    void becomesCurrentByAClick()
    {
        add(0x11, 1);
        add(0x41, 2);
        click(instruments(), 2, InstrumentColumn::Menu);
        QCOMPARE(window->currentIndex(), 0);
        confMenu *const card = window->instrumentCard();
        QVERIFY(card->x() > 100); // at the cell, as far as the screen allows
        pressIn(card, {"setupBtn"});
        QVERIFY(!card->isVisible() && window->deviceSettings()->isVisible());
        QVERIFY(window->deviceSettings()->windowTitle().endsWith("NOX CM1 № 0002"));
        window->deviceSettings()->reject();

        click(instruments(), 2, InstrumentColumn::Number);
        QCOMPARE(shown(), "2 16 1 1 NOX CM1 № 0002 --|--| X: Авто");
        QVERIFY(instruments()->item(2, InstrumentColumn::Name)->isSelected());
        QVERIFY(instrument(1).startsWith("[gray]|NOX B[gray]|") &&
                instrument(1).endsWith("|[gray]"));
        QVERIFY(instrument(2).startsWith("[gray current]|") && instrument(2).contains("|<["));
        QVERIFY(!showBox(1)->isChecked() && showBox(2)->isChecked());
        click(instruments(), 0, InstrumentColumn::Name); // the header
        QCOMPARE(window->currentIndex(), 1);
    }

    void headerShowsAllOrTheCurrentInstrument()
    {
        addSome(3);
        click(instruments(), 2, InstrumentColumn::Number);
        const auto shownOnes = [this] {
            QString shown;
            for (const QwtNOX::_dev &device : plot().devices())
                shown += device.devShow ? '+' : '-';
            return shown;
        };
        QWidget *const picture = instruments()->cellWidget(0, InstrumentColumn::Show);
        QCOMPARE(shownOnes(), "-+-");
        QTest::mouseClick(picture, Qt::LeftButton);
        QCOMPARE(shownOnes(), "+++");
        QTest::mouseClick(showBox(2), Qt::LeftButton);
        QTest::keyClick(instruments(), Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(shownOnes(), "+++"); // one was hidden
        QTest::mouseClick(picture, Qt::LeftButton);
        QCOMPARE(shownOnes(), "-+-");
    }

    void choosesTheNextCurrentInstrument()
    {
        const std::tuple<int, int, const char *> cases[] = {
            {0, 0, "2 8 2 2 NOX B № 0003 --|--| X: Авто"},
            {2, 2, "2 8 1 1 NOX B № 0002 --|--| X: Авто"},
            {0, 1, "2 8 0 0 NOX B № 0001 --|--| X: Авто"}};
        for (const auto &[current, removed, next] : cases) {
            addSome(3);
            choose(current + 1);
            registry().rmByIndex(removed);
            // what still comes in for the removed one finds nobody
            measure(removed, 21, 0);
            emit registry().onDevChange(removed);
            emit registry().onRmNox(removed, removed);
            QCOMPARE(shown(), next);
            for (const int row : {1, 2}) { // the boxes are those of the instruments that are left
                const bool &isShown = plot().devices()[row <= removed ? row - 1 : row].devShow;
                const bool before = isShown;
                QTest::mouseClick(showBox(row), Qt::LeftButton);
                QVERIFY(isShown != before && isShown == showBox(row)->isChecked());
            }
            for (const int index : registry().indices())
                registry().rmByIndex(index);
            QCOMPARE(shown(), "0 0 -1 -1 - --|--| X: -");
        }
    }

    void progressStandsInTheRowUntilAFault()
    {
        addSome(2);
        const auto bar = [this](int row) { // value, end and width
            const auto *widget = qobject_cast<QProgressBar *>(instruments()->cellWidget(row, 6));
            return widget ? words({widget->value(), widget->maximum(), widget->width()}) : "-";
        };
        const auto report = [&](int devIndex, int value, int most) {
            record(1).devIndex = 9;
            emit window->serialPort()->setProgress(devIndex, value, most, 2);
            return bar(1) + ", " + bar(2);
        };
        QCOMPARE(report(9, 30, 100), "-, 30 100 50");
        QCOMPARE(report(9, -1, 0), "-, -1 0 50");
        QCOMPARE(report(9, 0, 70), "-, 0 70 50");
        QCOMPARE(report(8, 50, 100), "-, 0 70 50");
        QCOMPARE(report(9, 0, 0), "-, -");
        const QString fault = "Обрыв связи [код 252]";
        const std::function<void()> ends[] = {[&] { emit registry().onDevError(1, 200, fault); },
                                              [&] { registry().disConnByIndex(1); },
                                              [&] { registry().rmByIndex(0); }};
        for (const auto &end : ends) {
            report(9, 30, 100);
            end();
            QCOMPARE(bar(registry().indices().size()), "-");
        }
        QCOMPARE(bar(1), "-"); // the row has moved up: the bar must not speak for another
        emit registry().onDevError(7, 200, fault); // nobody has it
        QCOMPARE(answers->told.size(), 1);
        QCOMPARE(seen(answers->told.first()),
                 "2 [Неисправность прибора] ОШИБКА №200\nНеисправность прибора NOX B № 0002\n"
                 "Обрыв связи [код 252] 400/0");
    }

    void marksTheRowUnderTheMouse()
    {
        addSome(3);
        const auto enter = [](QTableWidget *table, int row, int place) {
            const QRect cell = table->visualRect(table->model()->index(row, place));
            QTest::mouseMove(table->window()->windowHandle(),
                             table->viewport()->mapTo(table->window(), cell.center()));
            QCoreApplication::processEvents();
            const bool hand = table->viewport()->cursor().shape() == Qt::PointingHandCursor;
            return column(table, 6).section(' ', 0, 2) + (hand ? " hand" : "");
        };
        QTableWidget *table = instruments();
        QCOMPARE(enter(table, 2, InstrumentColumn::Menu), "< ☰  hand");
        QCOMPARE(enter(table, 3, InstrumentColumn::Show), "<  ☰"); // a box lies above the cell
        QCOMPARE(enter(table, 2, InstrumentColumn::Unit), "< ☰ ");
        record(2).devIndex = 9;
        emit window->serialPort()->setProgress(9, 30, 100, 2); // its bar lies above the cell
        QCOMPARE(enter(table, 3, InstrumentColumn::Menu), "<  ☰ hand");
        record(2).devIndex = -1;
        QCOMPARE(enter(channels(), 2, ChannelColumn::Reference), "< ☰  hand");
        QCOMPARE(column(table, InstrumentColumn::Menu), "<  ");
        QCOMPARE(enter(channels(), 3, ChannelColumn::Menu), "<  ☰ hand");
        QCOMPARE(enter(channels(), 3, ChannelColumn::DeltaY), "<  ☰");
    }

    void widensThePlot()
    {
        QTRY_VERIFY(find("widget")->isVisible());
        const int narrow = plot().width();
        for (const bool isWide : {true, false}) {
            press("wideViewBtn");
            QTRY_VERIFY(isWide ? plot().width() > narrow + 400 : plot().width() == narrow);
            QCOMPARE(find<QToolButton>("wideViewBtn")->arrowType(),
                     isWide ? Qt::RightArrow : Qt::LeftArrow);
        }
        const QSize least = window->minimumSizeHint(); // it fits a small screen
        QCOMPARE(least.boundedTo({940, 490}), least);
    }

    void givesHeightToTheTableThatNeedsIt()
    {
        const QTableWidget *table = instruments();
        const auto isSeen = [table](int row) {
            const QRect cell = table->visualRect(table->model()->index(row, 1));
            return table->viewport()->rect().contains(cell);
        };
        addSome(8);
        QTRY_VERIFY(isSeen(1) && isSeen(8));
        addSome(22);
        QTRY_VERIFY(isSeen(30));
        table->verticalScrollBar()->setValue(table->rowHeight(0)); // a box lies below the title
        const QWidget *title = table->cellWidget(0, InstrumentColumn::Show);
        QCOMPARE(table->viewport()->childAt(title->geometry().center()), title);
        QCOMPARE(channels()->verticalScrollBar()->maximum(), 0);
        // with more of both than there is height for, each has half; what one leaves, the other has
        add(0x41, 31);
        choose(31);
        QTRY_VERIFY(qAbs(table->height() - channels()->height()) <= 1);
        add(); // of an unknown model, without channels
        choose(32);
        QTRY_COMPARE(channels()->height(), channels()->minimumHeight());
    }
};

QTEST_MAIN(TestInstruments)
#include "tst_instruments.moc"
