#include "app/plotinstruments.h"
#include "plot/plotmouse.h"
#include "windowfixture.h"

/** What the user changes on the plot: by the tools around it, by menus, and by the channel table.
 */
class TestPlotTools : public WindowTest
{
    Q_OBJECT
    QString checkedTools() const
    {
        QStringList names;
        for (const char *name : {"qwtZoomBtn", "qwtScrollBtn", "qwtMeasBtn", "trackBtn"})
            if (find<QToolButton>(name)->isChecked())
                names << name;
        return names.join(' ');
    }
    QMenu *settings(int position) const
    {
        return menuOf("setQwtBtn")->actions().at(position)->menu();
    }
    static QString ticked(QMenu *menu) { return entriesOf(menu).split(", ").filter("*").join(' '); }
    static QColor middleOf(const QIcon &icon)
    {
        return icon.pixmap(16, 16).toImage().pixelColor(8, 8);
    }
    /** Clicks the number of the second channel; the colour that stands there then. */
    QColor clickNumber(Qt::MouseButton button) const
    {
        click(channels(), 2, ChannelColumn::Number, button);
        return middleOf(channels()->item(2, ChannelColumn::Number)->icon());
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
        QList<int> used{1, 2};
        QCOMPARE(freePlotIndex(used), 0);
        for (int index = 0; index < 255; ++index) {
            used.removeAll(index);
            QCOMPARE(freePlotIndex(used), index);
            used << index;
        }
        QCOMPARE(freePlotIndex(used), -1);
    }

    void modesAreSwitched()
    {
        add(0x11, 1);
        for (const int x : {-1, 0, 3}) { // below 0: no step is chosen
            plot().setChScaleX(uchar(qMax(0, x)));
            plot().setChScaleY(uchar(x < 0 ? 0 : 3 - x));
            for (const TmcMode mode : {ModeAuto, ModeFollow, ModeZoom}) {
                plot().setChMode(mode);
                press("modeBtn");
                const TmcMode next = x < 0 || mode == ModeFollow ? ModeAuto : ModeFollow;
                QCOMPARE(plot().getChMode(), next);
            }
        }
    }

    void toolsSwitchTheMode()
    {
        add(0x11, 1);
        const QVector<QPair<QString, TmcMode>> tools = {
            {"qwtZoomBtn", ModeZoom}, {"qwtScrollBtn", ModeScroll}, {"qwtMeasBtn", ModeMeasure}};
        for (const auto &tool : tools) { // one after the other
            press(tool.first);
            QCOMPARE(checkedTools(), tool.first);
            QCOMPARE(plot().getChMode(), tool.second);
        }
        for (const auto &tool : tools) { // on by the plot itself, and off
            plot().setChMode(tool.second);
            QCOMPARE(checkedTools(), tool.first);
            press(tool.first);
            QCOMPARE(checkedTools(), "");
            QCOMPARE(plot().getChMode(), ModeFollow);
        }
    }

    void toolsDoNothingWithoutAnInstrument()
    {
        for (const char *name : {"qwtZoomBtn", "qwtScrollBtn", "qwtMeasBtn", "modeBtn", "modeXBtn"})
            press(name);
        for (int position = 1; position <= 5; ++position)
            settings(position)->actions().last()->trigger();
        menuOf("setQwtBtn")->actions().first()->trigger();
        pick(menuOf("trackBtn"), "Диапазон");
        QCOMPARE(checkedTools(), "");
        QVERIFY(dialogs.offeredColors.isEmpty());
    }

    void limitsAreChosenFromTheirMenu()
    {
        addSome(2);
        QCOMPARE(entriesOf(menuOf("trackBtn")),
                 "Выкл.*, |, Диапазон, Верхний предел, Нижний предел");
        const QVector<QPair<QString, TmcTrackingMode>> choices = {{"Верхний предел", TrackUpper},
                                                                  {"Диапазон", TrackRange},
                                                                  {"Выкл.", TrackOff},
                                                                  {"Нижний предел", TrackLower}};
        for (const auto &choice : choices) {
            QTimer::singleShot(0, this, [&] { pickEntry(choice.first); });
            press("trackBtn"); // which returns when the menu has closed
            QCOMPARE(plot().getModeTrack(), choice.second);
            QCOMPARE(ticked(menuOf("trackBtn")), choice.first + '*');
            QCOMPARE(checkedTools(), choice.second == TrackOff ? "" : "trackBtn");
        }
        QCOMPARE(plot().getChMode(), ModeLimits);
        find<QToolButton>("trackBtn")->toggle(); // as a click of the keyboard does
        QCOMPARE(checkedTools(), "trackBtn");
        choose(2); // the limits are those of the current instrument
        QCOMPARE(checkedTools(), "");
    }

