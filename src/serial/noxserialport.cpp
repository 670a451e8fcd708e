#include "serial/noxserialport.h"

#include "serial/noxserialportthread.h"
#include "serial/portcatalog.h"

#include <QAbstractEventDispatcher>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace
{

constexpr int mostDevices = 255;
constexpr int removalTimeoutMs = 5000;
constexpr quint16 queryCodeOffset = 100;
constexpr quint16 dataCodeOffset = 200;
constexpr quint16 wordSize = 4;

/** Appends `item` unless an equal one waits behind the head. */
template<typename Item>
void enqueueOnce(QQueue<Item> &queue, const Item &item)
{
    const auto waiting = queue.begin() + std::min(1, queue.size());
    if (std::find(waiting, queue.end(), item) == queue.end())
        queue.enqueue(item);
}

template<typename Item>
bool allEmpty(const QHash<int, QQueue<Item>> &queues)
{
    return std::all_of(queues.begin(), queues.end(),
                       [](const QQueue<Item> &queue) { return queue.isEmpty(); });
}

template<typename Item>
int pendingItems(const QHash<int, QQueue<Item>> &queues)
{
    int count = 0;
    for (const QQueue<Item> &queue : queues)
        count += queue.size();
    return count;
}

/** After a failure: of mode normal the whole queue goes, else only the failed head. */
template<typename Item>
void dropFailed(QQueue<Item> &queue, noxQueryMode mode, bool abandoned)
{
    if (abandoned || queue.isEmpty())
        return;
    if (mode == noxQueryModeNormal)
        queue.clear();
    else
        queue.dequeue();
}

/** Connects a signal of the multiplexer with the slot of a worker. Only what is about the worker's
 *  own device is queued: an event for each of all workers would hold the GUI thread up. */
template<typename... Arguments>
void connectToWorker(const NOXSerialPort *port, void (NOXSerialPort::*signal)(int, Arguments...),
                     noxSerialPortThread *worker,
                     void (noxSerialPortThread::*slot)(int, Arguments...))
{
    const auto queue = [worker, slot](int devIndex, Arguments... arguments) {
        if (devIndex == worker->index())
            QMetaObject::invokeMethod(
                worker, [=] { (worker->*slot)(devIndex, arguments...); }, Qt::QueuedConnection);
    };
    QObject::connect(port, signal, worker, queue, Qt::DirectConnection);
}

noxSerialPortDataItem dataItem(const QByteArray &data, quint8 address, bool showPr,
                               noxQueryMode qMode)
{
    return {address, data, qMode, showPr, false};
}

} // namespace

int NOXSerialPort::progMax = 0;

NOXSerialPort::NOXSerialPort(QObject *parent)
    : QObject(parent)
{
    registerExchangeItems();
}

NOXSerialPort::~NOXSerialPort()
{
    const auto devices = m_workers.keys();
    for (int devIndex : devices) {
        rmDev(devIndex);
        dropHeldReplies(devIndex);
    }
    // a worker that outlived its removal time still has to end before it may be deleted
    qDeleteAll(m_workers);
}

int NOXSerialPort::addDev(QString portName, char devType, int baudRate, quint8 measTimeout)
{
    if (m_workers.size() >= mostDevices)
        return -1;
    const SerialPortEntry entry = PortCatalog::current().find(portName);
    if (entry.name.isEmpty() || entry.busy)
        return -1;

    int devIndex = 0;
    while (m_workers.contains(devIndex))
        ++devIndex;
    auto *worker = new noxSerialPortThread(devIndex, portName, devType, baudRate, measTimeout);
    worker->setTiming(m_timing);
    m_workers.insert(devIndex, worker);
    connectWorker(worker);
    worker->start(QThread::InheritPriority);
    return devIndex;
}

void NOXSerialPort::connectWorker(noxSerialPortThread *worker)
{
    using Worker = noxSerialPortThread;
    using Self = NOXSerialPort;
    connect(worker, &Worker::setProgress, this, &Self::setDevProgress);
    connect(worker, &Worker::readyMeas, this, &Self::readDevMeas);
    connect(worker, &Worker::readySource, this, &Self::readDevSource);
    connect(worker, &Worker::readyStatus, this, &Self::readDevStatus);
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
    // called again while its own loop runs, it has nothing to add
    if (!m_workers.contains(devIndex) || m_removalWaits.contains(devIndex))
        return;
    const bool wasReadAll = isReadAllQuery();
    const bool wasSentAll = isSendAllData();

    QEventLoop loop;
    m_removalWaits.insert(devIndex, &loop);
    QTimer::singleShot(removalTimeoutMs, &loop, &QEventLoop::quit);
    m_workers.value(devIndex)->requestStop();
    // Called while an event is delivered, the loop would sleep over those that wait behind it (so
    // does glib's dispatcher), and one of them may tell that the worker has ended already.
    QAbstractEventDispatcher::instance()->wakeUp();
    loop.exec();
    m_removalWaits.remove(devIndex);

    announceEmptied(wasReadAll, wasSentAll);
}

