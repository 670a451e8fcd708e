#include "plot/envelope.h"
#include "plot/envelopecurve.h"

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>
#include <qwt_null_paintdevice.h>
#include <qwt_painter.h>
#include <qwt_scale_map.h>

#include <cmath>

namespace
{

struct History {
    Series times;
    Series values;
    MovingAverages averages;

    void append(double time, double value)
    {
        times.append(time);
        values.append(value);
        averages.follow(values);
    }
    int size() const { return times.size(); }
};

History noisyHistory(int count, double secondsPerPoint)
{
    QRandomGenerator random(5);
    History history;
    for (int i = 0; i < count; ++i)
        history.append(i * secondsPerPoint, random.bounded(10.0) + (i % 777 == 3 ? 40 : 0));
    return history;
}

/** Points that come in bursts of all lengths, with pauses of all lengths between. */
History burstyHistory(int count)
{
    QRandomGenerator random(5);
    History history;
    double time = 0;
    for (int i = 0; i < count; ++i) {
        time += random.bounded(50) == 0 ? std::exp(random.bounded(9.0)) : random.bounded(0.2);
        history.append(time, random.bounded(1.0) + (i % 1009 == 7 ? -30 : 0));
    }
    return history;
}

/** A clock that is set back by 6000 s after 9000 s. */
History setBackHistory()
{
    History history;
    QRandomGenerator random(5);
    for (int i = 0; i < 18000; ++i)
        history.append(i < 9000 ? i : i - 6000.25, random.bounded(10.0));
    return history;
}

/** Column by column over every single point. */
template<typename Values>
std::vector<ColumnRun> runsPointByPoint(const History &history, const Values &values,
                                        const PixelColumns &columns)
{
    std::vector<ColumnRun> runs;
    for (int i = 0; i < history.size(); ++i) {
        const int column = columns.columnOf(history.times[i]);
        if (runs.empty() || runs.back().column != column)
            runs.push_back({{column, i, i}, {}, 0});
        runs.back().last = i;
        runs.back().lastValue = values[i];
        runs.back().values.include(values[i]);
    }
    return runs;
}

/** What differs between the runs, "" when they are equal. */
QString difference(const std::vector<ColumnRun> &runs, const std::vector<ColumnRun> &expected)
{
    for (std::size_t i = 0; i < std::min(runs.size(), expected.size()); ++i) {
        if (runs[i].column != expected[i].column || runs[i].first != expected[i].first ||
            runs[i].last != expected[i].last || !(runs[i].values == expected[i].values) ||
            runs[i].lastValue != expected[i].lastValue)
            return QStringLiteral("run %1 differs").arg(i);
    }
    return runs.size() == expected.size()
               ? QString()
               : QStringLiteral("%1 runs instead of %2").arg(runs.size()).arg(expected.size());
}

constexpr int canvasWidth = 200;
constexpr int canvasHeight = 100;

/** Notes the lists of rectangles that are painted, and the hints that held for them. */
class BarLists : public QwtNullPaintDevice
{
public:
    QVector<int> lengths;
    QPainter::RenderHints hints;

protected:
    QSize sizeMetrics() const override { return {canvasWidth, canvasHeight}; }
    void drawRects(const QRect *, int count) override
    {
        lengths.append(count);
        hints |= paintEngine()->painter()->renderHints();
    }
};

/** Draws a curve as Qwt does, on a canvas of 200 x 100 pixels. */
void draw(const QwtPlotCurve &curve, const QRectF &view, QPaintDevice *device)
{
    QPainter painter(device);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(static_cast<QPainter::RenderHint>(8)); // deprecated, yet Qwt sets it, too
    QwtScaleMap x;
    x.setPaintInterval(0, canvasWidth);
    x.setScaleInterval(view.left(), view.right());
    QwtScaleMap y;
    y.setPaintInterval(canvasHeight, 0);
    y.setScaleInterval(view.top(), view.bottom());
    const QRectF canvas(0, 0, canvasWidth, canvasHeight);
    painter.setClipRect(canvas);
    curve.drawSeries(&painter, x, y, canvas, 0, static_cast<int>(curve.dataSize()) - 1);
}

/** What it looks like, `scale` device pixels to a pixel. */
QImage painted(const QwtPlotCurve &curve, const QRectF &view, int scale = 1)
{
    QImage image(canvasWidth * scale, canvasHeight * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    draw(curve, view, &image);
    return image;
}

/** The same history drawn by the plain curve, point by point. */
template<typename Values>
QImage paintedPlainly(const History &history, const Values &values, const QPen &pen,
                      const QRectF &view, int scale)
{
    QVector<QPointF> points;
    for (int i = 0; i < history.size(); ++i)
        points.append({history.times[i], values[i]});
    QwtPlotCurve curve;
    curve.setPen(pen);
    curve.setSamples(points);
    return painted(curve, view, scale);
}

/** Half covered counts: a line on the border of two pixels inks both. */
bool isBlack(const QImage &image, int x, int y)
{
    return qGray(image.pixel(x, y)) < 130;
}

/** Ink counts from a quarter on: a line of short pieces spreads over more pixels than a long one.
 */
bool hasInkAround(const QImage &image, int x, int y)
{
    for (int dx = -1; dx <= 1; ++dx)
        for (int dy = -1; dy <= 1; ++dy)
            if (qGray(image.pixel(x + dx, y + dy)) < 192)
                return true;
    return false;
}

/** Inked pixels of one picture that have no ink within a pixel in the other; "" for none. What
 * belongs to those nearer than `edge` to the edge, at least 1, may lie beyond it. */
QString inkMissing(const QImage &from, const QImage &in, int edge)
{
    QString missing;
    for (int y = edge; y < from.height() - edge; ++y)
        for (int x = edge; x < from.width() - edge; ++x)
            if (isBlack(from, x, y) && !hasInkAround(in, x, y))
                missing += QStringLiteral(" %1,%2").arg(x).arg(y);
    return missing;
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
    void runsGrowWithTheSeries_data();
    void runsGrowWithTheSeries();
    void otherColumnsAreDividedAnew();
    void longHistoryGrows_data();
    void longHistoryGrows();
    void anotherSeriesIsDividedAnew();
    void inkIsThatOfEveryPoint_data();
    void inkIsThatOfEveryPoint();
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
    QTest::newRow("edges between binary fractions") << noisy << PixelColumns{0.1, 0.7, 300};
    QTest::newRow("window in the middle") << noisy << PixelColumns{4000, 1.7, 300};
    QTest::newRow("fewer points than columns") << noisy << PixelColumns{4000, 0.01, 300};
    QTest::newRow("beyond the newest point") << noisy << PixelColumns{20000, 1, 300};
    QTest::newRow("before the first point") << noisy << PixelColumns{-20000, 1, 300};
    QTest::newRow("no points") << History() << PixelColumns{0, 1, 300};
    QTest::newRow("one point") << noisyHistory(1, 1) << PixelColumns{0, 1, 300};
    const History bursty = burstyHistory(30000);
    QTest::newRow("bursts and gaps, all")
        << bursty << PixelColumns{0, bursty.times.last() / 99, 100};
    QTest::newRow("bursts and gaps, middle") << bursty << PixelColumns{bursty.times[15000], 3, 300};
    const History setBack = setBackHistory();
    QTest::newRow("clock set back, all") << setBack << PixelColumns{0, 40, 300};
    QTest::newRow("clock set back, at the step") << setBack << PixelColumns{8900, 0.5, 300};

    History standing;
    for (int i = 0; i < 5000; ++i)
        standing.append(12, i);
    QTest::newRow("clock standing still") << standing << PixelColumns{0, 1, 300};
}

void TestEnvelope::runsEqualThoseOfSinglePoints()
{
    QFETCH(const History, history);
    QFETCH(const PixelColumns, columns);
    ColumnRuns ofValues;
    ofValues.divide(columns, history.times, history.values);
    QCOMPARE(difference(ofValues.runs(), runsPointByPoint(history, history.values, columns)),
             QString());
    ColumnRuns ofAverages;
    ofAverages.divide(columns, history.times, history.averages);
    QCOMPARE(difference(ofAverages.runs(), runsPointByPoint(history, history.averages, columns)),
             QString());
}

void TestEnvelope::runsGrowWithTheSeries_data()
{
    QTest::addColumn<History>("history");
    QTest::addColumn<PixelColumns>("columns");
    QTest::newRow("dense") << noisyHistory(300, 1) << PixelColumns{0, 30, 10};
    QTest::newRow("sparse") << noisyHistory(300, 1) << PixelColumns{50, 0.9, 200};
    QTest::newRow("bursts and gaps") << burstyHistory(300) << PixelColumns{20, 5, 100};
    History setBack;
    for (int i = 0; i < 300; ++i)
        setBack.append(i < 150 ? i : i - 100.5, i % 7);
    QTest::newRow("clock set back") << setBack << PixelColumns{20, 7, 20};
}

void TestEnvelope::runsGrowWithTheSeries()
{
    QFETCH(const History, history);
    QFETCH(const PixelColumns, columns);
    const auto expected = runsPointByPoint(history, history.values, columns);
    const auto expectedAverages = runsPointByPoint(history, history.averages, columns);
    for (int split = 0; split <= history.size(); ++split) {
        History growing;
        const auto times = std::make_shared<TimeRuns>();
        ColumnRuns ofValues(times);
        ColumnRuns ofAverages(times); // of a curve that is not on show all the time
        for (int i = 0; i <= history.size(); ++i) {
            if (i == split || i == history.size())
                ofValues.divide(columns, growing.times, growing.values);
            if (i == split / 2 || i == history.size())
                ofAverages.divide(columns, growing.times, growing.averages);
            if (i < history.size())
                growing.append(history.times[i], history.values[i]);
        }
        const QByteArray where = "split at " + QByteArray::number(split);
        QVERIFY2(difference(ofValues.runs(), expected).isEmpty(), where);
        QVERIFY2(difference(ofAverages.runs(), expectedAverages).isEmpty(), where);
    }
}

void TestEnvelope::otherColumnsAreDividedAnew()
{
    const History history = noisyHistory(5000, 1);
    ColumnRuns runs;
    for (const PixelColumns &columns :
         {PixelColumns{0, 50, 100}, PixelColumns{1, 50, 100}, PixelColumns{1, 40, 100},
          PixelColumns{1, 40, 30}, PixelColumns{0, 50, 100}}) {
        runs.divide(columns, history.times, history.values);
        QCOMPARE(difference(runs.runs(), runsPointByPoint(history, history.values, columns)),
                 QString());
    }
}

void TestEnvelope::longHistoryGrows_data()
{
    QTest::addColumn<bool>("setBack");
    QTest::newRow("times ascend") << false;
    QTest::newRow("a clock set back") << true;
}

void TestEnvelope::longHistoryGrows()
{
    QFETCH(bool, setBack);
    constexpr int count = 1000000;
    History history;
    for (int i = 0; i < count; ++i)
        history.append(setBack && i > count / 2 ? i - 0.5 : i, i % 100);
    if (setBack)
        history.append(count - 10.0, 1);
    const PixelColumns columns{0, 1.2e4, 100};
    ColumnRuns runs;
    runs.divide(columns, history.times, history.averages);
    // a column ends in the middle of blocks of every level, on both of its sides
    for (int round = 0; round < 20; ++round) { // seals blocks on the way
        for (int i = 0; i < 10; ++i)
            history.append(count + 10 * round + i, i);
        runs.divide(columns, history.times, history.averages);
    }
    QCOMPARE(difference(runs.runs(), runsPointByPoint(history, history.averages, columns)),
             QString());
}

void TestEnvelope::anotherSeriesIsDividedAnew()
{
    const History history = noisyHistory(100000, 1);
    EnvelopeCurve curve(Qt::black, 1);
    curve.setSeries(history.times, history.values);
    painted(curve, QRectF(0, 0, 130000, 50));

    // An equally long series must not pass for the one that was there.
    const History other = noisyHistory(history.size(), 0.5);
    curve.setSeries(other.times, other.values);
    const QImage image = painted(curve, QRectF(0, 0, 130000, 50));
    EnvelopeCurve fresh(Qt::black, 1);
    fresh.setSeries(other.times, other.values);
    QCOMPARE(image, painted(fresh, QRectF(0, 0, 130000, 50)));
}

void TestEnvelope::inkIsThatOfEveryPoint_data()
{
    QTest::addColumn<History>("history");
    QTest::addColumn<QRectF>("view");
    QTest::addColumn<bool>("ofAverages");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("scale");

    History wave;
    for (int i = 0; i < 3000; ++i)
        wave.append(i, 50 + 40 * std::sin(i / 80.0));
    History line;
    for (int i = 0; i < 700; ++i)
        line.append(i, i / 7.0);
    History steps;
    for (int i = 0; i < 60; ++i)
        steps.append(i * 13.7, i / 5 % 2 ? 80.3 : 20.7);
    const History noisy = noisyHistory(5000, 2);
    const History bursty = burstyHistory(5000);
    const History setBack = setBackHistory();
    const double burstyEnd = bursty.times.last();
    const struct {
        const char *name;
        const History &history;
        QRectF view;
    } pictures[] = {
        {"noise", noisy, {0, -5, 10000, 60}},
        {"noise, a window of it", noisy, {3000.3, -5, 700, 60}},
        {"noise, sparse", noisy, {3000.3, -5, 30, 60}},
        {"noise, flat", noisy, {0, -500, 10000, 1000}},
        {"noise, cut at top and bottom", noisy, {3000, 4, 300, 2}},
        {"wave, dense", wave, {0, 0, 3000, 100}},
        {"wave, a few points per column", wave, {0, 0, 500, 100}},
        {"straight line, dense", line, {0, 0, 700, 100}},
        {"straight line, flat", line, {0, -900, 700, 2000}},
        {"steps", steps, {0, 0, 800, 100}},
        {"bursts and gaps", bursty, {0, -35, burstyEnd, 40}},
        {"bursts and gaps, a window", bursty, {bursty.times[2000], -2, 2000, 4}},
        {"clock set back", setBack, {0, -1, 12000, 12}},
        {"clock set back, at the step", setBack, {8950, -1, 100, 12}},
    };
    for (const auto &picture : pictures)
        for (const bool ofAverages : {false, true})
            for (const int width : {1, 2})
                for (const int scale : {1, 2})
                    QTest::addRow("%s, %s, pen %d, %dx", picture.name,
                                  ofAverages ? "averages" : "values", width, scale)
                        << picture.history << picture.view << ofAverages << width << scale;
}

void TestEnvelope::inkIsThatOfEveryPoint()
{
    QFETCH(const History, history);
    QFETCH(const QRectF, view);
    QFETCH(bool, ofAverages);
    QFETCH(int, width);
    QFETCH(int, scale);
    EnvelopeCurve curve(Qt::black, width);
    if (ofAverages)
        curve.setSeries(history.times, history.averages);
    else
        curve.setSeries(history.times, history.values);
    const QImage image = painted(curve, view, scale);
    // The plain curve rounds to pixels, not to device pixels, and begins a new line, with caps,
    // every few points: on a fine screen only without that does it show where the points are.
    for (const bool isRounding : {false, true}) {
        if (isRounding && scale > 1)
            continue;
        QwtPainter::setRoundingAlignment(isRounding);
        QwtPainter::setPolylineSplitting(isRounding);
        const QImage plain =
            ofAverages ? paintedPlainly(history, history.averages, curve.pen(), view, scale)
                       : paintedPlainly(history, history.values, curve.pen(), view, scale);
        const int edge = width * scale;
        QCOMPARE(inkMissing(plain, image, edge), QString());
        QCOMPARE(inkMissing(image, plain, edge), QString());
    }
    QwtPainter::setRoundingAlignment(true);
    QwtPainter::setPolylineSplitting(true);
}

void TestEnvelope::denseColumnsFillTheirSpan()
{
    // Values fall back and forth between 2 and 8 ten times per pixel.
    History history;
    for (int i = 0; i < 2000; ++i)
        history.append(i / 10.0, i % 2 ? 8 : 2);
    EnvelopeCurve curve(Qt::black, 1);
    curve.setSeries(history.times, history.values);
    const QImage image = painted(curve, QRectF(0, 0, 200, 10));
    for (int x = 0; x < 199; ++x) {
        QVERIFY2(isBlack(image, x, 21) && isBlack(image, x, 50) && isBlack(image, x, 79),
                 qPrintable(QString("column %1 has a hole").arg(x)));
        QVERIFY(!isBlack(image, x, 17) && !isBlack(image, x, 83));
    }
    BarLists bars;
    draw(curve, QRectF(0, 0, 200, 10), &bars);
    QVERIFY2(bars.lengths == QVector<int>{200}, "each bar by itself costs many times as much");
    QVERIFY2(!bars.hints, "smoothed bars cost many times as much");
}

void TestEnvelope::sparsePointsAreJoinedByLines()
{
    History history;
    for (const double time : {-50.0, 50.0, 250.0})
        history.append(time, 5);
    EnvelopeCurve curve(Qt::black, 2);
    curve.setSeries(history.times, history.values);
    const QImage image = painted(curve, QRectF(0, 0, 200, 10));
    for (int x = 0; x < 200; ++x) {
        QVERIFY2(isBlack(image, x, 49) && isBlack(image, x, 50),
                 qPrintable(QString("column %1 has a hole").arg(x)));
    }
}

void TestEnvelope::sparseAndDensePointsAreJoined()
{
    History history;
    for (const double time : {50.5, 150.2, 150.4, 150.6, 190.5})
        history.append(time, history.size() == 0 ? 2 : 8);
    EnvelopeCurve curve(Qt::black, 2);
    curve.setSeries(history.times, history.values);
    const QImage image = painted(curve, QRectF(0, 0, 200, 10));
    QVERIFY2(isBlack(image, 100, 50), "no line leads up to the dense column");
    QVERIFY2(!isBlack(image, 150, 50), "the dense column reaches down to the point before");
    QVERIFY2(isBlack(image, 170, 20), "no line leads away from the dense column");
}

void TestEnvelope::survivesExtremeNumbers()
{
    const double infinity = std::numeric_limits<double>::infinity();
    History history;
    for (const double value : {1.7e308, -1299.0, 5.0, infinity, infinity, 5.0, 1e300, 5.0})
        history.append(25 * history.size(), value);
    EnvelopeCurve curve(Qt::black, 1);
    curve.setSeries(history.times, history.values);
    const QImage image = painted(curve, QRectF(0, 4.999999, 200, 0.000002));
    bool marked = false;
    for (int y = 0; y < 100; ++y)
        marked = marked || isBlack(image, 50, y);
    QVERIFY2(marked, "the line from far below to 5.0 is missing");
    painted(curve, QRectF(0, -1e300, 1e-9, 2e300)); // points all but one beyond the canvas
    painted(curve, QRectF(0, 4, 1e300, 2));         // all points in one column
    painted(curve, QRectF(1e17, 4, 1, 2));          // columns narrower than a time can tell
    curve.setSeries(history.times, history.averages);
    painted(curve, QRectF(0, 4, 200, 2));
}

QTEST_MAIN(TestEnvelope)
#include "tst_envelope.moc"
