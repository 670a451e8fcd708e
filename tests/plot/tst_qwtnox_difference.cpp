#include "numbers.h"
#include "plot/envelopecurve.h"
#include "plot/qwtnox.h"
#include "signallog.h"

#include <QtTest>
#include <qwt_plot_curve.h>

// A channel shown as the difference against another one.

class TestQwtNOXDifference : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void pairsByTime_data();
    void pairsByTime();
    void isFormedFromStoredPoints();
    void averagesTheLastTen();
    void laterPointsExtendIt();
    void requests_data();
    void requests();
    void clearingShowsTheValuesAgain();
    void changesItsReference();
    void endsWithItsReference_data();
    void endsWithItsReference();
    void ofAnotherInstrumentLeavesTheAxes();

private:
    void add(double value, double time, int qwtIndex, uchar ch)
    {
        m_plot->addPoint(value, time, "°С", qwtIndex, ch);
    }
    /** "channel of instrument", or "none", which is 255 and -1. */
    QString reference(int qwtIndex, uchar ch) const
    {
        uchar diffCh = 77;
        int diffQwtIndex = 77;
        m_plot->getChDiff(&diffCh, &diffQwtIndex, qwtIndex, ch);
        if (diffCh == 255 && diffQwtIndex == -1)
            return "none";
        return QString("%1 of %2").arg(diffCh).arg(diffQwtIndex);
    }
    QwtNOX::_ch &channel() { return m_plot->devices()[0].ch[0]; }
    /** What the curves of channel 0 show: their newest values. */
    QPair<double, double> newestShown()
    {
        const auto newest = [](const EnvelopeCurve *curve) {
            return curve->dataSize() == 0 ? -1.0 : curve->sample(int(curve->dataSize()) - 1).y();
        };
        return {newest(channel().measCurve), newest(channel().averCurve)};
    }

    std::unique_ptr<QwtNOX> m_plot;
};

void TestQwtNOXDifference::init()
{
    m_plot = std::make_unique<QwtNOX>();
    m_plot->addDev(0, 2);
    m_plot->addDev(1, 3);
    m_plot->setDevMain(0);
    for (int second = 1; second <= 3; ++second) {
        add(10 * second, second - 0.5, 1, 2);
        add(100 * second, second, 0, 0);
    }
}

void TestQwtNOXDifference::cleanup()
{
    m_plot.reset();
}

void TestQwtNOXDifference::pairsByTime_data()
{
    QTest::addColumn<Numbers>("times");
    QTest::addColumn<Numbers>("referenceTimes");
    QTest::addColumn<QString>("pairs"); // "point-reference point", counted from 0
    QTest::newRow("half a second before")
        << Numbers{1, 2, 3} << Numbers{0.5, 1.5, 2.5} << "0-0 1-1 2-2";
    QTest::newRow("reference begins later") << Numbers{1, 2, 3} << Numbers{1.2, 2.2} << "1-0 2-1";
    QTest::newRow("the same times") << Numbers{1, 2, 3} << Numbers{1, 2, 3} << "0-0 1-1 2-2";
    QTest::newRow("at the predecessor's time") << Numbers{2, 3} << Numbers{1, 2} << "0-0 1-1";
    QTest::newRow("before the predecessor: skipped")
        << Numbers{5, 6, 7} << Numbers{1, 2, 3, 5.5} << "0-0 1-3";
    QTest::newRow("only one of many between")
        << Numbers{1, 2, 3} << Numbers{0.2, 1.1, 1.2, 1.3, 2.5} << "0-0 1-1 2-4";
    QTest::newRow("none between: the point has none")
        << Numbers{1, 2, 3, 4} << Numbers{0.5, 3.5} << "0-0 3-1";
    QTest::newRow("the reference has ended") << Numbers{1, 2, 3} << Numbers{0.5} << "0-0";
    QTest::newRow("all later") << Numbers{1, 2} << Numbers{5, 6} << "";
    QTest::newRow("all earlier: the first point's alone")
        << Numbers{8, 9} << Numbers{1, 2} << "0-0";
    QTest::newRow("time stands still") << Numbers{1, 1, 1} << Numbers{1, 1} << "0-0 1-1";
    QTest::newRow("no reference points") << Numbers{1, 2} << Numbers{} << "";
    QTest::newRow("no points") << Numbers{} << Numbers{1, 2} << "";
}

