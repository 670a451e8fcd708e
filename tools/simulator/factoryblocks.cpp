#include "simulator/factoryblocks.h"

#include <QtEndian>
#include <QTextCodec>

#include <array>
#include <cstring>

namespace
{

constexpr int characteristicSize = 492;
constexpr int extendedNameSize = 16;

/** T = Σ Ck·R^k of a Pt100, -100 to 450 °C, within 3 mK. */
constexpr std::array<double, 10> platinumPolynomial = {
    -237.94175,    1.9829399,      0.0081534668,  -6.7824231e-05, 2.9316644e-07,
    1.2130274e-10, -7.3890404e-12, 3.4454271e-14, -7.0656326e-17, 5.6715018e-20};

QByteArray floatBytes(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    QByteArray bytes(sizeof bits, '\0');
    qToBigEndian(bits, bytes.data());
    return bytes;
}

QByteArray zeros(int count)
{
    return QByteArray(count, '\0');
}

/** `text` in Windows-1251, cut or padded with zeros to `size` bytes. */
QByteArray fixedText(const QString &text, int size)
{
    return QTextCodec::codecForName("Windows-1251")
        ->fromUnicode(text)
        .leftJustified(size, '\0', true);
}

/** A length byte and the text, in 1 + `size` bytes. */
QByteArray countedText(const QString &text, int size)
{
    return char(qMin(text.size(), size)) + fixedText(text, size);
}

QByteArray channelRecord(const InstrumentModel &model, int channel)
{
    const char typeAndCurrent = char(0x10 | model.currentCode);
    const char resistAndFeature = char(model.resistCode << 4 | channel);
    const char noCompensation = 0x30;
    return QByteArray(1, 1) + typeAndCurrent + resistAndFeature + noCompensation;
}

QByteArray resistorTriple(float nominal)
{
    if (nominal == 0.0F)
        return zeros(12);
    return floatBytes(nominal * 1.00001F) + floatBytes(2.5e-6F) + floatBytes(-3.0e-8F);
}

QByteArray timeMark(float seconds)
{
    return QByteArray(1, 1) + zeros(3) + floatBytes(seconds);
}

QByteArray storedTemperature(int channel, float celsius)
{
    return QByteArray(1, 2) + char(channel) + floatBytes(celsius) + char(0x10) + '\0';
}

} // namespace

QByteArray factoryCharacteristic(int channel)
{
    QByteArray record = zeros(4);
    record += countedText(QStringLiteral("Pt100 №%1").arg(channel + 1), 39);
    QByteArray entries;
    for (const double coefficient : platinumPolynomial) {
        record += floatBytes(float(coefficient));
        entries += countedText(QString::number(coefficient, 'g', 8), 19);
    }
    return (record + entries).leftJustified(characteristicSize, '\0');
}

QByteArray factoryConfiguration(const InstrumentModel &model)
{
    const char cyclicMode = 0x02;
    const char roundToThousandth = 0x20;
    const char shortCircuit = model.isBasic() ? 0 : 1;
    QByteArray block = QByteArray(1, cyclicMode) + roundToThousandth + shortCircuit + '\0';
    for (int channel = 0; channel < model.channelCount; ++channel)
        block += channelRecord(model, channel);
    block += char(model.familyCode) + zeros(3);
    for (int channel = 0; channel < model.channelCount; ++channel)
        block += factoryCharacteristic(channel);
    return block;
}

QByteArray factoryReferenceData(const InstrumentModel &model)
{
    QByteArray block = floatBytes(20.0F);
    for (const float nominal : model.resistors)
        block += resistorTriple(nominal);
    block += floatBytes(model.refVoltage) + floatBytes(1.0e-6F) + floatBytes(0.0F);
    const QByteArray writtenAt("\x0C\x00\x00\x00\x0F\x03\x15\x01", 8); // 12:00:00, 15.03.2021
    return block + writtenAt;
}

QByteArray factoryZeroShifts()
{
    QByteArray block;
    for (int i = 0; i < 37; ++i)
        block += floatBytes(0.0001F * float(i - 18));
    return block;
}

QByteArray factoryIdentification(const InstrumentModel &model, quint16 serialNumber,
                                 const QString &name)
{
    if (!model.isExtended())
        return char(model.familyCode) + zeros(3) + char(model.typeCode) + '\0' +
               char(serialNumber >> 8) + char(serialNumber & 0xFF);
    QByteArray typeCode(4, '\0');
    qToLittleEndian(model.typeCode, typeCode.data());
    return typeCode + fixedText(name, extendedNameSize) + char(serialNumber & 0xFF) +
           char(serialNumber >> 8) + zeros(2);
}

QByteArray factoryLog(const InstrumentModel &model, int marks)
{
    if (marks <= 0)
        return {};
    QByteArray records("\x00\x11\x05\x17\x09\x1E\x00\x00", 8); // 17.05.2023 09:30:00
    for (int mark = 0; mark < marks; ++mark) {
        records += timeMark(10.0F * float(mark));
        for (int channel = 0; channel < model.channelCount; ++channel)
            records +=
                storedTemperature(channel, 21.0F + 0.05F * float(mark) + 0.1F * float(channel));
    }
    return records;
}
