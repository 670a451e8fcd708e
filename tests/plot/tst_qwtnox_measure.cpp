#include "plot/plotpickers.h"
#include "plotbench.h"

#include <QClipboard>
#include <qwt_text.h>

// Measuring between two points, reading single ones, and copying what was read.

class TestQwtNOXMeasure : public PlotTest
{
    Q_OBJECT

    const QStringList intervalLabels = {
        "measurementX1",   "measurementY1",        "measurementX2",
        "measurementY2",   "measurementDeltaX",    "measurementDeltaY",
        "measurementMean", "measurementDeviation", "measurementCount"};

    /** Measures from clicks at these times, above the frames of the clicks before. */
    void measure(const QVector<double> &times)
    {
        for (int i = 0; i < times.size(); ++i)
            mouse().click(mouse().pixel(times.at(i), 20.6 + 0.01 * i));
    }
    /** Where a frame stands when a point is seen there. */
    QPoint beside(const QPoint &at, const char *name) const
    {
        const QSize size = frameOf(name)->size();
        const QPoint onPlot = at + QPoint(plot().axisWidget(QwtPlot::yLeft)->width(), 0);
        const bool isRight = onPlot.x() <= plot().canvas()->width() / 2;
        const bool isBelow = onPlot.y() <= plot().canvas()->height() / 2;
        return {isRight ? onPlot.x() + 10 : onPlot.x() - size.width() - 10,
                isBelow ? onPlot.y() + 10 : onPlot.y() - size.height() - 10};
    }
    QPoint onCanvas(const QWidget *widget, const QPoint &at) const
    {
        return plot().canvas()->mapFrom(&plot(), widget->mapTo(&plot(), at));
    }

private slots:
    void init() { renew(), withRamp(); }
    void clickBeginsAMeasurement()
    {
        const QVector<QPair<TmcMode, QString>> modes = {
            {ModeAuto, "ИЗМЕРЕНИЕ 1 point"},
            {ModeFollow, "ИЗМЕРЕНИЕ 1 point"},
            {ModeZoom, "ИЗМЕРЕНИЕ 1 point"},
            {ModeLimits, "ПРЕДЕЛЫ 2 point interval"},
            {ModeMeasure, "ИЗМЕРЕНИЕ 2 point interval"}};
        for (const auto &[mode, expected] : modes) {
            init();
            QVERIFY(seenCrosses().isEmpty());
            plot().setMeasPoint({10, 20});
            plot().setMeasPoint({20, 20}); // a former one ends, but where it is measured
            plot().setChMode(mode);
            const QPoint at = mouse().pixel(80, 20.3);
            const QPointF point = mouse().point(at);
            mouse().click(at);
            QCOMPARE(state(), expected);
            if (seenCrosses().size() == 1) {
                QCOMPARE(seenCrosses().first(), point);
                QCOMPARE(textsOf({"pointX", "pointY"}).join(' '),
                         QString("%1 %2").arg(point.x(), 0, 'f', 1).arg(point.y(), 0, 'f', 2));
            }
        }
    }
    void pointsAreOrdered()
    {
        // X1, Y1, X2, Y2, differences; the frame of the first one
        const QVector<std::tuple<QVector<double>, QString, bool>> data = {
            {{30, 50}, "30 20.60 50 20.61 20 0.01", true},
            {{30, 10}, "10 20.61 30 20.60 20 -0.01", true},
            {{30, 50, 40}, "30 20.60 40 20.62 10 0.02", true},
            {{30, 50, 20}, "20 20.62 30 20.60 10 -0.02", true},
            {{30, 10, 20}, "10 20.61 20 20.62 10 0.01", false}}; // it has gone
        for (const auto &[clicks, expected, hasPoint] : data) {
            init();
            measure(clicks);
            QStringList texts = textsOf(intervalLabels.mid(0, 6));
            for (const int x : {0, 2, 4})
                texts[x] = QString::number(qRound(texts[x].toDouble())); // as near as a pixel is
            QCOMPARE(texts.join(' '), expected);
            QCOMPARE(state(), hasPoint ? "ИЗМЕРЕНИЕ 2 point interval" : "ИЗМЕРЕНИЕ 2 interval");
            QCOMPARE(qRound(seenCrosses().at(1).x()), texts.at(2).toInt());
        }
    }
    void framesNameTheirValuesAndWriteTimesLikeTheAxis()
    {
        QString rows;
        for (const char *name : {"pointFrame", "measurementFrame"})
            for (const QLabel *label : frameOf(name)->findChildren<QLabel *>())
                if (label->buddy())
                    rows += label->text() + label->buddy()->objectName() + ' ';
        QCOMPARE(rows, "X:pointX Y:pointY X1:measurementX1 Y1:measurementY1 X2:measurementX2 "
                       "Y2:measurementY2 ΔX:measurementDeltaX ΔY:measurementDeltaY "
                       "<b>Среднее:</b>measurementMean <b>СКО:</b>measurementDeviation "
                       "<b>Точек:</b>measurementCount ");

        plot().setMeasPoint({60, 20});
        plot().setMeasPoint({3660, 20});
        plot().changeModeX(ModeXRelative);
        const QStringList times = {"pointX", "measurementX1", "measurementX2", "measurementDeltaX"};
        QCOMPARE(textsOf(times).join('|'), "00:01:00|00:01:00|01:01:00|01:00:00");
        plot().changeModeX(ModeXAbsolute);
        QCOMPARE(textsOf(times).join('|'), "23:01:00|01.03.26 23:01:00|02.03.26 00:01:00|01:00:00");
        now = now.addDays(1); // yesterday into today
        plot().setMeasPoint({3720, 20});
        QCOMPARE(textsOf(times.mid(1)).join('|'), "01.03.26 23:01:00|02.03.26 00:02:00|01:01:00");
        plot().changeMode(ModeFollow);
        plot().changeModeX(ModeXSeconds);
        QCOMPARE(state(), "СЛЕЖЕНИЕ 0");
    }
    void writesStatistics()
    {
        // mean, deviation, count
        const QVector<std::tuple<double, double, QString>> intervals = {
            {0.5, 2.5, "3.000 1.4142 2"}, {0.5, 1.5, "2.000 -- 1"}, {1.2, 1.8, "-- -- 0"}};
        for (const bool isDifference : {false, true}) {
            renew();
            if (isDifference)
                plot().setChDiff(1, 0);
            for (int second = 0; second < 5; ++second) { // 1, 2, 4, 8, 16
                add(500, second, 1);
                add((isDifference ? 500 : 0) + (1 << second), second);
            }
            for (const auto &[x1, x2, texts] : intervals) {
                plot().setChMode(ModeAuto);
                plot().setChMode(ModeMeasure);
                plot().calcPrecision(13); // steps of 0.01
                plot().setMeasPoint({x1, 20});
                plot().setMeasPoint({x2, 20});
                QCOMPARE(textsOf(intervalLabels.mid(6)).join(' '), texts);
            }
        }
    }
    void copiesWhatIsShown()
    {
        measure({80, 10});
        plot().addMeasPointFirst({30, 20.3}, {500, 400}); // clear of the other frame
        QTest::qWait(0);                                  // lays the frames out
        const QVector<QPointF> crosses = seenCrosses();
        for (const QString &name : QStringList({"pointX", "pointY"}) + intervalLabels) {
            const QLabel *label = plot().findChild<QLabel *>(name);
            QVERIFY(!label->text().isEmpty());
            QCOMPARE(label->cursor().shape(), Qt::PointingHandCursor);
            const QPoint at = onCanvas(label, label->rect().center());
            mouse().click(at, name == "pointY" ? Qt::RightButton : Qt::LeftButton);
            QCOMPARE(QGuiApplication::clipboard()->text(), label->text());
            QCOMPARE(label->styleSheet(), "color: blue");
            QCOMPARE(seenCrosses(), crosses);
        }
        const QWidget *frame = frameOf("measurementFrame");
        plot().setChMode(ModeZoom); // where a click would begin anew
        mouse().click(onCanvas(frame, {3, 3}));
        QCOMPARE(state(), "УВЕЛИЧЕНИЕ 2 point interval");
        plot().addMeasPointFirst({40, 20.4}, {500, 400});
        plot().setMeasPoint({50, 20});
        for (const QLabel *label : plot().findChildren<QLabel *>())
            QCOMPARE(label->styleSheet(), "");
    }
    void framesStandBesideTheirPoints()
    {
        const QVector<QPair<QPointF, std::function<void()>>> cases = {
            {{5, 20.6}, [this] { mouse().wheel(mouse().pixel(45, 20.3), true); }},
            {{95, 20.6},
             [this] { mouse().drag(QPoint(300, 50), QPoint(250, 250), Qt::RightButton); }},
            {{5, 19.85}, [this] { plot().resize(600, 380); }},
            {{95, 19.85}, [this] {
                 plot().setChMode(ModeLimits);
                 add(2e6, 200); // which has longer labels
             }}};
        for (const auto &[point, change] : cases) {
            init();
            const QPoint at = mouse().pixel(point.x(), point.y());
            mouse().click(at);
            QCOMPARE(frameOf("pointFrame")->pos(), beside(at, "pointFrame"));
            plot().calcPrecision(1); // seven decimals
            plot().setMeasPoint(point);
            const QWidget *frame = frameOf("measurementFrame");
            QCOMPARE(frame->size(), frame->sizeHint());
            QCOMPARE(frame->pos(), beside(at, "measurementFrame"));
            const QVector<QPointF> crosses = seenCrosses();
            change();
            for (int i : {0, 1}) {
                const char *name = i == 0 ? "pointFrame" : "measurementFrame";
                const QPoint now = mouse().pixel(crosses.at(i).x(), crosses.at(i).y());
                QVERIFY(now != at);
                QTRY_COMPARE(frameOf(name)->pos(), beside(now, name));
            }
            plot().addDev(7, 1); // what is measured stays, its frames do not
            QVERIFY(state().endsWith(" 2"));
            QCOMPARE(seenCrosses(), crosses);
        }
    }
    void measurementEnds()
    {
        for (const auto &times : {QVector<double>{30}, QVector<double>{30, 50}}) {
            measure(times);
            mouse().click(mouse().middle(), Qt::RightButton); // clears, then leaves
            QCOMPARE(state(), "ИЗМЕРЕНИЕ 0");
            QCOMPARE(seenCrosses(false), QVector<QPointF>(2)); // both are back at the origin
            mouse().click(mouse().middle(), Qt::RightButton);
            QCOMPARE(state(), "СЛЕЖЕНИЕ 0");
        }
        const QVector<QPair<TmcMode, QString>> modes = {{ModeAuto, "АВТО 0"},
                                                        {ModeFollow, "СЛЕЖЕНИЕ 0"},
                                                        {ModeZoom, "УВЕЛИЧЕНИЕ 2 point interval"},
                                                        {ModeScroll, "СДВИГ 2 point interval"}};
        for (const auto &[mode, expected] : modes) {
            init();
            measure({30, 50});
            mouse().pull(mouse().pixel(60, 20.3), mouse().pixel(70, 20.3)); // a third
            plot().changeMode(mode);
            mouse().release(mouse().pixel(70, 20.3));
            QCOMPARE(state(), expected);
        }
    }
    void crossHairReadsTimeAndValue()
    {
        auto *crossHair = plot().findChild<QwtNoxQwtPlotPicker *>("crossHair");
        const auto text = [&](TmcModeX mode, double time) {
            plot().setChModeX(mode);
            return crossHair->trackerTextF({time, 20.134}).text();
        };
        QCOMPARE(text(ModeXSeconds, 61.26) + '|' + text(ModeXRelative, 61.9) + '|' +
                     text(ModeXRelative, 90000) + '|' + text(ModeXAbsolute, 3600),
                 "61.3, 20.13|00:01:01, 20.13|02 01:00:00, 20.13|02.03.26 00:00:00, 20.13");
        const QImage before = grabbed();
        for (const QPoint &at : {mouse().pixel(17, 20.15), mouse().pixel(57, 20.55)}) {
            mouse().moveTo(at); // in at first
            QCOMPARE(crossHair->property("pos").toPointF(), mouse().point(at));
            const QRect rect = crossHair->trackerRect(crossHair->trackerFont());
            const QRect text = rect.adjusted(2, 2, -2, -2); // a curve behind it is faint
            QVERIFY(!inkOf(before, text, Qt::red).isNull());
            QVERIFY(inkOf(grabbed(), text, Qt::red).isNull());
            QVERIFY(inkOf(grabbed(), text, Qt::black).width() > text.width() - 10);
        }
    }
    void lostInstrumentLeavesNothingBehind()
    {
        const std::function<void()> losses[] = {
            [this] { plot().removeDev(0); }, [this] { plot().setChCount(0, 0); },
            [this] { // one without channels takes its place
                plot().addDev(7, 0);
                plot().setDevMain(7);
            },
            [this] { // it goes at the first point of a measurement
                plot().setChMode(ModeAuto);
                QObject::connect(&plot(), &QwtNOX::onChModeChange, &plot(),
                                 [this] { plot().removeDev(0); });
                mouse().click(mouse().middle());
            }};
        for (const auto &lose : losses)
            for (const TmcMode mode : {ModeMeasure, ModeZoom, ModeScroll, ModeLimits}) {
                init();
                measure({30, 50});
                plot().setChMode(mode);
                mouse().pull({100, 100}, {300, 200});
                lose();
                mouse().drag({310, 210}, {310, 210});
                mouse().click({300, 300});
                mouse().wheel({300, 300}, true);
                mouse().drag({300, 300}, {400, 300}, Qt::RightButton);
                QVERIFY2(state().endsWith(" 0"), qPrintable(state()));
                plot().setChCount(1, plot().getDevMain()); // the first channel comes
                if (plot().getDevMain() < 0)
                    continue;
                mouse().click({300, 300});
                QCOMPARE(state(), "ИЗМЕРЕНИЕ 1 point");
            }
    }
};

QTEST_MAIN(TestQwtNOXMeasure)
#include "tst_qwtnox_measure.moc"
