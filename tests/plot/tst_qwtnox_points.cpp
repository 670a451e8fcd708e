#include "numbers.h"
#include "plot/envelopecurve.h"
#include "signallog.h"

#include <QtTest>
#include <qwt_plot_marker.h>
#include <qwt_scale_draw.h>

#include <cmath>
#include <limits>

namespace
{

/** Adds one point per second with the values, beginning at `firstSecond`. */
void addPoints(QwtNOX &plot, int qwtIndex, uchar ch, const QVector<double> &values,
               double firstSecond = 0)
{
    for (int i = 0; i < values.size(); ++i)
        plot.addPoint(values[i], firstSecond + i, "°С", qwtIndex, ch);
}

void refer(QwtNOX &plot, int qwtIndex, int ch, int diffQwtIndex, uchar diffCh)
{
    plot.devices()[qwtIndex].ch[ch].diffQwtIndex = diffQwtIndex;
    plot.devices()[qwtIndex].ch[ch].diffCh = diffCh;
}

} // namespace

class TestQwtNOXPoints : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void acceptsOrRejects_data();
    void acceptsOrRejects();
    void rejectedPointShowsUntilTheNextOne();
    void refusesUnknownPlaces_data();
    void refusesUnknownPlaces();
    void growsOnDemand();
    void stampsPointsByTheClock();
    void storesWithUnitAndAverage();
    void averageRecoversFromHugeValues();
    void curvesShowTheRecord();
    void hugeValuesCanBePainted();
    void formsDifferences();
    void differenceNeedsAFreshReference();
    void differenceNeedsASoundReference();
    void manyPointsAtOnceAreAsOneByOne();
    void manyPointsAreToldOfOnce_data();
    void manyPointsAreToldOfOnce();
    void checksLimits_data();
    void checksLimits();
    void hiddenLimitsAreNotChecked();
    void growingAndShrinkingAnnounces();
    void shrinkingReplacesTheMainChannel();
    void shrinkingEndsDifferences();
    void clearingKeepsTheSettings();
    void preparingMovesTheTimeOrigin();
    void removingADeviceLeavesNothingBehind();
    void secondDeviceSharesTheTimeOrigin();
    void listenerMayAddPointsToWhoLeaves();
    void listenerMayClear();
    void otherChannelsAskForAFrameToo();
    void listenerMayRemoveTheDevice();
    void listenerMayRemoveWhoLosesItsReference();

private:
    const QDateTime m_start{{2026, 3, 1}, {12, 0}};
    QDateTime m_now;
    std::unique_ptr<QwtNOX> m_plot;
    std::unique_ptr<SignalLog> m_log;
};

void TestQwtNOXPoints::init()
{
    m_now = m_start;
    m_plot = std::make_unique<QwtNOX>();
    m_plot->setClock([this] { return m_now; });
    m_plot->addDev(0, 2);
    m_plot->setDevMain(0);
    m_log = std::make_unique<SignalLog>(*m_plot);
}

void TestQwtNOXPoints::cleanup()
{
    m_plot.reset();
}

void TestQwtNOXPoints::acceptsOrRejects_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("time");
    QTest::addColumn<bool>("accepted");
    const double infinity = std::numeric_limits<double>::infinity();
    const double noNumber = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("ordinary") << 20.1 << 1.0 << true;
    QTest::newRow("value just above the lowest") << -1299.9 << 1.0 << true;
    QTest::newRow("lowest value") << -1300.0 << 1.0 << false;
    QTest::newRow("time zero") << 20.1 << 0.0 << true;
    QTest::newRow("negative time") << 20.1 << -0.001 << false;
    QTest::newRow("infinite value") << infinity << 1.0 << false;
    QTest::newRow("value that is no number") << noNumber << 1.0 << false;
    QTest::newRow("infinite time") << 20.1 << infinity << false;
    QTest::newRow("time that is no number") << 20.1 << noNumber << false;
}

