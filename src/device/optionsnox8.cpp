#include "device/optionsnox8.h"

#include "device/settingsfile.h"
#include "device/vocabulary.h"

#include <QPointer>

#include <utility>

namespace
{

constexpr int longestUnit = 10;

} // namespace

optionsNOX8::optionsNOX8(QObject *parent)
    : QObject(parent)
{
    for (int i = 0; i < channelRecords; ++i) {
        auto *const feature = new featureNOX8(this);
        connect(feature, &featureNOX8::onChange, this, &optionsNOX8::onDevChange,
                Qt::DirectConnection);
        features << feature;
    }
}

/** Fires signals one after the other, as long as the image is there: who listens may take it away.
 *  Whether it still is; if not, nothing of it may be touched any more. */
template<typename... Signals>
bool optionsNOX8::announce(Signals... changes)
{
    const QPointer<optionsNOX8> self(this);
    return (... && (emit(this->*changes)(), self));
}

// Blocks that were read

bool optionsNOX8::setData(const QByteArray *buf, quint8 address)
{
    return setData(*buf, address);
}

bool optionsNOX8::setData(const QByteArray &buf, quint8 address)
{
    if (buf.isEmpty())
        return false;
    switch (address) {
    case configurationAddress:
        return readConfiguration(buf);
    case referenceDataAddress:
        return readReferenceData(buf);
    case loggerAddress:
        return readLogger(buf);
    case zeroShiftsAddress:
        return readZeroShifts(buf);
    case identificationAddress:
        return readIdentification(buf);
    default:
        return false;
    }
}

bool optionsNOX8::readConfiguration(const QByteArray &block)
{
    Configuration read = configuration();
    if (read.channels.isEmpty() || !decodeConfiguration(block, read))
        return false;
    OperatingSettings::operator=(read.settings);
    for (int i = 0; i < read.channels.size(); ++i)
        channels[i] = read.channels.at(i);
    const QPointer<optionsNOX8> self(this); // each characteristic announces itself
    for (int i = 0; self && i < read.features.size(); ++i)
        features.at(i)->assign(read.features.at(i));
    if (self)
        emit onDevChange();
    return true;
}

bool optionsNOX8::readReferenceData(const QByteArray &block)
{
    if (!decodeReferenceData(block, *this))
        return false;
    const QPointer<optionsNOX8> self(this);
    if (!identValid && devType == 0)
        setDevType(typeCodeFromReferenceData(*this));
    if (!self)
        return true;
    identApplyPending = false;
    emit onRefChange();
    return true;
}

bool optionsNOX8::readLogger(const QByteArray &records)
{
    LoggerReadout readout;
    if (!decodeLoggerRecords(records, getDevChCount(), readout))
        return false;
    emit onRecData(readout.items, readout.start);
    return true;
}

bool optionsNOX8::readZeroShifts(const QByteArray &block)
{
    if (!decodeZeroShifts(block, *this))
        return false;
    emit onRefShiftChange();
    return true;
}

bool optionsNOX8::readIdentification(const QByteArray &block)
{
    identValid = false;
    devType = 0;
    devNumber = 0;
    const QPointer<optionsNOX8> self(this);
    const bool accepted = block.size() == extendedIdentificationSize
                              ? takeExtendedIdentification(block)
                              : takeIdentification(block);
    if (self)
        emit onIdentChange();
    return accepted;
}

bool optionsNOX8::takeIdentification(const QByteArray &block)
{
    if (block.size() != identificationSize)
        return false;
    identValid = true;
    devName.clear();
    Identification read;
    if (!decodeIdentification(block, read))
        return false;
    devNumber = read.number;
    const QPointer<optionsNOX8> self(this);
    setDevType(read.typeCode); // the identity is valid by now: it asks to be written back
    if (self)
        identApplyPending = false;
    return true;
}

bool optionsNOX8::takeExtendedIdentification(const QByteArray &block)
{
    Identification read;
    if (!decodeExtendedIdentification(block, read))
        return false;
    devName = read.name;
    devNumber = read.number;
    const QPointer<optionsNOX8> self(this);
    setDevType(read.typeCode); // the identity is not valid yet: it stays to be written
    if (self)
        identValid = true;
    return true;
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
    identApplyPending = !identValid || !isIdentified();
    if (identApplyPending || announce(&optionsNOX8::onIdentApply))
        announce(&optionsNOX8::onIdentChange, &optionsNOX8::onDevChange, &optionsNOX8::onRefChange);
    return type != 0;
}

void optionsNOX8::setDevNumber(quint16 number)
{
    if (number != devNumber) {
        devNumber = number;
        identApplyPending = !identValid || !isIdentified();
        const auto apply = model().extended ? &optionsNOX8::onSNApply : &optionsNOX8::onIdentApply;
        if (!identApplyPending && !announce(apply))
            return;
    }
    announce(&optionsNOX8::onIdentChange, &optionsNOX8::onDevChange);
}

void optionsNOX8::setDevName(const QString &name)
{
    if (name == devName)
        return;
    devName = name;
    identApplyPending = true;
    if (!model().extended || announce(&optionsNOX8::onIdentChange))
        emit onDevChange();
}

void optionsNOX8::setOperatingSetting(quint8 OperatingSettings::*setting, quint8 code)
{
    if (this->*setting == code)
        return;
    this->*setting = code;
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

void optionsNOX8::setReferenceData(const ReferenceData &data)
{
    ReferenceData::operator=(data);
    emit onRefChange();
}

void optionsNOX8::setZeroShifts(const ZeroShifts &shifts)
{
    ZeroShifts::operator=(shifts);
    emit onRefShiftChange();
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

void optionsNOX8::setChUnit(quint8 ch, const QString &unit)
{
    _ch *const channel = usedChannel(ch);
    if (!channel)
        return;
    channel->dimCust = unit;
    channel->measType = measTemperatureCustom;
    emit onChChange(ch);
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

bool optionsNOX8::setIndividualFeature(quint8 ch, FeatureRecord::_featureIndType type,
                                       const QString &name, const QStringList &values)
{
    return usedChannel(ch) && announce(&optionsNOX8::onDevChange) &&
           features.at(ch)->setFeature(type, name, values) != 0;
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
    if (!std::exchange(identApplyPending, false) || announce(&optionsNOX8::onIdentApply))
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
