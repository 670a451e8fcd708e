#include "device/operatingsettings.h"

#include "device/nibbles.h"

QByteArray encodeOperatingSettings(const OperatingSettings &settings)
{
    QByteArray bytes(operatingSettingsSize, '\0');
    bytes[0] = char(lowNibble(settings.devMeasTime) << 4 | lowNibble(settings.devMeasMode));
    bytes[1] = char(highNibble(settings.devMeasRound) | lowNibble(settings.devCompensTP));
    bytes[2] = char(highNibble(settings.devChRevers) | lowNibble(settings.devZakorotka));
    return bytes;
}

void decodeOperatingSettings(const QByteArray &block, OperatingSettings &settings)
{
    const auto timeAndMode = quint8(block.at(0));
    const auto roundAndCompensation = quint8(block.at(1));
    const auto reversalAndShortCircuit = quint8(block.at(2));
    settings.devMeasTime = timeAndMode >> 4;
    settings.devMeasMode = lowNibble(timeAndMode);
    settings.devMeasRound = highNibble(roundAndCompensation);
    settings.devCompensTP = lowNibble(roundAndCompensation);
    settings.devChRevers = highNibble(reversalAndShortCircuit);
    settings.devZakorotka = lowNibble(reversalAndShortCircuit);
}