void TestQwtNOXPoints::acceptsOrRejects()
{
    QFETCH(double, value);
    QFETCH(double, time);
    QFETCH(bool, accepted);
    QCOMPARE(m_plot->addPoint(value, time, "°С", 0, 1), accepted);
    QCOMPARE(m_log->take(), QStringList(accepted ? "onAddPoint 0 1" : "onErrorAddPoint 0 1"));
    QCOMPARE(m_plot->getChMeasCount(0, 1), accepted ? 1 : 0);
}

void TestQwtNOXPoints::rejectedPointShowsUntilTheNextOne()
{
    addPoints(*m_plot, 0, 1, {20, -1300});
    QCOMPARE(m_plot->getChMeasStr(0, 1), QString("--"));
    QCOMPARE(m_plot->getChMeas(0, 1), 20.0);
    addPoints(*m_plot, 0, 1, {21}, 2);
    QVERIFY(m_plot->getChMeasStr(0, 1).startsWith("21.00"));
}

void TestQwtNOXPoints::refusesUnknownPlaces_data()
{
    QTest::addColumn<int>("qwtIndex");
    QTest::addColumn<int>("ch");
    QTest::newRow("unknown instrument") << 7 << 0;
    QTest::newRow("channel that the model lacks") << 0 << 2;
    QTest::newRow("255 names no channel of a point") << 0 << 255;
    QTest::newRow("255 on an instrument of unknown model") << 1 << 255;
    QTest::newRow("254 would be a 255th channel") << 1 << 254;
}

void TestQwtNOXPoints::refusesUnknownPlaces()
{
    QFETCH(int, qwtIndex);
    QFETCH(int, ch);
    m_plot->addDev(1, 0);
    m_log->take();
    QVERIFY(!m_plot->addPoint(20, 1, "°С", qwtIndex, static_cast<uchar>(ch)));
    QCOMPARE(m_log->take(), QStringList());
    QCOMPARE(int(m_plot->getChCount(0)), 2);
    QCOMPARE(int(m_plot->getChCount(1)), 0);
}

void TestQwtNOXPoints::growsOnDemand()
{
    m_plot->addDev(1, 0);
    m_plot->setChCount(2, 1);
    m_log->take();
    QVERIFY(m_plot->addPoint(20, 1, "°С", 1, 5));
    QCOMPARE(m_log->take(), QStringList({"onAddCh 1 5", "onAddCh 1 4", "onAddCh 1 3", "onAddCh 1 2",
                                         "onChange 1", "onAddPoint 1 5"}));
    QCOMPARE(m_plot->getChColor(1, 5), QColor(Qt::darkCyan));
    QCOMPARE(m_plot->getChColor(1, 4), QColor("#c6c600"));
}

void TestQwtNOXPoints::stampsPointsByTheClock()
{
    m_now = m_start.addMSecs(1234);
    QVERIFY(m_plot->addPoint(20, "°С", -1, 0));
    QCOMPARE(m_plot->getChTime(0, 0), 1.234);
    m_now = m_start.addMSecs(-1);
    QVERIFY(!m_plot->addPoint(20, "°С", -1, 0));
    QVERIFY(!m_plot->addPoint(20, "°С", 9, 0));
}

void TestQwtNOXPoints::storesWithUnitAndAverage()
{
    m_plot->addPoint(10, 1, "°С", 0, 0);
    m_plot->addPoint(20, 2, "Ом", 0, 0);
    const QwtNOX::_ch &channel = m_plot->devices()[0].ch[0];
    QCOMPARE(numbersOf(channel.meas), QVector<double>({10, 20}));
    QCOMPARE(numbersOf(channel.time), QVector<double>({1, 2}));
    QCOMPARE(numbersOf(channel.aver), QVector<double>({10, 15}));
    QCOMPARE(channel.dims.at(0), QString("°С"));
    QCOMPARE(m_plot->getChDim(0, 0), QString("Ом"));
}

void TestQwtNOXPoints::averageRecoversFromHugeValues()
{
    addPoints(*m_plot, 0, 0, {1.7e308, 1.7e308});
    addPoints(*m_plot, 0, 0, QVector<double>(10, 20.0), 2);
    QCOMPARE(m_plot->devices()[0].ch[0].aver.last(), 20.0);
}

