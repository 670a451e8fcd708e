#include "device/instrumentblocks.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"
#include "serial/noxserialport.h"
#include "support/imagefields.h"
#include "support/instrumentbench.h"

#include <QtTest>

namespace
{

const QDateTime now({2026, 11, 24}, {9, 41, 7});
const quint8 identification = 51;

bool isExtended(const optionsNOX8 &image)
{
    return findModel(image.devType)->extended;
}

/** Something else in every block. */
void change(optionsNOX8 &image)
{
    image.setDevNumber(54321);
    image.devMeasTime = 3;
    image.devMeasRound = 0x10;
    image.devCompensTP = 1;
    image.devChRevers = 0x10;
    image.refT0.value = 21.25F;
    image.refR[0].value.value = 199.98765F;
    image.refU.b.value = -1.5e-9F;
    image.setChMeasType(1, measVoltage, {});
    image.setChCurrent(2, 0);
    image.setChFeature(3, featureThermocouple, 9);
    image.setChFeatureCompesTP(3, compensResistanceThermometer, 12);
    image.getFeature(0)->setFeature(FeatureRecord::polynomial, "Полином",
                                    {"-1.5", "2", "0.25", "0", "0", "0", "0", "0", "0", "1E-12"});
    image.getFeature(7)->setFeature(FeatureRecord::temperatureOfVoltage, "Таблица",
                                    {"-50.5", "-1.8890", "0.0", "0.0000", "1200.0", "48.8380"});
    if (isExtended(image)) {
        image.devName = "Печь №2";
        image.shiftCh[15].value = 0.125F;
    }
}

} // namespace

/** A whole instrument over the line: multiplexer, worker, dialogue, blocks and image together. */
class TestWholeInstrument : public QObject
{
    Q_OBJECT
private slots:
    void readChangedWrittenAndReadAgain_data()
    {
        QTest::addColumn<QString>("model");
        for (const InstrumentModel *model : instrumentModels())
            QTest::newRow(model->name) << modelName(*model);
    }

    void readChangedWrittenAndReadAgain()
    {
        QFETCH(QString, model);
        InstrumentBench bench;
        SimulatedInstrumentOptions options = bench.steadyInstrument();
        options.identity = {model, 1234, "Куб 5", 2, true};
        QVERIFY(bench.add("a", options));
        NOXSerialPort port;
        LinkTiming timing = shortTiming();
        timing.queueDelay = timing.startBase = 1;
        port.setLinkTiming(timing);
        QCOMPARE(port.addDev("a"), 0);

        optionsNOX8 image;
        QStringList logged;
        connect(&image, &optionsNOX8::onRecData, this, [&](const auto &records, const auto &start) {
            for (const quint8 channel : records.keys())
                logged << QString("%1: %2 to %3 s in %4")
                              .arg(channel)
                              .arg(records[channel].size())
                              .arg(double(records[channel].last().time))
                              .arg(records[channel].last().dim);
            logged << start.toString(Qt::ISODate);
        });
        readInto(image, port);
        QCOMPARE(describe(image), describe(*factoryImage(options.identity)));
        QCOMPARE(logged.size(), image.getDevChCount() + 1);
        QCOMPARE(logged.mid(image.getDevChCount() - 1).join(' '),
                 QString("%1: 2 to 10 s in °С 2023-05-17T09:30:00").arg(image.getDevChCount() - 1));

        change(image);
        write(image, port);
        QCOMPARE(bench.host.clock("a"), encodeDateTime(now));
        optionsNOX8 readAgain;
        readInto(readAgain, port);
        QCOMPARE(describe(readAgain), describe(image));
    }

private:
    /** Reads every block into the image: first who the instrument is, then what that one has. */
    static void readInto(optionsNOX8 &image, NOXSerialPort &port)
    {
        const QObject listener;
        QList<int> accepted;
        connect(&port, QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply),
                &listener, [&](int, const QByteArray &block, quint8 address) {
                    if (image.setData(block, address))
                        accepted << address;
                });
        port.sendDevQuery(0, identification, 8);
        QTRY_VERIFY_WITH_TIMEOUT(port.isReadAllQuery(), patienceMs);
        port.setDevType(0, image.getDevFamily());
        port.sendDevQuery(0, 3, 72);
        port.sendDevQuery(0, 2, quint16(image.getDevDataSize()));
        if (isExtended(image))
            port.sendDevQuery(0, 9, 148);
        port.sendRecQuery(0, 5, 32768);
        QTRY_VERIFY_WITH_TIMEOUT(port.isReadAllQuery(), patienceMs);
        QCOMPARE(accepted, isExtended(image) ? (QList<int>{identification, 3, 2, 9, 5})
                                             : (QList<int>{identification, 3, 2, 5}));
    }

    /** Writes every block, and one channel by itself. */
    static void write(optionsNOX8 &image, NOXSerialPort &port)
    {
        port.sendDevData(0, encodeDateTime(now), 6);
        port.sendDevData(0, taken(image.getIdentData()), 50);
        port.sendDevData(0, taken(image.getData()), 0);
        port.sendDevData(0, taken(image.getRefData(false)), 1);
        if (isExtended(image)) {
            port.sendDevData(0, taken(image.getSNData()), 52);
            port.sendDevData(0, taken(image.getRefShiftData()), 8);
        }
        image.setChOnOff(5, 0);
        image.devMeasMode = 0;
        port.sendDevData(0, image.channelBlock(5), 4);
        QTRY_VERIFY_WITH_TIMEOUT(port.isSendAllData(), patienceMs);
    }

    static constexpr int patienceMs = 30000;
};

QTEST_GUILESS_MAIN(TestWholeInstrument)
#include "tst_wholeinstrument.moc"
