#include "plot/qwtnoxscaledraw.h"
#include "signallog.h"

#include <QtTest>
#include <qwt_plot_textlabel.h>
#include <qwt_scale_div.h>

#include <cmath>
#include <random>

namespace
{

constexpr uchar oneMinute = 7; // row of the X table
constexpr uchar oneTenth = 16; // row of the Y table

} // namespace

class TestQwtNOXScale : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void startsWithATidyView();
    void automaticSpansAllData();
    void automaticKeepsAConstantSeriesFine();
    void followingMovesByOneStep();
    void followingRecentresTheValueAxis();
    void automaticValuesLookAtTheWindowOnly_data();
    void automaticValuesLookAtTheWindowOnly();
    void averagesDecideWhenAlone();
    void differenceDecidesWhenConfigured();
    void otherModesLeaveTheAxes();
    void otherChannelsLeaveTheAxes();
    void choosingScalesSetsTheMode();
    void choosingScalesAnnounces();
    void freeViewIsRecentred();
    void automaticInAFreeViewKeepsTheAxis();
    void scaleBeyondTheTableIsIgnored();
    void otherInstrumentsScalesStayTheirOwn();
    void labelsTheTimeAxis_data();
    void labelsTheTimeAxis();
    void labelsChangeWithTheDay();
    void labelsTheValueAxisByPrecision();
    void canvasStaysWhileDigitsChange();
    void captionNamesChannelAndScales();
    void stepsBackInTimeAreShown();
    void hugeValuesLeaveAUsableAxis();
    void anyInputLeavesUsableAxes();
    void paintingWaitsForTheFrame();

private:
    double lower(int axis) const { return m_plot->axisInterval(axis).minValue(); }
    double upper(int axis) const { return m_plot->axisInterval(axis).maxValue(); }
    double step(int axis) const { return m_plot->axisStepSize(axis); }
    bool shows(int axis, double from, double to) const
    {
        return qAbs(lower(axis) - from) < 1e-9 && qAbs(upper(axis) - to) < 1e-9;
    }
    void add(double value, double time, uchar ch = 0)
    {
        m_plot->addPoint(value, time, "°С", 0, ch);
    }

    QDateTime m_now;
    std::unique_ptr<QwtNOX> m_plot;
    std::unique_ptr<SignalLog> m_log;
};

void TestQwtNOXScale::init()
{
    m_now = QDateTime({2026, 3, 1}, {23, 0});
    m_plot = std::make_unique<QwtNOX>();
    m_plot->setClock([this] { return m_now; });
    m_plot->addDev(0, 2);
    m_plot->addDev(1, 2);
    m_plot->setDevMain(0);
    m_plot->setChMode(ModeAuto);
    m_log = std::make_unique<SignalLog>(*m_plot);
}

void TestQwtNOXScale::cleanup()
{
    m_plot.reset();
}

void TestQwtNOXScale::startsWithATidyView()
{
    QVERIFY(shows(QwtPlot::xBottom, 0, 10));
    QVERIFY(shows(QwtPlot::yLeft, 0, 10));
    m_plot->applyScale(); // without points: stays
    QVERIFY(shows(QwtPlot::xBottom, 0, 10));
    add(30, 1000);
    QVERIFY(shows(QwtPlot::yLeft, 29.999995, 30.000005));
    m_plot->setChMain(1); // has no points, so its decimals suit no other view
    QVERIFY(shows(QwtPlot::yLeft, 0, 10));
    m_plot->setChMain(0);
    m_plot->setDevMain(1);
    QVERIFY(shows(QwtPlot::xBottom, 0, 10));
    QVERIFY(shows(QwtPlot::yLeft, 0, 10));
    QVERIFY(!m_plot->axisAutoScale(QwtPlot::xBottom) && !m_plot->axisAutoScale(QwtPlot::yLeft));
}

