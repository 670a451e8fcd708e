#include "app/plotinstruments.h"
#include "windowfixture.h"

/** What the user changes on the plot: by the tools around it, by menus, and by the channel table.
 */
class TestPlotTools : public WindowTest
{
    Q_OBJECT
    /** The mode of the plot, and which tools look pressed. */
    QString tools() const
    {
        QString state = QString::number(plot().getChMode());
        for (const char *name : {"qwtZoomBtn", "qwtScrollBtn", "qwtMeasBtn", "trackBtn"})
            state += find<QToolButton>(name)->isChecked() ? ' ' + QString(name) : "";
        return state;
    }
    QMenu *settings(int place) const { return menuOf("setQwtBtn")->actions().at(place)->menu(); }
    static QString ticked(QMenu *menu) { return entriesOf(menu).split(", ").filter("*").join(' '); }
    static QColor middle(const QIcon &icon) { return icon.pixmap(16).toImage().pixelColor(8, 8); }
    /** Clicks the number of the second channel; the colour that stands there then. */
    QColor clickNumber(Qt::MouseButton button) const
    {
        click(channels(), 2, ChannelColumn::Number, button);
        return middle(channels()->item(2, ChannelColumn::Number)->icon());
    }
    DifferenceMenu *openDifferences() const
    {
        click(channels(), 2, ChannelColumn::Reference);
        return window->findChild<DifferenceMenu *>();
    }
    /** A value each second, between 20 and 20.4. */
    void measureForAWhile()
    {
        for (int second = 0; second < 20; ++second) {
            deliver(0, 20 + (second % 5) * 0.1, 0);
            now = now.addSecs(1);
        }
        showFrame();
    }
    /** Another instrument takes the index of one on the plot. */
    void replace(int index)
    {
        registry().rmByIndex(index);
        measure(add(0x31, 78), 21, 0);
    }

private slots:
    void findsAFreeIndex()
    {
        QList<int> used;
        for (int next = 0; next < 255; ++next) {
            QCOMPARE(freePlotIndex(used), next);
            used.prepend(next);
        }
        QCOMPARE(freePlotIndex(used), -1);
    }

    void buttonsSwitchTheMode()
    {
        const auto pressed = [this](const QString &names) {
            QStringList states;
            for (const QString &name : names.split(' ')) {
                press(name);
                states << tools();
            }
            return states.join(", ");
        };
        QCOMPARE(pressed("qwtZoomBtn qwtScrollBtn qwtMeasBtn modeBtn modeXBtn"), "0, 0, 0, 0, 0");
        for (int position = 1; position <= 5; ++position)
            settings(position)->actions().last()->trigger();
        menuOf("setQwtBtn")->actions().first()->trigger();
        pick(menuOf("trackBtn"), "Диапазон");
        QVERIFY(tools() == "0" && answers->offeredColors.isEmpty());
        add(0x11, 1);
        QCOMPARE(pressed("modeBtn qwtZoomBtn qwtScrollBtn qwtMeasBtn qwtMeasBtn modeBtn"),
                 "0, 2 qwtZoomBtn, 4 qwtScrollBtn, 3 qwtMeasBtn, 1, 0");
        QCOMPARE(pressed("qwtZoomBtn qwtZoomBtn qwtScrollBtn qwtScrollBtn"),
                 "2 qwtZoomBtn, 1, 4 qwtScrollBtn, 1");
        for (const int step : {3, 0}) { // of one axis, or of the other
            plot().setChScaleX(uchar(step));
            plot().setChScaleY(uchar(3 - step));
            QCOMPARE(pressed("modeBtn modeBtn qwtZoomBtn modeBtn"), "0, 1, 2 qwtZoomBtn, 1");
        }
    }

