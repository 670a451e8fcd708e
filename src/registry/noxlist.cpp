#include "registry/noxlist.h"

#include "device/instrumentblocks.h"
#include "registry/blockexchange.h"
#include "registry/instrumentstore.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace
{

constexpr int mostRecords = 255;
// one place is kept for an instrument that the search hands over
constexpr int mostOwnRecords = mostRecords - 1;
constexpr quint8 connectionLostCode = 200;

/** The user's unit where the channel has one and is on, else that of the stream. */
QString unitText(const optionsNOX8 &image, quint8 ch, char dim)
{
    const optionsNOX8::_ch channel = image.getCh(ch);
    const bool isCustom = channel.measType == measTemperatureCustom && channel.onOff != 0;
    return isCustom ? image.getChMeasTypeName(ch) : optionsNOX8::getDim(dim);
}

/** The record with the lowest index that matches; null when none does. */
template<typename Matches>
noxList::_nox *firstOf(const QMap<int, noxList::_nox *> &records, Matches matches)
{
    const auto found = std::find_if(records.cbegin(), records.cend(), matches);
    return found == records.cend() ? nullptr : *found;
}

} // namespace

noxList::noxList(NOXSerialPort *serialPort, noxSql *database)
    : m_serialPort(serialPort)
    , m_database(database)
    , m_exchange(std::make_unique<BlockExchange>(serialPort))
    , m_store(std::make_unique<InstrumentStore>(database))
{
    connectSerialPort();
    const auto note = [this](bool isStoring) {
        if (isStoring)
            noteRefused();
    };
    // later: it may be told in the middle of adding an instrument
    connect(database, &noxSql::storingChanged, this, note, Qt::QueuedConnection);
}

noxList::~noxList()
{
    const auto all = std::exchange(m_records, {});
    for (const _nox *nox : all)
        leave(nox); // any of their timers could run out while a worker is ending
    for (_nox *nox : all) {
        m_serialPort->rmDev(nox->devIndex);
        delete nox;
    }
}

// Coming and going

noxList::_nox *noxList::newNox(int devIndex, bool wire)
{
    if (m_records.size() >= mostOwnRecords) {
        emit onAddNox(-1, false);
        return nullptr;
    }
    auto nox = std::make_unique<_nox>();
    nox->index = nextIndex();
    nox->devIndex = devIndex;
    nox->opt = std::make_unique<optionsNOX8>();
    nox->portName = m_serialPort->getPortName(devIndex);
    nox->processed = nox->isConnected();
    nox->txTimer = std::make_unique<QTimer>();
    nox->txTimer->setSingleShot(true);
    nox->txTimer->setInterval(m_writeDelayMs);

    _nox *record = nox.release();
    m_records.insert(record->index, record);
    if (wire) {
        setSignal(record);
    } else {
        m_exchange->followModel(record);
    }
    const QPointer<optionsNOX8> image = record->opt.get();
    emit onAddNox(record->index, false);
    return getNoxByImage(image); // a receiver may have removed it
}

bool noxList::addNox(_nox *dev)
{
    if (_nox *known = findSame(*dev->opt)) {
        continueOn(known, dev->devIndex);
        return true;
    }
    if (m_records.size() >= mostRecords)
        return false;
    dev->index = nextIndex();
    m_records.insert(dev->index, dev);
    setSignal(dev);
    m_exchange->readConfiguration(*dev);
    emit onAddNox(dev->index, true);
    return true;
}

/** The record of the instrument that the image identifies; null for an unknown one. */
noxList::_nox *noxList::findSame(const optionsNOX8 &image) const
{
    if (image.devNumber == 0 || !optionsNOX8::getTypeList(true).contains(image.devType))
        return nullptr;
    return firstOf(m_records, [&image](const _nox *nox) {
        return nox->opt->devType == image.devType && nox->opt->devNumber == image.devNumber;
    });
}

