#include "device/vocabulary.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace
{

constexpr quint16 size8 = 3976;
constexpr quint16 size16 = 7944;

const InstrumentModel models[] = {
    // type code, name, shown as, extended, channels, resistors, family, block, short circuit
    {0x00, QT_TRANSLATE_NOOP("optionsNOX8", "--"), 0x00, false, 0, 0, 0, 0, false},
    {0x01, QT_TRANSLATE_NOOP("optionsNOX8", "NOX A"), 0x01, false, 8, 1, 0, size8, false},
    {0x11, QT_TRANSLATE_NOOP("optionsNOX8", "NOX B"), 0x11, false, 8, 2, 1, size8, false},
    {0x21, QT_TRANSLATE_NOOP("optionsNOX8", "NOX C"), 0x21, false, 8, 4, 2, size8, false},
    {0x22, QT_TRANSLATE_NOOP("optionsNOX8", "NOX CM"), 0x22, false, 8, 4, 2, size8, true},
    {0x31, QT_TRANSLATE_NOOP("optionsNOX8", "NOX D"), 0x31, false, 8, 4, 3, size8, true},
    {0x41, QT_TRANSLATE_NOOP("optionsNOX8", "NOX CM1"), 0x41, false, 16, 4, 4, size16, true},
    {0x0950AA0F, QT_TRANSLATE_NOOP("optionsNOX8", "NOX CM rev.4"), 0x22, true, 8, 4, 2, size8,
     true},
    {0x0960AA0F, QT_TRANSLATE_NOOP("optionsNOX8", "NOX CM1 rev.4"), 0x41, true, 16, 4, 4, size16,
     true},
    {0x0970AA0F, QT_TRANSLATE_NOOP("optionsNOX8", "NOX D rev.4"), 0x31, true, 8, 4, 3, size8, true},
};

struct StreamUnit {
    char letter;
    int measurementType;
};

constexpr StreamUnit streamUnits[] = {{'A', 0x00}, {'B', 0x10}, {'C', 0x20}};

struct MeasurementUnit {
    int measurementType;
    const char *text;
};

const MeasurementUnit measurementUnits[] = {
    {0x00, QT_TRANSLATE_NOOP("optionsNOX8", "Ω")},
    {0x10, QT_TRANSLATE_NOOP("optionsNOX8", "°С")},
    {0x20, QT_TRANSLATE_NOOP("optionsNOX8", "мВ")},
};

QString translated(const char *text)
{
    return QCoreApplication::translate("optionsNOX8", text);
}

} // namespace

const InstrumentModel *findModel(quint32 typeCode)
{
    const auto *const found = std::find_if(
        std::begin(models), std::end(models),
        [typeCode](const InstrumentModel &model) { return model.typeCode == typeCode; });
    return found == std::end(models) ? nullptr : found;
}

QString modelName(const InstrumentModel &model)
{
    return translated(model.name);
}

QMap<quint32, QString> typeNames(bool withRev)
{
    QMap<quint32, QString> names;
    for (const InstrumentModel &model : models)
        if (withRev || !model.extended)
            names.insert(model.typeCode, modelName(model));
    return names;
}

QString streamUnit(char letter)
{
    for (const StreamUnit &unit : streamUnits)
        if (unit.letter == letter)
            return measurementUnit(unit.measurementType);
    return QStringLiteral("-");
}

QString measurementUnit(int measurementType)
{
    for (const MeasurementUnit &unit : measurementUnits)
        if (unit.measurementType == measurementType)
            return translated(unit.text);
    return QStringLiteral("-");
}
