#include "device/optionsnox8.h"

#include "device/configurationblock.h"
#include "device/nibbles.h"
#include "device/settingsfile.h"
#include "device/vocabulary.h"

namespace
{

constexpr quint16 extendedRevision = 0xAA0F;
constexpr int longestUnit = 10;
constexpr int shortestNumber = 4;

QString unknownText()
{
    return QStringLiteral("-");
}

QString entryOf(const QStringList &list, int index)
{
    return list.value(index, unknownText());
}

} // namespace

optionsNOX8::optionsNOX8(QObject *parent)
    : QObject(parent)
    , channels(channelRecords)
    , m_resistanceThermometers(standardResistanceThermometers())
    , m_thermocouples(standardThermocouples())
{
    for (int i = 0; i < channelRecords; ++i) {
        auto *const feature = new featureNOX8(this);
        connect(feature, &featureNOX8::onChange, this, &optionsNOX8::onDevChange,
                Qt::DirectConnection);
        features << feature;
    }
}

// What the models of the family have

QMap<quint32, QString> optionsNOX8::getTypeList(bool withRev)
{
    return typeNames(withRev);
}

QStringList optionsNOX8::getDevCurrentList(quint32 type)
{
    return excitationCurrents(type);
}

QStringList optionsNOX8::getDevResistList(quint32 type)
{
    return resistorChoices(type);
}

QString optionsNOX8::getChMeasTypeName(_chMeasType type)
{
    return measurementUnit(type);
}

QString optionsNOX8::getDim(char letter)
{
    return streamUnit(letter);
}

// What this instrument is

const InstrumentModel &optionsNOX8::model() const
{
    return modelOrNone(devType);
}

quint8 optionsNOX8::getDevChCount() const
{
    return model().channels;
}

quint8 optionsNOX8::getDevResistCount() const
{
    return model().resistors;
}

quint16 optionsNOX8::getDevRev() const
{
    return model().extended ? extendedRevision : 0;
}

int optionsNOX8::getDevDataSize(quint8) const
{
    const int channelCount = model().channels;
    return channelCount == 0 ? 0 : ConfigurationLayout(channelCount).size();
}

char optionsNOX8::getDevFamily() const
{
    return char(model().familyCode);
}

QString optionsNOX8::getDevTypeStr(bool withRev) const
{
    const InstrumentModel *found = findModel(devType);
    if (!found)
        return withRev ? unknownText() : QString();
    return modelName(withRev ? *found : *findModel(found->baseTypeCode));
}

QString optionsNOX8::getDevNumberStr() const
{
    if (devNumber == 0)
        return QStringLiteral("--");
    return QString::number(devNumber).rightJustified(shortestNumber, QLatin1Char('0'));
}

QString optionsNOX8::getDevName(bool withNumber) const
{
    if (model().extended && !devName.isEmpty())
        return devName;
    const QString type = getDevTypeStr(true);
    return withNumber ? type + QStringLiteral(" № ") + getDevNumberStr() : type;
}

// What a channel is set to

optionsNOX8::_ch optionsNOX8::getCh(quint8 ch) const
{
    return ch < getDevChCount() ? channels.at(ch) : _ch();
}

featureNOX8 *optionsNOX8::getFeature(quint8 ch) const
{
    return ch < getDevChCount() ? features.at(ch) : nullptr;
}

QStringList optionsNOX8::getFeatureInfStrList() const
{
    QStringList names;
    for (int i = 0; i < getDevChCount(); ++i)
        names << features.at(i)->name;
    return names;
}

QString optionsNOX8::getChMeasTypeName(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    const _ch &channel = channels.at(ch);
    return channel.measType == measTemperatureCustom ? channel.dimCust
                                                     : getChMeasTypeName(channel.measType);
}

QString optionsNOX8::getChDimCust(quint8 ch) const
{
    return ch < getDevChCount() ? channels.at(ch).dimCust : unknownText();
}

QString optionsNOX8::getChCurrentStr(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    return entryOf(getDevCurrentList(devType), channels.at(ch).current);
}

QString optionsNOX8::getChFeatureName(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    const _ch &channel = channels.at(ch);
    return channel.featureType == featureNone
               ? QString()
               : entryOf(characteristics(channel.featureType), channel.feature);
}

QString optionsNOX8::getChFeatureCompesTPName(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    const _ch &channel = channels.at(ch);
    return entryOf(characteristics(channel.featureTypeCompensTP), channel.featureCompensTP);
}

bool optionsNOX8::hasChFeature(quint8 ch) const
{
    const _ch channel = getCh(ch);
    return isChoice(channel.featureType, channel.feature);
}

bool optionsNOX8::hasChFeatureCompesTP(quint8 ch) const
{
    const _ch channel = getCh(ch);
    return isChoice(channel.featureTypeCompensTP, channel.featureCompensTP);
}

/** The names from which a source selects; empty for none. */
QStringList optionsNOX8::characteristics(CharacteristicSource source) const
{
    switch (source) {
    case featureResistanceThermometer:
        return m_resistanceThermometers;
    case featureThermocouple:
        return m_thermocouples;
    case featureIndividual: {
        QStringList names;
        for (const featureNOX8 *feature : features)
            names << feature->name;
        return names;
    }
    case featureNone:
        break;
    }
    return {};
}

