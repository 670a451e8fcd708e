#include "plot/scalechoice.h"
#include "plotbench.h"

#include <qwt_plot_zoomer.h>

// Zooming by rectangle and wheel, panning, and placing limits.

class TestQwtNOXMouse : public PlotTest
{
    Q_OBJECT

    QwtPlotZoomer *zoomer() const { return plot().findChild<QwtPlotZoomer *>("zoomer"); }
    /** How the steps in effect are called. */
    QString steps() const { return plot().getScaleXLabel() + ' ' + plot().getScaleYLabel(); }
    /** Moves, and tells whether what was at `held` has come along. */
    bool brings(const QPointF &held, const QPoint &to)
    {
        mouse().moveTo(to);
        const QPointF there = mouse().point(to);
        return std::abs(there.x() - held.x()) < 1e-6 && std::abs(there.y() - held.y()) < 1e-9;
    }
    /** Presses somewhere and releases at the value, which a limit takes. */
    void place(double value)
    {
        mouse().drag(mouse().middle() + QPoint(20, 3), mouse().pixel(30, value));
    }
    bool isPlacing() const
    {
        return plot().findChild<QwtPlotPicker *>("limitsPicker")->isEnabled();
    }

private slots:
    void init() { renew(), withRamp(); }
    void zoomsByRectangle()
    {
        for (const bool backwards : {false, true}) {
            plot().setChMode(ModeAuto);
            plot().setChMode(ModeZoom);
            told();
            const QPoint from = mouse().pixel(12, 20.5);
            const QPoint to = mouse().pixel(47, 20.1);
            const double left = mouse().point(from).x();
            mouse().drag(backwards ? to : from, backwards ? from : to);
            QCOMPARE(told(), "Change 0");
            QVERIFY(std::abs(plot().axisInterval(QwtPlot::xBottom).minValue() - left) < 0.2);
            QCOMPARE(seenY(), "20.05 to 20.55 by 0.05"); // around 20.3
            QVERIFY(caption().text().endsWith("dX: 5 сек., dY: 0.05"));
            QCOMPARE(plot().getPrecision() + 10 * plot().getChScaleX(), 2);
            QVERIFY(std::abs(zoomer()->property("rect").toRectF().left() - left) < 0.2);
            QCOMPARE(zoomer()->property("center").toPointF(), middleOfView());
        }
        plot().setZoomScale({12, 20, 35, 4});
        for (const double bad : {qInf(), qQNaN()})
            for (const QRectF &none : {QRectF(bad, 20, 35, 4), {12, bad, 35, 4}, {12, 20, bad, 4}})
                plot().setZoomScale(none);
        QCOMPARE(seenViews(), "12 to 62 by 5, 19.5 to 24.5 by 0.5");
        for (int i = 0; i < 12; ++i) // down to the finest scales: no rectangle is refused
            mouse().drag({300, 200}, {315, 215});
        QCOMPARE(steps(), "1 сек. 0.000001");
        const QString views = seenViews();
        for (int second = 66; second < 300; ++second)
            add(second, second);
        mouse().click({300, 200}, Qt::MiddleButton);
        mouse().pull({200, 100}, {400, 300});
        QTest::keyClick(plot().canvas(), Qt::Key_Escape); // a rectangle given up is none
        mouse().release({400, 300});
        QCOMPARE(seenViews(), views);
        mouse().pull({200, 100}, {400, 300});
        mouse().click({400, 300}, Qt::RightButton); // leads out of the mode all the same
        QCOMPARE(plot().getChModeLabel(), "СЛЕЖЕНИЕ");
        mouse().release({400, 300});
        QCOMPARE(plot().getChModeLabel(), "СЛЕЖЕНИЕ");
    }
    void shortWaysAreClicks()
    {
        const QVector<std::tuple<QPoint, bool, bool>> ways = {
            {{0, 0}, false, false},  {{9, -9}, false, false}, {{10, 2}, true, false},
            {{2, -10}, true, false}, {{-11, 0}, true, true},  {{3, 11}, true, true}};
        for (const auto &[way, zooms, pans] : ways) {
            init();
            const QPoint from(300, 200);
            const QString views = seenViews();
            mouse().pull(from, from + way, Qt::RightButton);
            QCOMPARE(plot().getChMode(), pans ? ModeScroll : ModeAuto);
            QCOMPARE(seenViews(), views);
            mouse().release(from + way, Qt::RightButton);
            plot().setChMode(ModeZoom);
            const QPointF point = mouse().point(from + way);
            mouse().drag(from, from + way);
            QCOMPARE(seenViews() != views, zooms);
            QCOMPARE(plot().getChMode(), zooms ? ModeZoom : ModeMeasure);
            QCOMPARE(seenCrosses(), zooms ? QVector<QPointF>() : QVector<QPointF>{point});
        }
    }
    void wheelMovesBothScales()
    {
        plot().setDevMain(1); // which has no points
        mouse().wheel(mouse().middle(), false);
        QCOMPARE(steps(), "2 сек. 2");
        for (int mode = ModeAuto; mode <= ModeLimits; ++mode) {
            init();
            withRamp(600);
            plot().changeMode(mode);
            if (mode == ModeZoom || mode == ModeScroll) { // steps are those of what is seen
                plot().changeScaleX(0);
                plot().changeScaleY(0);
            }
            const bool isStored = mode == ModeAuto || mode == ModeFollow;
            int x = 8;
            for (int notch = 0; notch < 50; ++notch) { // to both ends of the tables and back
                const int way = notch < 10 || notch >= 40 ? -1 : 1;
                const QPointF cursor = mouse().point({400, 150});
                const QString before = seenViews();
                told();
                mouse().wheel({400, 150}, way < 0);
                if (x + way < 1 || x + way >= scalesX().size()) {
                    QCOMPARE(told() + seenViews(), before);
                    continue;
                }
                x += way;
                const int y = x + 11; // the two keep their distance
                QCOMPARE(steps(), scalesX()[x].label + ' ' + scalesY()[y].label);
                QCOMPARE(stepX(), double(scalesX()[x].step));
                QCOMPARE(stepY(), scalesY()[y].step);
                QCOMPARE(plot().getChScaleX() + 100 * plot().getChScaleY(),
                         isStored ? x + 100 * y : 0);
                QVERIFY(isStored || told() == "Change 0");
                const QPointF off = middleOfView() - cursor;
                QVERIFY(seenX().startsWith("0 to") || qAbs(off.x()) < 1e-6); // not below 0
                QVERIFY(qAbs(off.y()) < 1e-9 * qMax(1.0, stepY()));
            }
            QCOMPARE(int(plot().getChMode()), isStored ? int(ModeFollow) : mode);
            const QString before = seenX();
            add(20, 1e7);
            QCOMPARE(seenX() != before, isStored || mode == ModeLimits); // follows again
        }
    }
    void pans()
    {
        for (int mode = ModeAuto; mode <= ModeLimits; ++mode) {
            init();
            plot().changeMode(mode);
            plot().setZoomScale({200, 20, 90, 0.5});
            const QPoint start = mouse().middle();
            mouse().pull(start, start + QPoint(20, 0), Qt::RightButton); // enters the mode
            QCOMPARE(plot().getChMode(), ModeScroll);
            const QPointF held = mouse().point(start + QPoint(20, 0));
            const QRect canvas = plot().canvas()->geometry();
            for (const QPoint &way :
                 {QPoint(30, 5), QPoint(-120, 80), QPoint(-121, -150), QPoint(900, 60)}) {
                QVERIFY(brings(held, start + way));
                QCoreApplication::processEvents(); // ticks pass the edges, which stay
                QCOMPARE(plot().canvas()->geometry(), canvas);
            }
            QCOMPARE(stepX() + stepY(), 10.1);
            mouse().release(start + QPoint(900, 60), Qt::RightButton);
            QCOMPARE(plot().getChMode(), ModeScroll);
            const QString views = seenViews();
            mouse().moveTo(start - QPoint(100, 100)); // no button is held
            add(900, 900);                            // no matter what arrives
            plot().setChMode(ModeScroll);
            QCOMPARE(seenViews(), views);

            // A second drag begins where it is pressed, not where the first one ended.
            const QPoint again = start - QPoint(100, 0);
            mouse().pull(again, again + QPoint(8, 0), Qt::RightButton);
            const QPointF pressed = mouse().point(again + QPoint(8, 0));
            QVERIFY(brings(pressed, again + QPoint(40, 0)));
            mouse().release(again + QPoint(40, 0), Qt::RightButton);
            mouse().click(start, Qt::RightButton);
            QCOMPARE(plot().getChMode(), ModeFollow);
            QCOMPARE(seenX(), "0 to 1200 by 120"); // back to the data
        }
    }
    void otherButtonsDoNotPan()
    {
        for (const auto &buttons : {QVector<Qt::MouseButton>{Qt::LeftButton},
                                    {Qt::MiddleButton},
                                    {Qt::LeftButton, Qt::RightButton},
                                    {Qt::RightButton, Qt::LeftButton}}) {
            init();
            plot().setChMode(ModeScroll);
            const QString views = seenViews();
            for (const Qt::MouseButton button : buttons)
                mouse().press({300, 200}, button);
            for (int way = 10; way <= 100; way += 10)
                mouse().moveTo({300 + way, 200 + way});
            QCOMPARE(seenViews(), views);
        }
    }
    void neverShowsTimesBelowZero()
    {
        plot().setZoomScale({3, 20, 90, 0.5});
        const QPoint start = mouse().middle();
        mouse().pull(start, start + QPoint(11, 0), Qt::RightButton);
        for (int way = 20; way <= 300; way += 20)
            mouse().moveTo(start + QPoint(way, 0));
        QCOMPARE(seenX(), "0 to 100 by 10");
        const QPointF held = mouse().point(start + QPoint(300, 0));
        QVERIFY(brings(held, start + QPoint(280, 0))); // the view comes along at once
    }
    void placesLimits()
    {
        const QVector<std::tuple<TmcTrackingMode, QVector<double>, QString>> choices = {
            {TrackUpper, {20.4, 20.2}, "20.40 -"}, // once
            {TrackRange, {20.4}, "20.40 -"},
            {TrackRange, {20.4, 20.1, 20.2}, "20.40 20.10"},
            {TrackRange, {20.1, 20.4, 20.2}, "20.40 20.10"}};
        for (const auto &[choice, values, limits] : choices) {
            init();
            plot().setChScaleY(16);
            plot().setModeTrack(TrackRange);
            place(20.3);
            told();
            plot().setModeTrack(choice); // begins anew
            QCOMPARE(told(), QString("Change 0, ChMode 0 0 5, Change 0, "
                                     "ModeTrack 0 0 %1")
                                 .arg(choice));
            QCOMPARE(seenLimits(), "- -");
            for (const double value : values) {
                QVERIFY(isPlacing() == (value != 20.2));
                place(value);
            }
            QCOMPARE(seenLimits(), limits);
            QCOMPARE(isPlacing(), choice == TrackRange && values.size() == 1);
            QCOMPARE(plot().getChMode() + 10 * plot().getModeTrack(), ModeLimits + 10 * choice);
            QCOMPARE(seenCrosses().size(), 0);
            plot().setDevMain(1);
            QCOMPARE(seenLimits(0) + ' ' + seenLimits(1), "- - - -");
            plot().setModeTrack(TrackLower); // it has limits of its own
            place(5);
            QVERIFY(seenLimits(1) != "- -");
            plot().setDevMain(0);
            QCOMPARE(seenLimits(0) + ' ' + seenLimits(1), limits + " - -");
        }
    }
    void limitsOfOthersLeaveTheMouse()
    {
        plot().setModeTrack(TrackUpper, 1);
        QCOMPARE(plot().getChMode(), ModeAuto);
        plot().setModeTrack(TrackUpper);
        told();
        plot().setModeTrack(TrackLower, 9);
        plot().setModeTrack(TmcTrackingMode(4));
        mouse().click(mouse().middle(), Qt::RightButton); // means nothing here
        QCOMPARE(told(), "");
        plot().setModeTrack(TrackOff, 1);
        QVERIFY(isPlacing());
        plot().setModeTrack(TrackOff);
        QVERIFY(!isPlacing());
    }
    void placingGoesWithTheView()
    {
        plot().setChScaleY(16);
        plot().setChScaleX(2); // 20 s
        plot().setModeTrack(TrackRange);
        add(20.65, 100);
        mouse().pull(mouse().middle(), mouse().middle() + QPoint(0, 30));
        add(20.65, 101); // while the line is held
        QCOMPARE(seenX(), "82 to 102 by 2");
        mouse().moveTo(mouse().pixel(90, 20.5));
        mouse().release(mouse().pixel(90, 20.5));
        QCOMPARE(seenLimits(), "20.50 -");
        mouse().pull(mouse().middle(), mouse().middle() + QPoint(0, 30));
        plot().setChMode(ModeFollow);
        mouse().release(mouse().middle());
        QCOMPARE(seenLimits(), "20.50 -");
    }
};

QTEST_MAIN(TestQwtNOXMouse)
#include "tst_qwtnox_mouse.moc"
