#include "serial/noxserialport.h"

#include "serial/noxserialportthread.h"
#include "serial/portcatalog.h"
#include "serial/workerconnection.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace
{

constexpr int mostDevices = 255;
constexpr int removalTimeoutMs = 5000;
constexpr quint16 queryCodeOffset = 100;
constexpr quint16 dataCodeOffset = 200;
constexpr quint16 wordSize = 4;

} // namespace

int NOXSerialPort::progMax = 0;

NOXSerialPort::NOXSerialPort(QObject *parent)
    : QObject(parent)
{
    registerExchangeItems();
}

NOXSerialPort::~NOXSerialPort()
{
    rmAll();
}

int NOXSerialPort::addDev(QString portName, char devType, int baudRate, quint8 measTimeout)
{
    const SerialPortEntry entry = PortCatalog::current().find(portName);
    if (entry.name.isEmpty() || entry.busy)
        return -1;

    const int devIndex = m_devices.add(mostDevices);
    if (devIndex < 0)
        return -1;
    auto &worker = m_devices.find(devIndex)->worker;
    worker =
        std::make_unique<noxSerialPortThread>(devIndex, portName, devType, baudRate, measTimeout);
    worker->setTiming(m_timing);
    connectWorker(worker.get());
    worker->start(QThread::InheritPriority);
    return devIndex;
}

void NOXSerialPort::connectWorker(noxSerialPortThread *worker)
{
    using Worker = noxSerialPortThread;
    using Self = NOXSerialPort;
    connect(worker, &Worker::setProgress, this, &Self::setDevProgress);
    const IndexOwner owner(m_devices, worker->index());
    connectStream(worker, &Worker::readyMeas, this, &Self::readDevMeas, owner);
    connectStream(worker, &Worker::readySource, this, &Self::readDevSource, owner);
    connectStream(worker, &Worker::readyStatus, this, &Self::readDevStatus, owner);
    connect(worker, QOverload<QByteArray *, quint8>::of(&Worker::readyQuery), this,
            &Self::readDevReply);
    connect(worker, &Worker::onSendQueryError, this, &Self::onSendQueryError);
    connect(worker, &Worker::onSendDataError, this, &Self::onSendDataError);
    connect(worker, &Worker::doneSend, this, &Self::doneDevSend);
    connect(worker, &Worker::onError, this, &Self::onError);
    connect(worker, &Worker::finished, this, &Self::purgeDevSerialPortThread);
    connect(worker, &Worker::onMeasTimeout, this, &Self::devMeasTimeout);

    connectToWorker(this, &Self::readyDevQuery, worker, &Worker::sendQuery);
    connectToWorker(this, &Self::readyDevData, worker, &Worker::sendData);
    connectToWorker(this, QOverload<int, bool>::of(&Self::blockStatusEvent), worker,
                    &Worker::blockStatusEvent);
    connectToWorker(this, &Self::onSetDevType, worker, &Worker::setDevType);
    connectToWorker(this, &Self::onSetMeasTimeout, worker, &Worker::setMeasTimeout);
    connectToWorker(this, &Self::onSetDelayTime, worker, &Worker::setDelayTime);
}

void NOXSerialPort::rmDev(int devIndex)
{
    removeWithin(devIndex, removalTimeoutMs);
}

void NOXSerialPort::rmAll()
{
    const auto indices = devices();
    for (int devIndex : indices)
        m_devices.find(devIndex)->worker->requestStop();
    const QDeadlineTimer deadline(removalTimeoutMs);
    for (int devIndex : indices)
        removeWithin(devIndex, int(deadline.remainingTime()));
    // a thread that runs cannot be deleted, and its driver may never let go of it
    const auto hanging = devices();
    for (int devIndex : hanging)
        m_devices.take(devIndex).worker.release();
}

void NOXSerialPort::removeWithin(int devIndex, int milliseconds)
{
    LinkDevice *const device = m_devices.find(devIndex);
    // called again while its own loop runs, it has nothing to add
    if (!device || device->removalWait)
        return;
    const bool wasReadAll = isReadAllQuery();
    const bool wasSentAll = isSendAllData();
    const IndexOwner owner(m_devices, devIndex);

    QEventLoop loop;
    device->removalWait = &loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    device->worker->requestStop();
    // Called while an event is delivered, the loop would sleep over those that wait behind it (so
    // does glib's dispatcher), and one of them may tell that the worker has ended already.
    QAbstractEventDispatcher::instance()->wakeUp();
    loop.exec();
    if (LinkDevice *const outlived = owner.device())
        outlived->removalWait = nullptr;

    announceEmptied(wasReadAll, wasSentAll);
}