void TestQwtNOXDifference::pairsByTime()
{
    QFETCH(Numbers, times);
    QFETCH(Numbers, referenceTimes);
    QStringList pairs;
    pairDifferences(seriesOf(times), seriesOf(referenceTimes), [&](int point, int reference) {
        pairs += QString("%1-%2").arg(point).arg(reference);
    });
    QTEST(pairs.join(' '), "pairs");
}

void TestQwtNOXDifference::isFormedFromStoredPoints()
{
    SignalLog log(*m_plot);
    m_plot->setChMode(ModeAuto);
    log.take();
    m_plot->setChDiff(2, 1, 0, 0);
    QCOMPARE(log.take(), QStringList({"onChange 0", "onChModeChange 0 0 1"}));
    QCOMPARE(reference(0, 0), QString("2 of 1"));
    QCOMPARE(numbersOf(channel().diffTime), Numbers({1, 2, 3}));
    QCOMPARE(numbersOf(channel().diffMeas), Numbers({90, 180, 270}));
    QCOMPARE(numbersOf(channel().diffAver), Numbers({90, 135, 180}));
    QCOMPARE(newestShown(), qMakePair(270.0, 180.0));
    QCOMPARE(m_plot->getChMeasStr(0, 0), QString("270.00"));
    QCOMPARE(m_plot->getChMeasStr(0, 0, -1, -1, false), QString("300.00"));
}

void TestQwtNOXDifference::averagesTheLastTen()
{
    for (int second = 4; second <= 12; ++second) {
        add(0, second - 0.5, 1, 2);
        add(second, second, 0, 0);
    }
    m_plot->setChDiff(2, 1); // the main channel of the main instrument
    QCOMPARE(channel().diffAver[9], (90 + 180 + 270 + 4 + 5 + 6 + 7 + 8 + 9 + 10) / 10.0);
    QCOMPARE(channel().diffAver[11], (270 + 4 + 5 + 6 + 7 + 8 + 9 + 10 + 11 + 12) / 10.0);
    add(0, 12.5, 1, 2);
    add(13, 13, 0, 0); // goes on with the same window
    QCOMPARE(channel().diffAver[12], (4 + 5 + 6 + 7 + 8 + 9 + 10 + 11 + 12 + 13) / 10.0);
    QCOMPARE(m_plot->getChAverStr(0, 0), QString("8.50"));
}

void TestQwtNOXDifference::laterPointsExtendIt()
{
    m_plot->setChDiff(2, 1, 0, 0);
    SignalLog log(*m_plot);
    add(400, 4, 0, 0); // the reference has nothing fresh
    QCOMPARE(log.take(), QStringList("onErrorAddPoint 0 0"));
    QCOMPARE(numbersOf(channel().diffMeas), Numbers({90, 180, 270}));
    add(40, 4.5, 1, 2);
    add(500, 5, 0, 0);
    QCOMPARE(numbersOf(channel().diffTime), Numbers({1, 2, 3, 5}));
    QCOMPARE(channel().diffMeas.last(), 460.0);
    QCOMPARE(newestShown(), qMakePair(460.0, 250.0));
    QCOMPARE(m_plot->getChDXStr(0, 0), QString("2.0"));
    m_plot->calcPrecision(16, 0, 0);
    QCOMPARE(m_plot->getChDYStr(0, 0), QString("190.0"));
}

void TestQwtNOXDifference::requests_data()
{
    QTest::addColumn<int>("diffCh");
    QTest::addColumn<int>("diffQwtIndex");
    QTest::addColumn<int>("qwtIndex");
    QTest::addColumn<int>("ch");
    QTest::addColumn<QString>("reference");
    QTest::addColumn<bool>("follows");
    QTest::newRow("another reference") << 1 << 1 << 0 << 0 << "1 of 1" << true;
    QTest::newRow("of the same instrument") << 1 << 0 << 0 << 0 << "1 of 0" << true;
    QTest::newRow("none") << 255 << -1 << 0 << 0 << "none" << true;
    QTest::newRow("an instrument that is gone") << 1 << 9 << 0 << 0 << "2 of 1" << true;
    QTest::newRow("no instrument, but a channel") << 1 << -1 << 0 << 0 << "2 of 1" << true;
    QTest::newRow("a channel beyond the last") << 3 << 1 << 0 << 0 << "2 of 1" << true;
    QTest::newRow("no channel, but an instrument") << 255 << 1 << 0 << 0 << "2 of 1" << true;
    QTest::newRow("for an unknown instrument") << 1 << 1 << 9 << 0 << "2 of 1" << false;
    QTest::newRow("for an unknown channel") << 1 << 1 << 0 << 2 << "2 of 1" << false;
}

