#include "device/featurenox8.h"
#include "device/optionsnox8.h"
#include "imagelog.h"

#include <QtTest>

class TestBlocks : public QObject
{
    Q_OBJECT
private slots:
    void identifications_data();
    void identifications();
    void inference_data();
    void inference();
    void knownTypeIsNotInferred();
    void configurationIsAnnounced();
    void shiftsAreAnnounced();
    void refusedBlocks_data();
    void refusedBlocks();
    void userUnitSurvivesReading();
    void nothingSpillsIntoItsNeighbour();
    void blocksForOneChannel();
};

namespace
{

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

/** All that an image holds, as its blocks. */
QByteArray contentOf(const optionsNOX8 &image)
{
    return taken(image.getData()) + taken(image.getRefData(true)) + taken(image.getRefShiftData()) +
           taken(image.getIdentData()) + taken(image.getSNData());
}

QByteArray referenceBlock(float voltage, float r1, float r2, float r3)
{
    ReferenceData data;
    data.refU.value.value = voltage;
    data.refR[0].value.value = r1;
    data.refR[1].value.value = r2;
    data.refR[2].value.value = r3;
    return encodeReferenceData(data, QByteArray(8, 'x'));
}

const char *const extendedHead = "0faa6009";
const char *const extendedTail = "20c1e0edff2031000000000000000000d2040000"; // " Баня 1", 1234

} // namespace

void TestBlocks::identifications_data()
{
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<quint32>("type");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<bool>("pending");
    QTest::addColumn<QStringList>("announced");

    const QStringList refused{"ident"};
    const QStringList standard{"write ident", "ident", "dev", "ref", "ident"};
    const QStringList standardWithoutNumber{"ident", "dev", "ref", "ident"};
    const QStringList extended = standardWithoutNumber;
    QTest::newRow("standard") << bytes("01000000110004d2") << true << 0x11u << 1234 << "" << true
                              << false << standard;
    QTest::newRow("standard, no number") << bytes("0300000031000000") << true << 0x31u << 0 << ""
                                         << true << false << standardWithoutNumber;
    QTest::newRow("no model of the table")
        << bytes("0100000012000001") << true << 0u << 1 << "" << true << false << refused;
    QTest::newRow("another family")
        << bytes("01000000210004d2") << false << 0u << 0 << "" << true << true << refused;
    QTest::newRow("code 0") << bytes("00000000000004d2") << false << 0u << 0 << "" << true << true
                            << refused;
    QTest::newRow("negative code")
        << bytes("f9000000910004d2") << false << 0u << 0 << "" << true << true << refused;
    QTest::newRow("extended") << bytes(extendedHead) + bytes(extendedTail) << true << 0x0960AA0Fu
                              << 1234 << "Баня 1" << true << true << extended;
    QTest::newRow("extended, not in the table") << bytes("0faa6109") + bytes(extendedTail) << false
                                                << 0u << 0 << "old" << false << true << refused;
    QTest::newRow("standard code in 24 bytes") << bytes("41000000") + bytes(extendedTail) << false
                                               << 0u << 0 << "old" << false << true << refused;
    QTest::newRow("9 bytes") << QByteArray(9, '\1') << false << 0u << 0 << "old" << false << true
                             << refused;
}

void TestBlocks::identifications()
{
    QFETCH(QByteArray, block);
    optionsNOX8 image;
    image.setDevType(0x22);
    image.setDevNumber(7);
    image.devName = "old";
    ImageLog log(image);
    QTEST(image.setData(block, 51), "accepted");
    QTEST(log.take(), "announced");
    QTEST(image.devType, "type");
    QTEST(int(image.devNumber), "number");
    QTEST(image.devName, "name");
    QTEST(image.identValid, "valid");
    QTEST(image.identApplyPending, "pending");
}

