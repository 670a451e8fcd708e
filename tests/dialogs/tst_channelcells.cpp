#include "device/featurenox8.h"
#include "device/heldblocks.h"
#include "device/optionsnox8.h"
#include "dialogs/settingscontent.h"

#include <QtTest>

Q_DECLARE_METATYPE(ChannelSettings)
Q_DECLARE_METATYPE(CharacteristicSource)

/** What the settings of an instrument show, told from its image alone. */
class TestChannelCells : public QObject
{
    Q_OBJECT
private slots:
    void models_data();
    void models();
    void typeIsOpenUntilItIsTold();
    void cells_data();
    void cells();
    void compensationNeedsThermocouple_data();
    void compensationNeedsThermocouple();
    void changesAreThoseOfTheBlock();
    void writtenChannelDiffersNoMore();
};

void TestChannelCells::models_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QString>("shortCircuitOn");
    QTest::addColumn<QString>("shortCircuitOff");
    QTest::addColumn<bool>("isExtended");

    const auto row = [](quint32 type, const char *on, const char *off, bool isExtended) {
        QTest::addRow("%u", type) << type << QString(on) << QString(off) << isExtended;
    };
    row(0, "Да", "Да", false);
    for (const quint32 type : {1, 17, 33})
        row(type, "Канал 7", "Канал 7", false);
    for (const quint32 type : {34, 49})
        row(type, "Канал 7", "Канал 8", false);
    for (const quint32 type : {156281359, 158378511})
        row(type, "Канал 7", "Канал 8", true);
    row(65, "Канал 15", "Канал 16", false);
    row(157329935, "Канал 15", "Канал 16", true);
}

void TestChannelCells::models()
{
    QFETCH(quint32, type);
    QTEST(compensatingChannelText(type, 0), "shortCircuitOn");
    QTEST(compensatingChannelText(type, 1), "shortCircuitOff");
    optionsNOX8 image;
    image.setDevType(type);
    QTEST(fieldStates(image, 0).isExtended, "isExtended");
    QCOMPARE(fieldStates(image, 0).isKnown, type != 0);
}

void TestChannelCells::typeIsOpenUntilItIsTold()
{
    optionsNOX8 image;
    QVERIFY(fieldStates(image, 0).isTypeOpen);
    QVERIFY(!fieldStates(image, 3).isTypeOpen);
    QVERIFY(fieldStates(image, 3).isStored);
    image.identValid = true;
    QVERIFY(!fieldStates(image, -1).isTypeOpen);
}

void TestChannelCells::cells_data()
{
    QTest::addColumn<ChannelSettings>("channel");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<bool>("isOn");

    ChannelSettings channel;
    channel.measType = measTemperature;
    channel.current = 1;
    channel.resist = 1;
    channel.featureType = featureResistanceThermometer;
    const QString standard = QStringLiteral("standard");
    QTest::newRow("on") << channel << QStringList{"Вкл.", "°С", "current", "200 Ω", standard, "-"}
                        << true;
    channel.onOff = 0;
    channel.measType = measVoltage;
    QTest::newRow("off") << channel << QStringList{"-", "мВ", "current", "200 Ω", standard, "-"}
                         << false;
    channel.onOff = 2; // as an instrument may hold it
    channel.measType = measTemperatureCustom;
    channel.dimCust = QStringLiteral("бар");
    channel.resist = 4; // four there are
    channel.featureType = featureNone;
    QTest::newRow("strange") << channel << QStringList{"-", "бар", "current", "-", "", "-"}
                             << false;
}

void TestChannelCells::cells()
{
    QFETCH(ChannelSettings, channel);
    QFETCH(QStringList, texts);
    optionsNOX8 image;
    image.setDevType(34);
    image.channels[3] = channel;
    texts.replaceInStrings("current", optionsNOX8::getDevCurrentList(34).at(1));
    texts.replaceInStrings("standard", image.getChFeatureName(3));

    const ChannelCells cells = channelCells(image, 3);
    for (int column = 0; column < channelSettings; ++column)
        QCOMPARE(cells.texts.at(std::size_t(column)), texts.at(column));
    QTEST(cells.isOn, "isOn");
}

void TestChannelCells::compensationNeedsThermocouple_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<int>("compensation");
    QTest::addColumn<CharacteristicSource>("source");
    QTest::addColumn<bool>("isCompensated");

    QTest::newRow("standard") << 34U << 2 << featureThermocouple << true;
    QTest::newRow("one channel") << 34U << 1 << featureThermocouple << false;
    QTest::newRow("older model") << 33U << 2 << featureThermocouple << false;
    QTest::newRow("resistance") << 34U << 2 << featureResistanceThermometer << false;
    QTest::newRow("own table") << 34U << 2 << featureIndividual << true;
}

