#include "device/settingsformat.h"

#include <cmath>

namespace
{

constexpr int firstOfWidth = 5;
constexpr int secondOfWidth = 6;
constexpr quint8 longestTime = 8;
constexpr double tenth = 10.0;
constexpr double tenThousandth = 10000.0;

constexpr int individualCodes = 1;             ///< code of the first individual characteristic
constexpr int resistanceThermometerCodes = 21; ///< ... of the first standard thermometer
constexpr int thermocoupleCodes = 41;          ///< ... of the first standard thermocouple
constexpr int individualCount = 16;
constexpr int standardCount = 13; ///< of either standard list

struct UnitText {
    MeasurementType type;
    const char *text;
};

constexpr UnitText unitTexts[] = {
    {measResistance, "Ом"}, {measTemperature, "°C"}, {measVoltage, "mV"}};

/** The index that a code means in a list of `count` whose codes begin with `first`. */
std::optional<quint8> indexIn(int code, int first, int count)
{
    if (code < first || code >= first + count)
        return std::nullopt;
    return quint8(code - first);
}

QString rounded(double number)
{
    return QString::number(number, 'f', 0);
}

QString tenths(const bFloat &number)
{
    return rounded(double(number.value) * tenth);
}

} // namespace

QString switchText(qint8 onOff)
{
    return onOff == 1 ? QStringLiteral("Вкл") : QStringLiteral("Выкл");
}

bool isSwitchedOn(const QString &text)
{
    return text == QStringLiteral("Вкл");
}

QString unitText(MeasurementType type)
{
    const MeasurementType kept = type == measTemperatureCustom ? measTemperature : type;
    for (const UnitText &unit : unitTexts)
        if (unit.type == kept)
            return QString::fromUtf8(unit.text);
    return {};
}

std::optional<MeasurementType> unitFromText(const QString &text)
{
    for (const UnitText &unit : unitTexts)
        if (QString::fromUtf8(unit.text) == text)
            return unit.type;
    return std::nullopt;
}

int characteristicCode(const ChannelSettings &channel)
{
    const bool isInList = channel.feature < standardCount;
    if (channel.featureType == featureIndividual)
        return channel.feature + individualCodes;
    if (channel.featureType == featureResistanceThermometer && isInList)
        return channel.feature + resistanceThermometerCodes;
    if (channel.featureType == featureThermocouple && isInList)
        return channel.feature + thermocoupleCodes;
    return individualCodes;
}

std::optional<CharacteristicChoice> characteristicFromCode(int code)
{
    if (const auto index = indexIn(code, individualCodes, individualCount))
        return CharacteristicChoice{featureIndividual, *index};
    if (const auto index = indexIn(code, resistanceThermometerCodes, standardCount))
        return CharacteristicChoice{featureResistanceThermometer, *index};
    if (const auto index = indexIn(code, thermocoupleCodes, standardCount))
        return CharacteristicChoice{featureThermocouple, *index};
    return std::nullopt;
}

QString compensationCode(const ChannelSettings &channel)
{
    const int index = channel.featureCompensTP;
    if (channel.featureTypeCompensTP == compensIndividual)
        return QString::number(index + individualCodes);
    if (channel.featureTypeCompensTP == compensResistanceThermometer && index < standardCount)
        return QString::number(index + resistanceThermometerCodes);
    return {};
}

std::optional<CompensationChoice> compensationFromCode(int code)
{
    if (const auto index = indexIn(code, individualCodes, individualCount))
        return CompensationChoice{compensIndividual, *index};
    if (const auto index = indexIn(code, resistanceThermometerCodes, standardCount))
        return CompensationChoice{compensResistanceThermometer, *index};
    return std::nullopt;
}

QString timeCharacter(quint8 measurementTime)
{
    return {QChar(qMin(measurementTime, longestTime) + 1)};
}

std::optional<quint8> timeFromText(const QString &text)
{
    const int code = text.isEmpty() ? 0 : text.at(0).unicode();
    if (code < 1 || code > longestTime + 1)
        return std::nullopt;
    return quint8(code - 1);
}

int formCode(int type)
{
    switch (type) {
    case FeatureRecord::its90:
        return 3;
    case FeatureRecord::temperatureOfVoltage:
        return 2;
    default:
        return type;
    }
}

int typeFromFormCode(int code)
{
    return formCode(code); // the exchange is its own reverse
}

QString tableLine(const bFloat &first, const bFloat &second)
{
    return tenths(first).rightJustified(firstOfWidth) +
           rounded(double(second.value) * tenThousandth).rightJustified(secondOfWidth);
}

QStringList textsFromTableLine(const QString &line)
{
    const double first = double(bFloat::str2Float(line.left(firstOfWidth)));
    const double second = double(bFloat::str2Float(line.mid(firstOfWidth)));
    return {QString::number(first / tenth, 'f', 1),
            QString::number(second / tenThousandth, 'f', 4)};
}

bool fitsTableLine(const bFloat &first, const bFloat &second)
{
    return std::isfinite(first.value) && std::isfinite(second.value) &&
           tenths(first).size() <= firstOfWidth;
}
