#include "plot/envelopecurve.h"
#include "plot/movingaverage.h"
#include "plot/plotrecords.h"
#include "plot/series.h"

#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>

namespace
{

using Values = std::vector<double>;

Series seriesOf(const Values &values)
{
    Series series;
    for (const double value : values)
        series.append(value);
    return series;
}

Values generate(int count, const std::function<double(int, QRandomGenerator &)> &next)
{
    QRandomGenerator random(20260101);
    Values values;
    for (int i = 0; i < count; ++i)
        values.push_back(next(i, random));
    return values;
}

/** The mean of the last ten values up to `index`, as precise as can be. */
double plainAverage(const Values &values, int index)
{
    long double sum = 0;
    const int first = std::max(0, index - 9);
    for (int i = first; i <= index; ++i)
        sum += values[i];
    return static_cast<double>(sum / (index - first + 1));
}

MovingAverages averagesOf(const Values &values)
{
    Series series;
    MovingAverages averages;
    for (const double value : values) {
        series.append(value);
        averages.follow(series);
    }
    return averages;
}

ValueRange plainRange(const Values &values, int first, int end)
{
    ValueRange range;
    for (int i = first; i < end; ++i)
        range.include(values[i]);
    return range;
}

} // namespace

Q_DECLARE_METATYPE(Values)

class TestSeries : public QObject
{
    Q_OBJECT

private slots:
    void answersLikeAPlainList_data();
    void answersLikeAPlainList();
    void copiesGoTheirOwnWay();
    void appendsMoveNoValue();
    void describesItselfToACurve();
    void keepsUnitsOfEveryPoint();
    void followsAnotherSeries();
    void knowsWhetherItContinues();
    void averagesTheLastTen();
    void averagesAnswerLikeAPlainList_data();
    void averagesAnswerLikeAPlainList();
    void averagesOfCopiesGoTheirOwnWay();
    void averageForgetsAHugeValue();
};

void TestSeries::answersLikeAPlainList_data()
{
    QTest::addColumn<Values>("values");
    // 64 values seal a block, 1024 one of the next level, 16384 one above that.
    for (const int count : {0, 1, 63, 64, 65, 1023, 1024, 1025, 20000}) {
        QTest::addRow("random, %d values", count) << generate(
            count, [](int, QRandomGenerator &random) { return random.bounded(1000.0); });
    }
    QTest::newRow("rising") << generate(5000, [](int i, QRandomGenerator &) { return i * 0.5; });
    QTest::newRow("falling") << generate(5000, [](int i, QRandomGenerator &) { return -i * 0.5; });
    QTest::newRow("constant") << generate(5000, [](int, QRandomGenerator &) { return 7.0; });
    QTest::newRow("rare outliers") << generate(20000, [](int i, QRandomGenerator &random) {
        return i % 4097 == 11 ? random.bounded(1e9) - 5e8 : random.bounded(1.0);
    });
    QTest::newRow("a clock set back") << generate(
        20000, [](int i, QRandomGenerator &) { return i < 9000 ? i * 1.0 : i - 6000.5; });
}

void TestSeries::answersLikeAPlainList()
{
    QFETCH(const Values, values);
    const Series series = seriesOf(values);
    const int size = static_cast<int>(values.size());
    QCOMPARE(series.size(), size);
    QCOMPARE(series.range(-5, size + 5), plainRange(values, 0, size));

    QRandomGenerator random(7);
    for (int round = 0; round < 300 && size > 0; ++round) {
        const int one = random.bounded(size + 1);
        const int other = random.bounded(size + 1);
        const int first = std::min(one, other);
        const int end = std::max(one, other);
        QCOMPARE(series.range(first, end), plainRange(values, first, end));

        // bounds that are values themselves, and bounds between them
        const double bound = values[random.bounded(size)] + random.bounded(2) * 0.25;
        const auto reaches = [bound](double value) { return value >= bound; };
        const auto notBelow = std::find_if(values.begin(), values.end(), reaches);
        QCOMPARE(series.firstNotBelow(bound), static_cast<int>(notBelow - values.begin()));
        const auto below = std::find_if_not(values.rbegin(), values.rend(), reaches);
        QCOMPARE(series.lastBelow(bound), static_cast<int>(values.rend() - below) - 1);
    }
}

