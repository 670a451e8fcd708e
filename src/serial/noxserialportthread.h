#pragma once

#include "serial/bytedialogue.h"
#include "serial/exchangeitems.h"
#include "serial/linkschedule.h"
#include "serial/streamparser.h"

#include <QByteArray>
#include <QSerialPort>
#include <QStringList>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>

/**
 * Serves one instrument on one serial port: parses its measurement stream, carries out exchanges
 * one at a time with retries, and watches the port.
 *
 * The object is moved to the thread that it is itself, so its slots run in the worker thread and
 * its port and timers live there. Only the constructor and destructor, setTiming(),
 * requestStop(), index(), name() and the inherited thread control may be called from outside; the
 * rest is reached by queued signals.
 * Every slot but rm() ignores calls for another device.
 */
class noxSerialPortThread : public QThread
{
    Q_OBJECT
public:
    noxSerialPortThread(int devIndex, const QString &portName, char devType = 0,
                        int baudRate = defaultBaudRate, quint8 measTimeout = defaultMeasTimeout);
    ~noxSerialPortThread() override;

    /** The waits of the link; before start(). */
    void setTiming(const LinkTiming &newTiming) { m_timing = newTiming; }

    /** Asks every wait to give up and ends the event loop. From any thread. */
    void requestStop();

    int index() const { return m_devIndex; }
    QString name() const { return m_portName; }

signals:
    /** Each token of the stream, with a space appended. */
    void readySource(QByteArray buf);
    /** A measurement: value, channel from 1, unit character. */
    void readyMeas(double meas, quint8 ch, char dim);
    /** A token that carried a status list. */
    void readyStatus(QStringList lStr);
    /** Progress of an exchange that shows it: -1 busy, then bytes done of all; 0 of 0 ends it. */
    void setProgress(int progress, int maxProgress, quint8 address);
    /** Not fired. */
    void readyQuery(QByteArray buf, quint8 address);
    /** A read has finished; the receiver takes `buf` over. */
    void readyQuery(QByteArray *buf, quint8 address);
    /** A read has failed for good: 10, 20, 30 or 40. */
    void onSendQueryError(quint16 code, noxSerialPortQueryItem query);
    /** A write has failed for good: the same codes. */
    void onSendDataError(quint16 code, noxSerialPortDataItem data);
    /** The port failed: 255 minus its error. All but 252 and 254 of a retry end the worker. */
    void onError(quint16 code);
    /** Not fired. */
    void onDevError(quint16 code);
    /** A write has finished. */
    void doneSend();
    /** The stream was silent for too long; true when the port could be reopened. */
    void onMeasTimeout(bool isConnect);

public slots:
    /** Accepts a read when none is in progress, else drops it; starts it after the queue delay. */
    void sendQuery(int devIndex, noxSerialPortQueryItem query);
    /** The same for a write. */
    void sendData(int devIndex, noxSerialPortDataItem data);
    /** The command byte that opens a transfer. */
    void setDevType(int devIndex, char devType);
    /** The period of the watchdog in seconds. */
    void setMeasTimeout(int devIndex, quint8 sec);
    /** The three long delays in ms. */
    void setDelayTime(int devIndex, quint16 init = 2000, quint16 queue = 5000,
                      quint16 attempt = 3000);
    /** Holds the port's signals back (true), so that exchanges have the line to themselves. */
    void blockStatusEvent(int devIndex, bool b);
    /** Ends the worker. */
    void rm();

protected:
    void run() override;

private slots:
    void readyRead();
    void sendNextQuery();
    void sendNextData();
    void onTimerReconnect();
    void onPortError(QSerialPort::SerialPortError error);
    void lookForLostPort();

private:
    void sendNextQueryData();
    void sendNextQueryRec();
    void sendNextQueryWord();
    void sendNextDataSync();
    void sendNextDataWord();

    void assertWorkerThread() const { Q_ASSERT(QThread::currentThread() == this); }

    /** Where in the measurement stream the next byte stands. */
    enum class StreamStart { Anew, Anywhere };

    /** The read, or the write, in progress; its address is `noBlockAddress` when there is none. */
    template<typename Item>
    struct Current {
        Item item;
        quint8 attempts = 0; ///< those that have failed
        Current() { item.address = noBlockAddress; }
    };
    using Start = void (noxSerialPortThread::*)();

    bool reConnect();
    void endExchange(StreamStart start);
    void publish(const StreamToken &token);
    bool mayGoOn();
    void finishQuery(LinkResult result, ExchangeKind kind, const QByteArray &reply);
    void finishData(LinkResult result);
    template<typename Item>
    void accept(Current<Item> &current, const Item &item, Start start);
    template<typename Item, typename Announce>
    void settle(Current<Item> &current, LinkResult result, ExchangeKind kind, Start start,
                Announce announce);
    void showProgress(bool show, int progress, int maxProgress, quint8 address);
    ByteDialogue::Progress progressOf(bool show, quint8 address);
    void scheduleStart(int baseDelayMs, Start start);
    void scheduleRetry(RetryStep::Action action, Start start);

    std::unique_ptr<QSerialPort> m_port;
    std::unique_ptr<ByteDialogue> m_dialogue; ///< on `m_port`; it remembers what it wrote last
    int m_baudRate;
    int m_devIndex;
    char m_devType;
    quint8 m_measTimeout; ///< seconds
    LinkTiming m_timing;
    std::atomic<bool> m_running{false};
    Current<noxSerialPortQueryItem> m_query;
    Current<noxSerialPortDataItem> m_data;
    std::unique_ptr<QTimer> m_watchdogTimer;
    std::unique_ptr<QTimer> m_lostPortTimer; ///< looks at a port whose signals are held back
    StreamParser m_parser;                   ///< holds the unparsed tail of the stream
    QString m_portName;
    bool m_exchanging = false; ///< an exchange reads the port itself; the parser stays out
};
