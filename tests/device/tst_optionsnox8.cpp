#include "device/optionsnox8.h"
#include "device/vocabulary.h"
#include "imagelog.h"

#include <QtTest>

using Setter = std::function<void(optionsNOX8 &)>;
Q_DECLARE_METATYPE(Setter)

class TestOptionsNox8 : public QObject
{
    Q_OBJECT
private slots:
    void models_data();
    void models();
    void typeLists();
    void units();
    void unknownTypeChangesNothing();
    void numberAndName();
    void identityAsksToBeWrittenOnceItIsKnown();
    void olderTypesHaveNoShortCircuit();
    void settersCompare_data();
    void settersCompare();
    void unitIsKeptUntilItIsReplaced();
    void namesOfWhatAChannelUses();
    void settingTexts();
    void applyingAsksForWrites();
};

void TestOptionsNox8::models_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("nameWithoutRevision");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("resistors");
    QTest::addColumn<int>("family");
    QTest::addColumn<int>("blockSize");
    QTest::addColumn<bool>("extended");
    QTest::addColumn<QString>("firstCurrent");
    QTest::addColumn<int>("currents");
    QTest::addColumn<QString>("secondResistor");

    const auto row = [](quint32 type, const char *name, const char *base, int channels,
                        int resistors, int family, bool extended, const char *firstCurrent,
                        int currents, const char *secondResistor) {
        const int size = channels == 0 ? 0 : channels == 8 ? 3976 : 7944;
        QTest::newRow(name) << type << QString(name) << QString(base) << channels << resistors
                            << family << size << extended << QString(firstCurrent) << currents
                            << QString(secondResistor);
    };
    row(0x00, "--", "--", 0, 0, 0, false, "", 0, "");
    row(0x01, "NOX A", "NOX A", 8, 1, 0, false, "1mA", 2, "");
    row(0x11, "NOX B", "NOX B", 8, 2, 1, false, "0.1mA", 4, "1500 Ω");
    row(0x21, "NOX C", "NOX C", 8, 4, 2, false, "0.1mA", 8, "200 Ω");
    row(0x22, "NOX CM", "NOX CM", 8, 4, 2, false, "0.1mA", 8, "200 Ω");
    row(0x31, "NOX D", "NOX D", 8, 4, 3, false, "0.4mA", 8, "30 Ω");
    row(0x41, "NOX CM1", "NOX CM1", 16, 4, 4, false, "0.1mA", 8, "200 Ω");
    row(0x0950AA0F, "NOX CM rev.4", "NOX CM", 8, 4, 2, true, "0.1mA", 8, "200 Ω");
    row(0x0960AA0F, "NOX CM1 rev.4", "NOX CM1", 16, 4, 4, true, "0.1mA", 8, "200 Ω");
    row(0x0970AA0F, "NOX D rev.4", "NOX D", 8, 4, 3, true, "0.4mA", 8, "30 Ω");
}

void TestOptionsNox8::models()
{
    QFETCH(quint32, type);
    QFETCH(QString, name);
    optionsNOX8 image;
    QCOMPARE(image.setDevType(type), type != 0);
    QCOMPARE(image.getDevTypeStr(true), name);
    QTEST(image.getDevTypeStr(false), "nameWithoutRevision");
    QTEST(int(image.getDevChCount()), "channels");
    QTEST(int(image.getDevResistCount()), "resistors");
    QTEST(int(image.getDevFamily()), "family");
    QTEST(image.getDevDataSize(), "blockSize");
    QFETCH(bool, extended);
    QCOMPARE(image.getDevRev(), quint16(extended ? 0xAA0F : 0));
    const QStringList currents = optionsNOX8::getDevCurrentList(type);
    QTEST(currents.value(0), "firstCurrent");
    QTEST(currents.size(), "currents");
    const QStringList resistors = optionsNOX8::getDevResistList(type);
    QTEST(resistors.value(1), "secondResistor");
    QCOMPARE(resistors.size(), int(image.getDevResistCount()));
    QCOMPARE(findModelNamed(name)->typeCode, type);
}

void TestOptionsNox8::typeLists()
{
    const optionsNOX8 image;
    QCOMPARE(image.getTypeList(false).size(), 7);
    QCOMPARE(image.getTypeList(true).size(), 10);
    QVERIFY(!image.getTypeList(false).contains(0x0950AA0F));
}

