#include "app/numericpanels.h"
#include "widgets/qlabelclick.h"

#include <QFrame>
#include <QSignalSpy>
#include <QtTest>

class TestNumericPanels : public QObject
{
    Q_OBJECT
private slots:
    void sizesTheUnit_data();
    void sizesTheUnit();
    void endsBothNumbersAtTheSamePosition();
    void greysWhatIsNotOnThePlot();
    void reportsClicks();
    void fitsTheNumberIntoItsWidth();

private:
    static QLabel *label(const QFrame &frame, int position)
    {
        return frame.findChildren<QLabel *>().at(position);
    }
};

void TestNumericPanels::sizesTheUnit_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("style");
    QTest::newRow("none") << ""
                          << "font: 32pt;";
    QTest::newRow("two letters") << "мВ"
                                 << "font: 32pt;";
    QTest::newRow("three letters") << "кОм"
                                   << "font: 27pt;";
    QTest::newRow("five letters") << "м/сек"
                                  << "font: 25pt;";
    QTest::newRow("thirty letters") << QString(30, QChar(0x43c)) << "font: 6pt;";
    QTest::newRow("ten letters") << "0123456789"
                                 << "font: 20pt;";
}

void TestNumericPanels::sizesTheUnit()
{
    QFETCH(QString, unit);
    QFrame value;
    QFrame average;
    NumericPanels panels(&value, &average);
    panels.showNumbers("1.00", "1.00", unit);
    QCOMPARE(label(value, 1)->text(), unit);
    QVERIFY(label(value, 1)->toolTip().contains(unit));
    QTEST(label(value, 1)->styleSheet(), "style");
}

void TestNumericPanels::endsBothNumbersAtTheSamePosition()
{
    QFrame value;
    QFrame average;
    NumericPanels panels(&value, &average);
    for (QFrame *frame : {&value, &average}) {
        frame->resize(400, 100);
        frame->show();
        QCOMPARE(label(*frame, 0)->text(), QString("--"));
    }
    panels.showNumbers("-21.123456", "21.1", "°С");
    QCOMPARE(label(value, 0)->geometry().right(), label(average, 0)->geometry().right());
    for (const QFrame *frame : {&value, &average})
        QVERIFY(label(*frame, 0)->alignment() & Qt::AlignRight);
}

void TestNumericPanels::greysWhatIsNotOnThePlot()
{
    QFrame value;
    QFrame average;
    NumericPanels panels(&value, &average);
    panels.showCurveKinds(true, false);
    QCOMPARE(label(value, 0)->styleSheet(), QString("color: #215767;"));
    QCOMPARE(label(average, 0)->styleSheet(), QString("color: gray;"));
    panels.showCurveKinds(false, true);
    QCOMPARE(label(value, 0)->styleSheet(), QString("color: gray;"));
    QCOMPARE(label(average, 0)->styleSheet(), QString("color: #215767;"));
}

void TestNumericPanels::reportsClicks()
{
    QFrame value;
    QFrame average;
    const NumericPanels panels(&value, &average);
    const QSignalSpy values(&panels, &NumericPanels::valueClicked);
    const QSignalSpy averages(&panels, &NumericPanels::averageClicked);
    QTest::mousePress(label(value, 0), Qt::LeftButton);
    QCOMPARE(values.size(), 1);
    QCOMPARE(averages.size(), 0);
    QTest::mousePress(label(average, 0), Qt::LeftButton);
    QCOMPARE(values.size(), 1);
    QCOMPARE(averages.size(), 1);
}

void TestNumericPanels::fitsTheNumberIntoItsWidth()
{
    constexpr int largest = 40;
    FittedLabel number(largest);
    number.resize(300, 80);
    number.show();
    number.showText("21.5");
    QCOMPARE(number.font().pointSize(), largest);
    number.showText("-1234.123456789");
    QVERIFY(number.fontMetrics().horizontalAdvance(number.text()) <= number.width());
    QVERIFY(number.font().pointSize() > largest / 3);
    number.resize(900, 80);
    QCOMPARE(number.font().pointSize(), largest);
}

QTEST_MAIN(TestNumericPanels)
#include "tst_numericpanels.moc"
