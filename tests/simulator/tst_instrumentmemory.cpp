#include "device/callendarvandusen.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"
#include "simulator/instrumentmemory.h"
#include "simulator/thermometrysignal.h"

#include <QtTest>

namespace
{

InstrumentMemory memoryOf(const QString &model, int loggerMarks = 2)
{
    return InstrumentMemory({model, 0x1234, QStringLiteral("Куб 5"), loggerMarks, true});
}

} // namespace

class TestInstrumentMemory : public QObject
{
    Q_OBJECT
private slots:
    void identificationAsRead();
    void factoryReferencesTellTheModel_data();
    void factoryReferencesTellTheModel();
    void factoryCharacteristicIsPlatinum_data();
    void factoryCharacteristicIsPlatinum();
    void factoryCharacteristicsAreAccepted();
    void writes_data();
    void writes();
    void channelIsWritten();
    void channelBeyondTheModelIsRefused();
    void olderInstrumentHasNoIdentification();
    void logHoldsEveryChannelAfterEachMark();
};

void TestInstrumentMemory::identificationAsRead()
{
    QCOMPARE(memoryOf("NOX D").block(51).toHex(), QByteArray("0300000031001234"));
    QCOMPARE(memoryOf("NOX CM1 rev.4").block(51).toHex(),
             QByteArray("0faa6009caf3e12035000000000000000000000034120000"));
}

void TestInstrumentMemory::factoryReferencesTellTheModel_data()
{
    QTest::addColumn<QString>("model");
    for (const char *model : {"NOX A", "NOX B", "NOX D"})
        QTest::newRow(model) << QString(model);
}

void TestInstrumentMemory::factoryReferencesTellTheModel()
{
    QFETCH(QString, model);
    optionsNOX8 image;
    QVERIFY(image.setData(memoryOf(model).block(3), 3));
    QCOMPARE(image.getDevTypeStr(true), model);
}

void TestInstrumentMemory::factoryCharacteristicIsPlatinum_data()
{
    QTest::addColumn<double>("celsius");
    QTest::newRow("cold") << -80.0;
    QTest::newRow("ice point") << 0.0;
    QTest::newRow("boiling water") << 100.0;
    QTest::newRow("molten zinc") << 419.527;
}

void TestInstrumentMemory::factoryCharacteristicIsPlatinum()
{
    QFETCH(double, celsius);
    const auto image = factoryImage({});
    TemperaturePolynomial polynomial;
    for (std::size_t k = 0; k < polynomial.size(); ++k)
        polynomial[k] = double(image->getFeature(4)->ratio[k].value);
    const double shown = evaluate(polynomial, platinumResistance(celsius));
    QVERIFY2(qAbs(shown - celsius) < 0.003, qPrintable(QString::number(shown)));
}

void TestInstrumentMemory::factoryCharacteristicsAreAccepted()
{
    const auto image = factoryImage({});
    QCOMPARE(image->getFeatureInfStrList(),
             (QStringList{"Pt100 №1", "Pt100 №2", "Pt100 №3", "Pt100 №4", "Pt100 №5", "Pt100 №6",
                          "ЭТС-100 №7", "ТПП(S) №8"}));
    for (quint8 channel = 0; channel < image->getDevChCount(); ++channel)
        QCOMPARE(image->getChFeatureName(channel), image->getFeature(channel)->name);
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
    QCOMPARE(memory.measurementType(2), measTemperature);
    QByteArray expected = memory.block(2);
    expected.replace(0, 4, QByteArray::fromHex("21100100"));
    expected.replace(12, 4, QByteArray::fromHex("00221430"));

    memory.write(4, QByteArray::fromHex("020000002110010000221430"));
    QCOMPARE(memory.block(2), expected);
    QVERIFY(!memory.isChannelOn(2));
    QCOMPARE(memory.measurementType(2), measVoltage);
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

void TestInstrumentMemory::logHoldsEveryChannelAfterEachMark()
{
    const QByteArray log = memoryOf("NOX B", 3).block(5);
    QCOMPARE(log.size(), 8 * (1 + 3 * (1 + 8)));
    QCOMPARE(log.left(8).toHex(), QByteArray("00110517091e0000"));
    QCOMPARE(log.mid(8 * 10, 8).toHex(), QByteArray("0100000041200000"));
    const QByteArray lastReading = log.right(8).toHex();
    QVERIFY2(lastReading.startsWith("020741ae") && lastReading.endsWith("1000"), lastReading);
    QVERIFY(memoryOf("NOX B", 0).block(5).isEmpty());
}

QTEST_GUILESS_MAIN(TestInstrumentMemory)
#include "tst_instrumentmemory.moc"