void NOXSerialPort::announceEmptied(bool wasReadAll, bool wasSentAll)
{
    if (!wasReadAll && isReadAllQuery())
        emit allDevQueryComplite();
    if (!wasSentAll && isSendAllData())
        emit allDevDataSend();
}

void NOXSerialPort::purgeDevSerialPortThread()
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    const std::unique_ptr<noxSerialPortThread> worker(m_workers.value(devIndex));
    worker->disconnect();
    disconnect(worker.get());

    m_queryQueues.remove(devIndex);
    m_dataQueues.remove(devIndex);
    for (QSet<int> *state :
         {&m_queryHandedOver, &m_dataHandedOver, &m_queryAbandoned, &m_dataAbandoned})
        state->remove(devIndex);
    onExchangeProg();
    dropHeldReplies(devIndex);
    m_blockedDevices.removeAll(devIndex);

    m_workers.remove(devIndex);
    if (QEventLoop *loop = m_removalWaits.value(devIndex))
        loop->quit();
}

void NOXSerialPort::emptyQueues(int devIndex)
{
    if (!m_workers.contains(devIndex))
        return;
    const bool wasReadAll = isReadAllQuery();
    const bool wasSentAll = isSendAllData();
    m_queryQueues[devIndex].clear();
    m_dataQueues[devIndex].clear();
    dropHeldReplies(devIndex);
    if (m_queryHandedOver.contains(devIndex))
        m_queryAbandoned.insert(devIndex);
    if (m_dataHandedOver.contains(devIndex))
        m_dataAbandoned.insert(devIndex);
    onExchangeProg();
    announceEmptied(wasReadAll, wasSentAll);
}

void NOXSerialPort::dropHeldReplies(int devIndex)
{
    const auto replies = m_heldReplies.take(devIndex);
    for (const devDataReply &reply : replies)
        delete reply.buf;
}

void NOXSerialPort::setDevType(int devIndex, char devType)
{
    if (m_workers.contains(devIndex))
        emit onSetDevType(devIndex, devType);
}

QString NOXSerialPort::getPortName(int devIndex) const
{
    const noxSerialPortThread *worker = m_workers.value(devIndex);
    return worker ? worker->name() : QStringLiteral("-");
}

bool NOXSerialPort::isEmptyQueryQueue(int devIndex) const
{
    const auto queue = m_queryQueues.constFind(devIndex);
    return queue != m_queryQueues.constEnd() && queue->isEmpty();
}

bool NOXSerialPort::isEmptyDataQueue(int devIndex) const
{
    const auto queue = m_dataQueues.constFind(devIndex);
    return queue != m_dataQueues.constEnd() && queue->isEmpty();
}

bool NOXSerialPort::hasExchanges(int devIndex) const
{
    return !m_queryQueues.value(devIndex).isEmpty() || !m_dataQueues.value(devIndex).isEmpty();
}

bool NOXSerialPort::isSendAllData() const
{
    return allEmpty(m_dataQueues);
}

bool NOXSerialPort::isReadAllQuery() const
{
    return allEmpty(m_queryQueues) && allEmpty(m_heldReplies);
}

