#include "serial/linkschedule.h"

#include <QtTest>

Q_DECLARE_METATYPE(ExchangeKind)

class TestRetrySchedule : public QObject
{
    Q_OBJECT
private slots:
    void attempts_data();
    void attempts();
    void emptyReplies();
    void startsAreSpread();
};

void TestRetrySchedule::attempts_data()
{
    QTest::addColumn<ExchangeKind>("kind");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("expected"); // r retry, o reopen and retry, q quick retry

    QTest::newRow("block, normal") << ExchangeKind::BlockRead << 0 << QByteArray("ror");
    QTest::newRow("block, once") << ExchangeKind::BlockRead << 1 << QByteArray("");
    QTest::newRow("block, fast") << ExchangeKind::BlockRead << 2 << QByteArray("qq");
    QTest::newRow("block, once and fast") << ExchangeKind::BlockRead << 3 << QByteArray("");
    QTest::newRow("block, empty") << ExchangeKind::BlockRead << 8 << QByteArray("ror");
    QTest::newRow("records, once") << ExchangeKind::RecordRead << 1 << QByteArray("ror");
    QTest::newRow("records, fast") << ExchangeKind::RecordRead << 2 << QByteArray("ror");
    QTest::newRow("word, once and fast") << ExchangeKind::WordRead << 3 << QByteArray("ror");
    QTest::newRow("write, once and fast") << ExchangeKind::Write << 3 << QByteArray("ror");
}

void TestRetrySchedule::attempts()
{
    QFETCH(ExchangeKind, kind);
    QFETCH(int, mode);
    QFETCH(QByteArray, expected);

    QByteArray steps;
    quint8 failed = 0;
    for (int guard = 0; guard < 10; ++guard) {
        const RetryStep step = nextRetryStep(kind, noxQueryMode(mode), failed);
        failed = step.attempts;
        if (step.action == RetryStep::GiveUp)
            break;
        steps += step.action == RetryStep::Retry          ? 'r'
                 : step.action == RetryStep::RetryQuickly ? 'q'
                                                          : 'o';
    }
    QCOMPARE(steps, expected);
}

void TestRetrySchedule::emptyReplies()
{
    const auto empty = noxQueryModeEmpty;
    QVERIFY(deliversEmptyReply(ExchangeKind::BlockRead, empty));
    QVERIFY(deliversEmptyReply(ExchangeKind::RecordRead, noxQueryMode(empty | noxQueryModeOnce)));
    QVERIFY(!deliversEmptyReply(ExchangeKind::WordRead, empty));
    QVERIFY(!deliversEmptyReply(ExchangeKind::Write, empty));
    QVERIFY(!deliversEmptyReply(ExchangeKind::BlockRead, noxQueryModeFast));
}

void TestRetrySchedule::startsAreSpread()
{
    LinkTiming timing;
    int earliest = INT_MAX;
    int latest = 0;
    for (int i = 0; i < 20000; ++i) {
        const int delay = startDelay(timing, timing.attemptDelay);
        earliest = qMin(earliest, delay);
        latest = qMax(latest, delay);
    }
    QCOMPARE(earliest, 3400);
    QCOMPARE(latest, 3899);

    timing.startSpread = 0;
    QCOMPARE(startDelay(timing, 0), 400);
}

QTEST_GUILESS_MAIN(TestRetrySchedule)
#include "tst_retryschedule.moc"
