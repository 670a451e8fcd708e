#include "device/callendarvandusen.h"
#include "device/optionsnox8.h"
#include "simulator/instrumentmemory.h"
#include "simulator/thermometrysignal.h"

#include <QtTest>

class TestInstrumentMemory : public QObject
{
    Q_OBJECT
private slots:
    void olderInstrumentIsKnownByItsReferences_data();
    void olderInstrumentIsKnownByItsReferences();
    void factoryCharacteristicIsPlatinum_data();
    void factoryCharacteristicIsPlatinum();
    void factoryCharacteristicsAreAccepted();
    void channelBeyondTheModelIsRefused();
};

void TestInstrumentMemory::olderInstrumentIsKnownByItsReferences_data()
{
    QTest::addColumn<QString>("model");
    for (const char *model : {"NOX A", "NOX B", "NOX D"})
        QTest::newRow(model) << QString(model);
}

void TestInstrumentMemory::olderInstrumentIsKnownByItsReferences()
{
    QFETCH(QString, model);
    const InstrumentMemory memory({model, 5, {}, 0, false});
    QVERIFY(!memory.isReadable(51));
    QVERIFY(!memory.isWritable(50));
    optionsNOX8 image;
    QVERIFY(image.setData(memory.block(3), 3));
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

void TestInstrumentMemory::channelBeyondTheModelIsRefused()
{
    InstrumentMemory memory({});
    const QByteArray before = memory.block(2);
    memory.write(4, QByteArray::fromHex("080000002110010000221430"));
    memory.write(4, QByteArray::fromHex("02000000"));
    QCOMPARE(memory.block(2), before);
}

QTEST_GUILESS_MAIN(TestInstrumentMemory)
#include "tst_instrumentmemory.moc"
