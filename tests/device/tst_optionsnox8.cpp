#include "device/optionsnox8.h"
#include "device/settingsfile.h"
#include "device/vocabulary.h"
#include "devicebench.h"
#include "support/imagefields.h"

#include <QtTest>

using Image = optionsNOX8;
using Row = QPair<QString, std::function<void(Image &)>>; ///< what comes of a setter

namespace
{

/** Nothing that the setters take: beyond four bits, a list or the channels of the model. */
void setWhatItHasNot(Image &image)
{
    image.setChDimCust(3, "  ");
    image.setChCurrent(3, 16);
    image.setChResist(3, 16);
    image.setDevZakorotka(16);
    image.setChFeature(3, featureNone, 16);
    image.setChFeature(3, featureIndividual, 16);
    image.setChFeature(3, featureThermocouple, 13);
    image.setChFeatureCompesTP(3, compensResistanceThermometer, 13);
    image.setChOnOff(8, 0);
    image.setChMeasType(8, measVoltage, "");
    image.setChDimCust(8, "K");
    image.setChUnit(8, "K");
    image.setChCurrent(8, 1);
    image.setChFeature(255, featureThermocouple, 1);
    image.setChFeatureCompesTP(16, compensNone, 1);
    image.setIndividualFeature(8, FeatureRecord::its90, "", {});
}

} // namespace

/** The models, and an image that is asked, changed and given blocks. */
class TestOptionsNox8 : public QObject
{
    Q_OBJECT
private slots:
    void models()
    {
        QStringList answers;
        for (const quint32 type : Image::getTypeList(true).keys()) {
            Image image;
            QCOMPARE(image.setDevType(type), type != 0);
            const QList<int> numbers = {image.getDevChCount(),     image.getDevDataSize(),
                                        image.getDevResistCount(), image.getDevFamily(),
                                        image.getDevRev(),         image.devCompensTP,
                                        image.devZakorotka};
            QStringList answer{image.getDevTypeStr(true), image.getDevTypeStr(false)};
            for (const int number : numbers)
                answer << QString::number(number);
            answer << Image::getDevCurrentList(type) << Image::getDevResistList(type);
            answers << QString::number(type, 16) + ": " + answer.join(", ");
        }
        const QString wide("0.1mA, 0.2mA, 0.4mA, 0.7mA, 1mA, 1.5mA, 2mA, 4mA, "
                           "75 Ω, 200 Ω, 1500 Ω, Внешний");
        const QString high("0.4mA, 0.7mA, 1mA, 1.5mA, 2mA, 2.5mA, 3mA, 4mA, "
                           "3 Ω, 30 Ω, 300 Ω, Внешний");
        const QStringList expected = {
            // channels, bytes, resistors, family, revision, compensation, short circuit
            "0: --, --, 0, 0, 0, 0, 0, 0, 1",
            "1: NOX A, NOX A, 8, 3976, 1, 0, 0, 0, 0, 1mA, 1.5mA, 200 Ω",
            "11: NOX B, NOX B, 8, 3976, 2, 1, 0, 0, 0, 0.1mA, 0.2mA, 1mA, 1.5mA, 200 Ω, 1500 Ω",
            "21: NOX C, NOX C, 8, 3976, 4, 2, 0, 0, 0, " + wide,
            "22: NOX CM, NOX CM, 8, 3976, 4, 2, 0, 0, 1, " + wide,
            "31: NOX D, NOX D, 8, 3976, 4, 3, 0, 0, 1, " + high,
            "41: NOX CM1, NOX CM1, 16, 7944, 4, 4, 0, 0, 1, " + wide,
            "950aa0f: NOX CM rev.4, NOX CM, 8, 3976, 4, 2, 43535, 0, 1, " + wide,
            "960aa0f: NOX CM1 rev.4, NOX CM1, 16, 7944, 4, 4, 43535, 0, 1, " + wide,
            "970aa0f: NOX D rev.4, NOX D, 8, 3976, 4, 3, 43535, 0, 1, " + high};
        QCOMPARE(answers, expected);
        QCOMPARE(QStringList(Image::getTypeList(false).values()).join(", "),
                 "--, NOX A, NOX B, NOX C, NOX CM, NOX D, NOX CM1");
        QCOMPARE(modelsWithSameReferenceData(0x0950AA0F), (QVector<quint32>{0x21, 0x22}));
    }

