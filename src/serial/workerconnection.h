#pragma once

#include "serial/linkdevices.h"
#include "serial/noxserialport.h"
#include "serial/noxserialportthread.h"

// How signals pass between the multiplexer and the worker of a device, each in its own thread.

/**
 * Connects what a worker streams with a slot of the multiplexer, which gets it under the worker's
 * index, unless its device is blocked or has gone. For each token sender() would walk over the
 * connections of all workers.
 */
template<typename... Arguments>
void connectStream(noxSerialPortThread *worker, void (noxSerialPortThread::*signal)(Arguments...),
                   NOXSerialPort *port, void (NOXSerialPort::*slot)(int, Arguments...),
                   const IndexOwner &owner)
{
    const auto pass = [=](Arguments... arguments) {
        const LinkDevice *const device = owner.device();
        if (device && device->blocked == 0)
            (port->*slot)(owner.index(), arguments...);
    };
    QObject::connect(worker, signal, port, pass);
}

/**
 * Connects a signal of the multiplexer with the slot of a worker. Only what is about the worker's
 * own device is queued: an event for each of all workers would hold the GUI thread up.
 */
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