/** Lets a record go on with the device under which its instrument was found again. */
void noxList::continueOn(_nox *known, int devIndex)
{
    const QPointer<optionsNOX8> image = known->opt.get();
    const int formerDevice = std::exchange(known->devIndex, devIndex);
    known->portName = m_serialPort->getPortName(devIndex);
    m_serialPort->emptyQueues(devIndex);
    if (getNoxByImage(image)) { // a receiver of that may have removed it
        m_exchange->setCommandByte(*known);
        m_exchange->readAll(*known);
    }
    emit onChange();
    // later: the removal lets other events in, and the caller still holds the record that was found
    if (formerDevice < 0 || formerDevice == devIndex)
        return;
    const auto removeFormer = [this, formerDevice] {
        if (!isDevIndex(formerDevice))
            m_serialPort->rmDev(formerDevice);
    };
    QMetaObject::invokeMethod(this, removeFormer, Qt::QueuedConnection);
}

int noxList::nextIndex() const
{
    return m_records.isEmpty() ? 0 : m_records.lastKey() + 1;
}

void noxList::rmByIndex(int index)
{
    if (!m_records.contains(index))
        return;
    const QPointer<optionsNOX8> image = m_records.value(index)->opt.get();
    disConnByIndex(index);
    // while the worker was ending, somebody else may have removed the record and made another
    if (!image || !getNoxByImage(image))
        return;
    std::unique_ptr<_nox> nox(m_records.take(index));
    leave(nox.get());
    const int qwtIndex = nox->qwtIndex;
    nox.reset(); // with its timer, before anybody hears of it and lets other events in
    emit onRmNox(index, qwtIndex);
}

void noxList::detachByIndex(int index)
{
    if (const _nox *nox = m_records.take(index))
        leave(nox);
}

void noxList::detachByDevIndex(int devIndex)
{
    for (const int index : indices())
        if (m_records.value(index)->devIndex == devIndex)
            detachByIndex(index);
}

void noxList::disConnByIndex(int index)
{
    _nox *nox = getNoxByIndex(index);
    if (!nox)
        return;
    // first of all: what the worker still reports while it ends is no concern of the record's
    m_serialPort->rmDev(std::exchange(nox->devIndex, -1));
    emit onChange();
}

void noxList::connByIndex(int index)
{
    _nox *nox = getNoxByIndex(index);
    if (!nox || nox->isConnected())
        return;
    nox->devIndex = m_serialPort->addDev(nox->portName, nox->opt->getDevFamily());
    emit onChange();
}

void noxList::setProccesed(int index, bool on, bool clearOnResume)
{
    _nox *nox = getNoxByIndex(index);
    if (!nox || nox->processed == on)
        return;
    nox->processed = on;
    if (!on)
        nox->clearOnResume = clearOnResume;
    else if (std::exchange(nox->clearOnResume, false))
        emit doClearQwt(nox->qwtIndex);
    emit onChange();
}

void noxList::setRecording(int index, bool on)
{
    _nox *nox = getNoxByIndex(index);
    if (!nox)
        return;
    nox->recording = on;
    emit onChange();
}

// Who is who

noxList::_nox *noxList::getNoxByDevIndex(int devIndex) const
{
    // every measurement asks, and its instrument is where it was, as a rule
    _nox *const likely = m_records.value(m_likely.value(devIndex, -1));
    if (likely && likely->devIndex == devIndex)
        return likely;
    _nox *const found =
        firstOf(m_records, [=](const _nox *nox) { return nox->devIndex == devIndex; });
    if (found)
        m_likely[devIndex] = found->index;
    return found;
}

noxList::_nox *noxList::getNoxByImage(const optionsNOX8 *image) const
{
    return firstOf(m_records, [=](const _nox *nox) { return nox->opt.get() == image; });
}

noxList::_nox *noxList::getNoxByQwtIndex(int qwtIndex) const
{
    return firstOf(m_records, [=](const _nox *nox) { return nox->qwtIndex == qwtIndex; });
}

// What is connected

/**
 * Connects the multiplexer, once and from the beginning: whoever listens to it later finds replies
 * applied to the records that were there, and not to one that he makes of the reply himself.
 */