void NOXSerialPort::onExchangeProg()
{
    const int pending = pendingItems(m_queryQueues) + pendingItems(m_dataQueues);
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

void NOXSerialPort::sendDevQuery(int devIndex, quint8 address, quint16 size, bool showPr,
                                 noxQueryMode qMode)
{
    sendDevQuery(devIndex, {address, size, showPr, qMode, false, false});
}

void NOXSerialPort::sendDevQuery(int devIndex, noxSerialPortQueryItem query)
{
    // a read of nothing would never be answered and hold the stream back for good
    if (!m_workers.contains(devIndex) || query.size == 0)
        return;
    emit blockStatusEvent(devIndex, true);
    onExchangeProg();
    QQueue<noxSerialPortQueryItem> &queue = m_queryQueues[devIndex];
    if (!m_dataQueues.value(devIndex).isEmpty()) {
        queue.enqueue(query);
        return;
    }
    enqueueOnce(queue, query);
    if (queue.size() == 1)
        startQuery(devIndex);
}

void NOXSerialPort::sendRecQuery(int devIndex, quint8 address, quint16 size, bool showPr,
                                 noxQueryMode qMode)
{
    sendDevQuery(devIndex, {address, size, showPr, qMode, true, false});
}

void NOXSerialPort::sendRecQuery(int devIndex, noxSerialPortQueryItem query)
{
    query.rec = true;
    sendDevQuery(devIndex, query);
}

void NOXSerialPort::sendWordQuery(int devIndex, quint8 address, bool showPr, noxQueryMode qMode)
{
    sendDevQuery(devIndex, {address, wordSize, showPr, qMode, false, true});
}

void NOXSerialPort::sendWordQuery(int devIndex, noxSerialPortQueryItem query)
{
    query.size = wordSize;
    query.word = true;
    sendDevQuery(devIndex, query);
}

void NOXSerialPort::sendDevData(int devIndex, noxSerialPortDataItem data)
{
    if (!m_workers.contains(devIndex) || data.data.isEmpty())
        return;
    emit blockStatusEvent(devIndex, true);
    QQueue<noxSerialPortDataItem> &queue = m_dataQueues[devIndex];
    enqueueOnce(queue, data);
    if (queue.size() == 1)
        startData(devIndex);
}

void NOXSerialPort::sendDevData(int devIndex, QByteArray *buf, quint8 address, bool showPr,
                                noxQueryMode qMode)
{
    sendDevData(devIndex, dataItem(*buf, address, showPr, qMode));
}

void NOXSerialPort::sendDevData(int devIndex, QByteArray buf, quint8 address, bool showPr,
                                noxQueryMode qMode)
{
    sendDevData(devIndex, dataItem(buf, address, showPr, qMode));
}

void NOXSerialPort::sendDevWord(int devIndex, noxSerialPortDataItem data)
{
    data.word = true;
    sendDevData(devIndex, data);
}

void NOXSerialPort::sendDevWord(int devIndex, QByteArray *buf, quint8 address, bool showPr,
                                noxQueryMode qMode)
{
    sendDevWord(devIndex, dataItem(*buf, address, showPr, qMode));
}

void NOXSerialPort::sendDevWord(int devIndex, QByteArray buf, quint8 address, bool showPr,
                                noxQueryMode qMode)
{
    sendDevWord(devIndex, dataItem(buf, address, showPr, qMode));
}

/**
 * Hands the head of the read queue to the worker, unless it has it already, or has a write: the two
 * would begin in an order of chance, and what the read says may be what the write changes.
 */
void NOXSerialPort::startQuery(int devIndex)
{
    if (isExchanging(devIndex))
        return;
    m_queryHandedOver.insert(devIndex);
    emit readyDevQuery(devIndex, m_queryQueues[devIndex].head());
}

void NOXSerialPort::startData(int devIndex)
{
    if (m_dataHandedOver.contains(devIndex))
        return;
    m_dataHandedOver.insert(devIndex);
    emit readyDevData(devIndex, m_dataQueues[devIndex].head());
}

bool NOXSerialPort::isExchanging(int devIndex) const
{
    return m_queryHandedOver.contains(devIndex) || m_dataHandedOver.contains(devIndex);
}

/** Chooses a device's next exchange: a write, else a read, else its stream flows again. */
void NOXSerialPort::startNext(int devIndex)
{
    // whoever received a result may have removed the device
    if (!m_workers.contains(devIndex))
        return;
    if (!m_dataQueues.value(devIndex).isEmpty())
        startData(devIndex);
    else if (!m_queryQueues.value(devIndex).isEmpty())
        startQuery(devIndex);
    else if (!isExchanging(devIndex)) // what the worker still has may be forgotten, but not done
        emit blockStatusEvent(devIndex, false);
}

void NOXSerialPort::readDevReply(QByteArray *buf, quint8 address)
{
    std::unique_ptr<QByteArray> reply(buf);
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    m_queryHandedOver.remove(devIndex);
    if (!m_queryAbandoned.remove(devIndex) && !m_queryQueues[devIndex].isEmpty())
        m_queryQueues[devIndex].dequeue();
    onExchangeProg();

    if (isBlocked(devIndex)) {
        m_heldReplies[devIndex].enqueue({address, reply.release()});
    } else {
        emit readyDevReply(devIndex, reply.get(), address);
        emit readyDevReply(devIndex, *reply, address);
        if (isEmptyQueryQueue(devIndex))
            emit resultDevQuery(devIndex, true);
        if (isReadAllQuery())
            emit allDevQueryComplite();
    }
    startNext(devIndex);
}

void NOXSerialPort::onSendQueryError(quint16 code, noxSerialPortQueryItem query)
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    m_queryHandedOver.remove(devIndex);
    dropFailed(m_queryQueues[devIndex], query.qMode, m_queryAbandoned.remove(devIndex));
    onExchangeProg();
    emit onDevQueryError(devIndex, code + queryCodeOffset, query);
    emitErrorEvent(devIndex, code + queryCodeOffset);
    if (isReadAllQuery())
        emit allDevQueryComplite();
    if (m_queryQueues.value(devIndex).isEmpty())
        emit resultDevQuery(devIndex, false);
    startNext(devIndex);
}

