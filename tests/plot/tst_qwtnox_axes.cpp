#include "plotbench.h"

// Which part of the data the axes show, by mode and scale.

class TestQwtNOXAxes : public PlotTest
{
    Q_OBJECT

private slots:
    void followData()
    {
        // 7 is a minute, 16 a tenth
        const QVector<std::tuple<int, int, QVector<QPointF>, QString>> data = {
            {0, 0, {}, "0 to 10 by 1, 0 to 10 by 1"},
            {0, 0, {{0, 20}, {65, 20.65}}, "0 to 100 by 10, 19.8 to 20.8 by 0.1"},
            {0, 0, {{1234, 2}, {1240, 2}}, "1234 to 1244 by 1, 1.999995 to 2.000005 by 1e-06"},
            // on the right edge, past it, and past it again
            {7, 16, {{0, 20}, {600, 20}}, "0 to 600 by 60, 19.5 to 20.5 by 0.1"},
            {7, 0, {{600, 0}, {601, 2}, {660, 2}}, "60 to 660 by 60, -1.5 to 3.5 by 0.5"},
            {7, 19, {{601, 20}, {660.5, 20}}, "120 to 720 by 60, 15 to 25 by 1"},
            // on the upper edge, and past it
            {0, 16, {{0, 20}, {1, 20.5}}, "0 to 10 by 1, 19.5 to 20.5 by 0.1"},
            {0, 16, {{0, 20}, {1, 20.5}, {2, 21.4}}, "0 to 10 by 1, 20.9 to 21.9 by 0.1"},
            // an outlier in view, on its edge, and one that has left it
            {7, 0, {{0, 20}, {50, 1500}, {550, 20}}, "0 to 600 by 60, -200 to 1800 by 200"},
            {7, 0, {{0, 20}, {60, 1500}, {610, 20}}, "60 to 660 by 60, -200 to 1800 by 200"},
            {7, 0, {{5, 150}, {1290, 2}, {1300, 2.8}}, "720 to 1320 by 60, 1.9 to 2.9 by 0.1"},
            // a clock set back, and so far that no point is in view
            {1, 16, {{5000, 20}, {100, 20}}, "90 to 100 by 1, 19.5 to 20.5 by 0.1"},
            {0, 0, {{5000, 0}, {5001, 500}, {100, 22}}, "5000 to 5010 by 1, -200 to 800 by 100"},
            // usable again after a huge value
            {0, 16, {{1, 1.7e308}, {2, 20}}, "1 to 11 by 1, 19.5 to 20.5 by 0.1"}};
        for (const auto &[scaleX, scaleY, points, views] : data) {
            renew();
            plot().changeScaleX(scaleX);
            plot().changeScaleY(scaleY);
            for (const QPointF &point : points) {
                add(point.y(), point.x());
                add(500, 9e5, 1);    // neither other channels
                add(500, 9e5, 0, 1); // nor other instruments count
            }
            QCOMPARE(seenViews(), views);
            const int decimals = qMax(0, -int(std::floor(std::log10(stepY()) + 1e-9)));
            QCOMPARE(int(plot().getPrecision()), decimals);
        }
    }
    void withoutPointsAxesAreAsInTheBeginning()
    {
        withRamp();
        plot().addDev(2, 1);
        plot().setDevMain(2);
        QCOMPARE(seenViews(), "0 to 10 by 1, 0 to 10 by 1");
        plot().setDevMain(0);
        QCOMPARE(seenX(), "0 to 100 by 10");
        plot().clear(0);
        plot().setChMain(1);
        QCOMPARE(seenViews(), "0 to 10 by 1, 0 to 10 by 1");
    }
    void visibleCurveDecides()
    {
        for (const bool isDifference : {false, true}) {
            renew();
            plot().setMeasShow(false);
            if (isDifference)
                plot().setChDiff(1, 0);
            for (int second = 0; second < 40; ++second) {
                add(50, second, 1);
                add(second % 2 ? 100 : 0, second + 0.5); // averages end at 50
            }
            QCOMPARE(seenY(), isDifference ? "-80 to 20 by 10" : "-20 to 80 by 10");
            plot().setMeasShow(true);
            QCOMPARE(seenY(), isDifference ? "-100 to 100 by 20" : "-40 to 160 by 20");
            plot().setAverShow(false);
            plot().setMeasShow(false); // neither is seen: values
            QCOMPARE(seenY(), isDifference ? "-100 to 100 by 20" : "-40 to 160 by 20");
            plot().setChScaleY(16);
            QCOMPARE(seenY(), isDifference ? "49.5 to 50.5 by 0.1" : "99.5 to 100.5 by 0.1");
        }
    }
    void divisionsAreSteps()
    {
        withRamp();
        plot().setDivX(5); // 6.5 steps of 10 s no longer fit
        plot().setDivY(7); // of which six can lie around the middle
        plot().applyScale();
        QCOMPARE(seenViews(), "0 to 150 by 30, 19.8 to 21 by 0.2");
        plot().setDivX(0);
        plot().setDivY(0);
        plot().changeScaleX(7);
        plot().changeScaleY(16);
        QCOMPARE(seenX(), "60 to 120 by 60");
        QVERIFY(seenY().endsWith("by 0.1"));
    }
    void choicesAnnounceAndSetTheMode()
    {
        using Choice = std::function<void()>;
        const QVector<QPair<Choice, QString>> choices = {
            {[&] { plot().changeScaleX(7); }, "Change 0, ChMode 0 0 1, Change 0, ChScaleX 0 0 7"},
            {[&] { plot().changeScaleY(16); }, "Change 0, ChMode 0 0 1, Change 0, ChScaleY 0 0 16"},
            {[&] { plot().changeScaleX(0); }, "Change 0, ChMode 0 0 1, Change 0, ChScaleX 0 0 0"},
            {[&] { plot().changeScaleY(0); }, "Change 0, ChMode 0 0 0, Change 0, ChScaleY 0 0 0"},
            {[&] { plot().changeModeX(ModeXAbsolute); }, "Change 0, ChModeX 0 0 2"},
            {[&] { plot().changeModeX(ModeXAbsolute); }, ""},
            {[&] { plot().changeMode(ModeScroll); }, "Change 0, ChMode 0 0 4"},
            {[&] { plot().changeScaleX(7); }, "Change 0, ChScaleX 0 0 7"},
            {[&] { plot().changeMode(ModeMeasure); }, "Change 0, ChMode 0 0 3"},
            {[&] { plot().changeScaleX(3); }, "Change 0, ChMode 0 0 1, Change 0, ChScaleX 0 0 3"},
            {[&] { // of another instrument: its own
                 plot().setChMode(ModeZoom, 1, 1);
                 plot().setChScaleX(5, 1, 1);
                 plot().setChModeX(ModeXRelative, 1, 1);
             },
             "Change 1, ChMode 1 1 2, Change 1, ChMode 1 1 1, Change 1, "
             "ChScaleX 1 1 5, Change 1, ChModeX 1 1 1"},
            {[&] { // what no table has
                 plot().setChScaleX(19), plot().changeScaleX(-1), plot().setChScaleX(3, 9, 0);
                 plot().setChScaleY(30), plot().changeScaleY(256 + 5), plot().calcPrecision(30);
                 plot().changeMode(6), plot().changeMode(-1);
                 plot().changeModeX(-1), plot().changeModeX(3);
             },
             ""}};
        for (const auto &[choose, expected] : choices) {
            choose();
            QCOMPARE(told(), expected);
        }
        QCOMPARE(QStringList({plot().getChModeLabel(), plot().getChModeXLabel(),
                              plot().getScaleXLabel(), plot().getScaleYLabel()})
                     .join(' '),
                 "СЛЕЖЕНИЕ АБС 5 сек. Авто");
        QCOMPARE(int(plot().getChScaleX()) + 100 * plot().getChScaleX(1, 1) +
                     plot().getChModeX(9, 0),
                 503);
    }
    void labelsAreThoseOfTheMainChannel()
    {
        plot().setChModeX(ModeXRelative, 1, 1);
        plot().changeModeX(ModeXAbsolute);
        plot().setChMain(1, 1);
        QCOMPARE(labelX(70), "23:01:10");
        plot().setDevMain(1);
        QCOMPARE(labelX(70), "00:01:10");
        plot().setChMain(0);
        QCOMPARE(labelX(70), "70");
        plot().removeDev(1);
        told();
        plot().setDevMain(-1);
        QCOMPARE(told(), "Dev -1, Change -1");
        QCOMPARE(plot().getChModeLabel() + plot().getChModeXLabel() + plot().getScaleXLabel() +
                     plot().getScaleYLabel(),
                 "----");
    }
    void freeViewsAreRecentred()
    {
        withRamp(400);
        plot().setChMode(ModeScroll);
        QCOMPARE(seenViews(), "0 to 600 by 60, 19.5 to 24.5 by 0.5");
        plot().setChScaleX(4);
        QCOMPARE(seenX(), "250 to 350 by 10");
        plot().setChScaleX(9);
        QCOMPARE(seenX(), "0 to 3000 by 300"); // -1200 to 1800, moved to begin at 0
        plot().setChScaleY(16);
        QCOMPARE(seenY(), "21.5 to 22.5 by 0.1");
        QCOMPARE(plot().axisScaleDraw(QwtPlot::yLeft)->label(22).text(), "22.0");
        QCOMPARE(int(plot().getChScaleX()) + plot().getChScaleY(), 0);
        QCOMPARE(plot().getScaleXLabel() + plot().getScaleYLabel(), "5 мин.0.1");
        QVERIFY(caption().text().endsWith("dX: 5 мин., dY: 0.1"));
        plot().setChScaleX(0); // has no step of its own
        plot().setChScaleY(0);
        QCOMPARE(seenViews(), "0 to 3000 by 300, 21.5 to 22.5 by 0.1");

        plot().setChMode(ModeZoom);
        plot().setZoomScale({112, 20, 35, 0.4}); // around 137 s
        plot().changeScaleX(7);                  // would begin below 0
        plot().changeScaleX(4);                  // what came between has not moved the centre
        QCOMPARE(seenX(), "87 to 187 by 10");
        plot().changeScaleY(19);
        QCOMPARE(seenY(), "15.2 to 25.2 by 1");
        plot().setChMode(ModeAuto); // the centre of a former zoom is forgotten
        plot().setChMode(ModeZoom);
        plot().changeScaleX(3);
        QCOMPARE(seenX(), "275 to 325 by 5");
        plot().changeScaleX(3); // the scale in effect is taken for good
        QCOMPARE(int(plot().getChScaleX()) + 10 * plot().getChMode(), 13);
    }
};

QTEST_MAIN(TestQwtNOXAxes)
#include "tst_qwtnox_axes.moc"