void noxList::connectSerialPort()
{
    connect(m_exchange.get(), &BlockExchange::write, this,
            [this](int devIndex, QByteArray *block, quint8 address) {
                emit sendDevData(devIndex, block, address);
            });
    connect(this, &noxList::sendDevData, m_serialPort,
            [this](int devIndex, QByteArray *buf, quint8 address, noxQueryMode mode) {
                m_serialPort->sendDevData(devIndex, buf, address, true, mode);
            });
    connect(m_serialPort, QOverload<int, QByteArray *, quint8>::of(&NOXSerialPort::readyDevReply),
            this, &noxList::applyDevQuery);
    connect(m_serialPort, &NOXSerialPort::doneSendDevData, this, &noxList::onDoneSendDevData);
    connect(m_serialPort, &NOXSerialPort::readyDevMeas, this, &noxList::onReadyDevMeas);
    connect(m_serialPort, QOverload<int, quint16>::of(&NOXSerialPort::onDevError), this,
            &noxList::onLinkError);
}

/** Connects what a record of this registry reports. */
void noxList::setSignal(_nox *nox)
{
    using Image = optionsNOX8;
    const Image *const image = nox->opt.get();
    connect(nox->txTimer.get(), &QTimer::timeout, this, [this, nox] { writePending(nox); });
    m_exchange->follow(nox); // first: a channel is written before its unit is kept
    connect(image, &Image::onChApply, this,
            [this, index = nox->index](quint8 ch) { keepUnit(index, ch); });
    connect(image, &Image::onIdentApply, this, [this, nox] { applyIdentity(nox); });
    connect(image, &Image::onChChange, this, [this, index = nox->index](quint8 ch) {
        emit onChChange(index, ch);
        keepUnit(index, ch);
    });
    connect(image, &Image::onDevChange, this, [this, nox] {
        m_exchange->setCommandByte(*nox);
        emit onDevChange(nox->index);
    });
    connect(image, &Image::onIdentChange, this,
            [this, index = nox->index] { noteIdentity(index); });
    connect(image, &Image::onRefChange, this, [this, nox] { emit onRefChange(nox->index); });
    connect(image, &Image::onRefShiftChange, this,
            [this, nox] { emit onRefShiftChange(nox->index); });
    connect(image, &Image::onRecData, this,
            [this, nox](const QMap<quint8, QVector<optionsNOX8::_recItem>> &records,
                        const QDateTime &start) { emit onReadRec(nox->index, records, start); });
}

/** Hears no more of a record. */
void noxList::leave(const _nox *nox)
{
    nox->opt->disconnect(this);
    nox->opt->disconnect(m_exchange.get());
    nox->txTimer->disconnect(this);
}

// What images ask for, and what becomes of them

void noxList::sendNoxData(int index, optionsNOX8::tx_code tx_code)
{
    if (_nox *nox = getNoxByIndex(index))
        BlockExchange::request(nox, tx_code);
}

void noxList::writePending(_nox *nox)
{
    if (nox->txCodes.isEmpty())
        return;
    const QPointer<optionsNOX8> image = nox->opt.get();
    emit onChange();
    if (getNoxByImage(image)) // a receiver of the change may have removed it
        m_exchange->writeWaiting(nox);
}

void noxList::writeNow()
{
    const auto all = indices();
    for (const int index : all) {
        _nox *const nox = getNoxByIndex(index);
        if (!nox || !nox->isConnected())
            continue;
        nox->txTimer->stop();
        writePending(nox);
    }
}

/** An identity that the instrument does not hold is kept in the database alone. */
void noxList::applyIdentity(_nox *nox)
{
    if (nox->opt->isIdentified() && !nox->opt->identValid && nox->dbIndex > 0)
        m_store->updateReferences(nox);
}

void noxList::keepUnit(int index, quint8 ch)
{
    if (_nox *nox = getNoxByIndex(index)) // a receiver of the change may have removed it
        m_store->keepUnit(nox, ch);
}

