#include "plot/qwtnoxqwtplotpicker.h"
#include "plotmouse.h"

#include <QClipboard>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

// Measuring between two points, reading single ones, and copying what was read.

Q_DECLARE_METATYPE(std::function<void(PlotOnScreen &)>)
Q_DECLARE_METATYPE(std::function<void(QwtNOX &)>)

class TestQwtNOXMeasure : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void clickBeginsAMeasurement_data();
    void clickBeginsAMeasurement();
    void pointsAreOrdered_data();
    void pointsAreOrdered();
    void writesTimes_data();
    void writesTimes();
    void textsFollowTheLabelsOfTheAxis();
    void writesStatistics_data();
    void writesStatistics();
    void writesStatisticsOfTheDifference();
    void copiesWhatIsShown_data();
    void copiesWhatIsShown();
    void clicksOnFramesMeanNothingElse();
    void framesStandBesideTheirPoints_data();
    void framesStandBesideTheirPoints();
    void framesFollowTheAxes_data();
    void framesFollowTheAxes();
    void rightClickClearsThenLeaves();
    void modesEndTheMeasurement_data();
    void modesEndTheMeasurement();
    void crossHairReadsTimeAndValue_data();
    void crossHairReadsTimeAndValue();
    void lostInstrumentLeavesNothingBehind_data();
    void lostInstrumentLeavesNothingBehind();
    void instrumentLostAtTheFirstPoint();

private:
    void measure(double x1, double x2)
    {
        m_screen->plot.setMeasPoint({x1, 20});
        m_screen->plot.setMeasPoint({x2, 20.6});
    }
    bool isSeen(const char *frame) const { return m_screen->frame(frame)->isVisible(); }
    /** The frame stands right below the place, or on the other side of it. */
    bool standsBeside(const char *name, const QPoint &onCanvas, bool isRight, bool isBelow) const
    {
        const QRect frame = m_screen->frame(name)->geometry();
        const int x = onCanvas.x() + m_screen->plot.axisWidget(QwtPlot::yLeft)->width();
        const int y = onCanvas.y();
        return frame.x() == (isRight ? x + 10 : x - frame.width() - 10) &&
               frame.y() == (isBelow ? y + 10 : y - frame.height() - 10);
    }

    std::unique_ptr<PlotOnScreen> m_screen;
};

void TestQwtNOXMeasure::init()
{
    m_screen = std::make_unique<PlotOnScreen>();
    QVERIFY(m_screen->mouse.isReady());
    m_screen->addRamp(65); // 0 to 100 s, in steps of 0.1 °С
}

void TestQwtNOXMeasure::cleanup()
{
    m_screen.reset();
}

void TestQwtNOXMeasure::clickBeginsAMeasurement_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("begins");
    QTest::newRow("automatic") << int(ModeAuto) << true;
    QTest::newRow("following") << int(ModeFollow) << true;
    QTest::newRow("zoom: a click is no rectangle") << int(ModeZoom) << true;
    QTest::newRow("limits") << int(ModeLimits) << false;
}

void TestQwtNOXMeasure::clickBeginsAMeasurement()
{
    QFETCH(int, mode);
    QFETCH(bool, begins);
    m_screen->plot.changeMode(mode);
    const QPoint at = m_screen->mouse.pixel(30, 20.3);
    const QPointF point = m_screen->mouse.point(at);
    m_screen->mouse.click(at);
    QCOMPARE(int(m_screen->plot.getChMode()), begins ? int(ModeMeasure) : mode);
    QCOMPARE(m_screen->crosses().size(), begins ? 1 : 0);
    QCOMPARE(isSeen("pointFrame"), begins);
    QVERIFY(!isSeen("measurementFrame"));
    if (!begins)
        return;
    QCOMPARE(m_screen->crosses().first(), point);
    QCOMPARE(m_screen->text("pointX"), QString::number(point.x(), 'f', 1));
    QCOMPARE(m_screen->text("pointY"), QString::number(point.y(), 'f', 2));
}

