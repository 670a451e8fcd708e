/// Lets the numbers of a channel become old, beside a plain list, which has to hold the same.
///
/// Input: some chunks, then places. A chunk is a byte for its decimals, a first number and a slope
/// of eight bytes and two, a list of small steps from there, which is repeated, and a few numbers
/// of eight bytes that stand in between. A place is two bytes for each of its ends.

#include "plot/packedlist.h"

#include "fuzzinput.h"

#include <QVector>

#include <cmath>
#include <cstring>

namespace
{

constexpr int mostChunks = 3;
constexpr int mostStrangers = 3;
constexpr int mostPlaces = 8;

using Numbers = QVector<double>;

double doubleFrom(FuzzInput &input)
{
    double number = 0;
    const QByteArray bytes = input.bytes(sizeof number).leftJustified(sizeof number, '\0');
    std::memcpy(&number, bytes.constData(), sizeof number);
    return std::isfinite(number) ? number : 0;
}

void addChunk(Numbers *numbers, FuzzInput &input)
{
    const double scale = std::pow(10, input.byte() % 12);
    const double first = std::trunc(doubleFrom(input));
    const int slope = input.word() - 0x8000;
    const int multiple = 1 << (input.byte() % 24);
    const QByteArray steps = input.bytes(input.byte()) + '\0';
    const int begin = numbers->size();
    for (int i = 0; i < PackedList::chunkLength; ++i) {
        const double step = double(quint8(steps.at(i % steps.size()))) * multiple;
        const double number = (first + double(slope) * i + step) / scale;
        numbers->append(std::isfinite(number) ? number : 0);
    }
    for (int left = input.byte() % (mostStrangers + 1); left > 0; --left)
        (*numbers)[begin + input.word() % PackedList::chunkLength] = doubleFrom(input);
}

bool isSame(double one, double other)
{
    return std::memcmp(&one, &other, sizeof one) == 0;
}

ValueRange plainRange(const Numbers &numbers, int first, int end)
{
    ValueRange range;
    for (int i = first; i < end; ++i)
        range.include(numbers.at(i));
    return range;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    Numbers numbers;
    for (int left = 1 + input.byte() % mostChunks; left > 0; --left)
        addChunk(&numbers, input);

    PackedList list(1);
    for (const double number : qAsConst(numbers))
        list.append(number);
    list.append(0); // begins a chunk: all others are old
    for (int i = 0; i < numbers.size(); ++i)
        require(isSame(list[i], numbers.at(i)));

    Numbers copied(numbers.size());
    for (int left = mostPlaces; left > 0 && !input.atEnd(); --left) {
        const int first = input.word() % numbers.size();
        const int end = first + input.word() % (numbers.size() - first + 1);
        list.copy(first, end - first, copied.data());
        for (int i = first; i < end; ++i)
            require(isSame(copied.at(i - first), numbers.at(i)));
        const int endOfChunk = first - first % PackedList::chunkLength + PackedList::chunkLength;
        const int stop = qMin(end, endOfChunk);
        require(first == stop ||
                list.range(first, stop - first) == plainRange(numbers, first, stop));
    }
    return 0;
}
