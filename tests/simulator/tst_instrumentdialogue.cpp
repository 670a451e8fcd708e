#include "simulator/instrumentdialogue.h"
#include "simulator/instrumentmemory.h"

#include <QtTest>

#include <functional>

namespace
{

/** One line of a script: what the host sends at a moment, and what must come back. */
struct Step {
    qint64 atMs;
    QByteArray host;
    QByteArray answer;
};

/** Reads lines "ms host > answer" of hexadecimal bytes; without host bytes time passes only. */
QVector<Step> stepsOf(const QString &script)
{
    QVector<Step> steps;
    for (const QString &line : script.split('\n', Qt::SkipEmptyParts)) {
        const QString moment = line.trimmed().section(' ', 0, 0);
        const QString bytes = line.trimmed().section(' ', 1);
        steps += {moment.toLongLong(), QByteArray::fromHex(bytes.section('>', 0, 0).toLatin1()),
                  QByteArray::fromHex(bytes.section('>', 1, 1).toLatin1())};
    }
    return steps;
}

FaultPlan planWith(const std::function<void(FaultPlan &)> &change)
{
    FaultPlan plan;
    change(plan);
    return plan;
}

QVector<ExchangeEvent::Kind> kindsOf(const QVector<ExchangeEvent> &events)
{
    QVector<ExchangeEvent::Kind> kinds;
    for (const ExchangeEvent &event : events)
        kinds += event.kind;
    return kinds;
}

} // namespace

Q_DECLARE_METATYPE(FaultPlan)

class TestInstrumentDialogue : public QObject
{
    Q_OBJECT
private slots:
    void dialogue_data();
    void dialogue();
    void faults_data();
    void faults();
    void abandonedWriteChangesNothing();
    void stepsAreLogged();

private:
    void play(InstrumentDialogue &dialogue, const QString &script);
};

/** Plays a script and compares each answer. */
void TestInstrumentDialogue::play(InstrumentDialogue &dialogue, const QString &script)
{
    for (const Step &step : stepsOf(script)) {
        const QByteArray answer = step.host.isEmpty() ? dialogue.elapse(step.atMs)
                                                      : dialogue.receive(step.host, step.atMs);
        QVERIFY2(answer == step.answer,
                 qPrintable(QStringLiteral("at %1 ms: %2 instead of %3")
                                .arg(step.atMs)
                                .arg(QString::fromLatin1(answer.toHex()),
                                     QString::fromLatin1(step.answer.toHex()))));
    }
}

