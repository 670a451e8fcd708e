#include "device/blockaddresses.h"
#include "device/configurationblock.h"
#include "device/datetimeblock.h"
#include "device/identification.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"

namespace
{

QByteArray noStamp()
{
    return {8, '\0'};
}

} // namespace

// From the image

Configuration optionsNOX8::configuration() const
{
    Configuration configuration{*this, channels.mid(0, getDevChCount()), {}};
    for (int i = 0; i < getDevChCount(); ++i)
        configuration.features.append(*features.at(i));
    return configuration;
}

QByteArray *optionsNOX8::getData() const
{
    return new QByteArray(encodeConfiguration(configuration(), model().familyCode));
}

QByteArray *optionsNOX8::getRefData(bool forStorage) const
{
    return new QByteArray(encodeReferenceData(*this, forStorage ? noStamp() : dateTimeBlock()));
}

QByteArray *optionsNOX8::getRefShiftData() const
{
    return new QByteArray(encodeZeroShifts(*this));
}

QByteArray *optionsNOX8::getRefAllData() const
{
    const QByteArray shifts = model().extended ? encodeZeroShifts(*this) : QByteArray();
    return new QByteArray(encodeReferenceData(*this, noStamp()) + shifts);
}

QByteArray *optionsNOX8::getIdentData() const
{
    return new QByteArray(encodeIdentification(model(), devNumber, devName));
}

QByteArray *optionsNOX8::getSNData() const
{
    return new QByteArray(encodeSerialNumber(devNumber));
}

QByteArray optionsNOX8::dateTimeBlock() const
{
    return encodeDateTime(m_clock());
}

QByteArray optionsNOX8::channelBlock(quint8 ch) const
{
    return ch < getDevChCount() ? encodeChannelBlock(ch, *this, channels.at(ch)) : QByteArray();
}

// Into the image

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
    for (int i = 0; i < read.features.size(); ++i)
        features.at(i)->assign(read.features.at(i));
    emit onDevChange();
    return true;
}

bool optionsNOX8::readReferenceData(const QByteArray &block)
{
    if (!decodeReferenceData(block, *this))
        return false;
    if (!identValid && devType == 0)
        setDevType(typeCodeFromReferenceData(*this));
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
    const bool accepted = block.size() == extendedIdentificationSize
                              ? takeExtendedIdentification(block)
                              : takeIdentification(block);
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
    setDevType(read.typeCode); // the identity is valid by now: it asks to be written back
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
    setDevType(read.typeCode); // the identity is not valid yet: it stays to be written
    identValid = true;
    return true;
}