    void plotMenuOffersEverySetting()
    {
        const auto labels = [](const auto &scales) {
            QStringList all{scales.first().label + '*'};
            for (int number = 1; number < scales.size(); ++number)
                all << scales.at(number).label;
            return all.join(", ");
        };
        QCOMPARE(entriesOf(menuOf("dXBtn")), labels(scalesX()));
        QCOMPARE(entriesOf(menuOf("dYBtn")), labels(scalesY()));
        QCOMPARE(
            entriesOf(menuOf("setQwtBtn")),
            QString("Цвет графика основного канала, Масштаб по X [%1], Масштаб по Y [%2], "
                    "Режим масштабирования [Авто*, Слежение], Размерность шкалы по оси X "
                    "[Секунды*, Относительное время, Абсолютное время], Показывать на графике "
                    "[Значения и скользящее среднее*, Только значения, Только скользящее среднее]")
                .arg(labels(scalesX()), labels(scalesY())));
    }

    void settingsAreTickedAndChanged()
    {
        const struct {
            QMenu *menu;
            int entry;
            const char *state; ///< X, Y, mode, labels, values, averages
        } cases[] = {
            {settings(1), 5, "5 0 1 0 true true"},     {settings(2), 7, "0 7 1 0 true true"},
            {menuOf("dXBtn"), 7, "7 0 1 0 true true"}, {menuOf("dYBtn"), 16, "0 16 1 0 true true"},
            {settings(3), 1, "0 0 1 0 true true"},     {settings(4), 1, "0 0 0 1 true true"},
            {settings(4), 2, "0 0 0 2 true true"},     {settings(5), 1, "0 0 0 0 true false"},
            {settings(5), 2, "0 0 0 0 false true"}};
        for (const auto &one : cases) {
            add(0x11, 1);
            const auto chosen = [&](int entry) {
                one.menu->actions().at(entry)->trigger();
                return words({plot().getChScaleX(), plot().getChScaleY(), plot().getChMode(),
                              plot().getChModeX(), plot().getMeasShow(), plot().getAverShow()});
            };
            QCOMPARE(chosen(one.entry), one.state);
            QCOMPARE(ticked(one.menu), one.menu->actions().at(one.entry)->text() + '*');
            chosen(0);
            QCOMPARE(ticked(one.menu), one.menu->actions().at(0)->text() + '*');
            plot().setChMode(ModeAuto);
            registry().rmByIndex(0);
        }
        add(0x11, 1);
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
            return middleOf(action->icon());
        };
        const QColor first = plot().getChColor(0, 0);
        QCOMPARE(byMenu(), first); // nothing was chosen
        plot().setChMain(1);
        QCOMPARE(clickNumber(Qt::RightButton), QColor(Qt::blue));
        QCOMPARE(byMenu(), QColor(Qt::blue));
        dialogs.color = Qt::magenta;
        QCOMPARE(clickNumber(Qt::RightButton), QColor(Qt::magenta));
        QCOMPARE(clickNumber(Qt::MiddleButton), QColor(Qt::magenta));
        // a hidden channel can be coloured by the menu alone
        QCOMPARE(clickNumber(Qt::LeftButton).alpha(), 0);
        QVERIFY(!plot().getChShow(0, 1));
        dialogs.color = Qt::cyan;
        QCOMPARE(clickNumber(Qt::RightButton).alpha(), 0);
        QCOMPARE(byMenu(), QColor(Qt::cyan));
        QCOMPARE(clickNumber(Qt::LeftButton), QColor(Qt::cyan));
        QCOMPARE(dialogs.offeredColors,
                 (QVector<QColor>{first, Qt::blue, Qt::blue, Qt::blue, Qt::magenta}));
    }

    void captionsTellTheScalesInEffect()
    {
        add(0x11, 1);
        const auto captions = [this] {
            QStringList texts;
            for (const char *name : {"dXBtn", "dYBtn", "modeBtn", "modeXBtn"})
                texts << find<QPushButton>(name)->text();
            return texts.join(", ");
        };
        measureForAWhile();
        for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft})
            QCOMPARE(qRound(plot().axisInterval(axis).width() / plot().axisStepSize(axis)), 10);
        QCOMPARE(captions(), "X: 5 сек., Y: 0.05, АВТО, СЕК");
        now = now.addSecs(65);
        measure(0, 21, 0); // the plot chooses coarser steps by itself
        QCOMPARE(captions(), "X: 10 сек., Y: 0.2, АВТО, СЕК");
        plot().setChScaleX(1);
        QCOMPARE(captions(), "X: 1 сек., Y: 0.000001, СЛЕЖЕНИЕ, СЕК");
        for (const char *labelled : {"АБС", "ОТН", "СЕК"}) {
            press("modeXBtn");
            QCOMPARE(captions().section(", ", 3), labelled);
        }
    }

    void panelsSwitchCurveKinds()
    {
        add();
        measureForAWhile();
        const auto pressed = [this](const char *panel) { // what the plot looks like then
            press(panel);
            showFrame();
            return plot().canvas()->grab().toImage();
        };
        const auto styles = [this] {
            return find("mainMeasLabel")->styleSheet() + find("mainAverLabel")->styleSheet();
        };
        const QString on = "color: #215767;";
        const QString off = "color: gray;";
        const QImage both = plot().canvas()->grab().toImage();
        QCOMPARE(styles(), on + on);
        const QImage averages = pressed("mainMeasLabel");
        QCOMPARE(styles(), off + on);
        const QImage nothing = pressed("mainAverLabel");
        QCOMPARE(styles(), off + off);
        const QImage values = pressed("mainMeasLabel");
        QCOMPARE(styles(), on + off);
        QVERIFY(both != averages && both != values && averages != values);
        QVERIFY(nothing != averages && nothing != values);
        // the next one that the database does not know takes over what is stored for all of those
        registry().rmByIndex(0);
        QCOMPARE(styles(), on + on);
        add();
        QCOMPARE(styles(), on + off);
    }

    /** Those of a measurement lie over the canvas, where a click would set another point. */
    void framesOnThePlotKeepTheirClicks()
    {
        add(0x11, 1);
        measureForAWhile();
        PlotMouse mouse(plot());
        press("qwtMeasBtn");
        mouse.click(mouse.middle() - QPoint(60, 0));
        mouse.click(mouse.middle() + QPoint(60, 0));
        const auto *frame = plot().findChild<QFrame *>("measurementFrame");
        QTRY_VERIFY(frame->isVisible());
        QTest::qWait(0); // lays the frame out
        for (const TmcMode mode : {ModeMeasure, ModeZoom}) {
            plot().setChMode(mode);
            const QImage before = plot().canvas()->grab().toImage();
            mouse.click(plot().canvas()->mapFrom(&plot(), frame->pos() + QPoint(3, 3)));
            mouse.clickOn(plot().findChild<QLabel *>("measurementMean"));
            mouse.moveTo(mouse.middle() + QPoint(60, 0));
            QCOMPARE(plot().getChMode(), mode);
            QCOMPARE(plot().canvas()->grab().toImage(), before);
        }
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
            QCOMPARE(menu != nullptr, opens);
            if (column == Reference) {
                const QRect cell = channels()->visualItemRect(channels()->item(3, column));
                const QPoint below = channels()->viewport()->mapToGlobal(cell.bottomLeft());
                QVERIFY((menu->pos() - below).manhattanLength() < 5);
            }
            if (menu)
                menu->close();
            const QStringList marks = cells(channels(), 3);
            QCOMPARE(marks.first() + marks.last(), opens ? "3" : "3[current]<[current]");
            QCOMPARE(panels().contains("25.0"), !opens);
            const auto selected = channels()->selectionModel()->selectedRows();
            QCOMPARE(selected.size(), 1);
            QCOMPARE(selected.first().row(), opens ? 1 : 3);
        }
        plot().setChMain(4); // by whomever
        QVERIFY(channels()->item(5, Value)->isSelected() && channel(4).endsWith("|<[current]"));
    }

    void clearsThePlot()
    {
        const struct {
            QString entry;
            QMessageBox::StandardButton answer;
            QString left; ///< points, by plot index
        } cases[] = {{"NOX B № 0002", QMessageBox::No, "1 1"},
                     {"NOX B № 0002", QMessageBox::Yes, "1 0"},
                     {"Все приборы", QMessageBox::Yes, "0 0"}};
        addSome(2);
        replace(0); // by one that has the first index on the plot
        measure(1, 21, 0);
        QCOMPARE(entriesOf(menuOf("clearBtn")), "Все приборы, |, NOX B № 0002, NOX D № 0078");
        const QDateTime start = now;
        now = now.addSecs(100);
        for (const auto &one : cases) {
            dialogs.answer = one.answer;
            pick(menuOf("clearBtn"), one.entry);
            const Message &question = dialogs.asked.last();
            QCOMPARE(question.title + ": " + question.text,
                     window->windowTitle() + ": Очистить график?");
            QCOMPARE(question.icon, QMessageBox::Warning);
            QCOMPARE(question.buttons, QMessageBox::Yes | QMessageBox::No);
            QCOMPARE(question.defaultButton, QMessageBox::No);
            QCOMPARE(words({plot().getChMeasCount(0, 0), plot().getChMeasCount(1, 0)}), one.left);
            QCOMPARE(instrument(1).contains("|--["), one.answer == QMessageBox::Yes);
            QCOMPARE(plot().getStartDateTime(1), one.answer == QMessageBox::Yes ? now : start);
        }
        QCOMPARE(dialogs.asked.size(), 3);
    }

    void differenceIsConfigured()
    {
        add(0x0970AA0F, 77);
        add(0x11, 1);
        choose(2);
        const auto seen = [this] {
            const QTableWidgetItem *cell = channels()->item(2, ChannelColumn::Reference);
            return cell->text() + ' ' + cell->toolTip();
        };
        DifferenceMenu *const menu = openDifferences();
        const QString all = "Канал № 3%2, Канал № 4, Канал № 5, Канал № 6, Канал № 7, Канал № 8]";
        const QString offered = "Выкл.%1, |, NOX D rev.4 № 0077 [Канал № 1, Канал № 2, " + all +
                                ", NOX B № 0001 [Канал № 1, " + QString(all).remove("%2");
        QCOMPARE(entriesOf(menu), offered.arg("*", ""));
        pickEntry("NOX D rev.4 № 0077/Канал № 3");
        QCOMPARE(seen(), "3 Разность с NOX D rev.4 №0077, канал №3");
        QCOMPARE(words({plot().getChMode(1, 1), plot().getChMain(1)}), words({ModeFollow, 0}));
        QCOMPARE(entriesOf(openDifferences()), offered.arg("", "*"));
        pickEntry("Выкл.");
        QCOMPARE(seen(), "- Измерение разности выключено");
        plot().setChDiff(2, 0, 1, 1);
        registry().rmByIndex(0);
        QCOMPARE(seen(), "- Измерение разности выключено");
        openDifferences(); // nothing of the former opening is left
        QCOMPARE(menu->findChildren<QMenu *>().size(), 1);
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
            for (const int index : registry().indices())
                registry().rmByIndex(index);
        }
        dialogs.answer = QMessageBox::Yes;
        dialogs.color = Qt::green;
        dialogs.whileAsked = [this] { replace(registry().indices().first()); };
        addSome(1);
        pick(menuOf("clearBtn"), "NOX B № 0001");
        QCOMPARE(plot().getChMeasCount(0, 0), 1);
        clickNumber(Qt::RightButton);
        QCOMPARE(plot().getChColor(0, 1), QColor(Qt::blue));
    }
};

QTEST_MAIN(TestPlotTools)
#include "tst_plottools.moc"
