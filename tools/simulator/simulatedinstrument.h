#pragma once

#include "simulator/instrumentdialogue.h"
#include "simulator/instrumentmemory.h"
#include "simulator/linefaults.h"
#include "simulator/measurementstream.h"
#include "simulator/pseudoterminal.h"

#include <QObject>
#include <QTimer>

/** Everything that can be chosen about one simulated instrument. */
struct SimulatedInstrumentOptions {
    InstrumentIdentity identity;
    ThermometrySignal signal;
    DialogueSettings dialogue;
    FaultPlan faults;
    double tokensPerSecond = 4.0; ///< rate of the measurement stream; 0 or less: no stream
    bool streaming = true;        ///< whether the stream is on from the start
    bool paced = false;           ///< bytes leave at 9600 baud
    QString portsDirectory; ///< where the port's link is published; empty: `defaultPortsDirectory`
};

/** The directory `nox8/ports` of the user's runtime directory. */
QString defaultPortsDirectory();

/** The clock of all simulated instruments: monotonic, ms. */
qint64 simulatorClockMs();

/**
 * One instrument on a pseudo-terminal: dialogue, stream and plug.
 *
 * Lives in any thread with an event loop; all calls belong into that thread.
 */
class SimulatedInstrument : public QObject
{
    Q_OBJECT
public:
    /** `portName` is the name of the published link; the plug is out at first. */
    SimulatedInstrument(const SimulatedInstrumentOptions &options, const QString &portName,
                        QObject *parent = nullptr);

    /** Puts the plug in: a new terminal under the same port name; false if the system refuses. */
    bool plugIn();
    /** Pulls the plug: the host sees a hang-up, the port's link is gone. The memory stays. */
    void unplug();
    bool isPluggedIn() const { return m_line.isOpen(); }

    QString portName() const { return m_portName; }
    QString linkPath() const;
    /** /dev/pts/N while the plug is in. */
    QString devicePath() const { return m_line.devicePath(); }
    QString errorText() const { return m_line.errorText(); }

    /** Starts a fresh fault plan. */
    void setFaults(const FaultPlan &faults);
    /** Switches the measurement stream on or off. */
    void setStreaming(bool streaming);
    /** Sends `bytes` as they are, as if they were part of the stream; lost if nobody listens. */
    void sendRaw(const QByteArray &bytes) { m_line.send(bytes); }

    InstrumentMemory &memory() { return m_memory; }
    /** Complete tokens that have reached the line since the start. */
    qint64 tokensSent() const { return m_tokensSent; }
    /** The dialogues so far, step by step; the newest 65536 steps are kept. */
    QVector<ExchangeEvent> exchanges() const { return m_exchanges; }
    void clearExchanges() { m_exchanges.clear(); }

signals:
    /** The plug went in (true) or out (false). */
    void plugChanged(bool pluggedIn);

private:
    void receive(const QByteArray &bytes);
    void elapse();
    void conduct(const QByteArray &answer, bool wasBusy);
    void keepEvents();
    void scheduleUnplug();
    void resumeStream();
    void streamDue();
    void sendToken();
    double tokenPeriodMs() const { return 1000.0 / m_options.tokensPerSecond; }

    SimulatedInstrumentOptions m_options;
    QString m_portName;
    InstrumentMemory m_memory;
    InstrumentDialogue m_dialogue;
    MeasurementStream m_stream;
    LineFaults m_lineFaults;
    PseudoTerminal m_line;
    QTimer m_dialogueTimer;
    QTimer m_streamTimer;
    qint64 m_startedMs;
    double m_nextTokenMs = 0.0;
    bool m_tokenUnderway = false;
    qint64 m_tokensSent = 0;
    QVector<ExchangeEvent> m_exchanges;
};