void TestQwtNOXPoints::curvesShowTheRecord()
{
    addPoints(*m_plot, 0, 0, {10, 20});
    const QwtNOX::_ch copy = m_plot->devices()[0].ch[0];
    addPoints(*m_plot, 0, 0, {60}, 2);
    QCOMPARE(copy.meas.size(), 2);
    QCOMPARE(copy.measCurve->sample(2), QPointF(2, 60));
    QCOMPARE(copy.averCurve->sample(2), QPointF(2, 30));
    QCOMPARE(copy.measCurve->plot(), m_plot.get());
}

void TestQwtNOXPoints::hugeValuesCanBePainted()
{
    m_plot->resize(800, 600);
    for (const TmcMode mode : {ModeAuto, ModeFollow}) {
        m_plot->setChMode(mode);
        addPoints(*m_plot, 0, 0, {20, 1e300, -1299.5, 1.7e308, 1.7e308, 20, 1e300, 21});
        m_plot->replot();
        m_plot->grab();
        addPoints(*m_plot, 0, 0, {20, 21}, 1e300); // and a huge time
        m_plot->replot();
        m_plot->grab();
        QCOMPARE(m_plot->getChMeas(0, 0), 21.0);
        QVERIFY(m_plot->axisInterval(QwtPlot::yLeft).isValid());
        m_plot->clear(0);
    }
}

void TestQwtNOXPoints::formsDifferences()
{
    refer(*m_plot, 0, 0, 0, 1);
    m_plot->addPoint(30, 0.5, "°С", 0,
                     0); // the reference has no point yet: no difference, no error
    for (int second = 1; second <= 11; ++second) {
        m_plot->addPoint(10, second, "°С", 0, 1);
        m_plot->addPoint(30 + second, second + 0.5, "°С", 0, 0);
    }
    const QwtNOX::_ch &channel = m_plot->devices()[0].ch[0];
    QCOMPARE(channel.meas.size(), 12);
    QCOMPARE(channel.diffMeas.size(), 11);
    QCOMPARE(channel.diffTime[0], 1.5);
    QCOMPARE(channel.diffMeas[10], 31.0);
    QCOMPARE(channel.diffAver[9], 25.5);  // 21 to 30
    QCOMPARE(channel.diffAver[10], 26.5); // 22 to 31
    QCOMPARE(channel.measCurve->sample(10), QPointF(11.5, 31));
    QVERIFY(!m_log->take().contains("onErrorAddPoint 0 0"));
}

void TestQwtNOXPoints::differenceNeedsAFreshReference()
{
    refer(*m_plot, 0, 0, 0, 1);
    m_plot->addPoint(10, 1, "°С", 0, 1);
    QVERIFY(m_plot->addPoint(30, 1.5, "°С", 0, 0));
    m_log->take();
    QVERIFY(!m_plot->addPoint(31, 2.5, "°С", 0, 0));
    QCOMPARE(m_log->take(), QStringList("onErrorAddPoint 0 0"));
    QCOMPARE(m_plot->getChMeasCount(0, 0, false), 2);
    QCOMPARE(m_plot->getChMeasCount(0, 0, true), 1);

    m_plot->addPoint(10, 1.5, "°С", 0, 1); // no newer than the latest difference
    QVERIFY(!m_plot->addPoint(32, 3.5, "°С", 0, 0));
    m_plot->addPoint(10, 1.6, "°С", 0, 1);
    QVERIFY(m_plot->addPoint(33, 4.5, "°С", 0, 0));
}

void TestQwtNOXPoints::differenceNeedsASoundReference()
{
    refer(*m_plot, 0, 0, 0, 1);
    addPoints(*m_plot, 0, 1, {10, -1300}, 1);
    m_log->take();
    QVERIFY(!m_plot->addPoint(30, 2.5, "°С", 0, 0));
    QCOMPARE(m_log->take(), QStringList("onErrorAddPoint 0 0"));

    refer(*m_plot, 0, 0, 0, 9); // a channel that does not exist gives no difference and no error
    QVERIFY(m_plot->addPoint(30, 3, "°С", 0, 0));
    QCOMPARE(m_plot->getChMeasCount(0, 0, true), 0);
}

