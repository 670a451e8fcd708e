#pragma once

#include "serial/noxserialportthread.h"

#include <QObject>
#include <QStringList>

/**
 * One link worker alone, without the multiplexer that would hide what it says: its signals as lines
 * in the order of their firing, gathered in the thread of the bench.
 */
class WorkerBench : public QObject
{
    Q_OBJECT
public:
    static constexpr int devIndex = 3;

    WorkerBench(const QString &portName, const LinkTiming &timing);

    void query(const noxSerialPortQueryItem &item, int index = devIndex)
    {
        post([=] { worker.sendQuery(index, item); });
    }
    void write(const noxSerialPortDataItem &item, int index = devIndex)
    {
        post([=] { worker.sendData(index, item); });
    }
    /** Holds the stream back (true), or lets it flow. */
    void hold(bool held, int index = devIndex)
    {
        post([=] { worker.blockStatusEvent(index, held); });
    }
    void setWatchdogSeconds(quint8 seconds)
    {
        post([=] { worker.setMeasTimeout(devIndex, seconds); });
    }

    /** Asks the worker to stop and waits until its thread has ended; how long that took. */
    qint64 stopMs();

    noxSerialPortThread worker;
    QStringList lines;
    int measurements = 0;

private:
    /** Calls in the thread of the worker. */
    template<typename Call>
    void post(Call call)
    {
        QMetaObject::invokeMethod(&worker, call);
    }
};
