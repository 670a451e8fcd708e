#include "support/instrumentbench.h"

#include "serial/portcatalog.h"

#include <QDeadlineTimer>
#include <QThread>

#include <algorithm>

namespace
{

constexpr int steadyChannels = 8;
constexpr int patienceMs = 5000;
constexpr double steadyRate = 40.0; // tokens per second

ThermometrySignal steadySignal()
{
    ThermometrySignal signal;
    signal.startCelsius = signal.setPointCelsius = 21.5432;
    signal.channelSpreadMillikelvin = 11111.1;
    signal.noiseMillikelvin = 0.0;
    return signal;
}

} // namespace

InstrumentBench::InstrumentBench()
{
    PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(directory.path()));
}

InstrumentBench::~InstrumentBench()
{
    PortCatalog::setCurrent(nullptr);
}

SimulatedInstrumentOptions InstrumentBench::steadyInstrument() const
{
    SimulatedInstrumentOptions options;
    options.signal = steadySignal();
    options.tokensPerSecond = steadyRate;
    options.portsDirectory = directory.path();
    options.identity.loggerMarks = 2;
    return options;
}

bool InstrumentBench::add(const QString &portName, const SimulatedInstrumentOptions &options)
{
    const bool added = !host.add(options, portName).isEmpty();
    awaitFree(portName);
    return added;
}

void InstrumentBench::plugIn(const QString &portName)
{
    host.plugIn(portName);
    awaitFree(portName);
}

/** Numbers of terminals are used again: a link, of another process too, which has lost this one may
 *  not have closed it yet. */
void InstrumentBench::awaitFree(const QString &portName)
{
    const QDeadlineTimer patience(patienceMs);
    while (PortCatalog::current().find(portName).busy && !patience.hasExpired())
        QThread::msleep(5);
}

QVector<int> InstrumentBench::blocksAt(const QString &portName,
                                       std::initializer_list<ExchangeEvent::Kind> kinds)
{
    QVector<int> addresses;
    const auto events = host.exchanges(portName);
    for (const ExchangeEvent &event : events)
        if (std::find(kinds.begin(), kinds.end(), event.kind) != kinds.end())
            addresses << event.address;
    return addresses;
}

FaultPlan faultPlan(int FaultPlan::*fault, int strikes)
{
    FaultPlan faults;
    faults.*fault = strikes;
    return faults;
}

bool isSteadyMeasurement(const ChannelValue &measurement)
{
    if (measurement.first < 1 || measurement.first > steadyChannels)
        return false;
    const double sent = signalTemperature(steadySignal(), measurement.first, 0.0);
    // as far as a token tells it: four decimals
    return qAbs(measurement.second - sent) < 0.0001;
}

LinkTiming shortTiming()
{
    LinkTiming timing;
    timing.initDelay = 300;
    timing.queueDelay = 20;
    timing.attemptDelay = 200;
    timing.unitTimeout = 100;
    timing.confirmTimeout = 100;
    timing.commandPause = 10;
    timing.startBase = 50;
    timing.startSpread = 0;
    return timing;
}
