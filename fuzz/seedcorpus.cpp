/// Writes the inputs from which the fuzzers start, made by the product: seed-corpus <folder>.

#include "calibration/characteristicfile.h"
#include "device/settingsfile.h"
#include "device/windows1251.h"
#include "imagechecks.h"
#include "storage/noxsql.h"
#include "storage/resultslayout.h"
#include "storage/statement.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <cstdio>

namespace
{

const QStringList &entriesOf(FeatureRecord::_featureIndType type)
{
    static const QVector<QStringList> entries = {
        {"-242,02", "2.2228", "2.5859E-3", "-4.8260E-6", "-2.8183E-8", "1.5243E-10", "0", "0", "0",
         "0"},
        {"100", "3.9083e-3", "-5.775e-7", "-4.183e-12", "-200", "850"},
        {"24.9995", "-1.2e-4", "", "-", "3.1e-6", "0", "0", "0", "0,5"},
        {"-50.0", "-1.8890", "0.0", "0.0000", "100.0", "4.0960", "90.0", "3.6820", "1000.0",
         "41.2760"},
    };
    return entries.at(type);
}

/** An image of the type with something in every field, and so many characteristics. */
void fill(optionsNOX8 &image, quint32 type, int characteristics)
{
    image.setDevType(type);
    image.setDevNumber(1234);
    image.devName = QStringLiteral("Эталон 1");
    image.devMeasTime = 3;
    image.refU.value.value = 300.0F;
    for (ReferenceTriple &resistor : image.refR)
        resistor = {bFloat(200.0F), bFloat(1e-5F), bFloat(-2e-7F)};
    int number = 0;
    forEachShift(static_cast<ZeroShifts &>(image),
                 [&number](bFloat &shift) { shift.value = float(++number) / 1e4F; });
    for (quint8 ch = 0; ch < image.getDevChCount(); ++ch) {
        const auto form = FeatureRecord::_featureIndType(ch % 4);
        if (ch < characteristics)
            image.features.at(ch)->setFeature(form, QStringLiteral("Датчик %1").arg(ch + 1),
                                              entriesOf(form));
        image.setChMeasType(ch, ch == 2 ? measTemperatureCustom : measTemperature, "K");
        image.setChCurrent(ch, ch % 2);
        image.setChFeature(ch, ch == 3 ? featureThermocouple : featureIndividual, ch % 8);
        image.setChFeatureCompesTP(ch, compensResistanceThermometer, ch % 8);
    }
}

QByteArray framed(quint8 address, const QByteArray &block)
{
    QByteArray size(2, '\0');
    qToLittleEndian(quint16(block.size()), size.data());
    return char(address) + size + block;
}

QByteArray loggerRecords()
{
    return QByteArray::fromHex("000c0b180a1e0f00" // the start
                               "0100000041200000" // a time mark
                               "020041ac00001000" // a temperature
                               "020542c800000000" // a resistance
                               "0107000041a00000"
                               "0207412000002000"); // a voltage
}

QByteArray identification(const optionsNOX8 &image)
{
    return taken(image.getIdentData()) +
           (image.getDevRev() != 0 ? taken(image.getSNData()) : QByteArray());
}

/** All blocks of an image, in the order in which a program reads them. */
QByteArray blockSequence(const optionsNOX8 &image, int model)
{
    return char(model) + framed(51, identification(image)) +
           framed(3, taken(image.getRefData(true))) + framed(2, taken(image.getData())) +
           framed(9, taken(image.getRefShiftData())) + framed(5, loggerRecords());
}

bool write(const QDir &folder, const QString &fuzzer, const QString &name, const QByteArray &input)
{
    QFile file(folder.filePath(fuzzer + '/' + name));
    return folder.mkpath(fuzzer) && file.open(QIODevice::WriteOnly) &&
           file.write(input) == input.size();
}

bool writeModels(const QDir &folder)
{
    bool isWritten = true;
    const QList<quint32> types = optionsNOX8::getTypeList(true).keys();
    for (int model = 1; model < types.size(); ++model) {
        optionsNOX8 image;
        fill(image, types.at(model), optionsNOX8::channelRecords);
        const QString name = QStringLiteral("model%1").arg(model);
        // the fewer bytes a file has, the more often it is read: one characteristic of each form
        optionsNOX8 sparse;
        fill(sparse, types.at(model), 4);
        const QByteArray lines = toWindows1251(settingsLines(sparse).join('\n') + '\n');
        isWritten = write(folder, "blocks", name, blockSequence(image, model)) &&
                    write(folder, "identification", name, '\0' + identification(image)) &&
                    write(folder, "settings", name, lines) && isWritten;
    }
    return isWritten;
}

QByteArray characteristicFile(FeatureRecord::_featureIndType type)
{
    CharacteristicFile file{type, QStringLiteral("Эталон"), {}};
    QStringList entries = entriesOf(type);
    if (type == FeatureRecord::its90)
        entries.insert(4, QStringLiteral("-"));
    file.rows.resize(type == FeatureRecord::callendarVanDusen ? 1 : 2);
    const int columns = entries.size() / file.rows.size();
    for (int i = 0; i < entries.size(); ++i) {
        const bool isPaired = type == FeatureRecord::temperatureOfVoltage;
        file.rows[isPaired ? i % 2 : i / columns] << entries.at(i);
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writeCharacteristicFile(file, buffer);
    return buffer.data();
}

bool writeCharacteristics(const QDir &folder)
{
    bool isWritten = true;
    for (int form = 0; form < 4; ++form) {
        const auto type = FeatureRecord::_featureIndType(form);
        featureNOX8 feature;
        feature.setFeature(type, "Pt100", entriesOf(type));
        const QByteArray texts = QByteArray(1, '\1') + char(form) + "Pt100\n" +
                                 toWindows1251(entriesOf(type).join('\n'));
        const QString name = QStringLiteral("form%1").arg(form);
        isWritten = write(folder, "characteristic", name, '\0' + taken(feature.getData())) &&
                    write(folder, "characteristicfile", name, characteristicFile(type)) &&
                    write(folder, "characteristic", name + "-texts", texts) && isWritten;
    }
    return isWritten;
}

/** A byte for the size of the slices, and a file for each separator. */
bool writeResults(const QDir &folder)
{
    bool isWritten = true;
    for (const char separator : {';', '\t', ',', ' ', ':'}) {
        ResultsFormat format;
        format.fieldSeparator = separator;
        ResultsText text(format);
        text.addHeader(QDateTime({2026, 11, 24}, {7, 5, 9}),
                       {QStringLiteral("°С"), QStringLiteral("Ω"), QStringLiteral("мм рт. ст.")});
        for (const int row : {1, 2}) {
            text.beginRow(row, row * 1e6);
            text.addValue(-1.5 * row);
            text.addNoValue();
            text.addValue(7.125);
            text.endRow();
        }
        const QString name = QStringLiteral("separator%1").arg(int(separator));
        isWritten = write(folder, "results", name, '\x1F' + text.bytes()) && isWritten;
    }
    return isWritten;
}

/** Batches of a stream, each behind its size. */
QByteArray batches(const QList<QByteArray> &parts)
{
    QByteArray input;
    for (const QByteArray &part : parts)
        input += char(part.size()) + part;
    return input;
}

/** Exchanges as an instrument should answer them: see dialogue.cpp. */
bool writeDialogues(const QDir &folder)
{
    const QMap<QString, QByteArray> exchanges = {
        {"block", "00020800 01 02 14 01020304 43 05060708 03"},
        {"identification", "00330800 01 02 14 0FAA5009 43 05060708 43 05060708 43 05060708"
                           "43 05060708 43 05060708 03"},
        {"records", "01051800 01 02 64 0102030405060708 0102030405060708 FF02030405060708"},
        {"word", "02340000 01 14 01020304"},
        {"write", "03000800 01 02 00 01 03 01 03"},
        {"repetition", "03000400 00 01 02 00 00 00 10AA 00 01 03"},
        {"wordwrite", "04340400 01 00 01 00"},
    };
    bool isWritten = true;
    for (auto exchange = exchanges.begin(); exchange != exchanges.end(); ++exchange)
        isWritten =
            write(folder, "dialogue", exchange.key(), QByteArray::fromHex(exchange.value())) &&
            isWritten;
    return isWritten;
}

/** A database of the program with one row in each table, in pages of the smallest size. */
bool writeDatabase(const QDir &folder)
{
    const QTemporaryDir temporary;
    const QString path = temporary.filePath("nox8.db");
    if (!provideDatabase(path))
        return false;
    {
        noxSql database(path);
        execute("PRAGMA page_size=512");
        optionsNOX8 image;
        fill(image, 0x11, 1);
        const QByteArray data = "configuration";
        const QByteArray references = taken(image.getRefData(true));
        const int id = database.provideDev(&references, 0x11, 1234, "NOX B").value_or(-1);
        database.setSnapShot(id, &data, &references, "info", 0);
        database.setFeature(&data, "Pt100", "info", 0);
        database.setAppProperty("main_device_id", id);
        for (const char *key : {"qwt-ch_main", "qwt_ch_0-dX", "qwt_ch_0-color", "ch_0-dim"})
            database.setDevProperty(id, key, 1);
    }
    QFile file(path);
    return file.open(QIODevice::ReadOnly) &&
           write(folder, "database", "whole", QByteArray::fromHex("F002D204") + file.readAll());
}

/** A row of each table and a damage, and values of each kind: see database.cpp. */
bool writeRows(const QDir &folder)
{
    const QByteArray text = "\x2E"
                            "qwt_1";
    const QByteArray row = QByteArray::fromHex("0C 0C") + text + text + QByteArray::fromHex("00");
    const QByteArray id(1, '\0'); // the next one
    const QByteArray rows = '\0' + id + row + '\1' + id + row + text + '\2' + id + row.left(2) +
                            text + '\3' + id + row + '\4' + id + text + text;
    const QByteArray head = QByteArray::fromHex("F102D204");
    return write(folder, "database", "rows", head + rows) &&
           write(folder, "database", "refusing", head + rows + QByteArray::fromHex("C807")) &&
           write(folder, "database", "numbers", head + rows + QByteArray::fromHex("C901"));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // finds the database driver
    if (argc != 2) {
        std::fprintf(stderr, "seed-corpus <folder>\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const bool isWritten = writeModels(folder) && writeCharacteristics(folder) &&
                           writeResults(folder) &&
                           write(folder, "logger", "records", '\x08' + loggerRecords()) &&
                           write(folder, "stream", "tokens",
                                 batches({"1:20.15B 2:#E1#E2X 8:10.0C", " 12:-0.75A 0:1.5C 1:2",
                                          "0.4B 1:2:3e-5B nan +5 3:inf "})) &&
                           write(folder, "plot", "points",
                                 QByteArray::fromHex("0200000001 006EC8 016E64 006E65 0078FF"
                                                     "C8757E1800000000 006E64")) &&
                           write(folder, "packedlist", "decimals",
                                 QByteArray::fromHex("01 04 00000000006A0841 0080 00 03050107 00"
                                                     "03 000000004C1DD440 983A 05 021400 00"
                                                     "0000 0008 FF03 0204")) &&
                           writeDialogues(folder) && writeDatabase(folder) && writeRows(folder);
    return isWritten ? 0 : 1;
}