void TestQwtNOXScale::automaticSpansAllData()
{
    for (int second = 0; second <= 65; ++second)
        add(20 + second * 0.01, second);
    QVERIFY(shows(QwtPlot::xBottom, 0, 100));
    QCOMPARE(step(QwtPlot::xBottom), 10.0);
    QCOMPARE(m_plot->getScaleXLabel(), QString("10 сек."));
    QCOMPARE(m_plot->getScaleYLabel(), QString("0.1")); // 0.65 / 0.1 + 0.5, rounded up, is 7
    QCOMPARE(int(m_plot->getPrecision()), 1);
    QVERIFY(lower(QwtPlot::yLeft) <= 20 && upper(QwtPlot::yLeft) >= 20.65);

    m_plot->setDivX(5); // 6.5 steps no longer fit
    m_plot->applyScale();
    QVERIFY(shows(QwtPlot::xBottom, 0, 150));
}

void TestQwtNOXScale::automaticKeepsAConstantSeriesFine()
{
    add(20, 0);
    add(20, 1);
    QCOMPARE(step(QwtPlot::yLeft), 0.000001);
    QVERIFY(shows(QwtPlot::yLeft, 19.999995, 20.000005));
    QCOMPARE(int(m_plot->getPrecision()), 6);
}

void TestQwtNOXScale::followingMovesByOneStep()
{
    m_plot->setChScaleX(oneMinute);
    QCOMPARE(m_plot->getChMode(), ModeFollow);
    for (int second = 0; second <= 600; second += 10) {
        add(20, second);
        QVERIFY(shows(QwtPlot::xBottom, 0, 600));
    }
    add(20, 601);
    QVERIFY(shows(QwtPlot::xBottom, 60, 660));
    add(20, 660);
    QVERIFY(shows(QwtPlot::xBottom, 60, 660));
    add(20, 660.5);
    QVERIFY(shows(QwtPlot::xBottom, 120, 720));
}

void TestQwtNOXScale::followingRecentresTheValueAxis()
{
    m_plot->setChScaleY(oneTenth);
    add(20, 0);
    QVERIFY(shows(QwtPlot::yLeft, 19.5, 20.5));
    add(20.5, 1);
    QVERIFY(shows(QwtPlot::yLeft, 19.5, 20.5));
    add(21.4, 2);
    QVERIFY(shows(QwtPlot::yLeft, 20.9, 21.9));
    QCOMPARE(int(m_plot->getPrecision()), 1);
}

void TestQwtNOXScale::automaticValuesLookAtTheWindowOnly_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("scaleY");
    QTest::newRow("the early outlier is in view") << 550 << "200";
    QTest::newRow("it has left the view") << 1300 << "0.001";
}

void TestQwtNOXScale::automaticValuesLookAtTheWindowOnly()
{
    QFETCH(int, seconds);
    m_plot->setChScaleX(oneMinute);
    for (int second = 0; second <= seconds; ++second)
        add(second == 50 ? 1500 : 20 + second % 7 * 0.001, second);
    QTEST(m_plot->getScaleYLabel(), "scaleY");
}

void TestQwtNOXScale::averagesDecideWhenAlone()
{
    m_plot->setMeasShow(false);
    for (int second = 0; second < 40; ++second)
        add(second % 2 ? 100 : 0, second);
    QCOMPARE(m_plot->getScaleYLabel(), QString("10")); // the averages end at 50 and began at 0
    m_plot->setMeasShow(true);
    QCOMPARE(m_plot->getScaleYLabel(), QString("20"));
}

void TestQwtNOXScale::differenceDecidesWhenConfigured()
{
    m_plot->devices()[0].ch[0].diffQwtIndex = 0;
    m_plot->devices()[0].ch[0].diffCh = 1;
    m_plot->setChScaleY(oneTenth);
    add(500, 1, 1);
    add(503, 2, 0);
    QVERIFY(shows(QwtPlot::yLeft, 2.5, 3.5));
}

void TestQwtNOXScale::otherModesLeaveTheAxes()
{
    add(20, 0);
    for (const TmcMode mode : {ModeZoom, ModeMeasure, ModeScroll}) {
        m_plot->setChMode(mode);
        const double upperX = upper(QwtPlot::xBottom);
        add(500, upperX + 1000);
        QCOMPARE(upper(QwtPlot::xBottom), upperX);
    }
    m_plot->setChMode(ModeLimits);
    QVERIFY(upper(QwtPlot::xBottom) > 1000);
}

void TestQwtNOXScale::otherChannelsLeaveTheAxes()
{
    add(20, 0);
    add(500, 5000, 1);
    m_plot->addPoint(500, 5000, "°С", 1, 0);
    QVERIFY(shows(QwtPlot::xBottom, 0, 10));
}

