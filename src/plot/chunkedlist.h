#pragma once

#include <memory>
#include <vector>

/**
 * A list that grows at its end and never moves an element: it consists of chunks of 2^`shift`
 * elements each. A stretch of elements that begins at a multiple of a power of two, and is no
 * longer than that power or a chunk, is contiguous.
 */
template<typename T, int shift>
class ChunkedList
{
public:
    int size() const { return m_size; }
    const T &operator[](int index) const { return m_chunks[index >> shift][index & mask]; }

    void append(const T &value)
    {
        if ((m_size & mask) == 0)
            m_chunks.emplace_back(new T[length]); // not cleared, as make_unique() would
        m_chunks.back()[m_size & mask] = value;
        ++m_size;
    }

private:
    static constexpr int length = 1 << shift;
    static constexpr int mask = length - 1;

    std::vector<std::unique_ptr<T[]>> m_chunks;
    int m_size = 0;
};