    void limitsAreChosenFromTheirMenu()
    {
        addSome(2);
        QCOMPARE(entriesOf(menuOf("trackBtn")),
                 "Выкл.*, |, Диапазон, Верхний предел, Нижний предел");
        QVector<TmcTrackingMode> modes;
        for (const QString choice : {"Верхний предел", "Диапазон", "Выкл.", "Нижний предел"}) {
            QTimer::singleShot(0, this, [&] { pickEntry(choice); });
            press("trackBtn"); // which returns when the menu has closed
            modes << plot().getModeTrack();
            QCOMPARE(ticked(menuOf("trackBtn")), choice + '*');
            QCOMPARE(tools(), choice == "Выкл." ? "5" : "5 trackBtn");
        }
        QCOMPARE(modes, (QVector<TmcTrackingMode>{TrackUpper, TrackRange, TrackOff, TrackLower}));
        find<QToolButton>("trackBtn")->toggle(); // as a click of the keyboard does
        QCOMPARE(tools(), "5 trackBtn");
        choose(2); // the limits are those of the current instrument
        QCOMPARE(tools(), "1");
    }

    void settingsAreOfferedTickedAndChanged()
    {
        const QString steps = entriesOf(menuOf("dXBtn"));
        const QString heights = entriesOf(menuOf("dYBtn"));
        QVERIFY(steps.startsWith("Авто*, 1 сек., 2 сек., ") && steps.endsWith(", 30 ч."));
        QVERIFY(heights.startsWith("Авто*, 0.000001, ") && heights.endsWith(", 2000"));
        QCOMPARE(
            entriesOf(menuOf("setQwtBtn")),
            QString("Цвет графика основного канала, Масштаб по X [%1], Масштаб по Y [%2], "
                    "Режим масштабирования [Авто*, Слежение], Размерность шкалы по оси X "
                    "[Секунды*, Относительное время, Абсолютное время], Показывать на графике "
                    "[Значения и скользящее среднее*, Только значения, Только скользящее среднее]")
                .arg(steps, heights));
        add(0x11, 1);
        // menu, entry; X, Y, mode, labels, values, averages
        const std::tuple<QMenu *, int, const char *> cases[] = {
            {settings(1), 5, "5 0 1 0 true true"},       {settings(2), 7, "5 7 1 0 true true"},
            {settings(3), 0, "5 7 0 0 true true"},       {menuOf("dXBtn"), 7, "7 7 1 0 true true"},
            {menuOf("dYBtn"), 16, "7 16 1 0 true true"}, {settings(3), 0, "7 16 0 0 true true"},
            {settings(3), 1, "7 16 1 0 true true"},      {settings(4), 1, "7 16 1 1 true true"},
            {settings(4), 2, "7 16 1 2 true true"},      {settings(5), 1, "7 16 1 2 true false"},
            {settings(5), 2, "7 16 1 2 false true"},     {settings(5), 0, "7 16 1 2 true true"}};
        for (const auto &[menu, entry, inEffect] : cases) {
            menu->actions().at(entry)->trigger();
            QCOMPARE(words({plot().getChScaleX(), plot().getChScaleY(), plot().getChMode(),
                            plot().getChModeX(), plot().getMeasShow(), plot().getAverShow()}),
                     inEffect);
            QCOMPARE(ticked(menu), menu->actions().at(entry)->text() + '*');
        }
        plot().setMeasShow(false);
        plot().setAverShow(false);
        plot().setChMode(ModeZoom);
        QCOMPARE(ticked(settings(5)) + ticked(settings(3)), "");
    }

