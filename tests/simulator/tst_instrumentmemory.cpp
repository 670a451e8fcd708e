#include "simulator/factoryblocks.h"
#include "simulator/instrumentmemory.h"
#include "simulator/thermometrysignal.h"

#include <QtEndian>
#include <QtTest>

#include <cstring>

namespace
{

float floatAt(const QByteArray &bytes, int offset)
{
    const auto bits = qFromBigEndian<quint32>(bytes.constData() + offset);
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

InstrumentMemory memoryOf(const QString &model, int loggerMarks = 2)
{
    return InstrumentMemory({model, 0x1234, QStringLiteral("Куб 5"), loggerMarks, true});
}

} // namespace

class TestInstrumentMemory : public QObject
{
    Q_OBJECT
private slots:
    void models_data();
    void models();
    void writes_data();
    void writes();
    void channelIsWritten();
    void channelBeyondTheModelIsRefused();
    void olderInstrumentHasNoIdentification();
    void characteristicIsPlatinum_data();
    void characteristicIsPlatinum();
    void logHoldsEveryChannelAfterEachMark();
};

void TestInstrumentMemory::models_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("configurationSize");
    QTest::addColumn<int>("familyCode");
    QTest::addColumn<QByteArray>("identification");

    const auto extended = [](const char *typeCode) {
        return QByteArray(typeCode) + "caf3e12035000000000000000000000034120000";
    };
    QTest::newRow("A") << "NOX A" << 3976 << 0 << QByteArray("0000000001001234");
    QTest::newRow("B") << "NOX B" << 3976 << 1 << QByteArray("0100000011001234");
    QTest::newRow("C") << "NOX C" << 3976 << 2 << QByteArray("0200000021001234");
    QTest::newRow("CM") << "NOX CM" << 3976 << 2 << QByteArray("0200000022001234");
    QTest::newRow("D") << "NOX D" << 3976 << 3 << QByteArray("0300000031001234");
    QTest::newRow("CM1") << "NOX CM1" << 7944 << 4 << QByteArray("0400000041001234");
    QTest::newRow("CM, revision 4") << "NOX CM rev.4" << 3976 << 2 << extended("0faa5009");
    QTest::newRow("CM1, revision 4") << "NOX CM1 rev.4" << 7944 << 4 << extended("0faa6009");
    QTest::newRow("D, revision 4") << "NOX D rev.4" << 3976 << 3 << extended("0faa7009");
}

void TestInstrumentMemory::models()
{
    QFETCH(QString, model);
    QFETCH(int, configurationSize);
    QFETCH(QByteArray, identification);
    const InstrumentMemory memory = memoryOf(model);

    QCOMPARE(memory.block(51).toHex(), identification);
    QCOMPARE(memory.serialNumber(), quint16(0x1234));
    QCOMPARE(memory.block(3).size(), 72);
    QCOMPARE(memory.block(9).size(), identification.size() > 16 ? 148 : 0);
    const QByteArray configuration = memory.block(2);
    QCOMPARE(configuration.size(), configurationSize);
    QTEST(int(configuration.at(configurationSize / 492 * 4 + 4)), "familyCode");
}

void TestInstrumentMemory::writes_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("writeAddress");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("readAddress");
    QTest::addColumn<int>("offset");

    QTest::newRow("configuration") << "NOX B" << 0 << 3976 << 2 << 0;
    QTest::newRow("configuration of 16 channels") << "NOX CM1" << 0 << 7944 << 2 << 0;
    QTest::newRow("reference data") << "NOX B" << 1 << 72 << 3 << 0;
    QTest::newRow("zero shifts") << "NOX D rev.4" << 8 << 148 << 9 << 0;
    QTest::newRow("identification") << "NOX B" << 50 << 8 << 51 << 0;
    QTest::newRow("extended identification keeps the number")
        << "NOX D rev.4" << 50 << 20 << 51 << 0;
    QTest::newRow("serial number") << "NOX D rev.4" << 52 << 4 << 51 << 20;
    QTest::newRow("no zero shifts on a basic model") << "NOX B" << 8 << 0 << 9 << 0;
    QTest::newRow("no separate serial number on a basic model") << "NOX B" << 52 << 0 << 51 << 0;
}