void NOXSerialPort::purgeDevSerialPortThread()
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    const LinkDevice device = m_devices.take(devIndex);
    device.worker->disconnect();
    disconnect(device.worker.get());

    onExchangeProg();
    if (device.removalWait)
        device.removalWait->quit();
}

void NOXSerialPort::emptyQueues(int devIndex)
{
    LinkDevice *const device = m_devices.find(devIndex);
    if (!device)
        return;
    const bool wasReadAll = isReadAllQuery();
    const bool wasSentAll = isSendAllData();
    device->queries.abandon();
    device->writes.abandon();
    device->heldReplies.clear();
    onExchangeProg();
    announceEmptied(wasReadAll, wasSentAll);
}

void NOXSerialPort::announceEmptied(bool wasReadAll, bool wasSentAll)
{
    if (!wasReadAll && isReadAllQuery())
        emit allDevQueryComplite();
    if (!wasSentAll && isSendAllData())
        emit allDevDataSend();
}

void NOXSerialPort::setDevType(int devIndex, char devType)
{
    if (m_devices.find(devIndex))
        emit onSetDevType(devIndex, devType);
}

QString NOXSerialPort::getPortName(int devIndex) const
{
    const LinkDevice *device = m_devices.find(devIndex);
    return device ? device->worker->name() : QStringLiteral("-");
}

void NOXSerialPort::onExchangeProg()
{
    const int pending = m_devices.pendingExchanges();
    if (progMax > pending) {
        if (pending > 0) {
            emit setProgress(progMax - pending, progMax);
        } else {
            emit setProgress(0, 0);
            progMax = 0;
        }
        return;
    }
    if (progMax == 0)
        emit setProgress(0, pending);
    progMax = pending;
}

void NOXSerialPort::sendDevQuery(int devIndex, noxSerialPortQueryItem query)
{
    // a read of nothing would never be answered and hold the stream back for good
    if (!m_devices.find(devIndex) || query.size == 0)
        return;
    const IndexOwner owner(m_devices, devIndex);
    emit blockStatusEvent(devIndex, true);
    onExchangeProg();
    LinkDevice *const device = owner.device();
    if (!device)
        return;
    if (!device->writes.isEmpty()) {
        device->queries.push(query);
        return;
    }
    device->queries.pushUnlessWaiting(query);
    if (device->queries.size() == 1)
        startQuery(devIndex, *device);
}

void NOXSerialPort::sendRecQuery(int devIndex, noxSerialPortQueryItem query)
{
    query.rec = true;
    sendDevQuery(devIndex, query);
}

void NOXSerialPort::sendWordQuery(int devIndex, noxSerialPortQueryItem query)
{
    query.size = wordSize;
    query.word = true;
    sendDevQuery(devIndex, query);
}

void NOXSerialPort::sendDevData(int devIndex, noxSerialPortDataItem data)
{
    if (!m_devices.find(devIndex) || data.data.isEmpty())
        return;
    const IndexOwner owner(m_devices, devIndex);
    emit blockStatusEvent(devIndex, true);
    LinkDevice *const device = owner.device();
    if (!device)
        return;
    device->writes.pushUnlessWaiting(data);
    if (device->writes.size() == 1)
        startData(devIndex, *device);
}

void NOXSerialPort::sendDevWord(int devIndex, noxSerialPortDataItem data)
{
    data.word = true;
    sendDevData(devIndex, data);
}

/**
 * Hands the next read to the worker, unless it has one already, or has a write: the two would begin
 * in an order of chance, and what the read says may be what the write changes.
 */
void NOXSerialPort::startQuery(int devIndex, LinkDevice &device)
{
    if (device.isExchanging())
        return;
    if (const auto query = device.queries.takeHead())
        emit readyDevQuery(devIndex, *query);
}

void NOXSerialPort::startData(int devIndex, LinkDevice &device)
{
    if (const auto data = device.writes.takeHead())
        emit readyDevData(devIndex, *data);
}

/** Chooses a device's next exchange: a write, else a read, else its stream flows again. */
void NOXSerialPort::startNext(int devIndex)
{
    // whoever received a result may have removed the device
    LinkDevice *const device = m_devices.find(devIndex);
    if (!device)
        return;
    if (!device->writes.isEmpty())
        startData(devIndex, *device);
    else if (!device->queries.isEmpty())
        startQuery(devIndex, *device);
    else if (!device->isExchanging()) // what the worker has may be forgotten, but not done
        emit blockStatusEvent(devIndex, false);
}

void NOXSerialPort::readDevReply(QByteArray *buf, quint8 address)
{
    std::unique_ptr<QByteArray> reply(buf);
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    const IndexOwner owner(m_devices, devIndex);
    owner.device()->queries.finish();
    onExchangeProg();

    LinkDevice *const device = owner.device();
    if (device && device->blocked > 0)
        device->heldReplies.push_back({address, std::move(reply)});
    else
        announceReply(devIndex, owner, reply.get(), address);
    startNext(devIndex);
}

