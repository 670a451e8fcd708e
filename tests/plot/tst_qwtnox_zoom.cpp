#include "plot/scalechoice.h"
#include "plotmouse.h"
#include "signallog.h"

#include <qwt_plot_zoomer.h>

// Zooming by rectangle and by wheel.

namespace
{

constexpr int lastX = 18; // rows of the tables
constexpr int lastY = 29;

/** Rows of pixels that the edge of a rectangle at `from` has changed between its corners. */
int inkedRows(const QImage &before, const QImage &now, const QPoint &from, const QPoint &to)
{
    int inked = 0;
    for (int y = from.y() - 5; y <= from.y() + 5; ++y) {
        bool differs = false;
        for (int x = std::min(from.x(), to.x()) + 20; x < std::max(from.x(), to.x()) - 20; ++x)
            differs = differs || before.pixel(x, y) != now.pixel(x, y);
        inked += differs ? 1 : 0;
    }
    return inked;
}

} // namespace

class TestQwtNOXZoom : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void rectangleOfTheMouse();
    void showsRectangles_data();
    void showsRectangles();
    void sameRectangleWorksAgain();
    void keepsNoStack();
    void nothingJumpsToABase();
    void clicksAreNoRectangles_data();
    void clicksAreNoRectangles();
    void survivesArrivingPoints();
    void scaleChoiceKeepsTheCentre();
    void wheelMovesBothScales_data();
    void wheelMovesBothScales();
    void wheelStopsAtTheEnds_data();
    void wheelStopsAtTheEnds();
    void wheelCentresAtTheCursor();
    void wheelCentresWhileFollowingToo_data();
    void wheelCentresWhileFollowingToo();
    void wheelNeverShowsTimesBelowZero();
    void wheelWorksFromAutomaticScales_data();
    void wheelWorksFromAutomaticScales();

private:
    QwtPlotZoomer *zoomer() const
    {
        return qobject_cast<QwtPlotZoomer *>(m_screen->picker("zoomer"));
    }
    QPair<int, int> rows() const
    {
        const auto row = [](const auto &table, const QString &label) {
            return int(std::find_if(table.begin(), table.end(),
                                    [&](const auto &scale) { return scale.label == label; }) -
                       table.begin());
        };
        return {row(scalesX(), m_screen->plot.getScaleXLabel()),
                row(scalesY(), m_screen->plot.getScaleYLabel())};
    }
    /** Shows steps of these rows around 300,000 s and 20 °С, in the zoom mode. */
    void show(int rowX, int rowY)
    {
        QwtNOX &plot = m_screen->plot;
        plot.setChMode(ModeZoom);
        plot.setZoomScale({3e5, 20, 9.5 * scalesX()[rowX].step, 8 * scalesY()[rowY].step});
        QCOMPARE(rows(), qMakePair(rowX, rowY));
    }

    std::unique_ptr<PlotOnScreen> m_screen;
};

void TestQwtNOXZoom::init()
{
    m_screen = std::make_unique<PlotOnScreen>();
    QVERIFY(m_screen->mouse.isReady());
    m_screen->addRamp(65); // 0 to 100 s, in steps of 0.1 °С
}

void TestQwtNOXZoom::cleanup()
{
    m_screen.reset();
}

