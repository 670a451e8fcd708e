#include "device/vocabulary.h"

#include "device/instrumentblocks.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace
{

constexpr const char *none[] = {nullptr};

constexpr const char *currents1[] = {QT_TRANSLATE_NOOP("optionsNOX8", "1mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "1.5mA"), nullptr};
constexpr const char *currents2[] = {
    QT_TRANSLATE_NOOP("optionsNOX8", "0.1mA"), QT_TRANSLATE_NOOP("optionsNOX8", "0.2mA"),
    QT_TRANSLATE_NOOP("optionsNOX8", "1mA"), QT_TRANSLATE_NOOP("optionsNOX8", "1.5mA"), nullptr};
constexpr const char *currents3[] = {QT_TRANSLATE_NOOP("optionsNOX8", "0.1mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "0.2mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "0.4mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "0.7mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "1mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "1.5mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "2mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "4mA"),
                                     nullptr};
constexpr const char *currents4[] = {QT_TRANSLATE_NOOP("optionsNOX8", "0.4mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "0.7mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "1mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "1.5mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "2mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "2.5mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "3mA"),
                                     QT_TRANSLATE_NOOP("optionsNOX8", "4mA"),
                                     nullptr};

constexpr const char *resistors1[] = {QT_TRANSLATE_NOOP("optionsNOX8", "200 Ω"), nullptr};
constexpr const char *resistors2[] = {QT_TRANSLATE_NOOP("optionsNOX8", "200 Ω"),
                                      QT_TRANSLATE_NOOP("optionsNOX8", "1500 Ω"), nullptr};
constexpr const char *resistors3[] = {QT_TRANSLATE_NOOP("optionsNOX8", "75 Ω"),
                                      QT_TRANSLATE_NOOP("optionsNOX8", "200 Ω"),
                                      QT_TRANSLATE_NOOP("optionsNOX8", "1500 Ω"),
                                      QT_TRANSLATE_NOOP("optionsNOX8", "Внешний"), nullptr};
constexpr const char *resistors4[] = {QT_TRANSLATE_NOOP("optionsNOX8", "3 Ω"),
                                      QT_TRANSLATE_NOOP("optionsNOX8", "30 Ω"),
                                      QT_TRANSLATE_NOOP("optionsNOX8", "300 Ω"),
                                      QT_TRANSLATE_NOOP("optionsNOX8", "Внешний"), nullptr};

// clang-format off
constexpr InstrumentModel models[] = {
    // type code, name, shown as, extended, channels, resistors, family, short circuit, lists
    {0x00, QT_TRANSLATE_NOOP("optionsNOX8", "--"), 0x00, false, 0, 0, 0, false, none, none},
    {0x01, QT_TRANSLATE_NOOP("optionsNOX8", "NOX A"), 0x01, false, 8, 1, 0, false, currents1, resistors1},
    {0x11, QT_TRANSLATE_NOOP("optionsNOX8", "NOX B"), 0x11, false, 8, 2, 1, false, currents2, resistors2},
    {0x21, QT_TRANSLATE_NOOP("optionsNOX8", "NOX C"), 0x21, false, 8, 4, 2, false, currents3, resistors3},
    {0x22, QT_TRANSLATE_NOOP("optionsNOX8", "NOX CM"), 0x22, false, 8, 4, 2, true, currents3, resistors3},
    {0x31, QT_TRANSLATE_NOOP("optionsNOX8", "NOX D"), 0x31, false, 8, 4, 3, true, currents4, resistors4},
    {0x41, QT_TRANSLATE_NOOP("optionsNOX8", "NOX CM1"), 0x41, false, 16, 4, 4, true, currents3, resistors3},
    {0x0950AA0F, QT_TRANSLATE_NOOP("optionsNOX8", "NOX CM rev.4"), 0x22, true, 8, 4, 2, true, currents3, resistors3},
    {0x0960AA0F, QT_TRANSLATE_NOOP("optionsNOX8", "NOX CM1 rev.4"), 0x41, true, 16, 4, 4, true, currents3, resistors3},
    {0x0970AA0F, QT_TRANSLATE_NOOP("optionsNOX8", "NOX D rev.4"), 0x31, true, 8, 4, 3, true, currents4, resistors4},
};
// clang-format on

/** An open interval around a nominal value. */
struct Nominal {
    float value;
    float tolerance;

    bool fits(float number) const { return std::abs(number - value) < tolerance; }
};

/** The reference data by which a model is recognised: mV, then Ω. */
struct ReferenceSignature {
    quint32 typeCode;
    Nominal voltage;
    std::array<Nominal, 3> resistors;
};

constexpr ReferenceSignature signatures[] = {
    {0x01, {300, 100}, {{{200, 10}, {0, 0.1F}, {0, 0.1F}}}},
    {0x11, {300, 100}, {{{200, 10}, {1500, 10}, {0, 0.1F}}}},
    {0x31, {1200, 200}, {{{3, 1}, {30, 1}, {300, 10}}}},
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

constexpr const char *resistanceThermometers[] = {"10M",   "50M",   "100M",  "10П",  "50П",
                                                  "100П",  "500П",  "1000П", "Pt10", "Pt50",
                                                  "Pt100", "Pt500", "Pt1000"};

constexpr const char *thermocouples[] = {"ТНН(N)", "ТВР(A1)", "ТВР(A2)", "ТВР(A3)", "ТЖК(J)",
                                         "ТМК(M)", "ТМК(T)",  "ТПР(B)",  "ТПП(R)",  "ТПП(S)",
                                         "ТХА(K)", "ТХК(E)",  "ТХК(L)"};

QString translated(const char *text)
{
    return QCoreApplication::translate("optionsNOX8", text);
}

QStringList translatedList(const char *const *texts)
{
    QStringList list;
    for (; *texts; ++texts)
        list << translated(*texts);
    return list;
}

template<std::size_t count>
QStringList fixedList(const char *const (&names)[count])
{
    QStringList list;
    for (const char *name : names)
        list << QString::fromUtf8(name);
    return list;
}

/** Whether the model is recognised by these data. */
bool fits(const ReferenceSignature &signature, const ReferenceData &data)
{
    bool fitting = signature.voltage.fits(data.refU.value.value);
    for (std::size_t i = 0; i < signature.resistors.size(); ++i)
        fitting = fitting && signature.resistors[i].fits(data.refR[i].value.value);
    return fitting;
}

} // namespace

QVector<const InstrumentModel *> instrumentModels()
{
    QVector<const InstrumentModel *> family;
    for (const InstrumentModel &model : models)
        if (model.channels > 0)
            family << &model;
    return family;
}

const InstrumentModel *findModel(quint32 typeCode)
{
    const auto *const found = std::find_if(
        std::begin(models), std::end(models),
        [typeCode](const InstrumentModel &model) { return model.typeCode == typeCode; });
    return found == std::end(models) ? nullptr : found;
}

const InstrumentModel &modelOrNone(quint32 typeCode)
{
    const InstrumentModel *const model = findModel(typeCode);
    return model ? *model : models[0];
}

const InstrumentModel *findModelNamed(const QString &name)
{
    const auto *const found =
        std::find_if(std::begin(models), std::end(models),
                     [&name](const InstrumentModel &model) { return modelName(model) == name; });
    return found == std::end(models) ? nullptr : found;
}

quint32 typeCodeFromReferenceData(const ReferenceData &data)
{
    for (const ReferenceSignature &signature : signatures)
        if (fits(signature, data))
            return signature.typeCode;
    return 0;
}

QVector<quint32> modelsWithSameReferenceData(quint32 typeCode)
{
    const QVector<quint32> alike = {0x21, 0x22};
    const InstrumentModel *model = findModel(typeCode);
    return model && alike.contains(model->baseTypeCode) ? alike : QVector<quint32>();
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

QStringList excitationCurrents(quint32 typeCode)
{
    return translatedList(modelOrNone(typeCode).currents);
}

QStringList resistorChoices(quint32 typeCode)
{
    return translatedList(modelOrNone(typeCode).resistorNames);
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

QStringList standardResistanceThermometers()
{
    return fixedList(resistanceThermometers);
}

QStringList standardThermocouples()
{
    return fixedList(thermocouples);
}

SettingChoices measurementTimeChoices()
{
    SettingChoices choices;
    for (quint8 seconds = 1; seconds <= 9; ++seconds)
        choices.append({quint8(seconds - 1), QString::number(seconds)});
    return choices;
}

SettingChoices roundingChoices()
{
    return {{0x00, translated(QT_TRANSLATE_NOOP("optionsNOX8", "0.1"))},
            {0x10, translated(QT_TRANSLATE_NOOP("optionsNOX8", "0.01"))},
            {0x20, translated(QT_TRANSLATE_NOOP("optionsNOX8", "0.001"))}};
}

SettingChoices measurementModeChoices()
{
    return {{0, QStringLiteral(":/resource/images/single_ch.png")},
            {1, QStringLiteral(":/resource/images/singleShow_ch.png")},
            {2, QStringLiteral(":/resource/images/cyclic_ch.png")}};
}

SettingChoices compensationChoices(quint32 typeCode, quint8 shortCircuitCode)
{
    SettingChoices choices = {{0, translated(QT_TRANSLATE_NOOP("optionsNOX8", "Нет"))},
                              {1, translated(QT_TRANSLATE_NOOP("optionsNOX8", "Да"))}};
    const InstrumentModel &model = modelOrNone(typeCode);
    if (model.hasShortCircuit) {
        const int compensating = shortCircuitCode == 0 ? model.channels - 1 : model.channels;
        choices[1].text =
            translated(QT_TRANSLATE_NOOP("optionsNOX8", "Канал %1")).arg(compensating);
        choices.append({2, translated(QT_TRANSLATE_NOOP("optionsNOX8", "Все"))});
    }
    return choices;
}

SettingChoices reversalChoices()
{
    return {{0x00, translated(QT_TRANSLATE_NOOP("optionsNOX8", "Нет"))},
            {0x10, translated(QT_TRANSLATE_NOOP("optionsNOX8", "Да"))}};
}

SettingChoices shortCircuitChoices()
{
    return {{0, translated(QT_TRANSLATE_NOOP("optionsNOX8", "Да"))},
            {1, translated(QT_TRANSLATE_NOOP("optionsNOX8", "Нет"))}};
}
