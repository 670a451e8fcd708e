#include "plot/plotpickers.h"
#include "plotbench.h"

#include <QClipboard>
#include <QFormLayout>
#include <qwt_text.h>

// Measuring between two points, reading single ones, and copying what was read.

namespace
{

const QStringList intervalLabels = {"measurementX1",   "measurementY1",        "measurementX2",
                                    "measurementY2",   "measurementDeltaX",    "measurementDeltaY",
                                    "measurementMean", "measurementDeviation", "measurementCount"};

/** A ramp on show from 0 to 100 s, in steps of 0.1 °С. */
struct MeasureBench : PlotBench {
    MeasureBench() { withRamp(); }

    /** Measures from clicks at these times, above the frames of the clicks before. */
    void measure(const QVector<double> &times)
    {
        for (int i = 0; i < times.size(); ++i)
            mouse.click(mouse.pixel(times.at(i), 20.6 + 0.01 * i));
    }
    /** Where a frame stands when a point is seen there. */
    QPoint beside(const QPoint &at, const char *name) const
    {
        const QSize size = frame(name)->size();
        const QPoint onPlot = at + QPoint(plot.axisWidget(QwtPlot::yLeft)->width(), 0);
        const bool isRight = onPlot.x() <= plot.canvas()->width() / 2;
        const bool isBelow = onPlot.y() <= plot.canvas()->height() / 2;
        return {isRight ? onPlot.x() + 10 : onPlot.x() - size.width() - 10,
                isBelow ? onPlot.y() + 10 : onPlot.y() - size.height() - 10};
    }
    QPoint onCanvas(const QWidget *widget, const QPoint &at) const
    {
        return plot.canvas()->mapFrom(&plot, widget->mapTo(&plot, at));
    }
};

using Change = std::function<void(MeasureBench &)>;

} // namespace