void TestQwtNOXScale::choosingScalesSetsTheMode()
{
    m_plot->setChScaleY(oneTenth);
    QCOMPARE(m_plot->getChModeLabel(), QString("СЛЕЖЕНИЕ"));
    m_plot->changeScaleX(0);
    QCOMPARE(m_plot->getChMode(), ModeFollow);
    m_plot->changeScaleY(0);
    QCOMPARE(m_plot->getChModeLabel(), QString("АВТО"));
    m_plot->changeMode(ModeMeasure);
    m_plot->setChScaleX(oneMinute);
    QCOMPARE(m_plot->getChMode(), ModeFollow);
    QCOMPARE(m_plot->getScaleXLabel(), QString("1 мин."));
}

void TestQwtNOXScale::choosingScalesAnnounces()
{
    m_plot->setChScaleX(oneMinute);
    QCOMPARE(m_log->take(), QStringList({"onChange 0", "onChModeChange 0 0 1", "onChange 0",
                                         "onChScaleXChange 0 0 7"}));
    m_plot->changeModeX(ModeXAbsolute);
    m_plot->changeModeX(ModeXAbsolute);
    QCOMPARE(m_log->take(), QStringList({"onChange 0", "onChModeXChange 0 0 2"}));
    m_plot->setChMode(ModeScroll);
    m_log->take();
    m_plot->setChScaleY(oneTenth);
    QCOMPARE(m_log->take(), QStringList({"onChange 0", "onChScaleYChange 0 0 16"}));
}

void TestQwtNOXScale::freeViewIsRecentred()
{
    for (int second = 0; second <= 400; ++second)
        add(20 + second * 0.001, second);
    m_plot->setChMode(ModeScroll);
    QVERIFY(shows(QwtPlot::xBottom, 0, 600)); // middle 300
    m_plot->setChScaleX(4);
    QVERIFY(shows(QwtPlot::xBottom, 250, 350));
    m_plot->setChScaleX(9);
    QVERIFY(shows(QwtPlot::xBottom, 0, 3000)); // -1200 to 1800, moved to begin at 0
    const double middle = (lower(QwtPlot::yLeft) + upper(QwtPlot::yLeft)) / 2;
    m_plot->setChScaleY(19);
    QVERIFY(shows(QwtPlot::yLeft, middle - 5, middle + 5));
    QCOMPARE(int(m_plot->getPrecision()), 0);
    QCOMPARE(int(m_plot->getChScaleX()), 0);
    QCOMPARE(int(m_plot->getChScaleY()), 0);
    QCOMPARE(m_plot->getScaleYLabel(), QString("1"));

    m_plot->setChScaleX(9); // the scale in effect is taken for good
    QCOMPARE(int(m_plot->getChScaleX()), 9);
    QCOMPARE(m_plot->getChMode(), ModeFollow);
}

void TestQwtNOXScale::automaticInAFreeViewKeepsTheAxis()
{
    add(20, 0);
    m_plot->setChMode(ModeZoom);
    m_plot->setChScaleX(0);
    m_plot->setChScaleY(0);
    QVERIFY(shows(QwtPlot::xBottom, 0, 10));
    QVERIFY(step(QwtPlot::xBottom) > 0 && step(QwtPlot::yLeft) > 0);
}

void TestQwtNOXScale::scaleBeyondTheTableIsIgnored()
{
    m_plot->setChScaleX(19);
    m_plot->setChScaleY(30);
    m_plot->changeScaleX(-1);
    m_plot->changeScaleY(256 + 5);
    m_plot->changeMode(6);
    m_plot->changeModeX(-1);
    m_plot->calcPrecision(30);
    QCOMPARE(m_log->take(), QStringList());
    QCOMPARE(int(m_plot->getChScaleX(9, 0)), 0);
    QCOMPARE(m_plot->getChModeX(9, 0), ModeXSeconds);
}