QStringList optionsNOX8::characteristics(CompensationSource source) const
{
    return characteristics(characteristicSource(source));
}

/** Whether a source has a characteristic of this index; none has any that four bits can hold. */
template<typename Source>
bool optionsNOX8::isChoice(Source source, quint8 index) const
{
    const QStringList names = characteristics(source);
    return names.isEmpty() ? fitsNibble(index) : index < names.size();
}

// Changes of the instrument

bool optionsNOX8::setDevType(quint32 type)
{
    if (!findModel(type))
        return false;
    if (type == devType)
        return type != 0;

    devType = type;
    if (!model().hasShortCircuit) {
        devZakorotka = 0;
        if (devCompensTP == 2)
            devCompensTP = 1;
    }
    if (identValid && devNumber != 0 && type != 0) {
        identApplyPending = false;
        emit onIdentApply();
    } else {
        identApplyPending = true;
    }
    emit onIdentChange();
    emit onDevChange();
    emit onRefChange();
    return type != 0;
}

void optionsNOX8::setDevNumber(quint16 number)
{
    if (number != devNumber) {
        devNumber = number;
        if (identValid && number != 0 && devType != 0) {
            identApplyPending = false;
            if (model().extended)
                emit onSNApply();
            else
                emit onIdentApply();
        } else {
            identApplyPending = true;
        }
    }
    emit onIdentChange();
    emit onDevChange();
}

void optionsNOX8::setDevZakorotka(_devZakorotka code)
{
    const _devZakorotka allowed = model().hasShortCircuit ? code : 0;
    if (allowed == devZakorotka || !fitsNibble(allowed))
        return;
    devZakorotka = allowed;
    emit onDevChange();
}

// Changes of a channel

/** The settings of a channel that the model has; null for any other. */
optionsNOX8::_ch *optionsNOX8::usedChannel(quint8 ch)
{
    return ch < getDevChCount() ? &channels[ch] : nullptr;
}

template<typename Value>
void optionsNOX8::change(quint8 ch, Value _ch::*member, Value value)
{
    _ch *const channel = usedChannel(ch);
    if (!channel || channel->*member == value)
        return;
    channel->*member = value;
    emit onChChange(ch);
}

void optionsNOX8::setChOnOff(quint8 ch, _chOnOff onOff)
{
    change(ch, &_ch::onOff, onOff);
}

void optionsNOX8::setChMeasType(quint8 ch, _chMeasType type, QString dim)
{
    _ch *const channel = usedChannel(ch);
    dim = dim.trimmed().left(longestUnit);
    if (!channel || (channel->measType == type && channel->dimCust == dim))
        return;
    if (!dim.isEmpty() && type == measTemperatureCustom)
        channel->dimCust = dim;
    channel->measType = type;
    emit onChChange(ch);
}

void optionsNOX8::setChDimCust(quint8 ch, QString dim)
{
    change(ch, &_ch::dimCust, dim.trimmed().left(longestUnit));
}

void optionsNOX8::setChCurrent(quint8 ch, quint8 index)
{
    if (fitsNibble(index))
        change(ch, &_ch::current, index);
}

void optionsNOX8::setChResist(quint8 ch, quint8 index)
{
    if (fitsNibble(index))
        change(ch, &_ch::resist, index);
}

void optionsNOX8::setChFeature(quint8 ch, _chFeatureType type, quint8 index)
{
    choose(ch, &_ch::featureType, type, &_ch::feature, index);
}

void optionsNOX8::setChFeatureCompesTP(quint8 ch, _chFeatureTypeCompensTP type, quint8 index)
{
    choose(ch, &_ch::featureTypeCompensTP, type, &_ch::featureCompensTP, index);
}

template<typename Source>
void optionsNOX8::choose(quint8 ch, Source _ch::*sourceMember, Source source,
                         quint8 _ch::*indexMember, quint8 index)
{
    _ch *const channel = usedChannel(ch);
    if (!channel || !isChoice(source, index) ||
        (channel->*sourceMember == source && channel->*indexMember == index))
        return;
    channel->*sourceMember = source;
    channel->*indexMember = index;
    emit onChChange(ch);
}

// Asking for a write

void optionsNOX8::triggerChChange(quint8 ch)
{
    if (devType != 0 && ch < getDevChCount())
        emit onChApply(ch);
}

void optionsNOX8::triggerDevChange()
{
    if (devType == 0)
        return;
    if (identApplyPending) {
        identApplyPending = false;
        emit onIdentApply();
    }
    emit onDevApply();
}

void optionsNOX8::triggerRefChange()
{
    if (devType != 0)
        emit onRefApply();
}

void optionsNOX8::triggerRefShiftChange()
{
    if (devType != 0)
        emit onRefShiftApply();
}

// Settings files

bool optionsNOX8::saveToFile(const QString &fileName, const QString &) const
{
    return saveSettingsFile(*this, fileName);
}

bool optionsNOX8::loadFromFile(const QString &fileName)
{
    return loadSettingsFile(fileName, *this);
}