void noxList::noteIdentity(int index)
{
    _nox *nox = getNoxByIndex(index);
    if (!nox)
        return;
    m_exchange->setCommandByte(*nox);
    if (nox->opt->isIdentified())
        m_store->provide(nox);
    emit onIdentChange(index);
    storeRefused(index); // last: who hears of the identity looks at what has not been stored yet
}

void noxList::storeRefused(int index)
{
    if (_nox *nox = getNoxByIndex(index)) // a receiver of the identity may have removed it
        m_store->storeRefused(nox);
}

/** Stores what the database could not take when it was learnt. */
void noxList::noteRefused()
{
    const auto all = indices();
    for (const int index : all) {
        _nox *nox = getNoxByIndex(index);
        if (nox && m_store->seekRow(nox))
            noteIdentity(index);
        else
            storeRefused(index);
    }
}

// What comes from the instruments

void noxList::getOptFromNox(int index)
{
    if (const _nox *nox = getNoxByIndex(index))
        m_exchange->readAll(*nox);
}

void noxList::applyDevQuery(int devIndex, QByteArray *buf, quint8 address)
{
    _nox *found = getNoxByDevIndex(devIndex);
    if (!found)
        return;
    const QPointer<optionsNOX8> image = found->opt.get();
    found->held.noteRead(address, *buf); // who hears of the change compares with it
    const int sizeBefore = image->getDevDataSize();
    const QByteArray contentBefore = InstrumentStore::snapShotContent(*found);
    const bool isAccepted = image->setData(*buf, address);
    _nox *nox = getNoxByImage(image); // a receiver of the change may have removed it
    if (!nox)
        return;
    // it is another model than was believed: what has been asked for has the wrong size
    if (address == identificationAddress && isAccepted && sizeBefore != 0 &&
        nox->opt->getDevDataSize() != sizeBefore)
        m_exchange->readConfiguration(*nox);
    // an extended model's configuration is whole, and can be compared, with its zero shifts
    const bool isConfiguration = address == configurationAddress || address == zeroShiftsAddress;
    const bool hasLeft = InstrumentStore::leaveSnapShot(nox, contentBefore);
    if (isConfiguration && isAccepted && (nox->dbIndex >= 1 || nox->refused.row))
        m_store->recogniseSnapShot(nox, m_serialPort->isEmptyQueryQueue(nox->devIndex));
    else if (address == referenceDataAddress && nox->dbIndex == 0)
        return m_store->find(nox);
    else if (!hasLeft)
        return;
    emit onChange();
}

void noxList::onDoneSendDevData(int devIndex, noxSerialPortDataItem data)
{
    _nox *nox = getNoxByDevIndex(devIndex);
    if (!nox)
        return;
    nox->held.noteWritten(data.address, data.data);
    if (data.address == optionsNOX8::txReferenceData && (nox->dbIndex >= 1 || nox->awaitsRow()))
        m_store->noteWrittenReferences(nox);
    emit onHeldChange(nox->index);
}

void noxList::onReadyDevMeas(int devIndex, double meas, quint8 ch, char dim)
{
    const _nox *nox = getNoxByDevIndex(devIndex);
    // values measured before a change that is still to be written are not shown after it
    if (!nox || nox->qwtIndex < 0 || !nox->processed || !nox->txCodes.isEmpty())
        return;
    const quint8 channel = ch - 1;
    emit onReadMeas(nox->index, meas, channel, unitText(*nox->opt, channel, dim));
}

void noxList::onLinkError(int devIndex, quint16 code)
{
    const _nox *nox = getNoxByDevIndex(devIndex);
    if (!nox)
        return;
    const int index = nox->index;
    const QPointer<optionsNOX8> image = nox->opt.get();
    image->blockSignals(false);
    disConnByIndex(index);
    if (getNoxByImage(image)) // else it was removed while its worker was ending
        emit onDevError(index, connectionLostCode, tr("Обрыв связи [код %1]").arg(code));
}
