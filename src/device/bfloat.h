#pragma once

#include <QByteArray>
#include <QString>

/**
 * A single-precision number that knows its byte order on the wire.
 *
 * The order is always that of the object: the arguments of the type ReverseByteMode belong to the
 * interface and change nothing.
 */
class bFloat
{
public:
    enum ReverseByteMode {
        LeastSignificantFirst = 0,
        MostSignificantFirst = 1, ///< the order of all floats of the instruments
    };

    bFloat() = default;
    explicit bFloat(float number, ReverseByteMode order = MostSignificantFirst)
        : value(number)
        , mode(order)
    {
    }

    float value = 0.0F;
    ReverseByteMode mode = MostSignificantFirst;

    /** The four bytes of the number. */
    QByteArray getByte(ReverseByteMode = MostSignificantFirst) const;

    /** Reads the four bytes at `offset` + 4 * `index`. If the buffer ends before them, the number
     *  stays and `ok` (which may be null) becomes false. */
    void setFloat(const QByteArray *buf, int index, signed char offset = 0, bool *ok = nullptr,
                  ReverseByteMode = MostSignificantFirst);

    /** The number stored most significant byte first at `offset` + 4 * `index`; 0 if the buffer
     * ends before it. */
    static float getFloat(const QByteArray *buf, int index, signed char offset = 0,
                          ReverseByteMode = MostSignificantFirst);

    /** Stores what str2Float() makes of the text, 0 if nothing; false then. */
    bool setFloat(const QString &text);

    /** The number that a text means, with a decimal point or a decimal comma. Nothing and "-" mean
     *  0. Any other text that is no number gives 0, and false in `ok`, which may be null. */
    static float str2Float(const QString &text, bool *ok = nullptr);
};