void TestOptionsNox8::units()
{
    optionsNOX8 image;
    QCOMPARE(image.getDim('A'), QStringLiteral("Ω"));
    QCOMPARE(image.getDim('B'), QStringLiteral("°С"));
    QCOMPARE(image.getDim('C'), QStringLiteral("мВ"));
    QCOMPARE(image.getDim('Z'), QStringLiteral("-"));

    QCOMPARE(image.getChMeasTypeName(quint8(0)), QStringLiteral("-"));
    image.setDevType(0x11);
    QCOMPARE(image.getChMeasTypeName(quint8(7)), QStringLiteral("Ω"));
    QCOMPARE(image.getChMeasTypeName(quint8(8)), QStringLiteral("-"));
    image.setChMeasType(2, measTemperatureCustom, "  K and more text ");
    QCOMPARE(image.getChMeasTypeName(quint8(2)), QStringLiteral("K and more"));
}

void TestOptionsNox8::unknownTypeChangesNothing()
{
    optionsNOX8 image;
    image.setDevType(0x31);
    ImageLog log(image);
    QVERIFY(!image.setDevType(0x05));
    QVERIFY(image.setDevType(0x31));
    QCOMPARE(image.devType, 0x31u);
    QCOMPARE(log.take(), QStringList());

    image.devType = 0x05; // as a damaged file may leave it
    QCOMPARE(image.getDevTypeStr(true), QStringLiteral("-"));
    QCOMPARE(image.getDevTypeStr(false), QString());
    QCOMPARE(int(image.getDevChCount()), 0);
}

void TestOptionsNox8::numberAndName()
{
    optionsNOX8 image;
    QCOMPARE(image.getDevNumberStr(), QStringLiteral("--"));
    image.setDevType(0x0950AA0F);
    image.setDevNumber(42);
    QCOMPARE(image.getDevNumberStr(), QStringLiteral("0042"));
    QCOMPARE(image.getDevName(false), QStringLiteral("NOX CM rev.4"));
    QCOMPARE(image.getDevName(true), QStringLiteral("NOX CM rev.4 № 0042"));
    image.devName = "Баня 1";
    QCOMPARE(image.getDevName(true), QStringLiteral("Баня 1"));
    image.setDevType(0x22); // without a name of its own
    QCOMPARE(image.getDevName(false), QStringLiteral("NOX CM"));
    image.setDevNumber(54321);
    QCOMPARE(image.getDevNumberStr(), QStringLiteral("54321"));
}

void TestOptionsNox8::identityAsksToBeWrittenOnceItIsKnown()
{
    optionsNOX8 image;
    ImageLog log(image);
    image.setDevType(0x11);
    QCOMPARE(log.take(), (QStringList{"ident", "dev", "ref"}));
    QVERIFY(image.identApplyPending);

    image.identValid = true;
    image.setDevNumber(7);
    QCOMPARE(log.take(), (QStringList{"write ident", "ident", "dev"}));
    QVERIFY(!image.identApplyPending);
    image.setDevType(0x0960AA0F);
    QCOMPARE(log.take(), (QStringList{"write ident", "ident", "dev", "ref"}));
    image.setDevNumber(8);
    QCOMPARE(log.take(), (QStringList{"write number", "ident", "dev"}));
    image.setDevNumber(8);
    QCOMPARE(log.take(), (QStringList{"ident", "dev"}));
}

void TestOptionsNox8::olderTypesHaveNoShortCircuit()
{
    optionsNOX8 image;
    image.devCompensTP = 2;
    image.setDevType(0x22);
    QCOMPARE(int(image.devCompensTP), 2);
    QCOMPARE(int(image.devZakorotka), 1);
    image.setDevType(0x21);
    QCOMPARE(int(image.devCompensTP), 1);
    QCOMPARE(int(image.devZakorotka), 0);
    ImageLog log(image);
    image.setDevZakorotka(1);
    QCOMPARE(log.take(), QStringList());
    image.devZakorotka = 1; // as a configuration block may have it
    image.setDevZakorotka(1);
    QCOMPARE(log.take(), QStringList{"dev"});
    QCOMPARE(int(image.devZakorotka), 0);
}