class TestQwtNOXMeasure : public QObject
{
    Q_OBJECT

private slots:
    void clickBeginsAMeasurement()
    {
        for (const TmcMode mode : {ModeAuto, ModeFollow, ModeZoom, ModeLimits, ModeMeasure}) {
            MeasureBench bench;
            bench.plot.setMeasPoint({10, 20});
            bench.plot.setMeasPoint({20, 20}); // a former one ends, but where it is measured
            bench.plot.setChMode(mode);
            const QPoint at = bench.mouse.pixel(80, 20.3);
            const QPointF point = bench.mouse.point(at);
            bench.mouse.click(at);
            const bool begins = mode != ModeLimits && mode != ModeMeasure;
            QCOMPARE(bench.plot.getChMode(), mode == ModeLimits ? ModeLimits : ModeMeasure);
            QCOMPARE(bench.crosses().size(), begins ? 1 : 2);
            QCOMPARE(bench.frames(), begins ? "point " : "point interval");
            if (!begins)
                continue;
            QCOMPARE(bench.crosses().first(), point);
            QCOMPARE(bench.texts({"pointX", "pointY"}),
                     QStringList(
                         {QString::number(point.x(), 'f', 1), QString::number(point.y(), 'f', 2)}));
        }
    }
    void pointsAreOrdered()
    {
        const struct {
            QVector<double> clicks;
            const char *texts; // X1, Y1, X2, Y2, differences
            const char *frames;
        } data[] = {
            {{30, 50}, "30 20.60 50 20.61 20 0.01", "point interval"},
            {{30, 10}, "10 20.61 30 20.60 20 -0.01", "point interval"},
            {{30, 50, 40}, "30 20.60 40 20.62 10 0.02", "point interval"},
            {{30, 50, 20}, "20 20.62 30 20.60 10 -0.02", "point interval"},
            {{30, 10, 20}, "10 20.61 20 20.62 10 0.01", "interval"}}; // the first one has gone
        for (const auto &[clicks, expected, frames] : data) {
            MeasureBench bench;
            bench.measure(clicks);
            QStringList texts = bench.texts(intervalLabels.mid(0, 6));
            for (const int x : {0, 2, 4})
                texts[x] = QString::number(qRound(texts[x].toDouble())); // as near as a pixel is
            QCOMPARE(texts.join(' '), expected);
            QCOMPARE(bench.frames(), frames);
            QCOMPARE(qRound(bench.crosses().at(1).x()), texts.at(2).toInt());
        }
    }
    void framesNameTheirValues()
    {
        MeasureBench bench;
        QString rows;
        for (const char *name : {"pointFrame", "measurementFrame"}) {
            const auto *form = bench.frame(name)->findChild<QFormLayout *>();
            for (int row = 0; row < form->rowCount(); ++row) {
                auto *caption = form->itemAt(row, QFormLayout::LabelRole);
                auto *value = form->itemAt(row, QFormLayout::FieldRole);
                rows += caption ? static_cast<QLabel *>(caption->widget())->text() +
                                      value->widget()->objectName() + ' '
                                : QString("- ");
            }
        }
        QCOMPARE(rows, "X:pointX Y:pointY X1:measurementX1 Y1:measurementY1 X2:measurementX2 "
                       "Y2:measurementY2 - ΔX:measurementDeltaX ΔY:measurementDeltaY - "
                       "<b>Среднее:</b>measurementMean <b>СКО:</b>measurementDeviation "
                       "<b>Точек:</b>measurementCount ");
    }
    void textsFollowTheLabelsOfTheAxis()
    {
        MeasureBench bench;
        bench.plot.setMeasPoint({60, 20});
        bench.plot.setMeasPoint({3660, 20});
        QCOMPARE(bench.plot.getChMode(), ModeMeasure);
        bench.plot.changeModeX(ModeXRelative);
        const QStringList times = {"pointX", "measurementX1", "measurementX2", "measurementDeltaX"};
        QCOMPARE(bench.texts(times).join('|'), "00:01:00|00:01:00|01:01:00|01:00:00");
        bench.plot.changeModeX(ModeXAbsolute);
        QCOMPARE(bench.texts(times).join('|'),
                 "23:01:00|01.03.26 23:01:00|02.03.26 00:01:00|01:00:00");
        bench.now = bench.now.addDays(1); // yesterday into today
        bench.plot.setMeasPoint({3720, 20});
        QCOMPARE(bench.texts(times.mid(1)).join('|'),
                 "01.03.26 23:01:00|02.03.26 00:02:00|01:01:00");
        bench.plot.changeMode(ModeFollow);
        bench.plot.changeModeX(ModeXSeconds);
        QCOMPARE(bench.frames(), "");
    }
    void writesStatistics()
    {
        const struct {
            double x1, x2;
            const char *texts; // mean, deviation, count
        } intervals[] = {{0.5, 2.5, "3.000 1.4142 2"},
                         {0.5, 10, "4.667 3.0551 3"}, // without the newest point
                         {0.5, 1.5, "2.000 -- 1"},
                         {1.2, 1.8, "-- -- 0"}};
        for (const bool isDifference : {false, true}) {
            PlotBench bench;
            if (isDifference)
                bench.plot.setChDiff(1, 0);
            for (int second = 0; second < 5; ++second) { // 1, 2, 4, 8, 16
                bench.add(500, second, 1);
                bench.add((isDifference ? 500 : 0) + (1 << second), second);
            }
            for (const auto &[x1, x2, texts] : intervals) {
                bench.plot.setChMode(ModeAuto);
                bench.plot.setChMode(ModeMeasure);
                bench.plot.calcPrecision(13); // steps of 0.01
                bench.plot.setMeasPoint({x1, 20});
                bench.plot.setMeasPoint({x2, 20});
                QCOMPARE(bench.texts(intervalLabels.mid(6)).join(' '), texts);
            }
        }
    }
    void copiesWhatIsShown()
    {
        MeasureBench bench;
        bench.measure({80, 10});
        bench.plot.addMeasPointFirst({30, 20.3}, {500, 400}); // clear of the other frame
        QTest::qWait(0);                                      // lays the frames out
        const QVector<QPointF> crosses = bench.crosses();
        for (const QString &name : QStringList({"pointX", "pointY"}) + intervalLabels) {
            const QLabel *label = bench.plot.findChild<QLabel *>(name);
            QVERIFY(!label->text().isEmpty());
            QCOMPARE(label->cursor().shape(), Qt::PointingHandCursor);
            const QPoint at = bench.onCanvas(label, label->rect().center());
            bench.mouse.click(at, name == "pointY" ? Qt::RightButton : Qt::LeftButton);
            QCOMPARE(QGuiApplication::clipboard()->text(), label->text());
            QCOMPARE(label->styleSheet(), "color: blue");
            QCOMPARE(bench.crosses(), crosses);
        }
        for (const char *caption : {"pointFrame", "measurementFrame"}) // no caption is a value
            for (const QLabel *label : bench.frame(caption)->findChildren<QLabel *>())
                QCOMPARE(label->styleSheet().isEmpty(), label->objectName().isEmpty());
        bench.plot.addMeasPointFirst({40, 20.4}, {500, 400});
        bench.plot.setMeasPoint({50, 20});
        for (const QLabel *label : bench.plot.findChildren<QLabel *>())
            QCOMPARE(label->styleSheet(), "");
    }
    void clicksOnFramesMeanNothingElse()
    {
        MeasureBench bench;
        bench.measure({30, 10});
        QTest::qWait(0);
        const QVector<QPointF> crosses = bench.crosses();
        const QWidget *frame = bench.frame("measurementFrame");
        for (const TmcMode mode : {ModeMeasure, ModeZoom, ModeScroll}) {
            bench.plot.setChMode(mode);
            bench.log.take();
            for (const QPoint &at : {QPoint(3, 3), QPoint(frame->width() / 2, frame->height() / 2)})
                bench.mouse.click(bench.onCanvas(frame, at));
            QCOMPARE(bench.log.take(), "");
            QCOMPARE(bench.plot.getChMode(), mode);
            QCOMPARE(bench.crosses(), crosses);
        }
        const QImage image = bench.plot.grab().toImage(); // neither do curves show through
        for (int x = frame->x() + 4; x < frame->geometry().right() - 4; ++x)
            QVERIFY(!isInked(image.pixel(x, frame->y() + 4), Qt::red) &&
                    qGray(image.pixel(x, frame->y() + 4)) > 200);
    }
    void framesStandBesideTheirPoints()
    {
        for (const QPointF &point :
             {QPointF(5, 20.6), QPointF(95, 20.6), QPointF(5, 19.85), QPointF(95, 19.85)}) {
            MeasureBench bench;
            const QPoint at = bench.mouse.pixel(point.x(), point.y());
            bench.mouse.click(at);
            QCOMPARE(bench.frame("pointFrame")->pos(), bench.beside(at, "pointFrame"));
            bench.mouse.click(at + QPoint(1, 1));
            bench.plot.calcPrecision(1); // seven decimals
            bench.plot.setMeasPoint(point);
            const QWidget *frame = bench.frame("measurementFrame");
            QCOMPARE(frame->size(), frame->sizeHint());
            QCOMPARE(frame->pos(), bench.beside(at, "measurementFrame"));
        }
    }
    void framesFollowTheAxes()
    {
        const Change changes[] = {
            [](MeasureBench &bench) { bench.mouse.wheel(bench.mouse.pixel(45, 20.35), true); },
            [](MeasureBench &bench) {
                bench.mouse.drag({300, 50}, {250, 250}, Qt::RightButton);
            },
            [](MeasureBench &bench) { bench.plot.resize(600, 380); },
            [](MeasureBench &bench) {
                bench.plot.setChMode(ModeLimits);
                bench.add(2e6, 200); // which has longer labels
            }};
        for (const Change &change : changes) {
            MeasureBench bench;
            bench.measure({40, 48});
            const QVector<QPointF> crosses = bench.crosses();
            change(bench);
            const auto isBeside = [&](const char *frame, const QPointF &point) {
                const QPoint at = bench.mouse.pixel(point.x(), point.y());
                return bench.frame(frame)->pos() == bench.beside(at, frame);
            };
            QTRY_VERIFY(isBeside("pointFrame", crosses[0]));
            QTRY_VERIFY(isBeside("measurementFrame", crosses[1]));
            QCOMPARE(bench.frames(), "point interval");
            bench.plot.addDev(7, 1); // what is measured stays, its frames do not
            QCOMPARE(bench.frames(), "");
            QCOMPARE(bench.crosses(), crosses);
        }
    }
    void rightClickClearsThenLeaves()
    {
        MeasureBench bench;
        for (const auto &times : {QVector<double>{30}, QVector<double>{30, 50}}) {
            bench.measure(times);
            bench.mouse.click(bench.mouse.middle(), Qt::RightButton);
            QCOMPARE(bench.plot.getChMode(), ModeMeasure);
            QCOMPARE(bench.crosses(false), QVector<QPointF>(2)); // both are back at the origin
            QCOMPARE(bench.frames(), "");
            bench.mouse.click(bench.mouse.middle(), Qt::RightButton);
            QCOMPARE(bench.plot.getChMode(), ModeFollow);
        }
    }
    void modesEndTheMeasurement()
    {
        for (const TmcMode mode : {ModeAuto, ModeFollow, ModeZoom, ModeScroll}) {
            MeasureBench bench;
            bench.measure({30, 50});
            bench.mouse.pull(bench.mouse.pixel(60, 20.3), bench.mouse.pixel(70, 20.3)); // a third
            bench.plot.changeMode(mode);
            bench.mouse.release(bench.mouse.pixel(70, 20.3));
            const bool ends = mode == ModeAuto || mode == ModeFollow;
            QCOMPARE(bench.crosses().size(), ends ? 0 : 2);
            QCOMPARE(bench.frames(), ends ? "" : "point interval");
            QCOMPARE(bench.plot.getChMode(), mode);
        }
    }
    void crossHairReadsTimeAndValue()
    {
        MeasureBench bench;
        auto *crossHair = bench.picker<QwtNoxQwtPlotPicker>("crossHair");
        const auto text = [&](TmcModeX mode, double time) {
            bench.plot.setChModeX(mode);
            return crossHair->trackerTextF({time, 20.134}).text();
        };
        QCOMPARE(text(ModeXSeconds, 61.26) + '|' + text(ModeXRelative, 61.9) + '|' +
                     text(ModeXRelative, 90000) + '|' + text(ModeXAbsolute, 3600),
                 "61.3, 20.13|00:01:01, 20.13|02 01:00:00, 20.13|02.03.26 00:00:00, 20.13");
        const QImage before = bench.picture();
        for (const QPoint &at : {bench.mouse.pixel(17, 20.2), bench.mouse.pixel(57, 20.4)}) {
            bench.mouse.moveTo(at); // in at first
            QCOMPARE(crossHair->property("pos").toPointF(), bench.mouse.point(at));
            const QRect text = crossHair->trackerRect(crossHair->trackerFont());
            QVERIFY(text.isValid() && bench.picture().copy(text) != before.copy(text));
        }
    }
    void lostInstrumentLeavesNothingBehind()
    {
        const Change losses[] = {
            [](MeasureBench &bench) { bench.plot.removeDev(0); },
            [](MeasureBench &bench) { bench.plot.setChCount(0, 0); },
            [](MeasureBench &bench) { // one without channels takes its place
                bench.plot.addDev(7, 0);
                bench.plot.setDevMain(7);
            },
            [](MeasureBench &bench) { // it goes at the first point of a measurement
                bench.plot.setChMode(ModeAuto);
                QObject::connect(&bench.plot, &QwtNOX::onChModeChange, &bench.plot,
                                 [&bench] { bench.plot.removeDev(0); });
                bench.mouse.click(bench.mouse.middle());
            }};
        for (const Change &lose : losses)
            for (const TmcMode mode : {ModeMeasure, ModeZoom, ModeScroll, ModeLimits}) {
                MeasureBench bench;
                bench.measure({30, 50});
                bench.plot.setChMode(mode);
                bench.mouse.pull({100, 100}, {300, 200});
                lose(bench);
                bench.mouse.drag({310, 210}, {310, 210});
                bench.mouse.click({300, 300});
                bench.mouse.wheel({300, 300}, true);
                bench.mouse.drag({300, 300}, {400, 300}, Qt::RightButton);
                QCOMPARE(bench.frames() + QString::number(bench.crosses().size()), "0");
                bench.plot.setChCount(1, bench.plot.getDevMain()); // the first channel comes
                if (bench.plot.getDevMain() < 0)
                    continue;
                bench.mouse.click({300, 300});
                QCOMPARE(bench.plot.getChMode(), ModeMeasure);
                QCOMPARE(bench.crosses().size(), 1);
            }
    }
};

QTEST_MAIN(TestQwtNOXMeasure)
#include "tst_qwtnox_measure.moc"
