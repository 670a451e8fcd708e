#pragma once

#include <QByteArray>

/** A 32-bit word on the wire: least significant byte first. */
class bWord
{
public:
    enum ReverseByteMode {
        LeastSignificantFirst = 0,
        MostSignificantFirst = 1,
    };

    /** The word at byte 4 * `index`, whatever the other arguments; 0 if the buffer ends before it.
     */
    static int getWord(const QByteArray *buf, int index, signed char offset = 0,
                       ReverseByteMode = LeastSignificantFirst);
};