void TestQwtNOXScale::otherInstrumentsScalesStayTheirOwn()
{
    m_plot->setChScaleX(oneMinute);
    m_plot->setChMode(ModeZoom);
    m_plot->setChScaleX(3, 1, 1);
    QCOMPARE(int(m_plot->getChScaleX(1, 1)), 3);
    QCOMPARE(m_plot->getScaleXLabel(), QString("1 мин."));
    m_plot->setChModeX(ModeXRelative, 1, 1);
    QCOMPARE(m_plot->axisScaleDraw(QwtPlot::xBottom)->label(70).text(), QString("70"));
}

void TestQwtNOXScale::labelsTheTimeAxis_data()
{
    QTest::addColumn<int>("modeX");
    QTest::addColumn<int>("scaleX");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("seconds") << 0 << 7 << 90000.0 << "90000";
    QTest::newRow("relative") << 1 << 7 << 90000.0 << "02 01:00";
    QTest::newRow("relative with seconds") << 1 << 6 << 90.0 << "00:01:30";
    QTest::newRow("absolute today") << 2 << 7 << 600.0 << "23:10";
    QTest::newRow("absolute tomorrow") << 2 << 7 << 3660.0 << "02.03.26 00:01";
    QTest::newRow("absolute with seconds") << 2 << 1 << 5.0 << "23:00:05";
}

void TestQwtNOXScale::labelsTheTimeAxis()
{
    QFETCH(int, modeX);
    QFETCH(int, scaleX);
    QFETCH(double, value);
    add(20, 0);
    m_plot->changeModeX(modeX);
    m_plot->changeScaleX(scaleX);
    QTEST(m_plot->axisScaleDraw(QwtPlot::xBottom)->label(value).text(), "text");
    QCOMPARE(m_plot->getChModeXLabel(), QStringList({"СЕК", "ОТН", "АБС"})[modeX]);
}

void TestQwtNOXScale::labelsChangeWithTheDay()
{
    m_plot->changeModeX(ModeXAbsolute);
    m_plot->changeScaleX(oneMinute);
    m_now = m_now.addSecs(3600);
    add(20, 3600);
    QTest::qWait(100); // one frame
    QCOMPARE(m_plot->axisScaleDraw(QwtPlot::xBottom)->label(0).text(), QString("01.03.26 23:00"));
    QCOMPARE(m_plot->axisScaleDraw(QwtPlot::xBottom)->label(3600).text(), QString("00:00"));
}

void TestQwtNOXScale::labelsTheValueAxisByPrecision()
{
    m_plot->setChScaleY(oneTenth);
    QCOMPARE(m_plot->axisScaleDraw(QwtPlot::yLeft)->label(20).text(), QString("20.0"));
    const auto width = [this] {
        return m_plot->axisScaleDraw(QwtPlot::yLeft)->extent(m_plot->axisFont(QwtPlot::yLeft));
    };
    const double withOneDecimal = width();
    m_plot->setChScaleY(10); // without points the axis stays, its labels do not
    QCOMPARE(m_plot->axisScaleDraw(QwtPlot::yLeft)->label(20).text(), QString("20.000"));
    QVERIFY(width() > withOneDecimal);
}

void TestQwtNOXScale::canvasStaysWhileDigitsChange()
{
    const auto extent = [this] { return m_plot->axisScaleDraw(QwtPlot::yLeft)->minimumExtent(); };
    m_plot->setChScaleY(oneTenth);
    add(12, 0);
    const double twoDigits = extent();
    add(8, 1); // labels lose a digit
    QCOMPARE(extent(), twoDigits);
    add(-1234, 2);
    const double fourDigits = extent();
    QVERIFY(fourDigits > twoDigits);
    add(8, 3); // far shorter labels give the room back
    QVERIFY(extent() < fourDigits);
}

void TestQwtNOXScale::captionNamesChannelAndScales()
{
    const auto items = m_plot->itemList(QwtPlotItem::Rtti_PlotTextLabel);
    QCOMPARE(items.size(), 1);
    const auto *caption = static_cast<const QwtPlotTextLabel *>(items.first());
    m_plot->addPoint(20, 1, "Ом", 0, 1);
    m_plot->setChMain(1);
    m_plot->setChScaleX(oneMinute);
    QCOMPARE(caption->text().text(), QString("Кн. № 2 [Ом], dX: 1 мин., dY: 0.000001"));
    QCOMPARE(caption->text().font().pointSize(), 15);
    const QRectF narrow(0, 0, 380, 300); // a canvas on which one line has no room
    QVERIFY(caption->text().textSize().width() > narrow.width());
    QVERIFY(narrow.contains(caption->textRect(narrow, caption->text().textSize())));
    m_plot->removeDev(0);
    QCOMPARE(caption->text().text(), QString());
}

