#include "plotmouse.h"
#include "signallog.h"

#include <qwt_plot_picker.h>

// Placing the limits of the measured values with the mouse.

class TestQwtNOXLimits : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void placesLimits_data();
    void placesLimits();
    void choosingAgainBeginsAnew();
    void switchedOffTakesThemAway();
    void unknownChoicesAreIgnored();
    void alarmsBeyondThePlacedLimits_data();
    void alarmsBeyondThePlacedLimits();
    void viewFollowsWhilePlacing();
    void leavingTheModeLeavesNothingUnderWay();
    void mainInstrumentShowsItsOwnLimits();
    void limitsNeverPlacedStayAway();
    void otherInstrumentsChoiceLeavesTheMouse();

private:
    bool isPlacing() const
    {
        return qobject_cast<QwtPlotPicker *>(m_screen->picker("limitsPicker"))->isEnabled();
    }
    /** Presses somewhere and releases at the value, which a limit takes. */
    void place(double value)
    {
        PlotMouse &mouse = m_screen->mouse;
        mouse.drag(mouse.middle() + QPoint(20, 3), mouse.pixel(30, value));
    }
    /** Values of the upper and the lower limit; "-" for one that is not seen. */
    QStringList limits(int qwtIndex = 0) const
    {
        const QwtNOX::_dev &device = m_screen->plot.devices()[qwtIndex];
        QStringList texts;
        for (const QwtPlotMarker *limit : {device.upperMarker, device.lowerMarker})
            texts += limit->isVisible() ? QString::number(limit->yValue(), 'f', 2) : "-";
        return texts;
    }

    std::unique_ptr<PlotOnScreen> m_screen;
};

void TestQwtNOXLimits::init()
{
    m_screen = std::make_unique<PlotOnScreen>();
    QVERIFY(m_screen->mouse.isReady());
    m_screen->plot.setChScaleY(16); // steps of 0.1, which arriving points leave alone
    m_screen->addRamp(65);
}

void TestQwtNOXLimits::cleanup()
{
    m_screen.reset();
}

void TestQwtNOXLimits::placesLimits_data()
{
    QTest::addColumn<int>("choice");
    QTest::addColumn<QVector<double>>("values");
    QTest::addColumn<QStringList>("limits");
    QTest::addColumn<bool>("isPlacing");
    using Values = QVector<double>;
    using Limits = QStringList;
    QTest::newRow("upper") << int(TrackUpper) << Values{20.4} << Limits{"20.40", "-"} << false;
    QTest::newRow("lower") << int(TrackLower) << Values{20.1} << Limits{"-", "20.10"} << false;
    QTest::newRow("range, only begun")
        << int(TrackRange) << Values{20.4} << Limits{"20.40", "-"} << true;
    QTest::newRow("range, top first")
        << int(TrackRange) << Values{20.4, 20.1} << Limits{"20.40", "20.10"} << false;
    QTest::newRow("range, bottom first")
        << int(TrackRange) << Values{20.1, 20.4} << Limits{"20.40", "20.10"} << false;
    QTest::newRow("no place after the last one")
        << int(TrackUpper) << Values{20.4, 20.2} << Limits{"20.40", "-"} << false;
    QTest::newRow("no place after the range")
        << int(TrackRange) << Values{20.1, 20.4, 20.2} << Limits{"20.40", "20.10"} << false;
}

void TestQwtNOXLimits::placesLimits()
{
    QFETCH(int, choice);
    QFETCH(QVector<double>, values);
    SignalLog log(m_screen->plot);
    m_screen->plot.setModeTrack(TmcTrackingMode(choice));
    QCOMPARE(log.take(), QStringList({"onChange 0", "onChModeChange 0 0 5", "onChange 0"}));
    QCOMPARE(m_screen->plot.getChMode(), ModeLimits);
    QCOMPARE(int(m_screen->plot.getModeTrack()), choice);
    QVERIFY(isPlacing());
    for (const double value : values)
        place(value);
    QTEST(limits(), "limits");
    QTEST(isPlacing(), "isPlacing");
    QCOMPARE(m_screen->plot.getChMode(), ModeLimits);
    QCOMPARE(m_screen->crosses().size(), 0);
}

void TestQwtNOXLimits::choosingAgainBeginsAnew()
{
    m_screen->plot.setModeTrack(TrackRange);
    place(20.4);
    place(20.1);
    m_screen->plot.setModeTrack(TrackRange);
    QCOMPARE(limits(), QStringList({"-", "-"}));
    place(20.2);
    QCOMPARE(limits(), QStringList({"20.20", "-"}));
    m_screen->plot.setModeTrack(TrackLower);
    QCOMPARE(limits(), QStringList({"-", "-"}));
    place(20.3);
    QCOMPARE(limits(), QStringList({"-", "20.30"}));
}

void TestQwtNOXLimits::switchedOffTakesThemAway()
{
    m_screen->plot.setModeTrack(TrackRange);
    place(20.4);
    m_screen->plot.setModeTrack(TrackOff);
    QVERIFY(!isPlacing());
    place(20.1);
    QCOMPARE(limits(), QStringList({"-", "-"}));
    QCOMPARE(m_screen->plot.getModeTrack(), TrackOff);
}

void TestQwtNOXLimits::unknownChoicesAreIgnored()
{
    m_screen->plot.setModeTrack(TrackUpper);
    place(20.4);
    SignalLog log(m_screen->plot);
    m_screen->plot.setModeTrack(TmcTrackingMode(4));
    m_screen->plot.setModeTrack(TmcTrackingMode(-1));
    m_screen->plot.setModeTrack(TrackLower, 9);
    QCOMPARE(log.take(), QStringList());
    QCOMPARE(limits(), QStringList({"20.40", "-"}));
}