void TestBlocks::inference_data()
{
    QTest::addColumn<float>("voltage");
    QTest::addColumn<float>("r1");
    QTest::addColumn<float>("r2");
    QTest::addColumn<float>("r3");
    QTest::addColumn<quint32>("type");

    const float nan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("A") << 300.0F << 200.0F << 0.05F << -0.05F << 0x01u;
    QTest::newRow("B") << 300.0F << 200.0F << 1500.0F << 0.0F << 0x11u;
    QTest::newRow("B at its edges") << 399.9F << 209.9F << 1490.1F << 0.09F << 0x11u;
    QTest::newRow("beyond in R1") << 300.0F << 210.0F << 1500.0F << 0.0F << 0u;
    QTest::newRow("beyond in R3") << 300.0F << 200.0F << 1500.0F << 0.1F << 0u;
    QTest::newRow("beyond in voltage") << 200.0F << 200.0F << 0.0F << 0.0F << 0u;
    QTest::newRow("D") << 1200.0F << 3.0F << 30.0F << 300.0F << 0x31u;
    QTest::newRow("D at its edges") << 1399.9F << 2.1F << 30.9F << 309.9F << 0x31u;
    QTest::newRow("D with the voltage of A") << 300.0F << 3.0F << 30.0F << 300.0F << 0u;
    QTest::newRow("C, which others equal") << 300.0F << 75.0F << 200.0F << 1500.0F << 0u;
    QTest::newRow("no numbers") << nan << nan << nan << nan << 0u;
}

void TestBlocks::inference()
{
    QFETCH(float, voltage);
    QFETCH(float, r1);
    QFETCH(float, r2);
    QFETCH(float, r3);
    QFETCH(quint32, type);
    optionsNOX8 image;
    ImageLog log(image);
    QVERIFY(image.setData(referenceBlock(voltage, r1, r2, r3), 3));
    QCOMPARE(image.devType, type);
    QVERIFY(!image.identApplyPending);
    QCOMPARE(log.take(),
             type == 0 ? QStringList{"ref"} : (QStringList{"ident", "dev", "ref", "ref"}));
}

void TestBlocks::knownTypeIsNotInferred()
{
    optionsNOX8 image;
    image.setDevType(0x22);
    ImageLog log(image);
    image.setData(referenceBlock(300, 200, 0, 0), 3);
    QCOMPARE(image.devType, 0x22u);
    QCOMPARE(log.take(), QStringList{"ref"});
    image.devType = 0;
    image.identValid = true;
    image.setData(referenceBlock(300, 200, 0, 0), 3);
    QCOMPARE(image.devType, 0u);
}

void TestBlocks::configurationIsAnnounced()
{
    for (const quint32 type : {0x11u, 0x0960AA0Fu}) {
        optionsNOX8 image;
        image.setDevType(type);
        const QByteArray block = taken(image.getData());
        ImageLog log(image);
        QVERIFY(image.setData(&block, 2));
        QStringList announced;
        for (int i = 0; i <= image.getDevChCount(); ++i) // each characteristic, then the whole
            announced << "dev";
        QCOMPARE(log.take(), announced);
    }
}

void TestBlocks::shiftsAreAnnounced()
{
    optionsNOX8 image;
    ImageLog log(image);
    QByteArray block(148, '\0');
    block.replace(17 * 4, 4, bytes("41200000"));
    QVERIFY(image.setData(block, 9));
    QCOMPARE(log.take(), QStringList{"shift"});
    QCOMPARE(image.shiftCh[0].value, 10.0F);
}

void TestBlocks::refusedBlocks_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("size");

    QTest::newRow("empty configuration") << 0x11u << 2 << 0;
    QTest::newRow("configuration, one byte short") << 0x11u << 2 << 3975;
    QTest::newRow("configuration of 16 channels for 8") << 0x11u << 2 << 7944;
    QTest::newRow("configuration of an unknown type") << 0u << 2 << 3976;
    QTest::newRow("configuration without channels") << 0u << 2 << 8;
    QTest::newRow("reference data, one byte long") << 0x11u << 3 << 73;
    QTest::newRow("zero shifts, one byte short") << 0x0950AA0Fu << 9 << 147;
    QTest::newRow("logger, half a record") << 0x11u << 5 << 12;
    QTest::newRow("empty identification") << 0x11u << 51 << 0;
    QTest::newRow("write address") << 0x11u << 0 << 3976;
    QTest::newRow("no such address") << 0x11u << 255 << 72;
}

