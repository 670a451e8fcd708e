#include "device/settingsfile.h"
#include "device/vocabulary.h"
#include "devicebench.h"
#include "support/imagefields.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using Image = optionsNOX8;
using Blocks = QMap<QString, QByteArray>;
using Units = QMap<int, QString>; ///< of the user, by channel; kept beside the instrument

namespace
{

const QDateTime moment(QDate(2026, 11, 24), QTime(17, 5, 9));

/** A file in golden/, which tests/support/golden.py makes without any code of the product. */
QByteArray golden(quint32 type, const QString &suffix)
{
    const QString code = QString("%1").arg(type, type > 0xFF ? 8 : 2, 16, QChar('0')).toUpper();
    return contentOf(QFINDTESTDATA("golden/" + code + suffix));
}

Blocks goldenBlocks(quint32 type)
{
    Blocks blocks;
    for (const QByteArray &line : golden(type, ".blocks").trimmed().split('\n'))
        blocks.insert(line.split(' ').value(0), QByteArray::fromHex(line.split(' ').value(1)));
    return blocks;
}

QString goldenFields(quint32 type)
{
    return QString::fromUtf8(golden(type, ".fields"));
}

Units goldenUnits(quint32 type)
{
    Units units;
    const QRegularExpression unit("channel (\\d+) measures 0x11 in '(.*)'");
    for (auto found = unit.globalMatch(goldenFields(type)); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        units.insert(match.captured(1).toInt(), match.captured(2));
    }
    return units;
}

/** The blocks that the image makes, under the names of the golden ones. */
Blocks blocksOf(Image &image)
{
    image.setClock([] { return moment; });
    Blocks blocks = {{"configuration", taken(image.getData())},
                     {"reference", taken(image.getRefData(true))},
                     {"referenceWritten", taken(image.getRefData(false))},
                     {"allReference", taken(image.getRefAllData())},
                     {"identificationWritten", taken(image.getIdentData())},
                     {"channel0", image.channelBlock(0)},
                     {"channelLast", image.channelBlock(quint8(image.getDevChCount() - 1))},
                     {"dateTime", image.dateTimeBlock()}};
    if (image.getDevRev() != 0) {
        blocks.insert("shifts", taken(image.getRefShiftData()));
        blocks.insert("serialNumber", taken(image.getSNData()));
    }
    return blocks;
}

bool read(Image &image, const Blocks &blocks, const Units &units)
{
    const QByteArray identification = blocks["identificationWritten"] + blocks["serialNumber"];
    const bool isKnown =
        image.setData(identification, 51) && image.setData(blocks["referenceWritten"], 3);
    for (auto unit = units.begin(); unit != units.end(); ++unit)
        image.channels[unit.key()].dimCust = unit.value();
    image.setData(blocks["shifts"], 9);
    return isKnown && image.setData(blocks["configuration"], 2);
}

QByteArray rubbish(int size, QRandomGenerator &random)
{
    QVector<quint32> words(size / 4);
    random.fillRange(words.data(), words.size());
    return {reinterpret_cast<const char *>(words.data()), size};
}

/** Any finite number of single precision, of any magnitude, and sometimes 0. */
float anyNumber(QRandomGenerator &random)
{
    const double mantissa = random.bounded(8) == 0 ? 0.0 : random.generateDouble() * 2.0 - 1.0;
    return float(mantissa * std::pow(10.0, random.bounded(-30, 30)));
}

QByteArray anyNumbers(int count, QRandomGenerator &random)
{
    QByteArray bytes;
    while (bytes.size() < 4 * count)
        bytes += bFloat(anyNumber(random)).getByte();
    return bytes;
}

QString anyText(int longest, QRandomGenerator &random)
{
    const QString letters = QString("abcXYZ0189 -.,№°ЖжяЁ").repeated(3);
    return letters.mid(random.bounded(20), random.bounded(longest + 1)).trimmed();
}

/** Enters any characteristic; a table with the digits that a settings file keeps. */
void enterAny(featureNOX8 &feature, QRandomGenerator &random)
{
    const auto type = FeatureRecord::_featureIndType(random.bounded(4));
    QStringList texts;
    if (type == FeatureRecord::callendarVanDusen)
        texts = QStringList{"100", "3.9083e-3", "-5.775e-7", "-4.183e-12", "-50"}
                << QString::number(random.bounded(850));
    else if (type == FeatureRecord::temperatureOfVoltage)
        for (int tenths = -9999; texts.size() < 112; tenths += 1800)
            texts << QString::number((tenths + random.bounded(1800)) / 10.0, 'f', 1)
                  << QString::number(random.bounded(-99999, 999999) / 10000.0, 'f', 4);
    else
        while (texts.size() < (type == FeatureRecord::its90 ? 9 : 10))
            texts << QString::number(double(anyNumber(random)), 'g', random.bounded(1, 9));
    QCOMPARE(feature.setFeature(type, anyText(39, random), texts), 1);
}

} // namespace

/** What is encoded is decoded to the same: golden images, and thousands at random. */
class TestRoundTrip : public QObject
{
    Q_OBJECT
private slots:
    void goldenImage_data() { addTypes(); }
    void goldenImage()
    {
        QFETCH(quint32, type);
        Blocks blocks = goldenBlocks(type);
        Image image;
        QVERIFY(read(image, blocks, goldenUnits(type)));
        QCOMPARE(describe(image), goldenFields(type).split('\n', Qt::SkipEmptyParts));

        blocks.remove("logger");
        QCOMPARE(blocks.take("identificationRead"),
                 blocks["identificationWritten"] + blocks.value("serialNumber"));
        const Blocks made = blocksOf(image);
        QCOMPARE(made.keys(), blocks.keys());
        for (const QString &name : made.keys())
            QCOMPARE(name + made[name].toHex(), name + blocks[name].toHex());
    }

