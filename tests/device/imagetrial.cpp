#include "imagetrial.h"

#include <QRandomGenerator>

namespace
{

/** Any finite number of single precision, of any magnitude, and sometimes 0. */
float anyNumber(QRandomGenerator &random)
{
    if (random.bounded(8) == 0)
        return 0.0F;
    const double mantissa = random.generateDouble() * 2.0 - 1.0;
    return float(mantissa * std::pow(10.0, random.bounded(-30, 30)));
}

/** A number as instruments keep it in a table: tenths of a degree in five characters. */
float tableTemperature(QRandomGenerator &random)
{
    return float(random.bounded(-9999, 20000)) / 10.0F;
}

QString anyText(QRandomGenerator &random, int longest)
{
    const QString letters = QStringLiteral("abcXYZ0189 -.,№°ЖжяЁ");
    QString text;
    for (int i = random.bounded(longest + 1); i > 0; --i)
        text += letters.at(random.bounded(letters.size()));
    return text.trimmed();
}

template<typename Code>
Code oneOf(QRandomGenerator &random, std::initializer_list<Code> codes)
{
    return *(codes.begin() + random.bounded(int(codes.size())));
}

quint8 indexFor(QRandomGenerator &random, bool isStandard)
{
    return quint8(random.bounded(isStandard ? 13 : 16));
}

void fillChannel(ChannelSettings &channel, QRandomGenerator &random)
{
    channel.onOff = qint8(random.bounded(2));
    channel.measType =
        oneOf(random, {measResistance, measTemperature, measTemperatureCustom, measVoltage});
    if (channel.measType == measTemperatureCustom)
        channel.dimCust = QStringLiteral("u") + anyText(random, 9);
    channel.current = indexFor(random, false);
    channel.resist = indexFor(random, false);
    channel.featureType = oneOf(random, {featureIndividual, featureResistanceThermometer,
                                         featureThermocouple, featureNone});
    channel.feature = indexFor(random, channel.featureType == featureThermocouple ||
                                           channel.featureType == featureResistanceThermometer);
    channel.featureTypeCompensTP = oneOf(random, {compensIndividual, compensResistanceThermometer,
                                                  compensThermocouple, compensNone});
    channel.featureCompensTP = indexFor(random, true);
}

void fillFeature(FeatureRecord &feature, QRandomGenerator &random)
{
    feature.type = FeatureRecord::_featureIndType(random.bounded(4));
    feature.name = anyText(random, 39);
    const bool isTable = feature.type == FeatureRecord::temperatureOfVoltage;
    for (std::size_t i = 0; i < (isTable ? feature.ratio.size() : 10); ++i)
        feature.ratio[i].value =
            isTable && i % 2 == 0 ? tableTemperature(random) : anyNumber(random);
    if (isTable)
        return;
    for (int i = 0; i < (feature.type == FeatureRecord::its90 ? 9 : 10); ++i)
        feature.ratioStr << QString::number(double(anyNumber(random)), 'g', random.bounded(1, 9));
}

/** The numbers that a characteristic of this type means, bit by bit. */
QByteArray numbersOf(const FeatureRecord &feature)
{
    const int counts[] = {10, 10, 9, 112};
    QByteArray bits;
    for (int i = 0; i < counts[feature.type]; ++i)
        bits += feature.ratio[std::size_t(i)].getByte();
    return bits;
}

QString channelDifference(const ChannelSettings &one, const ChannelSettings &other)
{
    if (encodeChannel(one) != encodeChannel(other))
        return encodeChannel(one).toHex() + " / " + encodeChannel(other).toHex();
    if (one.measType != other.measType || one.dimCust != other.dimCust)
        return "unit " + one.dimCust + " / " + other.dimCust;
    return {};
}

QString featureDifference(const FeatureRecord &one, const FeatureRecord &other)
{
    if (one.type != other.type || one.name != other.name)
        return QString("%1 %2 / %3 %4").arg(one.type).arg(one.name).arg(other.type).arg(other.name);
    if (numbersOf(one) != numbersOf(other))
        return "numbers " + one.ratioStr.join('|');
    if (one.type != FeatureRecord::temperatureOfVoltage && one.ratioStr != other.ratioStr)
        return one.ratioStr.join('|') + " / " + other.ratioStr.join('|');
    return {};
}

} // namespace

void fillAtRandom(optionsNOX8 &image, quint32 type, QRandomGenerator &random)
{
    image.setDevType(type);
    image.devNumber = quint16(random.bounded(1, 65536));
    if (image.getDevRev() != 0)
        image.devName = anyText(random, 16);

    const auto fillTriple = [&random](ReferenceTriple &triple) {
        for (bFloat *number : {&triple.value, &triple.a, &triple.b})
            number->value = anyNumber(random);
    };
    for (ReferenceTriple &resistor : image.refR)
        fillTriple(resistor);
    fillTriple(image.refU);
    image.refT0.value = anyNumber(random);
    if (image.getDevRev() != 0)
        forEachShift(static_cast<ZeroShifts &>(image),
                     [&random](bFloat &shift) { shift.value = anyNumber(random); });

    image.devMeasTime = quint8(random.bounded(9));
    image.devMeasMode = quint8(random.bounded(16));
    image.devMeasRound = quint8(random.bounded(16) << 4);
    image.devCompensTP = quint8(random.bounded(16));
    image.devChRevers = oneOf<quint8>(random, {0x00, 0x10});
    image.devZakorotka = type > 0x21 ? quint8(random.bounded(2)) : 0;
    for (int ch = 0; ch < image.getDevChCount(); ++ch) {
        fillChannel(image.channels[ch], random);
        fillFeature(*image.features.at(ch), random);
    }
}

QString differenceOf(const optionsNOX8 &one, const optionsNOX8 &other)
{
    if (one.devType != other.devType || one.devNumber != other.devNumber ||
        one.devName != other.devName)
        return QString("identity %1 %2 %3 / %4 %5 %6")
            .arg(one.devType)
            .arg(one.devNumber)
            .arg(one.devName)
            .arg(other.devType)
            .arg(other.devNumber)
            .arg(other.devName);
    if (encodeOperatingSettings(one) != encodeOperatingSettings(other))
        return "settings " + encodeOperatingSettings(one).toHex() + " / " +
               encodeOperatingSettings(other).toHex();
    if (encodeReferenceData(one, {}) != encodeReferenceData(other, {}))
        return "reference data";
    if (encodeZeroShifts(one) != encodeZeroShifts(other))
        return "zero shifts";
    for (int ch = 0; ch < one.getDevChCount(); ++ch) {
        const QString difference = channelDifference(one.channels.at(ch), other.channels.at(ch)) +
                                   featureDifference(*one.features.at(ch), *other.features.at(ch));
        if (!difference.isEmpty())
            return QString("channel %1: %2").arg(ch).arg(difference);
    }
    return {};
}
