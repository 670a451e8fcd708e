#include "plot/scalechoice.h"

#include <QtTest>

class TestScaleChoice : public QObject
{
    Q_OBJECT

private slots:
    void tablesRiseAndSayTheirStep();
    void choosesTheTimeRow_data();
    void choosesTheTimeRow();
    void choosesTheValueRow_data();
    void choosesTheValueRow();
    void followsTheNewestTime_data();
    void followsTheNewestTime();
    void keepsTheTimeViewWhileItCovers_data();
    void keepsTheTimeViewWhileItCovers();
    void centresTheValueView_data();
    void centresTheValueView();
    void decimalsSuitTheStep();
    void labelsLeaveEachOtherRoom();
};

void TestScaleChoice::tablesRiseAndSayTheirStep()
{
    QCOMPARE(scalesX().size(), 19);
    QCOMPARE(scalesX()[0].label, QString("Авто"));
    QCOMPARE(scalesX()[7].label, QString("1 мин."));
    QCOMPARE(scalesX()[18].step, 30 * 3600);
    QCOMPARE(scalesY().size(), 30);
    for (int row = 1; row < scalesX().size(); ++row)
        QVERIFY(scalesX()[row - 1].step < scalesX()[row].step);
    for (int row = 1; row < scalesY().size(); ++row) {
        QVERIFY(scalesY()[row - 1].step < scalesY()[row].step);
        QCOMPARE(scalesY()[row].label.toDouble(), scalesY()[row].step);
    }
}

void TestScaleChoice::choosesTheTimeRow_data()
{
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("last");
    QTest::addColumn<int>("row");
    QTest::newRow("a single point") << 5.0 << 5.0 << 1;
    QTest::newRow("8.5 s just fit 1 s") << 0.0 << 8.5 << 1;
    QTest::newRow("more than 8.5 s need 2 s") << 0.0 << 8.51 << 2;
    QTest::newRow("65 s need 10 s") << 0.0 << 65.0 << 4;
    QTest::newRow("the width counts, not the place") << 1000.0 << 1065.0 << 4;
    QTest::newRow("a day needs 5 h") << 0.0 << 86400.0 << 15;
    QTest::newRow("a year has the last row") << 0.0 << 365 * 86400.0 << 18;
    QTest::newRow("a clock set back") << 500.0 << 100.0 << 1;
}

void TestScaleChoice::choosesTheTimeRow()
{
    QFETCH(double, first);
    QFETCH(double, last);
    QTEST(stepForTimes(first, last, 10), "row");
}

void TestScaleChoice::choosesTheValueRow_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<int>("row");
    QTest::newRow("constant") << 20.0 << 20.0 << 1;
    QTest::newRow("one unit needs 0.2") << 20.0 << 21.0 << 17;
    QTest::newRow("some millikelvin") << 0.0100 << 0.0137 << 9;
    QTest::newRow("negative values") << -700.0 << -300.0 << 24;
    QTest::newRow("the coarsest that fits") << 0.0 << 17000.0 << 29;
    QTest::newRow("beyond the table") << -1000.0 << 1e9 << 29;
    QTest::newRow("without bounds") << -1000.0 << std::numeric_limits<double>::infinity() << 29;
}

void TestScaleChoice::choosesTheValueRow()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QTEST(stepForValues({min, max}, 10), "row");
}

void TestScaleChoice::followsTheNewestTime_data()
{
    QTest::addColumn<double>("last");
    QTest::addColumn<double>("lower");
    QTest::newRow("data shorter than the view") << 125.0 << 0.0;
    QTest::newRow("newest point on the right edge") << 600.0 << 0.0;
    QTest::newRow("newest point past it") << 600.1 << 60.0;
    QTest::newRow("a whole step on") << 661.0 << 120.0;
}

void TestScaleChoice::followsTheNewestTime()
{
    QFETCH(double, last);
    const AxisView view = viewUpTo(last, 60, 10);
    QTEST(view.lower, "lower");
    QCOMPARE(view.upper, view.lower + 600);
    QCOMPARE(view.step, 60.0);
}

void TestScaleChoice::keepsTheTimeViewWhileItCovers_data()
{
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("step");
    QTest::addColumn<bool>("kept");
    QTest::newRow("the same view") << 100.0 << 10.0 << true;
    QTest::newRow("upper end passes the right edge") << 110.0 << 10.0 << false;
    QTest::newRow("lower end left of the view") << 90.0 << 10.0 << false;
    QTest::newRow("another step") << 100.0 << 5.0 << false;
}

void TestScaleChoice::keepsTheTimeViewWhileItCovers()
{
    QFETCH(double, lower);
    QFETCH(double, step);
    QFETCH(bool, kept);
    const AxisView current{100, 200, 10};
    const AxisView wanted{lower, lower + 10 * step, step};
    QVERIFY(followTimes(current, wanted) == (kept ? current : wanted));
}

void TestScaleChoice::centresTheValueView_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<double>("lower");
    QTest::newRow("inside: kept") << 20.1 << 20.1 << 19.5;
    QTest::newRow("on the edge: kept") << 20.5 << 20.5 << 19.5;
    QTest::newRow("21.4: centred on it") << 21.4 << 21.4 << 20.9;
    QTest::newRow("below: centred") << 19.0 << 19.0 << 18.5;
    QTest::newRow("a range: centred on its middle") << 18.0 << 18.6 << 17.8;
    QTest::newRow("negative") << -7.26 << -7.26 << -7.8;
}

void TestScaleChoice::centresTheValueView()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(double, lower);
    const AxisView view = followValues({19.5, 20.5, 0.1}, {min, max}, 0.1, 10);
    QVERIFY(qAbs(view.lower - lower) < 1e-9);
    QVERIFY(qAbs(view.upper - (lower + 1)) < 1e-9);
    QCOMPARE(followValues({0, 100, 10}, {5, 5}, 0.1, 10).lower, 4.5); // another step: centred
    QVERIFY(!followValues({0, 1, 0.1}, {1e30, 1e30}, 1e-6, 10).isValid());
}

void TestScaleChoice::decimalsSuitTheStep()
{
    const QVector<int> expected = {0, 6, 6, 6, 5, 5, 5, 4, 4, 4, 3, 3, 3, 2, 2,
                                   2, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    QVector<int> decimals;
    for (int row = 0; row < scalesY().size(); ++row)
        decimals.append(decimalsForStep(row));
    QCOMPARE(decimals, expected);
}

void TestScaleChoice::labelsLeaveEachOtherRoom()
{
    QCOMPARE(labelStride(40, 50, 10), 1);
    QCOMPARE(labelStride(41, 50, 10), 2);
    QCOMPARE(labelStride(130, 50, 10), 3);
    QCOMPARE(labelStride(130, 0, 10), 100); // a canvas without width
}

QTEST_APPLESS_MAIN(TestScaleChoice)
#include "tst_scalechoice.moc"
