#include "support/workerbench.h"

#include <QElapsedTimer>

#include <memory>

WorkerBench::WorkerBench(const QString &portName, const LinkTiming &timing)
    : worker(devIndex, portName)
{
    using Worker = noxSerialPortThread;
    registerExchangeItems();
    worker.setTiming(timing);
    connect(&worker, &Worker::readyMeas, this, [this] { ++measurements; });
    connect(&worker, QOverload<QByteArray *, quint8>::of(&Worker::readyQuery), this,
            [this](QByteArray *buf, quint8 address) {
                const std::unique_ptr<QByteArray> reply(buf);
                lines << QString("reply @%1 %2 bytes").arg(address).arg(reply->size());
            });
    connect(&worker, &Worker::doneSend, this, [this] { lines << "written"; });
    connect(&worker, &Worker::onSendQueryError, this,
            [this](quint16 code) { lines << QString("query error %1").arg(code); });
    connect(&worker, &Worker::onSendDataError, this,
            [this](quint16 code) { lines << QString("write error %1").arg(code); });
    connect(&worker, &Worker::onError, this,
            [this](quint16 code) { lines << QString("port error %1").arg(code); });
    connect(&worker, &Worker::onMeasTimeout, this, [this](bool reopened) {
        lines << QString("watchdog %1").arg(reopened ? "reopened" : "failed");
    });
    worker.start();
}

qint64 WorkerBench::stopMs()
{
    QElapsedTimer clock;
    clock.start();
    worker.requestStop();
    worker.wait();
    return clock.elapsed();
}
