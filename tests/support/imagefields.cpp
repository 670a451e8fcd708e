#include "support/imagefields.h"

#include "device/optionsnox8.h"

namespace
{

QString digits(const bFloat &number)
{
    return QString::number(double(number.value), 'g', 9);
}

QString describeTriple(const QString &name, const ReferenceTriple &triple)
{
    return QString("%1: %2, a %3, b %4")
        .arg(name, digits(triple.value), digits(triple.a), digits(triple.b));
}

template<typename Numbers>
QString describeNumbers(const QString &name, const Numbers &numbers)
{
    QStringList texts;
    for (const bFloat &number : numbers)
        texts << digits(number);
    return name + ": " + texts.join(' ');
}

QStringList describeChannel(const ChannelSettings &channel)
{
    return {
        QString("on %1").arg(channel.onOff),
        QString("measures 0x%1 in '%2'").arg(int(channel.measType), 0, 16).arg(channel.dimCust),
        QString("current %1, resistor %2").arg(channel.current).arg(channel.resist),
        QString("characteristic 0x%1 %2").arg(int(channel.featureType), 0, 16).arg(channel.feature),
        QString("compensation 0x%1 %2")
            .arg(int(channel.featureTypeCompensTP), 0, 16)
            .arg(channel.featureCompensTP)};
}

QStringList describeFeature(const FeatureRecord &feature)
{
    QStringList entries = feature.ratioStr;
    while (!entries.isEmpty() && entries.last().isEmpty()) // a record has slots that no entry fills
        entries.removeLast();
    return {QString("own type %1 '%2'").arg(int(feature.type)).arg(feature.name),
            describeNumbers("own numbers", feature.ratio),
            "own entries: '" + entries.join("' '") + "'"};
}

} // namespace

QStringList describe(const optionsNOX8 &image)
{
    QStringList lines = {
        QString("type %1, number %2, name '%3'")
            .arg(image.devType)
            .arg(image.devNumber)
            .arg(image.devName),
        QString("time %1, rounding %2, mode %3, compensation %4, reversal %5, short circuit %6")
            .arg(image.devMeasTime)
            .arg(image.devMeasRound)
            .arg(image.devMeasMode)
            .arg(image.devCompensTP)
            .arg(image.devChRevers)
            .arg(image.devZakorotka),
        "T0: " + digits(image.refT0),
        describeTriple("Uref", image.refU),
        describeNumbers("shifts of the ranges", image.shiftU),
        describeNumbers("shifts of the channels", image.shiftCh),
        describeNumbers("shifts of the resistors", image.shiftR)};
    for (std::size_t i = 0; i < image.refR.size(); ++i)
        lines << describeTriple(QString("R%1").arg(i + 1), image.refR[i]);
    for (int c = 0; c < image.getDevChCount(); ++c) {
        const QStringList channel =
            describeChannel(image.channels.at(c)) + describeFeature(*image.features.at(c));
        for (const QString &line : channel)
            lines << QString("channel %1 ").arg(c) + line;
    }
    return lines;
}