void TestChannelCells::compensationNeedsThermocouple()
{
    QFETCH(quint32, type);
    QFETCH(int, compensation);
    QFETCH(CharacteristicSource, source);
    optionsNOX8 image;
    image.setDevType(type);
    image.devCompensTP = quint8(compensation);
    image.channels[0].featureType = source;
    image.channels[0].feature = 5;
    image.channels[0].featureTypeCompensTP = compensResistanceThermometer;
    image.features[5]->type = FeatureRecord::temperatureOfVoltage;

    const ChannelCells cells = channelCells(image, 0);
    QTEST(cells.isCompensated, "isCompensated");
    const QString &text = cells.texts.at(CompensationSetting);
    QCOMPARE(text, cells.isCompensated ? image.getChFeatureCompesTPName(0) : QString("-"));

    image.features[5]->type = FeatureRecord::polynomial;
    if (source == featureIndividual)
        QVERIFY(!channelCells(image, 0).isCompensated);
}

/** Each change of the image is marked in its place and in no other. */
void TestChannelCells::changesAreThoseOfTheBlock()
{
    optionsNOX8 image;
    image.setDevType(65);
    HeldBlocks held;
    QVERIFY(configurationChanges(held, image).channels.isEmpty()); // nothing is known yet
    const QByteArray block = taken(image.getData());
    held.noteRead(2, block);
    image.setData(block, 2);

    const auto marks = [&held, &image] {
        const ConfigurationChanges changes = configurationChanges(held, image);
        QString marks;
        for (const bool isChanged : {changes.rounding, changes.measurementTime, changes.mode,
                                     changes.compensation, changes.reversal, changes.shortCircuit})
            marks += isChanged ? 'x' : '.';
        for (int ch = 0; ch < changes.channels.size(); ++ch)
            for (int column = 0; column < channelSettings; ++column)
                if (changes.channels.at(ch).at(std::size_t(column)))
                    marks += QString(" %1:%2").arg(ch).arg(column);
        for (int i = 0; i < changes.characteristics.size(); ++i)
            if (changes.characteristics.at(i))
                marks += QString(" c%1").arg(i);
        return marks;
    };
    QCOMPARE(marks(), QString("......"));
    image.devMeasRound = 0;
    image.devMeasTime = 5;
    image.devCompensTP = 2;
    QCOMPARE(marks(), QString("xx.x.."));
    image.devMeasMode = 0;
    image.devChRevers = 16;
    image.setDevZakorotka(image.devZakorotka == 0);
    QCOMPARE(marks(), QString("xxxxxx"));

    held.noteWritten(0, taken(image.getData()));
    image.setChMeasType(0, measTemperature, QString());
    held.noteWritten(0, taken(image.getData()));
    image.setChMeasType(0, measTemperatureCustom, "бар"); // the instrument does not know of units
    QCOMPARE(marks(), QString("......"));
    image.setChOnOff(1, 0);
    image.setChMeasType(2, measVoltage, QString());
    image.setChCurrent(3, 3);
    image.setChResist(4, 2);
    image.setChFeature(5, featureThermocouple, 0);
    image.setChFeatureCompesTP(15, compensResistanceThermometer, 2);
    image.getFeature(15)->name = "Эталон";
    QCOMPARE(marks(), QString("...... 1:0 2:1 3:2 4:3 5:4 15:5 c15"));

    image.setDevType(34); // of which no block is known
    QCOMPARE(marks(), QString("......"));
}

void TestChannelCells::writtenChannelDiffersNoMore()
{
    optionsNOX8 image;
    image.setDevType(34);
    HeldBlocks held;
    held.noteRead(2, taken(image.getData()));
    image.setChOnOff(6, 0);
    image.setChOnOff(7, 0);
    image.devMeasTime = 4;
    held.noteWritten(4, image.channelBlock(7));

    const ConfigurationChanges changes = configurationChanges(held, image);
    QVERIFY(!changes.measurementTime); // goes with each channel
    QVERIFY(changes.channels.at(6).at(OnOffSetting));
    QVERIFY(!changes.channels.at(7).at(OnOffSetting));
}

QTEST_GUILESS_MAIN(TestChannelCells)
#include "tst_channelcells.moc"
