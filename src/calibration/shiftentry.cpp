#include "calibration/shiftentry.h"

#include "calibration/numberentry.h"

namespace
{

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

} // namespace

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
