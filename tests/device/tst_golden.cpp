#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "goldenimage.h"
#include "support/imagefields.h"

#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

#include <algorithm>

/**
 * Blocks and settings files against those in golden/, which tests/support/golden.py makes without
 * any code of the product.
 */
class TestGolden : public QObject
{
    Q_OBJECT
private slots:
    void makesBlocks_data() { addModels(); }
    void makesBlocks();
    void readsBlocks_data() { addModels(); }
    void readsBlocks();
    void readsLogger_data() { addModels(); }
    void readsLogger();
    void savesFile_data() { addModels(); }
    void savesFile();
    void loadsFile_data();
    void loadsFile();

private:
    static void addModels();
};

using Blocks = QMap<QString, QByteArray>;

/** How a settings file is changed before it is loaded. */
enum class Form { AsSaved, LineFeeds, DecimalCommas };
Q_DECLARE_METATYPE(Form)

namespace
{

const QDateTime moment(QDate(2026, 11, 24), QTime(17, 5, 9));

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString goldenFile(int row, const QString &suffix)
{
    return QFINDTESTDATA("golden/" + goldenModels().at(row).file + suffix);
}

Blocks goldenBlocks(int row)
{
    Blocks blocks;
    for (const QByteArray &line : contentOf(goldenFile(row, ".blocks")).split('\n')) {
        const int blank = line.indexOf(' ');
        if (blank > 0)
            blocks.insert(line.left(blank), QByteArray::fromHex(line.mid(blank + 1)));
    }
    return blocks;
}

/** The blocks that the image makes, under the names of the golden ones. */
Blocks blocksOf(optionsNOX8 &image)
{
    image.setClock([] { return moment; });
    Blocks blocks = {{"configuration", taken(image.getData())},
                     {"reference", taken(image.getRefData(true))},
                     {"referenceWritten", taken(image.getRefData(false))},
                     {"allReference", taken(image.getRefAllData())},
                     {"identificationWritten", taken(image.getIdentData())},
                     {"channel0", image.channelBlock(0)},
                     {"channelLast", image.channelBlock(quint8(image.getDevChCount() - 1))},
                     {"dateTime", encodeDateTime(moment)}};
    if (image.getDevRev() != 0) {
        blocks.insert("shifts", taken(image.getRefShiftData()));
        blocks.insert("serialNumber", taken(image.getSNData()));
    }
    return blocks;
}

Blocks blocksToMake(int row)
{
    Blocks blocks = goldenBlocks(row);
    blocks.remove("identificationRead"); // what only instruments make
    blocks.remove("logger");
    return blocks;
}

/** The first bytes or lines that differ; empty when there are none. */
QString differenceOf(const Blocks &made, const Blocks &golden)
{
    if (made.keys() != golden.keys())
        return made.keys().join(' ') + " instead of " + golden.keys().join(' ');
    for (const QString &name : golden.keys()) {
        const QByteArray &one = made[name];
        const QByteArray &other = golden[name];
        if (one == other)
            continue;
        const auto at = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
        const int offset = int(at.first - one.begin());
        return QString("%1 from byte %2: %3 instead of %4 (%5 and %6 bytes)")
            .arg(name)
            .arg(offset)
            .arg(QString(one.mid(offset, 16).toHex()), QString(other.mid(offset, 16).toHex()))
            .arg(one.size())
            .arg(other.size());
    }
    return {};
}

QString differenceOf(const QStringList &lines, const QStringList &golden)
{
    for (int i = 0; i < qMin(lines.size(), golden.size()); ++i)
        if (lines.at(i) != golden.at(i))
            return QString("line %1: %2\ninstead of %3").arg(i).arg(lines.at(i), golden.at(i));
    if (lines.size() != golden.size())
        return QString("%1 lines instead of %2").arg(lines.size()).arg(golden.size());
    return {};
}

QStringList linesOf(const QByteArray &file)
{
    return QTextCodec::codecForName("Windows-1251")->toUnicode(file).split("\r\n");
}

/** The file with commas in its lines of numbers. */
QByteArray withCommas(const QByteArray &file, const optionsNOX8 &image)
{
    QList<QByteArray> lines = file.split('\n');
    const auto change = [&lines](int from, int count) {
        for (int i = from; i < from + count; ++i)
            lines[i].replace('.', ',');
    };
    change(1, 5);
    change(52 + 73 * image.getDevChCount(), 11);
    if (image.getDevRev() != 0)
        change(lines.size() - 1 - 37, 37);
    return lines.join('\n');
}

/** What the record of a characteristic does not hold, as it comes back: six entries come from ten
 *  slots. The blocks hold all the rest of a golden image, but for the users' units. */
void becomeAsReadFromBlocks(optionsNOX8 &image)
{
    for (featureNOX8 *feature : qAsConst(image.features))
        while (feature->type == FeatureRecord::callendarVanDusen && feature->ratioStr.size() < 10)
            feature->ratioStr << QString();
}

void becomeAsWritten(bFloat &number, char format, int precision)
{
    number.value = QString::number(double(number.value), format, precision).toFloat();
}

void becomeAsWritten(ReferenceTriple &triple)
{
    becomeAsWritten(triple.value, 'f', 5);
    becomeAsWritten(triple.a, 'g', 6);
    becomeAsWritten(triple.b, 'g', 6);
}

/** The choices of 0xC0, and of 0x20 and 0x30 for compensation, are not in a file; the models up to
 *  0x21 have none of the compensation's characteristic there. */
void becomeAsInFile(ChannelSettings &channel, bool hasCompensation)
{
    if (channel.featureType == featureNone) {
        channel.featureType = featureIndividual;
        channel.feature = 0;
    }
    if (!hasCompensation || channel.featureTypeCompensTP == compensThermocouple ||
        channel.featureTypeCompensTP == compensNone) {
        channel.featureTypeCompensTP = hasCompensation ? compensNone : compensIndividual;
        channel.featureCompensTP = 0;
    }
}

/** A file holds no tenth number for the ITS-90 form, does not tell how many of the 56 pairs of a
 *  table were entered, and its Callendar-Van Dusen polynomial is fitted anew. */
void becomeAsInFile(FeatureRecord &feature, const FeatureRecord &loaded)
{
    if (feature.type == FeatureRecord::its90)
        feature.ratio[9].value = 0.0F;
    if (feature.type == FeatureRecord::callendarVanDusen)
        feature.ratio = loaded.ratio;
    const bool isTable = feature.type == FeatureRecord::temperatureOfVoltage;
    while (isTable && feature.ratioStr.size() < FeatureRecord::ratioCount)
        feature.ratioStr << feature.ratioStr.mid(feature.ratioStr.size() - 2);
}

/** A golden image as its settings file gives it back. Besides, a file holds no serial number, and
 *  of its numbers the digits that it shows. */
void becomeAsInFile(optionsNOX8 &expected, const optionsNOX8 &loaded)
{
    expected.devNumber = 0;
    for (ReferenceTriple &resistor : expected.refR)
        becomeAsWritten(resistor);
    becomeAsWritten(expected.refU);
    becomeAsWritten(expected.refT0, 'f', 2);
    forEachShift(static_cast<ZeroShifts &>(expected),
                 [](bFloat &shift) { becomeAsWritten(shift, 'g', 6); });
    for (int c = 0; c < expected.getDevChCount(); ++c) {
        becomeAsInFile(expected.channels[c], expected.devType > 0x21);
        becomeAsInFile(*expected.features.at(c), *loaded.features.at(c));
    }
}

} // namespace