void TestSeries::copiesGoTheirOwnWay()
{
    Series original = seriesOf(Values(100, 1.0));
    Series copy = original;
    original.append(2.0);
    QCOMPARE(copy.size(), 100);
    QCOMPARE(copy.range(0, 101), (ValueRange{1.0, 1.0}));

    copy.append(3.0);
    QCOMPARE(copy.last(), 3.0);
    QCOMPARE(original.last(), 2.0);
    QCOMPARE(copy.range(0, 101), (ValueRange{1.0, 3.0}));

    original.clear();
    QVERIFY(original.isEmpty());
    QCOMPARE(copy.size(), 101);

    const Series moved = std::move(copy);
    QVERIFY(copy.isEmpty()); // NOLINT(bugprone-use-after-move): an emptied series is promised
    QCOMPARE(moved.size(), 101);
}

void TestSeries::appendsMoveNoValue()
{
    // A copy taken early reads on while the original grows far beyond it.
    Series series = seriesOf({4.0, 5.0});
    const Series early = series;
    for (int i = 0; i < 100000; ++i)
        series.append(i);
    QCOMPARE(early.size(), 2);
    QCOMPARE(early[1], 5.0);
    QCOMPARE(early.range(0, 2), (ValueRange{4.0, 5.0}));
}

void TestSeries::describesItselfToACurve()
{
    SeriesData data;
    QVERIFY(!data.boundingRect().isValid());
    data.show(seriesOf({1.0, 2.5, 2.0}), seriesOf({20.0, -3.0, 8.0}));
    QCOMPARE(data.size(), std::size_t(3));
    QCOMPARE(data.sample(2), QPointF(2.0, 8.0));
    QCOMPARE(data.boundingRect(), QRectF(1.0, -3.0, 1.5, 23.0));
    data.show(seriesOf({1.0, 2.5, 2.0}), averagesOf({20.0, -3.0, 7.0}));
    QCOMPARE(data.sample(2), QPointF(2.0, 8.0));
    QCOMPARE(data.boundingRect(), QRectF(1.0, 8.0, 1.5, 12.0));
}

void TestSeries::followsAnotherSeries()
{
    Series times = seriesOf({1.0, 2.0});
    Series values = seriesOf({5.0, 6.0});
    SeriesData data;
    data.show(times, values);
    times.append(3.0);
    values.append(7.0);
    QVERIFY(data.show(times, values));
    QVERIFY2(!data.show(seriesOf({1.0, 2.0, 3.0}), values), "equal times are not the same times");
    QVERIFY(!data.show(times, seriesOf({5.0, 6.0, 7.0})));
    QVERIFY(!data.show(times, averagesOf({5.0, 6.0, 7.0})));
    QCOMPARE(data.sample(1), QPointF(2.0, 5.5));
}

void TestSeries::knowsWhetherItContinues()
{
    Series series = seriesOf({1.0, 2.0});
    const Series earlier = series;
    series.append(3.0);
    QVERIFY(series.continues(earlier) && series.continues(series));
    QVERIFY(!earlier.continues(series));

    Series branch = earlier;
    branch.append(3.0); // no longer the values of `series`
    QVERIFY(!branch.continues(earlier) && !branch.continues(series));
    series.clear();
    QVERIFY(!series.continues(earlier) && series.continues(Series()));

    QVERIFY(branch.isAscending() && Series().isAscending());
    branch.append(3.0);
    const Series ordered = branch;
    branch.append(2.9);
    branch.append(4.0);
    QVERIFY(ordered.isAscending() && !branch.isAscending());
}

