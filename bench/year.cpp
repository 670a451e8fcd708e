/// Measures for 400 days, in minutes: the real window and a simulated instrument, whose rounds come
/// as fast as the program takes them, while the clock that stamps them goes on by 15 s each.
///
/// The days have what days bring: midnights, summer time, a clock that is set back by an hour and
/// forward by a day, a plug that is pulled and put back every few hours. All is recorded. What the
/// program costs is printed as it goes, and at the end how it compares with the beginning.

#include "app/mainwindow.h"
#include "eventloopwatch.h"
#include "fleet.h"
#include "plot/qwtnox.h"
#include "quietdatabase.h"
#include "registry/findnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "support/instrumentbench.h"
#include "widgets/userdialogs.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <malloc.h>

namespace
{

constexpr int channels = 16;
constexpr int secondsPerRound = 15;
constexpr int hoursPerLink = 8;   ///< after which the plug is pulled
constexpr int daysPerLine = 20;   ///< of the table
constexpr int stepOfAnHour = 13;  ///< of the time axis, in the list of steps
constexpr int warmUp = 2;         ///< stretches, until the plot packs what is long ago
constexpr int patienceMs = 30000; ///< for an answer of the link
constexpr int settleMs = 30;
constexpr int writeDelayMs = 10;
constexpr double mostGrowth = 1.1;
const QString portName = QStringLiteral("YEAR");

/** What the program has of the computer at a moment. */
struct Holdings {
    double heapBytes;
    int files;
    int threads;
    int objects;
};

int entriesOf(const char *directory)
{
    return QDir(QLatin1String(directory)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size();
}

Holdings holdingsOf(const MainWindow &window)
{
    const struct mallinfo2 heap = mallinfo2();
    return {double(heap.uordblks) + double(heap.hblkhd), entriesOf("/proc/self/fd"),
            entriesOf("/proc/self/task"), window.findChildren<QObject *>().size()};
}

/** The mean of what is added. */
struct Mean {
    double sum = 0;
    int count = 0;

    void add(double value)
    {
        sum += value;
        ++count;
    }
    double value() const { return sum / count; }
};

/** What a stretch of days cost. */
struct Cost {
    double bytesPerPoint = 0;  ///< that the heap has grown by
    Mean microsecondsPerPoint; ///< of the processor, in each hour, frames included
    Mean frameMs;              ///< that paints the whole plot, at the end of each hour
    Mean gapMs;                ///< the longest one of the event loop in each hour, without waiting
                               ///< for a processor
    Mean linkMs;               ///< of the processor, for a plug that is pulled and found again
};

/** Exchanges begin soon; but on a busy machine an answer may take its time, as in life. */
LinkTiming timing()
{
    LinkTiming timing = shortTiming();
    const LinkTiming usual;
    timing.initDelay = usual.initDelay;
    timing.unitTimeout = usual.unitTimeout;
    timing.confirmTimeout = usual.confirmTimeout;
    return timing;
}

/** The program, the instrument, and the clock that both go by. */
class Year
{
public:
    explicit Year(int days)
        : m_days(days)
    {
        UserDialogs::current().tell = [this](QWidget *, const Message &) { ++m_messages; };
        m_window.plot()->setClock([this] { return now(); });
        m_window.serialPort()->setLinkTiming(timing());
        QObject::connect(m_window.plot(), &QwtNOX::onAddPoint, &m_window, [this] { ++m_points; });
        m_heartbeat.start(1);
        m_window.resize(1280, 800);
        m_window.show();
    }

    /** 0 when all points came and nothing grew. */
    int run()
    {
        SimulatedInstrumentOptions options = m_bench.steadyInstrument();
        options.identity.modelName = QStringLiteral("NOX CM1"); // 16 channels
        options.streaming = false;                              // the rounds come from here
        m_bench.add(portName, options);
        if (!connects())
            return 1;
        record();
        m_window.plot()->changeScaleX(stepOfAnHour); // the view goes with the points
        for (int day = 0; day < m_days; ++day) {
            if (day % daysPerLine == 0)
                openStretch();
            if (!passDay(day))
                return 1;
            if ((day + 1) % daysPerLine == 0)
                closeStretch(day + 1);
        }
        return compare();
    }

private:
    bool passDay(int day)
    {
        if (day == m_days / 3)
            m_clockOffsetMs -= 60 * 60 * 1000;
        if (day == m_days / 2)
            m_clockOffsetMs += 24 * 60 * 60 * 1000;
        for (int hour = 0; hour < 24; ++hour) {
            if (hour % hoursPerLink == 0 && !reconnects())
                return false;
            if (!passHour())
                return false;
        }
        return true;
    }

    bool passHour()
    {
        constexpr int rounds = 60 * 60 / secondsPerRound;
        QByteArray text;
        for (int round = 0; round < rounds; ++round)
            text += nextRound();
        m_sent += rounds * channels;
        const EventLoopWatch watch;
        const double before = processorSeconds();
        m_bench.host.sendRaw(portName, text);
        if (!waitUntil([this] { return m_points == m_sent; }))
            return false;
        m_cost.microsecondsPerPoint.add(1e6 * (processorSeconds() - before) / (rounds * channels));
        m_cost.gapMs.add(watch.longestOwn());
        timeFrame();
        return true;
    }

    QByteArray nextRound()
    {
        QByteArray text;
        for (int ch = 1; ch <= channels; ++ch)
            text += QByteArray::number(ch) + ':' +
                    QByteArray::number(20 + ch + valueOf(ch), 'f', 4) + "B ";
        return text;
    }

    /** The rounds that have come tell what time it is. */
    QDateTime now() const
    {
        const qint64 rounds = m_points / channels;
        return QDateTime::fromMSecsSinceEpoch(m_startMs + m_clockOffsetMs +
                                              1000 * secondsPerRound * rounds);
    }

    /** Slow waves with noise of some mK, as 4 decimals. */
    double valueOf(int channel)
    {
        m_noise = m_noise * 1664525U + 1013904223U;
        return std::sin(double(m_points) * 1e-6 * channel) + double(m_noise >> 16) * 1e-7;
    }

    void timeFrame()
    {
        QElapsedTimer timer;
        timer.start();
        m_window.plot()->replot();
        QCoreApplication::processEvents();
        m_cost.frameMs.add(double(timer.nsecsElapsed()) / 1e6);
    }

    /** The plug goes and comes back, and the operator has the instrument searched for. */
    bool reconnects()
    {
        const double before = processorSeconds();
        m_bench.host.unplug(portName);
        const auto isGone = [this] {
            return !m_window.registry()->getNoxByIndex(0)->isConnected();
        };
        if (!waitUntil(isGone))
            return false;
        m_bench.plugIn(portName);
        ++m_reconnections;
        if (!connects())
            return false;
        m_cost.linkMs.add(1e3 * (processorSeconds() - before));
        return true;
    }

    bool connects()
    {
        m_settling.start();
        m_window.discovery()->find(true, 0, 0);
        const bool isRead = waitUntil([this] {
            const noxList::_nox *nox = m_window.registry()->getNoxByIndex(0);
            return nox && nox->isConnected() && !m_window.discovery()->isVisible();
        });
        if (!isRead)
            return false;
        m_window.registry()->getNoxByIndex(0)->txTimer->setInterval(writeDelayMs);
        return waitUntil([this] { return hasSettled(); });
    }

    /** Nothing has been exchanged, or is still to be written, for a while: measurements flow. */
    bool hasSettled()
    {
        const noxList::_nox *nox = m_window.registry()->getNoxByIndex(0);
        if (m_window.serialPort()->hasExchanges(nox->devIndex) || !nox->txCodes.isEmpty())
            m_settling.start();
        return m_settling.hasExpired(settleMs);
    }

    void record()
    {
        noxList::_nox *nox = m_window.registry()->getNoxByIndex(0);
        nox->recFileName = m_folder.filePath(QStringLiteral("year.csv"));
        m_window.registry()->setRecording(0, true);
    }

    template<typename Condition>
    bool waitUntil(Condition condition)
    {
        QElapsedTimer timer;
        timer.start();
        while (!condition()) {
            if (timer.hasExpired(patienceMs)) {
                std::fprintf(stderr, "no answer after %lld points of %lld, %d reconnections%s\n",
                             static_cast<long long>(m_points), static_cast<long long>(m_sent),
                             m_reconnections,
                             m_window.discovery()->isVisible() ? ", the search goes on" : "");
                return false;
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return true;
    }

    void openStretch()
    {
        m_cost = {};
        m_pointsBefore = m_points;
        m_before = holdingsOf(m_window);
    }

    void closeStretch(int day)
    {
        const Holdings holdings = holdingsOf(m_window);
        m_cost.bytesPerPoint =
            (holdings.heapBytes - m_before.heapBytes) / double(m_points - m_pointsBefore);
        m_costs.append(m_cost);
        m_holdings.append(holdings);
        std::printf("%5d %9lld", day, static_cast<long long>(m_points));
        for (const double figure : figuresOf(m_cost))
            std::printf(" %8.2f", figure);
        std::printf(" %6d %8d %8d %13d\n", holdings.files, holdings.threads, holdings.objects,
                    m_reconnections);
        std::fflush(stdout);
    }

    /** In the order of the table. */
    static QVector<double> figuresOf(const Cost &cost)
    {
        return {cost.bytesPerPoint, cost.microsecondsPerPoint.value(), cost.frameMs.value(),
                cost.gapMs.value(), cost.linkMs.value()};
    }

    /** The median of a figure over some of the stretches: the machine has other things to do. */
    double medianOf(int figure, int firstStretch, int stretches) const
    {
        QVector<double> values;
        for (int i = 0; i < stretches; ++i)
            values.append(figuresOf(m_costs[firstStretch + i])[figure]);
        std::sort(values.begin(), values.end());
        return values[stretches / 2];
    }

    /** The last quarter of the days beside the first one, after the warm-up. */
    int compare() const
    {
        const int quarter = (m_costs.size() - warmUp + 3) / 4;
        const int figures = figuresOf(m_costs.first()).size();
        bool isSteady = true;
        std::printf("%-15s", "last to first");
        for (int figure = 0; figure < figures; ++figure) {
            const double growth = medianOf(figure, m_costs.size() - quarter, quarter) /
                                  medianOf(figure, warmUp, quarter);
            isSteady = isSteady && growth <= mostGrowth;
            std::printf(" %8.2f", growth);
        }
        std::printf("\n");
        const Holdings &begin = m_holdings.first();
        const Holdings &end = m_holdings.last();
        const bool isSame = begin.files == end.files && begin.threads == end.threads &&
                            begin.objects == end.objects;
        return isSteady && isSame && m_messages == m_reconnections ? 0 : 1;
    }

    const int m_days;
    const QTemporaryDir m_folder;
    InstrumentBench m_bench;
    MainWindow m_window;
    const qint64 m_startMs = QDateTime({2026, 3, 1}, {12, 0}).toMSecsSinceEpoch();
    qint64 m_clockOffsetMs = 0;
    Holdings m_before = {};
    qint64 m_pointsBefore = 0;
    Cost m_cost;
    QVector<Cost> m_costs;
    QVector<Holdings> m_holdings;
    int m_messages = 0;       ///< that came by themselves
    QTimer m_heartbeat;       ///< so that who waits looks again
    QElapsedTimer m_settling; ///< since the latest exchange
    qint64 m_points = 0;
    qint64 m_sent = 0;
    quint32 m_noise = 1;
    int m_reconnections = 0;
};

} // namespace

int main(int argc, char **argv)
{
    const int days = argc > 1 ? qMax((warmUp + 2) * daysPerLine, QByteArray(argv[1]).toInt()) : 400;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("TZ", "Europe/Berlin"); // which has summer time
    const QApplication application(argc, argv);
    const QuietDatabase database;
    std::printf("%d days of 16 channels, a round every 15 s, recorded, in the real window; the "
                "plug is pulled every 8 h\n",
                days);
    std::printf("%5s %9s %8s %8s %8s %8s %8s %6s %8s %8s %13s\n", "day", "points", "bytes/pt",
                "us/pt", "frame,ms", "gap,ms", "link,ms", "files", "threads", "objects",
                "reconnections");
    std::fflush(stdout);
    return Year(days).run();
}
