#include "displayfault.h"

#include "fleet.h"
#include "outagerig.h"
#include "plot/qwtnox.h"
#include "recordedrows.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QStandardPaths>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int recordingMs = 3000;
constexpr int patienceMs = 10000;
constexpr uchar chosenScale = 7;

/** What the program says, just before it goes on until its display goes. */
struct LastWords {
    char recordings[3][256];
    char database[256];
    qint64 rows;
};

/** An X server of its own, which tells its number. */
class Display
{
public:
    Display()
    {
        m_process = ::fork();
        if (m_process == 0) {
            ::dup2(m_number.writer(), 3);
            ::execlp("Xvfb", "Xvfb", "-displayfd", "3", "-screen", "0", "1280x800x24", "-nolisten",
                     "tcp", static_cast<char *>(nullptr));
            ::_exit(1);
        }
        m_number.closeWriter();
        for (char digit = 0; m_number.read(&digit, 1) && digit != '\n';)
            m_name += digit;
    }
    ~Display() { kill(); }
    Q_DISABLE_COPY(Display)

    /** As ":5"; empty where no X server could be started. */
    QByteArray name() const { return m_name.isEmpty() ? m_name : ':' + m_name; }
    void kill()
    {
        if (m_process <= 0)
            return;
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        m_process = -1;
    }

private:
    Pipe m_number;
    QByteArray m_name;
    pid_t m_process = -1;
};

/** The program, which measures and records until its display goes. */
int runProgram(const QByteArray &display, Pipe &words, int argc, char **argv)
{
    qputenv("DISPLAY", display);
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Tavrel"));
    QCoreApplication::setApplicationName(QStringLiteral("nox8"));
    OutageRig rig(Playground::ThisProcess);
    if (!rig.begin())
        return 2;
    rig.window().plot()->setChScaleY(chosenScale, rig.record(0).qwtIndex, 0);
    rig.run(recordingMs);
    LastWords last = {};
    for (int i = 0; i < OutageRig::instruments; ++i)
        qstrncpy(last.recordings[i], QFile::encodeName(rig.recordingPath(i)).constData(),
                 sizeof last.recordings[i]);
    qstrncpy(last.database, QFile::encodeName(rig.databasePath()).constData(),
             sizeof last.database);
    last.rows = rig.recordedRows();
    words.write(&last, sizeof last);
    rig.waitFor([] { return false; });
    return 3;
}

/** How the program has ended; nothing when it had to be killed. */
std::optional<int> endOf(pid_t program)
{
    QElapsedTimer clock;
    clock.start();
    int status = 0;
    while (!clock.hasExpired(patienceMs)) {
        if (::waitpid(program, &status, WNOHANG) == program)
            return status;
        ::usleep(10000);
    }
    ::kill(program, SIGKILL);
    ::waitpid(program, &status, 0);
    return std::nullopt;
}

void inspect(const LastWords &last, Outcome *outcome)
{
    for (const char *recording : last.recordings) {
        const RecordedRows rows = readRecordedRows(QFile::decodeName(recording));
        outcome->rows += rows.whole;
        outcome->damagedRows += rows.damaged;
    }
    outcome->lostRows = qMax<qint64>(0, last.rows - outcome->rows);
    QProcess client;
    client.start(QStringLiteral("sqlite3"),
                 {QStringLiteral("-batch"), QFile::decodeName(last.database),
                  QStringLiteral("PRAGMA integrity_check; SELECT device_property_val FROM"
                                 " device_property WHERE device_property_key='qwt_ch_0-dY'")});
    client.waitForFinished();
    if (client.readAllStandardOutput() != "ok\n" + QByteArray::number(chosenScale) + '\n')
        outcome->broken << QStringLiteral("the database is whole");
}

} // namespace

Outcome loseDisplay(int argc, char **argv)
{
    Outcome outcome;
    Display display;
    if (display.name().isEmpty()) {
        outcome.broken << QStringLiteral("an X server can be started (Xvfb)");
        return outcome;
    }
    const QTemporaryDir folder;
    qputenv("TMPDIR", QFile::encodeName(folder.path())); // the program will not clean up
    Pipe words;
    const pid_t program = ::fork();
    if (program == 0)
        ::_exit(runProgram(display.name(), words, argc, argv));
    words.closeWriter();
    LastWords last = {};
    if (words.read(&last, sizeof last)) {
        ::usleep(700000);
        display.kill();
        outcome.struck = 1;
    }
    const auto end = endOf(program);
    if (!end || !WIFEXITED(*end))
        outcome.broken << QStringLiteral("the program ends by itself");
    if (outcome.struck == 1)
        inspect(last, &outcome);
    else
        outcome.broken << QStringLiteral("the program starts on a display");
    return outcome;
}