void TestQwtNOXPoints::manyPointsAtOnceAreAsOneByOne()
{
    const auto addInstrument = [](QwtNOX &plot) {
        plot.addDev(1, 0);
        plot.addDev(2, 3);
        plot.setDevMain(2);
        plot.addPoint(20, 0, "°С", 1, 0);
        refer(plot, 2, 1, 2, 0); // against a channel of its own
        refer(plot, 2, 2, 1, 0); // whose reference soon has nothing new
        PlotDevice &device = plot.devices()[2];
        device.modeTrack = TrackUpper;
        device.upperMarker->setYValue(90);
        device.upperMarker->setVisible(true);
    };
    QwtNOX single;
    addInstrument(single);
    addInstrument(*m_plot);
    const QVector<QString> units = {"Ω", "°С", "мВ", "K"};
    QRandomGenerator random(1);
    QVector<PlotPoint> points;
    for (int i = 0; i < 3000; ++i) {
        const int kind = random.bounded(50);
        const double value = kind == 0 ? -2000 : kind == 1 ? qQNaN() : random.bounded(100.0);
        points.append({random.bounded(5), i / 10.0, value}); // the fourth and fifth do not exist
    }
    int accepted = 0;
    for (const PlotPoint &point : points)
        if (point.channel < units.size())
            accepted += single.addPoint(point.value, point.seconds, units.at(point.channel), 2,
                                        uchar(point.channel));
    int acceptedAtOnce = 0;
    for (int first = 0; first < points.size(); first += 700)
        acceptedAtOnce += m_plot->addPoints(2, points.mid(first, 700), units);
    QCOMPARE(acceptedAtOnce, accepted);

    QCOMPARE(int(m_plot->getChCount(2)), 3);
    for (uchar ch = 0; ch < 3; ++ch) {
        const PlotChannel &one = single.devices()[2].ch[ch];
        const PlotChannel &other = m_plot->devices()[2].ch[ch];
        QCOMPARE(numbersOf(other.time), numbersOf(one.time));
        QCOMPARE(numbersOf(other.meas), numbersOf(one.meas));
        QCOMPARE(numbersOf(other.aver), numbersOf(one.aver));
        QCOMPARE(numbersOf(other.diffTime), numbersOf(one.diffTime));
        QCOMPARE(numbersOf(other.diffMeas), numbersOf(one.diffMeas));
        QCOMPARE(numbersOf(other.diffAver), numbersOf(one.diffAver));
        QCOMPARE(other.averSum, one.averSum);
        QCOMPARE(other.error, one.error);
        QCOMPARE(m_plot->getChDim(2, ch), single.getChDim(2, ch));
        QCOMPARE(int(other.measCurve->dataSize()), int(one.measCurve->dataSize()));
    }
}

void TestQwtNOXPoints::manyPointsAreToldOfOnce_data()
{
    QTest::addColumn<QVector<double>>("values");
    QTest::addColumn<QStringList>("told");
    const QString added = "onAddPoint 0 0";
    const QString alarm = "onPointTrackOff 0 0";
    const QString error = "onErrorAddPoint 0 0";
    using Values = QVector<double>;
    QTest::newRow("regular") << Values{20, 21, 22} << QStringList{added};
    QTest::newRow("the last beyond the limit") << Values{20, 40} << QStringList{added, alarm};
    QTest::newRow("back below it") << Values{40, 20} << QStringList{added, alarm, added};
    QTest::newRow("the last rejected") << Values{20, -2000} << QStringList{added, error};
    QTest::newRow("one rejected") << Values{-2000, 20} << QStringList{error, added};
    QTest::newRow("all rejected") << Values{-2000, -2000} << QStringList{error};
}

