#include "calibration/referenceentry.h"

#include "device/vocabulary.h"

#include <cmath>

namespace
{

/** The number for which a text stands, where `current` is `shown`; nothing for a text that is no
 *  number, or no finite one. */
std::optional<bFloat> enteredNumber(const QString &text, const QString &shown,
                                    const bFloat &current)
{
    if (text.trimmed() == shown)
        return current;
    bFloat number;
    if (!number.setFloat(text) || !std::isfinite(number.value))
        return std::nullopt;
    return number;
}

// Reference data

constexpr int resistorRows = 4;
constexpr int t0Decimals = 2;

/** How the rows of a model are shown. */
struct RowFormats {
    quint32 typeCode;
    int resistors;                                     ///< rows in use, from R1
    std::array<int, ReferenceTexts::rows> valueDigits; ///< decimals of R1 to R4 and Uref
};

constexpr RowFormats usualFormats = {0, 4, {4, 4, 4, 4, 3}};

constexpr RowFormats formatsByModel[] = {
    {0x01, 1, {4, 4, 4, 4, 3}},       {0x11, 2, {4, 3, 4, 4, 3}},
    {0x21, 4, {4, 4, 3, 4, 3}},       {0x22, 4, {4, 4, 3, 4, 3}},
    {0x31, 4, {6, 5, 4, 5, 3}},       {0x41, 4, {4, 4, 3, 4, 3}},
    {0x0950AA0F, 4, {4, 4, 3, 4, 3}}, {0x0960AA0F, 4, {4, 4, 3, 4, 3}},
    {0x0970AA0F, 4, {6, 5, 4, 5, 3}},
};

const RowFormats &formatsOf(quint32 typeCode)
{
    for (const RowFormats &formats : formatsByModel) {
        if (formats.typeCode == typeCode)
            return formats;
    }
    return usualFormats;
}

bool isResistor(int row)
{
    return row < resistorRows;
}

/** The number of a cell; `Data` may be const. */
template<typename Data>
auto &numberAt(Data &data, int row, int column)
{
    auto &triple = isResistor(row) ? data.refR[std::size_t(row)] : data.refU;
    return column == 0 ? triple.value : column == 1 ? triple.a : triple.b;
}

QString shownNumber(const bFloat &number, quint32 typeCode, int row, int column)
{
    constexpr int coefficientDigits = 6;
    return column == 0 ? QString::number(number.value, 'f',
                                         formatsOf(typeCode).valueDigits[std::size_t(row)])
                       : QString::number(number.value, 'g', coefficientDigits);
}

template<typename Visit>
void forEachCell(Visit visit)
{
    for (int row = 0; row < ReferenceTexts::rows; ++row) {
        for (int column = 0; column < ReferenceTexts::columns; ++column)
            visit(row, column);
    }
}

// Zero shifts

constexpr int ranges = 3;
constexpr int voltages = 9;
constexpr int rangeShifts = std::tuple_size_v<decltype(ZeroShifts::shiftU)>;
constexpr int channelShifts = std::tuple_size_v<decltype(ZeroShifts::shiftCh)>;
constexpr int resistorShifts = std::tuple_size_v<decltype(ZeroShifts::shiftR)>;
constexpr int allShifts = rangeShifts + channelShifts + resistorShifts;

/** Numbers of the range shifts, from 1; 0 where there is none. */
constexpr int rangeShiftNumbers[ranges][voltages] = {
    {1, 4, 0, 0, 0, 11, 0, 0, 0},
    {2, 5, 6, 8, 0, 12, 13, 15, 0},
    {3, 0, 7, 9, 10, 0, 14, 16, 17},
};

int decimalsAt(int index)
{
    constexpr int zeroVoltageShifts = ranges;
    if (index < zeroVoltageShifts)
        return 5;
    return index < rangeShifts ? 7 : 6;
}

QVector<bFloat *> numbersOf(ZeroShifts &shifts)
{
    QVector<bFloat *> numbers;
    forEachShift(shifts, [&numbers](bFloat &shift) { numbers << &shift; });
    return numbers;
}

/** The places in the block in the order in which entered texts are taken. */
QVector<int> shiftEntryOrder()
{
    QVector<int> order{0};
    for (int i = 0; i < channelShifts; ++i) {
        order << rangeShifts + i;
        if (i < resistorShifts)
            order << rangeShifts + channelShifts + i;
        order << i + 1;
    }
    return order;
}

} // namespace

bool isRowInUse(quint32 typeCode, int row)
{
    return !isResistor(row) || row < formatsOf(typeCode).resistors;
}

ReferenceTexts shownReferences(const ReferenceData &data, quint32 typeCode)
{
    ReferenceTexts texts;
    texts.t0 = QString::number(data.refT0.value, 'f', t0Decimals);
    forEachCell([&](int row, int column) {
        texts.cells[std::size_t(row)][std::size_t(column)] =
            isRowInUse(typeCode, row)
                ? shownNumber(numberAt(data, row, column), typeCode, row, column)
                : QStringLiteral("-");
    });
    return texts;
}

std::optional<ReferenceData> enteredReferences(const ReferenceTexts &entered,
                                               const ReferenceData &current, quint32 typeCode)
{
    const ReferenceTexts shown = shownReferences(current, typeCode);
    ReferenceData data;
    bool isRight = true;
    const auto enter = [&isRight](const QString &text, const QString &before,
                                  const bFloat &currentNumber, bFloat &number) {
        const auto meant = enteredNumber(text, before, currentNumber);
        isRight = isRight && meant;
        number = meant.value_or(number);
    };
    enter(entered.t0, shown.t0, current.refT0, data.refT0);
    forEachCell([&](int row, int column) {
        const auto r = std::size_t(row);
        const auto c = std::size_t(column);
        if (!isResistor(row) || row < modelOrNone(typeCode).resistors)
            enter(entered.cells[r][c], shown.cells[r][c], numberAt(current, row, column),
                  numberAt(data, row, column));
    });
    return isRight ? std::optional(data) : std::nullopt;
}

int rangeShiftIndex(int row, int column)
{
    return rangeShiftNumbers[row][column] - 1;
}

QStringList shownShifts(const ZeroShifts &shifts)
{
    QStringList texts;
    forEachShift(shifts, [&texts](const bFloat &shift) {
        texts << QString::number(shift.value, 'f', decimalsAt(texts.size()));
    });
    return texts;
}

bool enterShifts(const QStringList &entered, ZeroShifts &shifts)
{
    if (entered.size() != allShifts)
        return false;
    const QStringList shown = shownShifts(shifts);
    const QVector<bFloat *> numbers = numbersOf(shifts);
    for (const int i : shiftEntryOrder()) {
        const auto meant = enteredNumber(entered.at(i), shown.at(i), *numbers.at(i));
        if (!meant)
            return false;
        *numbers.at(i) = *meant;
    }
    return true;
}
