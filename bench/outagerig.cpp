#include "outagerig.h"

#include "plot/qwtnox.h"
#include "recordedrows.h"
#include "registry/findnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "widgets/userdialogs.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>

namespace
{

constexpr quint16 firstSerialNumber = 1001;
constexpr int writeDelayMs = 300;
constexpr double calmRate = 10; ///< readings per second of those that go on while nobody reads them

} // namespace

OutageRig::OutageRig(Playground playground)
{
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path()));
    provideDatabase(databasePath());
    noxSql(databasePath()).setAppProperty(QStringLiteral("autoconnect"), false);
    startInstruments(playground);
    m_window = std::make_unique<MainWindow>();
    m_window->resize(1280, 800);
    m_window->show();
    LinkTiming timing = shortTiming();
    timing.attemptDelay = 2000; // longer than an instrument waits for the rest of a broken exchange
    m_window->serialPort()->setLinkTiming(timing);
    m_window->registry()->setWriteDelay(writeDelayMs);
    listen();
}

OutageRig::~OutageRig() = default;

QString OutageRig::databasePath() const
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           QStringLiteral("/nox8.db");
}

QString OutageRig::recordingPath(int instrument) const
{
    return recordingFolder() + QStringLiteral("/recording%1.csv").arg(instrument + 1);
}

noxList::_nox &OutageRig::record(int instrument)
{
    // the order of the records is that in which the instruments answered
    const auto indices = registry().indices();
    for (const int index : indices) {
        noxList::_nox *const nox = registry().getNoxByIndex(index);
        if (nox->opt->devNumber == firstSerialNumber + instrument)
            return *nox;
    }
    qFatal("instrument %d is not there", instrument + 1);
}

void OutageRig::startInstruments(Playground playground)
{
    for (int i = 0; i < instruments; ++i) {
        SimulatedInstrumentOptions options = m_bench.steadyInstrument();
        options.identity.serialNumber = quint16(firstSerialNumber + i);
        if (playground == Playground::ThisProcess) {
            m_bench.add(portName(i), options);
            continue;
        }
        auto simulator = std::make_unique<QProcess>();
        simulator->start(QCoreApplication::applicationDirPath() + QStringLiteral("/nox8-sim"),
                         {QStringLiteral("--port"), portName(i), QStringLiteral("--serial"),
                          QString::number(options.identity.serialNumber), QStringLiteral("--rate"),
                          QString::number(calmRate), QStringLiteral("--ports-directory"),
                          options.portsDirectory});
        while (simulator->waitForStarted() &&
               !QFile::exists(options.portsDirectory + '/' + portName(i)))
            run(10);
        m_simulators.push_back(std::move(simulator));
    }
}

void OutageRig::listen()
{
    UserDialogs::current().tell = [this](QWidget *, const Message &) { ++m_messages; };
    UserDialogs::current().ask = [this](QWidget *, const Message &message) {
        ++m_messages;
        return message.defaultButton;
    };
    QObject::connect(m_window->registry(), &noxList::onReadMeas, m_window.get(),
                     [this](int index, double, quint8 ch) { noteRound(index, ch); });
}

/** Counts the rounds that end, of which each is to become a row. */
void OutageRig::noteRound(int index, quint8 ch)
{
    ++m_points[index];
    const auto previous = m_previousChannels.constFind(index);
    const bool hasEnded = previous != m_previousChannels.cend() && ch <= *previous;
    m_previousChannels.insert(index, ch);
    if (hasEnded && registry().getNoxByIndex(index)->recording)
        ++m_rounds;
}

bool OutageRig::begin()
{
    m_window->discovery()->find(true);
    const auto isReady = [this] {
        return registry().indices().size() == instruments && isMeasuring(0) && isMeasuring(1) &&
               isMeasuring(2) && m_window->serialPort()->isReadAllQuery();
    };
    if (!waitFor(isReady))
        return false;
    startRecordings();
    run(1000);
    m_messages = 0;
    m_watch = std::make_unique<EventLoopWatch>();
    return true;
}

