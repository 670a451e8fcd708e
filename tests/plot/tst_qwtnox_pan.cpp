#include "plotmouse.h"
#include "signallog.h"

// Panning with the right button.

class TestQwtNOXPan : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void shortWayIsNoDrag_data();
    void shortWayIsNoDrag();
    void viewFollowsTheCursor_data();
    void viewFollowsTheCursor();
    void modeStaysUntilARightClick();
    void viewStaysWhileItIsNotDragged();
    void neverShowsTimesBelowZero();
    void otherButtonsDoNotPan_data();
    void otherButtonsDoNotPan();
    void pannedViewIsZoomedAndScaledAroundItsMiddle();

private:
    std::unique_ptr<PlotOnScreen> m_screen;
};

void TestQwtNOXPan::init()
{
    m_screen = std::make_unique<PlotOnScreen>();
    QVERIFY(m_screen->mouse.isReady());
    m_screen->addRamp(65);
    m_screen->plot.setZoomScale({200, 20, 90, 0.5}); // away from 0: room to both sides
}

void TestQwtNOXPan::cleanup()
{
    m_screen.reset();
}

void TestQwtNOXPan::shortWayIsNoDrag_data()
{
    QTest::addColumn<QPoint>("way");
    QTest::addColumn<bool>("pans");
    QTest::newRow("10 to the right") << QPoint(10, 0) << false;
    QTest::newRow("10 up and 10 to the left") << QPoint(-10, -10) << false;
    QTest::newRow("11 to the left") << QPoint(-11, 0) << true;
    QTest::newRow("11 down, 3 aside") << QPoint(3, 11) << true;
}

void TestQwtNOXPan::shortWayIsNoDrag()
{
    QFETCH(QPoint, way);
    QFETCH(bool, pans);
    const double before = m_screen->lower(QwtPlot::xBottom);
    const QPoint start = m_screen->mouse.middle();
    m_screen->mouse.pull(start, start + way, Qt::RightButton);
    QCOMPARE(m_screen->plot.getChMode(), pans ? ModeScroll : ModeAuto);
    QCOMPARE(m_screen->lower(QwtPlot::xBottom), before);
}

void TestQwtNOXPan::viewFollowsTheCursor_data()
{
    QTest::addColumn<int>("mode");
    for (int mode = ModeAuto; mode <= ModeLimits; ++mode)
        QTest::addRow("from mode %d", mode) << mode;
}

void TestQwtNOXPan::viewFollowsTheCursor()
{
    QFETCH(int, mode);
    m_screen->plot.changeMode(mode);
    m_screen->plot.setZoomScale({200, 20, 90, 0.5});
    PlotMouse &mouse = m_screen->mouse;
    const QPoint start = mouse.middle();
    mouse.pull(start, start + QPoint(20, 0), Qt::RightButton); // enters the mode
    QCOMPARE(m_screen->plot.getChMode(), ModeScroll);
    const QPointF held = mouse.point(start + QPoint(20, 0));
    const QRect canvas = m_screen->plot.canvas()->geometry();
    for (const QPoint &way :
         {QPoint(30, 5), QPoint(-120, 80), QPoint(-121, -150), QPoint(900, 60)}) {
        mouse.moveTo(start + way);
        QVERIFY(std::abs(mouse.point(start + way).x() - held.x()) < 1e-6);
        QVERIFY(std::abs(mouse.point(start + way).y() - held.y()) < 1e-9);
        QCoreApplication::processEvents(); // ticks pass the edges, which stay
        QCOMPARE(m_screen->plot.canvas()->geometry(), canvas);
    }
    QCOMPARE(m_screen->step(QwtPlot::xBottom), 10.0);
    QCOMPARE(m_screen->step(QwtPlot::yLeft), 0.1);
}

void TestQwtNOXPan::modeStaysUntilARightClick()
{
    PlotMouse &mouse = m_screen->mouse;
    mouse.drag(mouse.middle(), mouse.middle() + QPoint(60, 0), Qt::RightButton);
    QCOMPARE(m_screen->plot.getChMode(), ModeScroll);
    mouse.click(mouse.middle(), Qt::RightButton);
    QCOMPARE(m_screen->plot.getChMode(), ModeFollow);
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 0, 10)); // back to the data
}