void TestSeries::keepsUnitsOfEveryPoint()
{
    const QStringList units = {"°С", "°С", "Ом", "°С", "°С", "", "мВ", "мВ"};
    UnitRuns runs;
    for (const QString &unit : units)
        runs.append(unit);
    QStringList read;
    for (int i = 0; i < runs.size(); ++i)
        read.append(runs.at(i));
    QCOMPARE(read, units);
    runs.clear();
    QVERIFY(runs.isEmpty());
    runs.append("Ом");
    QCOMPARE(runs.at(0), QString("Ом"));
}

void TestSeries::averagesTheLastTen()
{
    Values squares;
    for (int i = 1; i <= 25; ++i)
        squares.push_back(i * i);
    const MovingAverages averages = averagesOf(squares);
    QCOMPARE(averages[0], 1.0);
    QCOMPARE(averages[8], 285.0 / 9);                // 1² to 9²
    QCOMPARE(averages[9], 385.0 / 10);               // 1² to 10²
    QCOMPARE(averages[10], (506.0 - 1) / 10);        // 2² to 11²
    QCOMPARE(averages.last(), (5525.0 - 1240) / 10); // 16² to 25²
    QCOMPARE(averages.sum(24), 5525.0 - 1240);
}

void TestSeries::averagesAnswerLikeAPlainList_data()
{
    answersLikeAPlainList_data();
}

void TestSeries::averagesAnswerLikeAPlainList()
{
    QFETCH(const Values, values);
    const MovingAverages averages = averagesOf(values);
    const int size = static_cast<int>(values.size());
    Values read;
    Values magnitudes;
    for (int i = 0; i < size; ++i) {
        read.push_back(averages[i]);
        magnitudes.push_back(std::abs(values[i]));
        const double error = std::abs(averages[i] - plainAverage(values, i));
        QVERIFY(error <= 10 * 0x1p-53 * plainAverage(magnitudes, i));
    }
    QCOMPARE(averages.range(-5, size + 5), plainRange(read, 0, size));
    QRandomGenerator random(7);
    for (int round = 0; round < 300 && size > 0; ++round) {
        const int one = random.bounded(size + 1);
        const int other = random.bounded(size + 1);
        const int first = std::min(one, other);
        const int end = std::max(one, other);
        QCOMPARE(averages.range(first, end), plainRange(read, first, end));
    }
}

void TestSeries::averagesOfCopiesGoTheirOwnWay()
{
    // Both branches fill the block of 64 that is open when they part, with other values.
    Series values = seriesOf(Values(100, 1.0));
    MovingAverages averages;
    averages.follow(values);
    Series branchValues = values;
    MovingAverages branch = averages;
    for (int i = 0; i < 100; ++i) {
        values.append(2.0);
        averages.follow(values);
        branchValues.append(-3.0);
        branch.follow(branchValues);
    }
    QCOMPARE(averages.range(0, 200), (ValueRange{1.0, 2.0}));
    QCOMPARE(branch.range(0, 200), (ValueRange{-3.0, 1.0}));
    QCOMPARE(branch[100], 0.6);

    branchValues.clear();
    branch.follow(branchValues);
    QVERIFY(branch.isEmpty() && branch.range(0, 200).isEmpty());
}

void TestSeries::averageForgetsAHugeValue()
{
    for (const double huge : {1e15, 1e17, 1e30, 1.7e308}) {
        Values values(10, 20.1);
        values.push_back(huge);
        const MovingAverages swamped = averagesOf(values);
        QVERIFY(swamped.last() >= huge / 10);
        values.insert(values.end(), 10, 20.1);
        QVERIFY(averagesOf(values).last() == averagesOf(Values(10, 20.1)).last());
    }
}

QTEST_APPLESS_MAIN(TestSeries)
#include "tst_series.moc"