void TestGolden::addModels()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < goldenModels().size(); ++row)
        QTest::addRow("%s", qPrintable(goldenModels().at(row).file)) << row;
}

void TestGolden::makesBlocks()
{
    QFETCH(int, row);
    optionsNOX8 image;
    makeGoldenImage(image, row);
    QCOMPARE(differenceOf(blocksOf(image), blocksToMake(row)), QString());
}

void TestGolden::readsBlocks()
{
    QFETCH(int, row);
    const Blocks golden = goldenBlocks(row);
    optionsNOX8 expected;
    makeGoldenImage(expected, row);
    becomeAsReadFromBlocks(expected);

    optionsNOX8 image;
    QVERIFY(image.setData(golden["identificationRead"], 51));
    QVERIFY(image.setData(golden["referenceWritten"], 3));
    for (int c = 0; c < image.getDevChCount(); ++c) // the units are kept beside the instrument
        image.channels[c].dimCust = expected.channels.at(c).dimCust;
    QVERIFY(image.setData(golden["configuration"], 2));
    image.setData(golden["shifts"], 9);

    QCOMPARE(differenceOf(describe(image), describe(expected)), QString());
    QVERIFY(image.identValid);
    QCOMPARE(differenceOf(blocksOf(image), blocksToMake(row)), QString());
}

