#include "plot/envelopecurve.h"
#include "plot/movingaverage.h"
#include "plot/plotmeasurement.h"
#include "plot/plotrecords.h"
#include "plotbench.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <functional>

// The numbers of a channel, what is computed from them, and how they are read.

namespace
{

Numbers generate(int count, const std::function<double(int, QRandomGenerator &)> &next)
{
    QRandomGenerator random(20260101);
    Numbers numbers;
    for (int i = 0; i < count; ++i)
        numbers.append(next(i, random));
    return numbers;
}

MovingAverages averagesOf(const Numbers &values)
{
    Series series;
    MovingAverages averages;
    for (const double value : values) {
        series.append(value);
        averages.follow(series);
    }
    return averages;
}

/** The mean of the last ten values up to `index`, as precise as can be. */
double plainAverage(const Numbers &values, int index)
{
    long double sum = 0;
    const int first = std::max(0, index - 9);
    for (int i = first; i <= index; ++i)
        sum += values[i];
    return static_cast<double>(sum / (index - first + 1));
}

ValueRange plainRange(const Numbers &values, int first, int end)
{
    const auto [least, greatest] =
        std::minmax_element(values.begin() + first, values.begin() + end);
    return first < end ? ValueRange{*least, *greatest} : ValueRange();
}

/** The rule word by word: all points but the newest are looked at, one after the other. */
IntervalStatistics plainStatistics(const Numbers &times, const Numbers &values, double from,
                                   double to)
{
    Numbers taken;
    for (int i = 0; i < times.size() - 1 && times[i] <= to; ++i)
        if (!taken.isEmpty() || times[i] >= from)
            taken.append(values[i]);
    IntervalStatistics statistics;
    statistics.count = taken.size();
    double squares = 0;
    for (const double value : qAsConst(taken))
        statistics.mean += value / taken.size();
    for (const double value : qAsConst(taken))
        squares += std::pow(value - statistics.mean, 2);
    if (taken.size() > 1)
        statistics.deviation = std::sqrt(squares / (taken.size() - 1));
    return statistics;
}

/** What is packed into 1, 2 and 4 bytes once it is old, and what only looks as if it could be. */
double longAgo(int i, QRandomGenerator &random)
{
    switch (i / 2048) {
    case 0:
        return (200000 + random.bounded(i < 1024 ? 256 : 257)) / 1e4;
    case 1:
        return (-20 + random.bounded(65536)) / 1e4;
    case 2: // rounds of 15 s, a pause of a day between them
        return (15000.0 * i + random.bounded(20) + (i < 5000 ? 0 : 86400000)) / 1e3;
    case 3: // a chunk of one decimal, and one of five
        return random.bounded(1000) / (i < 7168 ? 1e1 : 1e5);
    case 4:
        return random.bounded(2) ? 0.0 : -0.0;
    case 5: // beyond the integers that a double tells apart, and just below
        return (i < 11264 ? 0x1p54 : 0x1p49) + i * 100004.0 + random.bounded(900) * 4;
    case 6: // a step that 4 bytes do not hold
        return i % 7 == 0 ? 4294967296.0 : 0.0;
    case 7:
        return random.generateDouble();
    case 8: // decimals, but for one number
        return i == 17400 ? 1.0 / 3 : 20.5;
    default:
        return 20.0;
    }
}

} // namespace

