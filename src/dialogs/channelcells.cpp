#include "dialogs/channelcells.h"

#include "device/optionsnox8.h"
#include "device/vocabulary.h"

#include <QCoreApplication>

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ChannelCells)
};

constexpr quint8 compensationOfAllChannels = 2;

QString noText()
{
    return QStringLiteral("-");
}

QString resistorText(const optionsNOX8 &image, quint8 ch)
{
    const quint8 resistor = image.getCh(ch).resist;
    if (resistor >= image.getDevResistCount())
        return noText();
    return optionsNOX8::getDevResistList(image.devType).value(resistor, noText());
}

} // namespace

bool usesThermocouple(const optionsNOX8 &image, quint8 ch)
{
    const ChannelSettings channel = image.getCh(ch);
    if (channel.featureType == featureThermocouple)
        return true;
    const featureNOX8 *const own = image.getFeature(channel.feature);
    return channel.featureType == featureIndividual && own &&
           own->type == FeatureRecord::temperatureOfVoltage;
}

ChannelCells channelCells(const optionsNOX8 &image, quint8 ch)
{
    const ChannelSettings channel = image.getCh(ch);
    ChannelCells cells;
    cells.isOn = channel.onOff > 0 && channel.onOff < 2;
    cells.isCompensated = image.devCompensTP == compensationOfAllChannels &&
                          modelOrNone(image.devType).hasShortCircuit && usesThermocouple(image, ch);
    cells.texts = {cells.isOn ? Texts::tr("Вкл.") : noText(),
                   image.getChMeasTypeName(ch),
                   image.getChCurrentStr(ch),
                   resistorText(image, ch),
                   image.getChFeatureName(ch),
                   cells.isCompensated ? image.getChFeatureCompesTPName(ch) : noText()};
    return cells;
}