void OutageRig::startRecordings()
{
    QDir().mkpath(recordingFolder());
    for (int i = 0; i < instruments; ++i) {
        record(i).recFileName = recordingPath(i);
        registry().setRecording(record(i).index, true);
    }
}

qint64 OutageRig::closeWindow()
{
    QElapsedTimer clock;
    clock.start();
    m_window->close();
    m_window.reset();
    return clock.elapsed();
}

Outcome OutageRig::end()
{
    m_outcome.longestGapMs = m_watch->longestOwn();
    m_watch.reset();
    m_outcome.messages = m_messages;
    if (m_window)
        closeWindow();
    countRows();
    UserDialogs::current() = UserDialogs::onScreen();
    for (const auto &simulator : m_simulators) {
        simulator->terminate();
        simulator->waitForFinished();
    }
    return m_outcome;
}

void OutageRig::countRows()
{
    for (int i = 0; i < instruments; ++i) {
        const RecordedRows rows = readRecordedRows(recordingPath(i));
        m_outcome.rows += rows.whole;
        m_outcome.damagedRows += rows.damaged;
    }
    m_outcome.lostRows = m_rounds - m_outcome.rows;
}

void OutageRig::loseNoMore()
{
    m_outcome.mayBeLost += m_rounds - m_roundsBefore + instruments; // the rounds under way
}

qint64 OutageRig::recordedRows() const
{
    qint64 rows = 0;
    for (int i = 0; i < instruments; ++i)
        rows += readRecordedRows(recordingPath(i)).whole;
    return rows;
}

void OutageRig::run(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

bool OutageRig::waitFor(const std::function<bool()> &holds, int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (!holds()) {
        if (clock.hasExpired(milliseconds))
            return false;
        run(5);
    }
    return true;
}

void OutageRig::startClient(QProcess &client, const QStringList &statements)
{
    // starting a process holds up the thread that does
    m_watch->leaveOut([&] {
        client.start(QStringLiteral("sqlite3"),
                     QStringList{QStringLiteral("-batch"), databasePath()} + statements);
        client.waitForStarted();
    });
}

QString OutageRig::askDatabase(const QString &statements)
{
    QProcess client;
    startClient(client, {statements});
    waitFor([&client] { return client.state() == QProcess::NotRunning; });
    return QString::fromUtf8(client.readAllStandardError() + client.readAllStandardOutput())
        .trimmed();
}

void OutageRig::pull(int instrument)
{
    m_watch->leaveOut([&] { host().unplug(portName(instrument)); });
}

void OutageRig::plugIn(int instrument)
{
    m_watch->leaveOut([&] { m_bench.plugIn(portName(instrument)); });
}

void OutageRig::findAgain()
{
    const auto isWhole = [this] {
        for (int i = 0; i < instruments; ++i)
            if (!record(i).isConnected())
                return false;
        return true;
    };
    if (!isWhole())
        m_window->discovery()->find(true);
    promise(waitFor(isWhole), QStringLiteral("all instruments are found again"));
    for (int i = 0; i < instruments; ++i) {
        const qint64 before = m_points.value(record(i).index);
        promise(waitFor([&] { return m_points.value(record(i).index) > before; }),
                QStringLiteral("instrument %1 measures again").arg(i + 1));
    }
}

bool OutageRig::isMeasuring(int instrument)
{
    const auto indices = registry().indices();
    return indices.size() > instrument && m_points.value(indices.at(instrument)) > 0;
}

void OutageRig::struck(int expectedMessages)
{
    ++m_outcome.struck;
    m_outcome.expectedMessages += expectedMessages;
}

void OutageRig::promise(bool holds, const QString &what)
{
    if (!holds && !m_outcome.broken.contains(what))
        m_outcome.broken << what;
}

void OutageRig::promiseAllGoesOn()
{
    for (int i = 0; i < instruments; ++i) {
        const int before = record(i).recRow;
        promise(record(i).recording, QStringLiteral("recording %1 stays on").arg(i + 1));
        promise(waitFor([&] { return record(i).recRow > before + 2; }),
                QStringLiteral("recording %1 goes on").arg(i + 1));
    }
}
