#include "plot/scalechoice.h"
#include "plotbench.h"

#include <qwt_plot_zoomer.h>

// Zooming by rectangle and wheel, panning, and placing limits.

namespace
{

constexpr int lastX = 18; // the coarsest steps
constexpr int lastY = 29;

struct MouseBench : PlotBench {
    MouseBench() { withRamp(); }

    QwtPlotZoomer *zoomer() const { return picker<QwtPlotZoomer>("zoomer"); }
    /** The steps in effect. */
    QPair<int, int> steps() const
    {
        const auto step = [](const auto &table, const QString &label) {
            return int(std::find_if(table.begin(), table.end(),
                                    [&](const auto &scale) { return scale.label == label; }) -
                       table.begin());
        };
        return {step(scalesX(), plot.getScaleXLabel()), step(scalesY(), plot.getScaleYLabel())};
    }
    /** Moves, and tells whether what was at `held` has come along. */
    bool brings(const QPointF &held, const QPoint &to)
    {
        mouse.moveTo(to);
        const QPointF there = mouse.point(to);
        return std::abs(there.x() - held.x()) < 1e-6 && std::abs(there.y() - held.y()) < 1e-9;
    }
    /** Presses somewhere and releases at the value, which a limit takes. */
    void place(double value) { mouse.drag(mouse.middle() + QPoint(20, 3), mouse.pixel(30, value)); }
    bool isPlacing() const { return picker<QwtPlotPicker>("limitsPicker")->isEnabled(); }
};

} // namespace