void TestInstrumentMemory::writes()
{
    QFETCH(QString, model);
    QFETCH(int, length);
    QFETCH(int, offset);
    QFETCH(int, writeAddress);
    QFETCH(int, readAddress);
    InstrumentMemory memory = memoryOf(model);
    const QByteArray written =
        QByteArray("Nothing of this stood there before. ").repeated(300).left(length);
    QByteArray expected = memory.block(quint8(readAddress));
    expected.replace(offset, length, written);

    QCOMPARE(memory.writeLength(quint8(writeAddress)), length);
    memory.write(quint8(writeAddress), written);
    QCOMPARE(memory.block(quint8(readAddress)), expected);
}

void TestInstrumentMemory::channelIsWritten()
{
    InstrumentMemory memory = memoryOf("NOX B");
    QVERIFY(memory.isChannelOn(2));
    QCOMPARE(memory.measurementType(2), quint8(0x10));
    QByteArray expected = memory.block(2);
    expected.replace(0, 4, QByteArray::fromHex("21100100"));
    expected.replace(12, 4, QByteArray::fromHex("00221430"));

    memory.write(4, QByteArray::fromHex("020000002110010000221430"));
    QCOMPARE(memory.block(2), expected);
    QVERIFY(!memory.isChannelOn(2));
    QCOMPARE(memory.measurementType(2), quint8(0x20));
}

void TestInstrumentMemory::channelBeyondTheModelIsRefused()
{
    InstrumentMemory memory = memoryOf("NOX B");
    const QByteArray before = memory.block(2);
    memory.write(4, QByteArray::fromHex("080000002110010000221430"));
    memory.write(4, QByteArray::fromHex("02000000"));
    QCOMPARE(memory.block(2), before);
}

void TestInstrumentMemory::olderInstrumentHasNoIdentification()
{
    const InstrumentMemory memory({QStringLiteral("NOX A"), 5, {}, 0, false});
    QVERIFY(!memory.isReadable(51));
    QVERIFY(!memory.isWritable(50));
    QVERIFY(memory.isReadable(3));
}

void TestInstrumentMemory::characteristicIsPlatinum_data()
{
    QTest::addColumn<double>("celsius");
    QTest::newRow("cold") << -80.0;
    QTest::newRow("ice point") << 0.0;
    QTest::newRow("boiling water") << 100.0;
    QTest::newRow("molten zinc") << 419.527;
}

void TestInstrumentMemory::characteristicIsPlatinum()
{
    QFETCH(double, celsius);
    const QByteArray record = factoryCharacteristic(4);
    QCOMPARE(record.size(), 492);
    QCOMPARE(record.mid(5, 8), QByteArray("Pt100 \xB9"
                                          "5"));

    double entered = 0.0;
    double stored = 0.0;
    double power = 1.0;
    for (int k = 0; k < 10; ++k, power *= platinumResistance(celsius)) {
        const QByteArray text = record.mid(85 + 20 * k, record.at(84 + 20 * k));
        entered += text.toDouble() * power;
        stored += double(floatAt(record, 44 + 4 * k)) * power;
    }
    QVERIFY2(qAbs(stored - celsius) < 0.003, qPrintable(QString::number(stored)));
    QVERIFY2(qAbs(entered - celsius) < 0.003, qPrintable(QString::number(entered)));
}

void TestInstrumentMemory::logHoldsEveryChannelAfterEachMark()
{
    const QByteArray log = memoryOf("NOX B", 3).block(5);
    QCOMPARE(log.size(), 8 * (1 + 3 * (1 + 8)));
    QCOMPARE(log.left(8).toHex(), QByteArray("00110517091e0000"));
    const QByteArray secondMark = log.mid(8 * 10, 8);
    QCOMPARE(secondMark.at(0), char(1));
    QCOMPARE(floatAt(secondMark, 4), 10.0F);
    const QByteArray lastReading = log.right(8);
    QCOMPARE(lastReading.left(2).toHex(), QByteArray("0207"));
    QCOMPARE(lastReading.at(6), char(0x10));
    QVERIFY(floatAt(lastReading, 2) > 20.0F && floatAt(lastReading, 2) < 30.0F);
    QVERIFY(memoryOf("NOX B", 0).block(5).isEmpty());
}

QTEST_GUILESS_MAIN(TestInstrumentMemory)
#include "tst_instrumentmemory.moc"