void TestQwtNOXZoom::rectangleOfTheMouse()
{
    PlotMouse &mouse = m_screen->mouse;
    for (const bool backwards : {false, true}) {
        m_screen->plot.setChMode(ModeAuto);
        m_screen->plot.setChMode(ModeZoom);
        QPoint from = mouse.pixel(12, 20.5);
        QPoint to = mouse.pixel(47, 20.1);
        const double left = mouse.point(from).x();
        const double pixel = mouse.point({1, 0}).x() - mouse.point({0, 0}).x();
        if (backwards)
            std::swap(from, to);
        SignalLog log(m_screen->plot);
        const QImage before = m_screen->plot.canvas()->grab().toImage();
        mouse.pull(from, to);
        QCOMPARE(inkedRows(before, m_screen->plot.canvas()->grab().toImage(), from, to), 2);
        mouse.release(to);
        QCOMPARE(m_screen->plot.getChMode(), ModeZoom);
        QCOMPARE(log.take(), QStringList("onChange 0"));
        QCOMPARE(m_screen->plot.getScaleXLabel(), QString("5 сек."));
        QCOMPARE(m_screen->plot.getScaleYLabel(), QString("0.05"));
        QVERIFY(std::abs(m_screen->lower(QwtPlot::xBottom) - left) <= 1.01 * pixel);
        QVERIFY(m_screen->shows(QwtPlot::xBottom, m_screen->lower(QwtPlot::xBottom), 5));
        QVERIFY(m_screen->shows(QwtPlot::yLeft, 20.05, 0.05)); // around 20.3
        QCOMPARE(int(m_screen->plot.getPrecision()), 2);
        QVERIFY(zoomer()->property("rect").toRectF().isValid());
        QCOMPARE(m_screen->plot.getChScaleX(), uchar(0)); // the channel keeps its choice
    }
}

void TestQwtNOXZoom::showsRectangles_data()
{
    QTest::addColumn<QRectF>("rectangle");
    QTest::addColumn<double>("fromX");
    QTest::addColumn<double>("stepX");
    QTest::addColumn<double>("fromY");
    QTest::addColumn<double>("stepY");
    using Rect = QRectF;
    QTest::newRow("12 to 47 s") << Rect(12, 20, 35, 4) << 12.0 << 5.0 << 19.5 << 0.5;
    QTest::newRow("from below 0") << Rect(-3, 20, 50, 4) << 0.0 << 5.0 << 19.5 << 0.5;
    QTest::newRow("below 0 in value") << Rect(0, -24, 10, 4) << 0.0 << 1.0 << -24.5 << 0.5;
    QTest::newRow("coarsest") << Rect(0, -9000, 1.08e6, 17600) << 0.0 << 108000.0 << -10000.0
                              << 2000.0;
    QTest::newRow("beyond the coarsest")
        << Rect(0, -1e6, 1e9, 2e6) << 0.0 << 108000.0 << -10000.0 << 2000.0;
}

void TestQwtNOXZoom::showsRectangles()
{
    QFETCH(QRectF, rectangle);
    QFETCH(double, fromX);
    QFETCH(double, stepX);
    QFETCH(double, fromY);
    QFETCH(double, stepY);
    m_screen->plot.setChMode(ModeZoom);
    m_screen->plot.setZoomScale(rectangle);
    QVERIFY(m_screen->shows(QwtPlot::xBottom, fromX, stepX));
    QVERIFY(m_screen->shows(QwtPlot::yLeft, fromY, stepY));
    QCOMPARE(zoomer()->property("rect").toRectF(), rectangle);
    QCOMPARE(zoomer()->property("center").toPointF(),
             QPointF(fromX + 5 * stepX, fromY + 5 * stepY));
    m_screen->plot.replot(); // such axes are painted
}

void TestQwtNOXZoom::sameRectangleWorksAgain()
{
    PlotMouse &mouse = m_screen->mouse;
    m_screen->plot.setChMode(ModeZoom);
    mouse.drag({200, 100}, {400, 300});
    const QwtInterval once = m_screen->plot.axisInterval(QwtPlot::xBottom);
    m_screen->plot.setChMode(ModeAuto);
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 0, 10));
    m_screen->plot.setChMode(ModeZoom);
    mouse.drag({200, 100}, {400, 300});
    QCOMPARE(m_screen->plot.axisInterval(QwtPlot::xBottom), once);
    mouse.drag({200, 100}, {400, 300}); // the same pixels of a narrower view
    QVERIFY(m_screen->lower(QwtPlot::xBottom) > once.minValue());
}

