#include "device/vocabulary.h"
#include "simulator/commandline.h"

#include <QtTest>

class TestSimulatorCommand : public QObject
{
    Q_OBJECT
private slots:
    void optionsReachTheInstrument();
    void refusals_data();
    void refusals();
    void fleetMixesModels();
};

namespace
{

SimulatorCommand commandOf(const QString &line)
{
    return readSimulatorCommand(QStringList{"nox8-sim"} + line.split(' ', Qt::SkipEmptyParts));
}

} // namespace

void TestSimulatorCommand::optionsReachTheInstrument()
{
    const SimulatorCommand command = readSimulatorCommand(
        {"nox8-sim", "--model",        "nox d REV.4", "--serial",         "77",          "--older",
         "--rate",   "12.5",           "--paced",     "--signal",         "fixed-point", "--seed",
         "9",        "--ignore",       "always",      "--wrong-sync",     "3",           "--lose",
         "0.5",      "--unplug-after", "1.5",         "--word-addresses", "9,52"});
    QCOMPARE(command.kind, SimulatorCommand::Play);
    const SimulatedInstrumentOptions &options = command.instrument;
    QCOMPARE(modelName(modelOf(options.identity)), QString("NOX D rev.4"));
    QCOMPARE(options.identity.serialNumber, quint16(77));
    QVERIFY(!options.identity.answersIdentification);
    QCOMPARE(options.tokensPerSecond, 12.5);
    QVERIFY(options.paced);
    QCOMPARE(options.signal.kind, ThermometrySignal::FixedPoint);
    QCOMPARE(options.signal.seed, quint32(9));
    QCOMPARE(options.faults.seed, quint32(9));
    QCOMPARE(options.faults.ignoredAddressings, FaultPlan::always);
    QCOMPARE(options.faults.wrongPatterns, 3);
    QCOMPARE(options.faults.lossProbability, 0.5);
    QCOMPARE(command.unplugAfterMs, 1500);
    QCOMPARE(options.dialogue.wordAddresses, (QSet<quint8>{9, 52}));
}

void TestSimulatorCommand::refusals_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("unknown option") << "--colour red";
    QTest::newRow("unknown model") << "--model Toaster";
    QTest::newRow("serial number too large") << "--serial 65536";
    QTest::newRow("probability above one") << "--lose 1.5";
    QTest::newRow("rate that is no number") << "--rate nan";
    QTest::newRow("negative count") << "--ignore -1";
    QTest::newRow("port name with a directory") << "--port ../nox";
    QTest::newRow("unknown signal") << "--signal square";
    QTest::newRow("address out of range") << "--word-addresses 9,300";
    QTest::newRow("stray argument") << "nox0";
}

void TestSimulatorCommand::refusals()
{
    QFETCH(QString, line);
    const SimulatorCommand command = commandOf(line);
    QCOMPARE(command.kind, SimulatorCommand::Refuse);
    QVERIFY(!command.text.isEmpty());
}

void TestSimulatorCommand::fleetMixesModels()
{
    const auto fleet = fleetOf(commandOf("--serial 100 --fleet 20 --rate 2").instrument, 20);
    QCOMPARE(fleet.size(), 20);
    QSet<QString> models;
    QSet<quint16> numbers;
    for (const SimulatedInstrumentOptions &member : fleet) {
        models += member.identity.modelName;
        numbers += member.identity.serialNumber;
        QCOMPARE(member.tokensPerSecond, 2.0);
    }
    QCOMPARE(models.size(), 9);
    QCOMPARE(numbers.size(), 20);
}

QTEST_GUILESS_MAIN(TestSimulatorCommand)
#include "tst_simulatorcommand.moc"
