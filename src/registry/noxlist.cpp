#include "registry/noxlist.h"

#include "serial/noxserialport.h"

#include <utility>

namespace
{

constexpr int mostRecords = 255;

} // namespace

noxList::noxList(NOXSerialPort *serialPort, noxSql *database)
    : m_serialPort(serialPort)
    , m_database(database)
{
    connect(this, &noxList::sendDevData, m_serialPort,
            [this](int devIndex, QByteArray *buf, quint8 address, noxQueryMode mode) {
                m_serialPort->sendDevData(devIndex, buf, address, true, mode);
            });
    connectSerialPort();
}

noxList::~noxList()
{
    const auto all = std::exchange(m_records, {});
    for (const _nox *nox : all) {
        nox->opt->disconnect(this);
        nox->txTimer->disconnect(this); // any of them could run out while a worker is ending
    }
    for (_nox *nox : all) {
        m_serialPort->rmDev(nox->devIndex);
        delete nox;
    }
}

noxList::_nox *noxList::newNox(int devIndex, bool wire)
{
    if (m_records.size() >= mostRecords - 1) {
        emit onAddNox(-1, false);
        return nullptr;
    }
    auto nox = std::make_unique<_nox>();
    nox->index = nextIndex();
    nox->devIndex = devIndex;
    nox->opt = std::make_unique<optionsNOX8>();
    nox->portName = m_serialPort->getPortName(devIndex);
    nox->processed = devIndex >= 0;
    nox->txTimer = std::make_unique<QTimer>();
    nox->txTimer->setSingleShot(true);
    nox->txTimer->setInterval(m_writeDelayMs);

    _nox *record = nox.release();
    m_records.insert(record->index, record);
    if (wire) {
        setSignal(record);
    } else {
        const auto command = [this, record] { setCommandByte(record); };
        connect(record->opt.get(), &optionsNOX8::onDevChange, this, command);
        connect(record->opt.get(), &optionsNOX8::onIdentChange, this, command);
    }
    emit onAddNox(record->index, false);
    return record;
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
    readConfiguration(dev);
    emit onAddNox(dev->index, true);
    return true;
}

/** The record of the instrument that the image identifies; null for an unknown one. */
noxList::_nox *noxList::findSame(const optionsNOX8 &image) const
{
    if (image.devNumber == 0 || !optionsNOX8::getTypeList(true).contains(image.devType))
        return nullptr;
    for (_nox *nox : m_records)
        if (nox->opt->devType == image.devType && nox->opt->devNumber == image.devNumber)
            return nox;
    return nullptr;
}

/** Lets a record go on with the device under which its instrument was found again. */
void noxList::continueOn(_nox *known, int devIndex)
{
    const int index = known->index;
    const int formerDevice = std::exchange(known->devIndex, devIndex);
    known->portName = m_serialPort->getPortName(devIndex);
    m_serialPort->emptyQueues(devIndex);
    setCommandByte(known);
    getOptFromNox(index);
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

bool noxList::owns(const _nox *nox) const
{
    return m_records.value(nox->index) == nox;
}

int noxList::nextIndex() const
{
    return m_records.isEmpty() ? 0 : m_records.lastKey() + 1;
}

void noxList::setCommandByte(const _nox *nox)
{
    m_serialPort->setDevType(nox->devIndex, nox->opt->getDevFamily());
}

void noxList::rmByIndex(int index)
{
    if (!m_records.contains(index))
        return;
    disConnByIndex(index);
    // while the worker was ending, the record may have been removed by somebody else
    std::unique_ptr<_nox> nox(m_records.take(index));
    if (!nox)
        return;
    nox->opt->disconnect(this);
    const int qwtIndex = nox->qwtIndex;
    nox.reset(); // with its timer, before anybody hears of it and lets other events in
    emit onRmNox(index, qwtIndex);
}

void noxList::detachByIndex(int index)
{
    const _nox *nox = m_records.take(index);
    if (!nox)
        return;
    nox->opt->disconnect(this);
    nox->txTimer->disconnect(this);
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

noxList::_nox *noxList::getNoxByIndex(int index) const
{
    return m_records.value(index);
}

noxList::_nox *noxList::getNoxByDevIndex(int devIndex) const
{
    for (_nox *nox : m_records)
        if (nox->devIndex == devIndex)
            return nox;
    return nullptr;
}

noxList::_nox *noxList::getNoxByQwtIndex(int qwtIndex) const
{
    for (_nox *nox : m_records)
        if (nox->qwtIndex == qwtIndex)
            return nox;
    return nullptr;
}

int noxList::getIndexByDev(int devIndex) const
{
    const _nox *nox = getNoxByDevIndex(devIndex);
    return nox ? nox->index : -1;
}

int noxList::getQWTIndex(int index) const
{
    const _nox *nox = getNoxByIndex(index);
    return nox ? nox->qwtIndex : -1;
}

int noxList::getDBIndex(int index) const
{
    const _nox *nox = getNoxByIndex(index);
    return nox ? nox->dbIndex : -1;
}

bool noxList::isDevIndex(int devIndex) const
{
    return getNoxByDevIndex(devIndex) != nullptr;
}

QList<int> noxList::indices() const
{
    return m_records.keys();
}
