#include "examples/exampleimage.h"

namespace
{

constexpr quint32 exampleType = 0x0950AA0F;

void fillReferences(optionsNOX8 &image)
{
    image.refT0.value = 24.5F;
    const float values[] = {75.00213F, 200.0034F, 1500.013F, 100.0F};
    for (std::size_t i = 0; i < image.refR.size(); ++i)
        image.refR[i] = {bFloat(values[i]), bFloat(1.2e-6F), bFloat(-3.4e-8F)};
    image.refU = {bFloat(300.0125F), bFloat(5e-7F), bFloat(0.0F)};
    image.shiftU[0].value = -0.00015F;
    image.shiftCh[0].value = 0.0002F;
    image.shiftR[0].value = 0.00125F;
}

void fillSettings(optionsNOX8 &image)
{
    image.devMeasTime = 3;
    image.devMeasRound = 0x10;
    image.devMeasMode = 2;
    image.devCompensTP = 1;
    image.devChRevers = 0x10;
    image.devZakorotka = 0;
}

void fillChannels(optionsNOX8 &image)
{
    image.setChMeasType(0, measTemperature, {});
    image.setChCurrent(0, 4);
    image.setChResist(0, 1);
    image.setChFeatureCompesTP(0, compensNone, 0);

    image.setChMeasType(1, measTemperature, {});
    image.setChFeature(1, featureThermocouple, 10);
    image.setChFeatureCompesTP(1, compensResistanceThermometer, 10);

    image.setChMeasType(2, measTemperatureCustom, QStringLiteral("K"));
    image.setChFeature(2, featureIndividual, 2);

    image.setChOnOff(3, 0);
    image.setChMeasType(3, measVoltage, {});
    image.setChFeature(3, featureNone, 0);
}

void fillFeatures(optionsNOX8 &image)
{
    using Type = FeatureRecord::_featureIndType;
    const auto enter = [&image](quint8 ch, Type type, const char *name, const char *values) {
        image.features.at(ch)->setFeature(type, QString::fromUtf8(name),
                                          QString::fromLatin1(values).split(' '));
    };
    enter(0, FeatureRecord::callendarVanDusen, "ТСП-100 №17",
          "100.012 3.9083e-3 -5.775e-7 -4.183e-12 0 850");
    enter(1, FeatureRecord::polynomial, "Полином", "-245.9 2.359 9.8e-4 0 0 0 0 0 0 0");
    enter(2, FeatureRecord::its90, "ЭТС-25",
          "25.1872 -1.1e-4 1.3e-5 2.2e-6 -1.25e-4 2.0e-5 0 0 3.375843");
    enter(3, FeatureRecord::temperatureOfVoltage, "ТХА", "0 0 100 4.0962 200 8.1385");
}

} // namespace

void fillExampleImage(optionsNOX8 &image)
{
    image.setClock([] { return QDateTime(QDate(2026, 3, 9), QTime(14, 5, 30)); });
    image.setDevType(exampleType);
    image.setDevNumber(1234);
    image.devName = QStringLiteral("Эталон 2");
    fillReferences(image);
    fillSettings(image);
    fillChannels(image);
    fillFeatures(image);
}
