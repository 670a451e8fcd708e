#pragma once

#include "serial/linkdevices.h"
#include "serial/linkschedule.h"

#include <QObject>
#include <QStringList>

/**
 * The port multiplexer: the one object through which the program talks to its instruments.
 *
 * It keeps a worker per connected instrument under a `devIndex` (the smallest free number from 0),
 * queues reads and writes per instrument, hands them to the worker one at a time with writes
 * first, and passes on what the workers report. It lives in the GUI thread. Its signals to workers
 * carry a `devIndex`, and reach the worker of that index alone.
 */
class NOXSerialPort : public QObject
{
    Q_OBJECT
public:
    /** A reply held back while the events of its instrument are blocked. */
    using devDataReply = HeldReply;

    explicit NOXSerialPort(QObject *parent = nullptr);
    ~NOXSerialPort() override;

    /** Starts a worker on a port; its `devIndex`, or -1: port missing or busy, or 255 workers. */
    int addDev(QString portName, char devType = 0, int baudRate = defaultBaudRate,
               quint8 measTimeout = defaultMeasTimeout);
    /** Stops and removes a worker; spins a local event loop until it has ended, 5 s at most. */
    void rmDev(int devIndex);
    /** Removes all devices at the end of the program, in the time of one removal. A worker that
     *  hangs longer in its port's driver is left to the end of the process. */
    void rmAll();
    /** Sets the command byte of an instrument's transfers. */
    void setDevType(int devIndex, char devType);
    /** The port's name, "-" for an unknown device. */
    QString getPortName(int devIndex) const;
    /** The `devIndex` of every worker. */
    QList<int> devices() const { return m_devices.indices(); }
    /** True if the device has had a read, or its queues were emptied, and none is queued now. */
    bool isEmptyQueryQueue(int devIndex) const { return m_devices.hasReadAll(devIndex); }
    /** A read or a write of the device is queued, or in progress and not forgotten. */
    bool hasExchanges(int devIndex) const
    {
        return m_devices.hasQueries(devIndex) || m_devices.hasWrites(devIndex);
    }
    /** No device has a queued write. */
    bool isSendAllData() const { return m_devices.haveSentAll(); }
    /** No device has a queued read or a held reply. */
    bool isReadAllQuery() const { return m_devices.haveReadAll(); }
    /** Recomputes and announces the overall progress. */
    void onExchangeProg();

    /** The waits of workers added from now on. */
    void setLinkTiming(const LinkTiming &newTiming) { m_timing = newTiming; }

