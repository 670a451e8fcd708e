#include "device/instrumentrecord.h"

#include "device/vocabulary.h"

namespace
{

constexpr quint16 extendedRevision = 0xAA0F;
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

InstrumentRecord::InstrumentRecord()
    : channels(channelRecords)
    , m_resistanceThermometers(standardResistanceThermometers())
    , m_thermocouples(standardThermocouples())
{
}

// What the models of the family have

QMap<quint32, QString> InstrumentRecord::getTypeList(bool withRev)
{
    return typeNames(withRev);
}

QStringList InstrumentRecord::getDevCurrentList(quint32 type)
{
    return excitationCurrents(type);
}

QStringList InstrumentRecord::getDevResistList(quint32 type)
{
    return resistorChoices(type);
}

QString InstrumentRecord::getChMeasTypeName(_chMeasType type)
{
    return measurementUnit(type);
}

QString InstrumentRecord::getDim(char letter)
{
    return streamUnit(letter);
}

// What this instrument is

const InstrumentModel &InstrumentRecord::model() const
{
    return modelOrNone(devType);
}

quint8 InstrumentRecord::getDevChCount() const
{
    return model().channels;
}

quint8 InstrumentRecord::getDevResistCount() const
{
    return model().resistors;
}

quint16 InstrumentRecord::getDevRev() const
{
    return model().extended ? extendedRevision : 0;
}

int InstrumentRecord::getDevDataSize(quint8) const
{
    const int channelCount = model().channels;
    return channelCount == 0 ? 0 : ConfigurationLayout(channelCount).size();
}

char InstrumentRecord::getDevFamily() const
{
    return char(model().familyCode);
}

QString InstrumentRecord::getDevTypeStr(bool withRev) const
{
    const InstrumentModel *found = findModel(devType);
    if (!found)
        return withRev ? unknownText() : QString();
    return modelName(withRev ? *found : *findModel(found->baseTypeCode));
}

QString InstrumentRecord::getDevNumberStr() const
{
    if (devNumber == 0)
        return QStringLiteral("--");
    return QString::number(devNumber).rightJustified(shortestNumber, QLatin1Char('0'));
}

QString InstrumentRecord::getDevTitle() const
{
    return getDevTypeStr(true) + QStringLiteral(" № ") + getDevNumberStr();
}

QString InstrumentRecord::getDevName(bool withNumber) const
{
    if (model().extended && !devName.isEmpty())
        return devName;
    return withNumber ? getDevTitle() : getDevTypeStr(true);
}

// What a channel is set to

InstrumentRecord::_ch InstrumentRecord::getCh(quint8 ch) const
{
    return ch < getDevChCount() ? channels.at(ch) : _ch();
}

featureNOX8 *InstrumentRecord::getFeature(quint8 ch) const
{
    return ch < getDevChCount() ? features.at(ch) : nullptr;
}

QStringList InstrumentRecord::getFeatureInfStrList() const
{
    QStringList names;
    for (int i = 0; i < getDevChCount(); ++i)
        names << features.at(i)->name;
    return names;
}

QString InstrumentRecord::getChMeasTypeName(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    const _ch &channel = channels.at(ch);
    return channel.measType == measTemperatureCustom ? channel.dimCust
                                                     : getChMeasTypeName(channel.measType);
}

QString InstrumentRecord::getChDimCust(quint8 ch) const
{
    return ch < getDevChCount() ? channels.at(ch).dimCust : unknownText();
}

QString InstrumentRecord::getChCurrentStr(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    return entryOf(getDevCurrentList(devType), channels.at(ch).current);
}

QString InstrumentRecord::getChFeatureName(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    const _ch &channel = channels.at(ch);
    return channel.featureType == featureNone
               ? QString()
               : entryOf(characteristics(channel.featureType), channel.feature);
}

QString InstrumentRecord::getChFeatureCompesTPName(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    const _ch &channel = channels.at(ch);
    return entryOf(characteristics(characteristicSource(channel.featureTypeCompensTP)),
                   channel.featureCompensTP);
}

bool InstrumentRecord::hasChFeature(quint8 ch) const
{
    const _ch channel = getCh(ch);
    return isChoice(channel.featureType, channel.feature);
}

bool InstrumentRecord::hasChFeatureCompesTP(quint8 ch) const
{
    const _ch channel = getCh(ch);
    return isChoice(channel.featureTypeCompensTP, channel.featureCompensTP);
}

/** The names from which a source selects; empty for none. */
QStringList InstrumentRecord::characteristics(CharacteristicSource source) const
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

bool InstrumentRecord::isChoice(CharacteristicSource source, quint8 index) const
{
    const QStringList names = characteristics(source);
    return names.isEmpty() ? fitsNibble(index) : index < names.size();
}

bool InstrumentRecord::isChoice(CompensationSource source, quint8 index) const
{
    return isChoice(characteristicSource(source), index);
}

// Blocks

Configuration InstrumentRecord::configuration() const
{
    Configuration configuration{*this, channels.mid(0, getDevChCount()), {}};
    configuration.features.reserve(getDevChCount());
    for (int i = 0; i < getDevChCount(); ++i)
        configuration.features.append(*features.at(i));
    return configuration;
}

QByteArray *InstrumentRecord::getData() const
{
    return new QByteArray(encodeConfiguration(configuration(), model().familyCode));
}

QByteArray *InstrumentRecord::getRefData(bool forStorage) const
{
    return new QByteArray(encodeReferenceData(*this, forStorage ? noStamp() : dateTimeBlock()));
}

QByteArray *InstrumentRecord::getRefShiftData() const
{
    return new QByteArray(encodeZeroShifts(*this));
}

QByteArray *InstrumentRecord::getRefAllData() const
{
    const QByteArray shifts = model().extended ? encodeZeroShifts(*this) : QByteArray();
    return new QByteArray(encodeReferenceData(*this, noStamp()) + shifts);
}

QByteArray *InstrumentRecord::getIdentData() const
{
    return new QByteArray(encodeIdentification(model(), devNumber, devName));
}

QByteArray *InstrumentRecord::getSNData() const
{
    return new QByteArray(encodeSerialNumber(devNumber));
}

QByteArray InstrumentRecord::dateTimeBlock() const
{
    return encodeDateTime(m_clock());
}

QByteArray InstrumentRecord::channelBlock(quint8 ch) const
{
    return ch < getDevChCount() ? encodeChannelBlock(ch, *this, channels.at(ch)) : QByteArray();
}
