#include "plot/packedlist.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace
{

using Integers = std::array<double, PackedList::chunkLength>; ///< whole numbers

/** 10^0 and on; as far as the decimals of a number are looked for. */
constexpr std::array<double, 10> scales = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
constexpr double greatestInteger = 0x1p50; ///< with which lines are calculated without rounding

std::uint64_t bitsOf(double number)
{
    std::uint64_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

/**
 * Makes numbers whole: times `scale`, rounded. False where dividing does not give back each of them
 * to the bit.
 */
template<int count>
bool makeWhole(const double *numbers, double scale, double *integers)
{
    constexpr double rounding = 0x1.8p52; // the sum with it has no room for decimals
    std::uint64_t difference = 0;
    for (int i = 0; i < count; ++i) {
        integers[i] = numbers[i] * scale + rounding - rounding;
        difference |= bitsOf(integers[i] / scale) ^ bitsOf(numbers[i]);
    }
    return difference == 0;
}

bool makeWhole(const double *numbers, double scale, Integers &integers)
{
    constexpr int few = 8; // that tell nearly always
    return makeWhole<few>(numbers, scale, integers.data()) &&
           makeWhole<PackedList::chunkLength>(numbers, scale, integers.data());
}

ValueRange rangeOf(const Integers &integers)
{
    return ::rangeOf(integers.data(), PackedList::chunkLength);
}

/** The whole slope of a line through both ends. */
double slopeOf(const Integers &integers)
{
    return std::nearbyint((integers.back() - integers.front()) / (PackedList::chunkLength - 1));
}

void lessLine(Integers &integers, double slope)
{
    for (int i = 0; i < PackedList::chunkLength; ++i)
        integers[i] -= slope * i;
}

template<typename Integer>
bool fits(const ValueRange &range)
{
    return range.max - range.min <= std::numeric_limits<Integer>::max();
}

template<typename Integer>
std::unique_ptr<Integer[]> packedAs(const Integers &integers, double base)
{
    std::unique_ptr<Integer[]> packed(new Integer[PackedList::chunkLength]);
    for (int i = 0; i < PackedList::chunkLength; ++i)
        packed[i] = static_cast<Integer>(static_cast<std::int32_t>(integers[i] - base));
    return packed;
}

/**
 * In steps of `lanes` numbers, which the processor calculates side by side. The line is a copy,
 * which cannot be among what is written.
 */
template<typename Integer>
void unpackTo(double *numbers, const Integer *packed, int place, int count, const PackingLine line)
{
    constexpr int lanes = 8;
    int i = 0;
    for (; i + lanes <= count; i += lanes) {
        int integers[lanes];
        for (int lane = 0; lane < lanes; ++lane)
            integers[lane] = packed[i + lane];
        double unpacked[lanes];
        for (int lane = 0; lane < lanes; ++lane)
            unpacked[lane] = line.number(integers[lane], place + i + lane);
        std::copy_n(unpacked, lanes, numbers + i);
    }
    for (; i < count; ++i)
        numbers[i] = line.number(packed[i], place + i);
}

void unpackTo(double *numbers, const double *packed, int, int count, const PackingLine &)
{
    std::copy_n(packed, count, numbers);
}

ValueRange rangeOf(const double *numbers, int, int count, const PackingLine &)
{
    return ::rangeOf(numbers, count);
}

template<typename Integer>
ValueRange rangeOf(const Integer *packed, int place, int count, const PackingLine &line)
{
    if (line.slope == 0) { // numbers are in the order of their integers
        const auto ends = std::minmax_element(packed, packed + count);
        return {line.number(*ends.first, place), line.number(*ends.second, place)};
    }
    ValueRange range;
    for (int i = 0; i < count; ++i)
        range.include(line.number(packed[i], place + i));
    return range;
}

} // namespace

void PackedList::openChunk()
{
    if (m_chunks.size() >= m_unpackedChunks)
        pack(m_chunks[m_chunks.size() - m_unpackedChunks]);
    Numbers<double> numbers = std::move(m_spare);
    if (!numbers)
        numbers.reset(new double[chunkLength]); // not cleared, as make_unique() would
    m_newest = numbers.get();
    m_chunks.push_back({std::move(numbers), {}});
}

void PackedList::pack(Chunk &chunk)
{
    const double *numbers = std::get<Numbers<double>>(chunk.numbers).get();
    std::optional<Chunk> smaller;
    for (const double scale : scales)
        if (!smaller)
            smaller = packed(numbers, scale);
    if (smaller)
        m_spare = std::get<Numbers<double>>(std::exchange(chunk, std::move(*smaller)).numbers);
}

/** The chunk of `numbers` as integers of 1 / `scale`; nothing when it would not be exact. */
std::optional<PackedList::Chunk> PackedList::packed(const double *numbers, double scale)
{
    PackingLine line;
    line.scale = scale;
    Integers integers;
    if (!makeWhole(numbers, line.scale, integers))
        return {};
    ValueRange range = rangeOf(integers);
    if (std::max(-range.min, range.max) > greatestInteger)
        return {};
    if (!fits<std::uint16_t>(range)) {
        line.slope = slopeOf(integers);
        lessLine(integers, line.slope);
        range = rangeOf(integers);
    }
    line.start = range.min;
    Chunk chunk{{}, line};
    if (fits<std::uint8_t>(range))
        chunk.numbers = packedAs<std::uint8_t>(integers, range.min);
    else if (fits<std::uint16_t>(range))
        chunk.numbers = packedAs<std::uint16_t>(integers, range.min);
    else if (fits<std::int32_t>(range))
        chunk.numbers = packedAs<std::int32_t>(integers, range.min);
    else
        return {};
    return chunk;
}

void PackedList::copy(int first, int count, double *numbers) const
{
    while (count > 0) {
        const Chunk &chunk = chunkOf(first);
        const int place = placeOf(first);
        const int ofChunk = std::min(count, chunkLength - place);
        const auto unpack = [&](const auto &packed) {
            unpackTo(numbers, &packed[place], place, ofChunk, chunk.line);
        };
        std::visit(unpack, chunk.numbers);
        first += ofChunk;
        count -= ofChunk;
        numbers += ofChunk;
    }
}

ValueRange PackedList::range(int first, int count) const
{
    const Chunk &chunk = chunkOf(first);
    const int place = placeOf(first);
    const auto range = [&](const auto &packed) {
        return rangeOf(&packed[place], place, count, chunk.line);
    };
    return std::visit(range, chunk.numbers);
}
