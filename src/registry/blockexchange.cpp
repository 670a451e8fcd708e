#include "registry/blockexchange.h"

#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "serial/noxserialport.h"

#include <QPointer>

#include <utility>

QByteArray pendingBlock(const optionsNOX8 &image, optionsNOX8::tx_code code)
{
    const bool isExtended = image.getDevRev() != 0;
    switch (code) {
    case optionsNOX8::txConfiguration:
        return taken(image.getData());
    case optionsNOX8::txReferenceData:
        return taken(image.getRefData(false));
    case optionsNOX8::txDateTime:
        return image.identValid ? image.dateTimeBlock() : QByteArray();
    case optionsNOX8::txZeroShifts:
        return isExtended ? taken(image.getRefShiftData()) : QByteArray();
    case optionsNOX8::txIdentification:
        return image.identValid ? taken(image.getIdentData()) : QByteArray();
    case optionsNOX8::txSerialNumber:
        return isExtended ? taken(image.getSNData()) : QByteArray();
    }
    return {};
}

void BlockExchange::follow(noxList::_nox *nox)
{
    using Image = optionsNOX8;
    const Image *const image = nox->opt.get();
    connect(image, &Image::onChApply, this, [this, nox](quint8 ch) {
        writeBlock(nox->devIndex, nox->opt->channelBlock(ch), channelWriteAddress);
    });
    connect(image, &Image::onIdentApply, this, [nox] {
        if (nox->opt->isIdentified() && nox->opt->identValid)
            request(nox, Image::txIdentification);
    });
    connect(image, &Image::onSNApply, this, [nox] {
        if (nox->opt->devNumber != 0 && nox->opt->getDevRev() != 0)
            request(nox, Image::txSerialNumber);
    });
    connect(image, &Image::onDevApply, this, [nox] {
        if (nox->opt->identValid)
            request(nox, Image::txDateTime);
        request(nox, Image::txConfiguration);
    });
    connect(image, &Image::onRefApply, this, [nox] { request(nox, Image::txReferenceData); });
    connect(image, &Image::onRefShiftApply, this, [nox] {
        if (nox->opt->getDevRev() != 0)
            request(nox, Image::txZeroShifts);
    });
    connect(image, &Image::onChErrorData, this, [this, nox] { readAgain(*nox); });
}

void BlockExchange::followModel(const noxList::_nox *nox)
{
    const auto tell = [this, nox] { setCommandByte(*nox); };
    connect(nox->opt.get(), &optionsNOX8::onDevChange, this, tell);
    connect(nox->opt.get(), &optionsNOX8::onIdentChange, this, tell);
}

void BlockExchange::setCommandByte(const noxList::_nox &nox) const
{
    m_serialPort->setDevType(nox.devIndex, nox.opt->getDevFamily());
}

// Reading

void BlockExchange::read(const noxList::_nox &nox, quint8 address, int size,
                         noxQueryMode mode) const
{
    m_serialPort->sendDevQuery(nox.devIndex, address, quint16(size), true, mode);
}

void BlockExchange::readAll(const noxList::_nox &nox) const
{
    if (nox.opt->devType == 0)
        return;
    // an instrument that has never identified itself may be too old to do so
    read(nox, identificationAddress, identificationSize, // extended models answer with 24
         nox.opt->identValid ? noxQueryModeNormal : noxQueryModeEmpty);
    readConfiguration(nox);
}

void BlockExchange::readConfiguration(const noxList::_nox &nox) const
{
    read(nox, referenceDataAddress, referenceDataSize);
    read(nox, configurationAddress, nox.opt->getDevDataSize());
    if (nox.opt->getDevRev() != 0)
        read(nox, zeroShiftsAddress, zeroShiftsSize);
}

/** Unless something of the instrument, which must have been written to, is on its way. */
void BlockExchange::readAgain(const noxList::_nox &nox) const
{
    if (m_serialPort->isEmptyDataQueue(nox.devIndex) &&
        m_serialPort->isEmptyQueryQueue(nox.devIndex))
        readAll(nox);
}

// Writing

void BlockExchange::request(noxList::_nox *nox, optionsNOX8::tx_code code)
{
    if (!nox->txCodes.contains(code))
        nox->txCodes.append(code);
    nox->txTimer->start();
}

void BlockExchange::writeWaiting(noxList::_nox *nox)
{
    // a receiver of a write may ask for another one, and may remove the instrument
    const QPointer<optionsNOX8> image = nox->opt.get();
    const auto codes = std::exchange(nox->txCodes, {});
    for (const optionsNOX8::tx_code code : codes)
        if (image)
            writeBlock(nox->devIndex, pendingBlock(*image, code), code);
}

void BlockExchange::writeBlock(int devIndex, QByteArray block, quint8 address)
{
    if (!block.isEmpty())
        emit write(devIndex, &block, address);
}
