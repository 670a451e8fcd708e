/// Discovers one simulated instrument and then 64 at once, reads the configurations of all, and
/// prints how long it takes and what it costs.
///
/// The waits are those of the program. The instruments play in a process of their own, so that the
/// processor time printed is the program's alone. Ends with status 1 when an instrument was not
/// found or not read.

#include "eventloopwatch.h"
#include "fleet.h"
#include "registry/findnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "serial/portcatalog.h"
#include "storage/noxsql.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int patienceMs = 300000;
constexpr double tokensPerSecond = 4.0;

/** The program's side: a database, a multiplexer, the registry and the discovery dialog. */
int runProgram(int instruments, double *lastReplySeconds)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("nox8.db"));
    if (!folder.isValid() || !provideDatabase(path))
        return 1;
    noxSql database(path);
    NOXSerialPort serialPort;
    registerExchangeItems();
    noxList registry(&serialPort, &database);
    findNox dialog(nullptr, &registry);

    EventLoopWatch watch;
    QElapsedTimer wall;
    double found = 0;
    int configurations = 0;
    QEventLoop loop;
    QObject::connect(&registry, &noxList::onAddNox, [&] { found = wall.elapsed() / 1e3; });
    QObject::connect(&serialPort,
                     QOverload<int, QByteArray *, quint8>::of(&NOXSerialPort::readyDevReply),
                     [&](int, const QByteArray *, quint8 address) {
                         *lastReplySeconds = wall.elapsed() / 1e3;
                         configurations += address == 2;
                     });
    QObject::connect(&dialog, &QDialog::finished, [&] {
        if (registry.indices().isEmpty())
            loop.quit();
    });
    QObject::connect(&serialPort, &NOXSerialPort::allDevQueryComplite, [&] {
        if (!dialog.isVisible())
            loop.quit();
    });
    QTimer::singleShot(patienceMs, &loop, &QEventLoop::quit);

    const double processorBefore = processorSeconds();
    wall.start();
    dialog.find(true);
    loop.exec();

    const ThreadTime &gap = watch.longest();
    std::printf("%11d %6d %6d %7.1f s %7.1f s %7.2f s %5ld %8.1f %8.1f %8.1f %8.1f %8.1f %5d\n",
                instruments, registry.indices().size(), configurations, found, *lastReplySeconds,
                processorSeconds() - processorBefore, peakMemoryMib(), gap.wall, gap.running,
                gap.queued, gap.asleep(), watch.longestOwn(), watch.gapsAbove50Ms());
    std::fflush(stdout);
    return registry.indices().size() == instruments && configurations == instruments ? 0 : 1;
}

/** One run in two fresh processes; writes the time of the last reply to `result`. */
int runFleet(int instruments, Pipe &result, int argc, char **argv)
{
    const QTemporaryDir directory;
    Fleet fleet({instruments, tokensPerSecond}, directory.path(), argc, argv);
    if (!directory.isValid() || !fleet.isReady())
        return 1;
    PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(directory.path()));
    const QApplication application(argc, argv);
    double seconds = 0;
    const int status = runProgram(instruments, &seconds);
    result.write(&seconds, sizeof seconds);
    return status;
}

/** The time from the search to the last reply, in seconds; 0 when it failed. */
double discover(int instruments, int argc, char **argv)
{
    Pipe result;
    const pid_t run = ::fork();
    if (run == 0)
        ::_exit(runFleet(instruments, result, argc, argv));
    result.closeWriter();
    double seconds = 0;
    result.read(&seconds, sizeof seconds);
    int status = 1;
    ::waitpid(run, &status, 0);
    return status == 0 ? seconds : 0;
}

} // namespace

int main(int argc, char **argv)
{
    const int instruments = argc > 1 ? qMax(1, QByteArray(argv[1]).toInt()) : 64;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::printf("discovery: instruments on pseudo-terminals, the real dialog and registry\n"
                "longest gap of the GUI thread's event loop in ms: in all, running, waiting for a "
                "processor, asleep;\n"
                "longest without waiting for a processor; gaps above 50 ms\n");
    std::printf("%11s %6s %6s %9s %9s %9s %5s %8s %8s %8s %8s %8s %5s\n", "instruments", "found",
                "read", "found by", "read by", "processor", "MiB", "gap", "running", "waiting",
                "asleep", "own", "> 50");
    std::fflush(stdout);
    const double one = discover(1, argc, argv);
    const double all = discover(instruments, argc, argv);
    if (one <= 0 || all <= 0)
        return 1;
    std::printf("%d instruments take %.2f times as long as one\n", instruments, all / one);
    return 0;
}