void TestQwtNOXPoints::manyPointsAreToldOfOnce()
{
    QFETCH(QVector<double>, values);
    QFETCH(QStringList, told);
    PlotDevice &device = m_plot->devices()[0];
    device.modeTrack = TrackUpper;
    device.upperMarker->setYValue(30);
    device.upperMarker->setVisible(true);
    QVector<PlotPoint> points;
    for (int i = 0; i < values.size(); ++i)
        points.append({0, double(i), values.at(i)});
    m_log->take();
    m_plot->addPoints(0, points, {"°С"});
    QCOMPARE(m_log->take(), told);
}

void TestQwtNOXPoints::checksLimits_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("alarm");
    QTest::newRow("off") << int(TrackOff) << 99.0 << false;
    QTest::newRow("range, above") << int(TrackRange) << 30.1 << true;
    QTest::newRow("range, below") << int(TrackRange) << 9.9 << true;
    QTest::newRow("range, on the upper limit") << int(TrackRange) << 30.0 << false;
    QTest::newRow("range, on the lower limit") << int(TrackRange) << 10.0 << false;
    QTest::newRow("upper only, above") << int(TrackUpper) << 30.1 << true;
    QTest::newRow("upper only, below the lower") << int(TrackUpper) << 9.9 << false;
    QTest::newRow("lower only, below") << int(TrackLower) << 9.9 << true;
    QTest::newRow("lower only, above the upper") << int(TrackLower) << 30.1 << false;
}

void TestQwtNOXPoints::checksLimits()
{
    QFETCH(int, mode);
    QFETCH(double, value);
    QFETCH(bool, alarm);
    QwtNOX::_dev &device = m_plot->devices()[0];
    device.modeTrack = static_cast<TmcTrackingMode>(mode);
    device.upperMarker->setYValue(30);
    device.lowerMarker->setYValue(10);
    device.upperMarker->setVisible(true);
    device.lowerMarker->setVisible(true);
    QVERIFY(m_plot->addPoint(value, 1, "°С", 0, 1));
    QStringList expected("onAddPoint 0 1");
    if (alarm)
        expected += "onPointTrackOff 0 1";
    QCOMPARE(m_log->take(), expected);
}

void TestQwtNOXPoints::hiddenLimitsAreNotChecked()
{
    m_plot->devices()[0].modeTrack = TrackRange;
    m_plot->devices()[0].upperMarker->setYValue(30);
    m_plot->addPoint(99, 1, "°С", 0, 1);
    QCOMPARE(m_log->take(), QStringList("onAddPoint 0 1"));
}

void TestQwtNOXPoints::growingAndShrinkingAnnounces()
{
    m_plot->setChCount(4, 0);
    QCOMPARE(m_log->take(), QStringList({"onAddCh 0 3", "onAddCh 0 2", "onChange 0"}));
    const int items = m_plot->itemList(QwtPlotItem::Rtti_PlotCurve).size();
    QCOMPARE(items, 8);

    m_plot->setChCount(255, 0);
    QCOMPARE(m_log->take(), QStringList());
    m_plot->setChCount(1, 0);
    QCOMPARE(m_log->take(), QStringList("onChange 0"));
    QCOMPARE(m_plot->itemList(QwtPlotItem::Rtti_PlotCurve).size(), 2);
    m_plot->setChCount(3, 9);
    QCOMPARE(m_log->take(), QStringList());
}

void TestQwtNOXPoints::shrinkingReplacesTheMainChannel()
{
    m_plot->setChCount(3, 0);
    m_plot->setChMain(2, 0);
    m_log->take();
    m_plot->setChCount(1, 0);
    QCOMPARE(m_plot->getChMain(0), 0);
    QVERIFY(m_log->take().contains("onChMainChange 0 0"));
    m_plot->setChCount(0, 0);
    QCOMPARE(m_plot->getChMain(0), -1);
}

