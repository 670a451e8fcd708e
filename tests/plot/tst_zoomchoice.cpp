#include "plot/scalechoice.h"

#include <QtTest>

class TestZoomChoice : public QObject
{
    Q_OBJECT

private slots:
    void showsARectangle_data();
    void showsARectangle();
    void remembersTheMiddle();
    void showsASurrounding();
    void stepsBothRowsTogether_data();
    void stepsBothRowsTogether();
    void findsTheRowOfAStep();
};

namespace
{

bool isNear(double a, double b)
{
    return qAbs(a - b) <= 1e-9 * qMax(1.0, qAbs(b));
}

} // namespace

void TestZoomChoice::showsARectangle_data()
{
    QTest::addColumn<QRectF>("rectangle");
    QTest::addColumn<double>("left");
    QTest::addColumn<QString>("labelX");
    QTest::addColumn<double>("lower");
    QTest::addColumn<QString>("labelY");
    QTest::newRow("from 12 s to 47 s")
        << QRectF(12, 20, 35, 0.8) << 12.0 << "5 сек." << 19.9 << "0.1";
    QTest::newRow("ten steps just fit")
        << QRectF(0, 20, 50, 0.8) << 0.0 << "5 сек." << 19.9 << "0.1";
    QTest::newRow("a little wider than ten steps")
        << QRectF(0, 20, 50.1, 0.8) << 0.0 << "10 сек." << 19.9 << "0.1";
    QTest::newRow("from 3 s before the start")
        << QRectF(-3, 20, 23, 0.8) << 0.0 << "2 сек." << 19.9 << "0.1";
    QTest::newRow("nothing but before the start")
        << QRectF(-30, 20, 20, 0.8) << 0.0 << "1 сек." << 19.9 << "0.1";
    QTest::newRow("no width and no height")
        << QRectF(7.3, 20, 0, 0) << 7.3 << "1 сек." << 19.999995 << "0.000001";
    QTest::newRow("higher by a hair than a row allows")
        << QRectF(0, -0.4, 10, 0.9) << 0.0 << "1 сек." << -1.0 << "0.2";
    QTest::newRow("a height that just fits")
        << QRectF(0, 16, 10, 8.8) << 0.0 << "1 сек." << 15.0 << "1";
    QTest::newRow("a height that just does not")
        << QRectF(0, 16, 10, 9) << 0.0 << "1 сек." << 10.0 << "2";
    QTest::newRow("wider than any row") << QRectF(0, 0, 2e6, 1) << 0.0 << "30 ч." << -0.4 << "0.2";
    QTest::newRow("higher than any row")
        << QRectF(0, -1e5, 10, 2e5) << 0.0 << "1 сек." << -10000.0 << "2000";
}

void TestZoomChoice::showsARectangle()
{
    QFETCH(QRectF, rectangle);
    QFETCH(double, left);
    QFETCH(double, lower);
    const ZoomedView view = viewOfRectangle(rectangle, 10, 10);
    QTEST(scalesX()[view.steps.x].label, "labelX");
    QTEST(scalesY()[view.steps.y].label, "labelY");
    QCOMPARE(view.x.step, double(scalesX()[view.steps.x].step));
    QCOMPARE(view.y.step, scalesY()[view.steps.y].step);
    QVERIFY(isNear(view.x.lower, left) && isNear(view.x.upper, left + 10 * view.x.step));
    QVERIFY2(isNear(view.y.lower, lower), qPrintable(QString::number(view.y.lower)));
    QVERIFY(isNear(view.y.upper, lower + 10 * view.y.step));
}

void TestZoomChoice::remembersTheMiddle()
{
    const ZoomedView even = viewOfRectangle({12, 20, 35, 0.8}, 10, 10);
    QVERIFY(isNear(even.centre.x(), 37) && isNear(even.centre.y(), 20.4));
    const ZoomedView odd = viewOfRectangle({12, 20, 35, 0.8}, 7, 5);
    QVERIFY(isNear(odd.centre.x(), 12 + 3.5 * 5)); // 35 / 7 is a step of 5
    QVERIFY(isNear(odd.y.upper - odd.y.lower, 4 * odd.y.step));
    QVERIFY(isNear(odd.centre.y(), odd.y.lower + 2.5 * odd.y.step));
}

void TestZoomChoice::showsASurrounding()
{
    const ZoomedView view = viewAround({100, -5}, {4, 16}, 10, 10); // 10 s and 0.1
    QVERIFY(view.x == (AxisView{50, 150, 10}));
    QVERIFY(isNear(view.y.lower, -5.5) && isNear(view.y.upper, -4.5));
    QVERIFY(viewAround({20, 0}, {4, 16}, 10, 10).x == (AxisView{0, 100, 10}));
}

void TestZoomChoice::stepsBothRowsTogether_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<bool>("coarser");
    QTest::addColumn<int>("change");
    QTest::newRow("finer") << 5 << 7 << false << -1;
    QTest::newRow("coarser") << 5 << 7 << true << 1;
    QTest::newRow("X is the finest") << 1 << 7 << false << 0;
    QTest::newRow("Y is the finest") << 5 << 1 << false << 0;
    QTest::newRow("X is the coarsest") << 18 << 7 << true << 0;
    QTest::newRow("Y is the coarsest") << 5 << 29 << true << 0;
    QTest::newRow("away from the ends") << 1 << 1 << true << 1;
}

void TestZoomChoice::stepsBothRowsTogether()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(bool, coarser);
    QFETCH(int, change);
    QVERIFY(neighbouringSteps({x, y}, coarser) == (ScaleSteps{x + change, y + change}));
}

void TestZoomChoice::findsTheRowOfAStep()
{
    for (int row = 1; row < scalesX().size(); ++row)
        QCOMPARE(stepOfSizeX(scalesX()[row].step), row);
    for (int row = 1; row < scalesY().size(); ++row)
        QCOMPARE(stepOfSizeY(scalesY()[row].step), row);
    QCOMPARE(stepOfSizeX(70), 7);
    QCOMPARE(stepOfSizeY(0), 1);
    QCOMPARE(stepOfSizeY(1e9), 29);
}

QTEST_APPLESS_MAIN(TestZoomChoice)
#include "tst_zoomchoice.moc"