void TestQwtNOXMeasure::pointsAreOrdered_data()
{
    QTest::addColumn<QVector<double>>("clicks");
    QTest::addColumn<QVector<double>>("crosses");
    QTest::addColumn<bool>("firstPointIsShown");
    using Times = QVector<double>;
    QTest::newRow("second to the right") << Times{30, 50} << Times{30, 50} << true;
    QTest::newRow("second to the left") << Times{30, 10} << Times{10, 30} << true;
    QTest::newRow("third on the right takes the second's place")
        << Times{30, 50, 40} << Times{30, 40} << true;
    QTest::newRow("third on the left makes the first the second")
        << Times{30, 50, 20} << Times{20, 30} << true;
    QTest::newRow("third takes the place of the point that was first")
        << Times{30, 10, 20} << Times{10, 20} << false;
}

void TestQwtNOXMeasure::pointsAreOrdered()
{
    QFETCH(QVector<double>, clicks);
    QFETCH(QVector<double>, crosses);
    const auto value = [&](double time) { // above the frames, which stand below the point before
        return 20.6 + 0.01 * clicks.indexOf(time);
    };
    for (const double time : clicks)
        m_screen->mouse.click(m_screen->mouse.pixel(time, value(time)));
    const QVector<QPointF> seen = m_screen->crosses();
    QCOMPARE(seen.size(), 2);
    for (int i = 0; i < 2; ++i) { // as near as a pixel is
        QVERIFY(std::abs(seen[i].x() - crosses[i]) < 0.1);
        QVERIFY(std::abs(seen[i].y() - value(crosses[i])) < 0.002);
    }
    QVERIFY(isSeen("measurementFrame"));
    QTEST(isSeen("pointFrame"), "firstPointIsShown");
    QCOMPARE(m_screen->text("measurementX1"), QString::number(seen[0].x(), 'f', 1));
    QCOMPARE(m_screen->text("measurementX2"), QString::number(seen[1].x(), 'f', 1));
    QCOMPARE(m_screen->text("measurementDeltaX"),
             QString::number(seen[1].x() - seen[0].x(), 'f', 1));
    QCOMPARE(m_screen->text("measurementY1"), QString::number(seen[0].y(), 'f', 2));
    QCOMPARE(m_screen->text("measurementY2"), QString::number(seen[1].y(), 'f', 2));
    QCOMPARE(m_screen->text("measurementDeltaY"),
             QString::number(seen[1].y() - seen[0].y(), 'f', 2));
}

void TestQwtNOXMeasure::writesTimes_data()
{
    QTest::addColumn<int>("modeX");
    QTest::addColumn<double>("step");
    QTest::addColumn<int>("daysSinceStart");
    QTest::addColumn<double>("x1");
    QTest::addColumn<double>("x2");
    QTest::addColumn<QStringList>("texts");
    using Texts = QStringList;
    QTest::newRow("seconds") << int(ModeXSeconds) << 1.0 << 0 << 12.34 << 47.06
                             << Texts{"12.3", "47.1", "34.7"};
    QTest::newRow("duration in seconds") << int(ModeXRelative) << 30.0 << 0 << 60.9 << 3725.0
                                         << Texts{"00:01:00", "01:02:05", "01:01:04"};
    QTest::newRow("duration of more than a day: all with their day")
        << int(ModeXRelative) << 3600.0 << 0 << 3600.0 << 90000.0
        << Texts{"01 01:00", "02 01:00", "02 00:00"};
    QTest::newRow("moments of today")
        << int(ModeXAbsolute) << 60.0 << 0 << 60.0 << 180.0 << Texts{"23:01", "23:03", "00:02"};
    QTest::newRow("moments around midnight: both with their date")
        << int(ModeXAbsolute) << 60.0 << 0 << 60.0 << 3660.0
        << Texts{"01.03.26 23:01", "02.03.26 00:01", "01:00"};
    QTest::newRow("moments of yesterday") << int(ModeXAbsolute) << 60.0 << 1 << 60.0 << 180.0
                                          << Texts{"01.03.26 23:01", "01.03.26 23:03", "00:02"};
}