void TestBlocks::refusedBlocks()
{
    QFETCH(quint32, type);
    QFETCH(int, address);
    QFETCH(int, size);
    optionsNOX8 image;
    image.setDevType(type);
    const QByteArray before = contentOf(image);
    ImageLog log(image);
    QVERIFY(!image.setData(QByteArray(size, '\1'), quint8(address)));
    QCOMPARE(log.take(), QStringList());
    QCOMPARE(contentOf(image), before);
    QCOMPARE(image.devType, type);
}

void TestBlocks::userUnitSurvivesReading()
{
    optionsNOX8 image;
    image.setDevType(0x11);
    image.setChMeasType(4, measTemperatureCustom, "K");
    const QByteArray block = taken(image.getData());
    QCOMPARE(block.at(4 + 4 * 4 + 1), char(0x10));
    image.setChMeasType(4, measTemperature, "");
    QVERIFY(image.setData(block, 2));
    QCOMPARE(image.channels.at(4).measType, measTemperatureCustom);
    image.setChDimCust(4, "");
    QVERIFY(image.setData(block, 2));
    QCOMPARE(image.channels.at(4).measType, measTemperature);
}

void TestBlocks::nothingSpillsIntoItsNeighbour()
{
    optionsNOX8 image;
    image.setDevType(0x11);
    image.devMeasTime = 0x15; // fields are open to whoever edits the image
    image.devMeasMode = 0x32;
    image.devMeasRound = 0x27;
    image.devCompensTP = 0x11;
    image.devChRevers = 0x1F;
    image.devZakorotka = 0xF1;
    optionsNOX8::_ch &channel = image.channels[0];
    channel.current = 0x13;
    channel.resist = 0x24;
    channel.feature = 0x35;
    channel.featureCompensTP = 0x46;
    channel.measType = measVoltage;
    channel.featureType = featureThermocouple;
    channel.featureTypeCompensTP = compensResistanceThermometer;
    QCOMPARE(taken(image.getData()).left(8).toHex(), QByteArray("5221110001234596"));
}

void TestBlocks::blocksForOneChannel()
{
    optionsNOX8 image;
    image.setDevType(0x22);
    image.setDevNumber(0x1234);
    image.setChCurrent(7, 3);
    QCOMPARE(image.channelBlock(7).toHex(), QByteArray("070000000220010001030000"));
    QCOMPARE(image.channelBlock(8), QByteArray());
    QCOMPARE(taken(image.getIdentData()).toHex(), QByteArray("0200000022001234"));
    image.setClock([] { return QDateTime({2026, 11, 24}, {17, 5, 9}); });
    QCOMPARE(taken(image.getRefData(false)).mid(64).toHex(), QByteArray("11050900180b1a02"));
    QCOMPARE(taken(image.getRefData(true)).mid(64), QByteArray(8, '\0'));
    QCOMPARE(taken(image.getRefAllData()).size(), 72);

    image.setDevType(0x0950AA0F);
    image.devName = "Эталонная баня № 17"; // of it 16 characters fit
    QCOMPARE(taken(image.getIdentData()).toHex(),
             QByteArray("0faa5009ddf2e0ebeeedede0ff20e1e0edff20b9"));
    QCOMPARE(taken(image.getSNData()).toHex(), QByteArray("34120000"));
    QCOMPARE(taken(image.getRefAllData()).size(), 72 + 148);
}

QTEST_GUILESS_MAIN(TestBlocks)
#include "tst_blocks.moc"