void TestGolden::readsLogger()
{
    QFETCH(int, row);
    optionsNOX8 image;
    image.setDevType(goldenModels().at(row).type);
    QStringList items;
    connect(&image, &optionsNOX8::onRecData, this, [&items](const auto &records, QDateTime start) {
        items << start.toString(Qt::ISODate);
        for (auto channel = records.begin(); channel != records.end(); ++channel)
            for (const optionsNOX8::_recItem &item : channel.value())
                items << QString("%1: %2 %3 %4")
                             .arg(channel.key())
                             .arg(double(item.time))
                             .arg(double(item.value))
                             .arg(item.dim);
    });
    QVERIFY(image.setData(goldenBlocks(row)["logger"], 5));

    const QStringList expected =
        image.getDevChCount() == 8
            ? QStringList{"2026-11-24T17:05:09", "0: 0 -0.1 Ω", "2: 2.5 -1.1 °С", "4: 5 -2.1 мВ",
                          "7: 7.5 -3.1 -"}
            : QStringList{"2026-11-24T17:05:09", "0: 0 -0.1 Ω", "5: 2.5 -1.1 °С", "10: 5 -2.1 мВ",
                          "15: 7.5 -3.1 -"};
    QCOMPARE(items, expected);
}

void TestGolden::savesFile()
{
    QFETCH(int, row);
    optionsNOX8 image;
    makeGoldenImage(image, row);
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("saved.ust");
    QVERIFY(image.saveToFile(fileName, "COM7"));

    const QByteArray saved = contentOf(fileName);
    const QByteArray golden = contentOf(goldenFile(row, ".ust"));
    QCOMPARE(differenceOf(linesOf(saved), linesOf(golden)), QString());
    QCOMPARE(saved, golden);
}

void TestGolden::loadsFile_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<Form>("form");
    for (int row = 0; row < goldenModels().size(); ++row) {
        const QByteArray name = goldenModels().at(row).file.toUtf8();
        QTest::newRow(name + " as saved") << row << Form::AsSaved;
        QTest::newRow(name + " with LF line ends") << row << Form::LineFeeds;
        QTest::newRow(name + " with decimal commas") << row << Form::DecimalCommas;
    }
}

void TestGolden::loadsFile()
{
    QFETCH(int, row);
    QFETCH(Form, form);
    optionsNOX8 expected;
    makeGoldenImage(expected, row);
    const QByteArray golden = contentOf(goldenFile(row, ".ust"));
    QByteArray content = golden;
    if (form == Form::LineFeeds)
        content.replace("\r\n", "\n");
    else if (form == Form::DecimalCommas)
        content = withCommas(golden, expected);

    const QTemporaryDir folder;
    const QString fileName = folder.filePath("settings.ust");
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    optionsNOX8 image;
    QVERIFY(image.loadFromFile(fileName));
    becomeAsInFile(expected, image);
    QCOMPARE(differenceOf(describe(image), describe(expected)), QString());

    // whatever a file does not hold, it does not write differently either
    QVERIFY(image.saveToFile(fileName, QString()));
    QCOMPARE(differenceOf(linesOf(contentOf(fileName)), linesOf(golden)), QString());
    QCOMPARE(contentOf(fileName), golden);
}

QTEST_GUILESS_MAIN(TestGolden)
#include "tst_golden.moc"
