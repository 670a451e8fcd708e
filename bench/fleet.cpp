#include "fleet.h"

#include "device/vocabulary.h"
#include "simulator/instrumenthost.h"

#include <QCoreApplication>
#include <QFile>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

Pipe::Pipe()
{
    if (::pipe(m_ends) != 0)
        m_ends[0] = m_ends[1] = -1;
}

Pipe::~Pipe()
{
    closeReader();
    closeWriter();
}

bool Pipe::read(void *data, size_t size)
{
    return ::read(m_ends[0], data, size) == ssize_t(size);
}

bool Pipe::write(const void *data, size_t size)
{
    return ::write(m_ends[1], data, size) == ssize_t(size);
}

void Pipe::closeEnd(int &end)
{
    if (end >= 0)
        ::close(end);
    end = -1;
}

Fleet::Fleet(const FleetOptions &options, const QString &directory, int argc, char **argv)
    : m_options(options)
{
    if (!m_toFleet.isOpen() || !m_fromFleet.isOpen())
        return;
    m_process = ::fork();
    if (m_process == 0) {
        m_toFleet.closeWriter();
        m_fromFleet.closeReader();
        ::_exit(play(directory, argc, argv));
    }
    m_toFleet.closeReader();
    m_fromFleet.closeWriter();
    char word = 0;
    m_isReady = m_fromFleet.read(&word, 1);
}

Fleet::~Fleet()
{
    m_toFleet.closeWriter();
    if (m_process > 0)
        ::waitpid(m_process, nullptr, 0);
}

/** The instruments' process: plays until told to fall silent, then says what each has sent. */
int Fleet::play(const QString &directory, int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    InstrumentHost host;
    const auto models = instrumentModels();
    for (int i = 0; i < m_options.instruments; ++i) {
        SimulatedInstrumentOptions options;
        options.identity.modelName = modelName(*models.at(i % models.size()));
        options.identity.serialNumber = quint16(1000 + i);
        options.tokensPerSecond = m_options.tokensPerSecond;
        options.portsDirectory = directory;
        options.signal.seed = quint32(i + 1);
        if (host.add(options, portName(i)).isEmpty())
            return 1;
    }
    char word = 'r';
    m_fromFleet.write(&word, 1);
    if (!m_toFleet.read(&word, 1)) // nobody wants to count
        return 0;
    for (int i = 0; i < m_options.instruments; ++i)
        host.setStreaming(portName(i), false);
    for (int i = 0; i < m_options.instruments; ++i) {
        const qint64 sent = host.tokensSent(portName(i));
        m_fromFleet.write(&sent, sizeof sent);
    }
    // the plugs stay in until the other side has counted
    m_toFleet.read(&word, 1);
    return 0;
}

void Fleet::fallSilent()
{
    m_toFleet.write("s", 1);
}

QVector<qint64> Fleet::sentTokens()
{
    QVector<qint64> sent(m_options.instruments, -1);
    for (qint64 &tokens : sent)
        m_fromFleet.read(&tokens, sizeof tokens);
    return sent;
}

QString Fleet::portName(int instrument)
{
    return QStringLiteral("SIM%1").arg(instrument, 3, 10, QLatin1Char('0'));
}

double processorSeconds()
{
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) { return time.tv_sec + time.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long peakMemoryMib()
{
    // getrusage() would count what the parent had before the fork
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines)
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLong() / 1024;
    return -1;
}
