#pragma once

#include <QByteArray>
#include <QtEndian>

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
    static int getWord(const QByteArray *buf, int index, signed char = 0,
                       ReverseByteMode = LeastSignificantFirst)
    {
        const qint64 begin = qint64(sizeof(quint32)) * index;
        if (begin < 0 || begin + qint64(sizeof(quint32)) > buf->size())
            return 0;
        return int(qFromLittleEndian<quint32>(buf->constData() + begin));
    }
};
