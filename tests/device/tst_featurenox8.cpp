#include "device/callendarvandusen.h"
#include "device/featurenox8.h"

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(FeatureRecord::_featureIndType)

class TestFeatureNox8 : public QObject
{
    Q_OBJECT
private slots:
    void record();
    void its90KeepsItsTexts();
    void textsAreCut();
    void damagedRecords();
    void tableTexts();
    void entries_data();
    void entries();
    void tableIsContinued();
    void thermometerIsFitted_data();
    void thermometerIsFitted();
    void fitIsOverAHundredPoints();
    void announcesWhatItTakes();
    void numbersOfATableStayBehind();
};

namespace
{

using Record = FeatureRecord;

QStringList repeated(const QString &text, int count)
{
    return QVector<QString>(count, text).toList();
}

QStringList numbers(int count, const QString &first = "1")
{
    QStringList texts{first};
    while (texts.size() < count)
        texts << "0";
    return texts;
}

} // namespace

void TestFeatureNox8::record()
{
    featureNOX8 feature;
    QCOMPARE(feature.setFeature(Record::polynomial, " A ", numbers(10, " 1,0 ")), 1);
    const QByteArray bytes = taken(feature.getData());
    QCOMPARE(bytes.size(), 492);
    QCOMPARE(bytes.left(6).toHex(), QByteArray("000000000141"));
    QCOMPARE(bytes.mid(6, 38), QByteArray(38, '\0'));
    QCOMPARE(bytes.mid(44, 8).toHex(), QByteArray("3f80000000000000"));
    QCOMPARE(bytes.mid(84, 5).toHex(), QByteArray("03312c3000"));
    QCOMPARE(bytes.mid(284), QByteArray(208, '\0'));
    QCOMPARE(feature.getRatioStr(0), QStringLiteral("1,0"));
    QCOMPARE(feature.getRatioStr(200), QString());
    QCOMPARE(feature.getFeatureTypeStr().size(), 4);
    QVERIFY(feature.getFeatureTypeStr().at(Record::its90).startsWith("МТШ-90"));
    QVERIFY(feature.getFeatureTypeStr().at(Record::temperatureOfVoltage).startsWith("Таблица"));
}

void TestFeatureNox8::its90KeepsItsTexts()
{
    const QStringList texts = {"25.5", "2", "3", "4", "5", "6", "7", "8", "9"};
    featureNOX8 feature;
    QCOMPARE(feature.setFeature(Record::its90, "SPRT", texts), 1);
    const QByteArray bytes = taken(feature.getData());
    QCOMPARE(bytes.mid(84 + 4 * 20, 20), QByteArray("\x01\x30") + QByteArray(18, '\0'));

    featureNOX8 read;
    read.setData(bytes);
    QCOMPARE(read.ratioStr, texts);
    QCOMPARE(read.getRatio(), feature.getRatio());
    QCOMPARE(taken(read.getData()), bytes);
}

void TestFeatureNox8::textsAreCut()
{
    featureNOX8 feature;
    feature.name = QString(60, QChar(u'Ж'));
    feature.type = Record::polynomial;
    feature.ratioStr = repeated(QString(30, '7'), 15);
    featureNOX8 read;
    read.setData(taken(feature.getData()));
    QCOMPARE(read.name, QString(39, QChar(u'Ж')));
    QCOMPARE(read.ratioStr, repeated(QString(19, '7'), 10));
}

void TestFeatureNox8::damagedRecords()
{
    featureNOX8 feature;
    QSignalSpy changes(&feature, &featureNOX8::onChange);
    feature.setData(QByteArray(491, '\1'));
    feature.setData(QByteArray());
    QCOMPARE(changes.count(), 0);

    const QByteArray erased(492, char(0xFF)); // lengths beyond their slots, a type that is none
    feature.setData(erased);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(int(feature.type), -1);
    QCOMPARE(feature.name.size(), 39);
    QCOMPARE(feature.ratioStr.size(), 10);
    QCOMPARE(taken(feature.getData()).left(5).toHex(), QByteArray("ff00000027"));
}