void TestQwtNOXPoints::shrinkingEndsDifferences()
{
    m_plot->addDev(1, 4);
    refer(*m_plot, 1, 0, 0, 1);
    refer(*m_plot, 1, 1, 0, 0);
    m_log->take();
    m_plot->setChCount(1, 0);
    QCOMPARE(m_log->take(), QStringList({"onChange 1", "onChModeChange 1 0 1", "onChange 0"}));

    uchar diffCh = 0;
    int diffQwtIndex = 0;
    m_plot->getChDiff(&diffCh, &diffQwtIndex, 1, 0);
    QCOMPARE(int(diffCh), 255);
    QCOMPARE(diffQwtIndex, -1);
    m_plot->getChDiff(&diffCh, &diffQwtIndex, 1, 1);
    QCOMPARE(int(diffCh), 0);
    QCOMPARE(diffQwtIndex, 0);
    refer(*m_plot, 1, 2, 0, 1); // one more than there are
    m_plot->getChDiff(&diffCh, &diffQwtIndex, 1, 2);
    QCOMPARE(int(diffCh), 255);
}

void TestQwtNOXPoints::clearingKeepsTheSettings()
{
    refer(*m_plot, 0, 0, 0, 1);
    m_plot->setChColor(Qt::magenta, 0, 0);
    addPoints(*m_plot, 0, 1, QVector<double>(12, 5.0));
    addPoints(*m_plot, 0, 0, {7}, 20);
    m_plot->clear(0);
    const QwtNOX::_ch &channel = m_plot->devices()[0].ch[0];
    QVERIFY(channel.meas.isEmpty() && channel.diffMeas.isEmpty() && channel.dims.isEmpty());
    QCOMPARE(int(channel.measCurve->dataSize()), 0);
    QVERIFY(channel.hasDifference());
    QCOMPARE(m_plot->getChColor(0, 0), QColor(Qt::magenta));
    addPoints(*m_plot, 0, 1, {8});
    QCOMPARE(m_plot->devices()[0].ch[1].aver.last(), 8.0);
}

void TestQwtNOXPoints::preparingMovesTheTimeOrigin()
{
    addPoints(*m_plot, 0, 0, {1, 2, 3});
    m_plot->setChModeX(ModeXAbsolute);
    const QwtScaleDraw *labels = m_plot->axisScaleDraw(QwtPlot::xBottom);
    const int widthWithoutDate = labels->maxLabelWidth(QFont());
    m_log->take();
    m_plot->prepareMeas(0, m_start.addDays(-1));
    QCOMPARE(m_log->take(), QStringList("onChange 0"));
    QCOMPARE(m_plot->getChMeasCount(0, 0), 0);
    QCOMPARE(m_plot->getStartDateTime(0), m_start.addDays(-1));
    labels = m_plot->axisScaleDraw(QwtPlot::xBottom);
    QVERIFY(labels->maxLabelWidth(QFont()) > widthWithoutDate);
    m_plot->addPoint(20, "°С", 0, 0);
    QCOMPARE(m_plot->getChTime(0, 0), 86400.0);
    m_plot->prepareMeas(5, m_start);
    QCOMPARE(m_log->take(), QStringList("onAddPoint 0 0"));
    QVERIFY(!m_plot->getStartDateTime(5).isValid());
}

void TestQwtNOXPoints::removingADeviceLeavesNothingBehind()
{
    const int markers = m_plot->itemList(QwtPlotItem::Rtti_PlotMarker).size();
    m_plot->addDev(1, 2);
    refer(*m_plot, 1, 0, 0, 1);
    m_plot->addPoint(20, 1, "°С", 0, 1);
    m_plot->addPoint(30, 2, "°С", 1, 0);
    m_plot->removeDev(0);
    QVERIFY(!m_plot->devices().contains(0));
    QCOMPARE(m_plot->getDevMain(), -1);
    QVERIFY(!m_plot->devices()[1].ch[0].hasDifference());
    QCOMPARE(m_plot->itemList(QwtPlotItem::Rtti_PlotCurve).size(), 4);
    QCOMPARE(m_plot->itemList(QwtPlotItem::Rtti_PlotMarker).size(), markers);
    m_plot->addPoint(31, 3, "°С", 1, 0);
    QCOMPARE(m_plot->devices()[1].ch[0].measCurve->sample(1), QPointF(3, 31));
    m_plot->replot();
}

