#include "simulator/factoryimage.h"

#include "device/optionsnox8.h"
#include "device/vocabulary.h"

#include <algorithm>
#include <array>

namespace
{

constexpr int ownNameLength = 16;
constexpr float sensorOhms = 100.0F;

/** Millivolts of a type S thermocouple at 0, 100, ... 1600 °C, IEC 60584. */
constexpr std::array<double, 17> typeSMillivolts = {0.000,  0.646,  1.441,  2.323,  3.259, 4.233,
                                                    5.239,  6.275,  7.345,  8.449,  9.587, 10.757,
                                                    11.951, 13.159, 14.373, 15.582, 16.777};

/** Nominal values of the reference resistors, Ω; 0 for one that the user connects. */
QVector<float> nominalResistors(const InstrumentModel &model)
{
    QVector<float> nominals;
    const QStringList choices = resistorChoices(model.typeCode);
    for (const QString &choice : choices)
        nominals << choice.section(' ', 0, 0).toFloat();
    return nominals;
}

/** Index of the smallest resistor above the sensor. */
quint8 resistorForSensor(const InstrumentModel &model)
{
    const QVector<float> nominals = nominalResistors(model);
    const auto found = std::find_if(nominals.begin(), nominals.end(),
                                    [](float nominal) { return nominal > sensorOhms; });
    return quint8(found - nominals.begin());
}

/** A model for small resistances compares with a greater voltage. */
float nominalMillivolts(const InstrumentModel &model)
{
    return nominalResistors(model).constFirst() < 10.0F ? 1200.0F : 300.0F;
}

void setReferences(optionsNOX8 &image, const InstrumentModel &model)
{
    image.refT0.value = 20.0F;
    image.refU.value.value = nominalMillivolts(model);
    image.refU.a.value = 1.0e-6F;
    const QVector<float> nominals = nominalResistors(model);
    for (int i = 0; i < nominals.size(); ++i) {
        if (nominals.at(i) == 0.0F)
            continue;
        ReferenceTriple &resistor = image.refR[std::size_t(i)];
        resistor.value.value = nominals.at(i) * 1.00001F;
        resistor.a.value = 2.5e-6F;
        resistor.b.value = -3.0e-8F;
    }
}

void setZeroShifts(ZeroShifts &shifts)
{
    float next = -0.0018F;
    forEachShift(shifts, [&next](bFloat &shift) {
        shift.value = next;
        next += 0.0001F;
    });
}

void setChannel(optionsNOX8 &image, quint8 channel)
{
    image.setChOnOff(channel, 1);
    image.setChMeasType(channel, measTemperature, {});
    image.setChCurrent(channel,
                       quint8(excitationCurrents(image.devType).indexOf(QStringLiteral("1mA"))));
    image.setChResist(channel, resistorForSensor(*findModel(image.devType)));
    image.setChFeature(channel, featureIndividual, channel);
    image.setChFeatureCompesTP(channel, compensNone, 0);
}

/** A characteristic as the factory enters it. */
struct Characteristic {
    FeatureRecord::_featureIndType type;
    QString sensor;
    QStringList values;
};

/** R0, A, B and C of IEC 60751, and the range in °C. */
Characteristic platinumThermometer()
{
    return {FeatureRecord::callendarVanDusen,
            QStringLiteral("Pt100"),
            {"100", "3.9083E-3", "-5.775E-7", "-4.183E-12", "-100", "450"}};
}

/** Rtt, M, b and c1; A, B, C, D and W(660.323 °C). */
Characteristic standardThermometer()
{
    return {
        FeatureRecord::its90,
        QStringLiteral("ЭТС-100"),
        {"100.0123", "-1.31E-4", "-2.4E-6", "0", "-1.27E-4", "-8.1E-6", "1.9E-6", "0", "3.37561"}};
}

/** Pairs of °C and mV. */
Characteristic thermocouple()
{
    QStringList pairs;
    double celsius = 0.0;
    for (const double millivolts : typeSMillivolts) {
        pairs << QString::number(celsius, 'f', 1) << QString::number(millivolts, 'f', 4);
        celsius += 100.0;
    }
    return {FeatureRecord::temperatureOfVoltage, QStringLiteral("ТПП(S)"), pairs};
}

Characteristic characteristicOf(int channelsBehind)
{
    switch (channelsBehind) {
    case 0:
        return thermocouple();
    case 1:
        return standardThermometer();
    default:
        return platinumThermometer();
    }
}

void setCharacteristic(optionsNOX8 &image, quint8 channel)
{
    const int number = channel + 1;
    const Characteristic own = characteristicOf(image.getDevChCount() - number);
    image.getFeature(channel)->setFeature(
        own.type, QStringLiteral("%1 №%2").arg(own.sensor).arg(number), own.values);
}

} // namespace

const InstrumentModel *findPlayableModel(const QString &name)
{
    const auto family = instrumentModels();
    for (const InstrumentModel *model : family)
        if (modelName(*model).compare(name.trimmed(), Qt::CaseInsensitive) == 0)
            return model;
    return nullptr;
}

const InstrumentModel &modelOf(const InstrumentIdentity &identity)
{
    const InstrumentModel *const named = findPlayableModel(identity.modelName);
    return named ? *named : *findPlayableModel(InstrumentIdentity().modelName);
}

std::unique_ptr<optionsNOX8> factoryImage(const InstrumentIdentity &identity)
{
    const InstrumentModel &model = modelOf(identity);
    auto image = std::make_unique<optionsNOX8>();
    image->setClock([] { return QDateTime({2021, 3, 15}, {12, 0}); });
    image->setDevType(model.typeCode);
    image->setDevNumber(identity.serialNumber);
    if (model.extended)
        image->devName = identity.name.left(ownNameLength);
    image->identValid = identity.answersIdentification;
    image->identApplyPending = false;

    setReferences(*image, model);
    if (model.extended)
        setZeroShifts(*image);
    for (quint8 channel = 0; channel < model.channels; ++channel) {
        setChannel(*image, channel);
        setCharacteristic(*image, channel);
    }
    return image;
}
