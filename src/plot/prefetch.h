#pragma once

/**
 * Lets the processor fetch `count` elements that are about to be read. What is far apart in memory
 * then arrives at once, not one after the other.
 *
 * Always inlined, like those who do nothing else: the compiler drops calls of a function in which
 * it sees no effect.
 */
template<typename T>
[[gnu::always_inline]] inline void prefetch(const T *first, int count)
{
    constexpr int cacheLine = 64; // bytes
    for (int i = 0; i < count; i += cacheLine / static_cast<int>(sizeof(T)))
        __builtin_prefetch(first + i);
}
