#include "plot/envelopecurve.h"
#include "plotbench.h"

#include <QRandomGenerator>

// The road of a point into the series, differences, alarms, and what is read of the series.

class TestQwtNOXPoints : public PlotTest
{
    Q_OBJECT

    /** All that a channel holds of its points. */
    static QString contents(const PlotChannel &channel)
    {
        QString all;
        QDebug(&all) << qSetRealNumberPrecision(17) << channel.dim << channel.error
                     << numbersOf(channel.time) << numbersOf(channel.meas)
                     << numbersOf(channel.aver) << numbersOf(channel.diffTime)
                     << numbersOf(channel.diffMeas) << numbersOf(channel.diffAver)
                     << channel.averSum << channel.diffAverSum << channel.measCurve->dataSize();
        return all;
    }

    /** Compares a channel with another one from its next points on. */
    void refer(int qwtIndex, int ch, int diffQwtIndex, int diffCh)
    {
        plot().devices()[qwtIndex].ch[ch].diffQwtIndex = diffQwtIndex;
        plot().devices()[qwtIndex].ch[ch].diffCh = uchar(diffCh);
    }

    /** Sets limits of 10 and 30. */
    void limit(int qwtIndex, TmcTrackingMode mode, bool isPlaced = true)
    {
        PlotDevice &device = plot().devices()[qwtIndex];
        device.modeTrack = mode;
        device.upperMarker->setYValue(30);
        device.lowerMarker->setYValue(10);
        device.upperMarker->setVisible(isPlaced);
        device.lowerMarker->setVisible(isPlaced);
    }

    /** "channel of instrument" that a channel is compared with, or "none". */
    QString reference(int qwtIndex, int ch) const
    {
        uchar diffCh = 77;
        int diffQwtIndex = 77;
        plot().getChDiff(&diffCh, &diffQwtIndex, qwtIndex, uchar(ch));
        const bool isNone = diffCh == 255 && diffQwtIndex == -1;
        return isNone ? QString("none") : QString("%1 of %2").arg(diffCh).arg(diffQwtIndex);
    }

    /** The newest point of both curves of channel 0, as "time value average". */
    QString shown() const
    {
        const PlotChannel channel = plot().devices().first().ch.first();
        const int last = int(channel.measCurve->dataSize()) - 1;
        if (last < 0 || int(channel.averCurve->dataSize()) - 1 != last)
            return "nothing";
        const QPointF value = channel.measCurve->sample(last);
        const double average = channel.averCurve->sample(last).y();
        return QString("%1 %2 %3").arg(value.x()).arg(value.y()).arg(average);
    }

    Numbers differences() const { return numbersOf(plot().devices().first().ch.first().diffMeas); }

