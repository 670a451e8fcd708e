#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "device/settingsfile.h"
#include "device/vocabulary.h"
#include "imagetrial.h"

#include <QRandomGenerator>
#include <QtTest>

/** Thousands of images at random: what is encoded is decoded to the same. */
class TestRoundTrip : public QObject
{
    Q_OBJECT
private slots:
    void blocks_data() { addTypes(); }
    void blocks();
    void anyBytesAsConfiguration_data() { addTypes(); }
    void anyBytesAsConfiguration();
    void settingsFiles_data() { addTypes(); }
    void settingsFiles();
    void anyCodesInSettingsFiles_data() { addTypes(); }
    void anyCodesInSettingsFiles();

private:
    static void addTypes();
};

namespace
{

constexpr quint32 seed = 20261124;
constexpr int images = 300; ///< of each model

/** Hands an image's blocks to another, as they would come from the instrument. */
bool transfer(const optionsNOX8 &from, optionsNOX8 &to)
{
    QByteArray identification = taken(from.getIdentData());
    if (from.getDevRev() != 0) {
        identification += taken(from.getSNData());
        to.setData(taken(from.getRefShiftData()), 9);
    }
    const bool isKnown =
        to.setData(identification, 51) && to.setData(taken(from.getRefData(false)), 3);
    for (int ch = 0; ch < from.getDevChCount(); ++ch) // kept beside the instrument
        to.channels[ch].dimCust = from.channels.at(ch).dimCust;
    return isKnown && to.setData(taken(from.getData()), 2);
}

/** What a settings file cannot keep, as it comes back from one. */
void forgetWhatFilesDoNotKeep(optionsNOX8 &image)
{
    image.devNumber = 0;
    for (int ch = 0; ch < image.getDevChCount(); ++ch) {
        optionsNOX8::_ch &channel = image.channels[ch];
        if (channel.featureType == featureNone) {
            channel.featureType = featureIndividual;
            channel.feature = 0;
        }
        const bool isCompensationKept = image.devType > 0x21 &&
                                        channel.featureTypeCompensTP != compensThermocouple &&
                                        channel.featureTypeCompensTP != compensNone;
        if (!isCompensationKept) {
            channel.featureTypeCompensTP = image.devType > 0x21 ? compensNone : compensIndividual;
            channel.featureCompensTP = 0;
        }
    }
}

/** Numbers that a settings file keeps, and characteristics that can be entered. */
void keepToTheFormat(optionsNOX8 &image, QRandomGenerator &random)
{
    const auto round = [&random](bFloat &number, char format, int precision) {
        number.value = float(random.generateDouble() * 1000.0 - 500.0);
        number.value = QString::number(double(number.value), format, precision).toFloat();
    };
    for (ReferenceTriple *triple :
         {&image.refR[0], &image.refR[1], &image.refR[2], &image.refR[3], &image.refU}) {
        round(triple->value, 'f', 5);
        round(triple->a, 'g', 6);
        round(triple->b, 'g', 6);
    }
    round(image.refT0, 'f', 2);
    if (image.getDevRev() != 0)
        forEachShift(static_cast<ZeroShifts &>(image),
                     [&round](bFloat &shift) { round(shift, 'g', 6); });
    for (int ch = 0; ch < image.getDevChCount(); ++ch) {
        const int type = random.bounded(4);
        QStringList texts;
        for (int i = 0; i < (type == 3 ? 112 : type == 2 ? 9 : 10); ++i)
            texts << QString::number(
                type == 3 && i % 2 == 0 ? 10.0 * i - 99.9 : random.generateDouble(), 'f', 4);
        if (type == 1)
            texts = QStringList{"100",        "3.9083e-3", "-5.775e-7",
                                "-4.183e-12", "-50",       QString::number(random.bounded(850))};
        QCOMPARE(image.features.at(ch)->setFeature(FeatureRecord::_featureIndType(type),
                                                   image.features.at(ch)->name, texts),
                 1);
    }
}

} // namespace

void TestRoundTrip::addTypes()
{
    QTest::addColumn<quint32>("type");
    const auto models = instrumentModels();
    for (const InstrumentModel *model : models)
        QTest::newRow(model->name) << model->typeCode;
}

