#include "plot/plottexts.h"
#include "plot/qwtnox.h"

#include <QtTest>

class TestQwtNOXValues : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void writesValues_data();
    void writesValues();
    void writesAverages();
    void readsByIndex_data();
    void readsByIndex();
    void writesWholeSeconds_data();
    void writesWholeSeconds();
    void writesTheNewestSteps_data();
    void writesTheNewestSteps();
    void writesNoMinusZero();
    void writesTheDifference();
    void keepsSilentAboutTheUnknown();

private:
    std::unique_ptr<QwtNOX> m_plot;
};

void TestQwtNOXValues::init()
{
    m_plot = std::make_unique<QwtNOX>();
    m_plot->addDev(0, 3);
    m_plot->addDev(1, 0);
    m_plot->setDevMain(0);
}

void TestQwtNOXValues::writesValues_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("ofChannel");
    QTest::addColumn<int>("ofMainChannel");
    QTest::addColumn<QString>("text");
    QTest::newRow("two decimals at least") << 0 << 4 << 4 << "21.50";
    QTest::newRow("as many as asked for") << 5 << 3 << 3 << "21.50000";
    QTest::newRow("those of the channel") << -1 << 3 << 6 << "21.500";
    QTest::newRow("those of the main channel") << -1 << 0 << 6 << "21.500000";
    QTest::newRow("neither has any") << -1 << 0 << 0 << "21.50";
    QTest::newRow("the channel has one only") << -1 << 1 << 6 << "21.50";
}

void TestQwtNOXValues::writesValues()
{
    QFETCH(int, asked);
    QFETCH(int, ofChannel);
    QFETCH(int, ofMainChannel);
    m_plot->addPoint(21.5, 1, "°С", 0, 1);
    m_plot->devices()[0].ch[1].precision = static_cast<uchar>(ofChannel);
    m_plot->devices()[0].ch[0].precision = static_cast<uchar>(ofMainChannel);
    QTEST(m_plot->getChMeasStr(0, 1, static_cast<signed char>(asked)), "text");
    QTEST(m_plot->getChAverStr(0, 1, static_cast<signed char>(asked)), "text");
}

void TestQwtNOXValues::writesAverages()
{
    QCOMPARE(m_plot->getChAverStr(0, 1), QString("--")); // no point has arrived yet
    m_plot->addPoint(10, 1, "°С", 0, 1);
    m_plot->addPoint(11, 2, "°С", 0, 1);
    QCOMPARE(m_plot->getChAverStr(0, 1), QString("10.50"));
    m_plot->addPoint(-2000, 3, "°С", 0, 1);
    QCOMPARE(m_plot->getChAverStr(0, 1), QString("--"));
    m_plot->addPoint(12, 4, "°С", 0, 1);
    m_plot->clear(0);
    QCOMPARE(m_plot->getChAverStr(0, 1), QString());
    QCOMPARE(m_plot->getChMeasStr(0, 1), QString("--"));
}

void TestQwtNOXValues::readsByIndex_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<double>("value");
    QTest::newRow("first") << 0 << 10.0;
    QTest::newRow("second") << 1 << 11.0;
    QTest::newRow("latest by -1") << -1 << 12.0;
    QTest::newRow("latest beyond the end") << 3 << 12.0;
    QTest::newRow("latest for any negative") << -7 << 12.0;
}

void TestQwtNOXValues::readsByIndex()
{
    QFETCH(int, index);
    QFETCH(double, value);
    for (int i = 0; i < 3; ++i)
        m_plot->addPoint(10 + i, 100 + i, "°С", 0, 0);
    QCOMPARE(m_plot->getChMeas(-1, 255, index), value);
    QCOMPARE(m_plot->getChTime(-1, 255, index), value + 90);
    QCOMPARE(m_plot->getChMeasStr(-1, 255, 2, index), QString::number(value, 'f', 2));
    QCOMPARE(m_plot->getChTimeStr(-1, 255, index), QString::number(value + 90));
}

void TestQwtNOXValues::writesWholeSeconds_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<QString>("text");
    QTest::newRow("rounded up") << 12.5 << "13";
    QTest::newRow("rounded down") << 12.499 << "12";
    QTest::newRow("six digits") << 999999.0 << "999999";
    QTest::newRow("a million") << 1000000.0 << "1e+06";
}

