#include "faulttrial.h"
#include "support/linewatch.h"

#include <QtTest>

#include <algorithm>
#include <memory>
#include <numeric>
#include <vector>

namespace
{

constexpr int heldUpMs = 20; // far below the waits of a link under trial
constexpr int mostRepetitions = 6;

} // namespace

/**
 * Faults in every stage of every exchange, seen from both ends: what the multiplexer fires and what
 * the instrument receives. Nearly all of a trial is waiting, so all of them run at once.
 */
class TestLinkFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void firesItsSignalsInOrder_data() { trialRows(); }
    void firesItsSignalsInOrder();
    void repeatsOnSchedule_data() { trialRows(); }
    void repeatsOnSchedule();
    void leavesBlockAndStreamIntact_data() { trialRows(); }
    void leavesBlockAndStreamIntact();
    void refusedUnitsAreCounted();

private:
    void run(const std::vector<size_t> &due);
    void trialRows();
    FaultTrial &trial() { return *trials.at(size_t(index)); }

    InstrumentBench bench;
    std::vector<std::unique_ptr<FaultTrial>> trials;
    int index = 0; ///< of the trial that a row looks at
};

void TestLinkFaults::initTestCase()
{
    const auto rows = faultRows();
    for (const FaultRow &row : rows)
        trials.push_back(std::make_unique<FaultTrial>(bench, row));
    LineWatch line;
    std::vector<size_t> due(trials.size());
    std::iota(due.begin(), due.end(), 0);
    run(due);

    // what was seen while the system held bytes up tells nothing; else it is the last word
    for (int i = 0; i < mostRepetitions && line.takeSlowestMs() >= heldUpMs; ++i) {
        due.erase(std::remove_if(due.begin(), due.end(),
                                 [this](size_t one) { return trials.at(one)->isAsExpected(); }),
                  due.end());
        if (due.empty())
            return;
        qInfo("bytes were held up, %d trials once more", int(due.size()));
        for (size_t one : due)
            trials.at(one) = std::make_unique<FaultTrial>(bench, FaultRow(trials.at(one)->row));
        line.takeSlowestMs();
        run(due);
    }
}

/** Runs the trials of these numbers side by side. */
void TestLinkFaults::run(const std::vector<size_t> &due)
{
    const auto countOf = [&](auto isTrue) {
        return std::count_if(due.begin(), due.end(),
                             [&](size_t one) { return isTrue(*trials.at(one)); });
    };
    const auto all = std::ptrdiff_t(due.size());
    QTRY_COMPARE_WITH_TIMEOUT(countOf([](FaultTrial &one) { return one.isStreaming(); }), all,
                              30000);
    for (size_t one : due)
        trials.at(one)->start();
    QTRY_COMPARE_WITH_TIMEOUT(countOf([](FaultTrial &one) { return one.isOver(); }), all, 60000);
}

void TestLinkFaults::trialRows()
{
    QTest::addColumn<int>("trialIndex");
    for (size_t i = 0; i < trials.size(); ++i)
        QTest::newRow(trials.at(i)->row.name) << int(i);
}

void TestLinkFaults::firesItsSignalsInOrder()
{
    QFETCH(int, trialIndex);
    index = trialIndex;
    const QStringList expected = trial().expectedLines();
    const QStringList fired = trial().journal.lines;
    for (int i = 0; i < std::min(expected.size(), fired.size()); ++i)
        QCOMPARE(QString("%1: %2").arg(i).arg(fired.at(i)),
                 QString("%1: %2").arg(i).arg(expected.at(i)));
    QCOMPARE(fired.size(), expected.size());
}

void TestLinkFaults::repeatsOnSchedule()
{
    QFETCH(int, trialIndex);
    index = trialIndex;
    QCOMPARE(trial().scheduleFault(), QString());
    QCOMPARE(trial().opens(), 1 + trial().expectedReopenings());
}

void TestLinkFaults::leavesBlockAndStreamIntact()
{
    QFETCH(int, trialIndex);
    index = trialIndex;
    QCOMPARE(trial().journal.foreignMeasurements(), QVector<ChannelValue>());
    QCOMPARE(trial().instrumentBlock(), trial().expectedBlock());
    for (const QByteArray &reply : trial().journal.replies)
        QCOMPARE(reply, trial().expectedReply());
}

void TestLinkFaults::refusedUnitsAreCounted()
{
    // the instrument hears 1 to 10, and the failure of the tenth ends the attempt
    const auto refused = std::find_if(trials.begin(), trials.end(), [](const auto &one) {
        return one->row.exchange == Exchange::BlockWrite && one->row.faults.wrongBlockEchoes == 10;
    });
    QByteArray counts;
    const auto events = bench.host.exchanges((*refused)->portName);
    for (const ExchangeEvent &event : events)
        if (event.kind == ExchangeEvent::WriteBlockRefused)
            counts += char(event.value);
    QCOMPARE(counts.toHex(), QByteArray("0102030405060708090a"));
    QCOMPARE(bench.steps((*refused)->portName, ExchangeEvent::Aborted), 1);
}

QTEST_GUILESS_MAIN(TestLinkFaults)
#include "tst_linkfaults.moc"