void TestQwtNOXPan::viewStaysWhileItIsNotDragged()
{
    PlotMouse &mouse = m_screen->mouse;
    mouse.drag(mouse.middle(), mouse.middle() + QPoint(60, 30), Qt::RightButton);
    const QwtInterval times = m_screen->plot.axisInterval(QwtPlot::xBottom);
    const QwtInterval values = m_screen->plot.axisInterval(QwtPlot::yLeft);
    mouse.moveTo(mouse.middle() - QPoint(100, 100)); // no button is held
    m_screen->add(900, 900);                         // no matter what arrives
    m_screen->plot.setChMode(ModeScroll);
    mouse.moveTo(mouse.middle() + QPoint(100, 100));
    QCOMPARE(m_screen->plot.axisInterval(QwtPlot::xBottom), times);
    QCOMPARE(m_screen->plot.axisInterval(QwtPlot::yLeft), values);

    // A second drag begins where it is pressed, not where the first one ended.
    const QPoint start = mouse.middle() - QPoint(100, 0);
    mouse.pull(start, start + QPoint(8, 0), Qt::RightButton);
    const QPointF held = mouse.point(start + QPoint(8, 0));
    mouse.moveTo(start + QPoint(40, 0));
    QVERIFY(std::abs(mouse.point(start + QPoint(40, 0)).x() - held.x()) < 1e-6);
}

void TestQwtNOXPan::neverShowsTimesBelowZero()
{
    PlotMouse &mouse = m_screen->mouse;
    m_screen->plot.setZoomScale({3, 20, 90, 0.5});
    const QPoint start = mouse.middle();
    mouse.pull(start, start + QPoint(11, 0), Qt::RightButton);
    for (int way = 20; way <= 300; way += 20) {
        mouse.moveTo(start + QPoint(way, 0));
        QVERIFY(m_screen->lower(QwtPlot::xBottom) >= 0);
    }
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 0, 10));

    const QPointF held = mouse.point(start + QPoint(300, 0)); // back: the view comes along at once
    mouse.moveTo(start + QPoint(280, 0));
    QVERIFY(m_screen->lower(QwtPlot::xBottom) > 0);
    QVERIFY(std::abs(mouse.point(start + QPoint(280, 0)).x() - held.x()) < 1e-6);
}

void TestQwtNOXPan::otherButtonsDoNotPan_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::newRow("left") << int(Qt::LeftButton) << int(Qt::NoButton);
    QTest::newRow("middle") << int(Qt::MiddleButton) << int(Qt::NoButton);
    QTest::newRow("left, then right") << int(Qt::LeftButton) << int(Qt::RightButton);
    QTest::newRow("right, then left") << int(Qt::RightButton) << int(Qt::LeftButton);
}

void TestQwtNOXPan::otherButtonsDoNotPan()
{
    QFETCH(int, first);
    QFETCH(int, second);
    PlotMouse &mouse = m_screen->mouse;
    m_screen->plot.setChMode(ModeScroll);
    const QwtInterval times = m_screen->plot.axisInterval(QwtPlot::xBottom);
    const QPoint start = mouse.middle();
    mouse.moveTo(start);
    mouse.press(start, Qt::MouseButton(first));
    if (second != Qt::NoButton)
        mouse.press(start, Qt::MouseButton(second));
    for (int way = 10; way <= 100; way += 10)
        mouse.moveTo(start + QPoint(way, way));
    QCOMPARE(m_screen->plot.axisInterval(QwtPlot::xBottom), times);
}

void TestQwtNOXPan::pannedViewIsZoomedAndScaledAroundItsMiddle()
{
    PlotMouse &mouse = m_screen->mouse;
    mouse.drag(mouse.middle(), mouse.middle() - QPoint(70, 0), Qt::RightButton);
    const double centre = m_screen->middle(QwtPlot::xBottom);
    SignalLog log(m_screen->plot);
    m_screen->plot.changeScaleX(5); // 15 s
    QVERIFY(m_screen->shows(QwtPlot::xBottom, centre - 75, 15));
    QCOMPARE(m_screen->plot.getChMode(), ModeScroll);
    QCOMPARE(log.take(), QStringList({"onChange 0", "onChScaleXChange 0 0 5"}));
}

QTEST_MAIN(TestQwtNOXPan)
#include "tst_qwtnox_pan.moc"
