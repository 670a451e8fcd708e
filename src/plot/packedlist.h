#pragma once

#include "plot/valuerange.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

/** How integers become numbers again: `start` + `slope` · place + integer, over `scale`. */
struct PackingLine {
    double start = 0; ///< whole numbers all three
    double slope = 0;
    double scale = 1;

    template<typename Integer>
    double number(Integer integer, int place) const
    {
        return (start + slope * place + integer) / scale;
    }
    double number(double number, int) const { return number; } ///< that has not been packed
};

/**
 * A list of finite numbers that grows at its end, and packs those of long ago: what an instrument
 * measures has few decimals and changes slowly, and takes 1 to 3 bytes a number then.
 *
 * The numbers lie in chunks of 1024. The newest chunks are doubles, which is fastest.
 * In an older one the numbers become integers of their last decimal, less a straight line through
 * the chunk, in 1, 2 or 4 bytes each. Where that would not give every number back to the bit, the
 * chunk keeps the doubles.
 */
class PackedList
{
public:
    static constexpr int chunkLength = 1024;

    /** So many of the newest chunks, at least 1, are not packed. */
    explicit PackedList(std::size_t unpackedChunks = 128)
        : m_unpackedChunks(unpackedChunks)
    {
    }

    int size() const { return m_size; }
    /** The number at `index`, which must exist. */
    double operator[](int index) const
    {
        const Chunk &chunk = chunkOf(index);
        const auto number = [&](const auto &packed) {
            return chunk.line.number(packed[placeOf(index)], placeOf(index));
        };
        return std::visit(number, chunk.numbers);
    }

    void append(double number)
    {
        const int place = placeOf(m_size);
        if (place == 0)
            openChunk();
        m_newest[place] = number;
        ++m_size;
    }

    /** Copies `count` numbers from `first` on, all of them existing. */
    void copy(int first, int count, double *numbers) const;
    /** Range of `count` numbers, at least 1, from `first` on, all of them inside one chunk. */
    ValueRange range(int first, int count) const;
    /** Fetches `count` numbers from `first` on, all of them inside one chunk. */
    [[gnu::always_inline]] void prefetch(int first, int count) const
    {
        const auto bytesFrom = [&](const auto &packed) {
            return BytesOfNumbers{reinterpret_cast<const char *>(&packed[placeOf(first)]),
                                  static_cast<int>(sizeof packed[0])};
        };
        const BytesOfNumbers bytes = std::visit(bytesFrom, chunkOf(first).numbers);
        ::prefetch(bytes.first, count * bytes.perNumber);
    }

private:
    template<typename T>
    using Numbers = std::unique_ptr<T[]>;

    struct BytesOfNumbers {
        const char *first;
        int perNumber;
    };

    struct Chunk {
        std::variant<Numbers<double>, Numbers<std::uint8_t>, Numbers<std::uint16_t>,
                     Numbers<std::int32_t>>
            numbers; ///< doubles are the numbers themselves
        PackingLine line;
    };

    static int placeOf(int index) { return index % chunkLength; }
    const Chunk &chunkOf(int index) const
    {
        return m_chunks[static_cast<std::size_t>(index / chunkLength)];
    }
    void openChunk();
    void pack(Chunk &chunk);
    static std::optional<Chunk> packed(const double *numbers, double scale);

    std::size_t m_unpackedChunks;
    std::vector<Chunk> m_chunks;
    double *m_newest = nullptr; ///< the numbers of the newest chunk
    Numbers<double> m_spare;    ///< of a chunk that has been packed
    int m_size = 0;
};
