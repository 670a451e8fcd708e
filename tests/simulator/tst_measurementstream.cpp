#include "simulator/instrumentmemory.h"
#include "simulator/linefaults.h"
#include "simulator/measurementstream.h"

#include <QtTest>

#include <cmath>

class TestMeasurementStream : public QObject
{
    Q_OBJECT
private slots:
    void temperature_data();
    void temperature();
    void noiseIsRepeatable();
    void noiseHasItsDeviation();
    void sensorsFollowTheirTables();
    void roundSkipsChannelsThatAreOff();
    void unitFollowsTheMeasurementType();
    void chanceFollowsTheSeed();
    void lossTakesItsShare();
    void burstComesOnceAndHasNoSpace();
};

void TestMeasurementStream::temperature_data()
{
    using Signal = ThermometrySignal;
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("channel");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("celsius");

    QTest::newRow("bath at the start") << int(Signal::Bath) << 1 << 0.0 << 21.0;
    QTest::newRow("bath after one time constant") << int(Signal::Bath) << 1 << 120.0 << 26.6891;
    QTest::newRow("bath settled") << int(Signal::Bath) << 1 << 3600.0 << 30.0;
    QTest::newRow("third channel 16 mK above the first")
        << int(Signal::Bath) << 3 << 3600.0 << 30.016;
    QTest::newRow("ramp after ten minutes") << int(Signal::Ramp) << 1 << 600.0 << 31.0;
    QTest::newRow("cooling towards the fixed point")
        << int(Signal::FixedPoint) << 1 << 60.0 << 31.0;
    QTest::newRow("supercooled") << int(Signal::FixedPoint) << 1 << 149.999 << 29.5;
    QTest::newRow("recalescence") << int(Signal::FixedPoint) << 1 << 155.0 << 29.8161;
    QTest::newRow("plateau") << int(Signal::FixedPoint) << 1 << 400.0 << 30.0;
    QTest::newRow("cooling after the plateau") << int(Signal::FixedPoint) << 1 << 810.0 << 29.0;
}

void TestMeasurementStream::temperature()
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

void TestMeasurementStream::noiseIsRepeatable()
{
    ThermometrySignal signal;
    ThermometrySignal other = signal;
    other.seed = 2;
    QCOMPARE(signalTemperature(signal, 3, 12.345), signalTemperature(signal, 3, 12.345));
    QVERIFY(signalTemperature(signal, 3, 12.345) != signalTemperature(other, 3, 12.345));
}

void TestMeasurementStream::noiseHasItsDeviation()
{
    ThermometrySignal signal;
    signal.noiseMillikelvin = 5.0;
    const int count = 4000;
    double sum = 0.0;
    double squares = 0.0;
    for (int i = 0; i < count; ++i) {
        const double error = signalTemperature(signal, 1, 1.0e5 + i) - signal.setPointCelsius;
        sum += error;
        squares += error * error;
    }
    QVERIFY2(qAbs(sum / count) < 0.0004, qPrintable(QString::number(sum / count)));
    const double deviation = std::sqrt(squares / count);
    QVERIFY2(qAbs(deviation - 0.005) < 0.0003, qPrintable(QString::number(deviation)));
}

void TestMeasurementStream::sensorsFollowTheirTables()
{
    // IEC 60751 and IEC 60584, type K
    QVERIFY(qAbs(platinumResistance(-100.0) - 60.256) < 0.001);
    QVERIFY(qAbs(platinumResistance(100.0) - 138.506) < 0.001);
    QVERIFY(qAbs(thermocoupleVoltage(100.0) - 4.096) < 0.2);
}

void TestMeasurementStream::roundSkipsChannelsThatAreOff()
{
    InstrumentMemory memory({});
    for (const char channel : {0, 2, 5})
        memory.write(4, channel + QByteArray::fromHex("0000000220000000120030"));
    MeasurementStream stream;
    QList<QByteArray> channels;
    for (int i = 0; i < 7; ++i)
        channels += stream.nextToken(memory, i).split(':').constFirst();
    QCOMPARE(channels, (QList<QByteArray>{"2", "4", "5", "7", "8", "2", "4"}));

    for (char channel = 0; channel < 8; ++channel)
        memory.write(4, channel + QByteArray::fromHex("0000000220000000120030"));
    QVERIFY(stream.nextToken(memory, 8.0).isEmpty());
}

void TestMeasurementStream::unitFollowsTheMeasurementType()
{
    InstrumentMemory memory({});
    memory.write(4, QByteArray::fromHex("000000000220000001020030")); // Ω
    memory.write(4, QByteArray::fromHex("020000000220000001220030")); // mV
    ThermometrySignal signal;
    signal.noiseMillikelvin = 0.0;
    signal.channelSpreadMillikelvin = 0.0;
    MeasurementStream stream(signal);
    QCOMPARE(stream.nextToken(memory, 1.0e6), QByteArray("1:111.67292A "));
    QCOMPARE(stream.nextToken(memory, 1.0e6), QByteArray("2:30.0000B "));
    QCOMPARE(stream.nextToken(memory, 1.0e6), QByteArray("3:1.20450C "));
}

void TestMeasurementStream::chanceFollowsTheSeed()
{
    FaultPlan plan;
    plan.lossProbability = 0.1;
    plan.garbleProbability = 0.1;
    plan.streamNoiseProbability = 0.5;
    const QByteArray bytes = QByteArray("3:21.5123B ").repeated(50);
    LineFaults once(plan);
    LineFaults again(plan);
    plan.seed = 2;
    LineFaults other(plan);
    const QByteArray spoilt = once.passed(once.noisyToken(bytes));
    QCOMPARE(again.passed(again.noisyToken(bytes)), spoilt);
    QVERIFY(other.passed(other.noisyToken(bytes)) != spoilt);
}

void TestMeasurementStream::lossTakesItsShare()
{
    FaultPlan plan;
    plan.lossProbability = 0.25;
    const int left = LineFaults(plan).passed(QByteArray(10000, 'x')).size();
    QVERIFY2(left > 7300 && left < 7700, qPrintable(QString::number(left)));
    QCOMPARE(LineFaults().passed("untouched"), QByteArray("untouched"));
}

void TestMeasurementStream::burstComesOnceAndHasNoSpace()
{
    FaultPlan plan;
    plan.streamBurstBytes = 5000;
    LineFaults faults(plan);
    const QByteArray first = faults.noisyToken("1:20.0B ");
    QCOMPARE(first.size(), 5000 + 8);
    QCOMPARE(first.indexOf(' '), first.size() - 1);
    QCOMPARE(faults.noisyToken("2:20.0B "), QByteArray("2:20.0B "));
}

QTEST_GUILESS_MAIN(TestMeasurementStream)
#include "tst_measurementstream.moc"
