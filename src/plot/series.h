#pragma once

#include <limits>
#include <memory>

/** The least and the greatest of some values; min > max when there are none. */
struct ValueRange {
    double min = std::numeric_limits<double>::infinity();
    double max = -std::numeric_limits<double>::infinity();

    bool isEmpty() const { return min > max; }
    void include(double value) { include(ValueRange{value, value}); }
    void include(const ValueRange &other)
    {
        min = other.min < min ? other.min : min;
        max = other.max > max ? other.max : max;
    }
    bool operator==(const ValueRange &other) const { return min == other.min && max == other.max; }
};

/**
 * An append-only series of finite numbers that knows its minimum and maximum over any stretch.
 *
 * Appending never moves a value. Every 64 values seal a block with their range, every 16 blocks a
 * block of the next level; a sealed block never changes, so questions cost the logarithm of the
 * length. Values need not be sorted.
 *
 * A copy costs nothing: it reads the same values and keeps its own length. Only appending to a copy
 * that has fallen behind its original duplicates the values.
 */
class Series
{
public:
    Series();
    ~Series();
    Series(const Series &);
    Series(Series &&) noexcept;
    Series &operator=(const Series &);
    Series &operator=(Series &&) noexcept;

    int size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    /** The value at `index`, which must exist. */
    double operator[](int index) const;
    double at(int index) const { return (*this)[index]; }
    /** The newest value; there must be one. */
    double last() const { return (*this)[m_size - 1]; }

    void append(double value);
    void clear();

    /** Range of the values from `first` to before `end`; places that do not exist are left out. */
    ValueRange range(int first, int end) const;

    /** Index of the first value not below `bound`; size() when there is none. */
    int firstNotBelow(double bound) const;
    /** Index of the newest value below `bound`; -1 when there is none. */
    int lastBelow(double bound) const;

    // The sealed blocks themselves, for those who walk them. Level 0 holds the smallest.

    /** Number of values in a block of `level`; 1 for -1, a single value. */
    static int blockLength(int level);
    /** Level of the longest block that begins at `first` and fits before `end`; -1 for none. */
    int levelFrom(int first, int end) const;
    /** Range of the block of `level` that begins at `first`; of the single value for -1. */
    ValueRange block(int level, int first) const;

private:
    int levelBefore(int end) const;

    struct Storage;
    std::shared_ptr<Storage> m_storage; ///< null until the first append; may hold more than m_size
    int m_size = 0;
};