void TestQwtNOXDifference::requests()
{
    QFETCH(int, diffCh);
    QFETCH(int, diffQwtIndex);
    QFETCH(int, qwtIndex);
    QFETCH(int, ch);
    QFETCH(bool, follows);
    m_plot->setChDiff(2, 1, 0, 0);
    m_plot->setChMode(ModeZoom);
    m_plot->setChDiff(uchar(diffCh), diffQwtIndex, qwtIndex, uchar(ch));
    QTEST(reference(0, 0), "reference");
    QCOMPARE(m_plot->getChMode(), follows ? ModeFollow : ModeZoom);
    QCOMPARE(reference(9, 0), QString("none"));
    QCOMPARE(reference(0, 7), QString("none"));
}

void TestQwtNOXDifference::clearingShowsTheValuesAgain()
{
    m_plot->setChDiff(2, 1, 0, 0);
    m_plot->setChDiff(255, -1, 0, 0);
    QCOMPARE(newestShown(), qMakePair(300.0, 200.0));
    QCOMPARE(m_plot->getChMeasCount(0, 0), 3);
    add(400, 4, 0, 0);
    QCOMPARE(newestShown(), qMakePair(400.0, 250.0));

    m_plot->setChDiff(2, 1, 0, 0); // a difference of its own, not the rest of the former
    QCOMPARE(numbersOf(channel().diffMeas), Numbers({90, 180, 270}));
}

void TestQwtNOXDifference::changesItsReference()
{
    m_plot->setChDiff(2, 1, 0, 0);
    m_plot->setChDiff(1, 0, 0, 0); // which has no points
    QCOMPARE(m_plot->getChMeasCount(0, 0), 0);
    QCOMPARE(newestShown(), qMakePair(-1.0, -1.0));
    add(7, 3.5, 0, 1);
    add(400, 4, 0, 0);
    QCOMPARE(numbersOf(channel().diffMeas), Numbers({393}));
    QCOMPARE(newestShown(), qMakePair(393.0, 393.0));
}

void TestQwtNOXDifference::endsWithItsReference_data()
{
    QTest::addColumn<bool>("wholeInstrument");
    QTest::newRow("the instrument leaves") << true;
    QTest::newRow("the channel goes") << false;
}

void TestQwtNOXDifference::endsWithItsReference()
{
    QFETCH(bool, wholeInstrument);
    m_plot->setChDiff(2, 1, 0, 0);
    if (wholeInstrument)
        m_plot->removeDev(1);
    else
        m_plot->setChCount(2, 1);
    QCOMPARE(reference(0, 0), QString("none"));
    QCOMPARE(newestShown(), qMakePair(300.0, 200.0));
    QCOMPARE(m_plot->getChMeasStr(0, 0), QString("300.00"));
    m_plot->addDev(1, 3); // another one in its place is no reference
    QCOMPARE(reference(0, 0), QString("none"));
}

void TestQwtNOXDifference::ofAnotherInstrumentLeavesTheAxes()
{
    m_plot->setChMode(ModeZoom);
    m_plot->setZoomScale({100, 20, 90, 0.5});
    const QwtInterval times = m_plot->axisInterval(QwtPlot::xBottom);
    m_plot->setChDiff(0, 0, 1, 2);
    QCOMPARE(m_plot->axisInterval(QwtPlot::xBottom), times);
    QCOMPARE(m_plot->getChMode(), ModeZoom);
    QCOMPARE(numbersOf(m_plot->devices()[1].ch[2].diffMeas), Numbers({-80, -170}));
}

QTEST_MAIN(TestQwtNOXDifference)
#include "tst_qwtnox_difference.moc"
