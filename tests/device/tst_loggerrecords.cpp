#include "device/loggerrecords.h"
#include "device/optionsnox8.h"
#include "imagelog.h"

#include <QtTest>

#include <ctime>

class TestLoggerRecords : public QObject
{
    Q_OBJECT
private slots:
    void accepted();
    void hourSkippedBySummerTime();
    void refused_data();
    void refused();
    void imageHandsThemOn();
};

namespace
{

QByteArray records(QByteArray hex)
{
    return QByteArray::fromHex(hex.replace(' ', ""));
}

const QByteArray startHex = "00110517091e0000"; // 17.05.2023 09:30:00

} // namespace

void TestLoggerRecords::accepted()
{
    LoggerReadout readout;
    QVERIFY(decodeLoggerRecords(records(startHex), 8, readout));
    QVERIFY(readout.items.isEmpty());
    QCOMPARE(readout.start, QDateTime({2023, 5, 17}, {9, 30}));

    QVERIFY(decodeLoggerRecords(records(startHex +           //
                                        "0207 41ac0000 2000" // before any mark: 0 s
                                        "01000000 41200000"  // 10 s
                                        "0200 41ac0000 1000" // 21.5
                                        "0000000000000000"
                                        "01000000 41a00000"  // 20 s
                                        "0200 41ae0000 0000" // 21.75
                                        "0200 41ae0000 1100"),
                                8, readout));
    QCOMPARE(readout.items.keys(), (QList<quint8>{0, 7}));
    const auto row = [&readout](quint8 channel, int i) {
        const LoggerItem item = readout.items.value(channel).at(i);
        return QString("%1 s %2 %3").arg(item.time).arg(item.value).arg(item.dim);
    };
    QCOMPARE(row(7, 0), QStringLiteral("0 s 21.5 мВ"));
    QCOMPARE(row(0, 0), QStringLiteral("10 s 21.5 °С"));
    QCOMPARE(row(0, 1), QStringLiteral("20 s 21.75 Ω"));
    QCOMPARE(row(0, 2), QStringLiteral("20 s 21.75 -"));
}

void TestLoggerRecords::hourSkippedBySummerTime()
{
    qputenv("TZ", "Europe/Berlin");
    tzset();
    LoggerReadout readout;
    QVERIFY(decodeLoggerRecords(records("001a0317021e0000"), 8, readout)); // 26.03.2023 02:30
    QCOMPARE(readout.start, QDateTime({2023, 3, 26}, {3, 30}));
    qunsetenv("TZ");
    tzset();
}

void TestLoggerRecords::refused_data()
{
    QTest::addColumn<QByteArray>("hex");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("half a record") << startHex + "01000000";
    QTest::newRow("month 13") << QByteArray("00110d17091e0000");
    QTest::newRow("30 February") << QByteArray("001e0217091e0000");
    QTest::newRow("hour 24") << QByteArray("0011051718000000");
    QTest::newRow("erased memory") << QByteArray("ffffffffffffffff");
    QTest::newRow("channel 9 of 8, after good records")
        << startHex + "020041ac00001000" + "020841ac00001000";
    QTest::newRow("record type 3") << startHex + "0300000000000000";
    QTest::newRow("first record of a channel that is none") << QByteArray("02110517091e0000");
}

void TestLoggerRecords::refused()
{
    QFETCH(QByteArray, hex);
    LoggerReadout readout;
    QVERIFY(!decodeLoggerRecords(records(hex), 8, readout));
    QVERIFY(readout.items.isEmpty() && readout.start.isNull());
}

void TestLoggerRecords::imageHandsThemOn()
{
    optionsNOX8 image;
    image.setDevType(0x11);
    ImageLog log(image);
    const QByteArray ninth = records(startHex + "020841ac00001000");
    QVERIFY(!image.setData(ninth, 5));
    QCOMPARE(log.take(), QStringList());
    image.setDevType(0x41);
    log.take();
    QVERIFY(image.setData(ninth, 5));
    QCOMPARE(log.take(), QStringList{"log"});
}

QTEST_GUILESS_MAIN(TestLoggerRecords)
#include "tst_loggerrecords.moc"