void TestQwtNOXMeasure::writesTimes()
{
    QFETCH(int, modeX);
    QFETCH(double, step);
    QFETCH(int, daysSinceStart);
    QFETCH(double, x1);
    QFETCH(double, x2);
    m_screen->now = m_screen->now.addDays(daysSinceStart);
    m_screen->plot.changeModeX(modeX);
    m_screen->plot.setChMode(ModeMeasure);
    m_screen->plot.setAxisScale(QwtPlot::xBottom, 0, 10 * step, step);
    m_screen->plot.updateAxes();
    measure(x1, x2);
    QTEST(QStringList({m_screen->text("measurementX1"), m_screen->text("measurementX2"),
                       m_screen->text("measurementDeltaX")}),
          "texts");
}

void TestQwtNOXMeasure::textsFollowTheLabelsOfTheAxis()
{
    measure(30, 50);
    m_screen->plot.changeModeX(ModeXRelative);
    QCOMPARE(m_screen->text("pointX"), QString("00:00:30"));
    QCOMPARE(m_screen->text("measurementX2"), QString("00:00:50"));
    QCOMPARE(m_screen->text("measurementDeltaX"), QString("00:00:20"));
    m_screen->plot.changeMode(ModeFollow);
    m_screen->plot.changeModeX(ModeXSeconds);
    QVERIFY(!isSeen("pointFrame") && !isSeen("measurementFrame"));
}

void TestQwtNOXMeasure::writesStatistics_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<double>("x1");
    QTest::addColumn<double>("x2");
    QTest::addColumn<QStringList>("texts"); // count, mean, deviation
    using Texts = QStringList;
    QTest::newRow("two of five") << 5 << 0.5 << 2.5 << Texts{"2", "3.000", "1.4142"};
    QTest::newRow("the newest does not") << 5 << 0.5 << 10.0 << Texts{"3", "4.667", "3.0551"};
    QTest::newRow("a single one has no deviation") << 5 << 0.5 << 1.5 << Texts{"1", "2.000", "--"};
    QTest::newRow("none between") << 5 << 1.2 << 1.8 << Texts{"0", "--", "--"};
    QTest::newRow("a series of one point") << 1 << -1.0 << 9.0 << Texts{"0", "--", "--"};
    QTest::newRow("no points") << 0 << 0.0 << 9.0 << Texts{"0", "--", "--"};
}

void TestQwtNOXMeasure::writesStatistics()
{
    QFETCH(int, points);
    QFETCH(double, x1);
    QFETCH(double, x2);
    m_screen->plot.clear();
    for (int second = 0; second < points; ++second)
        m_screen->add(1 << second, second); // 1, 2, 4, 8, 16
    m_screen->plot.setChMode(ModeMeasure);
    m_screen->plot.calcPrecision(13); // steps of 0.01
    measure(x1, x2);
    QTEST(QStringList({m_screen->text("measurementCount"), m_screen->text("measurementMean"),
                       m_screen->text("measurementDeviation")}),
          "texts");
}

void TestQwtNOXMeasure::writesStatisticsOfTheDifference()
{
    m_screen->plot.clear();
    for (int second = 0; second <= 3; ++second) {
        m_screen->add(5, second + 0.1, 1, 1);
        m_screen->add(7 + 2 * second, second + 0.5);
    }
    m_screen->plot.setChDiff(1, 1, 0, 0); // 2, 4, 6 and 8, against the channel as it is now
    m_screen->plot.setChMode(ModeMeasure);
    m_screen->plot.calcPrecision(13);
    measure(0, 10);
    QCOMPARE(m_screen->text("measurementCount"), QString("3"));
    QCOMPARE(m_screen->text("measurementMean"), QString("4.000"));
    QCOMPARE(m_screen->text("measurementDeviation"), QString("2.0000"));
}

void TestQwtNOXMeasure::copiesWhatIsShown_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"pointX", "pointY", "measurementX1", "measurementY1", "measurementX2",
                             "measurementY2", "measurementDeltaX", "measurementDeltaY",
                             "measurementMean", "measurementDeviation", "measurementCount"})
        QTest::newRow(name) << name;
}