void TestInstrumentDialogue::dialogue_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("busyAtEnd");

    QTest::newRow("standard identification") << "NOX B"
                                             << "0 33 > 33\n"
                                                "5 0f > aa0fff00\n"
                                                "9 01 > 01000000\n"
                                                "12 01000000 > 0f110004d2\n"
                                                "15 110004d2 > 0f"
                                             << false;
    QTest::newRow("extended identification")
        << "NOX CM rev.4"
        << "0 33 > 33\n5 0f > aa0fff00\n9 02 > 0faa5009\n"
           "12 0faa5009 > 0fcaf3e100\n13 caf3e100 > 0f00000000\n14 00000000 > 0f00000000\n"
           "15 00000000 > 0f00000000\n16 00000000 > 0fd2040000\n17 d2040000 > 0f"
        << false;
    QTest::newRow("an unknown address is left alone") << "NOX B"
                                                      << "0 07 >\n5 ff >\n9 41 >" << false;
    QTest::newRow("a basic model has no zero shifts") << "NOX B"
                                                      << "0 09 >\n5 08 >\n9 34 >" << false;
    QTest::newRow("the address may come twice") << "NOX B"
                                                << "0 33 > 33\n3 33 > 33\n5 0f > aa0fff00" << true;
    QTest::newRow("the pattern is repeated until the command comes")
        << "NOX B"
        << "0 03 > 03\n5 0f > aa0fff00\n50 >\n105 > aa0fff00\n205 > aa0fff00\n210 00 > 41a00000"
        << true;
    QTest::newRow("silence ends the dialogue") << "NOX B"
                                               << "0 03 > 03\n1499 >\n1500 >\n1600 33 > 33" << true;
    QTest::newRow("silence ends the synchronisation")
        << "NOX B"
        << "0 03 > 03\n5 0f > aa0fff00\n1505 >" << false;
    QTest::newRow("a wrong echo repeats the block once the host reads again")
        << "NOX B"
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 01000000\n"
           "12 aa0fff00 >\n100 >\n361 >\n362 > 01000000\n370 01000000 > 0f110004d2"
        << true;
    QTest::newRow("a short echo repeats the block")
        << "NOX B"
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 01000000\n12 0100 >\n362 > 01000000" << true;
    QTest::newRow("no echo at all repeats the block")
        << "NOX B"
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 01000000\n758 >\n759 > 01000000" << true;
    QTest::newRow("an empty log ends at once") << "NOX B"
                                               << "0 05 > 05\n5 0f > aa0fff00\n"
                                                  "9 01 > ffffffffffffffff"
                                               << false;
    QTest::newRow("a block is written") << "NOX B"
                                        << "0 06 > 06\n5 0f > aa0fff00\n9 01 >\n"
                                           "60 01020304 > 01020304\n62 0f > 0f\n"
                                           "64 05060708 > 05060708\n66 0f > 0f"
                                        << false;
    QTest::newRow("a refused block comes again")
        << "NOX B"
        << "0 06 > 06\n5 0f > aa0fff00\n9 01 >\n60 01020304 > 01020304\n62 01 >\n"
           "112 01020304 > 01020304\n114 0f > 0f"
        << true;
    QTest::newRow("the remains of a torn block are dropped")
        << "NOX B"
        << "0 06 > 06\n5 0f > aa0fff00\n9 01 >\n60 010203 >\n90 >\n"
           "560 01 >\n590 >\n610 01020304 > 01020304"
        << true;
    QTest::newRow("the host gives up after ten refusals")
        << "NOX B"
        << "0 06 > 06\n5 0f > aa0fff00\n9 01 >\n60 01020304 > 01020304\n62 0a >\n"
           "112 aa >\n142 >"
        << false;
    QTest::newRow("a word is read without synchronisation")
        << "NOX D rev.4"
        << "0 09 > 09\n5 0f > baebedfa" << false;
    QTest::newRow("a word is written without synchronisation")
        << "NOX D rev.4"
        << "0 34 > 34\n5 0f >\n9 07000000 > 07000000\n12 0faa0faa >" << false;
}

void TestInstrumentDialogue::dialogue()
{
    QFETCH(QString, model);
    QFETCH(QString, script);
    InstrumentMemory memory({model, 1234, QStringLiteral("Куб"), 0, true});
    DialogueSettings settings;
    if (model == "NOX D rev.4")
        settings.wordAddresses = {9, 52};
    InstrumentDialogue dialogue(memory, settings);

    play(dialogue, script);
    QTEST(dialogue.isBusy(), "busyAtEnd");
}