    void numberAndName()
    {
        Image image;
        QStringList shown{image.getDevNumberStr()};
        image.setDevType(0x0950AA0F);
        image.setDevNumber(42);
        shown << image.getDevNumberStr() << image.getDevName(false) << image.getDevName(true);
        image.devName = "Баня 1";
        shown << image.getDevName(true);
        image.setDevType(0x22); // without a name of its own
        image.setDevNumber(54321);
        shown << image.getDevName(true);
        image.devType = 0x05; // as a damaged file may leave it
        shown << image.getDevTypeStr(true)
              << image.getDevTypeStr(false) + QString::number(image.getDevChCount());
        QCOMPARE(shown, (QStringList{"--", "0042", "NOX CM rev.4", "NOX CM rev.4 № 0042", "Баня 1",
                                     "NOX CM № 54321", "-", "0"}));
    }

    void namesOfWhatAChannelUses()
    {
        ImageOf image(0x22);
        image.features[15]->name = "own";
        image.features[7]->name = "seven";
        image.channels[7].current = 1;
        QStringList names;
        const auto note = [&](CharacteristicSource source, CompensationSource compensation,
                              quint8 index) {
            image.channels[7].featureType = source;
            image.channels[7].featureTypeCompensTP = compensation;
            image.channels[7].feature = image.channels[7].featureCompensTP = index;
            names << image.getChFeatureName(7) + ", " + image.getChFeatureCompesTPName(7);
        };
        note(featureIndividual, compensIndividual, 15);
        note(featureThermocouple, compensResistanceThermometer, 12);
        note(featureResistanceThermometer, compensThermocouple, 11);
        note(featureResistanceThermometer, compensThermocouple, 13); // as an instrument may have it
        note(featureNone, compensNone, 13);
        names << image.getChFeatureName(8) << image.getChFeatureCompesTPName(8)
              << image.getChCurrentStr(7) << image.getChCurrentStr(8);
        image.channels[7].current = 8;
        names << image.getChCurrentStr(7) << image.getFeatureInfStrList().join(',');
        QCOMPARE(names, (QStringList{"own, own", "ТХК(L), Pt1000", "Pt500, ТХК(E)", "-, -", ", -",
                                     "-", "-", "0.2mA", "-", "-", ",,,,,,,seven"}));
        QVERIFY(image.getFeature(7) == image.features.at(7) && !image.getFeature(8));
        image.channels[8].current = 5;
        QCOMPARE(image.getCh(7).current + 10 * image.getCh(8).current, 8);
    }

    void unitIsKeptUntilItIsReplaced()
    {
        Image image;
        QStringList units{image.getChMeasTypeName(quint8(0))};
        image.setDevType(0x31);
        const auto set = [&](MeasurementType type, const char *unit) {
            image.setChMeasType(0, type, unit);
            units << image.getChMeasTypeName(quint8(0)) + ", " + image.getChDimCust(0);
        };
        set(measTemperatureCustom, "  a unit longer than ten");
        set(measTemperature, "K");
        set(measTemperatureCustom, "");
        units << image.getChMeasTypeName(quint8(7)) + image.getChMeasTypeName(quint8(8))
              << image.getChDimCust(8);
        QCOMPARE(units, (QStringList{"-", "a unit lon, a unit lon", "°С, a unit lon",
                                     "a unit lon, a unit lon", "Ω-", "-"}));
    }

