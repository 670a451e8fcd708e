#include "registry/noxlist.h"

#include "serial/noxserialport.h"

#include <utility>

namespace
{

constexpr int mostRecords = 255;
constexpr int writeDelayMs = 5000;
constexpr quint8 connectionLostCode = 200;

} // namespace

noxList::noxList(NOXSerialPort *serialPort, noxSql *database)
    : m_serialPort(serialPort)
    , m_database(database)
{
}

noxList::~noxList()
{
    const auto all = std::exchange(m_records, {});
    for (_nox *nox : all) {
        nox->opt->disconnect(this);
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
    nox->txTimer->setInterval(writeDelayMs);

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

int noxList::nextIndex() const
{
    return m_records.isEmpty() ? 0 : m_records.lastKey() + 1;
}

/** Connects what a record of this registry reports and, with the first one, the multiplexer. */
void noxList::setSignal(_nox *nox)
{
    if (m_records.size() == 1)
        connectSerialPort();

    const int index = nox->index;
    const optionsNOX8 *opt = nox->opt.get();
    connect(opt, &optionsNOX8::onChChange, this,
            [this, index](quint8 ch) { emit onChChange(index, ch); });
    connect(opt, &optionsNOX8::onDevChange, this, [this, nox] {
        setCommandByte(nox);
        emit onDevChange(nox->index);
    });
    connect(opt, &optionsNOX8::onIdentChange, this, [this, nox] {
        setCommandByte(nox);
        emit onIdentChange(nox->index);
    });
    connect(opt, &optionsNOX8::onRefChange, this, [this, index] { emit onRefChange(index); });
    connect(opt, &optionsNOX8::onRefShiftChange, this,
            [this, index] { emit onRefShiftChange(index); });
    connect(opt, &optionsNOX8::onRecData, this,
            [this, index](const QMap<quint8, QVector<optionsNOX8::_recItem>> &records,
                          const QDateTime &start) { emit onReadRec(index, records, start); });
}

void noxList::connectSerialPort()
{
    connect(m_serialPort, &NOXSerialPort::readyDevMeas, this, &noxList::onReadyDevMeas);
    connect(m_serialPort, QOverload<int, quint16>::of(&NOXSerialPort::onDevError), this,
            &noxList::onLinkError);
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
    const std::unique_ptr<_nox> nox(m_records.take(index));
    if (!nox)
        return;
    nox->opt->disconnect(this);
    if (m_records.isEmpty())
        m_serialPort->disconnect(this);
    emit onRmNox(index, nox->qwtIndex);
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

void noxList::onReadyDevMeas(int devIndex, double meas, quint8 ch, char dim)
{
    const _nox *nox = getNoxByDevIndex(devIndex);
    // values measured before a change that is still to be written are not shown after it
    if (!nox || nox->qwtIndex < 0 || !nox->processed || !nox->txCodes.isEmpty())
        return;
    const quint8 channel = ch - 1;
    emit onReadMeas(nox->index, meas, channel, unitText(*nox, channel, dim));
}

/** The user's unit where the channel has one and is on, else that of the stream. */
QString noxList::unitText(const _nox &nox, quint8 ch, char dim) const
{
    const optionsNOX8::_ch channel = nox.opt->getCh(ch);
    const bool custom = channel.measType == measTemperatureCustom && channel.onOff != 0;
    return custom ? nox.opt->getChMeasTypeName(ch) : nox.opt->getDim(dim);
}

void noxList::onLinkError(int devIndex, quint16 code)
{
    const _nox *nox = getNoxByDevIndex(devIndex);
    if (!nox)
        return;
    const int index = nox->index;
    nox->opt->blockSignals(false);
    disConnByIndex(index);
    emit onDevError(index, connectionLostCode, tr("Обрыв связи [код %1]").arg(code));
}