void TestFeatureNox8::tableTexts()
{
    FeatureRecord table;
    table.type = Record::temperatureOfVoltage;
    const float pairs[] = {100.0F, 0.6F, 200.0F, 1.4405F, 150.0F, 9.0F, 160.0F, 10.0F};
    std::transform(std::begin(pairs), std::end(pairs), table.ratio.begin(),
                   [](float number) { return bFloat(number); });
    featureNOX8 feature;
    feature.setData(encodeFeature(table));
    QCOMPARE(feature.ratioStr, // each beside its predecessor in the record, shown or not
             (QStringList{"100.0", "0.6000", "200.0", "1.4405", "160.0", "10.0000"}));
}

void TestFeatureNox8::entries_data()
{
    QTest::addColumn<Record::_featureIndType>("type");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<int>("result");
    QTest::addColumn<bool>("stored");

    const auto row = [](const char *name, int type, const QStringList &texts, int result,
                        bool stored) {
        QTest::newRow(name) << Record::_featureIndType(type) << texts << result << stored;
    };
    row("polynomial", 0, numbers(10), 1, true);
    row("polynomial, one value short", 0, numbers(9), 1, false);
    row("polynomial of words", 0, numbers(10, "one"), 0, false);
    row("polynomial, not a number", 0, numbers(10, "nan"), 0, false);
    row("Callendar-Van Dusen, seven values", 1, numbers(7), 1, false);
    row("Callendar-Van Dusen without a range", 1, {"100", "3.9e-3", "0", "0", "5", "5"}, 0, false);
    row("ITS-90, ten values", 2, numbers(10), 1, false);
    row("ITS-90 with empty texts", 2, repeated(" ", 9), 1, true);
    row("table of one pair", 3, {"0", "0"}, 0, false);
    row("table of one pair and a half", 3, {"0", "0", "1"}, 0, false);
    row("table of two pairs", 3, {"0", "0", "1", "1"}, 1, true);
    row("table that falls at once", 3, {"1", "0", "0.9", "1"}, 0, false);
    row("table with equal temperatures", 3, {"1", "0", "1", "1"}, 1, true);
    row("table too long", 3, numbers(113), 1, false);
    row("no such type", 7, numbers(10), 1, false);
    row("no such type, no values", -1, {}, 1, false);
}

void TestFeatureNox8::entries()
{
    QFETCH(Record::_featureIndType, type);
    QFETCH(QStringList, texts);
    QFETCH(bool, stored);
    featureNOX8 feature;
    const QByteArray before = taken(feature.getData());
    QSignalSpy changes(&feature, &featureNOX8::onChange);
    QTEST(feature.setFeature(type, "new", texts), "result");
    QCOMPARE(changes.count(), stored ? 1 : 0);
    QCOMPARE(taken(feature.getData()) != before, stored);
}

void TestFeatureNox8::tableIsContinued()
{
    featureNOX8 feature;
    QCOMPARE(feature.setFeature(Record::temperatureOfVoltage, "S",
                                {"0", "0", "100", "0.646", "200", "1.441", "300", "2.323", "250",
                                 "2", "400", "3.259"}),
             1);
    const QVector<float> ratio = feature.getRatio();
    QCOMPARE(ratio.mid(6, 8), (QVector<float>{300, 2.323F, 0, 0, 400, 3.259F, 400, 3.259F}));
    QCOMPARE(ratio.mid(110), (QVector<float>{400, 3.259F}));
    QCOMPARE(feature.ratioStr.mid(6), (QStringList{"300", "2.323", "", "", "400", "3.259"}));

    QCOMPARE(feature.setFeature(Record::temperatureOfVoltage, "falls", {"0", "1", "5", "3", "4"}),
             1);
    QCOMPARE(feature.getRatio().mid(2, 6), (QVector<float>{5, 3, 0, 0, 4, 3}));
    QCOMPARE(feature.ratioStr, (QStringList{"0", "1", "5", "3", ""}));
    QCOMPARE(feature.setFeature(Record::temperatureOfVoltage, "odd", {"0", "1", "2", "3", "4"}), 1);
    QCOMPARE(feature.getRatio().mid(4, 6), (QVector<float>{4, 3, 4, 3, 4, 3}));
}