void NOXSerialPort::doneDevSend()
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    m_dataHandedOver.remove(devIndex);
    if (m_dataAbandoned.remove(devIndex)) {
        startNext(devIndex);
        return;
    }
    if (m_dataQueues.value(devIndex).isEmpty())
        return;
    const noxSerialPortDataItem done = m_dataQueues[devIndex].dequeue();
    onExchangeProg();
    emit doneSendDevData(devIndex, done);
    const bool moreWrites = !m_dataQueues.value(devIndex).isEmpty();
    startNext(devIndex);
    if (!moreWrites)
        emit doneSend(devIndex);
    if (isSendAllData())
        emit allDevDataSend();
}

void NOXSerialPort::onSendDataError(quint16 code, noxSerialPortDataItem data)
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    m_dataHandedOver.remove(devIndex);
    dropFailed(m_dataQueues[devIndex], data.qMode, m_dataAbandoned.remove(devIndex));
    onExchangeProg();
    emit onDevDataError(devIndex, code + dataCodeOffset, data);
    emitErrorEvent(devIndex, code + dataCodeOffset);
    if (isSendAllData())
        emit allDevDataSend();
    if (!m_dataQueues.value(devIndex).isEmpty())
        emit resultDevData(devIndex, false);
    startNext(devIndex);
}

void NOXSerialPort::onError(quint16 code)
{
    emitErrorEvent(senderIndex(), code);
}

void NOXSerialPort::emitErrorEvent(int devIndex, quint16 code)
{
    if (!m_workers.contains(devIndex))
        return;
    const QString msg = m_errorTexts.value(code, QStringLiteral("Unknown error"));
    emit onDevError(devIndex, code, msg);
    emit onDevError(devIndex, code);
    emit onDevError(devIndex);
}

void NOXSerialPort::readDevMeas(double meas, quint8 ch, char dim)
{
    const int devIndex = senderIndex();
    if (devIndex >= 0 && !isBlocked(devIndex))
        emit readyDevMeas(devIndex, meas, ch, dim);
}

void NOXSerialPort::readDevSource(QByteArray buf)
{
    const int devIndex = senderIndex();
    if (devIndex >= 0 && !isBlocked(devIndex))
        emit readyDevSource(devIndex, buf);
}

void NOXSerialPort::readDevStatus(QStringList lStr)
{
    const int devIndex = senderIndex();
    if (devIndex >= 0 && !isBlocked(devIndex))
        emit readyDevStatus(devIndex, lStr);
}

void NOXSerialPort::setDevProgress(int progress, int maxProgress, quint8 address)
{
    const int devIndex = senderIndex();
    if (devIndex >= 0)
        emit setProgress(devIndex, progress, maxProgress, address);
}

void NOXSerialPort::devMeasTimeout(bool isConnect)
{
    const int devIndex = senderIndex();
    if (devIndex >= 0)
        emit onMeasTimeOut(devIndex, isConnect);
}

void NOXSerialPort::blockEventDev(int devIndex, bool b)
{
    if (!m_workers.contains(devIndex))
        return;
    if (b) {
        m_blockedDevices.append(devIndex);
        return;
    }
    if (!isBlocked(devIndex))
        return;
    while (!m_heldReplies.value(devIndex).isEmpty()) {
        const devDataReply reply = m_heldReplies[devIndex].dequeue();
        // out of the queue first: a receiver may remove the device with all that is held
        const std::unique_ptr<QByteArray> buf(reply.buf);
        emit readyDevReply(devIndex, *buf, reply.address);
        emit readyDevReply(devIndex, buf.get(), reply.address);
    }
    if (isReadAllQuery())
        emit allDevQueryComplite();
    m_blockedDevices.removeOne(devIndex);
}

void NOXSerialPort::blockEventAll(bool b)
{
    const auto devices = m_workers.keys();
    for (int devIndex : devices)
        blockEventDev(devIndex, b);
}

/** The device of the worker whose signal is being received; -1 when it has been purged. */
int NOXSerialPort::senderIndex() const
{
    return m_workers.key(static_cast<noxSerialPortThread *>(sender()), -1);
}
