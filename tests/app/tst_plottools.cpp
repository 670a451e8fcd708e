#include "windowfixture.h"

#include <functional>

namespace
{

/** Presses a button that opens a menu, and does something while the menu is open. */
void pressAndThen(QWidget *button, const std::function<void(QMenu *)> &whileOpen)
{
    bool opened = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, button, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        watch.stop();
        opened = true;
        whileOpen(menu);
        menu->close(); // the press returns when it is closed
    });
    watch.start(1);
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(opened);
}

void clickEntry(QMenu *menu, const QString &title)
{
    const auto actions = menu->actions();
    for (QAction *action : actions)
        if (action->text() == title)
            return QTest::mouseClick(menu, Qt::LeftButton, {},
                                     menu->actionGeometry(action).center());
    QFAIL(qPrintable("no entry " + title));
}

/** The entries of a menu after it was opened: separators as "|", the ticked one with a star. */
QStringList entriesOf(QMenu *menu)
{
    emit menu->aboutToShow();
    QStringList entries;
    const auto actions = menu->actions();
    for (const QAction *action : actions)
        entries << (action->isSeparator() ? QStringLiteral("|")
                                          : action->text() + (action->isChecked() ? "*" : ""));
    return entries;
}

} // namespace

/** The buttons of the plot that switch what the mouse does, and the menus of limits and settings.
 */
class TestPlotTools : public QObject
{
    Q_OBJECT
private slots:
    void init() { fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { fixture.reset(); }

    void toolsSwitchTheMode_data();
    void toolsSwitchTheMode();
    void toolsDoNothingWithoutAnInstrument();
    void limitsAreChosenFromTheirMenu();
    void limitButtonTellsTheLimits();
    void plotMenuOffersEverySetting();
    void plotMenuTicksWhatIsInEffect();
    void plotMenuChangesSettings();
    void plotMenuChoosesTheColour();

private:
    QToolButton *tool(const char *name) const { return fixture->find<QToolButton>(name); }
    QStringList checkedTools() const
    {
        QStringList names;
        for (const char *name : {"qwtZoomBtn", "qwtScrollBtn", "qwtMeasBtn", "trackBtn"})
            if (tool(name)->isChecked())
                names << QString::fromLatin1(name);
        return names;
    }
    QMenu *plotMenu() const { return fixture->find<QPushButton>("setQwtBtn")->menu(); }
    QMenu *submenu(int position) const { return plotMenu()->actions().at(position)->menu(); }

    std::unique_ptr<WindowFixture> fixture;
};

void TestPlotTools::toolsSwitchTheMode_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("other");
    QTest::addColumn<TmcMode>("mode");
    QTest::newRow("zoom") << "qwtZoomBtn"
                          << "qwtMeasBtn" << ModeZoom;
    QTest::newRow("panning") << "qwtScrollBtn"
                             << "qwtZoomBtn" << ModeScroll;
    QTest::newRow("measurement") << "qwtMeasBtn"
                                 << "qwtScrollBtn" << ModeMeasure;
}

void TestPlotTools::toolsSwitchTheMode()
{
    QFETCH(QString, name);
    QFETCH(QString, other);
    QFETCH(TmcMode, mode);
    fixture->add(0x11, 1);
    const auto click = [this](const QString &button) {
        QTest::mouseClick(tool(button.toLatin1()), Qt::LeftButton);
    };
    click(other);
    QCOMPARE(checkedTools(), QStringList{other});
    click(name);
    QCOMPARE(fixture->plot().getChMode(), mode);
    QCOMPARE(checkedTools(), QStringList{name});
    click(name);
    QCOMPARE(fixture->plot().getChMode(), ModeFollow);
    QCOMPARE(checkedTools(), QStringList());
    // the plot itself may change the mode
    fixture->plot().setChMode(mode);
    QCOMPARE(checkedTools(), QStringList{name});
}

void TestPlotTools::toolsDoNothingWithoutAnInstrument()
{
    for (const char *name : {"qwtZoomBtn", "qwtScrollBtn", "qwtMeasBtn"})
        QTest::mouseClick(tool(name), Qt::LeftButton);
    pressAndThen(tool("trackBtn"), [](QMenu *menu) { clickEntry(menu, "Диапазон"); });
    for (int position = 1; position < plotMenu()->actions().size(); ++position)
        submenu(position)->actions().last()->trigger();
    QCOMPARE(checkedTools(), QStringList());
    plotMenu()->actions().first()->trigger();
    QVERIFY(fixture->dialogs.offeredColors.isEmpty());
}

void TestPlotTools::limitsAreChosenFromTheirMenu()
{
    fixture->add(0x11, 1);
    QStringList entries;
    pressAndThen(tool("trackBtn"), [&entries](QMenu *menu) {
        entries = entriesOf(menu);
        clickEntry(menu, "Верхний предел");
    });
    QCOMPARE(entries, (QStringList{"Выкл.*", "|", "Диапазон", "Верхний предел", "Нижний предел"}));
    QCOMPARE(fixture->plot().getModeTrack(), TrackUpper);
    QCOMPARE(fixture->plot().getChMode(), ModeLimits);
    QCOMPARE(checkedTools(), QStringList{"trackBtn"});

    QList<TmcTrackingMode> chosen;
    for (const char *title : {"Диапазон", "Нижний предел", "Выкл."}) {
        pressAndThen(tool("trackBtn"), [title](QMenu *menu) { clickEntry(menu, title); });
        chosen << fixture->plot().getModeTrack();
    }
    QCOMPARE(chosen, (QList<TmcTrackingMode>{TrackRange, TrackLower, TrackOff}));
    QCOMPARE(checkedTools(), QStringList());
}

