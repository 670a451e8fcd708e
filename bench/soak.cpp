/// Connects a fleet of simulated instruments to the real window and counts what gets through.
///
/// The instruments play in a process of their own, so that the processor time printed is the
/// program's alone.

#include "app/mainwindow.h"
#include "device/vocabulary.h"
#include "plot/qwtnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "serial/portcatalog.h"
#include "simulator/instrumenthost.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QHash>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int drainMs = 3000; ///< from the last token sent to the count of those received

/** One run: so many instruments, each so fast, for so long. */
struct Load {
    int instruments;
    double tokensPerSecond;
    int seconds;
};

/** The two ends of a pipe, closed when it goes. */
class Pipe
{
public:
    Pipe() { opened = ::pipe(ends) == 0; }
    ~Pipe()
    {
        closeReader();
        closeWriter();
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    bool isOpen() const { return opened; }
    void closeReader() { closeEnd(ends[0]); }
    void closeWriter() { closeEnd(ends[1]); }
    bool read(void *data, size_t size) { return ::read(ends[0], data, size) == ssize_t(size); }
    bool write(const void *data, size_t size)
    {
        return ::write(ends[1], data, size) == ssize_t(size);
    }

private:
    static void closeEnd(int &end)
    {
        if (end >= 0)
            ::close(end);
        end = -1;
    }
    int ends[2] = {-1, -1};
    bool opened = false;
};

QString portName(int number)
{
    return QStringLiteral("SIM%1").arg(number, 3, 10, QLatin1Char('0'));
}

/** The instruments' process: plays until told to fall silent, then says what each has sent. */
int playInstruments(const Load &load, const QString &directory, Pipe &toFleet, Pipe &fromFleet,
                    int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    InstrumentHost host;
    const auto models = instrumentModels();
    for (int i = 0; i < load.instruments; ++i) {
        SimulatedInstrumentOptions options;
        options.identity.modelName = modelName(*models.at(i % models.size()));
        options.identity.serialNumber = quint16(1000 + i);
        options.tokensPerSecond = load.tokensPerSecond;
        options.portsDirectory = directory;
        options.signal.seed = quint32(i + 1);
        if (host.add(options, portName(i)).isEmpty())
            return 1;
    }
    char word = 'r';
    fromFleet.write(&word, 1);
    toFleet.read(&word, 1);
    for (int i = 0; i < load.instruments; ++i)
        host.setStreaming(portName(i), false);
    for (int i = 0; i < load.instruments; ++i) {
        const qint64 sent = host.tokensSent(portName(i));
        fromFleet.write(&sent, sizeof sent);
    }
    // the plugs stay in until the other side has counted
    toFleet.read(&word, 1);
    return 0;
}

/** Processor time of this process, in seconds. */
double processorSeconds()
{
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) { return time.tv_sec + time.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long peakMemoryMib()
{
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

void runEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/** The program's side: the window, one instrument after the other connected as its menu does. */
int runProgram(const Load &load, Pipe &toFleet, Pipe &fromFleet)
{
    MainWindow window;
    window.resize(1280, 800);
    window.show();

    QHash<int, qint64> received; // by devIndex
    qint64 drawn = 0;
    QObject::connect(window.serialPort(), &NOXSerialPort::readyDevMeas, &window,
                     [&received](int devIndex) { ++received[devIndex]; });
    QObject::connect(window.plot(), &QwtNOX::onAddPoint, &window, [&drawn] { ++drawn; });

    QVector<int> devices;
    for (int i = 0; i < load.instruments; ++i) {
        const int devIndex = window.serialPort()->addDev(portName(i));
        if (devIndex < 0) {
            std::fprintf(stderr, "%s was refused\n", qPrintable(portName(i)));
            return 1;
        }
        // by hand the registry takes one instrument less than there are ports
        window.registry()->newNox(devIndex, true);
        devices.append(devIndex);
    }

    const double processorBefore = processorSeconds();
    QElapsedTimer wall;
    wall.start();
    runEventLoop(load.seconds * 1000);
    const double share = (processorSeconds() - processorBefore) / (wall.elapsed() / 1e3);

    toFleet.write("s", 1);
    runEventLoop(drainMs);
    qint64 sentInAll = 0;
    qint64 receivedInAll = 0;
    int unequal = 0;
    for (int i = 0; i < load.instruments; ++i) {
        qint64 sent = -1;
        fromFleet.read(&sent, sizeof sent);
        sentInAll += sent;
        receivedInAll += received.value(devices.at(i));
        unequal += sent != received.value(devices.at(i));
    }
    std::printf("%11d %9.1f %7d %9lld %9lld %7lld %6lld %9d %8.1f %% %7ld\n", load.instruments,
                load.tokensPerSecond, load.seconds, static_cast<long long>(sentInAll),
                static_cast<long long>(receivedInAll), static_cast<long long>(drawn),
                static_cast<long long>(sentInAll - receivedInAll), unequal, 100 * share,
                peakMemoryMib());
    std::fflush(stdout);
    toFleet.write("q", 1);
    return sentInAll == receivedInAll && unequal == 0 ? 0 : 1;
}

/** One run in two fresh processes, so that each starts with clean counters. */
int runLoad(const Load &load, int argc, char **argv)
{
    const QTemporaryDir directory;
    Pipe toFleet;
    Pipe fromFleet;
    if (!directory.isValid() || !toFleet.isOpen() || !fromFleet.isOpen())
        return 1;
    const pid_t fleet = ::fork();
    if (fleet == 0) {
        toFleet.closeWriter();
        fromFleet.closeReader();
        ::_exit(playInstruments(load, directory.path(), toFleet, fromFleet, argc, argv));
    }
    toFleet.closeReader();
    fromFleet.closeWriter();
    char word = 0;
    int status = 1;
    if (fromFleet.read(&word, 1)) {
        PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(directory.path()));
        const QApplication application(argc, argv);
        status = runProgram(load, toFleet, fromFleet);
    }
    toFleet.closeWriter();
    ::waitpid(fleet, nullptr, 0);
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    const int seconds = argc > 1 ? qMax(1, QByteArray(argv[1]).toInt()) : 60;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::printf("soak: instruments on pseudo-terminals, the real window (offscreen, 1280x800)\n");
    std::printf("%11s %9s %7s %9s %9s %7s %6s %9s %10s %7s\n", "instruments", "tokens/s", "seconds",
                "sent", "received", "drawn", "lost", "unequal", "processor", "MiB");
    std::fflush(stdout);
    int status = 0;
    for (const Load &load : {Load{64, 10.0, seconds}, Load{255, 4.0, seconds}}) {
        const pid_t run = ::fork();
        if (run == 0)
            ::_exit(runLoad(load, argc, argv));
        int outcome = 1;
        ::waitpid(run, &outcome, 0);
        status |= outcome;
    }
    return status == 0 ? 0 : 1;
}
