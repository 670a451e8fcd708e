/// Writes the inputs from which the fuzzers start, made by the product: seed-corpus <folder>.

#include "calibration/characteristicfile.h"
#include "checks.h"
#include "device/settingsfile.h"
#include "device/windows1251.h"
#include "storage/resultslayout.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
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

/** An image of the type with something in every field. */
void fill(optionsNOX8 &image, quint32 type)
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

/** All blocks of an image, in the order in which a program reads them. */
QByteArray blockSequence(const optionsNOX8 &image, int model)
{
    QByteArray identification = taken(image.getIdentData());
    if (image.getDevRev() != 0)
        identification += taken(image.getSNData());
    return char(model) + framed(51, identification) + framed(3, taken(image.getRefData(true))) +
           framed(2, taken(image.getData())) + framed(9, taken(image.getRefShiftData())) +
           framed(5, loggerRecords());
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
        fill(image, types.at(model));
        const QString name = QStringLiteral("model%1").arg(model);
        const QString lines = settingsLines(image).join("\r\n") + "\r\n";
        isWritten = write(folder, "blocks", name, blockSequence(image, model)) &&
                    write(folder, "settings", name, toWindows1251(lines)) && isWritten;
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

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "seed-corpus <folder>\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const bool isWritten = writeModels(folder) && writeCharacteristics(folder) &&
                           writeResults(folder) &&
                           write(folder, "logger", "records", '\x08' + loggerRecords());
    return isWritten ? 0 : 1;
}
