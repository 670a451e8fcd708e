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
    const auto devices = workers.keys();
    for (int devIndex : devices) {
        rmDev(devIndex);
        dropHeldReplies(devIndex);
    }
    // a worker that outlived its removal time still has to end before it may be deleted
    qDeleteAll(workers);
}

int NOXSerialPort::addDev(QString portName, char devType, int baudRate, quint8 measTimeout)
{
    if (workers.size() >= mostDevices)
        return -1;
    const SerialPortEntry entry = PortCatalog::current().find(portName);
    if (entry.name.isEmpty() || entry.busy)
        return -1;

    int devIndex = 0;
    while (workers.contains(devIndex))
        ++devIndex;
    auto *worker = new noxSerialPortThread(devIndex, portName, devType, baudRate, measTimeout);
    worker->setTiming(timing);
    workers.insert(devIndex, worker);
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

    connect(this, &Self::readyDevQuery, worker, &Worker::sendQuery);
    connect(this, &Self::readyDevData, worker, &Worker::sendData);
    connect(this, QOverload<int, bool>::of(&Self::blockStatusEvent), worker,
            &Worker::blockStatusEvent);
    connect(this, &Self::onSetDevType, worker, &Worker::setDevType);
    connect(this, &Self::onSetMeasTimeout, worker, &Worker::setMeasTimeout);
    connect(this, &Self::onSetDelayTime, worker, &Worker::setDelayTime);
}

void NOXSerialPort::rmDev(int devIndex)
{
    // called again while its own loop runs, it has nothing to add
    if (!workers.contains(devIndex) || removalWaits.contains(devIndex))
        return;
    const bool wasReadAll = isReadAllQuery();
    const bool wasSentAll = isSendAllData();

    QEventLoop loop;
    removalWaits.insert(devIndex, &loop);
    QTimer::singleShot(removalTimeoutMs, &loop, &QEventLoop::quit);
    workers.value(devIndex)->requestStop();
    // Called while an event is delivered, the loop would sleep over those that wait behind it (so
    // does glib's dispatcher), and one of them may tell that the worker has ended already.
    QAbstractEventDispatcher::instance()->wakeUp();
    loop.exec();
    removalWaits.remove(devIndex);

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
    const std::unique_ptr<noxSerialPortThread> worker(workers.value(devIndex));
    worker->disconnect();
    disconnect(worker.get());

    queryQueues.remove(devIndex);
    dataQueues.remove(devIndex);
    for (QSet<int> *state : {&queryHandedOver, &dataHandedOver, &queryAbandoned, &dataAbandoned})
        state->remove(devIndex);
    onExchangeProg();
    dropHeldReplies(devIndex);
    blockedDevices.removeAll(devIndex);

    workers.remove(devIndex);
    if (QEventLoop *loop = removalWaits.value(devIndex))
        loop->quit();
}

void NOXSerialPort::emptyQueues(int devIndex)
{
    if (!workers.contains(devIndex))
        return;
    const bool wasReadAll = isReadAllQuery();
    const bool wasSentAll = isSendAllData();
    queryQueues[devIndex].clear();
    dataQueues[devIndex].clear();
    dropHeldReplies(devIndex);
    if (queryHandedOver.contains(devIndex))
        queryAbandoned.insert(devIndex);
    if (dataHandedOver.contains(devIndex))
        dataAbandoned.insert(devIndex);
    onExchangeProg();
    announceEmptied(wasReadAll, wasSentAll);
}

void NOXSerialPort::dropHeldReplies(int devIndex)
{
    const auto replies = heldReplies.take(devIndex);
    for (const devDataReply &reply : replies)
        delete reply.buf;
}

void NOXSerialPort::setDevType(int devIndex, char devType)
{
    if (workers.contains(devIndex))
        emit onSetDevType(devIndex, devType);
}

QString NOXSerialPort::getPortName(int devIndex) const
{
    const noxSerialPortThread *worker = workers.value(devIndex);
    return worker ? worker->name() : QStringLiteral("-");
}

bool NOXSerialPort::isEmptyQueryQueue(int devIndex) const
{
    const auto queue = queryQueues.constFind(devIndex);
    return queue != queryQueues.constEnd() && queue->isEmpty();
}

bool NOXSerialPort::isEmptyDataQueue(int devIndex) const
{
    const auto queue = dataQueues.constFind(devIndex);
    return queue != dataQueues.constEnd() && queue->isEmpty();
}

bool NOXSerialPort::isSendAllData() const
{
    return allEmpty(dataQueues);
}

bool NOXSerialPort::isReadAllQuery() const
{
    return allEmpty(queryQueues) && allEmpty(heldReplies);
}

