#include "calibration/characteristicmessages.h"
#include "calibration/storedpanel.h"
#include "device/featurenox8.h"

#include <QtTest>

class TestCharacteristicTable : public QObject
{
    Q_OBJECT
private slots:

    void layouts_data()
    {
        QTest::addColumn<QStringList>("entered");
        QTest::addColumn<QString>("rowLabels");
        QTest::addColumn<QString>("columnLabels");
        QTest::addColumn<QString>("cells");

        QTest::newRow("0") << QStringList{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}
                           << "C0..C4|C5..C9"
                           << ""
                           << "0 1 2 3 4|5 6 7 8 9";
        QTest::newRow("1") << QStringList{"100", "0,0039", "0", "0", "-5", "50"} << ""
                           << "R0|A|B|C|Tmin|Tmax"
                           << "100 0,0039 0 0 -5 50";
        QTest::newRow("2") << QStringList{"1", "2", "3", "4", "5", "6", "7", "8", "9"}
                           << "Rтт, M, b, c1|A, B, C, D, W(660.323)"
                           << ""
                           << "1 2 3 4 -|5 6 7 8 9";
        QTest::newRow("3") << QStringList{"0", "0", "100", "0.6"} << "T, °С|ТЭДС, мВ"
                           << "1|2|3|4|5"
                           << "0 100 _ _ _|0 0.6 _ _ _";
    }

    void layouts()
    {
        QFETCH(QStringList, entered);
        const int type = QByteArray(QTest::currentDataTag()).toInt();
        featureNOX8 feature;
        QCOMPARE(feature.setFeature(FeatureRecord::_featureIndType(type), "A", entered), 1);

        const CharacteristicLayout layout = characteristicLayout(type);
        QTEST(layout.rowLabels.join('|'), "rowLabels");
        QTEST(QStringList(layout.columnLabels.mid(0, type == 3 ? 5 : 6)).join('|'), "columnLabels");
        const CellTexts cells = cellTexts(feature);
        QStringList rows;
        for (const QStringList &row : cells)
            rows << QStringList(row.mid(0, type == 1 ? 6 : 5))
                        .replaceInStrings(QRegExp("^$"), "_")
                        .join(' ');
        QTEST(rows.join('|'), "cells");
        QCOMPARE(cells.at(0).size(), type == 3 ? 56 : layout.columns);
        QCOMPARE(enteredValues(layout, cells), entered);
    }

    void pairs_data()
    {
        QTest::addColumn<QString>("temperatures");
        QTest::addColumn<QString>("emfs");
        QTest::addColumn<QString>("handedOn");
        QTest::addColumn<QVector<int>>("notRising");
        QTest::addColumn<QVector<int>>("leftOut");

        QTest::newRow("rising") << "0,100,200"
                                << "0,1,2"
                                << "0,0,100,1,200,2" << QVector<int>{} << QVector<int>{};
        QTest::newRow("a gap") << "0,,200"
                               << "0,,2"
                               << "0,0,200,2" << QVector<int>{} << QVector<int>{1};
        QTest::newRow("an EMF alone between") << "0,,200"
                                              << "1,9,2"
                                              << "0,1,200,2" << QVector<int>{} << QVector<int>{1};
        QTest::newRow("an EMF alone behind") << "0,100,,"
                                             << "0,1,2,"
                                             << "0,0,100,1" << QVector<int>{} << QVector<int>{2};
        QTest::newRow("bends over a gap")
            << "0,,200,300,400"
            << "1,9,1,2,2"
            << "0,1,200,1,300,2,400,2" << QVector<int>{2, 4} << QVector<int>{1};
        QTest::newRow("no number") << "0,100,200"
                                   << "1,x,0.5"
                                   << "0,1,100,x,200,0.5" << QVector<int>{2} << QVector<int>{};
    }

    void pairs()
    {
        QFETCH(QString, temperatures);
        QFETCH(QString, emfs);
        const CellTexts cells = {temperatures.split(','), emfs.split(',')};
        CharacteristicLayout layout = characteristicLayout(3);
        layout.columns = cells.at(0).size();
        QTEST(enteredValues(layout, cells).join(','), "handedOn");
        QTEST(columnsNotRising(cells), "notRising");
        QTEST(columnsLeftOut(cells), "leftOut");
        QCOMPARE(withValues(layout, cells, enteredValues(layout, cells)), cells);
    }

    // the figures are those of an independent computation
    void deviations_data()
    {
        QTest::addColumn<QString>("r0");
        QTest::addColumn<QString>("lowest");
        QTest::addColumn<QString>("highest");
        QTest::addColumn<double>("least"); // mK
        QTest::addColumn<double>("most");

        QTest::newRow("Pt100 wide") << "100"
                                    << "-200"
                                    << "850" << 17.5 << 18.5;
        QTest::newRow("Pt1000 wide") << "1000"
                                     << "-200"
                                     << "850" << 17.5 << 18.5;
        QTest::newRow("Pt100 above 0") << "100"
                                       << "0"
                                       << "850" << 0.0 << 0.5;
    }

    void deviations()
    {
        QFETCH(QString, r0);
        QFETCH(QString, lowest);
        QFETCH(QString, highest);
        QFETCH(double, least);
        QFETCH(double, most);
        featureNOX8 feature;
        feature.setFeature(FeatureRecord::callendarVanDusen, "",
                           {r0, "3.9083e-3", "-5.775e-7", "-4.183e-12", lowest, highest});
        const double deviation = fitDeviation(feature).value_or(-1.0);
        QVERIFY2(deviation >= least && deviation <= most, qPrintable(QString::number(deviation)));
        QCOMPARE(noteOn(feature, cellTexts(feature), {}, true).isWarning, most > 1.0);
        feature.type = FeatureRecord::polynomial;
        QVERIFY(!fitDeviation(feature));
    }

    void matches_data()
    {
        QTest::addColumn<int>("before"); // ids, 0: no row
        QTest::addColumn<int>("withSameRecord");
        QTest::addColumn<int>("id");
        QTest::addColumn<bool>("isChanged");

        QTest::newRow("unknown") << 0 << 0 << 0 << false;
        QTest::newRow("found by its record") << 0 << 7 << 7 << false;
        QTest::newRow("loaded, unchanged") << 7 << 7 << 7 << false;
        QTest::newRow("loaded and changed") << 7 << 0 << 7 << true;
        QTest::newRow("loaded and changed into another") << 7 << 8 << 7 << true;
    }

    void matches()
    {
        QFETCH(int, before);
        QFETCH(int, withSameRecord);
        const auto row = [](int id) {
            return id > 0 ? std::optional(StoredCharacteristic{id, "name", "info"}) : std::nullopt;
        };
        const StoredMatch match = matchStored(row(before), row(withSameRecord));
        QTEST(match.id, "id");
        QTEST(match.isChanged, "isChanged");
        QCOMPARE(match.isStored, match.id > 0);
        QCOMPARE(match.name, match.isStored ? QString("name") : QString("Новая градуировка"));
    }
};

QTEST_GUILESS_MAIN(TestCharacteristicTable)
#include "tst_characteristictable.moc"
