#include "dialogs/settingscontent.h"

#include "device/configuration.h"
#include "device/heldblocks.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"

#include <QCoreApplication>

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SettingsContent)
};

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

/** A user's unit is no setting of the instrument's: to it both kinds of temperature are one. */
std::array<bool, channelSettings> channelChanges(const ChannelSettings &held,
                                                 const ChannelSettings &now)
{
    return {held.onOff != now.onOff,
            highNibble(held.measType) != highNibble(now.measType),
            held.current != now.current,
            held.resist != now.resist,
            held.featureType != now.featureType || held.feature != now.feature,
            held.featureTypeCompensTP != now.featureTypeCompensTP ||
                held.featureCompensTP != now.featureCompensTP};
}

} // namespace

FieldStates fieldStates(const optionsNOX8 &image, int databaseId)
{
    FieldStates states;
    states.isStored = databaseId >= 1;
    states.isKnown = image.devType != 0;
    states.isExtended = image.getDevRev() != 0;
    states.isTypeOpen = !image.identValid && !states.isStored;
    return states;
}

QString compensatingChannelText(quint32 typeCode, quint8 shortCircuitCode)
{
    const InstrumentModel &model = modelOrNone(typeCode);
    if (model.channels > 0 && !model.hasShortCircuit)
        return Texts::tr("Канал 7");
    return compensationChoices(typeCode, shortCircuitCode).at(compensationByOneChannel).text;
}

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

ConfigurationChanges configurationChanges(const HeldBlocks &held, const optionsNOX8 &image)
{
    ConfigurationChanges changes;
    const auto known = held.configuration(image.getDevChCount());
    if (!known)
        return changes;
    const OperatingSettings &settings = known->settings;
    changes.identity = image.identApplyPending && image.getDevRev() != 0;
    changes.rounding = settings.devMeasRound != image.devMeasRound;
    changes.measurementTime = settings.devMeasTime != image.devMeasTime;
    changes.mode = settings.devMeasMode != image.devMeasMode;
    changes.compensation = settings.devCompensTP != image.devCompensTP;
    changes.reversal = settings.devChRevers != image.devChRevers;
    changes.shortCircuit = settings.devZakorotka != image.devZakorotka;
    for (int i = 0; i < known->channels.size(); ++i) {
        changes.channels << channelChanges(known->channels.at(i), image.channels.at(i));
        changes.characteristics << (encodeFeature(known->features.at(i)) !=
                                    encodeFeature(*image.features.at(i)));
    }
    return changes;
}
