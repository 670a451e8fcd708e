#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "device/optionsnox8.h"
#include "device/vocabulary.h"
#include "serial/noxserialport.h"
#include "support/imagefields.h"
#include "support/linkjournal.h"

#include <QtTest>

#include <memory>

namespace
{

constexpr int patienceMs = 30000;
constexpr int loggerMarks = 2;
const QDateTime now({2026, 11, 24}, {9, 41, 7});

enum Address : quint8 {
    writeConfiguration = 0,
    writeReferenceData = 1,
    readConfiguration = 2,
    readReferenceData = 3,
    writeChannel = 4,
    readLogger = 5,
    writeClock = 6,
    writeZeroShifts = 8,
    readZeroShifts = 9,
    writeIdentification = 50,
    readIdentification = 51,
    writeSerialNumber = 52,
};

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
    if (findModel(image.devType)->extended) {
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
    void init()
    {
        bench = std::make_unique<InstrumentBench>();
        port = std::make_unique<NOXSerialPort>();
        LinkTiming timing = shortTiming();
        timing.queueDelay = timing.startBase = 1;
        port->setLinkTiming(timing);
    }

    void cleanup()
    {
        port.reset();
        bench.reset();
    }

    void readChangedWrittenAndReadAgain_data()
    {
        QTest::addColumn<QString>("model");
        const auto models = instrumentModels();
        for (const InstrumentModel *model : models)
            QTest::newRow(model->name) << modelName(*model);
    }

    void readChangedWrittenAndReadAgain()
    {
        QFETCH(QString, model);
        SimulatedInstrumentOptions options = bench->steadyInstrument();
        options.identity = {model, 1234, "Куб 5", loggerMarks, true};
        QVERIFY(bench->add("a", options));
        device = port->addDev("a");
        QCOMPARE(device, 0);

        optionsNOX8 image;
        image.setClock([] { return now; });
        QMap<quint8, QVector<LoggerItem>> records;
        QDateTime start;
        connect(&image, &optionsNOX8::onRecData, this, [&](const auto &items, const auto &begin) {
            records = items;
            start = begin;
        });
        readInto(image);
        QCOMPARE(describe(image), describe(*factoryImage(options.identity)));
        QCOMPARE(start, QDateTime({2023, 5, 17}, {9, 30}));
        QCOMPARE(records.size(), int(image.getDevChCount()));
        for (const QVector<LoggerItem> &items : qAsConst(records)) {
            QCOMPARE(items.size(), loggerMarks);
            QCOMPARE(items.constLast().time, 10.0F);
            QCOMPARE(items.constLast().dim, measurementUnit(measTemperature));
            QVERIFY(items.constLast().value > 20.0F && items.constLast().value < 30.0F);
        }

        change(image);
        write(image);
        compareMemoryWith(image);
        QCOMPARE(bench->host.clock("a"), encodeDateTime(now));

        optionsNOX8 readAgain;
        readInto(readAgain);
        QCOMPARE(describe(readAgain), describe(image));
    }

private:
    /** Reads every block into the image: first who the instrument is, then what that one has. */
    void readInto(optionsNOX8 &image)
    {
        const QObject listener;
        QList<int> accepted;
        connect(port.get(), QOverload<int, QByteArray, quint8>::of(&NOXSerialPort::readyDevReply),
                &listener, [&](int, const QByteArray &block, quint8 address) {
                    if (image.setData(block, address))
                        accepted << address;
                });
        port->sendDevQuery(device, readIdentification, 8);
        awaitReads();
        const InstrumentModel &model = *findModel(image.devType);
        port->setDevType(device, image.getDevFamily());
        port->sendDevQuery(device, readReferenceData, 72);
        port->sendDevQuery(device, readConfiguration, quint16(image.getDevDataSize()));
        if (model.extended)
            port->sendDevQuery(device, readZeroShifts, 148);
        port->sendRecQuery(device, readLogger, 32768);
        awaitReads();
        QList<int> expected{readIdentification, readReferenceData, readConfiguration, readLogger};
        if (model.extended)
            expected.insert(3, readZeroShifts);
        QCOMPARE(accepted, expected);
    }

    /** Writes every block, and one channel by itself. */
    void write(optionsNOX8 &image)
    {
        port->sendDevData(device, encodeDateTime(now), writeClock);
        port->sendDevData(device, taken(image.getIdentData()), writeIdentification);
        port->sendDevData(device, taken(image.getData()), writeConfiguration);
        port->sendDevData(device, taken(image.getRefData(false)), writeReferenceData);
        if (findModel(image.devType)->extended) {
            port->sendDevData(device, taken(image.getSNData()), writeSerialNumber);
            port->sendDevData(device, taken(image.getRefShiftData()), writeZeroShifts);
        }
        image.setChOnOff(5, 0);
        image.devMeasMode = 0;
        port->sendDevData(device, image.channelBlock(5), writeChannel);
        QTRY_VERIFY_WITH_TIMEOUT(port->isSendAllData(), patienceMs);
    }

    void compareMemoryWith(const optionsNOX8 &image)
    {
        const auto memory = [this](quint8 address) {
            return bench->host.block("a", address).toHex();
        };
        QCOMPARE(memory(readConfiguration), taken(image.getData()).toHex());
        QCOMPARE(memory(readReferenceData), taken(image.getRefData(false)).toHex());
        QByteArray identification = taken(image.getIdentData());
        if (findModel(image.devType)->extended) {
            identification += taken(image.getSNData());
            QCOMPARE(memory(readZeroShifts), taken(image.getRefShiftData()).toHex());
        }
        QCOMPARE(memory(readIdentification), identification.toHex());
    }

    void awaitReads() { QTRY_VERIFY_WITH_TIMEOUT(port->isReadAllQuery(), patienceMs); }

    std::unique_ptr<InstrumentBench> bench;
    std::unique_ptr<NOXSerialPort> port;
    int device = -1;
};

QTEST_GUILESS_MAIN(TestWholeInstrument)
#include "tst_wholeinstrument.moc"
