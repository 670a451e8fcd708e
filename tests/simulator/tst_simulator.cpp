#include "simulator/commandline.h"
#include "support/instrumentbench.h"

#include <QtTest>

namespace
{

/** Lines "ms host > answer" of hexadecimal bytes; without host bytes time passes only. */
using Script = QString;

const Script synchronised = "0 33 > 33\n5 0f > aa0fff00\n";
const Script firstBlock = synchronised + "9 01 > 01000000\n";
const Script writing = "0 06 > 06\n5 0f > aa0fff00\n9 01 >\n";

/** What the instrument answers otherwise than the script says; empty if nothing. */
QString differences(InstrumentDialogue &dialogue, const Script &script)
{
    QString seen;
    for (const QString &line : script.split('\n', Qt::SkipEmptyParts)) {
        const qint64 atMs = line.section(' ', 0, 0).toLongLong();
        const QString bytes = line.section(' ', 1);
        const QByteArray host = QByteArray::fromHex(bytes.section('>', 0, 0).toLatin1());
        const QByteArray expected = QByteArray::fromHex(bytes.section('>', 1, 1).toLatin1());
        const QByteArray answer =
            host.isEmpty() ? dialogue.elapse(atMs) : dialogue.receive(host, atMs);
        if (answer != expected)
            seen += QString("at %1 ms: %2").arg(atMs).arg(QString(answer.toHex()));
    }
    return seen;
}

} // namespace

Q_DECLARE_METATYPE(FaultPlan)

/** The simulated instrument, which is to be told from a real one by nothing: byte against byte. */
class TestSimulator : public QObject
{
    Q_OBJECT
private slots:
    void dialogue_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("busy");
        QTest::addColumn<FaultPlan>("faults");
        const auto row = [](const char *name, const Script &script, bool busy = true,
                            const FaultPlan &faults = {}) {
            QTest::newRow(name) << script << busy << faults;
        };
        row("identification", firstBlock + "12 01000000 > 0f110004d2\n15 110004d2 > 0f", false);
        row("unknown addresses are left alone", "0 07 >\n5 ff >\n9 41 >\n12 09 >", false);
        row("the address may come twice", "0 33 > 33\n3 33 > 33\n5 0f > aa0fff00");
        row("patterns until the command", "0 03 > 03\n5 0f > aa0fff00\n50 >\n105 > aa0fff00\n"
                                          "205 > aa0fff00\n210 00 > 41a00000");
        row("silence ends the dialogue", "0 03 > 03\n1499 >\n1500 >\n1600 33 > 33");
        row("silence ends the synchronisation", synchronised + "1505 >", false);
        row("a wrong echo repeats the block once the host reads again",
            firstBlock + "12 aa0fff00 >\n361 >\n362 > 01000000\n370 01000000 > 0f110004d2");
        row("a short echo repeats the block", firstBlock + "12 0100 >\n362 > 01000000");
        row("no echo repeats the block", firstBlock + "758 >\n759 > 01000000");
        row("an empty log ends at once", "0 05 > 05\n5 0f > aa0fff00\n9 01 > ffffffffffffffff",
            false);
        row("a block is written",
            writing + "60 01020304 > 01020304\n62 0f > 0f\n64 05060708 > 05060708\n66 0f > 0f",
            false);
        row("a refused block comes again",
            writing + "60 01020304 > 01020304\n62 01 >\n112 01020304 > 01020304\n114 0f > 0f");
        row("a torn block is dropped",
            writing + "60 010203 >\n90 >\n560 01 >\n590 >\n610 01020304 > 01020304");
        row("the host gives up", writing + "60 01020304 > 01020304\n62 0a >\n112 aa >\n142 >",
            false);
        // two faults which a link overcomes within an attempt, as if they were not
        row("sixth byte of the answer lost", firstBlock + "12 01000000 > 0f0004d2", true,
            faultPlan(&FaultPlan::lostAnswerByte, 6));
        row("first byte of the answer altered",
            synchronised + "9 01 > 41000000\n12 41000000 >\n362 > 01000000", true,
            faultPlan(&FaultPlan::garbledAnswerByte, 1));
    }

    void dialogue()
    {
        QFETCH(FaultPlan, faults);
        QFETCH(QString, script);
        InstrumentMemory memory({"NOX B", 1234, {}, 0, true});
        InstrumentDialogue dialogue(memory);
        dialogue.setFaults(faults);
        QCOMPARE(differences(dialogue, script), QString());
        QTEST(dialogue.isBusy(), "busy");
    }

    void tokensFollowTheChannels()
    {
        const QByteArray off = QByteArray::fromHex("0000000220000000120030");
        InstrumentMemory memory({});
        memory.write(4, '\0' + QByteArray::fromHex("0000000220000001020030")); // Ω
        memory.write(4, '\2' + QByteArray::fromHex("0000000220000001220030")); // mV
        for (const char channel : {3, 4, 5, 6})
            memory.write(4, channel + off);
        const QByteArray before = memory.block(2);
        memory.write(4, char(8) + off); // which the model does not have
        QCOMPARE(memory.block(2), before);
        ThermometrySignal signal;
        signal.noiseMillikelvin = signal.channelSpreadMillikelvin = 0.0;
        MeasurementStream stream(signal);
        QByteArray round;
        for (int i = 0; i < 5; ++i)
            round += stream.nextToken(memory, 1.0e6);
        QCOMPARE(round, QByteArray("1:111.67292A 2:30.0000B 3:1.20450C 8:30.0000B 1:111.67292A "));
    }

    void commandLine()
    {
        const auto commandOf = [](const QString &line) {
            return readSimulatorCommand(QStringList{"nox8-sim"} + line.split(' '));
        };
        QCOMPARE(commandOf("--serial 77 --rate 12.5").instrument.identity.serialNumber,
                 quint16(77));
        for (const char *refused : {"--colour red", "--serial 65536", "--rate nan", "--ignore -1"})
            QVERIFY2(commandOf(refused).kind == SimulatorCommand::Refuse, refused);
    }
};

QTEST_GUILESS_MAIN(TestSimulator)
#include "tst_simulator.moc"
