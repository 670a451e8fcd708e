/// Connects a fleet of simulated instruments to the real window and counts what gets through.
///
/// The instruments play in a process of their own, so that the processor time printed is the
/// program's alone.

#include "app/mainwindow.h"
#include "fleet.h"
#include "plot/qwtnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "serial/portcatalog.h"
#include "storage/noxsql.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int drainMs = 3000; ///< from the last token sent to the count of those received

/** One run: a fleet, for so long. */
struct Load {
    FleetOptions fleet;
    int seconds;
};

/** How the program starts: with a database of its own, and without a search of its own. */
class QuietDatabase
{
public:
    QuietDatabase()
    {
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path()));
        const QString path =
            QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
            QStringLiteral("/nox8.db");
        provideDatabase(path);
        noxSql(path).setAppProperty(QStringLiteral("autoconnect"), false);
    }

private:
    QTemporaryDir m_folder;
};

void runEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/** The program's side: the window, one instrument after the other connected as its menu does. */
int runProgram(const Load &load, Fleet &fleet)
{
    const QuietDatabase database;
    const int instruments = load.fleet.instruments;
    MainWindow window;
    window.resize(1280, 800);
    window.show();

    QHash<int, qint64> received; // by devIndex
    qint64 drawn = 0;
    QObject::connect(window.serialPort(), &NOXSerialPort::readyDevMeas, &window,
                     [&received](int devIndex) { ++received[devIndex]; });
    QObject::connect(window.plot(), &QwtNOX::onAddPoint, &window, [&drawn] { ++drawn; });

    QVector<int> devices;
    for (int i = 0; i < instruments; ++i) {
        const int devIndex = window.serialPort()->addDev(Fleet::portName(i));
        if (devIndex < 0) {
            std::fprintf(stderr, "%s was refused\n", qPrintable(Fleet::portName(i)));
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

    fleet.fallSilent();
    runEventLoop(drainMs);
    qint64 sentInAll = 0;
    qint64 receivedInAll = 0;
    int unequal = 0;
    const QVector<qint64> sent = fleet.sentTokens();
    for (int i = 0; i < instruments; ++i) {
        sentInAll += sent.at(i);
        receivedInAll += received.value(devices.at(i));
        unequal += sent.at(i) != received.value(devices.at(i));
    }
    std::printf("%11d %9.1f %7d %9lld %9lld %7lld %6lld %9d %8.1f %% %7ld\n", instruments,
                load.fleet.tokensPerSecond, load.seconds, static_cast<long long>(sentInAll),
                static_cast<long long>(receivedInAll), static_cast<long long>(drawn),
                static_cast<long long>(sentInAll - receivedInAll), unequal, 100 * share,
                peakMemoryMib());
    std::fflush(stdout);
    return sentInAll == receivedInAll && unequal == 0 ? 0 : 1;
}

/** One run in two fresh processes, so that each starts with clean counters. */
int runLoad(const Load &load, int argc, char **argv)
{
    const QTemporaryDir directory;
    Fleet fleet(load.fleet, directory.path(), argc, argv);
    if (!directory.isValid() || !fleet.isReady())
        return 1;
    PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(directory.path()));
    const QApplication application(argc, argv);
    return runProgram(load, fleet);
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
    for (const Load &load : {Load{{64, 10.0}, seconds}, Load{{255, 4.0}, seconds}}) {
        const pid_t run = ::fork();
        if (run == 0)
            ::_exit(runLoad(load, argc, argv));
        int outcome = 1;
        ::waitpid(run, &outcome, 0);
        status |= outcome;
    }
    return status == 0 ? 0 : 1;
}