    void goldenFile_data() { addTypes(); }
    void goldenFile()
    {
        QFETCH(quint32, type);
        Image image;
        QVERIFY(read(image, goldenBlocks(type), goldenUnits(type)));
        const QTemporaryDir folder;
        const QString path = folder.filePath("settings.ust");
        const QByteArray file = golden(type, ".ust");
        QVERIFY(image.saveToFile(path, "COM7"));
        QCOMPARE(contentOf(path).split('\n'), file.split('\n'));
        for (const QByteArray &form : {file, QByteArray(file).replace("\r\n", "\n")}) {
            QFile changed(path);
            QVERIFY(changed.open(QIODevice::WriteOnly) && changed.write(form) == form.size());
            changed.close();
            Image loaded;
            QVERIFY(loaded.loadFromFile(path));
            QVERIFY(loaded.saveToFile(path, QString()));
            QCOMPARE(contentOf(path).split('\n'), file.split('\n'));
            // the numbers of the texts that it keeps
            for (int ch = 0; ch < image.getDevChCount(); ++ch) {
                const int entered = QVector<int>{10, 0, 9, 112}.at(image.features.at(ch)->type);
                QCOMPARE(loaded.features.at(ch)->getRatio().mid(0, entered),
                         image.features.at(ch)->getRatio().mid(0, entered));
            }
        }
    }

    void anyImage_data() { addTypes(); }
    void anyImage()
    {
        QFETCH(quint32, type);
        QRandomGenerator random(20261124 + type);
        for (int i = 0; i < 60; ++i) {
            ImageOf image(type);
            becomeAnyBytes(image, random);
            becomeAny(image, random);
            Units units;
            for (int ch = 0; ch < image.getDevChCount(); ++ch)
                units.insert(ch, image.channels.at(ch).dimCust);
            Image copy;
            QVERIFY(read(copy, blocksOf(image), units));
            QCOMPARE(describe(copy), describe(image));

            QStringList lines = settingsLines(image);
            lines.replaceInStrings(QRegularExpression("^-(0[.]0+)$"), "\\1"); // has no sign again
            Image loaded;
            QVERIFY(applySettings(lines, loaded));
            QCOMPARE(settingsLines(loaded), lines);

            for (int change = 0; change < 40; ++change) {
                const QString number = QString::number(random.bounded(-70, 70));
                // most codes stand before the characteristics, the others after them
                const int end = random.bounded(90);
                QString &line = lines[random.bounded(2) == 0 ? end : lines.size() - 1 - end];
                line = random.bounded(2) == 0 ? number : number + " [x] " + number;
            }
            applySettings(lines, copy);
            QCOMPARE(((copy.devMeasRound | copy.devChRevers) & 0x0F) | (copy.devZakorotka & 0xF0),
                     0);
            QCOMPARE((copy.devMeasTime | copy.devMeasMode | copy.devCompensTP) & 0xF0, 0);
            for (quint8 ch = 0; ch < copy.getDevChCount(); ++ch) {
                QVERIFY(copy.channels.at(ch).current <= 15 && copy.channels.at(ch).resist <= 15);
                QVERIFY(copy.hasChFeature(ch));
                QVERIFY(type <= 0x21 || copy.hasChFeatureCompesTP(ch));
            }
        }
    }

private:
    /** Any bytes are a configuration; its codes and indices stay as they are. */
    static void becomeAnyBytes(Image &image, QRandomGenerator &random)
    {
        const QByteArray block = rubbish(image.getDevDataSize(), random);
        QVERIFY(image.setData(block, 2));
        const QByteArray again = taken(image.getData());
        const int records = 4 * image.getDevChCount();
        QCOMPARE(again.left(3) + again.mid(4, records), block.left(3) + block.mid(4, records));
        QVERIFY(image.setData(again, 2));
        QCOMPARE(taken(image.getData()), again);
        for (quint8 ch = 0; ch < image.getDevChCount(); ++ch) {
            QCOMPARE(image.getChFeatureName(ch) == "-", !image.hasChFeature(ch));
            QVERIFY(image.hasChFeatureCompesTP(ch) || image.getChFeatureCompesTPName(ch) == "-");
        }
    }

    /** The rest of what an instrument may hold, at random. */
    static void becomeAny(Image &image, QRandomGenerator &random)
    {
        image.setData(anyNumbers(18, random), 3);
        image.devNumber = quint16(random.bounded(1, 65536));
        if (image.getDevRev() != 0) {
            image.devName = anyText(16, random);
            image.setData(anyNumbers(37, random), 9);
        }
        for (quint8 ch = 0; ch < image.getDevChCount(); ++ch) {
            image.channels[ch].measType = MeasurementType(16 * random.bounded(3));
            if (random.bounded(3) == 0)
                image.setChMeasType(ch, measTemperatureCustom, "u" + anyText(9, random));
            image.features.at(ch)->assign({});
            enterAny(*image.features.at(ch), random);
        }
    }

    static void addTypes()
    {
        QTest::addColumn<quint32>("type");
        for (const InstrumentModel *model : instrumentModels())
            QTest::newRow(model->name) << model->typeCode;
    }
};

QTEST_GUILESS_MAIN(TestRoundTrip)
#include "tst_roundtrip.moc"