    void identityAsksToBeWrittenOnceItIsKnown()
    {
        // what is set, type (with x) or number, and what it announces; ? where a write is pending
        const QVector<QPair<QString, QString>> steps = {
            {"x11", "ident dev ref?"},
            {"x5", "?"}, // no model
            {"x11", "?"},
            {"7", "ident! ident dev"}, // its identity is known from here on
            {"x0960AA0F", "ident! ident dev ref"},
            {"8", "number! ident dev"},
            {"8", "ident dev"},
            {"9", "number! ident dev"},
            {"x0", "ident dev ref?"}, // with half of an identity
            {"10", "ident dev?"},
            {"11", "ident dev?"},
            {"x31", "ident! ident dev ref"},
            {"0", "ident dev?"}};
        Image image;
        ImageLog log(image);
        for (const auto &[step, announced] : steps) {
            const uint value = step.mid(step[0] == 'x').toUInt(nullptr, step[0] == 'x' ? 16 : 10);
            image.identValid = step == "7" || image.identValid;
            if (step[0] == 'x')
                QCOMPARE(image.setDevType(value), value != 0 && value != 5);
            else
                image.setDevNumber(quint16(value));
            const QString seen = log.take() + (image.identApplyPending ? "?" : "");
            QCOMPARE(step + ": " + seen, step + ": " + announced);
            image.identApplyPending = image.identApplyPending && !image.identValid;
        }
        image.setDevName("Баня"); // which a model of 16 characters for it tells
        QCOMPARE(log.take() + (image.identApplyPending ? "?" : ""), "dev?");
        image.setDevType(0x0960AA0F);
        log.take();
        image.setDevName("Куб");
        QCOMPARE(log.take(), "ident dev");
    }

    void olderTypesHaveNoShortCircuit()
    {
        Image image;
        image.devCompensTP = 2;
        image.setDevType(0x22);
        QCOMPARE(encodeOperatingSettings(image).toHex(), "02220100");
        image.setDevType(0x21);
        QCOMPARE(encodeOperatingSettings(image).toHex(), "02210000");
        ImageLog log(image);
        image.setDevZakorotka(1);
        QCOMPARE(log.take(), QString());
        image.devZakorotka = 1; // as a configuration block may have it
        image.setDevZakorotka(1);
        QCOMPARE(log.take(), "dev");
        QCOMPARE(int(image.devZakorotka), 0);
    }

    void settersCompare()
    {
        const QVector<Row> rows = {
            // signals, settings, the record of channel 3
            {"ch3 02200100 00000000", [](Image &i) { i.setChOnOff(3, 0); }},
            {"ch3 02200100 010f0000", [](Image &i) { i.setChCurrent(3, 15); }},
            {"ch3 02200100 0100f000", [](Image &i) { i.setChResist(3, 15); }},
            {"ch3 02200100 01200000", [](Image &i) { i.setChMeasType(3, measVoltage, ""); }},
            {"ch3 02200100 01100000",
             [](Image &i) { i.setChMeasType(3, measTemperatureCustom, " K "); }},
            {"ch3 02200100 01000000", [](Image &i) { i.setChDimCust(3, "°F"); }},
            {"ch3 02200100 01000f00", [](Image &i) { i.setChFeature(3, featureIndividual, 15); }},
            {"ch3 02200100 01000080", [](Image &i) { i.setChFeature(3, featureThermocouple, 0); }},
            {"ch3 02200100 01000c80", [](Image &i) { i.setChFeature(3, featureThermocouple, 12); }},
            {"ch3 02200100 01000fc0", [](Image &i) { i.setChFeature(3, featureNone, 15); }},
            {"ch3 02200100 0100001c",
             [](Image &i) { i.setChFeatureCompesTP(3, compensResistanceThermometer, 12); }},
            {"dev 02200000 01000000", [](Image &i) { i.setDevZakorotka(0); }},
            {"dev 01200100 01000000",
             [](Image &i) { i.setOperatingSetting(&OperatingSettings::devMeasMode, 1); }},
            {"dev 02200100 01000000", [](Image &i) { i.setDevName("of the instrument"); }},
            {" 02200100 01000000", setWhatItHasNot}};
        for (const auto &[outcome, set] : rows) {
            ImageOf image(0x31);
            ImageLog log(image);
            set(image);
            QCOMPARE(log.take() + ' ' + encodeOperatingSettings(image).toHex() + ' ' +
                         encodeChannel(image.channels.at(3)).toHex(),
                     outcome);
            set(image);
            QCOMPARE(log.take(), QString());
        }
    }

    void applyingAsksForWrites()
    {
        Image image;
        ImageLog log(image);
        for (const quint32 type : {0x00u, 0x11u}) { // nobody knows yet what it is; then one does
            image.setDevType(type);
            log.take();
            image.triggerChChange(2);
            image.triggerChChange(8);
            image.triggerDevChange();
            image.triggerRefChange();
            image.triggerRefShiftChange();
            QCOMPARE(log.take(), QString(type == 0 ? "" : "ch2! ident! dev! ref! shift!"));
        }
        image.triggerDevChange();
        QCOMPARE(log.take(), "dev!");
    }