void TestRoundTrip::blocks()
{
    QFETCH(quint32, type);
    QRandomGenerator random(seed + type);
    for (int i = 0; i < images; ++i) {
        optionsNOX8 image;
        fillAtRandom(image, type, random);
        optionsNOX8 read;
        QVERIFY(transfer(image, read));
        QCOMPARE(differenceOf(image, read), QString());
        for (int ch = 0; ch < image.getDevChCount(); ++ch) {
            FeatureRecord feature;
            QVERIFY(decodeFeature(encodeFeature(*image.features.at(ch)), feature));
            QCOMPARE(encodeFeature(feature), encodeFeature(*image.features.at(ch)));
        }
    }
}

void TestRoundTrip::anyBytesAsConfiguration()
{
    QFETCH(quint32, type);
    QRandomGenerator random(seed ^ type);
    optionsNOX8 image;
    image.setDevType(type);
    QByteArray block(image.getDevDataSize(), '\0');
    const int recordsEnd = 4 + 4 * image.getDevChCount();
    for (int i = 0; i < images; ++i) {
        for (char &byte : block)
            byte = char(random.bounded(256));
        QVERIFY(image.setData(block, 2));
        const QByteArray again = taken(image.getData());
        QCOMPARE(again.left(3), block.left(3)); // what stands in a header or a record stays
        QCOMPARE(again.mid(4, recordsEnd - 4), block.mid(4, recordsEnd - 4));
        optionsNOX8 copy;
        copy.setDevType(type);
        QVERIFY(copy.setData(again, 2));
        QCOMPARE(taken(copy.getData()), again);
        for (quint8 ch = 0; ch < image.getDevChCount(); ++ch) {
            if (!image.hasChFeature(ch))
                QCOMPARE(image.getChFeatureName(ch), QStringLiteral("-"));
            if (!image.hasChFeatureCompesTP(ch))
                QCOMPARE(image.getChFeatureCompesTPName(ch), QStringLiteral("-"));
        }
    }
}

void TestRoundTrip::settingsFiles()
{
    QFETCH(quint32, type);
    QRandomGenerator random(seed - type);
    for (int i = 0; i < images / 3; ++i) {
        optionsNOX8 image;
        fillAtRandom(image, type, random);
        keepToTheFormat(image, random);
        const QStringList lines = settingsLines(image);
        optionsNOX8 read;
        QVERIFY(applySettings(lines, read));
        forgetWhatFilesDoNotKeep(image);
        QCOMPARE(differenceOf(image, read), QString());
        QCOMPARE(settingsLines(read), settingsLines(image));
    }
}

void TestRoundTrip::anyCodesInSettingsFiles()
{
    QFETCH(quint32, type);
    QRandomGenerator random(seed * type);
    for (int i = 0; i < images; ++i) {
        optionsNOX8 image;
        fillAtRandom(image, type, random);
        QStringList lines = settingsLines(image);
        for (int change = 0; change < 40; ++change) {
            const QString number = QString::number(random.bounded(-70, 70));
            // most codes stand before the characteristics, the others after them
            const int fromEnd = random.bounded(90);
            QString &line = lines[random.bounded(2) == 0 ? fromEnd : lines.size() - 1 - fromEnd];
            line = random.bounded(2) == 0 ? number : number + " [x] " + number;
        }
        optionsNOX8 read;
        read.setDevType(type);
        QByteArray rubbish(read.getDevDataSize(), '\0');
        for (char &byte : rubbish)
            byte = char(random.bounded(256));
        QVERIFY(read.setData(rubbish, 2));
        applySettings(lines, read);
        QVERIFY(read.devMeasTime <= 15 && read.devMeasMode <= 15 && read.devCompensTP <= 15 &&
                read.devZakorotka <= 15);
        QCOMPARE((read.devMeasRound | read.devChRevers) & 0x0F, 0);
        for (quint8 ch = 0; ch < read.getDevChCount(); ++ch) {
            QVERIFY(read.channels.at(ch).current <= 15 && read.channels.at(ch).resist <= 15);
            QVERIFY(read.hasChFeature(ch));
            QVERIFY(type <= 0x21 || read.hasChFeatureCompesTP(ch));
        }
    }
}

QTEST_GUILESS_MAIN(TestRoundTrip)
#include "tst_roundtrip.moc"