    void coloursAreChosen()
    {
        add(0x11, 1);
        const auto byMenu = [this] {
            QAction *const action = menuOf("setQwtBtn")->actions().first();
            action->trigger();
            emit menuOf("setQwtBtn")->aboutToShow();
            return middle(action->icon());
        };
        const QColor first = plot().getChColor(0, 0);
        QCOMPARE(byMenu(), first); // nothing was chosen
        plot().setChMain(1);
        QCOMPARE(clickNumber(Qt::RightButton), QColor(Qt::blue));
        answers->color = Qt::magenta;
        for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton})
            QCOMPARE(clickNumber(button), QColor(Qt::magenta));
        // a hidden channel can be coloured by the menu alone
        answers->color = Qt::cyan;
        for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton})
            QCOMPARE(clickNumber(button).alpha(), 0);
        QCOMPARE(byMenu(), QColor(Qt::cyan));
        QCOMPARE(clickNumber(Qt::LeftButton), QColor(Qt::cyan));
        QCOMPARE(answers->offeredColors, (QVector<QColor>{first, Qt::blue, Qt::blue, Qt::magenta}));
    }

    void captionsTellTheScalesInEffect()
    {
        add(0x11, 1);
        const QString captions = "dXBtn dYBtn modeBtn modeXBtn";
        measureForAWhile();
        for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft})
            QCOMPARE(qRound(plot().axisInterval(axis).width() / plot().axisStepSize(axis)), 10);
        QCOMPARE(see(captions), "X: 5 сек.|Y: 0.05|АВТО|СЕК");
        now = now.addSecs(65);
        measure(0, 21, 0); // the plot chooses coarser steps by itself
        QCOMPARE(see(captions), "X: 10 сек.|Y: 0.2|АВТО|СЕК");
        plot().setChScaleX(1);
        for (const char *labelled : {"СЕК", "АБС", "ОТН", "СЕК"}) {
            QCOMPARE(see(captions), QString("X: 1 сек.|Y: 0.000001|СЛЕЖЕНИЕ|") + labelled);
            press("modeXBtn");
        }
    }

    void panelsSwitchCurveKinds()
    {
        add();
        measureForAWhile();
        QVector<QImage> pictures;
        QString colors;
        for (const QString panel : {"", "mainMeasLabel", "mainAverLabel", "mainMeasLabel"}) {
            if (!panel.isEmpty())
                press(panel);
            showFrame();
            for (const char *label : {"mainMeasLabel", "mainAverLabel"})
                colors += find(label)->styleSheet().section(' ', 1);
            const QImage picture = plot().canvas()->grab().toImage();
            QVERIFY(!pictures.contains(picture));
            pictures << picture;
        }
        QCOMPARE(colors, "#215767;#215767;gray;#215767;gray;gray;#215767;gray;");
    }

    void clickMakesAChannelTheMainOne()
    {
        using namespace ChannelColumn;
        add(0x11, 1);
        measure(0, 25, 2);
        for (const int column : {Value, Unit, DeltaX, DeltaY, Reference, Menu}) {
            click(channels(), 1, Value);
            click(channels(), 3, column);
            QWidget *const menu = QApplication::activePopupWidget();
            const bool opens = column == Reference || column == Menu;
            QCOMPARE(menu && menu->close(), opens);
            const QRect cell = channels()->visualItemRect(channels()->item(3, column));
            const QPoint below = channels()->viewport()->mapToGlobal(cell.bottomLeft());
            QVERIFY(column != Reference || (menu->pos() - below).manhattanLength() < 5);
            const QStringList marks = cells(channels(), 3);
            QCOMPARE(words({marks.first() + marks.last(), panels().contains("25.0"),
                            channels()->item(1, Unit)->isSelected(),
                            channels()->item(3, Unit)->isSelected()}),
                     opens ? "3 false true false" : "3[current]<[current] true false true");
        }
        plot().setChMain(4); // by whomever
        QVERIFY(channels()->item(5, Value)->isSelected() && channel(4).endsWith("|<[current]"));
    }

    void clearsThePlot()
    {
        // entry, answer; points left, by plot index
        const std::tuple<const char *, QMessageBox::StandardButton, const char *> cases[] = {
            {"NOX B № 0002", QMessageBox::No, "1 1"},
            {"NOX B № 0002", QMessageBox::Yes, "1 0"},
            {"Все приборы", QMessageBox::Yes, "0 0"}};
        addSome(2);
        replace(0); // by one that has the first index on the plot
        measure(1, 21, 0);
        QCOMPARE(entriesOf(menuOf("clearBtn")), "Все приборы, |, NOX B № 0002, NOX D № 0078");
        const QDateTime start = now;
        now = now.addSecs(100);
        for (const auto &[entry, answer, left] : cases) {
            answers->answer = answer;
            pick(menuOf("clearBtn"), entry);
            QCOMPARE(seen(answers->asked.last()),
                     "2 [" + window->windowTitle() + "] Очистить график? 14000/10000");
            QCOMPARE(words({plot().getChMeasCount(0, 0), plot().getChMeasCount(1, 0)}), left);
            QCOMPARE(instrument(1).contains("|--["), answer == QMessageBox::Yes);
            QCOMPARE(plot().getStartDateTime(1), answer == QMessageBox::Yes ? now : start);
        }
        QCOMPARE(answers->asked.size(), 3);
    }

    void differenceIsConfigured()
    {
        add(0x0970AA0F, 77);
        add(0x11, 1);
        choose(2);
        const auto reference = [this] {
            return channels()->item(2, ChannelColumn::Reference)->toolTip();
        };
        const QString all = "Канал № 3%2, Канал № 4, Канал № 5, Канал № 6, Канал № 7, Канал № 8]";
        const QString offered = "Выкл.%1, |, NOX D rev.4 № 0077 [Канал № 1, Канал № 2, " + all +
                                ", NOX B № 0001 [Канал № 1, " + QString(all).remove("%2");
        QCOMPARE(entriesOf(openDifferences()), offered.arg("*", ""));
        pickEntry("NOX D rev.4 № 0077/Канал № 3");
        QCOMPARE(reference(), "Разность с NOX D rev.4 №0077, канал №3");
        QCOMPARE(words({plot().getChMode(1, 1), plot().getChMain(1)}), words({ModeFollow, 0}));
        QCOMPARE(entriesOf(openDifferences()), offered.arg("", "*"));
        pickEntry("Выкл.");
        QCOMPARE(reference(), "Измерение разности выключено");
        registry().rmByIndex(0);
        QCOMPARE(openDifferences()->findChildren<QMenu *>().size(), 1); // nothing of the former
    }

    void lineBelowThePlotTellsWhatToDo()
    {
        addSome(1);
        const auto *const line = find<QLabel>("plotHint");
        const auto told = [this, line] {
            QStringList texts;
            for (int mode = ModeAuto; mode <= ModeLimits; ++mode) {
                plot().changeMode(mode);
                texts << line->toolTip();
            }
            return texts;
        };
        const QStringList byMouse = told();
        QCOMPARE(QSet<QString>(byMouse.begin(), byMouse.end()).size(), 5); // two follow
        QVERIFY(byMouse[ModeZoom].contains("рамку") && byMouse[ModeLimits].contains("предел"));
        QApplication::setActiveWindow(window.get());
        plot().canvas()->setFocus(Qt::TabFocusReason);
        const QStringList byKeys = told();
        QVERIFY(byKeys[ModeZoom].startsWith("Ctrl+стрелки, Enter — углы"));
        QVERIFY(line->text().startsWith("Ctrl+"));
        instruments()->setFocus();
        QCOMPARE(told(), byMouse);
    }

    void whoTookAnIndexIsSpared()
    {
        for (const int leaving : {0, 1}) {
            addSome(2);
            choose(2);
            QAction *const entry = openDifferences()->actions().at(2)->menu()->actions().at(2);
            replace(leaving);
            entry->trigger();
            for (const QwtNOX::_dev &device : plot().devices())
                QVERIFY(!device.ch.at(1).hasDifference());
            start();
        }
        answers->answer = QMessageBox::Yes;
        answers->color = Qt::green;
        answers->meanwhile = [this] { replace(registry().indices().first()); };
        addSome(1);
        pick(menuOf("clearBtn"), "NOX B № 0001");
        QCOMPARE(plot().getChMeasCount(0, 0), 1);
        clickNumber(Qt::RightButton);
        QCOMPARE(plot().getChColor(0, 1), QColor(Qt::blue));
    }
};

QTEST_MAIN(TestPlotTools)
#include "tst_plottools.moc"
