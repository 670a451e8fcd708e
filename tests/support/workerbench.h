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

    void query(const noxSerialPortQueryItem &item, int index = devIndex);
    void write(const noxSerialPortDataItem &item, int index = devIndex);
    /** Holds the stream back (true), or lets it flow. */
    void hold(bool held, int index = devIndex);
    void setWatchdogSeconds(quint8 seconds);

    /** Asks the worker to stop and waits until its thread has ended; how long that took. */
    qint64 stopMs();

    noxSerialPortThread worker;
    QStringList lines;
    int measurements = 0;
};