void TestOptionsNox8::settersCompare_data()
{
    using Image = optionsNOX8;
    QTest::addColumn<Setter>("set");
    QTest::addColumn<QStringList>("announced");

    const auto row = [](const char *name, const QStringList &announced, const Setter &set) {
        QTest::newRow(name) << set << announced;
    };
    const QStringList channel3{"ch3"};
    row("off", channel3, [](Image &image) { image.setChOnOff(3, 0); });
    row("current", channel3, [](Image &image) { image.setChCurrent(3, 7); });
    row("current beyond four bits", {}, [](Image &image) { image.setChCurrent(3, 16); });
    row("resistor", channel3, [](Image &image) { image.setChResist(3, 15); });
    row("resistor beyond four bits", {}, [](Image &image) { image.setChResist(3, 255); });
    row("voltage", channel3, [](Image &image) { image.setChMeasType(3, measVoltage, ""); });
    row("user's unit", channel3,
        [](Image &image) { image.setChMeasType(3, measTemperatureCustom, " K "); });
    row("unit alone", channel3, [](Image &image) { image.setChDimCust(3, "°F"); });
    row("empty unit", {}, [](Image &image) { image.setChDimCust(3, "  "); });
    row("characteristic", channel3,
        [](Image &image) { image.setChFeature(3, featureIndividual, 15); });
    row("same index of another list", channel3,
        [](Image &image) { image.setChFeature(3, featureThermocouple, 0); });
    row("last standard thermocouple", channel3,
        [](Image &image) { image.setChFeature(3, featureThermocouple, 12); });
    row("beyond the standard thermocouples", {},
        [](Image &image) { image.setChFeature(3, featureThermocouple, 13); });
    row("beyond the individual ones", {},
        [](Image &image) { image.setChFeature(3, featureIndividual, 16); });
    row("compensation", channel3,
        [](Image &image) { image.setChFeatureCompesTP(3, compensResistanceThermometer, 12); });
    row("beyond the standard thermometers", {},
        [](Image &image) { image.setChFeatureCompesTP(3, compensResistanceThermometer, 13); });
    row("channel that the model has not", {}, [](Image &image) {
        image.setChOnOff(8, 0);
        image.setChMeasType(8, measVoltage, "");
        image.setChDimCust(8, "K");
        image.setChCurrent(8, 1);
        image.setChFeature(255, featureThermocouple, 1);
        image.setChFeatureCompesTP(16, compensNone, 1);
    });
    row("short circuit", {"dev"}, [](Image &image) { image.setDevZakorotka(0); });
    row("number", {"ident", "dev"}, [](Image &image) {
        image.devNumber = 0;
        image.setDevNumber(0);
    });
}

void TestOptionsNox8::settersCompare()
{
    QFETCH(Setter, set);
    QFETCH(QStringList, announced);
    optionsNOX8 image;
    image.setDevType(0x31);
    ImageLog log(image);
    set(image);
    QCOMPARE(log.take(), announced);
    const bool alwaysAnnounces = announced.contains("ident");
    set(image);
    QCOMPARE(log.take(), alwaysAnnounces ? announced : QStringList());
}

void TestOptionsNox8::unitIsKeptUntilItIsReplaced()
{
    optionsNOX8 image;
    image.setDevType(0x31);
    image.setChMeasType(0, measTemperatureCustom, "a unit longer than ten");
    QCOMPARE(image.getChDimCust(0), QStringLiteral("a unit lon"));
    image.setChMeasType(0, measTemperature, "K");
    QCOMPARE(image.getChMeasTypeName(quint8(0)), QStringLiteral("°С"));
    image.setChMeasType(0, measTemperatureCustom, "");
    QCOMPARE(image.getChMeasTypeName(quint8(0)), QStringLiteral("a unit lon"));
    QCOMPARE(image.getChDimCust(8), QStringLiteral("-"));
}

