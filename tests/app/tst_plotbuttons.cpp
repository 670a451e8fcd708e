#include "app/plotinstruments.h"
#include "app/plottools.h"

#include <QtTest>

Q_DECLARE_METATYPE(QList<int>)

class TestPlotButtons : public QObject
{
    Q_OBJECT
private slots:
    void cyclesTheLabelsOfTheTimeAxis();
    void switchesTheMode_data();
    void switchesTheMode();
    void findsAPlaceOnThePlot_data();
    void findsAPlaceOnThePlot();
};

void TestPlotButtons::cyclesTheLabelsOfTheTimeAxis()
{
    QList<int> cycle;
    TmcModeX mode = ModeXSeconds;
    for (int click = 0; click < 3; ++click) {
        mode = PlotButtons::nextModeX(mode);
        cycle << mode;
    }
    QCOMPARE(cycle, (QList<int>{ModeXAbsolute, ModeXRelative, ModeXSeconds}));
}

void TestPlotButtons::switchesTheMode_data()
{
    QTest::addColumn<TmcMode>("mode");
    QTest::addColumn<bool>("fixedScale");
    QTest::addColumn<TmcMode>("next");
    QTest::newRow("automatic") << ModeAuto << false << ModeAuto;
    QTest::newRow("automatic with a step chosen") << ModeAuto << true << ModeFollow;
    QTest::newRow("following") << ModeFollow << true << ModeAuto;
    QTest::newRow("following without a step") << ModeFollow << false << ModeAuto;
    QTest::newRow("zoomed") << ModeZoom << false << ModeAuto;
    QTest::newRow("zoomed with a step chosen") << ModeZoom << true << ModeFollow;
}

void TestPlotButtons::switchesTheMode()
{
    QFETCH(TmcMode, mode);
    QFETCH(bool, fixedScale);
    QTEST(PlotButtons::nextMode(mode, fixedScale), "next");
}

void TestPlotButtons::findsAPlaceOnThePlot_data()
{
    QList<int> almostFull;
    for (int index = 0; index < 254; ++index)
        almostFull << index;
    QTest::addColumn<QList<int>>("used");
    QTest::addColumn<int>("place");
    QTest::newRow("empty") << QList<int>() << 0;
    QTest::newRow("behind the last") << QList<int>{0, 1} << 2;
    QTest::newRow("in a gap") << QList<int>{0, 2, 3} << 1;
    QTest::newRow("before the first") << QList<int>{1, 2} << 0;
    QTest::newRow("last place") << almostFull << 254;
    QTest::newRow("full") << almostFull + QList<int>{254} << -1;
}

void TestPlotButtons::findsAPlaceOnThePlot()
{
    QFETCH(QList<int>, used);
    QTEST(freePlotIndex(used), "place");
}

QTEST_APPLESS_MAIN(TestPlotButtons)
#include "tst_plotbuttons.moc"