    /** True if the device has had a write, or its queues were emptied, and none is queued now. */
    bool isEmptyDataQueue(int devIndex) const { return m_devices.hasSentAll(devIndex); }
    /**
     * Forgets a device's queued reads, writes and held replies, for an instrument that moves to
     * another record. An exchange that its worker has begun is finished and announced, but changes
     * no queue; what is queued meanwhile waits for it.
     */
    void emptyQueues(int devIndex);

public slots:
    /** Queues a block read. */
    void sendDevQuery(int devIndex, quint8 address, quint16 size, bool showPr = false,
                      noxQueryMode qMode = noxQueryModeNormal)
    {
        sendDevQuery(devIndex, {address, size, showPr, qMode, false, false});
    }
    void sendDevQuery(int devIndex, noxSerialPortQueryItem query);
    /** Queues a read of 8-byte records. */
    void sendRecQuery(int devIndex, quint8 address, quint16 size, bool showPr = false,
                      noxQueryMode qMode = noxQueryModeNormal)
    {
        sendRecQuery(devIndex, {address, size, showPr, qMode, true, false});
    }
    void sendRecQuery(int devIndex, noxSerialPortQueryItem query);
    /** Queues a read of one 4-byte word. */
    void sendWordQuery(int devIndex, quint8 address, bool showPr = false,
                       noxQueryMode qMode = noxQueryModeNormal)
    {
        sendWordQuery(devIndex, {address, 0, showPr, qMode, false, true});
    }
    void sendWordQuery(int devIndex, noxSerialPortQueryItem query);
    /** Queues a block write; the caller keeps `buf`. */
    void sendDevData(int devIndex, noxSerialPortDataItem data);
    void sendDevData(int devIndex, QByteArray *buf, quint8 address, bool showPr = false,
                     noxQueryMode qMode = noxQueryModeNormal)
    {
        sendDevData(devIndex, *buf, address, showPr, qMode);
    }
    void sendDevData(int devIndex, QByteArray buf, quint8 address, bool showPr = false,
                     noxQueryMode qMode = noxQueryModeNormal)
    {
        sendDevData(devIndex, {address, buf, qMode, showPr, false});
    }
    /** Queues a write of one 4-byte word; the caller keeps `buf`. */
    void sendDevWord(int devIndex, noxSerialPortDataItem data);
    void sendDevWord(int devIndex, QByteArray *buf, quint8 address, bool showPr = false,
                     noxQueryMode qMode = noxQueryModeNormal)
    {
        sendDevWord(devIndex, *buf, address, showPr, qMode);
    }
    void sendDevWord(int devIndex, QByteArray buf, quint8 address, bool showPr = false,
                     noxQueryMode qMode = noxQueryModeNormal)
    {
        sendDevWord(devIndex, {address, buf, qMode, showPr, true});
    }
    /** Holds a device's replies back and drops its stream (true), or delivers what was held. */
    void blockEventDev(int devIndex, bool b);
    void blockEventAll(bool b);

signals:
    /** A raw token of the stream. */
    void readyDevSource(int devIndex, QByteArray buf);
    /** A measurement: value, channel from 1, unit character. */
    void readyDevMeas(int devIndex, double meas, quint8 ch, char dim);
    /** A status list of the stream. */
    void readyDevStatus(int devIndex, QStringList lStr);
    /** A reply; `buf` lives only until the receivers have returned. */
    void readyDevReply(int devIndex, QByteArray *buf, quint8 address);
    void readyDevReply(int devIndex, QByteArray buf, quint8 address);
    /** The device's read queue became empty: after a reply (true) or a failure (false). */
    void resultDevQuery(int devIndex, bool ok);
    /** No device has reads or held replies left. */
    void allDevQueryComplite();
    /** A write failed (false) and further ones wait. */
    void resultDevData(int devIndex, bool ok);
    /** No device has writes left. */
    void allDevDataSend();
    /** To the workers: start this read. */
    void readyDevQuery(int devIndex, noxSerialPortQueryItem query);
    /** To the workers: start this write. */
    void readyDevData(int devIndex, noxSerialPortDataItem data);
    /** Progress of one device's exchange, as its worker gives it. */
    void setProgress(int devIndex, int progress, int maxProgress, quint8 address);
    /** Overall progress in exchanges; 0 of 0 when a first one is queued, and when all are done. */
    void setProgress(int progress, int maxProgress);
    // five that nothing fires
    void stopEvent();
    void startEvent();
    void blockEvent(bool b);
    void blockEvent(int devIndex, bool b);
    void blockStatusEvent(bool b);
    /** To the workers: hold the stream back or let it flow. */
    void blockStatusEvent(int devIndex, bool b);
    /** A fault of the device: a port error, or a failed exchange with 100 or 200 added. */
    void onDevError(int devIndex);
    void onDevError(int devIndex, quint16 code);
    void onDevError(int devIndex, quint16 code, QString msg);
    /** A read failed for good: 110 to 140. */
    void onDevQueryError(int devIndex, quint16 code, noxSerialPortQueryItem query);
    /** A write failed for good: 210 to 240. */
    void onDevDataError(int devIndex, quint16 code, noxSerialPortDataItem data);
    /** The device's last queued write has been done. */
    void doneSend(int devIndex);
    /** One write has been done. */
    void doneSendDevData(int devIndex, noxSerialPortDataItem data);
    /** To the workers: settings. The last two are for tests; the program keeps the defaults. */
    void onSetDevType(int devIndex, char devType);
    void onSetMeasTimeout(int devIndex, quint8 sec);
    void onSetDelayTime(int devIndex, quint16 init = 2000, quint16 queue = 5000,
                        quint16 attempt = 3000);
    /** The device's stream was silent for too long; true when its port could be reopened. */
    void onMeasTimeOut(int devIndex, bool isConnect);

private slots:
    void readDevMeas(int devIndex, double meas, quint8 ch, char dim);
    void readDevSource(int devIndex, QByteArray buf);
    void readDevStatus(int devIndex, QStringList lStr);
    void readDevReply(QByteArray *buf, quint8 address);
    void setDevProgress(int progress, int maxProgress, quint8 address);
    void onError(quint16 code);
    void onSendQueryError(quint16 code, noxSerialPortQueryItem query);
    void onSendDataError(quint16 code, noxSerialPortDataItem data);
    void doneDevSend();
    void devMeasTimeout(bool isConnect);
    void purgeDevSerialPortThread();
    void emitErrorEvent(int devIndex, quint16 code);

private:
    int senderIndex() const { return m_devices.indexOf(sender()); }
    void removeWithin(int devIndex, int milliseconds);
    void connectWorker(noxSerialPortThread *worker);
    void startQuery(int devIndex, LinkDevice &device);
    void startData(int devIndex, LinkDevice &device);
    void startNext(int devIndex);
    void announceReply(int devIndex, const IndexOwner &owner, QByteArray *reply, quint8 address);
    void announceEmptied(bool wasReadAll, bool wasSentAll);

    static int progMax; ///< most exchanges pending since none was; of the whole process

    LinkDevices m_devices;
    LinkTiming m_timing;
};
