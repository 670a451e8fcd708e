#include "app/alarmsound.h"
#include "outagefaults.h"
#include "plot/qwtnox.h"
#include "slowclose.h"

#include <QElapsedTimer>

#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// Sleep

constexpr int burstMs = 500; ///< in which all comes that was sent meanwhile

/** Stops this process for so many seconds, with all its threads. */
void standStill(unsigned seconds)
{
    const pid_t self = ::getpid();
    const pid_t alarmClock = ::fork();
    if (alarmClock == 0) {
        ::sleep(seconds);
        ::kill(self, SIGCONT);
        ::_exit(0);
    }
    ::kill(self, SIGSTOP);
    ::waitpid(alarmClock, nullptr, 0);
}

/** Sleeps while the program is at nothing else, at a read and at a write, in turn; each third time
 *  longer than the watchdog of the streams waits. */
void sleepAndWake(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        const int instrument = rig.chance(OutageRig::instruments);
        if (i % 3 == 1)
            rig.registry().getOptFromNox(rig.record(instrument).index);
        else if (i % 3 == 2)
            rig.record(instrument).opt->triggerChChange(0);
        rig.run(rig.chance(300));
        rig.loseRounds(); // those that come at once when it wakes share a row
        rig.watch().leaveOut([i] { standStill(i % 3 == 0 ? 17 : 3); });
        rig.struck(0);
        rig.run(burstMs);
        rig.loseNoMore();
        rig.run(3000);
        rig.promiseAllGoesOn();
    }
}

// The clock

void setClockBackAndForth(OutageRig &rig, int times)
{
    qint64 shiftSeconds = 0;
    rig.window().plot()->setClock(
        [&shiftSeconds] { return QDateTime::currentDateTime().addSecs(shiftSeconds); });
    const QVector<qint64> jumps = {5, -5, 3600, -3600, 86400 * 40, -86400 * 40};
    for (int i = 0; i < times; ++i) {
        shiftSeconds += jumps.at(i % jumps.size());
        rig.struck(0);
        rig.run(1000);
        rig.promiseAllGoesOn();
    }
    rig.window().plot()->setClock([] { return QDateTime::currentDateTime(); });
}

// Drivers that hang

void hangOnClose(OutageRig &rig, int closeMs)
{
    for (int instrument = 0; instrument < OutageRig::instruments; ++instrument)
        rig.pull(instrument);
    rig.struck(OutageRig::instruments);
    QElapsedTimer clock;
    clock.start();
    const int before = rig.messages();
    rig.promise(rig.waitFor([&] { return rig.messages() == before + OutageRig::instruments; }),
                QStringLiteral("each instrument is told of"));
    rig.promise(clock.elapsed() < 6000, QStringLiteral("it is told of within the removal's time"));
    rig.waitFor([&] { return clock.hasExpired(closeMs + 500); });
    for (int instrument = 0; instrument < OutageRig::instruments; ++instrument)
        rig.plugIn(instrument);
    setPortCloseDelay(0);
    rig.findAgain();
    rig.promiseAllGoesOn();
}

template<int closeMs>
void hangWhileHubGoes(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        setPortCloseDelay(closeMs);
        hangOnClose(rig, closeMs);
    }
}

/** One instrument's driver hangs; the others are not to notice. */
void hangOfOne(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        setPortCloseDelay(3000);
        const int other = rig.record(1).recRow;
        const int before = rig.messages();
        rig.pull(0);
        rig.struck(1);
        rig.run(2500);
        rig.promise(rig.record(1).recRow >= other + 8,
                    QStringLiteral("the others are recorded meanwhile"));
        rig.promise(rig.waitFor([&] { return rig.messages() > before; }),
                    QStringLiteral("the instrument is told of"));
        setPortCloseDelay(0);
        rig.run(1000);
        rig.plugIn(0);
        rig.findAgain();
    }
    rig.promiseAllGoesOn();
}

/** The operator leaves the program while all drivers hang. */
void hangAtExit(OutageRig &rig, int)
{
    setPortCloseDelay(8000);
    rig.struck(0);
    rig.promise(rig.closeWindow() < 9500, QStringLiteral("the program ends with its ports"));
}

// Sound

/** A sound server that takes connections and says nothing, until it is gone. */
class DeafSoundServer
{
public:
    DeafSoundServer() = default;
    ~DeafSoundServer() { leave(); }
    Q_DISABLE_COPY(DeafSoundServer)

    /** Listens where the programs that are started from now on look for a server. */
    void listen()
    {
        const QByteArray path = QFile::encodeName(m_folder.filePath(QStringLiteral("sound")));
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
        m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        ::bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address);
        ::listen(m_socket, 8);
        qputenv("PULSE_SERVER", "unix:" + path);
    }
    void leave()
    {
        if (m_socket >= 0)
            ::close(m_socket);
        m_socket = -1;
    }

private:
    QTemporaryDir m_folder;
    int m_socket = -1;
};

void soundAlarm(OutageRig &rig, int times)
{
    for (int i = 0; i < times; ++i) {
        rig.window().alarmSound()->play();
        rig.struck(0);
        rig.run(100);
    }
    rig.promiseAllGoesOn();
}

Fault noSound()
{
    const auto prepare = [] { qputenv("PULSE_SERVER", "unix:/dev/null/none"); };
    return {
        QStringLiteral("no sound at all"), Playground::ThisProcess, soundAlarm, 100, 0, prepare};
}

/** The server goes while the alarm sounds. */
Fault deafSound()
{
    const auto server = std::make_shared<DeafSoundServer>();
    const auto strike = [server](OutageRig &rig, int times) {
        soundAlarm(rig, times / 2);
        server->leave();
        soundAlarm(rig, times - times / 2);
    };
    return {QStringLiteral("the sound server hangs and goes"),
            Playground::ThisProcess,
            strike,
            100,
            0,
            [server] { server->listen(); }};
}

} // namespace

QVector<Fault> machineFaults()
{
    const Playground here = Playground::ThisProcess;
    const Playground there = Playground::OtherProcesses;
    return {{QStringLiteral("the computer sleeps"), there, sleepAndWake, 6},
            {QStringLiteral("the clock is set"), here, setClockBackAndForth, 12},
            {QStringLiteral("one port hangs on close, 3 s"), here, hangOfOne, 5, 1},
            {QStringLiteral("all ports hang on close, 3 s"), here, hangWhileHubGoes<3000>, 3, 3},
            {QStringLiteral("all ports hang on close, 8 s"), here, hangWhileHubGoes<8000>, 3, 3},
            {QStringLiteral("all ports hang at the exit, 8 s"), here, hangAtExit, 1},
            noSound(),
            deafSound()};
}