void TestQwtNOXValues::writesWholeSeconds()
{
    QFETCH(double, time);
    m_plot->addPoint(20, time, "°С", 0, 0);
    QTEST(m_plot->getChTimeStr(0, 0), "text");
}

void TestQwtNOXValues::writesTheNewestSteps_data()
{
    QTest::addColumn<int>("ofChannel");
    QTest::addColumn<int>("ofMainChannel");
    QTest::addColumn<QString>("dY");
    QTest::newRow("decimals of the channel") << 1 << 5 << "-0.3";
    QTest::newRow("decimals of the main channel") << 0 << 5 << "-0.30000";
    QTest::newRow("two decimals else") << 0 << 0 << "-0.30";
}

void TestQwtNOXValues::writesTheNewestSteps()
{
    QFETCH(int, ofChannel);
    QFETCH(int, ofMainChannel);
    m_plot->addPoint(20, 1, "°С", 0, 1);
    QCOMPARE(m_plot->getChDXStr(0, 1) + m_plot->getChDYStr(0, 1), QString());
    m_plot->addPoint(19.7, 2.26, "°С", 0, 1);
    m_plot->devices()[0].ch[1].precision = static_cast<uchar>(ofChannel);
    m_plot->devices()[0].ch[0].precision = static_cast<uchar>(ofMainChannel);
    QCOMPARE(m_plot->getChDXStr(0, 1), QString("1.3"));
    QTEST(m_plot->getChDYStr(0, 1), "dY");
}

void TestQwtNOXValues::writesNoMinusZero()
{
    QCOMPARE(numberText(-0.004, 2), QString("0.00"));
    QCOMPARE(numberText(-0.006, 2), QString("-0.01"));
    QCOMPARE(numberText(-0.0, 0), QString("0"));
    QCOMPARE(numberText(-20, 0), QString("-20"));
}

void TestQwtNOXValues::writesTheDifference()
{
    m_plot->devices()[0].ch[1].diffQwtIndex = 0;
    m_plot->devices()[0].ch[1].diffCh = 2;
    QCOMPARE(m_plot->getChMeasStr(0, 1), QString("--"));
    for (int i = 1; i <= 2; ++i) {
        m_plot->addPoint(5, 10 * i, "°С", 0, 2);
        m_plot->addPoint(20 + i, 10 * i + 1, "°С", 0, 1);
    }
    QCOMPARE(m_plot->getChMeasStr(0, 1), QString("17.00"));
    QCOMPARE(m_plot->getChMeasStr(0, 1, -1, -1, false), QString("22.00"));
    QCOMPARE(m_plot->getChAverStr(0, 1, -1, -1, false), QString("16.50")); // whatever is asked for
    QCOMPARE(m_plot->getChMeas(0, 1, 0), 16.0);
    QCOMPARE(m_plot->getChTime(0, 1, 0), 11.0);
    QCOMPARE(m_plot->getChDYStr(0, 1), QString("1.00"));
}

void TestQwtNOXValues::keepsSilentAboutTheUnknown()
{
    for (const int qwtIndex : {1, 9}) { // without channels, and not on the plot
        QCOMPARE(m_plot->getChMeasStr(qwtIndex, 0), QString("--"));
        QCOMPARE(m_plot->getChAverStr(qwtIndex, 0), QString());
        QCOMPARE(m_plot->getChTimeStr(qwtIndex, 0), QString());
        QCOMPARE(m_plot->getChDXStr(qwtIndex, 255), QString());
        QCOMPARE(m_plot->getChDim(qwtIndex, 255), QString("-"));
        QCOMPARE(m_plot->getChMeas(qwtIndex, 255), 0.0);
        QCOMPARE(m_plot->getChTime(qwtIndex, 0), 0.0);
        QCOMPARE(m_plot->getChMeasCount(qwtIndex, 0), 0);
        QCOMPARE(int(m_plot->getPrecision(qwtIndex, 0)), 0);
    }
    QCOMPARE(m_plot->getChDim(0, 0), QString());
}

QTEST_MAIN(TestQwtNOXValues)
#include "tst_qwtnox_values.moc"