    void whoListensMayTakeTheImageAway()
    {
        ImageOf other(0x0950AA0F);
        other.channels[2].onOff = 0;
        ReferenceData references;
        references.refU.value.value = 300.0F; // of a model that can be told by them
        references.refR[0].value.value = 200.0F;
        const auto read = [](quint8 address, const QByteArray &block) {
            return [=](Image &image) { image.setData(block, address); };
        };
        const QVector<std::function<void(Image &)>> changes = {
            [](Image &image) { image.setDevType(0x22); },
            [](Image &image) { image.setDevNumber(8); },
            [](Image &image) { image.setDevName("new"); },
            [](Image &image) { image.triggerDevChange(); },
            [](Image &image) { image.setIndividualFeature(0, FeatureRecord::its90, "", {}); },
            [&](Image &image) { applySettings(settingsLines(other), image); },
            [&](Image &image) {
                image.devType = 0;
                image.setData(encodeReferenceData(references, QByteArray(8, 'x')), 3);
            },
            read(2, taken(other.getData())),
            read(51, QByteArray::fromHex("01000000110004d2")),
            read(51, QByteArray::fromHex("0faa6009").leftJustified(24, '\1'))};
        for (const auto &change : changes) {
            std::unique_ptr<ImageOf> image;
            for (int last = 1; !image; ++last) { // each announcement in turn is the last
                image = std::make_unique<ImageOf>(other.devType);
                image->devNumber = 7;
                image->identValid = last % 2 == 1;
                int heard = 0;
                const auto listen = [&] {
                    if (++heard == last)
                        image.reset();
                };
                for (const auto signal :
                     {&Image::onDevChange, &Image::onRefChange, &Image::onIdentChange,
                      &Image::onIdentApply, &Image::onSNApply, &Image::onDevApply})
                    connect(image.get(), signal, this, listen);
                connect(image.get(), &Image::onChChange, this, listen);
                change(*image);
                QVERIFY(heard == last || (image && heard < last));
            }
        }
    }

    void identifications()
    {
        const QString tail("20c1e0edff2031000000000000000000d2040000"); // " Баня 1", 1234
        const QVector<QPair<QString, QString>> rows = {
            {"01000000110004d2", "taken 11 1234 '' valid: ident! ident dev ref ident"},
            {"0300000031000000", "taken 31 0 '' valid: ident dev ref ident"}, // without number
            {"0000000001000100", "taken 1 256 '' valid: ident! ident dev ref ident"},
            {"0100000012000001", "taken 0 1 '' valid: ident"},           // no model of the table
            {"01000000210004d2", "refused 0 0 '' valid pending: ident"}, // of another family
            {"00000000000004d2", "refused 0 0 '' valid pending: ident"}, // code 0
            {"f9000000910004d2", "refused 0 0 '' valid pending: ident"}, // a negative code
            {"0faa6009" + tail, "taken 960aa0f 1234 'Баня 1' valid pending: ident dev ref ident"},
            {"0faa6109" + tail, "refused 0 0 'old' pending: ident"}, // not in the table
            {"41000000" + tail, "refused 0 0 'old' pending: ident"}, // a standard code
            {"010101010101010101", "refused 0 0 'old' pending: ident"}};
        for (const auto &[hex, outcome] : rows) {
            ImageOf image(0x22);
            image.setDevNumber(7);
            image.devName = "old";
            ImageLog log(image);
            const bool isTaken = image.setData(QByteArray::fromHex(hex.toLatin1()), 51);
            QCOMPARE(QString("%1 %2 %3 '%4'%5%6: %7")
                         .arg(isTaken ? "taken" : "refused")
                         .arg(image.devType, 0, 16)
                         .arg(image.devNumber)
                         .arg(image.devName, image.identValid ? " valid" : "",
                              image.identApplyPending ? " pending" : "", log.take()),
                     outcome);
        }
    }

