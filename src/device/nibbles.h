#pragma once

#include <QtGlobal>

/** Two values of four bits in one byte: the high one in its place, the low one beside it. */
constexpr quint8 lowNibble(quint8 byte)
{
    return byte & 0x0F;
}

constexpr quint8 highNibble(quint8 byte)
{
    return byte & 0xF0;
}

/** Whether a number can be kept in four bits. */
constexpr bool fitsNibble(int number)
{
    return number >= 0 && number <= 0x0F;
}
