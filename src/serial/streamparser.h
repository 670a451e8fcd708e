#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

/** One token of the measurement stream, such as `3:21.5B`. */
struct StreamToken {
    enum Kind { Raw, Status, Measurement };

    QByteArray source;  ///< the token as it came, with a space appended (see StreamParser)
    Kind kind = Raw;    ///< what it says beside its raw text
    QStringList status; ///< Status: the parts between the "#" signs
    double value = 0;   ///< Measurement: the number
    quint8 ch = 0;      ///< Measurement: the channel, from 1
    char dim = 0;       ///< Measurement: the unit character
};

/**
 * Turns the bytes that an instrument sends on its own into tokens.
 *
 * Tokens end at a space. The unparsed tail is bounded: without a space it grows to 4096 bytes and
 * is then discarded. The parser knows no port; whoever interrupts the stream tells it so, because
 * the two halves of a token that was cut must never be joined to something else.
 */
class StreamParser
{
public:
    using TokenHandler = std::function<void(const StreamToken &)>;

    /**
     * Takes one batch and calls `handler` for each token that it completes, in order.
     * Returns false when the batch completed none because no space has arrived.
     */
    bool feed(const QByteArray &bytes, const TokenHandler &handler);

    /** The stream is held up but its bytes are kept: a token in the middle of it is given up. */
    void dropOpenToken();

    /** Bytes of the stream were thrown away: what comes is dropped up to the next space. */
    void skipToNextToken();

    /** The instrument starts its stream anew: what comes begins a token. */
    void restart();

private:
    QByteArray m_tail;
    bool m_skipping = false;
};

/** The meaning of one token without its space, at least one byte long. */
StreamToken parseStreamToken(const QByteArray &piece);