void TestQwtNOXMeasure::copiesWhatIsShown()
{
    QFETCH(QString, name);
    const bool ofPoint = name.startsWith("point");
    measure(80, 10);
    m_screen->plot.addMeasPointFirst({30, 20.3}, {500, 400}); // clear of the other frame
    auto *label = m_screen->plot.findChild<QLabel *>(name);
    QVERIFY(!label->text().isEmpty());
    QCOMPARE(label->cursor().shape(), Qt::PointingHandCursor);
    QGuiApplication::clipboard()->setText("before");
    QTest::qWait(0); // lays the frames out
    m_screen->mouse.clickOn(label);
    QCOMPARE(QGuiApplication::clipboard()->text(), label->text());
    for (const QLabel *other : m_screen->plot.findChildren<QLabel *>())
        QCOMPARE(other->styleSheet(), QString(other == label ? "color: blue" : ""));
    QCOMPARE(m_screen->crosses().size(), 2);

    if (ofPoint)
        m_screen->plot.addMeasPointFirst({40, 20.4}, {500, 400});
    else
        m_screen->plot.setMeasPoint({50, 20});
    QCOMPARE(label->styleSheet(), QString());
}

void TestQwtNOXMeasure::clicksOnFramesMeanNothingElse()
{
    measure(30, 10);
    QTest::qWait(0);
    const QVector<QPointF> crosses = m_screen->crosses();
    const QWidget *frame = m_screen->frame("measurementFrame");
    const QPoint corner =
        m_screen->plot.canvas()->mapFrom(&m_screen->plot, frame->pos() + QPoint(3, 3));
    for (const TmcMode mode : {ModeMeasure, ModeZoom}) {
        m_screen->plot.setChMode(mode);
        m_screen->mouse.click(corner);
        m_screen->mouse.clickOn(m_screen->label("measurementMean"));
        QCOMPARE(m_screen->plot.getChMode(), mode);
        QCOMPARE(m_screen->crosses(), crosses);
    }
    QPoint beside = m_screen->label("measurementCount")->mapTo(&m_screen->plot, QPoint(-4, 4));
    beside = m_screen->plot.canvas()->mapFrom(&m_screen->plot, beside);
    m_screen->plot.setChMode(ModeMeasure);
    m_screen->mouse.click(beside);
    m_screen->mouse.click(beside + QPoint(6, 0), Qt::RightButton); // copies: it is a value
    QCOMPARE(QGuiApplication::clipboard()->text(), m_screen->text("measurementCount"));
    QCOMPARE(m_screen->crosses(), crosses);
}

void TestQwtNOXMeasure::framesStandBesideTheirPoints_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("isRight");
    QTest::addColumn<bool>("isBelow");
    QTest::newRow("top left") << QPointF(5, 20.6) << true << true;
    QTest::newRow("top right") << QPointF(95, 20.6) << false << true;
    QTest::newRow("bottom left") << QPointF(5, 19.8) << true << false;
    QTest::newRow("bottom right") << QPointF(95, 19.8) << false << false;
}

void TestQwtNOXMeasure::framesStandBesideTheirPoints()
{
    QFETCH(QPointF, point);
    QFETCH(bool, isRight);
    QFETCH(bool, isBelow);
    const QPoint at = m_screen->mouse.pixel(point.x(), point.y());
    m_screen->mouse.click(at);
    QVERIFY(standsBeside("pointFrame", at, isRight, isBelow));
    m_screen->mouse.click(at + QPoint(1, 1));
    QVERIFY(standsBeside("measurementFrame", at + QPoint(1, 1), isRight, isBelow));
    const QPoint topCentre(m_screen->mouse.middle().x(), 5); // clear of the frames
    m_screen->mouse.click(topCentre);
    QVERIFY(standsBeside("measurementFrame", topCentre, false, true));

    m_screen->plot.calcPrecision(1); // seven decimals
    m_screen->plot.setMeasPoint(point);
    const QWidget *frame = m_screen->frame("measurementFrame");
    QCOMPARE(frame->size(), frame->sizeHint());
    QVERIFY(standsBeside("measurementFrame", at, isRight, isBelow));
}

