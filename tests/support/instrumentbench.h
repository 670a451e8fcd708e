#pragma once

#include "serial/linkschedule.h"
#include "simulator/instrumenthost.h"

#include <QHash>
#include <QPair>
#include <QTemporaryDir>
#include <QVector>

/** A channel (from 1) and its value, as one measurement gives them. */
using ChannelValue = QPair<int, double>;

/**
 * Simulated instruments on the ports of a temporary catalogue, which is in effect while the bench
 * stands. Build the links after it, so that they end before it.
 */
class InstrumentBench
{
public:
    InstrumentBench();
    ~InstrumentBench();
    Q_DISABLE_COPY(InstrumentBench)

    /**
     * An instrument of 8 channels whose readings never change and differ between any two channels,
     * so that a measurement that it did not send can be told.
     */
    SimulatedInstrumentOptions steadyInstrument() const;

    /** Plugs an instrument in; false if the system refuses. */
    bool add(const QString &portName, const SimulatedInstrumentOptions &options);
    bool add(const QString &portName) { return add(portName, steadyInstrument()); }

    /** Puts the plug of an instrument in again. */
    void plugIn(const QString &portName);

    /** The blocks of the steps of these kinds, in order. */
    QVector<int> blocksAt(const QString &portName,
                          std::initializer_list<ExchangeEvent::Kind> kinds);
    /** The blocks that the instrument has exchanged, in order. */
    QVector<int> exchanged(const QString &portName)
    {
        return blocksAt(portName, {ExchangeEvent::ReadCompleted, ExchangeEvent::WriteCompleted});
    }
    /** Address bytes that the instrument has received for a block. */
    int addressings(const QString &portName, quint8 address)
    {
        return blocksAt(portName, {ExchangeEvent::AddressReceived}).count(address);
    }

    InstrumentHost host;

private:
    void awaitFree(const QString &portName);

    QTemporaryDir directory;
};

/** A plan with one fault: `faultPlan(&FaultPlan::shortBlocks, 2)`. */
FaultPlan faultPlan(int FaultPlan::*fault, int strikes = FaultPlan::always);

/** Whether a steady instrument sends this measurement. */
bool isSteadyMeasurement(const ChannelValue &measurement);

/** Short waits without a random part; those of a unit leave a busy machine its time. */
LinkTiming shortTiming();