void TestQwtNOXZoom::keepsNoStack()
{
    m_screen->plot.setChMode(ModeZoom);
    const int depth = zoomer()->zoomStack().size();
    for (int i = 0; i < 20; ++i) {
        m_screen->mouse.drag({100 + 5 * i, 100}, {400, 300});
        m_screen->mouse.wheel({200, 200}, false);
    }
    QCOMPARE(zoomer()->zoomStack().size(), depth);
    for (int i = 0; i < 12; ++i) // down to the finest scales: still no rectangle is refused
        m_screen->mouse.drag({300, 200}, {315, 215});
    QCOMPARE(m_screen->step(QwtPlot::xBottom), 1.0);
    QCOMPARE(m_screen->step(QwtPlot::yLeft), 0.000001);
}

void TestQwtNOXZoom::nothingJumpsToABase()
{
    PlotMouse &mouse = m_screen->mouse;
    m_screen->plot.setChMode(ModeZoom);
    mouse.drag({200, 100}, {400, 300});
    const QwtInterval times = m_screen->plot.axisInterval(QwtPlot::xBottom);
    const QwtInterval values = m_screen->plot.axisInterval(QwtPlot::yLeft);
    QSignalSpy zoomed(zoomer(), &QwtPlotZoomer::zoomed);
    for (const int key : {Qt::Key_Escape, Qt::Key_Home, Qt::Key_Plus, Qt::Key_Minus})
        QTest::keyClick(m_screen->plot.canvas(), Qt::Key(key));
    mouse.click({300, 200}, Qt::MiddleButton);
    mouse.press({300, 200}, Qt::RightButton);
    QCOMPARE(m_screen->plot.axisInterval(QwtPlot::xBottom), times);
    QCOMPARE(m_screen->plot.axisInterval(QwtPlot::yLeft), values);
    mouse.release({300, 200}, Qt::RightButton);
    QCOMPARE(m_screen->plot.getChMode(), ModeFollow); // and there the view follows the points
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 0, 10));
    QCOMPARE(zoomed.count(), 0);

    m_screen->plot.setChMode(ModeZoom); // a rectangle given up by key is none
    mouse.pull({200, 100}, {400, 300});
    QTest::keyClick(m_screen->plot.canvas(), Qt::Key_Escape);
    mouse.release({400, 300});
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 0, 10));
}

void TestQwtNOXZoom::clicksAreNoRectangles_data()
{
    QTest::addColumn<QPoint>("way");
    QTest::addColumn<bool>("isClick");
    QTest::newRow("no way") << QPoint(0, 0) << true;
    QTest::newRow("9 in both directions") << QPoint(9, -9) << true;
    QTest::newRow("10 to the right") << QPoint(10, 2) << false;
    QTest::newRow("10 up") << QPoint(2, -10) << false;
}

void TestQwtNOXZoom::clicksAreNoRectangles()
{
    QFETCH(QPoint, way);
    QFETCH(bool, isClick);
    m_screen->plot.setChMode(ModeZoom);
    const QPoint from(300, 200);
    const QPointF point = m_screen->mouse.point(from + way);
    m_screen->mouse.drag(from, from + way);
    QCOMPARE(m_screen->shows(QwtPlot::xBottom, 0, 10), isClick);
    QCOMPARE(m_screen->plot.getChMode(), isClick ? ModeMeasure : ModeZoom);
    QCOMPARE(m_screen->crosses(), isClick ? QVector<QPointF>{point} : QVector<QPointF>());
}

void TestQwtNOXZoom::survivesArrivingPoints()
{
    m_screen->plot.setChMode(ModeZoom);
    m_screen->mouse.drag({200, 100}, {400, 300});
    const QwtInterval times = m_screen->plot.axisInterval(QwtPlot::xBottom);
    const QPair<int, int> zoomed = rows();
    for (int second = 66; second < 300; ++second)
        m_screen->add(second, second);
    QCOMPARE(m_screen->plot.axisInterval(QwtPlot::xBottom), times);
    QCOMPARE(rows(), zoomed);
}

