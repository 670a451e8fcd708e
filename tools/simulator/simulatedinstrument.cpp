#include "simulator/simulatedinstrument.h"

#include <QStandardPaths>

#include <chrono>
#include <cmath>

namespace
{

constexpr int exchangesKept = 65536;
constexpr double longestLagMs = 500.0; // of the stream; what is missed beyond it is not made up
constexpr int unplugDelayMs = 30;      // lets the host read what was answered before

} // namespace

QString defaultPortsDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
           QStringLiteral("/nox8/ports");
}

qint64 simulatorClockMs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

SimulatedInstrument::SimulatedInstrument(const SimulatedInstrumentOptions &options,
                                         const QString &portName, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_portName(portName)
    , m_memory(options.identity)
    , m_dialogue(m_memory, options.dialogue)
    , m_stream(options.signal)
    , m_line(this)
    , m_dialogueTimer(this)
    , m_streamTimer(this)
    , m_startedMs(simulatorClockMs())
{
    setFaults(options.faults);
    m_line.setPaced(options.paced);
    m_dialogueTimer.setSingleShot(true);
    m_dialogueTimer.setTimerType(Qt::PreciseTimer);
    m_streamTimer.setSingleShot(true);
    connect(&m_line, &PseudoTerminal::received, this, &SimulatedInstrument::receive);
    connect(&m_line, &PseudoTerminal::sent, this, [this] {
        m_tokensSent += m_tokenUnderway ? 1 : 0;
        m_tokenUnderway = false;
    });
    connect(&m_line, &PseudoTerminal::listenerChanged, this, [this] {
        m_dialogue.reset();
        m_dialogueTimer.stop();
        m_tokenUnderway = false;
        resumeStream();
    });
    connect(&m_dialogueTimer, &QTimer::timeout, this, &SimulatedInstrument::elapse);
    connect(&m_streamTimer, &QTimer::timeout, this, &SimulatedInstrument::streamDue);
}

QString SimulatedInstrument::linkPath() const
{
    const QString directory =
        m_options.portsDirectory.isEmpty() ? defaultPortsDirectory() : m_options.portsDirectory;
    return directory + '/' + m_portName;
}

bool SimulatedInstrument::plugIn()
{
    if (isPluggedIn())
        return true;
    if (!m_line.open(linkPath()))
        return false;
    emit plugChanged(true);
    return true;
}

void SimulatedInstrument::unplug()
{
    if (!isPluggedIn())
        return;
    m_line.close();
    m_dialogue.reset();
    m_dialogueTimer.stop();
    m_streamTimer.stop();
    m_tokenUnderway = false;
    emit plugChanged(false);
}

void SimulatedInstrument::setFaults(const FaultPlan &faults)
{
    m_options.faults = faults;
    m_dialogue.setFaults(faults);
    m_lineFaults = LineFaults(faults);
}

void SimulatedInstrument::setStreaming(bool streaming)
{
    m_options.streaming = streaming;
    resumeStream();
}

void SimulatedInstrument::receive(const QByteArray &bytes)
{
    const bool wasBusy = m_dialogue.isBusy();
    const QByteArray answer = m_dialogue.receive(bytes, simulatorClockMs());
    conduct(answer, wasBusy);
}

void SimulatedInstrument::elapse()
{
    const QByteArray answer = m_dialogue.elapse(simulatorClockMs());
    conduct(answer, true);
}

void SimulatedInstrument::conduct(const QByteArray &answer, bool wasBusy)
{
    const bool tookPart = wasBusy || !answer.isEmpty();
    if (tookPart && !wasBusy) {
        // the host demands an echo of exactly one byte: nothing of the stream may go before it
        m_line.discardUnsent();
        m_tokenUnderway = false;
        m_streamTimer.stop();
    }
    m_line.send(m_lineFaults.passed(answer));
    keepEvents();
    if (m_dialogue.takeUnplug())
        scheduleUnplug();
    if (m_dialogue.isBusy())
        m_dialogueTimer.start(
            int(qMax(qint64(0), m_dialogue.nextDeadlineMs() - simulatorClockMs())));
    else if (tookPart)
        resumeStream();
}

void SimulatedInstrument::keepEvents()
{
    m_exchanges += m_dialogue.takeEvents();
    if (m_exchanges.size() > 2 * exchangesKept)
        m_exchanges.remove(0, m_exchanges.size() - exchangesKept);
}

void SimulatedInstrument::scheduleUnplug()
{
    const int outForMs = m_options.faults.returnAfterMs;
    QTimer::singleShot(unplugDelayMs, this, [this, outForMs] {
        unplug();
        if (outForMs > 0)
            QTimer::singleShot(outForMs, this, &SimulatedInstrument::plugIn);
    });
}

/** Starts the stream anew at the beginning of a token, if nothing speaks against it. */
void SimulatedInstrument::resumeStream()
{
    const bool paused = m_dialogue.isBusy() || !m_line.hasListener();
    if (paused || !m_options.streaming || m_options.tokensPerSecond <= 0.0)
        return m_streamTimer.stop();
    m_nextTokenMs = double(simulatorClockMs()) + tokenPeriodMs();
    m_streamTimer.setTimerType(tokenPeriodMs() < 100.0 ? Qt::PreciseTimer : Qt::CoarseTimer);
    m_streamTimer.start(int(std::ceil(tokenPeriodMs())));
}

void SimulatedInstrument::streamDue()
{
    const auto now = double(simulatorClockMs());
    m_nextTokenMs = qMax(m_nextTokenMs, now - longestLagMs);
    for (; m_nextTokenMs <= now; m_nextTokenMs += tokenPeriodMs())
        sendToken();
    m_streamTimer.start(int(std::ceil(m_nextTokenMs - now)));
}

void SimulatedInstrument::sendToken()
{
    // a line that is still busy with the last token, or full, loses this reading
    if (!m_line.isSent())
        return;
    const double seconds = double(simulatorClockMs() - m_startedMs) / 1000.0;
    const QByteArray token = m_stream.nextToken(m_memory, seconds);
    m_tokenUnderway = !token.isEmpty();
    m_line.send(m_lineFaults.passed(m_lineFaults.noisyToken(token)));
}