void TestQwtNOXMeasure::framesFollowTheAxes_data()
{
    using Change = std::function<void(PlotOnScreen &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("zoom") << Change(
        [](PlotOnScreen &screen) { screen.mouse.wheel(screen.mouse.pixel(45, 20.35), true); });
    QTest::newRow("scale choice after panning") << Change([](PlotOnScreen &screen) {
        screen.plot.setChMode(ModeScroll);
        screen.plot.changeScaleX(6);
        screen.plot.changeScaleY(20);
    });
    QTest::newRow("panning across the middle") << Change([](PlotOnScreen &screen) {
        const QPoint middle = screen.mouse.middle();
        screen.mouse.drag(middle - QPoint(0, 150), middle + QPoint(-50, 50), Qt::RightButton);
    });
    QTest::newRow("points that arrive in the limits mode") << Change([](PlotOnScreen &screen) {
        screen.plot.setChMode(ModeLimits);
        for (int second = 66; second < 200; second += 10)
            screen.add(21, second);
    });
    QTest::newRow("resize") << Change([](PlotOnScreen &screen) { screen.plot.resize(600, 380); });
    QTest::newRow("longer labels") << Change([](PlotOnScreen &screen) {
        screen.plot.setAxisScale(QwtPlot::yLeft, -1e6, 2e6, 2e5);
        screen.plot.replot();
    });
}

void TestQwtNOXMeasure::framesFollowTheAxes()
{
    QFETCH(std::function<void(PlotOnScreen &)>, change);
    PlotMouse &mouse = m_screen->mouse;
    mouse.click(mouse.pixel(40, 20.3));
    mouse.click(mouse.pixel(48, 20.4));
    const QVector<QPointF> crosses = m_screen->crosses();
    change(*m_screen);
    const auto followed = [&](const char *frame, const QPointF &point) {
        const QPoint at = mouse.pixel(point.x(), point.y());
        const QWidget *canvas = m_screen->plot.canvas();
        const int axis = m_screen->plot.axisWidget(QwtPlot::yLeft)->width();
        return standsBeside(frame, at, at.x() + axis <= canvas->width() / 2,
                            at.y() <= canvas->height() / 2);
    };
    QTRY_VERIFY_WITH_TIMEOUT(followed("pointFrame", crosses[0]), 1000);
    QTRY_VERIFY_WITH_TIMEOUT(followed("measurementFrame", crosses[1]), 1000);
    QVERIFY(isSeen("pointFrame") && isSeen("measurementFrame"));
}

void TestQwtNOXMeasure::rightClickClearsThenLeaves()
{
    PlotMouse &mouse = m_screen->mouse;
    for (const int points : {1, 2}) {
        for (int i = 0; i < points; ++i)
            mouse.click(mouse.pixel(30 + 20 * i, 20.3));
        mouse.click(mouse.middle(), Qt::RightButton);
        QCOMPARE(m_screen->plot.getChMode(), ModeMeasure);
        QCOMPARE(m_screen->crosses().size(), 0);
        QCOMPARE(static_cast<QwtPlotMarker *>(m_screen->anyCross())->value(), QPointF());
        QVERIFY(!isSeen("pointFrame") && !isSeen("measurementFrame"));
        mouse.click(mouse.middle(), Qt::RightButton);
        QCOMPARE(m_screen->plot.getChMode(), ModeFollow);
    }
}

void TestQwtNOXMeasure::modesEndTheMeasurement_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("ends");
    QTest::newRow("automatic") << int(ModeAuto) << true;
    QTest::newRow("following") << int(ModeFollow) << true;
    QTest::newRow("zoom") << int(ModeZoom) << false;
    QTest::newRow("panning") << int(ModeScroll) << false;
}

void TestQwtNOXMeasure::modesEndTheMeasurement()
{
    QFETCH(int, mode);
    QFETCH(bool, ends);
    PlotMouse &mouse = m_screen->mouse;
    mouse.click(mouse.pixel(30, 20.3));
    mouse.click(mouse.pixel(50, 20.3));
    mouse.pull(mouse.pixel(60, 20.3), mouse.pixel(70, 20.3)); // a third one is under way
    m_screen->plot.changeMode(mode);
    mouse.release(mouse.pixel(70, 20.3));
    QCOMPARE(m_screen->crosses().size(), ends ? 0 : 2);
    QCOMPARE(isSeen("measurementFrame"), !ends);
    QCOMPARE(isSeen("pointFrame"), !ends);
    QCOMPARE(int(m_screen->plot.getChMode()), mode);
}

