#include "plot/envelopecurve.h"
#include "signallog.h"

#include <QtTest>
#include <qwt_plot_marker.h>

class TestQwtNOXShow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void curvesNeedInstrumentKindAndChannel_data();
    void curvesNeedInstrumentKindAndChannel();
    void choosingTheMainInstrumentAnnouncesInOrder();
    void mainInstrumentAloneIsOnShow();
    void mainInstrumentShowsItsLimits_data();
    void mainInstrumentShowsItsLimits();
    void choosingAMainChannelHidesTheOthers();
    void mainChannelTakesTheModeOfItsScales();
    void unknownMainChannelIsIgnored();
    void showingAChannelShowsItsInstrument();
    void switchingAKindAnnouncesOnce();
    void coloursBothCurves();
    void readsNeutralValuesOfTheUnknown();
    void losingTheMainInstrumentIsAnnounced();

private:
    const PlotChannel &channel(int qwtIndex, int ch)
    {
        return qAsConst(*m_plot).devices().find(qwtIndex)->ch[ch];
    }

    std::unique_ptr<QwtNOX> m_plot;
    std::unique_ptr<SignalLog> m_log;
};

void TestQwtNOXShow::init()
{
    m_plot = std::make_unique<QwtNOX>();
    m_plot->addDev(0, 3);
    m_plot->addDev(1, 3);
    m_plot->setDevMain(0);
    m_log = std::make_unique<SignalLog>(*m_plot);
}

void TestQwtNOXShow::cleanup()
{
    m_plot.reset();
}

void TestQwtNOXShow::curvesNeedInstrumentKindAndChannel_data()
{
    QTest::addColumn<bool>("devShow");
    QTest::addColumn<bool>("measShow");
    QTest::addColumn<bool>("averShow");
    QTest::addColumn<bool>("chShow");
    QTest::addColumn<bool>("measVisible");
    QTest::addColumn<bool>("averVisible");
    QTest::newRow("all") << true << true << true << true << true << true;
    QTest::newRow("values only") << true << true << false << true << true << false;
    QTest::newRow("averages only") << true << false << true << true << false << true;
    QTest::newRow("channel hidden") << true << true << true << false << false << false;
    QTest::newRow("instrument hidden") << false << true << true << true << false << false;
}

void TestQwtNOXShow::curvesNeedInstrumentKindAndChannel()
{
    QFETCH(bool, devShow);
    QFETCH(bool, measShow);
    QFETCH(bool, averShow);
    QFETCH(bool, chShow);
    m_plot->setChShow(chShow, 0, 1);
    m_plot->setMeasShow(measShow, 0);
    m_plot->setAverShow(averShow, 0);
    m_plot->setDevShow(devShow, 0);
    QTEST(channel(0, 1).measCurve->isVisible(), "measVisible");
    QTEST(channel(0, 1).averCurve->isVisible(), "averVisible");
}

void TestQwtNOXShow::choosingTheMainInstrumentAnnouncesInOrder()
{
    m_plot->setDevMain(1);
    QCOMPARE(m_log->take(), QStringList({"onChange 1", "onChModeChange 1 0 1", "onChMainChange 1 0",
                                         "onDevChange 1", "onChange 1"}));
    QCOMPARE(m_plot->getDevMain(), 1);
    m_plot->setDevMain(7);
    QCOMPARE(m_log->take(), QStringList());
    QCOMPARE(m_plot->getDevMain(), 1);
}

void TestQwtNOXShow::mainInstrumentAloneIsOnShow()
{
    QVERIFY(channel(0, 2).measCurve->isVisible());
    m_plot->setDevMain(1);
    QVERIFY(!channel(0, 2).measCurve->isVisible());
    QVERIFY(channel(1, 2).measCurve->isVisible());
    m_plot->setDevShow(true, 0);
    QVERIFY(channel(0, 2).averCurve->isVisible());
    QCOMPARE(m_plot->getChMode(), ModeFollow);
}

void TestQwtNOXShow::mainInstrumentShowsItsLimits_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("upper");
    QTest::addColumn<bool>("lower");
    QTest::newRow("off") << int(TrackOff) << false << false;
    QTest::newRow("range") << int(TrackRange) << true << true;
    QTest::newRow("upper") << int(TrackUpper) << true << false;
    QTest::newRow("lower") << int(TrackLower) << false << true;
}

void TestQwtNOXShow::mainInstrumentShowsItsLimits()
{
    QFETCH(int, mode);
    const QwtNOX::_dev &device = m_plot->devices()[1];
    m_plot->devices()[1].modeTrack = static_cast<TmcTrackingMode>(mode);
    QCOMPARE(int(m_plot->getModeTrack(1)), mode);
    m_plot->setDevMain(1);
    QTEST(device.upperMarker->isVisible(), "upper");
    QTEST(device.lowerMarker->isVisible(), "lower");
    m_plot->setDevMain(0);
    QVERIFY(!device.upperMarker->isVisible() && !device.lowerMarker->isVisible());
}

