#include "plot/plottexts.h"

#include <QtTest>

class TestTimeText : public QObject
{
    Q_OBJECT

private slots:
    void writesPlainSeconds_data();
    void writesPlainSeconds();
    void writesDurations_data();
    void writesDurations();
    void writesMoments_data();
    void writesMoments();
    void writesTimesAlike_data();
    void writesTimesAlike();
};

void TestTimeText::writesPlainSeconds_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("fraction") << 12.5 << "12.5";
    QTest::newRow("six digits") << 100000.0 << "100000";
    QTest::newRow("seven digits") << 1200000.0 << "1.2e+06";
}

void TestTimeText::writesPlainSeconds()
{
    QFETCH(double, seconds);
    QTEST(secondsText(seconds), "text");
}

void TestTimeText::writesDurations_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("step");
    QTest::addColumn<QString>("text");
    QTest::newRow("minutes") << 3660.0 << 60.0 << "01:01";
    QTest::newRow("seconds below a step of a minute") << 3661.9 << 30.0 << "01:01:01";
    QTest::newRow("milliseconds are dropped with the fraction") << 1.75 << 0.5 << "00:00:01:000";
    QTest::newRow("a whole day has no day yet") << 86400.0 << 60.0 << "00:00";
    QTest::newRow("a day and an hour") << 90000.0 << 60.0 << "02 01:00";
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 60.0 << "00:00";
}

void TestTimeText::writesDurations()
{
    QFETCH(double, seconds);
    QFETCH(double, step);
    QFETCH(QString, text);
    QCOMPARE(durationText(seconds, step, needsDay(seconds)), text);
}

void TestTimeText::writesMoments_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("step");
    QTest::addColumn<bool>("withDate");
    QTest::addColumn<QString>("text");
    QTest::newRow("before midnight") << 600.9 << 60.0 << false << "23:55";
    QTest::newRow("across midnight") << 1200.0 << 60.0 << false << "00:05";
    QTest::newRow("with its date") << 1200.0 << 60.0 << true << "01.01.27 00:05";
    QTest::newRow("with seconds") << 1.0 << 15.0 << false << "23:45:31";
    QTest::newRow("with the start's milliseconds") << 1.9 << 0.5 << false << "23:45:31:250";
}

void TestTimeText::writesMoments()
{
    QFETCH(double, seconds);
    QFETCH(double, step);
    QFETCH(bool, withDate);
    const QDateTime start({2026, 12, 31}, {23, 45, 30, 250});
    QTEST(momentText(momentAfter(start, seconds), step, withDate), "text");
}

void TestTimeText::writesTimesAlike_data()
{
    QTest::addColumn<TmcModeX>("mode");
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("second");
    QTest::addColumn<double>("step");
    QTest::addColumn<QString>("texts");
    QTest::newRow("seconds") << ModeXSeconds << 1.26 << 90000.0 << 1.0 << "1.3|90000.0|89998.7";
    QTest::newRow("durations") << ModeXRelative << 3600.9 << 7325.0 << 60.0 << "01:00|02:02|01:02";
    QTest::newRow("durations to the second")
        << ModeXRelative << 61.0 << 3725.0 << 30.0 << "00:01:01|01:02:05|01:01:04";
    QTest::newRow("just a day is not over it")
        << ModeXRelative << 3600.0 << 86400.0 << 3600.0 << "01:00|00:00|23:00";
    QTest::newRow("the second one is over a day")
        << ModeXRelative << 3600.0 << 90000.0 << 60.0 << "01 01:00|02 01:00|02 00:00";
    QTest::newRow("both today") << ModeXAbsolute << 0.0 << 3600.0 << 60.0 << "22:45|23:45|01:00";
    QTest::newRow("one after midnight")
        << ModeXAbsolute << 0.0 << 7200.0 << 15.0 << "31.12.26 22:45:30|01.01.27 00:45:30|02:00:00";
    QTest::newRow("finer than a second")
        << ModeXAbsolute << 1.9 << 2.1 << 0.5 << "22:45:31:250|22:45:32:250|00:00:00:000";
}

void TestTimeText::writesTimesAlike()
{
    QFETCH(TmcModeX, mode);
    QFETCH(double, first);
    QFETCH(double, second);
    QFETCH(double, step);
    const QDateTime start({2026, 12, 31}, {22, 45, 30, 250});
    const TimeFormat format{mode, start, start.date(), step};
    const TimeSpanTexts texts = timeSpanTexts(format, first, second);
    QTEST(QStringList({texts.first, texts.second, texts.between}).join('|'), "texts");
    if (mode != ModeXAbsolute)
        QCOMPARE(timeText(format, second), texts.second);
}

QTEST_APPLESS_MAIN(TestTimeText)
#include "tst_timetext.moc"
