#include "plot/frameclock.h"
#include "plotmouse.h"

#include <QElapsedTimer>
#include <qwt_plot_item.h>

// How often is painted. The clock that tells when is the system's: counts are upper bounds in
// windows of a second, wherever these begin, so a slow machine cannot break them.

class TestFrameClock : public QObject
{
    Q_OBJECT

private slots:
    void gathersWishes();
    void flushesWhatIsDue();
    void comesAgainForWishesOfItsListeners();
    void pointsPaintAtMostThirtyTimesASecond();
    void nothingIsPaintedWhereNothingChanged();
};

namespace
{

/**
 * Writes down when the curves are painted, in milliseconds: an item of the plot is drawn with them.
 * What moves above the canvas is painted from what they left there.
 */
class PaintLog : public QwtPlotItem
{
public:
    explicit PaintLog(QwtPlot &plot)
    {
        attach(&plot); // which owns this
        m_clock.start();
    }
    int count() const { return m_times.size(); }
    /** The most paints that any second saw. */
    int mostInASecond() const
    {
        int most = 0;
        for (auto first = m_times.begin(); first != m_times.end(); ++first) {
            const auto end = std::lower_bound(first, m_times.end(), *first + 1000);
            most = std::max(most, int(end - first));
        }
        return most;
    }
    void draw(QPainter *, const QwtScaleMap &, const QwtScaleMap &, const QRectF &) const override
    {
        m_times.append(m_clock.elapsed());
    }

private:
    QElapsedTimer m_clock;
    mutable QVector<qint64> m_times;
};

} // namespace

void TestFrameClock::gathersWishes()
{
    FrameClock clock;
    QSignalSpy frames(&clock, &FrameClock::frame);
    QVERIFY(!clock.isDue());
    for (int i = 0; i < 1000; ++i)
        clock.request();
    QVERIFY(clock.isDue());
    QCOMPARE(frames.count(), 0);
    QTRY_COMPARE(frames.count(), 1);
    QVERIFY(!clock.isDue());
    QVERIFY(!frames.wait(150)); // one frame for all of them
    clock.request();
    QTRY_COMPARE(frames.count(), 2);
}

void TestFrameClock::flushesWhatIsDue()
{
    FrameClock clock;
    QSignalSpy frames(&clock, &FrameClock::frame);
    clock.flush();
    QCOMPARE(frames.count(), 0);
    clock.request();
    clock.flush();
    QCOMPARE(frames.count(), 1);
    QVERIFY(!frames.wait(150)); // it does not come a second time
}

void TestFrameClock::comesAgainForWishesOfItsListeners()
{
    FrameClock clock;
    QSignalSpy frames(&clock, &FrameClock::frame);
    connect(&clock, &FrameClock::frame, &clock, [&] {
        if (frames.count() < 3)
            clock.request();
    });
    clock.request();
    QTRY_COMPARE(frames.count(), 3);
    QVERIFY(!frames.wait(150));
}

void TestFrameClock::pointsPaintAtMostThirtyTimesASecond()
{
    PlotOnScreen screen;
    QVERIFY(screen.mouse.isReady());
    auto &log = *new PaintLog(screen.plot);
    QSignalSpy frames(&screen.plot.frameClock(), &FrameClock::frame);
    int points = 0;
    QElapsedTimer clock;
    clock.start();
    QTimer source;
    connect(&source, &QTimer::timeout, this, [&] {
        screen.add(20 + points % 7, points); // in fits and starts: the axes change all the time
        screen.plot.setChColor(points % 2 ? Qt::red : Qt::blue);
        screen.plot.setMeasPoint({points * 1.0, 20});
        screen.mouse.moveTo({100 + points % 300, 100});
        if (++points >= 1000 && clock.elapsed() > 1500)
            source.stop();
    });
    source.start(0);
    QTRY_VERIFY_WITH_TIMEOUT(!source.isActive(), 60000);
    QTRY_VERIFY(!screen.plot.frameClock().isDue());
    QVERIFY(frames.count() > 0);
    QVERIFY2(log.count() > 0, "nothing was painted at all");
    QVERIFY2(log.mostInASecond() <= 30, qPrintable(QString::number(log.mostInASecond())));
    QCOMPARE(screen.plot.getChMeasCount(), points);
}

void TestFrameClock::nothingIsPaintedWhereNothingChanged()
{
    PlotOnScreen screen;
    QVERIFY(screen.mouse.isReady());
    screen.addRamp(65);
    screen.mouse.moveTo({300, 200});
    QTRY_VERIFY(!screen.plot.frameClock().isDue());
    auto &log = *new PaintLog(screen.plot);
    screen.plot.replot();
    QTRY_COMPARE(log.count(), 1);
    QSignalSpy frames(&screen.plot.frameClock(), &FrameClock::frame);
    for (int x = 300; x < 400; x += 5) // the cross-hair has a layer of its own
        screen.mouse.moveTo({x, 200});
    screen.plot.updLabelScale();
    screen.plot.setMeasShow(true);
    screen.plot.setAverShow(true);
    screen.mouse.click({300, 200}, Qt::MiddleButton);
    QVERIFY(!frames.wait(200));
    QCOMPARE(frames.count(), 0);
    QCOMPARE(log.count(), 1);
}

QTEST_MAIN(TestFrameClock)
#include "tst_frameclock.moc"
