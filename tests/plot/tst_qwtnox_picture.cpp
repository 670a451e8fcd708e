#include "plot/envelopecurve.h"
#include "plot/frameclock.h"
#include "plotbench.h"

#include <QRegularExpression>
#include <qwt_plot_curve.h>
#include <qwt_scale_div.h>

// What is seen of the plot, and how often it is painted.

namespace
{

/**
 * Points of every channel, each at another height: a step of 100 after 19 s, which the average
 * takes ten points to follow.
 */
void addSteps(PlotBench &bench, int channels)
{
    for (const int qwtIndex : {0, 1})
        for (int ch = 0; ch < channels; ++ch)
            for (int second = 0; second < 40; ++second)
                bench.add(7 * (3 * qwtIndex + ch) + (second < 20 ? 0 : 100), second, ch, qwtIndex);
    bench.log.take();
}

bool isSeen(const QImage &picture, const QPoint &at, const QColor &color)
{
    for (const int x : {-1, 0, 1})
        for (const int y : {-1, 0, 1})
            if (isInked(picture.pixel(at + QPoint(x, y)), color))
                return true;
    return false;
}

/** The curves of addSteps() that are seen in their colours: "0.1va" has values and averages. */
QString seen(PlotBench &bench)
{
    bench.plot.setAxisScale(QwtPlot::xBottom, 0, 50, 50);
    bench.plot.setAxisScale(QwtPlot::yLeft, -20, 180, 200);
    bench.plot.updateAxes();
    const QImage picture = bench.picture();
    QStringList curves;
    for (const int qwtIndex : {0, 1})
        for (int ch = 0; ch < bench.plot.getChCount(qwtIndex); ++ch) {
            const QColor color = bench.plot.getChColor(qwtIndex, uchar(ch));
            const int height = 7 * (3 * qwtIndex + ch);
            QString kinds;
            if (isSeen(picture, bench.mouse.pixel(23, height + 100), color))
                kinds += 'v';
            if (isSeen(picture, bench.mouse.pixel(24, height + 50), color))
                kinds += 'a';
            if (!kinds.isEmpty())
                curves += QString("%1.%2%3").arg(qwtIndex).arg(ch).arg(kinds);
        }
    return curves.join(' ');
}

/** The labels of the time axis that are painted, by place and width, each clear of the others. */
QStringList paintedLabels(QwtNOX &plot)
{
    plot.updateLayout();
    const QwtScaleWidget *axis = plot.axisWidget(QwtPlot::xBottom);
    const QwtScaleDraw *draw = axis->scaleDraw();
    const QImage image = plot.axisWidget(QwtPlot::xBottom)->grab().toImage();
    const QList<double> ticks = draw->scaleDiv().ticks(QwtScaleDiv::MajorTick);
    const int top = draw->boundingLabelRect(axis->font(), ticks.first()).top();
    QStringList labels;
    int begin = -1;
    int end = -1; // of the ink of a label
    for (int x = 0; x < image.width() + 10; ++x) {
        bool hasInk = false;
        for (int y = top; y < image.height() && x < image.width(); ++y)
            hasInk = hasInk || qGray(image.pixel(x, y)) < 100;
        if (hasInk) {
            begin = begin < 0 ? x : begin;
            end = x;
        } else if (begin >= 0 && x > end + 8) {
            for (const double tick : ticks) {
                const QString label = draw->label(tick).text();
                const double at = draw->scaleMap().transform(tick);
                if (std::abs(at - (begin + end) / 2.0) < 4 &&
                    std::abs(axis->fontMetrics().horizontalAdvance(label) - (end - begin)) < 10)
                    labels += label;
            }
            begin = -1;
        }
    }
    return labels;
}

/** Counts how often the curves are painted: an item of the plot is drawn with them. */
struct PaintCounter : QwtPlotItem {
    void draw(QPainter *, const QwtScaleMap &, const QwtScaleMap &, const QRectF &) const override
    {
        ++count;
    }
    mutable int count = 0;
};

} // namespace

