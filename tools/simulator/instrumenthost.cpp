#include "simulator/instrumenthost.h"

#include <future>

template<typename Action>
void InstrumentHost::inThread(Action action)
{
    Q_ASSERT(QThread::currentThread() != &m_thread);
    // Not Qt's own blocking call: the thread sanitizer does not see what its semaphore orders.
    std::promise<void> done;
    const auto act = [&action, &done] {
        action();
        done.set_value();
    };
    QMetaObject::invokeMethod(&m_context, act, Qt::QueuedConnection);
    done.get_future().wait();
}

template<typename Action>
void InstrumentHost::with(const QString &portName, Action action)
{
    inThread([&] {
        const auto found = m_instruments.find(portName);
        if (found != m_instruments.end())
            action(*found->second);
    });
}

InstrumentHost::InstrumentHost()
{
    m_context.moveToThread(&m_thread);
    m_thread.start();
}

InstrumentHost::~InstrumentHost()
{
    inThread([this] { m_instruments.clear(); });
    m_thread.quit();
    m_thread.wait();
}

QString InstrumentHost::add(const SimulatedInstrumentOptions &options, const QString &portName)
{
    QString path;
    inThread([&] {
        m_instruments.erase(portName);
        auto instrument = std::make_unique<SimulatedInstrument>(options, portName);
        if (!instrument->plugIn())
            return;
        path = instrument->devicePath();
        m_instruments.emplace(portName, std::move(instrument));
    });
    return path;
}

void InstrumentHost::remove(const QString &portName)
{
    inThread([&] { m_instruments.erase(portName); });
}

void InstrumentHost::plugIn(const QString &portName)
{
    with(portName, [](SimulatedInstrument &instrument) { instrument.plugIn(); });
}

void InstrumentHost::unplug(const QString &portName)
{
    with(portName, [](SimulatedInstrument &instrument) { instrument.unplug(); });
}

QString InstrumentHost::devicePath(const QString &portName)
{
    QString path;
    with(portName, [&](SimulatedInstrument &instrument) {
        if (instrument.isPluggedIn())
            path = instrument.devicePath();
    });
    return path;
}

void InstrumentHost::setFaults(const QString &portName, const FaultPlan &faults)
{
    with(portName, [&](SimulatedInstrument &instrument) { instrument.setFaults(faults); });
}

void InstrumentHost::setStreaming(const QString &portName, bool streaming)
{
    with(portName, [&](SimulatedInstrument &instrument) { instrument.setStreaming(streaming); });
}

void InstrumentHost::sendRaw(const QString &portName, const QByteArray &bytes)
{
    with(portName, [&](SimulatedInstrument &instrument) { instrument.sendRaw(bytes); });
}

QByteArray InstrumentHost::block(const QString &portName, quint8 address)
{
    QByteArray bytes;
    with(portName,
         [&](SimulatedInstrument &instrument) { bytes = instrument.memory().block(address); });
    return bytes;
}

QByteArray InstrumentHost::clock(const QString &portName)
{
    QByteArray bytes;
    with(portName, [&](SimulatedInstrument &instrument) { bytes = instrument.memory().clock(); });
    return bytes;
}

void InstrumentHost::write(const QString &portName, quint8 address, const QByteArray &bytes)
{
    with(portName,
         [&](SimulatedInstrument &instrument) { instrument.memory().write(address, bytes); });
}

qint64 InstrumentHost::tokensSent(const QString &portName)
{
    qint64 count = 0;
    with(portName, [&](SimulatedInstrument &instrument) { count = instrument.tokensSent(); });
    return count;
}

QVector<ExchangeEvent> InstrumentHost::exchanges(const QString &portName)
{
    QVector<ExchangeEvent> events;
    with(portName, [&](SimulatedInstrument &instrument) {
        events = instrument.exchanges();
        events.detach(); // the instrument goes on writing to its own
    });
    return events;
}

void InstrumentHost::clearExchanges(const QString &portName)
{
    with(portName, [](SimulatedInstrument &instrument) { instrument.clearExchanges(); });
}
