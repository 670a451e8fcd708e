#include "plot/envelope.h"
#include "plot/envelopecurve.h"

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>
#include <qwt_scale_map.h>

#include <cmath>

namespace
{

struct History {
    Series times;
    Series values;
};

History noisyHistory(int count, double secondsPerPoint)
{
    QRandomGenerator random(5);
    History history;
    for (int i = 0; i < count; ++i) {
        history.times.append(i * secondsPerPoint);
        history.values.append(random.bounded(10.0) + (i % 777 == 3 ? 40 : 0));
    }
    return history;
}

/** Column by column over every single point. */
std::vector<ColumnRun> runsPointByPoint(const History &history, const PixelColumns &columns)
{
    std::vector<ColumnRun> runs;
    for (int i = 0; i < history.times.size(); ++i) {
        const int column = columns.columnOf(history.times[i]);
        if (runs.empty() || runs.back().column != column)
            runs.push_back({column, i, i, {}});
        runs.back().last = i;
        runs.back().values.include(history.values[i]);
    }
    return runs;
}

/** A curve that lets a test paint it onto a picture of 200 x 100 pixels. */
class PaintedCurve : public EnvelopeCurve
{
public:
    explicit PaintedCurve(qreal width)
        : EnvelopeCurve(Qt::black, width)
    {
    }

    QImage paint(double fromTime, double toTime, double fromValue, double toValue) const
    {
        QImage image(200, 100, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setPen(pen());
        QwtScaleMap x;
        x.setPaintInterval(0, 200);
        x.setScaleInterval(fromTime, toTime);
        QwtScaleMap y;
        y.setPaintInterval(100, 0);
        y.setScaleInterval(fromValue, toValue);
        drawLines(&painter, x, y, QRectF(0, 0, 200, 100), 0, static_cast<int>(dataSize()) - 1);
        return image;
    }
};

bool isBlack(const QImage &image, int x, int y)
{
    return qGray(image.pixel(x, y)) < 128;
}

} // namespace

Q_DECLARE_METATYPE(History)
Q_DECLARE_METATYPE(PixelColumns)

class TestEnvelope : public QObject
{
    Q_OBJECT

private slots:
    void findsTheColumnOfATime_data();
    void findsTheColumnOfATime();
    void runsEqualThoseOfSinglePoints_data();
    void runsEqualThoseOfSinglePoints();
    void stepsStayFewInALongHistory();
    void denseColumnsFillTheirSpan();
    void sparsePointsAreJoinedByLines();
    void sparseAndDensePointsAreJoined();
    void survivesExtremeNumbers();
};

void TestEnvelope::findsTheColumnOfATime_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<int>("column");
    QTest::newRow("left edge") << 100.0 << 0;
    QTest::newRow("within a column") << 100.9 << 0;
    QTest::newRow("last column") << 119.9 << 9;
    QTest::newRow("right edge is beyond") << 120.0 << 10;
    QTest::newRow("just left of the canvas") << 99.999 << -1;
    QTest::newRow("far to the left") << -1e300 << -1;
    QTest::newRow("far to the right") << 1e300 << 10;
}

void TestEnvelope::findsTheColumnOfATime()
{
    QFETCH(double, time);
    QTEST(PixelColumns({100, 2, 10}).columnOf(time), "column");
}

void TestEnvelope::runsEqualThoseOfSinglePoints_data()
{
    QTest::addColumn<History>("history");
    QTest::addColumn<PixelColumns>("columns");
    const History noisy = noisyHistory(30000, 0.5);
    QTest::newRow("all of it") << noisy << PixelColumns{0, 15000.0 / 300, 300};
    QTest::newRow("window in the middle") << noisy << PixelColumns{4000, 1.7, 300};
    QTest::newRow("fewer points than columns") << noisy << PixelColumns{4000, 0.01, 300};
    QTest::newRow("beyond the newest point") << noisy << PixelColumns{20000, 1, 300};
    QTest::newRow("no points") << History() << PixelColumns{0, 1, 300};
    QTest::newRow("one point") << noisyHistory(1, 1) << PixelColumns{0, 1, 300};

    History setBack = noisyHistory(9000, 1);
    for (int i = 0; i < 9000; ++i) {
        setBack.times.append(3000.25 + i);
        setBack.values.append(-i);
    }
    QTest::newRow("clock set back, all") << setBack << PixelColumns{0, 40, 300};
    QTest::newRow("clock set back, at the step") << setBack << PixelColumns{8900, 0.5, 300};

    History standing;
    for (int i = 0; i < 5000; ++i) {
        standing.times.append(12);
        standing.values.append(i);
    }
    QTest::newRow("clock standing still") << standing << PixelColumns{0, 1, 300};
}