void TestQwtNOXMeasure::crossHairReadsTimeAndValue_data()
{
    QTest::addColumn<int>("modeX");
    QTest::addColumn<double>("time");
    QTest::addColumn<QString>("text");
    QTest::newRow("seconds") << int(ModeXSeconds) << 61.26 << "61.3, 20.13";
    QTest::newRow("duration") << int(ModeXRelative) << 61.9 << "00:01:01, 20.13";
    QTest::newRow("duration of more than a day")
        << int(ModeXRelative) << 90000.0 << "02 01:00:00, 20.13";
    QTest::newRow("moment of today") << int(ModeXAbsolute) << 61.9 << "23:01:01, 20.13";
    QTest::newRow("moment of tomorrow")
        << int(ModeXAbsolute) << 3600.0 << "02.03.26 00:00:00, 20.13";
}

void TestQwtNOXMeasure::crossHairReadsTimeAndValue()
{
    QFETCH(int, modeX);
    QFETCH(double, time);
    m_screen->plot.changeModeX(modeX);
    auto *crossHair = static_cast<QwtNoxQwtPlotPicker *>(m_screen->picker("crossHair"));
    QTEST(crossHair->trackerTextF({time, 20.134}).text(), "text");
    const QPoint at = m_screen->mouse.pixel(17, 20.2);
    m_screen->mouse.moveTo(at);
    QCOMPARE(crossHair->property("pos").toPointF(), m_screen->mouse.point(at));
    QCOMPARE(crossHair->trackerPosition(), at);
}

void TestQwtNOXMeasure::lostInstrumentLeavesNothingBehind_data()
{
    using Change = std::function<void(QwtNOX &)>;
    QTest::addColumn<Change>("lose");
    QTest::newRow("it is removed") << Change([](QwtNOX &plot) { plot.removeDev(0); });
    QTest::newRow("it loses its channels") << Change([](QwtNOX &plot) { plot.setChCount(0, 0); });
    QTest::newRow("one without channels takes its place") << Change([](QwtNOX &plot) {
        plot.addDev(7, 0);
        plot.setDevMain(7);
    });
}

void TestQwtNOXMeasure::lostInstrumentLeavesNothingBehind()
{
    QFETCH(std::function<void(QwtNOX &)>, lose);
    for (const TmcMode mode : {ModeMeasure, ModeZoom, ModeScroll, ModeLimits}) {
        init(); // another plot
        PlotOnScreen &screen = *m_screen;
        measure(30, 50);
        screen.plot.setChMode(mode);
        screen.mouse.pull({100, 100}, {300, 200});
        lose(screen.plot);
        screen.mouse.moveTo({310, 210});
        screen.mouse.release({310, 210});
        screen.mouse.click({300, 300});
        screen.mouse.wheel({300, 300}, true);
        screen.mouse.drag({300, 300}, {400, 300}, Qt::RightButton);
        QCOMPARE(screen.crosses().size(), 0);
        QVERIFY(!isSeen("pointFrame") && !isSeen("measurementFrame"));
        QCOMPARE(screen.plot.getChModeX(), ModeXSeconds);

        screen.plot.setChCount(1, screen.plot.getDevMain()); // the first channel comes
        if (screen.plot.getDevMain() < 0)
            continue;
        screen.mouse.click({300, 300});
        QCOMPARE(screen.plot.getChMode(), ModeMeasure);
        QCOMPARE(screen.crosses().size(), 1);
    }
}

void TestQwtNOXMeasure::instrumentLostAtTheFirstPoint()
{
    connect(&m_screen->plot, &QwtNOX::onChModeChange, &m_screen->plot,
            [this] { m_screen->plot.removeDev(0); });
    m_screen->mouse.click(m_screen->mouse.middle());
    QVERIFY(!isSeen("pointFrame"));
    QVERIFY(m_screen->crosses().isEmpty());
}

QTEST_MAIN(TestQwtNOXMeasure)
#include "tst_qwtnox_measure.moc"