void TestQwtNOXPoints::secondDeviceSharesTheTimeOrigin()
{
    m_now = m_start.addSecs(100);
    m_plot->addDev(1, 2);
    QCOMPARE(m_plot->getStartDateTime(1), m_start);
    m_plot->addDev(1, 7);
    m_plot->addDev(-1, 7);
    QCOMPARE(m_plot->devices().keys(), QList<int>({0, 1}));
    QCOMPARE(int(m_plot->getChCount(1)), 2);
}

void TestQwtNOXPoints::listenerMayAddPointsToWhoLeaves()
{
    m_plot->addDev(1, 0);
    m_plot->addPoint(20, 1, "°С", 1, 0);
    const int curves = m_plot->itemList(QwtPlotItem::Rtti_PlotCurve).size();
    connect(m_plot.get(), &QwtNOX::onChange, m_plot.get(), [this](int qwtIndex) {
        if (qwtIndex == 1 && m_plot->getChCount(1) == 0)
            m_plot->addPoint(20, 2, "°С", 1, 0);
    });
    m_plot->removeDev(1);
    QCOMPARE(m_plot->itemList(QwtPlotItem::Rtti_PlotCurve).size(), curves - 2);
}

void TestQwtNOXPoints::listenerMayClear()
{
    QwtNOX::_dev &device = m_plot->devices()[0];
    device.modeTrack = TrackLower;
    device.lowerMarker->setYValue(10);
    device.lowerMarker->setVisible(true);
    connect(m_plot.get(), &QwtNOX::onAddPoint, m_plot.get(), [this] { m_plot->clear(0); });
    m_log->take();
    QVERIFY(m_plot->addPoint(20, 1, "°С", 0, 0));
    QCOMPARE(m_log->take(), QStringList("onAddPoint 0 0"));
}

void TestQwtNOXPoints::otherChannelsAskForAFrameToo()
{
    m_plot->frameClock().flush();
    QVERIFY(!m_plot->frameClock().isDue());
    m_plot->addPoint(20, 1, "°С", 0, 1);
    QVERIFY(m_plot->frameClock().isDue());
}

void TestQwtNOXPoints::listenerMayRemoveTheDevice()
{
    connect(m_plot.get(), &QwtNOX::onAddPoint, m_plot.get(), [this] { m_plot->removeDev(0); });
    QVERIFY(m_plot->addPoint(20, 1, "°С", 0, 0));
    QVERIFY(m_plot->devices().isEmpty());

    m_plot->addDev(1, 0);
    connect(m_plot.get(), &QwtNOX::onAddCh, m_plot.get(), [this](int qwtIndex, uchar ch) {
        if (ch == 1)
            m_plot->removeDev(qwtIndex);
    });
    const QVector<PlotPoint> points = {{0, 1, 20}, {1, 1, 20}, {0, 2, 20}};
    QCOMPARE(m_plot->addPoints(1, points, {"°С", "°С"}), 1);
    QVERIFY(m_plot->devices().isEmpty());
}

void TestQwtNOXPoints::listenerMayRemoveWhoLosesItsReference()
{
    for (const int qwtIndex : {1, 2, 3}) {
        m_plot->addDev(qwtIndex, 2);
        for (const uchar ch : {0, 1})
            refer(*m_plot, qwtIndex, ch, 0, 1);
    }
    connect(m_plot.get(), &QwtNOX::onChModeChange, m_plot.get(), [this](int qwtIndex) {
        m_plot->removeDev(qwtIndex);
        m_plot->removeDev(2);
    });
    m_plot->setChCount(1, 0);
    QCOMPARE(m_plot->devices().keys(), QList<int>({0}));
    QCOMPARE(int(m_plot->getChCount(0)), 1);
}

QTEST_MAIN(TestQwtNOXPoints)
#include "tst_qwtnox_points.moc"
