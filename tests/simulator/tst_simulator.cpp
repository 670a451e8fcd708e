#include "device/callendarvandusen.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"
#include "simulator/commandline.h"
#include "simulator/instrumentdialogue.h"
#include "simulator/instrumentmemory.h"
#include "simulator/linefaults.h"
#include "simulator/measurementstream.h"

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

FaultPlan plan(int FaultPlan::*fault, int strikes = 1)
{
    FaultPlan faults;
    faults.*fault = strikes;
    return faults;
}

SimulatorCommand commandOf(const QString &line)
{
    return readSimulatorCommand(QStringList{"nox8-sim"} + line.split(' ', Qt::SkipEmptyParts));
}

/** The bytes that switch a channel (from 0) off, or make it measure something else. */
QByteArray channelBlock(char channel, const char *rest)
{
    return channel + QByteArray::fromHex(rest);
}

} // namespace

Q_DECLARE_METATYPE(FaultPlan)

/** The parts of the simulated instrument, without a line: byte against byte. */
class TestSimulator : public QObject
{
    Q_OBJECT
private slots:
    void dialogue_data()
    {
        QTest::addColumn<FaultPlan>("faults");
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("busy");
        using P = FaultPlan;
        struct Row {
            const char *name;
            Script script;
            bool busy = true;
            FaultPlan faults = {};
        };
        const QVector<Row> rows = {
            {"identification", firstBlock + "12 01000000 > 0f110004d2\n15 110004d2 > 0f", false},
            {"unknown addresses are left alone", "0 07 >\n5 ff >\n9 41 >\n12 09 >", false},
            {"the address may come twice", "0 33 > 33\n3 33 > 33\n5 0f > aa0fff00"},
            {"patterns until the command",
             "0 03 > 03\n5 0f > aa0fff00\n50 >\n105 > aa0fff00\n205 > aa0fff00\n210 00 > 41a00000"},
            {"silence ends the dialogue", "0 03 > 03\n1499 >\n1500 >\n1600 33 > 33"},
            {"silence ends the synchronisation", synchronised + "1505 >", false},
            {"a wrong echo repeats the block once the host reads again",
             firstBlock + "12 aa0fff00 >\n361 >\n362 > 01000000\n370 01000000 > 0f110004d2"},
            {"a short echo repeats the block", firstBlock + "12 0100 >\n362 > 01000000"},
            {"no echo repeats the block", firstBlock + "758 >\n759 > 01000000"},
            {"an empty log ends at once", "0 05 > 05\n5 0f > aa0fff00\n9 01 > ffffffffffffffff",
             false},
            {"a block is written",
             writing + "60 01020304 > 01020304\n62 0f > 0f\n64 05060708 > 05060708\n66 0f > 0f",
             false},
            {"a refused block comes again",
             writing + "60 01020304 > 01020304\n62 01 >\n112 01020304 > 01020304\n114 0f > 0f"},
            {"a torn block is dropped",
             writing + "60 010203 >\n90 >\n560 01 >\n590 >\n610 01020304 > 01020304"},
            {"the host gives up", writing + "60 01020304 > 01020304\n62 0a >\n112 aa >\n142 >",
             false},
            {"two addresses ignored", "0 33 >\n9 33 >\n18 33 > 33", true,
             plan(&P::ignoredAddressings, 2)},
            {"wrong address echo", "0 33 > 73\n9 33 > 33", true, plan(&P::wrongAddressEchoes)},
            {"a byte beside the echo", "0 33 > 3373\n9 33 > 33", true, plan(&P::extraEchoBytes)},
            {"no synchronisation",
             "0 33 > 33\n5 0f >\n100 >\n1600 >\n1700 33 > 33\n1705 0f > aa0fff00", true,
             plan(&P::missingSynchronisations)},
            {"wrong patterns outlast the time-out",
             "0 33 > 33\n5 0f > ea0fff00\n1600 > ea0fff00\n2000 > ea0fff00", true,
             plan(&P::wrongPatterns, 20)},
            {"missing confirmation",
             firstBlock + "12 01000000 >\n362 > 01000000\n365 01000000 > 0f110004d2", true,
             plan(&P::missingConfirmations)},
            {"wrong confirmation", firstBlock + "12 01000000 > f0\n362 > 01000000", true,
             plan(&P::wrongConfirmations)},
            {"short block", synchronised + "9 01 > 0100\n509 0100 >\n859 > 01000000", true,
             plan(&P::shortBlocks)},
            {"wrong echo of a written block",
             writing + "60 01020304 > 41020304\n62 01 >\n112 01020304 > 01020304", true,
             plan(&P::wrongBlockEchoes)},
            {"unconfirmed, it waits for the next block",
             writing + "60 01020304 > 01020304\n62 0f >\n2000 >\n2070 05060708 > 05060708", true,
             plan(&P::missingConfirmations)},
            {"silence after one block", firstBlock + "12 01000000 > 0f\n800 >\n1000 01 >", true,
             plan(&P::silentAfterBlocks)},
            {"sixth byte of the answer lost", firstBlock + "12 01000000 > 0f0004d2", true,
             plan(&P::lostAnswerByte, 6)},
            {"first byte of the answer altered",
             synchronised + "9 01 > 41000000\n12 41000000 >\n362 > 01000000", true,
             plan(&P::garbledAnswerByte)},
        };
        for (const Row &row : rows)
            QTest::newRow(row.name) << row.faults << row.script << row.busy;
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

    void olderInstrumentIsKnownByItsReferences()
    {
        for (const char *model : {"NOX A", "NOX B", "NOX D"}) {
            const InstrumentMemory memory({model, 5, {}, 0, false});
            QVERIFY(!memory.isReadable(51) && !memory.isWritable(50));
            optionsNOX8 image;
            QVERIFY(image.setData(memory.block(3), 3));
            QCOMPARE(image.getDevTypeStr(true), QString(model));
        }
    }

    void factoryCharacteristicIsPlatinum()
    {
        const auto image = factoryImage({});
        QCOMPARE(image->getFeatureInfStrList().join(", "),
                 QString("Pt100 №1, Pt100 №2, Pt100 №3, Pt100 №4, Pt100 №5, Pt100 №6, ЭТС-100 №7, "
                         "ТПП(S) №8"));
        TemperaturePolynomial polynomial;
        for (std::size_t k = 0; k < polynomial.size(); ++k)
            polynomial[k] = double(image->getFeature(4)->ratio[k].value);
        for (const double celsius : {-80.0, 0.0, 100.0, 419.527}) {
            const double shown = evaluate(polynomial, platinumResistance(celsius));
            QVERIFY2(qAbs(shown - celsius) < 0.003, qPrintable(QString::number(shown)));
        }
    }

    void temperatures_data()
    {
        using Signal = ThermometrySignal;
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("channel");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("celsius");
        QTest::newRow("bath, one time constant") << int(Signal::Bath) << 1 << 120.0 << 26.6891;
        QTest::newRow("bath, third channel") << int(Signal::Bath) << 3 << 3600.0 << 30.016;
        QTest::newRow("ramp") << int(Signal::Ramp) << 1 << 600.0 << 31.0;
        QTest::newRow("cooling") << int(Signal::FixedPoint) << 1 << 60.0 << 31.0;
        QTest::newRow("supercooled") << int(Signal::FixedPoint) << 1 << 149.999 << 29.5;
        QTest::newRow("recalescence") << int(Signal::FixedPoint) << 1 << 155.0 << 29.8161;
        QTest::newRow("plateau") << int(Signal::FixedPoint) << 1 << 400.0 << 30.0;
        QTest::newRow("after the plateau") << int(Signal::FixedPoint) << 1 << 810.0 << 29.0;
    }

    void temperatures()
    {
        QFETCH(int, kind);
        QFETCH(int, channel);
        QFETCH(double, seconds);
        QFETCH(double, celsius);
        ThermometrySignal signal;
        signal.kind = ThermometrySignal::Kind(kind);
        signal.noiseMillikelvin = 0.0;
        const double seen = signalTemperature(signal, channel, seconds);
        QVERIFY2(qAbs(seen - celsius) < 1.0e-4, qPrintable(QString::number(seen, 'f', 5)));
    }

    void tokensFollowTheChannels()
    {
        const char *const off = "0000000220000000120030";
        InstrumentMemory memory({});
        memory.write(4, channelBlock(0, "0000000220000001020030")); // Ω
        memory.write(4, channelBlock(2, "0000000220000001220030")); // mV
        for (const char channel : {3, 4, 5, 6})
            memory.write(4, channelBlock(channel, off));
        const QByteArray before = memory.block(2);
        memory.write(4, channelBlock(8, off)); // which the model does not have
        QCOMPARE(memory.block(2), before);
        ThermometrySignal signal;
        signal.noiseMillikelvin = signal.channelSpreadMillikelvin = 0.0;
        MeasurementStream stream(signal);
        QByteArray round;
        for (int i = 0; i < 5; ++i)
            round += stream.nextToken(memory, 1.0e6);
        QCOMPARE(round, QByteArray("1:111.67292A 2:30.0000B 3:1.20450C 8:30.0000B 1:111.67292A "));
    }

    void noiseFollowsTheSeed()
    {
        FaultPlan faults;
        faults.lossProbability = faults.garbleProbability = 0.1;
        faults.streamNoiseProbability = 0.5;
        const QByteArray bytes = QByteArray("3:21.5123B ").repeated(50);
        LineFaults once(faults), again(faults);
        faults.seed = 2;
        LineFaults other(faults);
        const QByteArray spoilt = once.passed(once.noisyToken(bytes));
        QCOMPARE(again.passed(again.noisyToken(bytes)), spoilt);
        QVERIFY(other.passed(other.noisyToken(bytes)) != spoilt);
        LineFaults burst(plan(&FaultPlan::streamBurstBytes, 5000));
        QCOMPARE(burst.noisyToken("1:20.0B ").indexOf(' '), 5007);
        QCOMPARE(burst.noisyToken("2:20.0B "), QByteArray("2:20.0B "));
    }

    void commandReachesTheInstrument()
    {
        const SimulatorCommand command =
            commandOf("--serial 77 --older --rate 12.5 --paced --signal fixed-point --seed 9 "
                      "--ignore always --wrong-sync 3 --lose 0.5 --unplug-after 1.5 "
                      "--word-addresses 9,52");
        const SimulatedInstrumentOptions &options = command.instrument;
        QCOMPARE(command.kind, SimulatorCommand::Play);
        QCOMPARE(options.identity.serialNumber, quint16(77));
        QVERIFY(!options.identity.answersIdentification && options.paced);
        QCOMPARE(options.tokensPerSecond, 12.5);
        QCOMPARE(options.signal.kind, ThermometrySignal::FixedPoint);
        QVERIFY(options.signal.seed == 9 && options.faults.seed == 9);
        QCOMPARE(options.faults.ignoredAddressings, FaultPlan::always);
        QCOMPARE(options.faults.wrongPatterns, 3);
        QCOMPARE(options.faults.lossProbability, 0.5);
        QCOMPARE(command.unplugAfterMs, 1500);
        QCOMPARE(options.dialogue.wordAddresses, (QSet<quint8>{9, 52}));
        for (const char *refused :
             {"--colour red", "--model Toaster", "--serial 65536", "--lose 1.5", "--rate nan",
              "--ignore -1", "--port ../nox", "--signal square", "--word-addresses 9,300", "nox0"})
            QVERIFY2(commandOf(refused).kind == SimulatorCommand::Refuse, refused);
    }

    void fleetMixesModels()
    {
        const auto fleet = fleetOf(commandOf("--serial 100 --rate 2").instrument, 20);
        QSet<QString> models;
        QSet<quint16> numbers;
        for (const SimulatedInstrumentOptions &member : fleet) {
            models += member.identity.modelName;
            numbers += member.identity.serialNumber;
            QCOMPARE(member.tokensPerSecond, 2.0);
        }
        QVERIFY(models.size() == 9 && numbers.size() == 20);
    }
};

QTEST_GUILESS_MAIN(TestSimulator)
#include "tst_simulator.moc"