void NOXSerialPort::announceReply(int devIndex, const IndexOwner &owner, QByteArray *reply,
                                  quint8 address)
{
    if (!owner.isReplaced())
        emit readyDevReply(devIndex, reply, address);
    if (!owner.isReplaced())
        emit readyDevReply(devIndex, *reply, address);
    if (!owner.isReplaced() && isEmptyQueryQueue(devIndex))
        emit resultDevQuery(devIndex, true);
    if (isReadAllQuery())
        emit allDevQueryComplite();
}

void NOXSerialPort::onSendQueryError(quint16 code, noxSerialPortQueryItem query)
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    const IndexOwner owner(m_devices, devIndex);
    owner.device()->queries.fail(query.qMode);
    onExchangeProg();
    if (!owner.isReplaced())
        emit onDevQueryError(devIndex, code + queryCodeOffset, query);
    if (!owner.isReplaced())
        emitErrorEvent(devIndex, code + queryCodeOffset);
    if (isReadAllQuery())
        emit allDevQueryComplite();
    if (!owner.isReplaced() && !m_devices.hasQueries(devIndex))
        emit resultDevQuery(devIndex, false);
    startNext(devIndex);
}

void NOXSerialPort::doneDevSend()
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    const IndexOwner owner(m_devices, devIndex);
    const auto done = owner.device()->writes.finish();
    if (!done) {
        startNext(devIndex);
        return;
    }
    onExchangeProg();
    if (!owner.isReplaced())
        emit doneSendDevData(devIndex, *done);
    const bool moreWrites = m_devices.hasWrites(devIndex);
    startNext(devIndex);
    if (!moreWrites && !owner.isReplaced())
        emit doneSend(devIndex);
    if (isSendAllData())
        emit allDevDataSend();
}

void NOXSerialPort::onSendDataError(quint16 code, noxSerialPortDataItem data)
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    const IndexOwner owner(m_devices, devIndex);
    owner.device()->writes.fail(data.qMode);
    onExchangeProg();
    if (!owner.isReplaced())
        emit onDevDataError(devIndex, code + dataCodeOffset, data);
    if (!owner.isReplaced())
        emitErrorEvent(devIndex, code + dataCodeOffset);
    if (isSendAllData())
        emit allDevDataSend();
    if (!owner.isReplaced() && m_devices.hasWrites(devIndex))
        emit resultDevData(devIndex, false);
    startNext(devIndex);
}

void NOXSerialPort::onError(quint16 code)
{
    emitErrorEvent(senderIndex(), code);
}

void NOXSerialPort::emitErrorEvent(int devIndex, quint16 code)
{
    if (!m_devices.find(devIndex))
        return;
    const IndexOwner owner(m_devices, devIndex);
    // no code has a text of its own
    emit onDevError(devIndex, code, QStringLiteral("Unknown error"));
    if (!owner.isReplaced())
        emit onDevError(devIndex, code);
    if (!owner.isReplaced())
        emit onDevError(devIndex);
}

void NOXSerialPort::readDevMeas(int devIndex, double meas, quint8 ch, char dim)
{
    emit readyDevMeas(devIndex, meas, ch, dim);
}

void NOXSerialPort::readDevSource(int devIndex, QByteArray buf)
{
    emit readyDevSource(devIndex, buf);
}

void NOXSerialPort::readDevStatus(int devIndex, QStringList lStr)
{
    emit readyDevStatus(devIndex, lStr);
}

void NOXSerialPort::setDevProgress(int progress, int maxProgress, quint8 address)
{
    if (const int devIndex = senderIndex(); devIndex >= 0)
        emit setProgress(devIndex, progress, maxProgress, address);
}

void NOXSerialPort::devMeasTimeout(bool isConnect)
{
    if (const int devIndex = senderIndex(); devIndex >= 0)
        emit onMeasTimeOut(devIndex, isConnect);
}

void NOXSerialPort::blockEventDev(int devIndex, bool b)
{
    const IndexOwner owner(m_devices, devIndex);
    LinkDevice *device = owner.device();
    if (device && b)
        ++device->blocked;
    if (!device || b || device->blocked == 0)
        return;
    while (const auto reply = owner.takeHeldReply()) {
        emit readyDevReply(devIndex, *reply->buf, reply->address);
        if (!owner.isReplaced())
            emit readyDevReply(devIndex, reply->buf.get(), reply->address);
    }
    if (isReadAllQuery())
        emit allDevQueryComplite();
    device = owner.device();
    if (device && device->blocked > 0)
        --device->blocked;
}

void NOXSerialPort::blockEventAll(bool b)
{
    const auto indices = devices();
    for (int devIndex : indices)
        blockEventDev(devIndex, b);
}
