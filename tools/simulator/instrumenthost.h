#pragma once

#include "simulator/simulatedinstrument.h"

#include <QThread>

#include <map>
#include <memory>

/**
 * Runs simulated instruments in a thread of its own, so that a host under test may block.
 *
 * Instruments are addressed by their port name. Every call may come from any thread but the own
 * one, and returns when it has taken effect; for an unknown name it does nothing and returns an
 * empty value.
 */
class InstrumentHost
{
public:
    InstrumentHost();
    /** Pulls every plug and ends the thread. */
    ~InstrumentHost();
    Q_DISABLE_COPY(InstrumentHost)

    /** Adds an instrument and plugs it in; returns its device path (/dev/pts/N), empty on failure.
     *  An instrument of the same name is replaced. */
    QString add(const SimulatedInstrumentOptions &options, const QString &portName);
    void remove(const QString &portName);

    void plugIn(const QString &portName);
    void unplug(const QString &portName);
    /** Path of the terminal, which changes with each return of the plug; empty while it is out. */
    QString devicePath(const QString &portName);

    void setFaults(const QString &portName, const FaultPlan &faults);
    void setStreaming(const QString &portName, bool streaming);
    void sendRaw(const QString &portName, const QByteArray &bytes);

    /** The bytes that a read at `address` would be answered with now. */
    QByteArray block(const QString &portName, quint8 address);
    /** The 8 bytes last written to the instrument's clock. */
    QByteArray clock(const QString &portName);
    /** Changes the memory as a write of the host would. */
    void write(const QString &portName, quint8 address, const QByteArray &bytes);
    qint64 tokensSent(const QString &portName);
    QVector<ExchangeEvent> exchanges(const QString &portName);
    void clearExchanges(const QString &portName);

private:
    template<typename Action>
    void inThread(Action action);
    template<typename Action>
    void with(const QString &portName, Action action);

    QThread m_thread;
    QObject m_context;                                                     ///< lives in the thread
    std::map<QString, std::unique_ptr<SimulatedInstrument>> m_instruments; ///< of the thread
};
