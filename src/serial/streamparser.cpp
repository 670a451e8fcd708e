#include "serial/streamparser.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace
{

constexpr int longestTail = 4096;

/** The number that the bytes spell in full, as QString::toDouble() reads them; false if none. */
bool toNumber(const char *begin, const char *end, double *number)
{
    // the plain case, ten times as fast; on the rest (blanks, a plus sign, "inf") Qt decides
    const auto [stop, error] = std::from_chars(begin, end, *number);
    if (error == std::errc() && stop == end && std::isfinite(*number))
        return true;
    bool ok = false;
    *number = QString::fromLatin1(begin, int(end - begin)).toDouble(&ok);
    return ok;
}

/** A channel number; 0, which is no channel, when the bytes are no number or beyond 255. */
quint8 toChannel(const char *begin, const char *end)
{
    int number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error != std::errc() || stop != end)
        number = QString::fromLatin1(begin, int(end - begin)).toInt();
    return number >= 0 && number <= 255 ? quint8(number) : 0;
}

} // namespace

StreamToken parseStreamToken(const QByteArray &piece)
{
    StreamToken token;
    const int last = piece.size() - 1;
    const char *const begin = piece.constData();
    const char *value = begin;

    // with several colons, the number before the last one is the channel
    while (const void *colon = std::memchr(value, ':', size_t(begin + last - value))) {
        const char *const next = static_cast<const char *>(colon) + 1;
        token.ch = toChannel(value, next - 1);
        value = next;
    }
    const char *const valueEnd = begin + last;
    token.dim = piece.at(last);

    token.source.reserve(piece.size() + 1);
    token.source.append(piece).append(' ');
    // the instruments' raw text of channel 8 is passed on with its last digit one up
    if (token.ch == 8)
        token.source.data()[last - 1] += 1;

    if (std::memchr(value, '#', size_t(valueEnd - value))) {
        token.kind = StreamToken::Status;
        token.status = QString::fromLatin1(value, int(valueEnd - value))
                           .split(QLatin1Char('#'), Qt::SkipEmptyParts);
    } else if (token.ch != 0 && token.dim != 0 && value != valueEnd &&
               toNumber(value, valueEnd, &token.value)) {
        token.kind = StreamToken::Measurement;
    }
    return token;
}

bool StreamParser::feed(const QByteArray &bytes, const TokenHandler &handler)
{
    int start = 0;
    if (m_skipping) {
        start = bytes.indexOf(' ') + 1;
        if (start == 0)
            return false;
        m_skipping = false;
    }
    m_tail.append(bytes.constData() + start, bytes.size() - start);

    const int lastSpace = m_tail.lastIndexOf(' ');
    if (lastSpace < 0) {
        if (m_tail.size() > longestTail)
            m_tail.clear();
        return start > 0;
    }

    const QByteArray batch = m_tail.left(lastSpace + 1);
    m_tail = m_tail.mid(lastSpace + 1).trimmed();
    for (int from = 0; from <= lastSpace;) {
        const int space = batch.indexOf(' ', from);
        if (space > from)
            handler(
                parseStreamToken(QByteArray::fromRawData(batch.constData() + from, space - from)));
        from = space + 1;
    }
    return true;
}

void StreamParser::dropOpenToken()
{
    if (!m_tail.isEmpty())
        skipToNextToken();
}

void StreamParser::skipToNextToken()
{
    m_tail.clear();
    m_skipping = true;
}

void StreamParser::restart()
{
    m_tail.clear();
    m_skipping = false;
}