void NOXSerialPort::onExchangeProg()
{
    const int pending = pendingItems(queryQueues) + pendingItems(dataQueues);
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
    if (!workers.contains(devIndex) || query.size == 0)
        return;
    emit blockStatusEvent(devIndex, true);
    onExchangeProg();
    QQueue<noxSerialPortQueryItem> &queue = queryQueues[devIndex];
    if (!dataQueues.value(devIndex).isEmpty()) {
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
    if (!workers.contains(devIndex) || data.data.isEmpty())
        return;
    emit blockStatusEvent(devIndex, true);
    QQueue<noxSerialPortDataItem> &queue = dataQueues[devIndex];
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

/** Hands the head of the read queue to the worker, unless it has it already. */
void NOXSerialPort::startQuery(int devIndex)
{
    if (queryHandedOver.contains(devIndex))
        return;
    queryHandedOver.insert(devIndex);
    emit readyDevQuery(devIndex, queryQueues[devIndex].head());
}

void NOXSerialPort::startData(int devIndex)
{
    if (dataHandedOver.contains(devIndex))
        return;
    dataHandedOver.insert(devIndex);
    emit readyDevData(devIndex, dataQueues[devIndex].head());
}

/** Chooses a device's next exchange: a write, else a read, else its stream flows again. */
void NOXSerialPort::startNext(int devIndex)
{
    // whoever received a result may have removed the device
    if (!workers.contains(devIndex))
        return;
    if (!dataQueues.value(devIndex).isEmpty())
        startData(devIndex);
    else if (!queryQueues.value(devIndex).isEmpty())
        startQuery(devIndex);
    else
        emit blockStatusEvent(devIndex, false);
}

void NOXSerialPort::readDevReply(QByteArray *buf, quint8 address)
{
    std::unique_ptr<QByteArray> reply(buf);
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    queryHandedOver.remove(devIndex);
    if (!queryAbandoned.remove(devIndex) && !queryQueues[devIndex].isEmpty())
        queryQueues[devIndex].dequeue();
    onExchangeProg();

    if (isBlocked(devIndex)) {
        heldReplies[devIndex].enqueue({address, reply.release()});
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
    queryHandedOver.remove(devIndex);
    dropFailed(queryQueues[devIndex], query.qMode, queryAbandoned.remove(devIndex));
    onExchangeProg();
    emit onDevQueryError(devIndex, code + queryCodeOffset, query);
    emitErrorEvent(devIndex, code + queryCodeOffset);
    if (isReadAllQuery())
        emit allDevQueryComplite();
    if (queryQueues.value(devIndex).isEmpty())
        emit resultDevQuery(devIndex, false);
    startNext(devIndex);
}

void NOXSerialPort::doneDevSend()
{
    const int devIndex = senderIndex();
    if (devIndex < 0)
        return;
    dataHandedOver.remove(devIndex);
    if (dataAbandoned.remove(devIndex)) {
        startNext(devIndex);
        return;
    }
    if (dataQueues.value(devIndex).isEmpty())
        return;
    const noxSerialPortDataItem done = dataQueues[devIndex].dequeue();
    onExchangeProg();
    emit doneSendDevData(devIndex, done);
    const bool moreWrites = !dataQueues.value(devIndex).isEmpty();
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
    dataHandedOver.remove(devIndex);
    dropFailed(dataQueues[devIndex], data.qMode, dataAbandoned.remove(devIndex));
    onExchangeProg();
    emit onDevDataError(devIndex, code + dataCodeOffset, data);
    emitErrorEvent(devIndex, code + dataCodeOffset);
    if (isSendAllData())
        emit allDevDataSend();
    if (!dataQueues.value(devIndex).isEmpty())
        emit resultDevData(devIndex, false);
    startNext(devIndex);
}

void NOXSerialPort::onError(quint16 code)
{
    emitErrorEvent(senderIndex(), code);
}

void NOXSerialPort::emitErrorEvent(int devIndex, quint16 code)
{
    if (!workers.contains(devIndex))
        return;
    const QString msg = errorTexts.value(code, QStringLiteral("Unknown error"));
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
    if (!workers.contains(devIndex))
        return;
    if (b) {
        blockedDevices.append(devIndex);
        return;
    }
    if (!isBlocked(devIndex))
        return;
    while (!heldReplies.value(devIndex).isEmpty()) {
        const devDataReply reply = heldReplies[devIndex].dequeue();
        // out of the queue first: a receiver may remove the device with all that is held
        const std::unique_ptr<QByteArray> buf(reply.buf);
        emit readyDevReply(devIndex, *buf, reply.address);
        emit readyDevReply(devIndex, buf.get(), reply.address);
    }
    if (isReadAllQuery())
        emit allDevQueryComplite();
    blockedDevices.removeOne(devIndex);
}

void NOXSerialPort::blockEventAll(bool b)
{
    const auto devices = workers.keys();
    for (int devIndex : devices)
        blockEventDev(devIndex, b);
}

/** The device of the worker whose signal is being received; -1 when it has been purged. */
int NOXSerialPort::senderIndex() const
{
    return workers.key(static_cast<noxSerialPortThread *>(sender()), -1);
}
