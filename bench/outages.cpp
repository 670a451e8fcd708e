/// Lets things go wrong outside the program while three instruments measure and record in the real
/// window, and prints of each what the operator saw of it.
///
///   bench-outages [part of a fault's name] [how often, in percent]
///
/// It ends with 1 when the program has not kept a promise. Files lie in memory where that can be: a
/// disk that is busy with something else would be felt as the program's. TMPDIR chooses another
/// place.

#include "displayfault.h"
#include "outagefaults.h"

#include <QApplication>
#include <QDir>

#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr double longestGapMs = 50;
constexpr unsigned mostSeconds = 1200; ///< after which a fault's process is given up

void printHead()
{
    std::printf("%-34s %6s %9s %8s %9s %7s %6s %8s  %s\n", "fault", "times", "messages", "expected",
                "gap, ms", "rows", "lost", "damaged", "state");
    std::fflush(stdout);
}

/** What the program has promised for every fault. */
QStringList brokenPromises(const Fault &fault, const Outcome &outcome)
{
    QStringList broken = outcome.broken;
    if (outcome.messages != outcome.expectedMessages)
        broken << QStringLiteral("one message for one fault");
    if (outcome.longestGapMs > longestGapMs)
        broken << QStringLiteral("the window stays awake");
    if (outcome.damagedRows > 0)
        broken << QStringLiteral("rows are whole");
    if (outcome.lostRows > outcome.mayBeLost + qint64(outcome.struck) * fault.cutRounds)
        broken << QStringLiteral("no row is lost");
    return broken;
}

int print(const Fault &fault, const Outcome &outcome)
{
    const QStringList broken = brokenPromises(fault, outcome);
    std::printf("%-34s %6d %9d %8d %9.1f %7lld %6lld %8d  %s\n", qPrintable(fault.name),
                outcome.struck, outcome.messages, outcome.expectedMessages, outcome.longestGapMs,
                static_cast<long long>(outcome.rows), static_cast<long long>(outcome.lostRows),
                outcome.damagedRows,
                broken.isEmpty() ? "as wanted" : qPrintable("BROKEN: " + broken.join("; ")));
    std::fflush(stdout);
    return broken.isEmpty() ? 0 : 1;
}

int strike(const Fault &fault, int percent, int argc, char **argv)
{
    ::alarm(mostSeconds);
    const QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Tavrel"));
    QCoreApplication::setApplicationName(QStringLiteral("nox8"));
    fault.prepare();
    OutageRig rig(fault.playground);
    if (!rig.begin()) {
        std::printf("%-34s the instruments were not found\n", qPrintable(fault.name));
        return 1;
    }
    fault.strike(rig, qMax(1, fault.times * percent / 100));
    return print(fault, rig.end());
}

/** One fault in a process of its own, so that none meets what another one has left. */
int strikeAside(const Fault &fault, int percent, int argc, char **argv)
{
    const pid_t process = ::fork();
    if (process == 0)
        ::_exit(strike(fault, percent, argc, argv));
    int outcome = 1;
    ::waitpid(process, &outcome, 0);
    if (WIFSIGNALED(outcome))
        std::printf("%-34s BROKEN: ended by signal %d\n", qPrintable(fault.name),
                    WTERMSIG(outcome));
    return outcome == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QString wanted = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    const int percent = argc > 2 ? QByteArray(argv[2]).toInt() : 100;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("TMPDIR") && QDir(QStringLiteral("/dev/shm")).exists())
        qputenv("TMPDIR", "/dev/shm");
    printHead();
    int status = 0;
    const auto faults = plugFaults() + machineFaults() + databaseFaults() + recordingFaults();
    for (const Fault &fault : faults)
        if (fault.name.contains(wanted))
            status |= strikeAside(fault, percent, argc, argv);
    const Fault display = {QStringLiteral("the display goes"), Playground::ThisProcess, {}, 1};
    if (display.name.contains(wanted))
        status |= print(display, loseDisplay(argc, argv));
    return status;
}