void TestPlotTools::limitButtonTellsTheLimits()
{
    fixture->add(0x11, 1);
    const auto openAndLeave = [this] {
        QStringList entries;
        pressAndThen(tool("trackBtn"), [&entries](QMenu *menu) {
            entries = entriesOf(menu);
            QTest::keyClick(menu, Qt::Key_Escape);
        });
        tool("trackBtn")->toggle(); // as a click by the keyboard or a screen reader does
        return entries.filter("*");
    };
    QCOMPARE(openAndLeave(), QStringList{"Выкл.*"});
    QVERIFY(!tool("trackBtn")->isChecked());
    fixture->plot().setModeTrack(TrackLower);
    QCOMPARE(openAndLeave(), QStringList{"Нижний предел*"});
    QVERIFY(tool("trackBtn")->isChecked());
    // the limits are those of the current instrument
    fixture->add(0x11, 2);
    fixture->click(fixture->instruments(), 2, InstrumentColumn::Name);
    QVERIFY(!tool("trackBtn")->isChecked());
}

void TestPlotTools::plotMenuOffersEverySetting()
{
    QCOMPARE(entriesOf(plotMenu()),
             (QStringList{"Цвет графика основного канала", "Масштаб по X", "Масштаб по Y",
                          "Режим масштабирования", "Размерность шкалы по оси X",
                          "Показывать на графике"}));
    QCOMPARE(submenu(1)->actions().size(), 19);
    QCOMPARE(submenu(2)->actions().size(), 30);
    QCOMPARE(entriesOf(submenu(3)), (QStringList{"Авто*", "Слежение"}));
    QCOMPARE(entriesOf(submenu(4)),
             (QStringList{"Секунды*", "Относительное время", "Абсолютное время"}));
    QCOMPARE(entriesOf(submenu(5)), (QStringList{"Значения и скользящее среднее*",
                                                 "Только значения", "Только скользящее среднее"}));
}

void TestPlotTools::plotMenuTicksWhatIsInEffect()
{
    fixture->add(0x11, 1);
    const auto ticked = [this](int position) { return entriesOf(submenu(position)).filter("*"); };
    fixture->plot().setChScaleX(3);
    fixture->plot().setChScaleY(10);
    fixture->plot().setChModeX(ModeXAbsolute);
    QCOMPARE(ticked(1), QStringList{scalesX().at(3).label + "*"});
    QCOMPARE(ticked(2), QStringList{scalesY().at(10).label + "*"});
    QCOMPARE(ticked(3), QStringList{"Слежение*"});
    QCOMPARE(ticked(4), QStringList{"Абсолютное время*"});
    fixture->plot().setChMode(ModeZoom);
    QCOMPARE(ticked(3), QStringList());
    fixture->plot().setMeasShow(false);
    QCOMPARE(ticked(5), QStringList{"Только скользящее среднее*"});
    fixture->plot().setAverShow(false);
    QCOMPARE(ticked(5), QStringList());
}

void TestPlotTools::plotMenuChangesSettings()
{
    fixture->add(0x11, 1);
    const auto choose = [this](int position, int entry) {
        submenu(position)->actions().at(entry)->trigger();
    };
    const QwtNOX &plot = fixture->plot();
    choose(1, 5);
    QCOMPARE(plot.getChScaleX(), uchar(5));
    choose(2, 7);
    QCOMPARE(plot.getChScaleY(), uchar(7));
    choose(3, 0);
    QCOMPARE(plot.getChMode(), ModeAuto);
    choose(4, 1);
    QCOMPARE(plot.getChModeX(), ModeXRelative);

    const auto shown = [&plot](bool values, bool averages) {
        return plot.getMeasShow() == values && plot.getAverShow() == averages;
    };
    choose(5, 1);
    QVERIFY(shown(true, false));
    choose(5, 2);
    QVERIFY(shown(false, true));
    choose(5, 0);
    QVERIFY(shown(true, true));
}

void TestPlotTools::plotMenuChoosesTheColour()
{
    fixture->add(0x11, 1);
    fixture->plot().setChMain(1);
    const auto iconColor = [this] {
        emit plotMenu()->aboutToShow();
        const QIcon icon = plotMenu()->actions().first()->icon();
        return icon.pixmap(16, 16).toImage().pixelColor(8, 8);
    };
    QCOMPARE(iconColor(), QColor(Qt::blue));
    plotMenu()->actions().first()->trigger();
    QCOMPARE(fixture->dialogs.offeredColors, QVector<QColor>{Qt::blue});
    QCOMPARE(fixture->plot().getChColor(0, 1), QColor(Qt::blue));

    // a hidden channel can be coloured here all the same
    fixture->plot().setChShow(false, 0, 1);
    fixture->dialogs.color = Qt::magenta;
    plotMenu()->actions().first()->trigger();
    QCOMPARE(fixture->plot().getChColor(0, 1), QColor(Qt::magenta));
    QCOMPARE(iconColor(), QColor(Qt::magenta));
}

QTEST_MAIN(TestPlotTools)
#include "tst_plottools.moc"
