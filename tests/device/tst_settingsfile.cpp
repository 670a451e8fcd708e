#include "device/filereplacement.h"
#include "device/settingsfile.h"
#include "imagelog.h"
#include "imagetrial.h"
#include "support/fulldisk.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

class TestSettingsFile : public QObject
{
    Q_OBJECT
private slots:
    void lines_data();
    void lines();
    void codes_data();
    void codes();
    void loadingAnnounces();
    void numbersAfterABadOneStay();
    void characteristicsAfterABadOneStay();
    void emptyCompensationLine();
    void indicesBeyondTheirListsAreNotKept();
    void textsAreTakenAsTheyStand();
    void filesThatEndEarly();
    void extendedPartIsRefused();
    void filesWithoutAModel_data();
    void filesWithoutAModel();
    void unreadableFiles();
    void lineEndsInTexts();
    void tablesThatDoNotFit();
    void fullDiskLeavesTheOldFile();
};

namespace
{

void prepare(optionsNOX8 &image, quint32 type)
{
    image.setDevType(type);
    const QStringList noTexts = QVector<QString>(10, "").toList();
    for (featureNOX8 *feature : qAsConst(image.features))
        QCOMPARE(feature->setFeature(FeatureRecord::polynomial, {}, noTexts), 1);
}

QStringList linesOf(quint32 type)
{
    optionsNOX8 image;
    prepare(image, type);
    return settingsLines(image);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

void TestSettingsFile::lines_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("modelLine");
    QTest::addColumn<QString>("model");

    QTest::newRow("B") << 0x11u << 656 << 634 << "NOX B rev3";
    QTest::newRow("CM") << 0x22u << 665 << 634 << "NOX CM rev3";
    QTest::newRow("CM1") << 0x41u << 1265 << 1218 << "NOX CM1 rev3";
    QTest::newRow("D, revision 4") << 0x0970AA0Fu << 705 << 634 << "NOX D rev3";
    QTest::newRow("CM1, revision 4") << 0x0960AA0Fu << 1305 << 1218 << "NOX CM1 rev3";
}

void TestSettingsFile::lines()
{
    QFETCH(quint32, type);
    QFETCH(int, modelLine);
    const QStringList lines = linesOf(type);
    QTEST(lines.size(), "count");
    QTEST(lines.at(modelLine), "model");
    optionsNOX8 image;
    QVERIFY(applySettings(lines, image));
    QCOMPARE(image.devType, type);
}

void TestSettingsFile::codes_data()
{
    // of a NOX CM: channel lines begin at 9, its time line is 635, its tail begins at 648
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QByteArray>("settings"); // the header, then the record of channel 0

    const auto row = [](const char *name, int line, const char *text, bool accepted,
                        const char *settings) {
        QTest::newRow(name) << line << QString(text) << accepted << QByteArray(settings);
    };
    const char *const same = "02200100"
                             "01000000";
    row("nothing changed", 0, "COM7", true, same);
    row("mode", 6, "1", true, "0120010001000000");
    row("mode that four bits cannot hold", 6, "16", false, same);
    row("mode in words", 6, "cyclic", false, same);
    row("rounding", 7, "1", true, "0210010001000000");
    row("negative rounding", 7, "-1", false, same);
    row("compensation", 8, "2", true, "0222010001000000");
    row("compensation that four bits cannot hold", 8, "16", false, same);
    row("off", 9, "Выкл", true, "0220010000000000");
    row("on, with a blank", 9, "Вкл ", true, "0220010000000000");
    row("temperature", 10, "°C", true, "0220010001100000");
    row("voltage", 10, "mV", true, "0220010001200000");
    row("no such unit", 10, "Ohm", true, same);
    row("current", 11, "2 [0.2mA]", true, "0220010001010000");
    row("last current of four bits", 11, "16", true, "02200100010f0000");
    row("current 0", 11, "0", false, same);
    row("current 17", 11, "17", false, same);
    row("current below all", 11, "-2147483648", false, same);
    row("current in words", 11, "one", false, same);
    row("resistor", 12, "Rr 3", true, "0220010001002000");
    row("resistor without its word", 12, "3", false, same);
    row("resistor 17", 12, "Rr 17", false, same);
    row("16th individual", 13, "16", true, "0220010001000f00");
    row("first standard thermometer", 13, "21", true, "0220010001000040");
    row("last standard thermometer", 13, "33", true, "0220010001000c40");
    row("fifth standard thermocouple", 13, "45", true, "0220010001000480");
    row("last standard thermocouple", 13, "53", true, "0220010001000c80");
    row("code 0", 13, "0", false, same);
    row("code 17", 13, "17", false, same);
    row("code 34", 13, "34", false, same);
    row("negative code", 13, "-3", false, same);
    row("code beyond all", 13, "54", true, same);
    row("measurement time", 635, "\t", true, "8220010001000000");
    row("measurement time 10 s", 635, "\v", false, same);
    row("measurement time beyond a byte", 635, "Ж", false, same);
    row("no measurement time", 635, "", false, same);
    row("reversal", 647, "1", true, "0220110001000000");
    row("individual compensation", 648, "3", true, "0220010001000002");
    row("standard compensation", 648, "33", true, "022001000100001c");
    row("compensation code 17", 648, "17", false, same);
    row("compensation code beyond all", 648, "34", true, same);
    row("no compensation", 648, "", true, "0220010001000030");
    row("short circuit", 656, "1", true, "0220000001000000");
}

void TestSettingsFile::codes()
{
    QFETCH(int, line);
    QFETCH(QString, text);
    QStringList lines = linesOf(0x22);
    lines[line] = text;
    optionsNOX8 image;
    prepare(image, 0x22);
    QTEST(applySettings(lines, image), "accepted");
    QTEST((encodeOperatingSettings(image) + encodeChannel(image.channels.at(0))).toHex(),
          "settings");
}

void TestSettingsFile::loadingAnnounces()
{
    optionsNOX8 saved;
    prepare(saved, 0x0950AA0F);
    saved.devMeasMode = 1;
    saved.devMeasTime = 3;
    saved.channels[2].measType = measTemperatureCustom;
    saved.channels[2].dimCust = "K";
    saved.channels[2].current = 4;
    saved.channels[5].featureTypeCompensTP = compensResistanceThermometer;
    saved.devZakorotka = 0;

    optionsNOX8 image;
    ImageLog log(image);
    QVERIFY(applySettings(settingsLines(saved), image));
    QStringList expected{"ident", "dev", "ref"}; // the base model
    expected << "dev";                           // the mode
    expected << "ch2"
             << "ch2"; // temperature, then current
    for (int ch = 0; ch < 8; ++ch)
        expected << "dev"
                 << "dev"; // before each characteristic, and by it
    expected << "dev";     // the measurement time
    expected << "ch5"
             << "dev"; // compensation, short circuit
    expected << "ref"
             << "ch2"; // all numbers are in, the unit
    expected << "ident"
             << "dev"
             << "ref"; // the model itself
    QCOMPARE(log.take(), expected);
    QCOMPARE(differenceOf(saved, image), QString());
}

void TestSettingsFile::numbersAfterABadOneStay()
{
    QStringList lines = linesOf(0x22);
    lines[1] = lines[5] = "-";
    lines[2] = "12,5";
    lines[3] = "R3";
    lines[4] = "4.5";
    lines[6] = "1";
    lines[14] = "Выкл";
    lines[637] = "7"; // R1 a
    lines[657] = "K"; // the first unit
    optionsNOX8 image;
    prepare(image, 0x22);
    for (ReferenceTriple &resistor : image.refR)
        resistor.value.value = resistor.a.value = 99.0F;
    image.refU.value.value = 99.0F;
    image.features[0]->name = "before";
    QVERIFY(!applySettings(lines, image));
    QCOMPARE(image.refR[0].value.value, 99.0F);
    QCOMPARE(image.refR[1].value.value, 12.5F);
    QCOMPARE(image.refR[2].value.value, 0.0F);
    QCOMPARE(image.refR[3].value.value, 99.0F);
    QCOMPARE(image.refU.value.value, 99.0F);
    QCOMPARE(image.refR[0].a.value, 99.0F);
    QCOMPARE(image.features.at(0)->name, QStringLiteral("before"));
    QCOMPARE(int(image.devMeasMode), 1);
    QCOMPARE(int(image.channels.at(1).onOff), 0);
    QCOMPARE(image.getChDimCust(0), QStringLiteral("K"));
}

void TestSettingsFile::characteristicsAfterABadOneStay()
{
    QStringList lines = linesOf(0x22);
    for (int ch = 0; ch < 8; ++ch)
        lines[49 + ch] = "new";
    lines[57 + 56 * 2] = "a word among the numbers of channel 2";
    lines[585 + 1] = "77"; // a form that channel 1 does not know
    lines[636] = "21.5";   // T0
    lines[637 + 10] = "1"; // reversal
    optionsNOX8 image;
    prepare(image, 0x22);
    QVERIFY(!applySettings(lines, image));
    QCOMPARE(image.getFeatureInfStrList().join(','), QStringLiteral("new,,,,,,,"));
    QCOMPARE(image.refT0.value, 0.0F);
    QCOMPARE(int(image.devChRevers), 0x10);
}

void TestSettingsFile::emptyCompensationLine()
{
    QStringList lines = linesOf(0x22);
    for (int ch = 0; ch < 4; ++ch)
        lines[648 + ch].clear();
    optionsNOX8 image;
    prepare(image, 0x22);
    image.channels[0].featureTypeCompensTP = compensThermocouple;
    image.channels[0].featureCompensTP = 12;
    image.channels[1].featureTypeCompensTP = compensThermocouple;
    image.channels[1].featureCompensTP = 13;
    image.channels[2].featureTypeCompensTP = compensResistanceThermometer;
    image.channels[2].featureCompensTP = 5;
    image.channels[3].featureTypeCompensTP = compensNone;
    image.channels[3].featureCompensTP = 7;
    QVERIFY(applySettings(lines, image));
    QByteArray records;
    for (int ch = 0; ch < 4; ++ch)
        records += encodeChannel(image.channels.at(ch)).mid(3);
    QCOMPARE(records.toHex(), QByteArray("2c303037"));
}

void TestSettingsFile::indicesBeyondTheirListsAreNotKept()
{
    optionsNOX8 image;
    prepare(image, 0x22);
    QStringList lines = settingsLines(image);
    for (int ch = 0; ch < 8; ++ch) { // as an instrument may have them
        image.channels[ch].featureType =
            ch < 4 ? featureThermocouple : featureResistanceThermometer;
        image.channels[ch].featureTypeCompensTP = compensResistanceThermometer;
        image.channels[ch].feature = image.channels[ch].featureCompensTP = 13;
    }
    optionsNOX8 saved;
    QVERIFY(applySettings(settingsLines(image), saved));
    QCOMPARE(encodeChannel(saved.channels.at(0)).toHex(), QByteArray("01000030"));

    lines[13] = lines[649] = "99";
    lines[18] = lines[648] = "17";
    QVERIFY(!applySettings(lines, image));
    for (int ch = 0; ch < 2; ++ch) {
        QCOMPARE(image.channels.at(ch).featureType, featureIndividual);
        QCOMPARE(int(image.channels.at(ch).feature), 0);
        QCOMPARE(image.channels.at(ch).featureTypeCompensTP, compensNone);
    }
}

void TestSettingsFile::textsAreTakenAsTheyStand()
{
    QStringList lines = linesOf(0x0950AA0F);
    lines[657] = " a long unit of a file ";
    lines[668] = "junk"; // the first zero shift
    lines[669] = "1,5";
    // Callendar and Van Dusen stand in the coefficient lines alone
    const QStringList thermometer{"100", "3.9083e-3", "-5.775e-7", "0", "0", "100"};
    for (int i = 0; i < 6; ++i)
        lines[505 + i] = thermometer.at(i);
    lines[585] = "1";
    optionsNOX8 image;
    QVERIFY(applySettings(lines, image));
    QCOMPARE(image.getChDimCust(0), QStringLiteral(" a long unit of a file "));
    QCOMPARE(image.shiftU[0].value, 0.0F);
    QCOMPARE(image.shiftU[1].value, 1.5F);
    QCOMPARE(image.features.at(0)->ratioStr, thermometer);
}

void TestSettingsFile::filesThatEndEarly()
{
    QRandomGenerator random(5);
    for (const quint32 type : {0x11u, 0x22u, 0x0960AA0Fu}) {
        const QStringList whole = linesOf(type);
        const int channels = type == 0x0960AA0F ? 16 : 8;
        const int extendedPart = type == 0x0960AA0F ? 1265 : whole.size();
        const int units = extendedPart - channels;
        for (int count = 0; count < whole.size(); ++count) {
            optionsNOX8 image;
            fillAtRandom(image, 0x41, random);
            const bool accepted = applySettings(whole.mid(0, count), image);
            // a file may lack the units, and what makes an extended model of its base
            QVERIFY2(accepted == (count == units || count == extendedPart),
                     qPrintable(QString("%1 lines of type %2").arg(count).arg(type)));
            QCOMPARE(image.devType == 0, count <= (channels == 8 ? 634 : 1218));
        }
    }
    // a model of 16 channels where only 8 can stand
    QStringList lines = linesOf(0x22);
    lines[634] = "NOX CM1 rev3";
    optionsNOX8 image;
    QVERIFY(!applySettings(lines, image));
    QCOMPARE(image.devType, 0x41u);
}

void TestSettingsFile::extendedPartIsRefused()
{
    const QStringList whole = linesOf(0x0950AA0F);
    for (const char *type : {"0", "rubbish", "-5", "85", "4294967296"}) {
        QStringList lines = whole;
        lines[666] = type;
        lines[667] = "name";
        optionsNOX8 image;
        QVERIFY(!applySettings(lines, image));
        QCOMPARE(image.devType, 0x22u);
        QCOMPARE(image.devName, QString());
    }
    QStringList lines = whole;
    lines[665] = "rev4 ";
    optionsNOX8 image;
    QVERIFY(applySettings(lines, image));
    QCOMPARE(image.devType, 0x22u);
}

void TestSettingsFile::filesWithoutAModel_data()
{
    QTest::addColumn<QByteArray>("content");

    QStringList lines = linesOf(0x11);
    lines[634] = "NOX Z rev3";
    QTest::newRow("unknown model") << lines.join('\n').toUtf8();
    lines[634] = "-- rev3";
    QTest::newRow("no model") << lines.join('\n').toUtf8();
    lines[634] = "NOX B";
    QTest::newRow("no revision") << lines.join('\n').toUtf8();
    lines[634] = "rev3";
    QTest::newRow("no name") << lines.join('\n').toUtf8();
    lines = linesOf(0x41);
    lines.removeAt(100);
    QTest::newRow("one line lost") << lines.join('\n').toUtf8();
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("line ends only") << QByteArray(5000, '\n');
    QTest::newRow("zeros") << QByteArray(100000, '\0');
    QByteArray noise(300000, '\0');
    QRandomGenerator random(1);
    for (char &byte : noise)
        byte = char(random.bounded(256));
    QTest::newRow("noise") << noise;
    QTest::newRow("right, but 2 MiB long")
        << linesOf(0x11).join('\n').toUtf8() + '\n' + QByteArray(2 * 1024 * 1024, ' ');
}

void TestSettingsFile::filesWithoutAModel()
{
    QFETCH(QByteArray, content);
    QBuffer device(&content);
    QVERIFY(device.open(QIODevice::ReadOnly));
    optionsNOX8 image;
    prepare(image, 0x31);
    ImageLog log(image);
    QVERIFY(!readSettings(device, image));
    QCOMPARE(image.devType, 0u);
    QCOMPARE(log.take(), (QStringList{"ident", "dev", "ref"}));
    QVERIFY(device.pos() <= 1024 * 1024 + 1);
}

void TestSettingsFile::unreadableFiles()
{
    QTemporaryDir directory;
    const QString fifo = directory.filePath("fifo");
    QCOMPARE(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    optionsNOX8 image;
    prepare(image, 0x31);
    for (const QString &path :
         {directory.filePath("none.ust"), directory.path(), fifo, QString(), QString("/dev/zero")})
        QVERIFY2(!image.loadFromFile(path), qPrintable(path));
    QCOMPARE(image.devType, 0x31u);
    QVERIFY(!image.saveToFile(directory.filePath("none/x.ust"), "COM1"));
    QVERIFY(!image.saveToFile(directory.path(), "COM1"));
    QVERIFY(!image.saveToFile(fifo, "COM1"));
    QVERIFY(!QFileInfo(fifo).isFile());

    QFile sparse(directory.filePath("large.ust"));
    QVERIFY(sparse.open(QIODevice::WriteOnly) && sparse.resize(100 * 1024 * 1024));
    QVERIFY(!image.loadFromFile(sparse.fileName()));
    QCOMPARE(image.devType, 0u);
}

void TestSettingsFile::lineEndsInTexts()
{
    optionsNOX8 image;
    prepare(image, 0x0950AA0F);
    image.devName = "two\nlines";
    image.features[3]->name = "a\r\nb";
    image.features[3]->ratioStr = QStringList{"1\n"};
    image.channels[1].measType = measTemperatureCustom;
    image.channels[1].dimCust = "\n";
    image.devMeasTime = 9; // as a character it would be a line end
    const QStringList lines = settingsLines(image);
    QCOMPARE(lines.size(), 705);
    QCOMPARE(lines.filter(QRegularExpression("[\r\n]")), QStringList());
    optionsNOX8 read;
    QVERIFY(applySettings(lines, read));
    QCOMPARE(read.devName, QStringLiteral("two lines"));
    QCOMPARE(int(read.devMeasTime), 8);
}

void TestSettingsFile::tablesThatDoNotFit()
{
    QTemporaryDir directory;
    const QString path = directory.filePath("x.ust");
    optionsNOX8 image;
    prepare(image, 0x11);
    QVERIFY(image.saveToFile(path, "COM1"));
    const QByteArray before = contentOf(path);

    FeatureRecord &table = *image.features[7];
    table.type = FeatureRecord::temperatureOfVoltage;
    const auto isSavedWith = [&](std::size_t i, float number) {
        table.ratio[i].value = number;
        const bool saved = image.saveToFile(path, "COM1");
        table.ratio[i].value = 0.0F;
        return saved;
    };
    QVERIFY(!isSavedWith(110, 10000.0F));
    QVERIFY(!isSavedWith(110, 9999.95F));
    QVERIFY(!isSavedWith(110, -1000.0F));
    QVERIFY(!isSavedWith(111, std::numeric_limits<float>::infinity()));
    QVERIFY(!optionsNOX8().saveToFile(path, "COM1")); // no model: it could never be loaded
    QCOMPARE(contentOf(path), before);
    QVERIFY(isSavedWith(110, 9999.9F));
    QVERIFY(isSavedWith(110, -999.9F));
    QVERIFY(isSavedWith(111, -12345.0F));
}

void TestSettingsFile::fullDiskLeavesTheOldFile()
{
    QTemporaryDir directory;
    const QString path = directory.filePath("x.ust");
    optionsNOX8 image;
    prepare(image, 0x11);
    QVERIFY(image.saveToFile(path, "COM1"));
    const QByteArray before = contentOf(path);
    image.setDevType(0x0960AA0F);
    {
        const FullDisk disk(2000); // less than a file, more or less than a buffer
        QVERIFY(!image.saveToFile(path, "COM1"));
        QVERIFY(!replaceFile(path, QByteArray(3000, 'x')));
        QVERIFY(!replaceFile(path, QByteArray(100000, 'x')));
        QVERIFY(replaceFile(directory.filePath("short"), QByteArray(1000, 'x')));
    }
    QFile::remove(directory.filePath("short"));
    QCOMPARE(contentOf(path), before);
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files).size(), 1);
    QVERIFY(image.saveToFile(path, "COM1"));
    QVERIFY(contentOf(path) != before);
}

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "tst_settingsfile.moc"
