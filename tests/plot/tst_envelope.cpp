#include "plot/envelope.h"
#include "plot/envelopecurve.h"

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>
#include <qwt_painter.h>
#include <qwt_scale_map.h>

#include <cmath>
#include <functional>

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

History historyOf(int count, const std::function<QPointF(int, QRandomGenerator &)> &point)
{
    QRandomGenerator random(5);
    History history;
    for (int i = 0; i < count; ++i) {
        const QPointF next = point(i, random);
        history.append(next.x(), next.y());
    }
    return history;
}

History noisyHistory(int count, double secondsPerPoint)
{
    return historyOf(count, [=](int i, QRandomGenerator &random) {
        return QPointF(i * secondsPerPoint, random.bounded(10.0) + (i % 777 == 3 ? 40 : 0));
    });
}

/** Points that come in bursts of all lengths, with pauses of all lengths between. */
History burstyHistory(int count)
{
    double time = 0;
    return historyOf(count, [&time](int i, QRandomGenerator &random) {
        time += random.bounded(50) == 0 ? std::exp(random.bounded(9.0)) : random.bounded(0.2);
        return QPointF(time, random.bounded(1.0) + (i % 1009 == 7 ? -30 : 0));
    });
}

/** A clock that is set back by 2000 s after 3000 s. */
History setBackHistory()
{
    return historyOf(6000, [](int i, QRandomGenerator &random) {
        return QPointF(i < 3000 ? i : i - 2000.25, random.bounded(10.0));
    });
}

QString text(const std::vector<ColumnRun> &runs)
{
    QString text;
    QDebug out(&text);
    for (const ColumnRun &run : runs)
        out << qSetRealNumberPrecision(17) << run.column << run.first << run.last << run.values.min
            << run.values.max << run.lastValue << '\n';
    return text;
}

/** Column by column over every single point. */
template<typename Values>
QString plainText(const History &history, const Values &values, const PixelColumns &columns)
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
    return text(runs);
}

constexpr int canvasWidth = 200;
constexpr int canvasHeight = 100;

/** A curve drawn as Qwt does, on a canvas of 200 x 100 pixels, `scale` device pixels to a pixel. */
QImage painted(const QwtPlotCurve &curve, const QRectF &view, int scale)
{
    QImage image(canvasWidth * scale, canvasHeight * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    QPainter painter(&image);
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
    painter.end();
    return image;
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
            // half covered counts: a line on the border of two pixels inks both
            if (qGray(from.pixel(x, y)) < 130 && !hasInkAround(in, x, y))
                missing += QStringLiteral(" %1,%2").arg(x).arg(y);
    return missing;
}

/** Where a curve is painted otherwise than point by point; "" when nowhere. */
QString wrongInk(const EnvelopeCurve &curve, const QRectF &view, int scale)
{
    const QImage image = painted(curve, view, scale);
    QVector<QPointF> points;
    for (std::size_t i = 0; i < curve.dataSize(); ++i)
        points.append(curve.sample(int(i)));
    QwtPlotCurve plainCurve;
    plainCurve.setPen(curve.pen());
    plainCurve.setSamples(points);
    QString wrong;
    // The plain curve rounds to pixels, not to device pixels, and begins a new line, with caps,
    // every few points: on a fine screen only without that does it show where the points are.
    for (const bool isRounding : {false, true}) {
        if (isRounding && scale > 1)
            continue;
        QwtPainter::setRoundingAlignment(isRounding);
        QwtPainter::setPolylineSplitting(isRounding);
        const QImage plain = painted(plainCurve, view, scale);
        const int edge = curve.pen().width() * scale;
        wrong += inkMissing(plain, image, edge) + inkMissing(image, plain, edge);
    }
    QwtPainter::setRoundingAlignment(true);
    QwtPainter::setPolylineSplitting(true);
    return wrong;
}

} // namespace

class TestEnvelope : public QObject
{
    Q_OBJECT

private slots:
    void findsTheColumnOfATime()
    {
        const QVector<QPair<double, int>> columns = {
            {100, 0}, {100.9, 0}, {119.9, 9}, {120, 10}, {99.999, -1}, {-1e300, -1}, {1e300, 10}};
        for (const auto &[time, column] : columns)
            QCOMPARE(PixelColumns({100, 2, 10}).columnOf(time), column);
    }
    void runsEqualThoseOfSinglePoints()
    {
        const History standing = historyOf(5000, [](int i, auto &) { return QPointF(12, i); });
        QRandomGenerator random(3);
        for (const History &whole : {History(), noisyHistory(1, 1), noisyHistory(30000, 0.5),
                                     burstyHistory(30000), setBackHistory(), standing}) {
            const double length = whole.size() < 2 ? 1 : whole.times.last();
            const auto times = std::make_shared<TimeRuns>();
            ColumnRuns ofValues(times); // one picture after the other, while points come
            ColumnRuns ofAverages(times);
            PixelColumns columns;
            History history;
            for (int round = 0; round < 60; ++round) { // of all widths, some beyond the points
                const double seconds = length / 200 * std::exp(3 - random.bounded(10.0));
                if (round % 3 == 0)
                    columns = {length * (random.bounded(1.5) - 0.2), seconds, 300};
                for (int i = history.size(); i < whole.size() * round / 50.0 && i < whole.size();
                     ++i)
                    history.append(whole.times[i], whole.values[i]);
                ofValues.divide(columns, history.times, history.values);
                QCOMPARE(text(ofValues.runs()), plainText(history, history.values, columns));
                if (round % 2 == 0)
                    continue; // not on show at the moment
                ofAverages.divide(columns, history.times, history.averages);
                QCOMPARE(text(ofAverages.runs()), plainText(history, history.averages, columns));
            }
        }
    }
    void inkIsThatOfEveryPoint()
    {
        const History steps =
            historyOf(60, [](int i, auto &) { return QPointF(i * 13.7, i / 5 % 2 ? 38.3 : 5.7); });
        const History line = historyOf(700, [](int i, auto &) { return QPointF(i, i / 14.0); });
        const History wave =
            historyOf(3000, [](int i, auto &) { return QPointF(i, 25 + 20 * std::sin(i / 80.0)); });
        QRandomGenerator random(8);
        for (const History &history :
             {steps, line, wave, noisyHistory(5000, 2), burstyHistory(5000), setBackHistory()})
            for (int round = 0; round < 16; ++round) { // windows of all widths and heights
                const double width = history.times.last() * std::exp(0.2 - random.bounded(6.0));
                const double height = 60 * std::exp(1 - random.bounded(4.0));
                const double left = random.bounded(history.times.last()) - width / 2;
                const QRectF view(left, random.bounded(20.0) - height / 2, width, height);
                EnvelopeCurve curve(Qt::black, 1 + round % 2);
                if (round % 3 == 0)
                    curve.setSeries(history.times, history.averages);
                else
                    curve.setSeries(history.times, history.values);
                for (const int scale : {1, 2}) {
                    const QString wrong = wrongInk(curve, view, scale);
                    QVERIFY2(wrong.isEmpty(), qPrintable(QString::number(round) + wrong));
                }
            }
    }
};

QTEST_MAIN(TestEnvelope)
#include "tst_envelope.moc"
