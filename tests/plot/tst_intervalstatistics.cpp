#include "numbers.h"
#include "plot/intervalstatistics.h"

#include <QtTest>

#include <random>

class TestIntervalStatistics : public QObject
{
    Q_OBJECT

private slots:
    void countsAndAverages_data();
    void countsAndAverages();
    void equalsAPlainScan();
};

namespace
{

/** The rule word by word: all points but the newest are looked at, one after the other. */
IntervalStatistics plainScan(const Numbers &times, const Numbers &values, double from, double to)
{
    Numbers taken;
    bool found = false;
    for (int i = 0; i < times.size() - 1 && times[i] <= to; ++i) {
        found = found || times[i] >= from;
        if (found)
            taken.append(values[i]);
    }
    IntervalStatistics statistics;
    statistics.count = taken.size();
    for (const double value : taken)
        statistics.mean += value / taken.size();
    double squares = 0;
    for (const double value : taken)
        squares += (value - statistics.mean) * (value - statistics.mean);
    if (taken.size() > 1)
        statistics.deviation = std::sqrt(squares / (taken.size() - 1));
    return statistics;
}

} // namespace

void TestIntervalStatistics::countsAndAverages_data()
{
    QTest::addColumn<Numbers>("times");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<int>("count");
    QTest::addColumn<double>("mean"); // every value is ten times its time
    QTest::addColumn<double>("deviation");
    const Numbers fiveSeconds = {0, 1, 2, 3, 4};
    QTest::newRow("two points inside") << fiveSeconds << 0.5 << 2.5 << 2 << 15.0 << std::sqrt(50.0);
    QTest::newRow("both ends included") << fiveSeconds << 1.0 << 3.0 << 3 << 20.0 << 10.0;
    QTest::newRow("the newest is not counted") << fiveSeconds << 0.5 << 10.0 << 3 << 20.0 << 10.0;
    QTest::newRow("a single point") << fiveSeconds << 1.5 << 2.5 << 1 << 20.0 << 0.0;
    QTest::newRow("between two points") << fiveSeconds << 1.2 << 1.8 << 0 << 0.0 << 0.0;
    QTest::newRow("after the last") << fiveSeconds << 3.5 << 9.0 << 0 << 0.0 << 0.0;
    QTest::newRow("no points") << Numbers() << 0.0 << 9.0 << 0 << 0.0 << 0.0;
    QTest::newRow("nothing but the newest") << Numbers{1} << 0.0 << 9.0 << 0 << 0.0 << 0.0;
}

void TestIntervalStatistics::countsAndAverages()
{
    QFETCH(Numbers, times);
    QFETCH(double, from);
    QFETCH(double, to);
    Numbers values;
    for (const double time : times)
        values.append(10 * time);
    const IntervalStatistics statistics =
        intervalStatistics(seriesOf(times), seriesOf(values), from, to);
    QTEST(statistics.count, "count");
    QTEST(statistics.mean, "mean");
    QTEST(statistics.deviation, "deviation");
}

void TestIntervalStatistics::equalsAPlainScan()
{
    std::mt19937 chance(5);
    std::uniform_real_distribution<double> step(-2, 10);
    Numbers times;
    Numbers values;
    for (double time = 0; times.size() < 3000; time = qMax(0.0, time + step(chance))) {
        times.append(time); // the clock steps back now and then
        values.append(step(chance));
    }
    const Series timeSeries = seriesOf(times);
    const Series valueSeries = seriesOf(values);
    std::uniform_real_distribution<double> place(0, 13000);
    for (int i = 0; i < 200; ++i) {
        const auto [from, to] = std::minmax({place(chance), place(chance)});
        const IntervalStatistics found = intervalStatistics(timeSeries, valueSeries, from, to);
        const IntervalStatistics expected = plainScan(times, values, from, to);
        QCOMPARE(found.count, expected.count);
        QVERIFY(qAbs(found.mean - expected.mean) < 1e-9);
        QVERIFY(qAbs(found.deviation - expected.deviation) < 1e-9);
    }
}

QTEST_APPLESS_MAIN(TestIntervalStatistics)
#include "tst_intervalstatistics.moc"