void TestOptionsNox8::namesOfWhatAChannelUses()
{
    optionsNOX8 image;
    image.setDevType(0x22);
    image.features[15]->name = "own";
    optionsNOX8::_ch &channel = image.channels[7];
    const auto names = [&image] {
        return QStringList{image.getChFeatureName(7), image.getChFeatureCompesTPName(7)};
    };
    channel.feature = channel.featureCompensTP = 15;
    QCOMPARE(names(), (QStringList{"own", "own"}));
    channel.feature = channel.featureCompensTP = 12;
    channel.featureType = featureThermocouple;
    channel.featureTypeCompensTP = compensResistanceThermometer;
    QCOMPARE(names(), (QStringList{"ТХК(L)", "Pt1000"}));
    channel.featureType = featureResistanceThermometer;
    channel.featureTypeCompensTP = compensThermocouple;
    QCOMPARE(names(), (QStringList{"Pt1000", "ТХК(L)"}));
    channel.feature = channel.featureCompensTP = 13; // as an instrument may have it
    QCOMPARE(names(), (QStringList{"-", "-"}));
    channel.featureType = featureNone;
    channel.featureTypeCompensTP = compensNone;
    QCOMPARE(names(), (QStringList{"", "-"}));
    QCOMPARE(image.getChFeatureName(8), QStringLiteral("-"));
    QCOMPARE(image.getChFeatureCompesTPName(8), QStringLiteral("-"));

    channel.current = 1;
    QCOMPARE(image.getChCurrentStr(7), QStringLiteral("0.2mA"));
    channel.current = 8;
    QCOMPARE(image.getChCurrentStr(7), QStringLiteral("-"));
    QCOMPARE(image.getChCurrentStr(8), QStringLiteral("-"));
    QVERIFY(image.getFeature(7) && !image.getFeature(8));
    QCOMPARE(image.getFeatureInfStrList().size(), 8);
}

void TestOptionsNox8::settingTexts()
{
    const auto texts = [](const SettingChoices &choices) {
        QStringList list;
        for (const SettingChoice &choice : choices)
            list << QString::number(choice.code) + ": " + choice.text;
        return list;
    };
    QCOMPARE(texts(compensationChoices(0x21, 0)), (QStringList{"0: Нет", "1: Да"}));
    const QStringList channel7{"0: Нет", "1: Канал 7", "2: Все"};
    QCOMPARE(texts(compensationChoices(0x22, 0)), channel7);
    QCOMPARE(texts(compensationChoices(0x0970AA0F, 1)).at(1), QStringLiteral("1: Канал 8"));
    QCOMPARE(texts(compensationChoices(0x41, 0)).at(1), QStringLiteral("1: Канал 15"));
    QCOMPARE(texts(compensationChoices(0x0960AA0F, 1)).at(1), QStringLiteral("1: Канал 16"));
    QCOMPARE(texts(roundingChoices()), (QStringList{"0: 0.1", "16: 0.01", "32: 0.001"}));
    QCOMPARE(texts(measurementTimeChoices()).last(), QStringLiteral("8: 9"));
    QCOMPARE(texts(reversalChoices()), (QStringList{"0: Нет", "16: Да"}));
    QCOMPARE(texts(shortCircuitChoices()), (QStringList{"0: Да", "1: Нет"}));
    QCOMPARE(texts(measurementModeChoices()).at(1),
             QStringLiteral("1: :/resource/images/singleShow_ch.png"));
    QCOMPARE(standardResistanceThermometers().join(' '),
             QStringLiteral("10M 50M 100M 10П 50П 100П 500П 1000П Pt10 Pt50 Pt100 Pt500 Pt1000"));
    QCOMPARE(standardThermocouples().join(' '),
             QStringLiteral("ТНН(N) ТВР(A1) ТВР(A2) ТВР(A3) ТЖК(J) ТМК(M) ТМК(T) ТПР(B) ТПП(R) "
                            "ТПП(S) ТХА(K) ТХК(E) ТХК(L)"));
    QCOMPARE(optionsNOX8::getDevCurrentList(0x31).join(' '),
             QStringLiteral("0.4mA 0.7mA 1mA 1.5mA 2mA 2.5mA 3mA 4mA"));
}

void TestOptionsNox8::applyingAsksForWrites()
{
    optionsNOX8 image;
    ImageLog log(image);
    const auto applyAll = [&image] {
        image.triggerChChange(2);
        image.triggerDevChange();
        image.triggerRefChange();
        image.triggerRefShiftChange();
    };
    applyAll();
    QCOMPARE(log.take(), QStringList()); // nobody knows yet what instrument it is

    image.setDevType(0x11);
    log.take();
    image.triggerChChange(8);
    applyAll();
    QCOMPARE(log.take(),
             (QStringList{"write ch2", "write ident", "write dev", "write ref", "write shift"}));
    image.triggerDevChange();
    QCOMPARE(log.take(), QStringList{"write dev"});
}

QTEST_GUILESS_MAIN(TestOptionsNox8)
#include "tst_optionsnox8.moc"