void TestQwtNOXScale::stepsBackInTimeAreShown()
{
    m_plot->setChScaleX(1);
    add(20, 5000);
    QVERIFY(shows(QwtPlot::xBottom, 4990, 5000));
    add(21, 100);
    QVERIFY(shows(QwtPlot::xBottom, 90, 100));
    add(22, 101);
    QVERIFY(shows(QwtPlot::xBottom, 91, 101));
    m_plot->setChScaleX(0);
    QCOMPARE(m_plot->getChMode(), ModeAuto);
    m_plot->clear();
    add(0, 5000);
    add(500, 5001);
    const QwtInterval values = m_plot->axisInterval(QwtPlot::yLeft);
    add(22, 100); // left of what is in view
    QCOMPARE(m_plot->axisInterval(QwtPlot::yLeft), values);
    QCOMPARE(m_plot->getScaleYLabel(), QString("100"));
    QCOMPARE(int(m_plot->getPrecision()), 0);
}

void TestQwtNOXScale::hugeValuesLeaveAUsableAxis()
{
    for (const double value : {1.7e308, 1.7e308, 20.0, 1e17, 20.0, 1e300}) {
        add(value, m_plot->getChTime() + 1e15);
        m_plot->replot();
        for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
            QVERIFY(std::isfinite(lower(axis)) && lower(axis) < upper(axis));
            QVERIFY(m_plot->axisScaleDiv(axis).ticks(QwtScaleDiv::MajorTick).size() < 20);
        }
    }
    m_plot->setChScaleY(oneTenth);
    add(20, m_plot->getChTime() + 1);
    QVERIFY(shows(QwtPlot::yLeft, 19.5, 20.5));
}

void TestQwtNOXScale::anyInputLeavesUsableAxes()
{
    std::mt19937 chance(11);
    const auto below = [&chance](int end) { return int(chance() % unsigned(end)); };
    const double values[] = {20, -1299.9, -1300, 1e-300, 1e12, 1.7e308, qInf(), qQNaN()};
    const double times[] = {0, 0.001, 86399, 3.2e7, 1e15, -1, qInf(), qQNaN()};
    for (int i = 0; i < 5000; ++i) {
        switch (below(8)) {
        case 0:
            m_plot->setChScaleX(uchar(below(19)));
            break;
        case 1:
            m_plot->setChScaleY(uchar(below(30)));
            break;
        case 2:
            m_plot->setChMode(TmcMode(below(6)));
            break;
        case 3:
            m_plot->setZoomScale({times[below(8)], values[below(8)], times[below(8)], 1});
            break;
        default:
            add(values[below(8)], times[below(8)], uchar(below(2)));
        }
        for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
            const QwtInterval shown = m_plot->axisInterval(axis);
            QVERIFY(qIsFinite(shown.minValue()) && qIsFinite(shown.maxValue()));
            QVERIFY(shown.minValue() < shown.maxValue() && step(axis) > 0);
        }
        QVERIFY(!m_plot->getScaleXLabel().isEmpty() && !m_plot->pointText({1, 1}).contains("nan"));
    }
    QVERIFY(!m_plot->grab().isNull());
}

void TestQwtNOXScale::paintingWaitsForTheFrame()
{
    struct PaintCounter : QObject {
        int paints = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
    } counter;
    m_plot->resize(600, 400);
    m_plot->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_plot.get()));
    QTest::qWait(100);
    m_plot->canvas()->installEventFilter(&counter);
    for (int second = 0; second < 50; ++second)
        add(20 + second, second);          // all within a moment
    QVERIFY(upper(QwtPlot::xBottom) > 50); // what is shown is decided at once
    QTest::qWait(200);
    QVERIFY2(counter.paints >= 1 && counter.paints <= 3,
             qPrintable(QString::number(counter.paints)));
}

QTEST_MAIN(TestQwtNOXScale)
#include "tst_qwtnox_scale.moc"