void TestQwtNOXZoom::scaleChoiceKeepsTheCentre()
{
    QwtNOX &plot = m_screen->plot;
    plot.setChMode(ModeZoom);
    plot.setZoomScale({112, 20, 35, 0.4}); // around 137 s and 20.2 °С
    plot.changeScaleX(5);                  // 15 s
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 137 - 75, 15));
    plot.changeScaleX(7); // 60 s would begin below 0
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 0, 60));
    plot.changeScaleX(4); // what came between has not moved the centre
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 137 - 50, 10));
    plot.changeScaleY(19);
    QVERIFY(m_screen->shows(QwtPlot::yLeft, 15.2, 1));

    plot.setChMode(ModeAuto); // the centre of a former zoom is forgotten
    plot.setChMode(ModeZoom);
    plot.changeScaleX(3);
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 25, 5));
}

void TestQwtNOXZoom::wheelMovesBothScales_data()
{
    QTest::addColumn<int>("mode");
    for (int mode = ModeAuto; mode <= ModeLimits; ++mode)
        QTest::addRow("mode %d", mode) << mode;
}

void TestQwtNOXZoom::wheelMovesBothScales()
{
    QFETCH(int, mode);
    QwtNOX &plot = m_screen->plot;
    plot.changeMode(mode);
    QCOMPARE(rows(), qMakePair(4, 16));
    const bool isStored = mode == ModeAuto || mode == ModeFollow;
    SignalLog log(plot);
    for (const bool away : {true, false, false}) {
        const QPair<int, int> before = rows();
        m_screen->mouse.wheel(m_screen->mouse.middle(), away);
        const int way = away ? -1 : 1;
        QCOMPARE(rows(), qMakePair(before.first + way, before.second + way));
        QCOMPARE(m_screen->step(QwtPlot::xBottom), double(scalesX()[rows().first].step));
        QCOMPARE(m_screen->step(QwtPlot::yLeft), scalesY()[rows().second].step);
        QCOMPARE(int(plot.getChScaleX()), isStored ? rows().first : 0);
        QCOMPARE(int(plot.getChScaleY()), isStored ? rows().second : 0);
        QCOMPARE(int(plot.getPrecision()), rows().second < 16 ? 2 : 1);
        QVERIFY(log.take().contains("onChange 0"));
    }
    QCOMPARE(int(plot.getChMode()), isStored ? int(ModeFollow) : mode);
}

void TestQwtNOXZoom::wheelStopsAtTheEnds_data()
{
    QTest::addColumn<int>("rowX");
    QTest::addColumn<int>("rowY");
    QTest::addColumn<bool>("away");
    QTest::addColumn<bool>("moves");
    QTest::newRow("the finest time") << 1 << 10 << true << false;
    QTest::newRow("from the finest time back") << 1 << 10 << false << true;
    QTest::newRow("to the finest time") << 2 << 10 << true << true;
    QTest::newRow("the finest value") << 10 << 1 << true << false;
    QTest::newRow("to the finest value") << 10 << 2 << true << true;
    QTest::newRow("the coarsest time") << lastX << 10 << false << false;
    QTest::newRow("from the coarsest time back") << lastX << 10 << true << true;
    QTest::newRow("to the coarsest time") << lastX - 1 << 10 << false << true;
    QTest::newRow("the coarsest value") << 10 << lastY << false << false;
    QTest::newRow("to the coarsest value") << 10 << lastY - 1 << false << true;
}

void TestQwtNOXZoom::wheelStopsAtTheEnds()
{
    QFETCH(int, rowX);
    QFETCH(int, rowY);
    QFETCH(bool, away);
    QFETCH(bool, moves);
    show(rowX, rowY);
    const QwtInterval times = m_screen->plot.axisInterval(QwtPlot::xBottom);
    SignalLog log(m_screen->plot);
    m_screen->mouse.wheel({100, 100}, away);
    const int way = !moves ? 0 : away ? -1 : 1;
    QCOMPARE(rows(), qMakePair(rowX + way, rowY + way));
    QCOMPARE(m_screen->plot.axisInterval(QwtPlot::xBottom) == times, !moves);
    QCOMPARE(log.take(), moves ? QStringList("onChange 0") : QStringList());
}

