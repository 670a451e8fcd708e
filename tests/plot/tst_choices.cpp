#include "plot/plottexts.h"
#include "plot/scalechoice.h"

#include <QtTest>

#include <cmath>
#include <tuple>

// What the axes show and how it is written, as plain functions.

namespace
{

constexpr int lastX = 18; // the coarsest steps
constexpr int lastY = 29;

/** An axis as "from 20 by 0.1", when it has ten steps. */
QString text(const AxisView &view)
{
    const bool hasTenSteps = std::abs(view.upper - view.lower - 10 * view.step) < view.step * 1e-3;
    return QString("from %1 by %2")
               .arg(QString::number(view.lower, 'g', 10), QString::number(view.step)) +
           (hasTenSteps ? "" : ", not ten steps");
}

} // namespace

class TestChoices : public QObject
{
    Q_OBJECT

private slots:
    void tablesSayTheirStep()
    {
        QStringList scales;
        for (const auto &scale : scalesX())
            scales += scale.label + ' ' + QString::number(scale.step);
        QCOMPARE(scales.join('|'),
                 "Авто 0|1 сек. 1|2 сек. 2|5 сек. 5|10 сек. 10|15 сек. 15|30 сек. 30|1 мин. 60|"
                 "2 мин. 120|5 мин. 300|10 мин. 600|15 мин. 900|30 мин. 1800|1 ч. 3600|2 ч. 7200|"
                 "5 ч. 18000|10 ч. 36000|15 ч. 54000|30 ч. 108000");
        QCOMPARE(scalesY().size(), lastY + 1);
        QCOMPARE(scalesY()[0].label, QString("Авто"));
        for (int step = 1; step <= lastY; ++step) {
            const double size =
                QVector<double>{1, 2, 5}[(step - 1) % 3] * std::pow(10, (step - 1) / 3);
            QVERIFY(qFuzzyCompare(scalesY()[step].step * 1e6, size));
            QCOMPARE(scalesY()[step].label.toDouble(), scalesY()[step].step);
            const int zeros = scalesY()[step].label.section('.', 1).size(); // decimals that show it
            QCOMPARE(decimalsForStep(step), zeros);
            QCOMPARE(stepOfSizeX(scalesX()[qMin(step, lastX)].step), qMin(step, lastX));
            QCOMPARE(stepOfSizeY(scalesY()[step].step), step);
        }
        QCOMPARE(decimalsForStep(0), 0);
    }
    void choosesSteps()
    {
        const QVector<std::tuple<double, double, int, int>> data = {
            {5, 5, 1, 1},
            {0, 8.5, 1, 19}, // just fit steps of 1
            {0, 8.51, 2, 20},
            {1000, 1065, 4, 22}, // the width counts, not the place
            {-700, -300, 7, 24},
            {0.0100, 0.0137, 1, 9},
            {0, 86400, 15, lastY},
            {-1000, 1e9, lastX, lastY}, // beyond the tables
            {-1000, qInf(), lastX, lastY},
            {500, 100, 1, 1}}; // a clock set back
        for (const auto &[first, last, timeStep, valueStep] : data) {
            QCOMPARE(stepForTimes(first, last, 10), timeStep);
            QCOMPARE(stepForValues({first, last}, 10), valueStep);
        }
    }
    void showsRectanglesAndSurroundings()
    {
        const QVector<std::tuple<QRectF, QString, QString>> data = {
            {{12, 20, 35, 0.8}, "from 12 by 5", "from 19.9 by 0.1"},
            {{0, 20, 50, 0.8}, "from 0 by 5", "from 19.9 by 0.1"}, // ten steps just fit
            {{0, 20, 50.1, 0.8}, "from 0 by 10", "from 19.9 by 0.1"},
            {{-3, 20, 23, 0.8}, "from 0 by 2", "from 19.9 by 0.1"}, // from before the start
            {{-30, 20, 20, 0.8}, "from 0 by 1", "from 19.9 by 0.1"},
            {{7.3, 20, 0, 0}, "from 7.3 by 1", "from 19.999995 by 1e-06"},
            {{0, 19.64, 10, 0.8}, "from 0 by 1", "from 19.5 by 0.1"}, // middle between two steps
            {{0, 19.67, 10, 0.8}, "from 0 by 1", "from 19.6 by 0.1"},
            {{0, -24.1, 10, 4}, "from 0 by 1", "from -24.5 by 0.5"},
            {{0, -0.4, 10, 0.9}, "from 0 by 1", "from -1 by 0.2"}, // higher by a hair than allowed
            {{0, 16, 10, 8.8}, "from 0 by 1", "from 15 by 1"},     // a height that just fits
            {{0, 16, 10, 9}, "from 0 by 1", "from 10 by 2"},
            {{0, -1e5, 2e6, 2e5}, "from 0 by 108000", "from -10000 by 2000"}}; // beyond the tables
        for (const auto &[rectangle, x, y] : data) {
            const ZoomedView view = viewOfRectangle(rectangle, 10, 10);
            QCOMPARE(text(view.x), x);
            QCOMPARE(text(view.y), y);
            QCOMPARE(view.x.step, double(scalesX()[view.steps.x].step));
            QCOMPARE(view.y.step, scalesY()[view.steps.y].step);
            QCOMPARE(view.centre, QPointF(view.x.middle(), view.y.middle()));
            const ZoomedView odd = viewOfRectangle(rectangle, 7, 5); // even steps make two halves
            QCOMPARE(odd.x.upper, odd.x.lower + 7 * odd.x.step);
            QVERIFY(qAbs(odd.y.upper - odd.y.lower - 4 * odd.y.step) < odd.y.step * 1e-3);
            QVERIFY(qAbs(odd.centre.y() - odd.y.lower - 2.5 * odd.y.step) < odd.y.step * 1e-3);
            QCOMPARE(odd.centre.x(), odd.x.lower + 3.5 * odd.x.step);
        }
        const ZoomedView view = viewAround({100, -5}, {4, 16}, 10, 10); // 10 s and 0.1
        QCOMPARE(text(view.x) + text(view.y), "from 50 by 10from -5.5 by 0.1");
        QCOMPARE(view.centre, QPointF(100, -5));
        for (const double middle : {20.0, 49.5, 50.5}) // the first two would begin below 0
            QCOMPARE(viewAround({middle, 0}, {4, 16}, 10, 10).x.lower, middle > 50 ? 0.5 : 0.0);
    }
    void findsStepsAndStrides()
    {
        QVERIFY(neighbouringSteps({9, 1}, false) == (ScaleSteps{9, 1})); // both stay
        QVERIFY(neighbouringSteps({lastX, 9}, true) == (ScaleSteps{lastX, 9}));
        QVERIFY(neighbouringSteps({9, lastY}, true) == (ScaleSteps{9, lastY}));
        // the next finer one; below and beyond the table
        QCOMPARE(QVector<int>({stepOfSizeX(70), stepOfSizeY(0), stepOfSizeY(1e9)}),
                 QVector<int>({7, 1, lastY}));
        // that just fits, and does not; on a canvas without width
        QCOMPARE(QVector<int>({labelStride(40, 50, 10), labelStride(41, 50, 10),
                               labelStride(130, 50, 10), labelStride(130, 0, 10)}),
                 QVector<int>({1, 2, 3, 100}));
    }
    void writesTimesAndNumbers()
    {
        const QVector<std::tuple<TmcModeX, double, double, double, QString>> data = {
            {ModeXSeconds, 1.26, 9e4, 1, "1.3|90000.0|89998.7"},
            {ModeXRelative, 3600.9, 7325, 60, "01:00|02:02|01:02"},
            {ModeXRelative, 61.9, 3725, 59, "00:01:01|01:02:05|01:01:03"},
            {ModeXRelative, 1.75, 3, 0.5, "00:00:01:000|00:00:03:000|00:00:01:000"},
            {ModeXRelative, 3600, 86400, 3600, "01:00|00:00|23:00"}, // a day is not over a day
            {ModeXRelative, 3600, 9e4, 60, "01 01:00|02 01:00|02 00:00"},
            {ModeXRelative, qQNaN(), 60, 60, "00:00|00:01|00:00"},
            {ModeXAbsolute, 0, 3600, 60, "22:45|23:45|01:00"},
            {ModeXAbsolute, 0, 7200, 15, "31.12.26 22:45:30|01.01.27 00:45:30|02:00:00"},
            {ModeXAbsolute, -9e4, 0, 60, "30.12.26 21:45|31.12.26 22:45|01:00"}, // into today
            {ModeXAbsolute, 1.9, 2.1, 1, "22:45:31|22:45:32|00:00:00"},
            {ModeXAbsolute, 1.9, 2.1, 0.5, "22:45:31:250|22:45:32:250|00:00:00:000"}};
        const QDateTime start({2026, 12, 31}, {22, 45, 30, 250});
        for (const auto &[mode, first, second, step, expected] : data) {
            const TimeFormat format{mode, start, start.date(), step};
            const TimeSpanTexts texts = timeSpanTexts(format, first, second);
            QCOMPARE(QStringList({texts.first, texts.second, texts.between}).join('|'), expected);
            QCOMPARE(timeText(format, second), timeSpanTexts(format, second, second).first);
        }
        QCOMPARE(secondsText(0) + '|' + secondsText(12.5) + '|' + secondsText(1e5) + '|' +
                     secondsText(1.2e6),
                 "0|12.5|100000|1.2e+06");
        QCOMPARE(numberText(-0.004, 2) + '|' + numberText(-0.006, 2) + '|' + numberText(-0.0, 0) +
                     '|' + numberText(-20, 0),
                 "0.00|-0.01|0|-20");
    }
};

QTEST_APPLESS_MAIN(TestChoices)
#include "tst_choices.moc"
