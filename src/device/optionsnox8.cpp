#include "device/optionsnox8.h"

#include "device/vocabulary.h"

namespace
{

constexpr quint16 extendedRevision = 0xAA0F;
constexpr int longestUnit = 10;
constexpr int shortestNumber = 4;

const QString &unknownText()
{
    static const QString text = QStringLiteral("-");
    return text;
}

} // namespace

optionsNOX8::optionsNOX8(QObject *parent)
    : QObject(parent)
    , m_channels(channelRecords)
{
}

QMap<quint32, QString> optionsNOX8::getTypeList(bool withRev) const
{
    return typeNames(withRev);
}

quint8 optionsNOX8::getDevChCount() const
{
    const InstrumentModel *model = findModel(devType);
    return model ? model->channels : 0;
}

quint16 optionsNOX8::getDevRev() const
{
    const InstrumentModel *model = findModel(devType);
    return model && model->extended ? extendedRevision : 0;
}

char optionsNOX8::getDevFamily() const
{
    const InstrumentModel *model = findModel(devType);
    return model ? char(model->familyCode) : char(0);
}

QString optionsNOX8::getDevTypeStr(bool withRev) const
{
    const InstrumentModel *model = findModel(devType);
    if (!model)
        return withRev ? unknownText() : QString();
    return modelName(withRev ? *model : *findModel(model->baseTypeCode));
}

QString optionsNOX8::getDevNumberStr() const
{
    if (devNumber == 0)
        return QStringLiteral("--");
    return QString::number(devNumber).rightJustified(shortestNumber, QLatin1Char('0'));
}

QString optionsNOX8::getDevName(bool withNumber) const
{
    if (getDevRev() != 0 && !devName.isEmpty())
        return devName;
    const QString type = getDevTypeStr(true);
    return withNumber ? type + QStringLiteral(" № ") + getDevNumberStr() : type;
}

optionsNOX8::_ch optionsNOX8::getCh(quint8 ch) const
{
    return ch < getDevChCount() ? m_channels.at(ch) : _ch();
}

QString optionsNOX8::getChMeasTypeName(quint8 ch) const
{
    if (ch >= getDevChCount())
        return unknownText();
    const _ch &channel = m_channels.at(ch);
    return channel.measType == measTemperatureCustom ? channel.dimCust
                                                     : getChMeasTypeName(channel.measType);
}

QString optionsNOX8::getChMeasTypeName(_chMeasType type) const
{
    return measurementUnit(type);
}

QString optionsNOX8::getChDimCust(quint8 ch) const
{
    return ch < getDevChCount() ? m_channels.at(ch).dimCust : unknownText();
}

QString optionsNOX8::getDim(char letter) const
{
    return streamUnit(letter);
}

bool optionsNOX8::setDevType(quint32 type)
{
    const InstrumentModel *model = findModel(type);
    if (!model)
        return false;
    if (type == devType)
        return type != 0;

    devType = type;
    if (!model->hasShortCircuit) {
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
            if (getDevRev() != 0)
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

void optionsNOX8::setChOnOff(quint8 ch, _chOnOff onOff)
{
    if (ch >= getDevChCount() || m_channels.at(ch).onOff == onOff)
        return;
    m_channels[ch].onOff = onOff;
    emit onChChange(ch);
}

void optionsNOX8::setChMeasType(quint8 ch, _chMeasType type, QString dim)
{
    if (ch >= getDevChCount())
        return;
    dim = dim.trimmed().left(longestUnit);
    _ch &channel = m_channels[ch];
    if (channel.measType == type && channel.dimCust == dim)
        return;
    if (!dim.isEmpty() && type == measTemperatureCustom)
        channel.dimCust = dim;
    channel.measType = type;
    emit onChChange(ch);
}

void optionsNOX8::setChDimCust(quint8 ch, QString dim)
{
    dim = dim.trimmed().left(longestUnit);
    if (ch >= getDevChCount() || m_channels.at(ch).dimCust == dim)
        return;
    m_channels[ch].dimCust = dim;
    emit onChChange(ch);
}