void TestQwtNOXZoom::wheelCentresAtTheCursor()
{
    show(10, 10);
    const QPoint at(500, 120);
    const QPointF cursor = m_screen->mouse.point(at);
    m_screen->mouse.wheel(at, true);
    QVERIFY(std::abs(m_screen->middle(QwtPlot::xBottom) - cursor.x()) < 1e-6);
    QVERIFY(std::abs(m_screen->middle(QwtPlot::yLeft) - cursor.y()) < 1e-9);
    QCOMPARE(zoomer()->property("center").toPointF(), cursor);
    m_screen->plot.changeScaleX(6);
    QVERIFY(std::abs(m_screen->middle(QwtPlot::xBottom) - cursor.x()) < 1e-6);
}

void TestQwtNOXZoom::wheelCentresWhileFollowingToo_data()
{
    QTest::addColumn<int>("scaleX");
    QTest::newRow("automatic") << 0;
    QTest::newRow("following") << 8; // 2 min.
}

void TestQwtNOXZoom::wheelCentresWhileFollowingToo()
{
    QFETCH(int, scaleX);
    m_screen->addRamp(900); // 0 to 1200 s
    m_screen->plot.changeScaleX(scaleX);
    const QPoint at = m_screen->mouse.pixel(400, 20.3);
    const QPointF cursor = m_screen->mouse.point(at);
    m_screen->mouse.wheel(at, true);
    QCOMPARE(m_screen->plot.getChMode(), ModeFollow);
    QCOMPARE(rows(),
             qMakePair(int(m_screen->plot.getChScaleX()), int(m_screen->plot.getChScaleY())));
    QVERIFY(std::abs(m_screen->middle(QwtPlot::xBottom) - cursor.x()) < 1e-6);
    QVERIFY(std::abs(m_screen->middle(QwtPlot::yLeft) - cursor.y()) < 1e-9);
    m_screen->add(20, 901);
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 360, 60)); // the end again
}

void TestQwtNOXZoom::wheelNeverShowsTimesBelowZero()
{
    m_screen->plot.setChMode(ModeZoom);
    m_screen->mouse.wheel(m_screen->mouse.pixel(20, 20.3), false); // 15 s: -55 to 95 s
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 0, 15));
}

void TestQwtNOXZoom::wheelWorksFromAutomaticScales_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("hasPoints");
    for (const int mode : {ModeZoom, ModeScroll, ModeLimits})
        QTest::addRow("chosen in mode %d", mode) << mode << true;
    for (int mode = ModeAuto; mode <= ModeLimits; ++mode)
        QTest::addRow("no point yet, mode %d", mode) << mode << false;
}

void TestQwtNOXZoom::wheelWorksFromAutomaticScales()
{
    QFETCH(int, mode);
    QFETCH(bool, hasPoints);
    QwtNOX &plot = m_screen->plot;
    if (!hasPoints)
        plot.setDevMain(1);
    plot.changeMode(mode);
    if (hasPoints) {
        plot.changeScaleX(0);
        plot.changeScaleY(0);
    }
    QCOMPARE(rows(), qMakePair(0, 0));
    for (int notch = 0; notch < 70; ++notch) {
        m_screen->mouse.wheel(m_screen->mouse.middle(), notch < 35);
        const bool inTables = rows().first >= 1 && rows().first <= lastX && rows().second >= 1 &&
                              rows().second <= lastY;
        QVERIFY(inTables);
        QVERIFY(m_screen->step(QwtPlot::xBottom) > 0 && m_screen->step(QwtPlot::yLeft) > 0);
    }
}

QTEST_MAIN(TestQwtNOXZoom)
#include "tst_qwtnox_zoom.moc"