    /** Channel 0 of the first instrument at 1, 2 and 3 s; channel 1 of the other half a second ago.
     */
    void withDifference()
    {
        for (int second = 1; second <= 3; ++second) {
            add(10 * second, second - 0.5, 1, 1);
            add(100 * second, second);
        }
        plot().setChDiff(1, 1, 0, 0);
    }

private slots:
    void acceptsOrRejects()
    {
        const QVector<std::tuple<double, double, QString>> points = {
            {-1299.9, 1, "2|-1299.90|-639.95|1|°С|1.0|-1319.90"},
            {20.1, 0, "2|20.10|20.05|0|°С|0.0|0.10"},
            {-1300, 1, "1|--|--|0|°С||"},
            {20.1, -0.001, "1|--|--|0|°С||"},
            {qInf(), 1, "1|--|--|0|°С||"},
            {qQNaN(), 1, "1|--|--|0|°С||"},
            {20.1, qInf(), "1|--|--|0|°С||"},
            {20.1, qQNaN(), "1|--|--|0|°С||"}};
        for (const auto &[value, time, expected] : points) {
            renew();
            add(20, 0, 1);
            told();
            const bool isAccepted = add(value, time, 1);
            QCOMPARE(told(), isAccepted ? "AddPoint 0 1" : "ErrorAddPoint 0 1");
            QCOMPARE(row(0, 1), expected);
            add(21, 2, 1); // the rejected one is forgotten
            QVERIFY(row(0, 1).contains("|21.00|"));
        }
    }
    void channelsComeAndGo()
    {
        plot().addDev(2, 0);
        told();
        for (const auto &[qwtIndex, ch] : QVector<QPair<int, int>>{
                 {7, 0}, {0, 2}, {0, 255}, {2, 255}, {2, 254}}) // 254 would be a 255th channel
            QVERIFY(!add(20, 1, ch, qwtIndex));
        QVERIFY(!plot().addPoint(20, "°С", 9, 0));
        QCOMPARE(told(), "");
        QCOMPARE(int(plot().getChCount(0)) + plot().getChCount(2), 2);

        plot().setChCount(2, 2);
        told();
        QVERIFY(add(20, 1, 5, 2));
        QCOMPARE(told(), "AddCh 2 5, AddCh 2 4, AddCh 2 3, AddCh 2 2, Change 2, AddPoint 2 5");
        plot().setChMain(5, 2);
        told();
        plot().setChCount(255, 2);
        plot().setChCount(3, 9);
        QCOMPARE(told(), "");
        const int curves = plot().itemList(QwtPlotItem::Rtti_PlotCurve).size();
        plot().setChCount(4, 2);
        QCOMPARE(plot().itemList(QwtPlotItem::Rtti_PlotCurve).size(), curves - 4);
        QCOMPARE(told(), "Change 2, ChMode 2 0 0, ChMain 2 0, Change 2, Change 2");

        refer(2, 0, 0, 1); // differences end with what they are against
        refer(2, 1, 0, 0);
        plot().setChCount(1, 0);
        QCOMPARE(told(), "Change 2, ChMode 2 0 1, Change 0");
        QCOMPARE(reference(2, 0) + ", " + reference(2, 1), "none, 0 of 0");
        refer(2, 2, 0, 1); // one more than there are
        QCOMPARE(reference(2, 2), "none");
        plot().setChCount(0, 2);
        QCOMPARE(plot().getChMain(2), -1);
    }
    void storesTimeValueUnitAndAverage()
    {
        now = now.addMSecs(1234);
        QVERIFY(plot().addPoint(10, "°С", -1, 0)); // stamped by the clock
        QCOMPARE(shown(), "1.234 10 10");
        plot().addPoint(20, 2, "Ом", 0, 0);
        const PlotChannel copy = plot().devices()[0].ch[0];
        plot().addPoint(60, 3, "Ом", 0, 0);
        QCOMPARE(shown(), "3 60 30");
        QCOMPARE(numbersOf(copy.meas), Numbers({10, 20})); // goes its own way
        QCOMPARE(copy.dims.at(0) + copy.dims.at(1) + plot().getChDim(0, 0), "°СОмОм");
        now = now.addMSecs(-2000);
        QVERIFY(!plot().addPoint(20, "°С", -1, 0)); // before the start
    }
    void clearsAndBeginsAnew()
    {
        withDifference();
        plot().setChColor(Qt::magenta, 0, 0);
        const QDateTime yesterday = now.addDays(-1);
        for (const bool prepares : {false, true}) {
            told();
            prepares ? plot().prepareMeas(0, yesterday) : plot().clear(0);
            QCOMPARE(told(), prepares ? "Change 0" : "");
            QCOMPARE(shown() + row(0, 0), "nothing0|--|||°С||");
            QCOMPARE(plot().getChMeasCount(0, 0, false), 0);
            QCOMPARE(reference(0, 0), "1 of 1");
            QCOMPARE(plot().getChColor(0, 0), QColor(Qt::magenta));
            add(5, 10 * (prepares + 1), 1, 1);
            add(9, 10 * (prepares + 1));
            QCOMPARE(shown(), prepares ? "20 4 4" : "10 4 4");
        }
        QCOMPARE(plot().getStartDateTime(0), yesterday);
        plot().addPoint(20, "°С", 0, 1);
        QCOMPARE(plot().getChTime(0, 1), 86400.0);
        told();
        plot().prepareMeas(5, yesterday);
        QCOMPARE(told(), "");
        QVERIFY(!plot().getStartDateTime(5).isValid());
        plot().addDev(5, 2); // shares the origin of the first
        plot().addDev(5, 7);
        plot().addDev(-1, 7);
        QCOMPARE(plot().getStartDateTime(5), yesterday);
        QCOMPARE(plot().devices().keys(), QList<int>({0, 1, 5}));
        QCOMPARE(int(plot().getChCount(5)), 2);
    }
    void manyPointsAtOnceAreAsOneByOne()
    {
        const QVector<QString> units = {"Ω", "°С", "мВ", "K"};
        QRandomGenerator random(1);
        QVector<PlotPoint> points;
        for (int i = 0; i < 3000; ++i) {
            const int kind = random.bounded(50);
            const double value = kind == 0 ? -2000 : kind == 1 ? qQNaN() : random.bounded(100.0);
            points.append({int(random.bounded(5)), i / 10.0, value}); // two of them do not exist
        }
        QStringList held;
        for (const bool isAtOnce : {false, true}) {
            renew();
            plot().addDev(2, 3);
            plot().setDevMain(2);
            plot().addPoint(20, 0, "°С", 1, 0);
            refer(2, 1, 2, 0); // against a channel of its own
            refer(2, 2, 1, 0); // whose reference soon has nothing new
            limit(2, TrackUpper);
            int accepted = 0;
            for (int first = 0; isAtOnce && first < points.size(); first += 700)
                accepted += plot().addPoints(2, points.mid(first, 700), units);
            for (const PlotPoint &point : isAtOnce ? QVector<PlotPoint>() : points)
                accepted += plot().addPoint(point.value, point.seconds, units.value(point.channel),
                                            2, uchar(point.channel));
            held += QString::number(accepted);
            for (const PlotChannel &channel : qAsConst(plot().devices()[2].ch))
                held += contents(channel);
        }
        QCOMPARE(held.size(), 8);
        QCOMPARE(held.mid(4), held.mid(0, 4));
    }
    void manyPointsAreToldOfOnce()
    {
        const QVector<QPair<Numbers, QString>> batches = {
            {{20, 21, 22}, "AddPoint 0 0"},
            {{20, 40}, "AddPoint 0 0, PointTrackOff 0 0"},
            {{40, 20}, "AddPoint 0 0, PointTrackOff 0 0, AddPoint 0 0"}, // back below it
            {{20, -2000}, "AddPoint 0 0, ErrorAddPoint 0 0"},
            {{-2000, 20}, "ErrorAddPoint 0 0, AddPoint 0 0"},
            {{-2000, -2000}, "ErrorAddPoint 0 0"}};
        limit(0, TrackUpper);
        for (const auto &[values, expected] : batches) {
            QVector<PlotPoint> points;
            for (const double value : values)
                points.append({0, double(points.size()), value});
            plot().addPoints(0, points, {"°С"});
            QCOMPARE(told(), expected);
        }
        plot().addPoints(0, {{1, 9, 20}, {0, 9, 20}}, {"°С", "°С"}); // in their order
        QCOMPARE(told(), "AddPoint 0 1, AddPoint 0 0");
    }
    void alarmsBeyondLimits()
    {
        const QVector<QPair<TmcTrackingMode, QString>> modes = {
            {TrackOff, ""}, {TrackRange, "9.9 30.1 "}, {TrackUpper, "30.1 "}, {TrackLower, "9.9 "}};
        for (const auto &[mode, expected] : modes) {
            renew();
            QString alarms;
            for (const bool isPlaced : {true, false}) { // none of limits that are not placed
                limit(0, mode, isPlaced);
                for (const double value : {9.9, 10.0, 30.0, 30.1}) {
                    add(value, 1, 1);
                    const QString heard = told();
                    if (heard == "AddPoint 0 1, PointTrackOff 0 1")
                        alarms += QString::number(value) + ' ';
                    else
                        QCOMPARE(heard, "AddPoint 0 1");
                }
            }
            QCOMPARE(alarms, expected);
        }
    }
    void differenceIsFormed()
    {
        withDifference();
        QCOMPARE(told().section(", ", -2), "Change 0, ChMode 0 0 1");
        QCOMPARE(reference(0, 0), "1 of 1");
        QCOMPARE(differences(), Numbers({90, 180, 270}));
        QCOMPARE(shown() + ' ' + row(0, 0), "3 270 180 3|270.00|180.00|3|°С|1.0|90.00");
        QCOMPARE(plot().getChMeasStr(0, 0, -1, -1, false), "300.00");
        QCOMPARE(plot().getChAverStr(0, 0, -1, -1, false), "180.00"); // whatever is asked for
        QCOMPARE(plot().getChMeas(0, 0, 0) + plot().getChTime(0, 0, 0), 91.0);

        told();
        QVERIFY(!add(400, 4)); // the reference has nothing fresh
        QCOMPARE(told(), "ErrorAddPoint 0 0");
        add(30, 3, 1, 1); // no newer than the latest difference
        QVERIFY(!add(400, 4.5));
        add(30, 4.55, 1, 1);
        add(-2000, 4.6, 1, 1); // the newest was rejected
        QVERIFY(!add(400, 4.7));
        QCOMPARE(differences(), Numbers({90, 180, 270}));
        QCOMPARE(plot().getChMeasCount(0, 0, false), 6);
        add(40, 4.8, 1, 1);
        QVERIFY(add(500, 5));
        QCOMPARE(shown() + ' ' + row(0, 0), "5 460 250 4|460.00|250.00|5|°С|2.0|190.00");

        plot().setChDiff(255, -1, 0, 0); // back to the values, and once more
        QCOMPARE(shown(), "5 500 328.571");
        QCOMPARE(plot().getChMeasCount(0, 0), 7);
        plot().setChDiff(1, 1); // the main channel of the main instrument
        QCOMPARE(differences(), Numbers({90, 180, 270, 370, 370, 460}));
        for (int second = 6; second <= 12; ++second) { // goes on with the same window
            add(0, second - 0.5, 1, 1);
            add(second, second);
        }
        QCOMPARE(shown(), "12 12 126.3"); // of 370, 370, 460, 6 ... 12
        plot().setChDiff(1, 0, 0, 0);     // which has no points
        QCOMPARE(shown(), "nothing");
        QVERIFY(add(30, 13));
        QCOMPARE(plot().getChMeasStr(0, 0), "--");
    }
    void differenceRequests()
    {
        const QVector<std::tuple<int, int, int, int, QString>> requests = {
            {0, 1, 0, 0, "0 of 1, СЛЕЖЕНИЕ"},   {1, 0, 0, 0, "1 of 0, СЛЕЖЕНИЕ"},
            {255, -1, 0, 0, "none, СЛЕЖЕНИЕ"},  {1, 9, 0, 0, "1 of 1, СЛЕЖЕНИЕ"}, // it is gone
            {1, -1, 0, 0, "1 of 1, СЛЕЖЕНИЕ"},  {2, 1, 0, 0, "1 of 1, СЛЕЖЕНИЕ"},
            {255, 1, 0, 0, "1 of 1, СЛЕЖЕНИЕ"}, {1, 1, 9, 0, "1 of 1, УВЕЛИЧЕНИЕ"},
            {1, 1, 0, 2, "1 of 1, УВЕЛИЧЕНИЕ"}, {0, 0, 1, 1, "1 of 1, УВЕЛИЧЕНИЕ"}};
        for (const auto &[diffCh, diffQwtIndex, qwtIndex, ch, result] : requests) {
            renew();
            withDifference();
            plot().setChMode(ModeZoom);
            const QString views = seenViews();
            plot().setChDiff(uchar(diffCh), diffQwtIndex, qwtIndex, uchar(ch));
            QCOMPARE(reference(0, 0) + ", " + plot().getChModeLabel(), result);
            QVERIFY(plot().getChMode() == ModeFollow || seenViews() == views);
            QCOMPARE(reference(9, 0) + reference(0, 7), "nonenone");
        }
    }
    void whoLeavesIsForgotten()
    {
        withDifference();
        const int items = plot().itemList().size();
        plot().removeDev(1);
        QCOMPARE(plot().itemList().size(), items - 6); // four curves, two limits
        QCOMPARE(reference(0, 0) + ' ' + shown(), "none 3 300 200");
        plot().addDev(1, 3); // another one in its place is no reference
        QCOMPARE(reference(0, 0), "none");
        plot().changeModeX(ModeXAbsolute);
        plot().removeDev(0);
        QCOMPARE(plot().getDevMain(), -1);
        QCOMPARE(labelX(70), "70");
    }
    void listenersMayRemoveWhatComes()
    {
        limit(0, TrackLower);
        plot().addDev(2, 0);
        connect(&plot(), &QwtNOX::onAddPoint, &plot(), [this] { plot().removeDev(0); });
        QVERIFY(add(20, 1));
        connect(&plot(), &QwtNOX::onAddCh, &plot(), [this](int, uchar ch) {
            if (ch == 1)
                plot().removeDev(2);
        });
        QCOMPARE(plot().addPoints(2, {{0, 1, 20}, {1, 1, 20}, {0, 2, 20}}, {"°С", "°С"}), 1);
        QCOMPARE(plot().devices().keys(), QList<int>{1});
        QCOMPARE(plot().itemList(QwtPlotItem::Rtti_PlotCurve).size(), 4);
    }
};

QTEST_MAIN(TestQwtNOXPoints)
#include "tst_qwtnox_points.moc"