void TestFeatureNox8::thermometerIsFitted_data()
{
    QTest::addColumn<QString>("lowest");
    QTest::addColumn<QString>("highest");
    QTest::addColumn<double>("celsius");
    QTest::addColumn<double>("resistance"); // IEC 60751:2008, table 1

    QTest::newRow("cold, where the C term counts") << "-100"
                                                   << "100" << -80.0 << 68.33;
    QTest::newRow("ice point") << "-100"
                               << "100" << 0.0 << 100.0;
    QTest::newRow("warm") << "0"
                          << "100" << 50.0 << 119.40;
    QTest::newRow("hot") << "0"
                         << "660" << 500.0 << 280.98;
}

void TestFeatureNox8::thermometerIsFitted()
{
    QFETCH(QString, lowest);
    QFETCH(QString, highest);
    QFETCH(double, celsius);
    QFETCH(double, resistance);
    const QStringList texts = {"100", "3,9083e-3", "-5.775e-7", "-4.183e-12", lowest, highest};
    featureNOX8 feature;
    QCOMPARE(feature.setFeature(Record::callendarVanDusen, "Pt100", texts), 1);
    QCOMPARE(feature.ratioStr, texts);

    TemperaturePolynomial stored{};
    for (std::size_t k = 0; k < stored.size(); ++k)
        stored[k] = double(feature.ratio[k].value);
    // the table is rounded to 0.01 Ω, which is 13 mK on either side
    const double found = evaluate(stored, resistance);
    QVERIFY2(qAbs(found - celsius) < 0.02, qPrintable(QString::number(found)));
}

void TestFeatureNox8::fitIsOverAHundredPoints()
{
    // how far the fit is off, as exact fractions give it for -1, -0.98 ... 0.98 °C; with the
    // highest temperature among the points it would be off by half as much there
    const CallendarVanDusen bent{1.0, 1.0, 0.0, -0.01, -1.0, 1.0};
    const TemperaturePolynomial fitted = fitTemperaturePolynomial(bent);
    const auto errorAt = [&](double celsius) {
        return evaluate(fitted, bent.resistance(celsius)) - celsius;
    };
    QVERIFY(qAbs(errorAt(-1.0) + 0.0000847092) < 1e-7);
    QVERIFY(qAbs(errorAt(-0.5) + 0.0013404193) < 1e-7);
    QVERIFY(qAbs(errorAt(1.0) + 0.0055031381) < 1e-7);
}

void TestFeatureNox8::announcesWhatItTakes()
{
    featureNOX8 feature;
    QSignalSpy changes(&feature, &featureNOX8::onChange);
    feature.setFeature(Record::its90, "x", numbers(9));
    feature.setData(taken(feature.getData()));
    QCOMPARE(changes.count(), 2);
}

void TestFeatureNox8::numbersOfATableStayBehind()
{
    featureNOX8 feature;
    feature.setFeature(Record::temperatureOfVoltage, "S", {"0", "0", "100", "0.646"});
    feature.setFeature(Record::polynomial, "P", numbers(10));
    QCOMPARE(feature.getRatio().mid(8, 4), (QVector<float>{0, 0, 100, 0.646F}));
    feature.setData(taken(feature.getData()));
    QCOMPARE(feature.getRatio().at(10), 100.0F);
}

QTEST_GUILESS_MAIN(TestFeatureNox8)
#include "tst_featurenox8.moc"
