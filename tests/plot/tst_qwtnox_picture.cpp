#include "plot/envelopecurve.h"
#include "plot/frameclock.h"
#include "plotbench.h"

#include <QRandomGenerator>
#include <qwt_plot_curve.h>
#include <qwt_scale_div.h>

// What is seen of the plot, and how often it is painted.

class TestQwtNOXPicture : public PlotTest
{
    Q_OBJECT

    /** Counts how often the curves are painted: an item of the plot is drawn with them. */
    struct PaintCounter : QwtPlotItem {
        void draw(QPainter *painter, const QwtScaleMap &, const QwtScaleMap &,
                  const QRectF &) const override
        {
            ++count;
            width = painter->clipBoundingRect().width();
        }
        mutable int count = 0;
        mutable double width = 0; ///< pixels, of what was painted last
    };

    /**
     * Points of every channel, each at another height: a step of 100 after 19 s, which the average
     * takes ten points to follow.
     */
    void addSteps(int channels)
    {
        for (const int qwtIndex : {0, 1})
            for (int ch = 0; ch < channels; ++ch)
                for (int second = 0; second < 40; ++second)
                    add(7 * (3 * qwtIndex + ch) + (second < 20 ? 0 : 100), second, ch, qwtIndex);
        told();
    }

    /** The curves of addSteps() that are seen in their colours: "0.1va" has values and averages. */
    QString seen()
    {
        plot().setAxisScale(QwtPlot::xBottom, 0, 50, 50);
        plot().setAxisScale(QwtPlot::yLeft, -20, 180, 200);
        plot().updateAxes();
        const QImage picture = grabbed();
        QStringList curves;
        for (const int qwtIndex : {0, 1})
            for (int ch = 0; ch < plot().getChCount(qwtIndex); ++ch) {
                const QColor color = plot().getChColor(qwtIndex, uchar(ch));
                const int height = 7 * (3 * qwtIndex + ch);
                const auto isSeen = [&](double time, double value) {
                    const QPoint at = mouse().pixel(time, value);
                    return !inkOf(picture, QRect(at - QPoint(1, 1), QSize(3, 3)), color).isNull();
                };
                const QString kinds = QString(isSeen(23, height + 100) ? "v" : "") +
                                      (isSeen(24, height + 50) ? "a" : "");
                if (!kinds.isEmpty())
                    curves += QString("%1.%2%3").arg(qwtIndex).arg(ch).arg(kinds);
            }
        return curves.join(' ');
    }
    /** The labels of the time axis that are painted, each as wide as it is and clear of the others.
     */
    QString paintedLabels() const
    {
        plot().updateLayout();
        QwtScaleWidget *axis = plot().axisWidget(QwtPlot::xBottom);
        const QImage image = axis->grab().toImage();
        QStringList labels;
        for (const double tick : axis->scaleDraw()->scaleDiv().ticks(QwtScaleDiv::MajorTick)) {
            const QRect label = axis->scaleDraw()->boundingLabelRect(axis->font(), tick);
            const QRect middle(label.center().x() - 4, label.top(), 8, label.height());
            const QRect ink = inkOf(image, label.adjusted(-8, 0, 8, 0), Qt::black);
            if (inkOf(image, middle, Qt::black).isEmpty())
                continue;
            const bool isClear =
                qAbs(ink.width() - label.width()) < 8 && ink.left() > label.left() - 4;
            labels += isClear ? axis->scaleDraw()->label(tick).text() : "unclear";
        }
        return labels.join('|');
    }

    /** Of any colour of any pixel of two pictures of one size. */
    static int greatestDifference(const QImage &one, const QImage &other)
    {
        int greatest = 0;
        for (int y = 0; y < one.height(); ++y)
            for (int x = 0; x < one.width(); ++x) {
                const QColor seen = one.pixelColor(x, y);
                const QColor wanted = other.pixelColor(x, y);
                greatest = std::max({greatest, std::abs(seen.red() - wanted.red()),
                                     std::abs(seen.green() - wanted.green()),
                                     std::abs(seen.blue() - wanted.blue())});
            }
        return greatest;
    }