void TestQwtNOXShow::choosingAMainChannelHidesTheOthers()
{
    m_plot->setChMain(2);
    QCOMPARE(m_log->take(), QStringList({"onChange 0", "onChModeChange 0 2 0", "onChMainChange 0 2",
                                         "onChange 0"}));
    QCOMPARE(m_plot->getChMain(), 2);
    QVERIFY(m_plot->getChShow(0, 2) && !m_plot->getChShow(0, 0) && !m_plot->getChShow(0, 1));
    QVERIFY(channel(0, 2).measCurve->isVisible());
    QVERIFY(!channel(0, 0).measCurve->isVisible());

    m_plot->setChShow(true, 0, 0);
    m_log->take();
    m_plot->setChMain(); // once more: nothing but the view is renewed
    QCOMPARE(m_log->take(), QStringList("onChange 0"));
    QVERIFY(!m_plot->getChShow(0, 0));

    m_plot->setChMain(1, 1); // not the main instrument: chosen, not shown
    QCOMPARE(m_plot->getChMain(1), 1);
    QVERIFY(!channel(1, 1).measCurve->isVisible());
}

void TestQwtNOXShow::mainChannelTakesTheModeOfItsScales()
{
    m_plot->devices()[0].ch[1].scaleY = 16;
    m_plot->setChMain(1);
    QCOMPARE(m_plot->getChMode(), ModeFollow);
    m_plot->devices()[0].ch[2].mode = ModeZoom;
    m_plot->setChMain(2);
    QCOMPARE(m_plot->getChMode(), ModeAuto);
}

void TestQwtNOXShow::unknownMainChannelIsIgnored()
{
    m_plot->setChMain(3, 0);
    m_plot->setChMain(0, 5);
    m_plot->setChCount(0, 1);
    m_log->take();
    m_plot->setChMain(255, 1);
    QCOMPARE(m_log->take(), QStringList());
    QCOMPARE(m_plot->getChMain(0), 0);
}

void TestQwtNOXShow::showingAChannelShowsItsInstrument()
{
    m_plot->setChShow(false, 1, 0);
    QVERIFY(m_plot->devices()[1].devShow);
    QVERIFY(!channel(1, 0).measCurve->isVisible());
    QVERIFY(channel(1, 1).measCurve->isVisible());
    m_plot->setChShow(true, 1, 0);
    QCOMPARE(m_log->take(), QStringList({"onChShowChange 1 0 0", "onChShowChange 1 0 1"}));
}

void TestQwtNOXShow::switchingAKindAnnouncesOnce()
{
    m_plot->setMeasShow(true);
    m_plot->setAverShow(true);
    QCOMPARE(m_log->take(), QStringList());
    m_plot->setMeasShow(false);
    QCOMPARE(m_log->take(), QStringList({"onChange 0", "onMeasShowChange 0 0"}));
    QVERIFY(!m_plot->toggleAverShow());
    QCOMPARE(m_log->take(), QStringList({"onChange 0", "onAverShowChange 0 0"}));
    QVERIFY(m_plot->toggleMeasShow(0));
    QVERIFY(m_plot->getMeasShow() && !m_plot->getAverShow(0));
}

void TestQwtNOXShow::coloursBothCurves()
{
    m_plot->setChColor(QColor("#102030"), 0, 1);
    QCOMPARE(m_log->take(), QStringList({"onChange 0", "onChColorChange 0 1 #102030"}));
    QCOMPARE(m_plot->getChColor(0, 1), QColor("#102030"));
    QCOMPARE(channel(0, 1).averCurve->pen().color(), QColor("#102030"));
    QCOMPARE(channel(0, 1).averCurve->pen().widthF(), 2.0);
    m_plot->setChColor(QColor("no colour"), 0, 1);
    QCOMPARE(m_log->take(), QStringList());

    m_plot->setChCount(18, 0);
    QCOMPARE(m_plot->getChColor(0, 0), QColor(Qt::red));
    QCOMPARE(m_plot->getChColor(0, 15), QColor(Qt::lightGray));
    QCOMPARE(m_plot->getChColor(0, 17), QColor("red"));
}

void TestQwtNOXShow::readsNeutralValuesOfTheUnknown()
{
    QCOMPARE(m_plot->getChColor(9, 0), QColor("white"));
    QCOMPARE(m_plot->getChMain(9), -1);
    QVERIFY(m_plot->getMeasShow(9) && m_plot->getAverShow(9));
    QVERIFY(!m_plot->getChShow(9, 0) && !m_plot->getChShow(0, 3));
    m_plot->devices()[1].modeTrack = TrackUpper;
    m_plot->setChCount(0, 1);
    QCOMPARE(m_plot->getModeTrack(1), TrackOff);
    m_log->take();
    m_plot->setMeasShow(false, 9);
    m_plot->setDevShow(true, 9);
    m_plot->setChShow(true, 0, 3);
    QCOMPARE(m_log->take(), QStringList());
}

void TestQwtNOXShow::losingTheMainInstrumentIsAnnounced()
{
    m_plot->removeDev(0);
    m_log->take();
    m_plot->setDevMain(-1);
    QCOMPARE(m_log->take(), QStringList({"onDevChange -1", "onChange -1"}));
    QCOMPARE(m_plot->getScaleXLabel(), QString("-"));
    QCOMPARE(m_plot->getChModeLabel(), QString("-"));
    m_plot->setDevMain(1);
    QCOMPARE(m_plot->getChModeLabel(), QString("СЛЕЖЕНИЕ"));
}

QTEST_MAIN(TestQwtNOXShow)
#include "tst_qwtnox_show.moc"