class TestQwtNOXPicture : public QObject
{
    Q_OBJECT

private slots:
    void curvesOfWhatIsOnShow()
    {
        PlotBench bench;
        QwtNOX &plot = bench.plot;
        addSteps(bench, 2);
        struct Step {
            std::function<void()> act;
            QString told;
            QString seen;
        };
        const Step steps[] = {
            {[&] { plot.setMeasShow(true), plot.setAverShow(true); }, "", "0.0va 0.1va"},
            {[&] { plot.setAverShow(false); }, "onChange 0, onAverShowChange 0 0", "0.0v 0.1v"},
            {[&] { plot.setChMain(1); },
             "onChange 0, onChModeChange 0 1 0, onChMainChange 0 1, onChange 0", "0.1v"},
            {[&] { plot.setChShow(true, 0, 0); }, "onChShowChange 0 0 1", "0.0v 0.1v"},
            {[&] { plot.toggleMeasShow(); }, "onChange 0, onMeasShowChange 0 0", ""},
            {[&] { plot.toggleAverShow(0); }, "onChange 0, onAverShowChange 0 1", "0.0a 0.1a"},
            {[&] { plot.setChMain(); }, "onChange 0", "0.1a"},
            {[&] { plot.setDevMain(1); },
             "onChange 1, onChModeChange 1 0 1, onChMainChange 1 0, onDevChange 1, onChange 1",
             "1.0va 1.1va"},
            {[&] { plot.setDevShow(true, 0); }, "", "0.1a 1.0va 1.1va"},
            {[&] { plot.toggleMeasShow(0); }, "onChange 0, onMeasShowChange 0 1",
             "0.1va 1.0va 1.1va"},
            {[&] { plot.setChMain(0, 0); }, // chosen, but not shown
             "onChange 0, onChModeChange 0 0 0, onChMainChange 0 0, onChange 0", "1.0va 1.1va"},
            {[&] { plot.setDevShow(false, 0); }, "", "1.0va 1.1va"},
            {[&] { plot.setChShow(false, 0, 1); }, "onChShowChange 0 1 0", "0.0va 1.0va 1.1va"},
            {[&] { plot.setChColor(Qt::black, 1, 1); }, "onChange 1, onChColorChange 1 1 #000000",
             "0.0va 1.0va 1.1va"},
            {[&] { plot.setDevMain(0); },
             "onChange 0, onChModeChange 0 0 1, onChMainChange 0 0, onDevChange 0, onChange 0",
             "0.0va"},
            {[&] { // what does not exist
                 plot.setDevMain(7);
                 plot.setChMain(3, 0);
                 plot.setChMain(0, 7);
                 plot.setMeasShow(false, 9);
                 plot.setDevShow(true, 9);
                 plot.setChShow(true, 0, 3);
                 plot.setChColor(QColor("no colour"), 0, 1);
                 plot.setAverShow(false); // for what grows
             },
             "onChange 0, onAverShowChange 0 0", "0.0v"}};
        for (const Step &step : steps) {
            step.act();
            QCOMPARE(bench.log.take(), step.told);
            QCOMPARE(seen(bench), step.seen);
        }
        QCOMPARE(plot.getMeasShow() + 2 * plot.getAverShow() + 4 * plot.getChShow(0, 1) +
                     8 * plot.getChShow(9, 0) + 16 * plot.getMeasShow(9) + 32 * plot.getAverShow(9),
                 49);
        plot.setChCount(3, 0);
        plot.setChCount(3, 1);
        plot.clear(0);
        plot.clear(1);
        addSteps(bench, 3);
        QCOMPARE(seen(bench), "0.0v 0.2v");
    }
    void curvesHaveTheirColours()
    {
        PlotBench bench;
        bench.plot.setChCount(18, 0);
        QString colors;
        for (const auto &channel : qAsConst(bench.plot).devices()[0].ch) {
            colors += channel.measCurve->pen().color().name();
            QCOMPARE(channel.averCurve->pen(), QPen(channel.measCurve->pen().color(), 2));
            QCOMPARE(channel.measCurve->pen().widthF(), 1.0);
        }
        QCOMPARE(colors, "#ff0000#0000ff#00ff00#808080#c6c600#008080#800080#000000#800000#000080"
                         "#008000#00c6c6#a0a0a4#ff00ff#808000#c0c0c0#ff0000#ff0000");
        QCOMPARE(bench.plot.getChColor(9, 0), QColor("white"));
        QCOMPARE(bench.plot.getChMain(9), -1);
    }
    void gridAndFrameless()
    {
        PlotBench bench;
        const QImage picture = bench.picture();
        const QRect canvas = bench.plot.canvas()->geometry();
        const auto isGray = [&](const QPoint &at) {
            return isInked(picture.pixel(at), Qt::darkGray);
        };
        const QPoint tick = bench.mouse.pixel(3, 7);
        QVERIFY(isDotted(inkAlong({5, tick.y()}, {canvas.width() - 5, tick.y()}, isGray)));
        QVERIFY(isDotted(inkAlong({tick.x(), 5}, {tick.x(), canvas.height() - 5}, isGray)));
        QCOMPARE(QColor(picture.pixel(bench.mouse.pixel(3.5, 7.5))), QColor(Qt::white));
        QCOMPARE(bench.plot.canvas()->contentsRect().size(), canvas.size());
        QCOMPARE(bench.mouse.pixel(0, 10), QPoint(0, 0));
        QCOMPARE(bench.plot.axisWidget(QwtPlot::yLeft)->geometry().right() + 1, canvas.left());
        QCOMPARE(bench.plot.axisFont(QwtPlot::xBottom).pointSize(), 11);
        QCOMPARE(bench.plot.axisFont(QwtPlot::yLeft).pointSize(), 11);
    }
    void linesOfLimitsAndMeasurement()
    {
        PlotBench bench;
        bench.withRamp();
        bench.plot.setChColor(Qt::black);
        bench.plot.setModeTrack(TrackUpper);
        bench.mouse.drag({300, 200}, {300, 120});
        bench.plot.setMeasPoint({30, 20.2});
        bench.plot.setMeasPoint({55, 20.5});
        const QImage picture = bench.picture();
        const auto has = [&picture](const QColor &color) {
            return
                [&picture, color](const QPoint &at) { return isInked(picture.pixel(at), color); };
        };
        QVERIFY(isDotted(inkAlong({2, 120}, {picture.width() - 2, 120}, has(Qt::red))));
        for (const QPointF &cross : bench.crosses()) {
            const QPoint at = bench.mouse.pixel(cross.x(), cross.y());
            QVERIFY(isDotted(inkAlong({2, at.y()}, {at.x() - 2, at.y()}, has(Qt::darkGray))));
            QVERIFY(isDotted(inkAlong({at.x(), 2}, {at.x(), picture.height()}, has(Qt::darkGray))));
        }
    }
    void rubberBands()
    {
        const QVector<QPair<TmcMode, QString>> bands = {{ModeZoom, "all edges"},
                                                        {ModeMeasure, "bottom right edges"},
                                                        {ModeScroll, "bottom right edges"},
                                                        {ModeLimits, "bottom edges"}};
        for (const auto &[mode, expected] : bands) {
            PlotBench bench;
            bench.withRamp().plot.setChMode(mode);
            const QImage before = bench.picture();
            bench.mouse.pull({203, 107}, {413, 311});
            const QImage now = bench.picture();
            const QColor color(mode == ModeLimits ? Qt::red : Qt::darkGray);
            const auto isNew = [&](const QPoint &at) {
                return now.pixel(at) != before.pixel(at) && isInked(now.pixel(at), color);
            };
            const auto level = [&](int y) { return isDotted(inkAlong({220, y}, {400, y}, isNew)); };
            const auto upright = [&](int x) {
                return isDotted(inkAlong({x, 120}, {x, 290}, isNew));
            };
            const QString seen = QString(level(107) && upright(203) ? "all " : "") +
                                 (level(311) ? "bottom " : "") + (upright(413) ? "right " : "");
            QCOMPARE((seen.startsWith("all bottom right") ? "all " : seen) + "edges", expected);
        }
    }
    void timeLabels()
    {
        PlotBench bench;
        bench.withRamp().plot.changeScaleX(4);
        QCOMPARE(paintedLabels(bench.plot).join('|'), "0|10|20|30|40|50|60|70|80|90|100");
        bench.plot.changeModeX(ModeXAbsolute);
        bench.plot.changeScaleX(12); // every second one has room
        QCOMPARE(paintedLabels(bench.plot).join('|'),
                 "23:00|02.03.26 00:00|02.03.26 01:00|02.03.26 02:00|02.03.26 03:00|"
                 "02.03.26 04:00");
    }
    void timeLabelsKeepTheirTicks()
    {
        PlotBench bench;
        bench.plot.changeModeX(ModeXAbsolute);
        bench.plot.changeScaleX(12);
        for (int second = 90000; second < 99000; second += 1800) { // the view moves by a step
            bench.add(20, second);
            const QStringList labels = paintedLabels(bench.plot);
            QVERIFY2(labels.size() >= 4 && labels.filter(QRegularExpression(":00$")) == labels,
                     qPrintable(labels.join('|'))); // every second half hour
        }
        bench.plot.changeModeX(ModeXRelative);
        QCOMPARE(bench.labelX(90000), "02 01:00");
    }
    void timeLabelsChangeWithTheDay()
    {
        PlotBench bench;
        bench.add(20, 0);
        bench.plot.changeModeX(ModeXAbsolute);
        bench.plot.changeScaleX(7);
        QCOMPARE(bench.labelX(0) + ' ' + bench.labelX(3600), "23:00 02.03.26 00:00");
        bench.now = bench.now.addSecs(3600);
        bench.add(20, 1, 1);
        QTRY_COMPARE(paintedLabels(bench.plot).value(1), "01.03.26 23:02");
        bench.plot.prepareMeas(0, bench.now);
        QCOMPARE(paintedLabels(bench.plot).value(1), "00:01");
    }
    void valueLabelsHaveSteadyRoom()
    {
        PlotBench bench;
        const auto room = [&] { return bench.plot.axisScaleDraw(QwtPlot::yLeft)->minimumExtent(); };
        bench.plot.setChScaleY(16);
        QCOMPARE(bench.labelY(20), "20.0");
        bench.add(12, 0);
        const double twoDigits = room();
        bench.add(8, 1); // labels lose a digit
        QCOMPARE(room(), twoDigits);
        bench.add(-1234, 2);
        const double fourDigits = room();
        QVERIFY(fourDigits > twoDigits);
        bench.add(8, 3); // far shorter labels give the room back
        QVERIFY(room() < fourDigits);
        bench.plot.clear();
        const auto width = [&] {
            return bench.plot.axisScaleDraw(QwtPlot::yLeft)->extent(bench.plot.axisFont(0));
        };
        const double withOneDecimal = width();
        bench.plot.setChScaleY(10); // without points the axis stays, its labels do not
        QCOMPARE(bench.labelY(20), "20.000");
        QVERIFY(width() > withOneDecimal);
    }
    void captionAboveTheCurves()
    {
        PlotBench bench;
        const QwtPlotTextLabel *caption = bench.caption();
        bench.plot.setChScaleX(7);
        for (int i = 0; i <= 2400; ++i) // fills all of the canvas
            bench.plot.addPoint(i % 2 ? 1 : -1, i / 4.0, "Ом", 0, 1);
        bench.plot.setChMain(1);
        bench.plot.setChScaleX(7);
        bench.plot.setChScaleY(16);
        QCOMPARE(bench.captionText(), "Кн. № 2 [Ом], dX: 1 мин., dY: 0.1");
        QCOMPARE(caption->text().font().pointSize(), 15);
        bench.plot.setAxisScale(QwtPlot::yLeft, -0.5, 0.5, 0.1);
        const QImage picture = bench.picture();
        const QSizeF size = caption->text().textSize();
        QRect text;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 3; x < picture.width() - 3; ++x) {
                if (isInked(picture.pixel(x, y), Qt::black))
                    text |= QRect(x, y, 1, 1);
                const bool isCaption = x >= picture.width() - size.width() + 8 &&
                                       x < picture.width() - 8 && y > 8 && y < 20;
                QVERIFY(!isCaption || !isInked(picture.pixel(x, y), Qt::blue));
            }
        QVERIFY(isInked(picture.pixel(50, 10), Qt::blue));
        QVERIFY(text.right() > picture.width() - 12 && text.top() < 12);
        QVERIFY(text.width() > size.width() - 20 && text.height() < 30);
        const QRectF narrow(0, 0, 200, 300); // a canvas on which one line has no room
        QVERIFY(size.width() > narrow.width());
        QVERIFY(narrow.contains(caption->textRect(narrow, size)));
        bench.plot.removeDev(0);
        QCOMPARE(bench.captionText(), "");
    }
    void changesAskForAFrame()
    {
        PlotBench bench;
        bench.withRamp();
        QwtNOX &plot = bench.plot;
        const QPoint at(300, 200);
        const QPoint other(330, 100);
        const QPoint corner(20, 20);
        const QPointF point(30, 20);
        const QRectF area(3, 20, 9, 1);
        const QVector<PlotPoint> points = {{1, 2, 20}};
        const std::function<void()> changes[] = {
            [&] { bench.add(20, 66); },
            [&] { bench.add(20, 1, 1); },
            [&] {
                plot.addPoints(0, points, {"", ""});
            },
            [&] { plot.setChColor(Qt::black); },
            [&] { plot.setChShow(false, 0, 1); },
            [&] { plot.setDevShow(true, 1); },
            [&] { plot.setAverShow(false); },
            [&] { plot.changeModeX(ModeXRelative); },
            [&] { bench.mouse.click(at); },
            [&] { plot.setMeasPoint(point); },
            [&] { bench.mouse.click(corner, Qt::RightButton); },
            [&] { plot.setModeTrack(TrackUpper); },
            [&] { bench.mouse.drag(at, other); },
            [&] { plot.setZoomScale(area); },
            [&] { plot.changeScaleX(3); },
            [&] { plot.changeScaleY(3); },
            [&] { bench.mouse.wheel(at, true); },
            [&] { bench.mouse.pull(at, other, Qt::RightButton); },
            [&] { bench.mouse.moveTo(at); },
            [&] { plot.clear(); },
        };
        for (const auto &change : changes) {
            plot.frameClock().flush();
            change();
            QVERIFY2(plot.frameClock().isDue(), qPrintable(QString::number(&change - changes)));
        }
    }
    void framesGatherWishes()
    {
        FrameClock clock;
        QSignalSpy frames(&clock, &FrameClock::frame);
        clock.flush();
        QCOMPARE(frames.count(), 0);
        for (int i = 0; i < 1000; ++i)
            clock.request();
        QCOMPARE(frames.count(), 0);
        QTRY_COMPARE(frames.count(), 1);
        QVERIFY(!clock.isDue());
        clock.request();
        clock.flush();
        QCOMPARE(frames.count(), 2);
        QVERIFY(!frames.wait(150)); // one frame for all of them
        connect(&clock, &FrameClock::frame, &clock, [&] {
            if (frames.count() < 5)
                clock.request(); // comes again for the wishes of its listeners
        });
        clock.request();
        QTRY_COMPARE(frames.count(), 5);
    }
    void paintsOnceForManyChanges()
    {
        PlotBench bench;
        auto *paints = new PaintCounter;
        paints->attach(&bench.plot); // which owns it
        QTRY_VERIFY(!bench.plot.frameClock().isDue());
        for (const bool changes : {true, false}) {
            paints->count = 0;
            for (int i = 0; i < 100; ++i) {
                if (changes) {
                    bench.add(20 + i % 7, i); // the axes change all the time
                    bench.plot.setChColor(i % 2 ? Qt::red : Qt::blue);
                    bench.plot.setMeasPoint({i * 1.0, 20});
                }
                bench.mouse.moveTo({100 + i, 100}); // the cross-hair has a layer of its own
                bench.plot.updLabelScale();
                bench.plot.setMeasShow(true);
            }
            bench.mouse.click({300, 200}, Qt::MiddleButton);
            QCOMPARE(paints->count, 0);
            QTRY_VERIFY(!bench.plot.frameClock().isDue());
            QTest::qWait(100);
            QVERIFY2(changes ? paints->count >= 1 && paints->count <= 3 : paints->count == 0,
                     qPrintable(QString::number(paints->count)));
        }
    }
};

QTEST_MAIN(TestQwtNOXPicture)
#include "tst_qwtnox_picture.moc"