    struct Step {
        std::function<void()> act;
        QString told;
        QString seen;
    };
    /** Within an instrument, then between instruments. */
    QVector<Step> steps()
    {
        return {
            {[&] { plot().setMeasShow(true), plot().setAverShow(true); }, "", "0.0va 0.1va"},
            {[&] { plot().setAverShow(false); }, "Change 0, AverShow 0 0", "0.0v 0.1v"},
            {[&] { plot().setChMain(1); }, "Change 0, ChMode 0 1 0, ChMain 0 1, Change 0", "0.1v"},
            {[&] { plot().setChShow(true, 0, 0); }, "ChShow 0 0 1", "0.0v 0.1v"},
            {[&] { plot().toggleMeasShow(); }, "Change 0, MeasShow 0 0", ""},
            {[&] { plot().toggleAverShow(0); }, "Change 0, AverShow 0 1", "0.0a 0.1a"},
            {[&] { plot().setChMain(); }, "Change 0", "0.1a"},
            {[&] { plot().setDevMain(1); }, "Change 1, ChMode 1 0 1, ChMain 1 0, Dev 1, Change 1",
             "1.0va 1.1va"},
            {[&] { plot().setDevShow(true, 0); }, "", "0.1a 1.0va 1.1va"},
            {[&] { plot().toggleMeasShow(0); }, "Change 0, MeasShow 0 1", "0.1va 1.0va 1.1va"},
            {[&] { plot().setChMain(0, 0); }, // chosen, but not shown
             "Change 0, ChMode 0 0 0, ChMain 0 0, Change 0", "1.0va 1.1va"},
            {[&] { plot().setDevShow(false, 0); }, "", "1.0va 1.1va"},
            {[&] { plot().setChShow(false, 0, 1); }, "ChShow 0 1 0", "0.0va 1.0va 1.1va"},
            {[&] { plot().setChColor(Qt::black, 1, 1); }, "Change 1, ChColor 1 1 #000000",
             "0.0va 1.0va 1.1va"},
            {[&] { plot().setDevMain(0); }, "Change 0, ChMode 0 0 1, ChMain 0 0, Dev 0, Change 0",
             "0.0va"},
            {[&] { // what does not exist
                 plot().setDevMain(7), plot().setChMain(3, 0), plot().setChMain(0, 7);
                 plot().setMeasShow(false, 9), plot().setDevShow(true, 9);
                 plot().setChShow(true, 0, 3);
                 plot().setChColor(QColor("no colour"), 0, 1);
                 plot().setAverShow(false); // for what grows
             },
             "Change 0, AverShow 0 0", "0.0v"}};
    }

private slots:
    void curvesOfWhatIsOnShow()
    {
        addSteps(2);
        for (const Step &step : steps()) {
            step.act();
            QCOMPARE(told(), step.told);
            QCOMPARE(seen(), step.seen);
        }
        QCOMPARE(plot().getMeasShow() + 2 * plot().getAverShow() + 4 * plot().getChShow(0, 1) +
                     8 * plot().getChShow(9, 0) + 16 * plot().getMeasShow(9) +
                     32 * plot().getAverShow(9),
                 49);
        for (const int qwtIndex : {0, 1})
            plot().setChCount(3, qwtIndex), plot().clear(qwtIndex);
        addSteps(3);
        QCOMPARE(seen(), "0.0v 0.2v");
    }
    void curvesHaveTheirColours()
    {
        plot().setChCount(18, 0);
        QString colors;
        for (const auto &channel : qAsConst(plot()).devices()[0].ch) {
            colors += channel.measCurve->pen().color().name();
            QCOMPARE(channel.averCurve->pen(), QPen(channel.measCurve->pen().color(), 2));
            QCOMPARE(channel.measCurve->pen().widthF(), 1.0);
        }
        QCOMPARE(colors, "#ff0000#0000ff#00ff00#808080#c6c600#008080#800080#000000#800000#000080"
                         "#008000#00c6c6#a0a0a4#ff00ff#808000#c0c0c0#ff0000#ff0000");
        QCOMPARE(plot().getChColor(9, 0), QColor("white"));
        QCOMPARE(plot().getChMain(9), -1);
    }
    void gridAndFrameless()
    {
        const QImage picture = grabbed();
        const QRect canvas = plot().canvas()->geometry();
        const QPoint tick = mouse().pixel(3, 7);
        QVERIFY(isDotted(picture, {5, tick.y()}, {canvas.width() - 5, tick.y()}, Qt::darkGray));
        QVERIFY(isDotted(picture, {tick.x(), 5}, {tick.x(), canvas.height() - 5}, Qt::darkGray));
        QCOMPARE(QColor(picture.pixel(mouse().pixel(3.5, 7.5))), QColor(Qt::white));
        QCOMPARE(plot().canvas()->contentsRect().size(), canvas.size());
        QCOMPARE(mouse().pixel(0, 10), QPoint(0, 0));
        QCOMPARE(plot().axisWidget(QwtPlot::yLeft)->geometry().right() + 1, canvas.left());
    }
    void linesOfLimitsAndMeasurement()
    {
        withRamp();
        plot().setChColor(Qt::black);
        plot().setModeTrack(TrackRange);
        for (const int y : {120, 60})
            mouse().drag({300, 200}, {300, y});
        plot().setMeasPoint({30, 20.2});
        plot().setMeasPoint({55, 20.5});
        const QImage picture = grabbed();
        for (const int y : {120, 60})
            QVERIFY(isDotted(picture, {2, y}, {picture.width() - 2, y}, Qt::red));
        for (const QPointF &cross : seenCrosses()) {
            const QPoint at = mouse().pixel(cross.x(), cross.y());
            QVERIFY(isDotted(picture, {2, at.y()}, {at.x() - 2, at.y()}, Qt::darkGray));
            QVERIFY(isDotted(picture, {at.x(), 2}, {at.x(), picture.height()}, Qt::darkGray));
        }
    }
    void rubberBands()
    {
        const QVector<QPair<TmcMode, QString>> bands = {{ModeZoom, "top left bottom right "},
                                                        {ModeMeasure, "bottom right "},
                                                        {ModeScroll, "bottom right "},
                                                        {ModeLimits, "bottom "}};
        for (const auto &[mode, expected] : bands) {
            renew();
            withRamp();
            plot().setChMode(mode);
            mouse().pull({203, 107}, {413, 311});
            const QImage picture = grabbed();
            const auto edge = [&](const char *name, const QPoint &from, const QPoint &to) {
                const QColor color(mode == ModeLimits ? Qt::red : Qt::darkGray);
                return isDotted(picture, from, to, color) ? QString(name) : QString();
            };
            QCOMPARE(edge("top ", {220, 107}, {400, 107}) + edge("left ", {203, 120}, {203, 290}) +
                         edge("bottom ", {220, 311}, {400, 311}) +
                         edge("right ", {413, 120}, {413, 290}),
                     expected);
        }
    }
    void timeLabels()
    {
        withRamp();
        plot().changeScaleX(4);
        QCOMPARE(paintedLabels(), "0|10|20|30|40|50|60|70|80|90|100");
        plot().changeModeX(ModeXAbsolute);
        plot().changeScaleX(12); // every second one has room
        QCOMPARE(paintedLabels(),
                 "23:00|02.03.26 00:00|02.03.26 01:00|02.03.26 02:00|02.03.26 03:00|"
                 "02.03.26 04:00");
        for (int width = 1000; width < 1400; width += 9) { // until each one has room
            plot().resize(width, 500);
            QVERIFY2(!paintedLabels().contains("unclear"), qPrintable(QString::number(width)));
        }
        QCOMPARE(paintedLabels().count('|'), 10);
        plot().resize(800, 500);
        for (int second = 90000; second < 99000; second += 1800) { // the view moves by a step
            add(20, second);
            const QStringList labels = paintedLabels().split('|');
            QVERIFY2(labels.size() >= 4 && labels.filter(QRegularExpression(":00$")) == labels,
                     qPrintable(labels.join('|'))); // labels keep their ticks
        }
        plot().changeModeX(ModeXRelative);
        QCOMPARE(labelX(90000), "02 01:00");

        plot().changeModeX(ModeXAbsolute);
        plot().clear();
        plot().changeScaleX(7);
        add(20, 0);
        QCOMPARE(paintedLabels().section('|', 0, 1), "23:00|23:01");
        now = now.addSecs(3600); // another day
        add(20, 1, 1);
        QTRY_COMPARE(paintedLabels().section('|', 1, 1), "01.03.26 23:02");
        plot().prepareMeas(0, now);
        QCOMPARE(paintedLabels().section('|', 1, 1), "00:01");
    }
    void captionAboveTheCurves()
    {
        plot().setChScaleX(7);
        for (int i = 0; i <= 2400; ++i) // fills all of the canvas
            plot().addPoint(i % 2 ? 1 : -1, i / 4.0, "Ом", 0, 1);
        plot().setChMain(1);
        plot().setChScaleX(7);
        plot().setChScaleY(16);
        QCOMPARE(caption().text(), "Кн. № 2 [Ом], dX: 1 мин., dY: 0.1");
        QCOMPARE(caption().font().pointSize(), 15);
        plot().setAxisScale(QwtPlot::yLeft, -0.5, 0.5, 0.1);
        const QImage picture = grabbed();
        const QRect canvas = picture.rect().adjusted(3, 0, -3, 0);
        const QSizeF size = caption().textSize();
        const QRect ink = inkOf(picture, canvas, Qt::black);
        QVERIFY(ink.right() > canvas.right() - 9 && ink.top() < 12);
        QVERIFY(ink.width() > size.width() - 20 && ink.height() < 30);
        QVERIFY(inkOf(picture, {ink.left() + 8, 9, ink.width() - 16, 11}, Qt::blue).isNull());
        QVERIFY(isInked(picture.pixel(50, 10), Qt::blue));
        plot().removeDev(0);
        QCOMPARE(caption().text(), "");
    }
    /** Points come frame by frame, the clock is set back now and then; what a frame adds to the
     *  picture is what is painted when all is painted anew. */
    void framesPaintWhatAWholePictureShows()
    {
        plot().setAverShow(true);
        for (const int ch : {0, 1})
            plot().setChShow(true, 0, uchar(ch));
        plot().setChMode(ModeZoom); // the axes stay
        plot().setAxisScale(QwtPlot::xBottom, 0, 900, 60);
        plot().setAxisScale(QwtPlot::yLeft, 0, 40, 4);
        QImage whole = grabbed();
        QRandomGenerator random(7);
        double second = 0;
        int changed = 0;
        for (int frame = 0; frame < 120; ++frame) {
            for (int points = random.bounded(12); points > 0; --points) {
                second += frame % 40 == 39 ? -random.bounded(50.0) : random.bounded(3.0);
                add(5 + random.bounded(30.0), second, random.bounded(2));
            }
            plot().frameClock().flush();
            const QImage added = plot().canvas()->grab().toImage();
            changed += added != whole;
            whole = grabbed();
            // of 255: smoothed lines that are cut by the edge of a stretch are shaded a little off
            QVERIFY2(greatestDifference(added, whole) < 8, qPrintable(QString::number(frame)));
        }
        QVERIFY(changed > 80);
    }
    void paintsNoMoreThanPointsAdd()
    {
        auto *paints = new PaintCounter;
        paints->attach(&plot()); // which owns it
        plot().setChShow(false, 0, 2);
        plot().setChMode(ModeZoom);
        plot().setAxisScale(QwtPlot::xBottom, 0, 600, 60);
        for (int second = 0; second < 300; ++second)
            add(20, second, 1);
        plot().frameClock().flush();
        grabbed();
        const auto paintsOf = [&](int second, int channel) {
            paints->count = 0;
            add(21, second, channel);
            plot().frameClock().flush();
            return paints->count;
        };
        QCOMPARE(paintsOf(301, 1), 1);
        QVERIFY(paints->width < 40);
        QCOMPARE(paintsOf(302, 2), 0); // of a hidden curve
        QCOMPARE(paintsOf(700, 1), 1); // a line that leaves the view
        QCOMPARE(paintsOf(701, 1), 0);
        plot().showMinimized();
        QCOMPARE(paintsOf(500, 1), 0);
    }
    void paintsOnceForManyChanges()
    {
        const QPoint at(300, 200);
        const QVector<PlotPoint> points = {{1, 2, 20}};
        const std::function<void()> changes[] = {
            [&] { add(20, 1, 1); },
            [&] { plot().addPoints(0, points, QVector<QString>(2, "°С")); },
            [&] { plot().setChColor(Qt::black); },
            [&] { plot().setChShow(false, 0, 1); },
            [&] { plot().setAverShow(false); },
            [&] { plot().changeModeX(ModeXRelative); },
            [&] { mouse().click(at); },
            [&] { plot().setModeTrack(TrackUpper); },
            [&] { mouse().drag(at, at / 2); },
            [&] { plot().changeScaleX(3); },
            [&] { mouse().wheel(at, true); },
            [&] { plot().clear(); }};
        auto *paints = new PaintCounter;
        paints->attach(&plot()); // which owns it
        withRamp();
        for (const auto &change : changes) {
            QTRY_VERIFY(!plot().frameClock().isDue());
            paints->count = 0;
            for (int i = 0; i < 20; ++i)
                change();
            QCOMPARE(paints->count, 0);
            QTRY_VERIFY2(paints->count > 0, qPrintable(QString::number(&change - changes)));
            QVERIFY(paints->count <= 3);
        }
    }
};

QTEST_MAIN(TestQwtNOXPicture)
#include "tst_qwtnox_picture.moc"