    void inference()
    {
        const float nan = std::numeric_limits<float>::quiet_NaN();
        const QVector<QPair<QVector<float>, quint32>> types = {
            // voltage, R1, R2, R3
            {{300, 200, 0.05F, -0.05F}, 0x01},
            {{300, 200, 1500, 0}, 0x11},
            {{399.9F, 209.9F, 1490.1F, 0.09F}, 0x11},
            {{300, 210, 1500, 0}, 0}, // beyond in each of them
            {{300, 200, 0.1F, 0}, 0},
            {{300, 200, 1500, 0.1F}, 0},
            {{200, 200, 0, 0}, 0},
            {{1200, 3, 30, 300}, 0x31},
            {{1399.9F, 2.1F, 30.9F, 309.9F}, 0x31},
            {{1200, 4, 30, 300}, 0},
            {{300, 3, 30, 300}, 0},    // D with the voltage of A
            {{300, 75, 200, 1500}, 0}, // C, which others equal
            {{nan, nan, nan, nan}, 0}};
        for (const auto &[numbers, type] : types) {
            ReferenceData data;
            data.refU.value.value = numbers.at(0);
            for (std::size_t i = 0; i < 3; ++i)
                data.refR[i].value.value = numbers.at(int(i) + 1);
            const QByteArray block = encodeReferenceData(data, QByteArray(8, 'x'));
            Image image;
            ImageLog log(image);
            QVERIFY(image.setData(block, 3) && !image.identApplyPending);
            QCOMPARE(image.devType, type);
            QCOMPARE(log.take(), QString(type == 0 ? "ref" : "ident dev ref ref"));
            ImageOf known(0x22), told(0); // of another type, or that it is none
            told.identValid = true;
            known.setData(block, 3);
            told.setData(block, 3);
            QCOMPARE(qMakePair(known.devType, told.devType), qMakePair(0x22u, 0u));
        }
    }

    void blocksOfTheRightSizeAlone()
    {
        for (const quint32 type : {0x00u, 0x11u, 0x41u, 0x0950AA0Fu}) {
            ImageOf image(type);
            const int channels = image.getDevChCount();
            const auto announced = [&](int address, int size) {
                if (address == 2 && channels > 0 && size == (channels == 8 ? 3976 : 7944))
                    return QString("dev ").repeated(channels) + "dev";
                if (address == 5 && size > 0 && size % 8 == 0)
                    return QString("log");
                return QString(address == 3 && size == 72    ? "ref"
                               : address == 9 && size == 148 ? "shift"
                                                             : "");
            };
            for (const int address : {0, 1, 2, 3, 4, 5, 6, 8, 9, 50, 52, 255})
                for (const int size : {0, 8, 12, 71, 72, 73, 147, 148, 149, 3975, 3976, 7944}) {
                    const QStringList before = describe(image);
                    ImageLog log(image);
                    const QString expected = announced(address, size);
                    const QByteArray block(size, '\1');
                    QCOMPARE(image.setData(&block, quint8(address)), !expected.isEmpty());
                    QCOMPARE(log.take(), expected);
                    QVERIFY(!expected.isEmpty() || describe(image) == before);
                }
            QVERIFY(!image.setData(QByteArray(), 51));
            QCOMPARE(image.devType, type);
            // a measurement of the ninth channel
            QCOMPARE(image.setData(QByteArray::fromHex("00110517091e0000020841ac00001000"), 5),
                     channels == 16);
        }
    }

    void nothingSpillsIntoItsNeighbour()
    {
        ImageOf image(0x11);
        // fields are open to whoever edits the image
        static_cast<OperatingSettings &>(image) = {0x15, 0x27, 0x32, 0x11, 0x1F, 0xF1};
        image.channels[0] = {1, measVoltage, "", 0x13, 0x24, 0x35, 0x46};
        image.channels[0].featureType = featureThermocouple;
        image.channels[0].featureTypeCompensTP = compensResistanceThermometer;
        QCOMPARE(taken(image.getData()).left(8).toHex(), "5221110001234596");
        QCOMPARE(image.channelBlock(8), QByteArray());
        image.setDevType(0x0950AA0F);
        image.devName = "Эталонная баня № 17"; // of it 16 characters fit
        QCOMPARE(taken(image.getIdentData()).toHex(), "0faa5009ddf2e0ebeeedede0ff20e1e0edff20b9");
    }
};

QTEST_GUILESS_MAIN(TestOptionsNox8)
#include "tst_optionsnox8.moc"
