#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "registry/noxlist.h"
#include "registry/pendingblock.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"

// Reading

void noxList::readBlock(const _nox *nox, quint8 address, int size, noxQueryMode mode)
{
    m_serialPort->sendDevQuery(nox->devIndex, address, quint16(size), true, mode);
}

void noxList::getOptFromNox(int index)
{
    const _nox *nox = getNoxByIndex(index);
    if (!nox || nox->opt->devType == 0)
        return;
    // an instrument that has never identified itself may be too old to do so
    readBlock(nox, identificationAddress, identificationSize, // extended models answer with 24
              nox->opt->identValid ? noxQueryModeNormal : noxQueryModeEmpty);
    readConfiguration(nox);
}

void noxList::readConfiguration(const _nox *nox)
{
    readBlock(nox, referenceDataAddress, referenceDataSize);
    readBlock(nox, configurationAddress, nox->opt->getDevDataSize());
    if (nox->opt->getDevRev() != 0)
        readBlock(nox, zeroShiftsAddress, zeroShiftsSize);
}

void noxList::applyDevQuery(int devIndex, QByteArray *buf, quint8 address)
{
    _nox *found = getNoxByDevIndex(devIndex);
    if (!found)
        return;
    const int index = found->index;
    found->held.noteRead(address, *buf); // who hears of the change compares with it
    const int sizeBefore = found->opt->getDevDataSize();
    const bool isAccepted = found->opt->setData(*buf, address);
    _nox *nox = getNoxByIndex(index); // whoever heard of the change may have removed it
    if (!nox)
        return;
    // it is another model than was believed: what has been asked for has the wrong size
    if (address == identificationAddress && isAccepted && sizeBefore != 0 &&
        nox->opt->getDevDataSize() != sizeBefore)
        readConfiguration(nox);
    // an extended model's configuration is whole, and can be compared, with its zero shifts
    const bool isConfiguration = address == configurationAddress || address == zeroShiftsAddress;
    if (isConfiguration && isAccepted && nox->dbIndex >= 1)
        recogniseSnapShot(nox);
    else if (address == referenceDataAddress && nox->dbIndex == 0)
        recogniseByReferenceData(nox);
}

/** Finds the stored configuration that the instrument has; its very first one is stored. */
void noxList::recogniseSnapShot(_nox *nox)
{
    const QByteArray data = taken(nox->opt->getData());
    const QByteArray refdata = taken(nox->opt->getRefAllData());
    const auto known = m_database->findSnapShot(&data, &refdata, nox->dbIndex);
    if (!known.isEmpty())
        nox->snapShotId = known.first().id;
    else if (m_database->getSnapShotCount(nox->dbIndex) == 0 &&
             m_serialPort->isEmptyQueryQueue(nox->devIndex))
        m_database->setSnapShot(nox->dbIndex, &data, &refdata, tr("Заводская настройка"), 0);
    emit onChange();
}

/** Finds the instrument in the database; one without an identity takes what is stored there. */
void noxList::recogniseByReferenceData(_nox *nox)
{
    optionsNOX8 &image = *nox->opt;
    if (image.identValid) {
        nox->dbIndex = m_database->findDev(image.devType, image.devNumber);
        return;
    }
    const QByteArray refdata = taken(image.getRefAllData());
    quint32 type = 0;
    quint32 number = 0;
    nox->dbIndex = m_database->findDev(&refdata, &type, &number);
    if (nox->dbIndex < 1)
        return;
    image.setDevType(type);
    image.setDevNumber(quint16(number));
}

// Writing

void noxList::sendNoxData(int index, optionsNOX8::tx_code tx_code)
{
    _nox *nox = getNoxByIndex(index);
    if (!nox)
        return;
    if (!nox->txCodes.contains(tx_code))
        nox->txCodes.append(tx_code);
    nox->txTimer->start();
}

void noxList::writeNow()
{
    const auto all = indices();
    for (const int index : all) {
        _nox *const nox = getNoxByIndex(index);
        if (!nox || nox->devIndex < 0)
            continue;
        nox->txTimer->stop();
        writePending(index);
    }
}

void noxList::writePending(int index)
{
    if (getNoxByIndex(index)->txCodes.isEmpty())
        return;
    emit onChange();
    _nox *nox = getNoxByIndex(index); // whoever heard of the change may have removed it
    if (!nox)
        return;
    const QVector<optionsNOX8::tx_code> codes = nox->txCodes;
    for (const optionsNOX8::tx_code code : codes)
        writeBlock(nox, pendingBlock(*nox->opt, code), code);
    nox->txCodes.clear();
}

void noxList::writeBlock(const _nox *nox, QByteArray block, quint8 address)
{
    if (!block.isEmpty())
        emit sendDevData(nox->devIndex, &block, address);
}

void noxList::writeChannel(const _nox *nox, quint8 ch)
{
    writeBlock(nox, nox->opt->channelBlock(ch), channelWriteAddress);
}

void noxList::applyIdentity(_nox *nox)
{
    if (!nox->opt->isIdentified())
        return;
    if (nox->opt->identValid)
        sendNoxData(nox->index, optionsNOX8::txIdentification);
    else if (nox->dbIndex > 0)
        updateReferenceData(nox);
}

void noxList::applyDevice(const _nox *nox)
{
    if (nox->opt->identValid)
        sendNoxData(nox->index, optionsNOX8::txDateTime);
    sendNoxData(nox->index, optionsNOX8::txConfiguration);
}

void noxList::onDoneSendDevData(int devIndex, noxSerialPortDataItem data)
{
    _nox *nox = getNoxByDevIndex(devIndex);
    if (!nox)
        return;
    nox->held.noteWritten(data.address, data.data);
    if (data.address == optionsNOX8::txReferenceData && nox->dbIndex >= 1)
        storeReferenceData(nox);
    emit onHeldChange(nox->index);
}

/** Keeps the reference data that the instrument has taken, unless they are another instrument's. */
void noxList::storeReferenceData(const _nox *nox)
{
    if (nox->opt->isIdentified()) {
        updateReferenceData(nox);
        return;
    }
    const QByteArray refdata = taken(nox->opt->getRefAllData());
    quint32 type = 0;
    quint32 number = 0;
    if (m_database->findDev(&refdata, &type, &number) >= 1 && type != nox->opt->devType &&
        number != nox->opt->devNumber)
        updateReferenceData(nox);
}

// What the database keeps

void noxList::updateReferenceData(const _nox *nox)
{
    const QByteArray refdata = taken(nox->opt->getRefAllData());
    m_database->updRefData(nox->dbIndex, &refdata, nox->opt->devType, nox->opt->devNumber,
                           nox->opt->getDevName(true));
}

void noxList::storeIdentity(_nox *nox)
{
    setCommandByte(nox);
    if (nox->opt->isIdentified())
        nox->dbIndex =
            m_database->addDev(nox->opt->devType, nox->opt->devNumber, nox->opt->getDevName(true));
    emit onIdentChange(nox->index);
}

void noxList::storeUnit(int index, quint8 ch)
{
    const _nox *nox = getNoxByIndex(index); // whoever heard of the change may have removed it
    if (!nox || nox->dbIndex < 1 || ch >= nox->opt->getDevChCount())
        return;
    const bool isCustom = nox->opt->getCh(ch).measType == measTemperatureCustom &&
                          !nox->opt->getChDimCust(ch).isEmpty();
    m_database->setDevProperty(nox->dbIndex, QStringLiteral("ch_%1-dim").arg(ch),
                               isCustom ? QVariant(nox->opt->getChDimCust(ch)) : QVariant());
}
