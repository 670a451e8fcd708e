#pragma once

#include "app/mainwindow.h"
#include "eventloopwatch.h"
#include "registry/noxlist.h"
#include "support/instrumentbench.h"

#include <QHash>
#include <QProcess>
#include <QRandomGenerator>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/** Where the instruments play. */
enum class Playground {
    ThisProcess,   ///< so that plugs can be pulled at chosen moments
    OtherProcesses ///< so that they go on while this one stands still
};

/** What came of a fault. */
struct Outcome {
    int struck = 0;           ///< how often
    int expectedMessages = 0; ///< one for each fault that the operator has to hear of
    int messages = 0;         ///< shown by themselves, or asked
    double longestGapMs = 0;  ///< of the event loop, without waiting for a processor
    qint64 rows = 0;          ///< recorded
    qint64 lostRows = 0;      ///< rounds that ended without a row
    qint64 mayBeLost = 0;     ///< rounds that ended while nothing could be recorded
    int damagedRows = 0;
    QStringList broken; ///< promises
};

/**
 * The real window with a database of its own, and three instruments that measure into recordings,
 * set up for a fault; what follows from the fault is counted.
 */
class OutageRig
{
public:
    static constexpr int instruments = 3;
    static constexpr int patienceMs = 30000;

    explicit OutageRig(Playground playground);
    ~OutageRig();
    Q_DISABLE_COPY(OutageRig)

    /** Lets the program find the instruments, and records all of them; counting begins. */
    bool begin();
    /** Ends the program, and tells what was counted. */
    Outcome end();
    /** Ends the program; how long that took, in milliseconds. */
    qint64 closeWindow();

    MainWindow &window() { return *m_window; }
    noxList &registry() { return *m_window->registry(); }
    noxList::_nox &record(int instrument);
    InstrumentHost &host() { return m_bench.host; }
    EventLoopWatch &watch() { return *m_watch; }
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString databasePath() const;
    QString recordingFolder() const { return path(QStringLiteral("recordings")); }
    QString recordingPath(int instrument) const;
    static QString portName(int instrument) { return QStringLiteral("SIM%1").arg(instrument + 1); }
    /** A number below `bound` by chance, the same on each run. */
    int chance(int bound) { return int(m_chance.bounded(bound)); }
    int messages() const { return m_messages; }

    /** Lets the program run. */
    void run(int milliseconds);
    /** Lets it run until something holds; false when that takes longer than patience lasts. */
    bool waitFor(const std::function<bool()> &holds, int milliseconds = patienceMs);

    void pull(int instrument);
    void plugIn(int instrument);
    /** Searches as the operator would, and waits until all instruments measure again. */
    void findAgain();
    bool isMeasuring(int instrument);
    /** Starts the command-line client of SQLite on the database. */
    void startClient(QProcess &client, const QStringList &statements);
    /** What the command-line client of SQLite says to statements on the database. */
    QString askDatabase(const QString &statements);
    /** Rows in the files. */
    qint64 recordedRows() const;

    /** From now on rounds cannot be recorded, until loseNoMore(). */
    void loseRounds() { m_roundsBefore = m_rounds; }
    void loseNoMore();
    /** Notes that a fault has struck, of which the operator hears so often. */
    void struck(int expectedMessages);
    /** Notes a promise, and whether it holds. */
    void promise(bool holds, const QString &what);
    /** Notes whether all instruments go on measuring, and their recordings with them. */
    void promiseAllGoesOn();

private:
    void startInstruments(Playground playground);
    void listen();
    void startRecordings();
    void noteRound(int index, quint8 ch);
    void countRows();

    QTemporaryDir m_folder;
    InstrumentBench m_bench;
    std::vector<std::unique_ptr<QProcess>> m_simulators;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<EventLoopWatch> m_watch;
    QRandomGenerator m_chance{8};
    QHash<int, quint8> m_previousChannels; ///< by registry index, as the others
    QHash<int, qint64> m_points;
    qint64 m_rounds = 0;
    qint64 m_roundsBefore = 0; ///< the fault that loses some
    int m_messages = 0;
    Outcome m_outcome;
};