void TestQwtNOXLimits::alarmsBeyondThePlacedLimits_data()
{
    QTest::addColumn<int>("choice");
    QTest::addColumn<QVector<double>>("placed");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("alarms");
    using Values = QVector<double>;
    QTest::newRow("above the upper") << int(TrackUpper) << Values{20.4} << 20.42 << true;
    QTest::newRow("below the upper") << int(TrackUpper) << Values{20.4} << 20.38 << false;
    QTest::newRow("below the lower") << int(TrackLower) << Values{20.1} << 20.08 << true;
    QTest::newRow("above the lower") << int(TrackLower) << Values{20.1} << 20.12 << false;
    QTest::newRow("chosen, not placed") << int(TrackRange) << Values{} << 99.0 << false;
    QTest::newRow("range half placed, below") << int(TrackRange) << Values{20.4} << 1.0 << false;
    QTest::newRow("range half placed, above") << int(TrackRange) << Values{20.4} << 20.42 << true;
    QTest::newRow("range from below, above")
        << int(TrackRange) << Values{20.1, 20.4} << 20.42 << true;
    QTest::newRow("range from below, below")
        << int(TrackRange) << Values{20.1, 20.4} << 20.08 << true;
    QTest::newRow("range from below, between")
        << int(TrackRange) << Values{20.1, 20.4} << 20.2 << false;
}

void TestQwtNOXLimits::alarmsBeyondThePlacedLimits()
{
    QFETCH(int, choice);
    QFETCH(QVector<double>, placed);
    QFETCH(double, value);
    QFETCH(bool, alarms);
    m_screen->plot.setModeTrack(TmcTrackingMode(choice));
    for (const double limit : placed)
        place(limit);
    SignalLog log(m_screen->plot);
    m_screen->add(value, 66);
    QCOMPARE(log.take(), alarms ? QStringList({"onAddPoint 0 0", "onPointTrackOff 0 0"})
                                : QStringList("onAddPoint 0 0"));
}

void TestQwtNOXLimits::viewFollowsWhilePlacing()
{
    m_screen->plot.setChScaleX(2); // 20 s
    m_screen->plot.setModeTrack(TrackUpper);
    m_screen->add(20.65, 100);
    QVERIFY(m_screen->shows(QwtPlot::xBottom, 80, 2));
    PlotMouse &mouse = m_screen->mouse;
    mouse.pull(mouse.middle(), mouse.middle() + QPoint(0, 30));
    m_screen->add(20.65, 101); // while the line is held
    mouse.moveTo(mouse.pixel(90, 20.5));
    mouse.release(mouse.pixel(90, 20.5));
    QCOMPARE(limits(), QStringList({"20.50", "-"}));
}

void TestQwtNOXLimits::leavingTheModeLeavesNothingUnderWay()
{
    PlotMouse &mouse = m_screen->mouse;
    m_screen->plot.setModeTrack(TrackRange);
    mouse.pull(mouse.middle(), mouse.middle() + QPoint(0, 30));
    m_screen->plot.setChMode(ModeFollow);
    mouse.release(mouse.middle());
    QCOMPARE(limits(), QStringList({"-", "-"}));
    m_screen->plot.setChMode(ModeLimits); // the line is not held any more
    auto *picker = qobject_cast<QwtPlotPicker *>(m_screen->picker("limitsPicker"));
    QVERIFY(!picker->isActive());
    QCOMPARE(picker->rubberBand(), QwtPicker::HLineRubberBand);
    QCOMPARE(picker->rubberBandPen(), QPen(Qt::red, 2, Qt::DotLine));
    mouse.click(mouse.middle(), Qt::RightButton); // means nothing here
    QCOMPARE(m_screen->plot.getChMode(), ModeLimits);
}

void TestQwtNOXLimits::mainInstrumentShowsItsOwnLimits()
{
    m_screen->plot.setModeTrack(TrackRange);
    place(20.4);
    place(20.1);
    m_screen->plot.setDevMain(1);
    QCOMPARE(limits(0) + limits(1), QStringList({"-", "-", "-", "-"}));
    QVERIFY(!isPlacing());
    m_screen->plot.setModeTrack(TrackLower);
    place(5);
    QCOMPARE(m_screen->limits().size(), 1);
    m_screen->plot.setDevMain(0);
    QCOMPARE(limits(0) + limits(1), QStringList({"20.40", "20.10", "-", "-"}));
    QCOMPARE(m_screen->plot.getModeTrack(1), TrackLower);
}

void TestQwtNOXLimits::limitsNeverPlacedStayAway()
{
    m_screen->plot.setModeTrack(TrackRange);
    place(20.4); // the lower one is left out
    m_screen->plot.setDevMain(1);
    m_screen->plot.setDevMain(0);
    QCOMPARE(limits(), QStringList({"20.40", "-"}));
    m_screen->plot.setModeTrack(TrackRange);
    m_screen->plot.setDevMain(1);
    m_screen->plot.setDevMain(0);
    QCOMPARE(limits(), QStringList({"-", "-"}));
    SignalLog log(m_screen->plot);
    m_screen->add(500, 66);
    QCOMPARE(log.take(), QStringList("onAddPoint 0 0"));
}

void TestQwtNOXLimits::otherInstrumentsChoiceLeavesTheMouse()
{
    m_screen->plot.setModeTrack(TrackUpper);
    m_screen->plot.setModeTrack(TrackOff, 1);
    QVERIFY(isPlacing());
    m_screen->plot.setChMode(ModeFollow);
    m_screen->plot.setModeTrack(TrackLower, 1);
    QVERIFY(!isPlacing());
    QCOMPARE(m_screen->plot.getChMode(), ModeFollow);
}

QTEST_MAIN(TestQwtNOXLimits)
#include "tst_qwtnox_limits.moc"