class TestQwtNOXMouse : public QObject
{
    Q_OBJECT

private slots:
    void zoomsByRectangle()
    {
        MouseBench bench;
        PlotMouse &mouse = bench.mouse;
        for (const bool backwards : {false, true}) {
            bench.plot.setChMode(ModeAuto);
            bench.plot.setChMode(ModeZoom);
            bench.log.take();
            const QPoint from = mouse.pixel(12, 20.5);
            const QPoint to = mouse.pixel(47, 20.1);
            const double left = mouse.point(from).x();
            mouse.drag(backwards ? to : from, backwards ? from : to);
            QCOMPARE(bench.log.take(), "onChange 0");
            QVERIFY(std::abs(bench.plot.axisInterval(QwtPlot::xBottom).minValue() - left) < 0.2);
            QCOMPARE(bench.y(), "20.05 to 20.55 by 0.05"); // around 20.3
            QVERIFY(bench.captionText().endsWith("dX: 5 сек., dY: 0.05"));
            QCOMPARE(bench.plot.getPrecision() + 10 * bench.plot.getChScaleX(), 2);
            QVERIFY(std::abs(bench.zoomer()->property("rect").toRectF().left() - left) < 0.2);
            QCOMPARE(bench.zoomer()->property("center").toPointF(), bench.middle());
        }
        bench.plot.setZoomScale({12, 20, 35, 4});
        QCOMPARE(bench.views(), "12 to 62 by 5, 19.5 to 24.5 by 0.5");
        for (int i = 0; i < 20; ++i) { // no stack grows
            mouse.drag({100 + 5 * i, 100}, {400, 300});
            mouse.wheel({200, 200}, false);
        }
        QCOMPARE(bench.zoomer()->zoomStack().size(), 1);
        for (int i = 0; i < 12; ++i) // down to the finest scales: no rectangle is refused
            mouse.drag({300, 200}, {315, 215});
        QCOMPARE(bench.steps(), qMakePair(1, 1));
        const QString views = bench.views();
        for (int second = 66; second < 300; ++second)
            bench.add(second, second);
        QCOMPARE(bench.views(), views);
        QCOMPARE(bench.zoomer()->trackerMode(), QwtPicker::AlwaysOff);
    }
    void nothingJumpsToABase()
    {
        MouseBench bench;
        PlotMouse &mouse = bench.mouse;
        bench.plot.setChMode(ModeZoom);
        mouse.drag({200, 100}, {400, 300});
        const QString views = bench.views();
        for (const int key : {Qt::Key_Escape, Qt::Key_Home, Qt::Key_Plus, Qt::Key_Minus})
            QTest::keyClick(bench.plot.canvas(), Qt::Key(key));
        mouse.click({300, 200}, Qt::MiddleButton);
        mouse.press({300, 200}, Qt::RightButton);
        QCOMPARE(bench.views(), views);
        mouse.release({300, 200}, Qt::RightButton);
        QCOMPARE(bench.plot.getChMode(), ModeFollow); // and there the view follows the points
        QCOMPARE(bench.x(), "0 to 100 by 10");

        bench.plot.setChMode(ModeZoom); // a rectangle given up by key is none
        mouse.pull({200, 100}, {400, 300});
        QTest::keyClick(bench.plot.canvas(), Qt::Key_Escape);
        mouse.release({400, 300});
        QCOMPARE(bench.x(), "0 to 100 by 10");
    }
    void shortWaysAreClicks()
    {
        const struct {
            QPoint way;
            bool zooms, pans;
        } ways[] = {{{0, 0}, false, false},  {{9, -9}, false, false}, {{10, 2}, true, false},
                    {{2, -10}, true, false}, {{-11, 0}, true, true},  {{3, 11}, true, true}};
        for (const auto &[way, zooms, pans] : ways) {
            MouseBench bench;
            const QPoint from(300, 200);
            const QString views = bench.views();
            bench.mouse.pull(from, from + way, Qt::RightButton);
            QCOMPARE(bench.plot.getChMode(), pans ? ModeScroll : ModeAuto);
            QCOMPARE(bench.views(), views);
            bench.mouse.release(from + way, Qt::RightButton);
            bench.plot.setChMode(ModeZoom);
            const QPointF point = bench.mouse.point(from + way);
            bench.mouse.drag(from, from + way);
            QCOMPARE(bench.views() != views, zooms);
            QCOMPARE(bench.plot.getChMode(), zooms ? ModeZoom : ModeMeasure);
            QCOMPARE(bench.crosses(), zooms ? QVector<QPointF>() : QVector<QPointF>{point});
        }
    }
    void wheelMovesBothScales()
    {
        for (int mode = ModeAuto; mode <= ModeLimits; ++mode) {
            MouseBench bench;
            bench.withRamp(600).plot.changeMode(mode);
            QCOMPARE(bench.steps(), qMakePair(8, 19));
            const bool isStored = mode == ModeAuto || mode == ModeFollow;
            for (const int way : {-1, 1, 1, -1}) {
                const QPair<int, int> steps(bench.steps().first + way, bench.steps().second + way);
                const QPoint at = bench.mouse.pixel(560, 23);
                const QPointF cursor = bench.mouse.point(at);
                bench.log.take();
                bench.mouse.wheel(at, way < 0);
                QCOMPARE(bench.steps(), steps);
                QCOMPARE(bench.stepX(), double(scalesX()[steps.first].step));
                QCOMPARE(bench.stepY(), scalesY()[steps.second].step);
                QCOMPARE(int(bench.plot.getChScaleX()), isStored ? steps.first : 0);
                QCOMPARE(int(bench.plot.getChScaleY()), isStored ? steps.second : 0);
                QCOMPARE(int(bench.plot.getPrecision()), steps.second < 19 ? 1 : 0);
                QVERIFY(isStored || bench.log.take() == "onChange 0");
                const bool isMoved = bench.x().startsWith("0 to"); // to begin at 0
                QVERIFY(isMoved || std::abs(bench.middle().x() - cursor.x()) < 1e-6);
                QVERIFY(std::abs(bench.middle().y() - cursor.y()) < 1e-9);
                QCOMPARE(bench.zoomer()->property("center").toPointF(), cursor);
            }
            QCOMPARE(int(bench.plot.getChMode()), isStored ? int(ModeFollow) : mode);
            bench.add(20, 901);
            QVERIFY(!isStored || bench.x() == "0 to 1200 by 120"); // follows again
        }
    }
    void wheelWorksFromAutomaticScales()
    {
        for (int mode = ModeAuto; mode <= ModeLimits; ++mode) {
            MouseBench bench;
            const bool isChosen = mode == ModeZoom || mode == ModeScroll;
            if (!isChosen) // no point yet
                bench.plot.setDevMain(1);
            bench.plot.changeMode(mode);
            if (isChosen) {
                bench.plot.changeScaleX(0);
                bench.plot.changeScaleY(0);
            }
            QCOMPARE(bench.steps(), qMakePair(0, 0));
            for (int notch = 0; notch < 70; ++notch) {
                const QPair<int, int> steps = bench.steps();
                const QString views = bench.views();
                bench.log.take();
                bench.mouse.wheel(bench.mouse.middle(), notch < 35);
                if (bench.steps() == steps) // the end of one of the tables
                    QCOMPARE(bench.log.take() + bench.views(), views);
                const auto [x, y] = bench.steps();
                QVERIFY(x >= 1 && x <= lastX && y >= 1 && y <= lastY);
                QVERIFY(bench.stepX() > 0 && bench.stepY() > 0);
            }
        }
    }
    void pans()
    {
        for (int mode = ModeAuto; mode <= ModeLimits; ++mode) {
            MouseBench bench;
            PlotMouse &mouse = bench.mouse;
            bench.plot.changeMode(mode);
            bench.plot.setZoomScale({200, 20, 90, 0.5});
            const QPoint start = mouse.middle();
            mouse.pull(start, start + QPoint(20, 0), Qt::RightButton); // enters the mode
            QCOMPARE(bench.plot.getChMode(), ModeScroll);
            const QPointF held = mouse.point(start + QPoint(20, 0));
            const QRect canvas = bench.plot.canvas()->geometry();
            for (const QPoint &way :
                 {QPoint(30, 5), QPoint(-120, 80), QPoint(-121, -150), QPoint(900, 60)}) {
                QVERIFY(bench.brings(held, start + way));
                QCoreApplication::processEvents(); // ticks pass the edges, which stay
                QCOMPARE(bench.plot.canvas()->geometry(), canvas);
            }
            QCOMPARE(bench.stepX() + bench.stepY(), 10.1);
            mouse.release(start + QPoint(900, 60), Qt::RightButton);
            QCOMPARE(bench.plot.getChMode(), ModeScroll);
            const QString views = bench.views();
            mouse.moveTo(start - QPoint(100, 100)); // no button is held
            bench.add(900, 900);                    // no matter what arrives
            bench.plot.setChMode(ModeScroll);
            QCOMPARE(bench.views(), views);

            // A second drag begins where it is pressed, not where the first one ended.
            const QPoint again = start - QPoint(100, 0);
            mouse.pull(again, again + QPoint(8, 0), Qt::RightButton);
            const QPointF pressed = mouse.point(again + QPoint(8, 0));
            QVERIFY(bench.brings(pressed, again + QPoint(40, 0)));
            mouse.release(again + QPoint(40, 0), Qt::RightButton);
            mouse.click(start, Qt::RightButton);
            QCOMPARE(bench.plot.getChMode(), ModeFollow);
            QCOMPARE(bench.x(), "0 to 1200 by 120"); // back to the data
        }
    }
    void otherButtonsDoNotPan()
    {
        for (const auto &buttons : {QVector<Qt::MouseButton>{Qt::LeftButton},
                                    {Qt::MiddleButton},
                                    {Qt::LeftButton, Qt::RightButton},
                                    {Qt::RightButton, Qt::LeftButton}}) {
            MouseBench bench;
            bench.plot.setChMode(ModeScroll);
            const QString views = bench.views();
            for (const Qt::MouseButton button : buttons)
                bench.mouse.press({300, 200}, button);
            for (int way = 10; way <= 100; way += 10)
                bench.mouse.moveTo({300 + way, 200 + way});
            QCOMPARE(bench.views(), views);
        }
    }
    void neverShowsTimesBelowZero()
    {
        MouseBench bench;
        PlotMouse &mouse = bench.mouse;
        bench.plot.setZoomScale({3, 20, 90, 0.5});
        const QPoint start = mouse.middle();
        mouse.pull(start, start + QPoint(11, 0), Qt::RightButton);
        for (int way = 20; way <= 300; way += 20)
            mouse.moveTo(start + QPoint(way, 0));
        QCOMPARE(bench.x(), "0 to 100 by 10");
        const QPointF held = mouse.point(start + QPoint(300, 0));
        QVERIFY(bench.brings(held, start + QPoint(280, 0))); // the view comes along at once
        mouse.release(start, Qt::RightButton);
        bench.plot.setChMode(ModeZoom);
        mouse.wheel(mouse.pixel(20, 20.3), false); // 15 s: -55 to 95 s
        QCOMPARE(bench.x(), "0 to 150 by 15");
    }
    void placesLimits()
    {
        const struct {
            TmcTrackingMode choice;
            QVector<double> values;
            QString limits;
        } choices[] = {{TrackUpper, {20.4, 20.2}, "20.40 -"}, // once
                       {TrackLower, {20.1}, "- 20.10"},
                       {TrackRange, {20.4}, "20.40 -"},
                       {TrackRange, {20.4, 20.1, 20.2}, "20.40 20.10"},
                       {TrackRange, {20.1, 20.4, 20.2}, "20.40 20.10"}};
        for (const auto &[choice, values, limits] : choices) {
            MouseBench bench;
            QwtNOX &plot = bench.plot;
            plot.setChScaleY(16);
            plot.setModeTrack(TrackRange);
            bench.place(20.3);
            bench.log.take();
            plot.setModeTrack(choice); // begins anew
            QCOMPARE(bench.log.take(), QString("onChange 0, onChModeChange 0 0 5, onChange 0, "
                                               "onModeTrackChange 0 0 %1")
                                           .arg(choice));
            QCOMPARE(bench.limits(), "- -");
            for (const double value : values) {
                QVERIFY(bench.isPlacing() == (value != 20.2));
                bench.place(value);
            }
            QCOMPARE(bench.limits(), limits);
            QCOMPARE(bench.isPlacing(), choice == TrackRange && values.size() == 1);
            QCOMPARE(plot.getChMode() + 10 * plot.getModeTrack(), ModeLimits + 10 * choice);
            QCOMPARE(bench.crosses().size(), 0);
            plot.setDevMain(1);
            QCOMPARE(bench.limits(0) + ' ' + bench.limits(1), "- - - -");
            plot.setModeTrack(TrackLower); // it has limits of its own
            bench.place(5);
            QVERIFY(bench.limits(1) != "- -");
            plot.setDevMain(0);
            QCOMPARE(bench.limits(0) + ' ' + bench.limits(1), limits + " - -");
            plot.setDevMain(0); // those never placed stay away
            QCOMPARE(bench.limits(), limits);
        }
    }
    void limitsOfOthersLeaveTheMouse()
    {
        MouseBench bench;
        QwtNOX &plot = bench.plot;
        plot.setModeTrack(TrackUpper, 1);
        QCOMPARE(plot.getChMode(), ModeAuto);
        plot.setModeTrack(TrackUpper);
        plot.setModeTrack(TrackOff, 1);
        bench.log.take();
        plot.setModeTrack(TmcTrackingMode(4));
        plot.setModeTrack(TmcTrackingMode(-1));
        plot.setModeTrack(TrackLower, 9);
        bench.mouse.click(bench.mouse.middle(), Qt::RightButton); // means nothing here
        QCOMPARE(bench.log.take(), "");
        QVERIFY(bench.isPlacing());
        plot.setModeTrack(TrackOff);
        QVERIFY(!bench.isPlacing());
        plot.setModeTrack(TrackLower);
        plot.setChCount(0, 0);
        QCOMPARE(plot.getModeTrack(0), TrackOff);
    }
    void placingGoesWithTheView()
    {
        MouseBench bench;
        PlotMouse &mouse = bench.mouse;
        bench.plot.setChScaleY(16);
        bench.plot.setChScaleX(2); // 20 s
        bench.plot.setModeTrack(TrackRange);
        bench.add(20.65, 100);
        mouse.pull(mouse.middle(), mouse.middle() + QPoint(0, 30));
        bench.add(20.65, 101); // while the line is held
        QCOMPARE(bench.x(), "82 to 102 by 2");
        mouse.moveTo(mouse.pixel(90, 20.5));
        mouse.release(mouse.pixel(90, 20.5));
        QCOMPARE(bench.limits(), "20.50 -");
        mouse.pull(mouse.middle(), mouse.middle() + QPoint(0, 30));
        bench.plot.setChMode(ModeFollow);
        mouse.release(mouse.middle());
        QCOMPARE(bench.limits(), "20.50 -");
        bench.plot.setChMode(ModeLimits); // the line is not held any more
        QVERIFY(!bench.picker<QwtPlotPicker>("limitsPicker")->isActive());
    }
};

QTEST_MAIN(TestQwtNOXMouse)
#include "tst_qwtnox_mouse.moc"