void TestEnvelope::runsEqualThoseOfSinglePoints()
{
    QFETCH(const History, history);
    QFETCH(const PixelColumns, columns);
    const QVector<ColumnRun> runs = columnRuns(history.times, history.values, columns);
    const QVector<ColumnRun> expected = runsPointByPoint(history, columns);
    QCOMPARE(runs.size(), expected.size());
    for (int i = 0; i < runs.size(); ++i) {
        QCOMPARE(runs[i].column, expected[i].column);
        QCOMPARE(runs[i].first, expected[i].first);
        QCOMPARE(runs[i].last, expected[i].last);
        QCOMPARE(runs[i].values, expected[i].values);
    }
}

void TestEnvelope::stepsStayFewInALongHistory()
{
    const PixelColumns columns{0, 1e4, 100};
    int blocksRead = 0;
    const History history = noisyHistory(1000000, 1);
    columnRuns(history.times, history.values, columns, &blocksRead);
    // a column of 10,000 points ends in the middle of blocks of every level at both of its sides
    QVERIFY2(blocksRead < 100 * 200, qPrintable(QString::number(blocksRead)));

    int blocksReadOfMore = 0;
    const History tenfold = noisyHistory(10000000, 0.1);
    columnRuns(tenfold.times, tenfold.values, columns, &blocksReadOfMore);
    QVERIFY2(blocksReadOfMore < 2 * blocksRead, qPrintable(QString::number(blocksReadOfMore)));
}

void TestEnvelope::denseColumnsFillTheirSpan()
{
    // Values fall back and forth between 2 and 8 ten times per pixel.
    Series times;
    Series values;
    for (int i = 0; i < 2000; ++i) {
        times.append(i / 10.0);
        values.append(i % 2 ? 8 : 2);
    }
    PaintedCurve curve(1);
    curve.setSeries(times, values);
    const QImage image = curve.paint(0, 200, 0, 10);
    for (int x = 0; x < 199; ++x) {
        QVERIFY2(isBlack(image, x, 21) && isBlack(image, x, 50) && isBlack(image, x, 79),
                 qPrintable(QString("column %1 has a hole").arg(x)));
        QVERIFY(!isBlack(image, x, 17) && !isBlack(image, x, 83));
    }
}

void TestEnvelope::sparsePointsAreJoinedByLines()
{
    Series times;
    Series values;
    for (const double time : {-50.0, 50.0, 250.0}) {
        times.append(time);
        values.append(5);
    }
    PaintedCurve curve(2);
    curve.setSeries(times, values);
    const QImage image = curve.paint(0, 200, 0, 10);
    for (int x = 0; x < 200; ++x) {
        QVERIFY2(isBlack(image, x, 49) && isBlack(image, x, 50),
                 qPrintable(QString("column %1 has a hole").arg(x)));
    }
}

void TestEnvelope::sparseAndDensePointsAreJoined()
{
    Series times;
    Series values;
    for (const double time : {50.5, 150.2, 150.4, 150.6, 190.5}) {
        times.append(time);
        values.append(times.size() == 1 ? 2 : 8);
    }
    PaintedCurve curve(2);
    curve.setSeries(times, values);
    const QImage image = curve.paint(0, 200, 0, 10);
    QVERIFY2(isBlack(image, 100, 50), "no line leads up to the dense column");
    QVERIFY2(!isBlack(image, 150, 50), "the dense column reaches down to the point before");
    QVERIFY2(isBlack(image, 170, 20), "no line leads away from the dense column");
}

void TestEnvelope::survivesExtremeNumbers()
{
    const double infinity = std::numeric_limits<double>::infinity();
    Series times;
    Series values;
    int i = 0;
    for (const double value : {1.7e308, -1299.0, 5.0, infinity, infinity, 5.0, 1e300, 5.0}) {
        times.append(25 * i++);
        values.append(value);
    }
    PaintedCurve curve(1);
    curve.setSeries(times, values);
    const QImage image = curve.paint(0, 200, 4.999999, 5.000001);
    bool marked = false;
    for (int y = 0; y < 100; ++y)
        marked = marked || isBlack(image, 50, y);
    QVERIFY2(marked, "the line from far below to 5.0 is missing");
    curve.paint(0, 1e-9, -1e300, 1e300); // points all but one beyond the canvas
}

QTEST_MAIN(TestEnvelope)
#include "tst_envelope.moc"
