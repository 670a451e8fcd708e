/// Connects a fleet of simulated instruments to the real window and counts what gets through.
///
/// The instruments play in a process of their own, so that the processor time printed is the
/// program's alone.

#include "app/mainwindow.h"
#include "fleet.h"
#include "plot/qwtnox.h"
#include "quietdatabase.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "serial/portcatalog.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QHash>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int settleMs = 5000; ///< from the first token to the beginning of the measurement
constexpr int drainMs = 3000;  ///< from the last token sent to the count of those received

/** What the operator looks at. */
enum class Sight { Window, Minimised, Covered };

/** One run: a fleet, how much of it is on the plot, and how the window stands. */
struct Load {
    FleetOptions fleet;
    bool isAllShown;
    Sight sight;
    int seconds;
};

const char *nameOf(Sight sight)
{
    switch (sight) {
    case Sight::Window:
        return "visible";
    case Sight::Minimised:
        return "minimised";
    case Sight::Covered:
        break;
    }
    return "covered";
}

void runEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/** The part of a core that the program takes while its event loop runs for a time. */
double processorShareWithin(int milliseconds)
{
    const double before = processorSeconds();
    QElapsedTimer wall;
    wall.start();
    runEventLoop(milliseconds);
    return (processorSeconds() - before) / (wall.elapsed() / 1e3);
}

/** Connects the fleet, one instrument after the other, as the window's menu does. */
QVector<int> connectAll(MainWindow &window, int instruments)
{
    QVector<int> devices;
    for (int i = 0; i < instruments; ++i) {
        const int devIndex = window.serialPort()->addDev(Fleet::portName(i));
        // by hand the registry takes one instrument less than there are ports
        if (devIndex >= 0)
            window.registry()->newNox(devIndex, true);
        devices.append(devIndex);
    }
    return devices;
}

/** Every channel of every instrument. */
void showAll(QwtNOX &plot)
{
    const QList<int> instruments = plot.devices().keys();
    for (const int qwtIndex : instruments)
        for (int ch = 0; ch < plot.getChCount(qwtIndex); ++ch)
            plot.setChShow(true, qwtIndex, uchar(ch));
}

/** Brings the window, and what may stand before it, into place. */
void arrange(MainWindow &window, QWidget &cover, Sight sight)
{
    if (sight == Sight::Minimised)
        window.showMinimized();
    if (sight != Sight::Covered)
        return;
    cover.setGeometry(window.frameGeometry());
    cover.show();
    cover.raise();
}

/** Tokens of all instruments. */
struct Count {
    qint64 sent = 0;
    qint64 received = 0;
    int unequal = 0; ///< instruments of which not all were received

    void add(qint64 sentByOne, qint64 receivedOfIt)
    {
        sent += sentByOne;
        received += receivedOfIt;
        unequal += sentByOne != receivedOfIt;
    }
};

void print(const Load &load, const Count &count, qint64 drawn, const QVector<double> &shares)
{
    std::printf("%11d %9.1f %6s %10s %9lld %9lld %7lld %6lld %9d %7.1f %6.1f %6.1f %7ld\n",
                load.fleet.instruments, load.fleet.tokensPerSecond, load.isAllShown ? "all" : "one",
                nameOf(load.sight), static_cast<long long>(count.sent),
                static_cast<long long>(count.received), static_cast<long long>(drawn),
                static_cast<long long>(count.sent - count.received), count.unequal, 100 * shares[0],
                100 * shares[1], 100 * shares[2], peakMemoryMib());
    std::fflush(stdout);
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

    const QVector<int> devices = connectAll(window, instruments);
    if (devices.contains(-1)) {
        std::fprintf(stderr, "a port was refused\n");
        return 1;
    }
    QWidget cover;
    arrange(window, cover, load.sight);
    runEventLoop(settleMs); // the channels come with their first points
    if (load.isAllShown)
        showAll(*window.plot());

    QVector<double> shares; // of each third, to see whether they grow
    for (int third = 0; third < 3; ++third)
        shares.append(processorShareWithin(load.seconds * 1000 / 3));

    fleet.fallSilent();
    runEventLoop(drainMs);
    Count count;
    const QVector<qint64> sent = fleet.sentTokens();
    for (int i = 0; i < instruments; ++i)
        count.add(sent.at(i), received.value(devices.at(i)));
    print(load, count, drawn, shares);
    return count.sent == count.received && count.unequal == 0 ? 0 : 1;
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
    std::printf("soak: instruments on pseudo-terminals, the real window (1280x800)\n");
    std::printf("%11s %9s %6s %10s %9s %9s %7s %6s %9s %21s %7s\n", "instruments", "tokens/s",
                "shown", "window", "sent", "received", "drawn", "lost", "unequal",
                "% of a core, in thirds", "MiB");
    std::fflush(stdout);
    QVector<Load> loads = {{{64, 10.0}, false, Sight::Window, seconds}};
    for (const bool isAllShown : {false, true})
        for (const Sight sight : {Sight::Window, Sight::Minimised, Sight::Covered})
            loads.append({{255, 4.0}, isAllShown, sight, seconds});
    if (argc > 2) // one line of the table alone
        loads = {loads.value(QByteArray(argv[2]).toInt() - 1, loads.first())};
    int status = 0;
    for (const Load &load : qAsConst(loads)) {
        const pid_t run = ::fork();
        if (run == 0)
            ::_exit(runLoad(load, argc, argv));
        int outcome = 1;
        ::waitpid(run, &outcome, 0);
        status |= outcome;
    }
    return status == 0 ? 0 : 1;
}