void TestInstrumentDialogue::faults_data()
{
    QTest::addColumn<FaultPlan>("plan");
    QTest::addColumn<QString>("script");

    QTest::newRow("two addresses ignored")
        << planWith([](auto &p) { p.ignoredAddressings = 2; }) << "0 33 >\n9 33 >\n18 33 > 33";
    QTest::newRow("wrong address echo")
        << planWith([](auto &p) { p.wrongAddressEchoes = 1; }) << "0 33 > 73\n9 33 > 33";
    QTest::newRow("a byte beside the echo")
        << planWith([](auto &p) { p.extraEchoBytes = 1; }) << "0 33 > 3373\n9 33 > 33";
    QTest::newRow("no synchronisation")
        << planWith([](auto &p) { p.missingSynchronisations = 1; })
        << "0 33 > 33\n5 0f >\n100 >\n1600 >\n1700 33 > 33\n1705 0f > aa0fff00";
    QTest::newRow("wrong patterns") << planWith([](auto &p) { p.wrongPatterns = 2; })
                                    << "0 33 > 33\n5 0f > ea0fff00\n105 > ea0fff00\n205 > aa0fff00";
    QTest::newRow("twenty wrong patterns outlast the time-out")
        << planWith([](auto &p) { p.wrongPatterns = 20; })
        << "0 33 > 33\n5 0f > ea0fff00\n1600 > ea0fff00\n2000 > ea0fff00";
    QTest::newRow("missing confirmation")
        << planWith([](auto &p) { p.missingConfirmations = 1; })
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 01000000\n12 01000000 >\n"
           "362 > 01000000\n365 01000000 > 0f110004d2";
    QTest::newRow("wrong confirmation")
        << planWith([](auto &p) { p.wrongConfirmations = 1; })
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 01000000\n12 01000000 > f0\n362 > 01000000";
    QTest::newRow("short block") << planWith([](auto &p) { p.shortBlocks = 1; })
                                 << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 0100\n"
                                    "509 0100 >\n859 > 01000000";
    QTest::newRow("short record, then silence") << planWith([](auto &p) { p.shortBlocks = 1; })
                                                << "0 05 > 05\n5 0f > aa0fff00\n"
                                                   "9 01 > ffffffffffff\n500 >";
    QTest::newRow("written block echoed wrongly")
        << planWith([](auto &p) { p.wrongBlockEchoes = 1; })
        << "0 06 > 06\n5 0f > aa0fff00\n9 01 >\n60 01020304 > 41020304\n62 01 >\n"
           "112 01020304 > 01020304";
    QTest::newRow("written block without confirmation: the instrument waits for the next")
        << planWith([](auto &p) { p.missingConfirmations = 1; })
        << "0 06 > 06\n5 0f > aa0fff00\n9 01 >\n60 01020304 > 01020304\n62 0f >\n2000 >\n"
           "2070 05060708 > 05060708";
    QTest::newRow("silence after one block")
        << planWith([](auto &p) { p.silentAfterBlocks = 1; })
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 01000000\n12 01000000 > 0f\n800 >\n1000 01 >";
    QTest::newRow("sixth byte of the answer lost")
        << planWith([](auto &p) { p.lostAnswerByte = 6; })
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 01000000\n12 01000000 > 0f0004d2";
    QTest::newRow("first byte of the answer altered")
        << planWith([](auto &p) { p.garbledAnswerByte = 1; })
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 41000000\n12 41000000 >\n362 > 01000000";
    QTest::newRow("plug pulled in the middle of a block")
        << planWith([](auto &p) { p.unplugAfterAnswerBytes = 2; })
        << "0 33 > 33\n5 0f > aa0fff00\n9 01 > 0100";
}

void TestInstrumentDialogue::faults()
{
    QFETCH(FaultPlan, plan);
    QFETCH(QString, script);
    InstrumentMemory memory({QStringLiteral("NOX B"), 1234, {}, 0, true});
    InstrumentDialogue dialogue(memory);
    dialogue.setFaults(plan);

    play(dialogue, script);
    QCOMPARE(dialogue.takeUnplug(), plan.unplugAfterAnswerBytes > 0);
    QVERIFY(!dialogue.takeUnplug());
}

void TestInstrumentDialogue::abandonedWriteChangesNothing()
{
    InstrumentMemory memory({QStringLiteral("NOX B"), 7, {}, 0, true});
    const QByteArray before = memory.block(3);
    InstrumentDialogue dialogue(memory);

    play(dialogue,
         "0 01 > 01\n1 0f > aa0fff00\n2 01 >\n60 01020304 > 01020304\n62 0f > 0f\n2000 >");
    QVERIFY(!dialogue.isBusy());
    QCOMPARE(memory.block(3), before);
}

void TestInstrumentDialogue::stepsAreLogged()
{
    InstrumentMemory memory({QStringLiteral("NOX B"), 7, {}, 0, true});
    InstrumentDialogue dialogue(memory);
    play(dialogue, "0 06 > 06\n5 0f > aa0fff00\n9 01 >\n60 01020304 > 01020304\n62 0f > 0f\n"
                   "64 05060708 > 05060708\n66 0f > 0f");

    const auto events = dialogue.takeEvents();
    using Event = ExchangeEvent;
    const QVector<Event::Kind> expected = {
        Event::AddressReceived, Event::EchoSent,           Event::SyncSent,
        Event::CommandReceived, Event::WriteBlockReceived, Event::WriteBlockReceived,
        Event::WriteCompleted,
    };
    QCOMPARE(kindsOf(events), expected);
    QCOMPARE(events.constLast().atMs, qint64(66));
    QCOMPARE(events.constLast().address, quint8(6));
    QVERIFY(dialogue.takeEvents().isEmpty());
}

QTEST_GUILESS_MAIN(TestInstrumentDialogue)
#include "tst_instrumentdialogue.moc"