class TestSeries : public PlotTest
{
    Q_OBJECT

private slots:
    void answersLikeAPlainList_data()
    {
        QTest::addColumn<Numbers>("values");
        // 64 values seal a block, 1024 one of the next level, 16384 one above that.
        for (const int count : {0, 1, 63, 64, 65, 1023, 1024, 1025, 20000})
            QTest::addRow("random, %d values", count)
                << generate(count, [](int, auto &random) { return random.bounded(1000.0); });
        QTest::newRow("rare outliers") << generate(20000, [](int i, auto &random) {
            return i % 4097 == 11 ? random.bounded(1e9) - 5e8 : random.bounded(1.0);
        });
        QTest::newRow("huge values, which averages forget")
            << generate(200, [](int i, auto &) { return i % 50 == 20 ? 1.7e308 : 20.1; });
        QTest::newRow("a clock set back")
            << generate(20000, [](int i, auto &) { return i < 9000 ? i * 1.0 : i - 6000.5; });
        QTest::newRow("long ago, packed or not") << generate(152000, longAgo);
    }
    void answersLikeAPlainList()
    {
        QFETCH(const Numbers, values);
        const Series series = seriesOf(values);
        const MovingAverages averages = averagesOf(values);
        const int size = values.size();
        const Numbers read = numbersOf(series);
        QCOMPARE(read, values);
        QVERIFY(std::equal(read.begin(), read.end(), values.begin(), [](double one, double other) {
            return std::signbit(one) == std::signbit(other);
        }));
        const Numbers means = numbersOf(averages);
        QCOMPARE(means.size(), size);
        const Numbers magnitudes = generate(size, [&](int i, auto &) { return qAbs(values[i]); });
        for (int i = 0; i < size; ++i)
            QVERIFY(qAbs(means[i] - plainAverage(values, i)) <=
                    10 * 0x1p-53 * plainAverage(magnitudes, i));

        QCOMPARE(series.range(-5, size + 5), plainRange(values, 0, size));
        QCOMPARE(averages.range(-5, size + 5), plainRange(means, 0, size));
        QRandomGenerator random(7);
        for (int round = 0; round < 300 && size > 0; ++round) {
            const int within = round % 2 ? size : std::min(size, 20000);
            const auto [first, end] =
                std::minmax({int(random.bounded(within + 1)), int(random.bounded(within + 1))});
            for (const int stop : {end, std::min(end, first + 90)}) {
                QCOMPARE(series.range(first, stop), plainRange(values, first, stop));
                QCOMPARE(averages.range(first, stop), plainRange(means, first, stop));
            }

            // bounds that are values themselves, and bounds between them
            const double bound = values[random.bounded(size)] + random.bounded(2) * 0.25;
            const auto reaches = [bound](double value) { return value >= bound; };
            const auto notBelow = std::find_if(values.begin(), values.end(), reaches);
            QCOMPARE(series.firstNotBelow(bound), int(notBelow - values.begin()));
            const auto below = std::find_if_not(values.rbegin(), values.rend(), reaches);
            QCOMPARE(series.lastBelow(bound), int(values.rend() - below) - 1);
        }
    }
    void copiesGoTheirOwnWay()
    {
        // Both branches fill the block of 64 that is open when they part, with other values.
        Series series = seriesOf(Numbers(100, 1.0));
        Series branch = series;
        for (int i = 0; i < 100; ++i) {
            series.append(2.0);
            branch.append(-3.0);
        }
        QCOMPARE(series.range(0, 1000), (ValueRange{1.0, 2.0}));
        QCOMPARE(branch.range(0, 1000), (ValueRange{-3.0, 1.0}));
        QVERIFY(series.isAscending() && !branch.isAscending());
    }
    void showsItselfToACurve()
    {
        Series times = seriesOf({1.0, 2.5});
        Series values = seriesOf({20.0, -3.0});
        SeriesData data;
        QVERIFY(!data.boundingRect().isValid());
        data.show(times, values);
        times.append(2.0);
        values.append(8.0);
        QVERIFY2(data.show(times, values), "it has grown");
        QCOMPARE(data.size(), std::size_t(3));
        QCOMPARE(data.sample(2), QPointF(2.0, 8.0));
        QCOMPARE(data.boundingRect(), QRectF(1.0, -3.0, 1.5, 23.0));
        QVERIFY2(!data.show(seriesOf({1.0, 2.5, 2.0}), values), "equal times are not the same");
        QVERIFY(!data.show(times, seriesOf({20.0, -3.0, 8.0})));
        QVERIFY(!data.show(times, averagesOf({20.0, -3.0, 7.0})));
        QCOMPARE(data.sample(2), QPointF(2.0, 8.0));
        QCOMPARE(data.boundingRect(), QRectF(1.0, 8.0, 1.5, 12.0));
    }
    void keepsUnitsOfEveryPoint()
    {
        UnitRuns runs;
        for (const QStringList &units : {QStringList{"°С", "°С", "Ом", "°С", "°С", "", "мВ", "мВ"},
                                         QStringList{"Ом", "Ом", "°С"}}) {
            runs.clear();
            for (const QString &unit : units)
                runs.append(unit);
            QStringList read;
            while (read.size() < runs.size())
                read.append(runs.at(read.size()));
            QCOMPARE(read, units);
        }
    }
    void statisticsEqualAPlainScan()
    {
        for (const int size : {0, 1, 2, 3, 3000}) {
            double time = 0; // the clock steps back now and then
            const Numbers times = generate(size, [&time](int, auto &random) {
                return time = qMax(0.0, time + random.bounded(12.0) - 2);
            });
            const Numbers values = generate(size, [](int i, auto &) { return i * 37 % 101; });
            QRandomGenerator random(5);
            const auto place = [&] { // at a point or between two
                const double between = random.bounded(13000.0) - 5;
                return size == 0 || random.bounded(2) ? between : times[random.bounded(size)];
            };
            for (int i = 0; i < 200; ++i) {
                const auto [from, to] = std::minmax({place(), place()});
                const IntervalStatistics found =
                    intervalStatistics(seriesOf(times), seriesOf(values), from, to);
                const IntervalStatistics expected = plainStatistics(times, values, from, to);
                QCOMPARE(found.count, expected.count);
                QVERIFY(qAbs(found.mean - expected.mean) < 1e-9);
                QVERIFY(qAbs(found.deviation - expected.deviation) < 1e-9);
            }
        }
    }
    void pairsByTime()
    {
        // "point-reference point", counted from 0
        const QVector<std::tuple<Numbers, Numbers, QString>> data = {
            {{1, 2, 3}, {0.5, 1.5, 2.5}, "0-0 1-1 2-2"},
            {{1, 2, 3}, {1.2, 2.2}, "1-0 2-1"}, // the reference begins later
            {{1, 2, 3}, {1, 2, 3}, "0-0 1-1 2-2"},
            {{2, 3}, {1, 2}, "0-0 1-1"},            // at the predecessor's time
            {{5, 6, 7}, {1, 2, 3, 5.5}, "0-0 1-3"}, // before it: skipped
            {{1, 2, 3}, {0.2, 1.1, 1.2, 1.3, 2.5}, "0-0 1-1 2-4"},
            {{1, 2, 3, 4}, {0.5, 3.5}, "0-0 3-1"}, // none between: the point has none
            {{1, 2, 3}, {0.5}, "0-0"},
            {{1, 2}, {5, 6}, ""},
            {{1, 1, 1}, {1, 1}, "0-0 1-1"}, // time stands still
            {{1, 2}, {}, ""},
            {{}, {1, 2}, ""}};
        for (const auto &[times, referenceTimes, expected] : data) {
            QStringList pairs;
            pairDifferences(seriesOf(times), seriesOf(referenceTimes),
                            [&pairs](int point, int reference) {
                                pairs += QString("%1-%2").arg(point).arg(reference);
                            });
            QCOMPARE(pairs.join(' '), expected);
        }
    }
    void writesValues()
    {
        // value, average, change
        const QVector<std::tuple<signed, uchar, uchar, QString>> data = {
            {0, 4, 4, "21.50 20.75 1.5000"}, // two decimals at least
            {5, 3, 3, "21.50000 20.75000 1.500"},
            {-1, 3, 6, "21.500 20.750 1.500"},
            {-1, 0, 6, "21.500000 20.750000 1.500000"}, // those of the main channel
            {-1, 0, 0, "21.50 20.75 1.50"},
            {-1, 1, 6, "21.50 20.75 1.5"}};
        QCOMPARE(row(0, 1), "0|--|--||||");
        add(20, 1, 1);
        QCOMPARE(row(0, 1), "1|20.00|20.00|1|°С||");
        add(21.5, 2.26, 1);
        QCOMPARE(row(0, 1), "2|21.50|20.75|2|°С|1.3|1.50");
        for (const auto &[asked, ofChannel, ofMainChannel, expected] : data) {
            plot().devices()[0].ch[1].precision = ofChannel;
            plot().devices()[0].ch[0].precision = ofMainChannel;
            QCOMPARE(plot().getChMeasStr(0, 1, asked) + ' ' + plot().getChAverStr(0, 1, asked) +
                         ' ' + plot().getChDYStr(0, 1),
                     expected);
        }
    }
    void readsByIndex()
    {
        plot().addDev(2, 0);
        for (const int qwtIndex : {2, 9}) { // without channels, and not on the plot
            QCOMPARE(row(qwtIndex, 0) + row(qwtIndex, 255), "0|--|||-||0|--|||-||");
            QCOMPARE(plot().getChMeas(qwtIndex) + plot().getChTime(qwtIndex, 0), 0.0);
            QCOMPARE(int(plot().getPrecision(qwtIndex, 0)), 0);
        }
        for (const double time : {12.499, 12.5, 1e6})
            add(10 + time, time);
        QStringList read;
        for (const int index : {0, 1, 2, -1, 3, -7})
            read += QStringList({QString::number(plot().getChMeas(-1, 255, index), 'g', 9),
                                 QString::number(plot().getChTime(-1, 255, index), 'g', 9),
                                 plot().getChMeasStr(-1, 255, 2, index),
                                 plot().getChAverStr(-1, 255, 2, index),
                                 plot().getChTimeStr(-1, 255, index)})
                        .join(' ');
        plot().devices()[0].mainCh = 9; // where the main channel does not exist it is the first
        QCOMPARE(plot().getChMeas(), 1000010.0);
        const QString newest = "1000010 1000000 1000010.00 333351.67 1e+06";
        QCOMPARE(read, QStringList({"22.499 12.499 22.50 22.50 12", "22.5 12.5 22.50 22.50 13",
                                    newest, newest, newest, newest}));
    }
};

QTEST_MAIN(TestSeries)
#include "tst_series.moc"
