#include "device/settingsfile.h"
#include "device/vocabulary.h"
#include "devicebench.h"
#include "support/imagefields.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

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

} // namespace

/** What is encoded is decoded to the same: golden images, and any bytes. */
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

    void anyConfiguration_data() { addTypes(); }
    void anyConfiguration()
    {
        QFETCH(quint32, type);
        QRandomGenerator random(20261124 + type);
        for (int i = 0; i < 60; ++i) {
            ImageOf image(type);
            becomeAnyBytes(image, random);
            QStringList lines = settingsLines(ImageOf(type));
            for (int change = 0; change < 40; ++change) {
                const QString number = QString::number(random.bounded(-70, 70));
                // most codes stand before the characteristics, the others after them
                const int end = random.bounded(90);
                QString &line = lines[random.bounded(2) == 0 ? end : lines.size() - 1 - end];
                line = random.bounded(2) == 0 ? number : number + " [x] " + number;
            }
            applySettings(lines, image);
            QCOMPARE(
                ((image.devMeasRound | image.devChRevers) & 0x0F) | (image.devZakorotka & 0xF0), 0);
            QCOMPARE((image.devMeasTime | image.devMeasMode | image.devCompensTP) & 0xF0, 0);
            for (quint8 ch = 0; ch < image.getDevChCount(); ++ch) {
                QVERIFY(image.channels.at(ch).current <= 15 && image.channels.at(ch).resist <= 15);
                QVERIFY(image.hasChFeature(ch));
                QVERIFY(type <= 0x21 || image.hasChFeatureCompesTP(ch));
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

    static void addTypes()
    {
        QTest::addColumn<quint32>("type");
        for (const InstrumentModel *model : instrumentModels())
            QTest::newRow(model->name) << model->typeCode;
    }
};

QTEST_GUILESS_MAIN(TestRoundTrip)
#include "tst_roundtrip.moc"
