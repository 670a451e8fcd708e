/// Feeds the measurement stream, beside a plain reader made of Qt's own classes, which has to find
/// the same.
///
/// Input: batches, each behind a byte: the upper two bits choose what happens to the stream before
/// it, the lower six are its size. The largest size stands for a long run of one letter.

#include "fuzzinput.h"
#include "serial/streamparser.h"

#include <cstring>

namespace
{

constexpr int sizeBits = 0x3F;
constexpr int longRun = 3000;
constexpr int longestTail = 4096;

/** The rules of the stream, as plainly as they can be said. */
class PlainParser
{
public:
    QVector<StreamToken> feed(QByteArray bytes)
    {
        if (isSkipping && !bytes.contains(' '))
            return {};
        if (isSkipping)
            bytes = bytes.mid(bytes.indexOf(' ') + 1);
        isSkipping = false;
        tail += bytes;
        if (!tail.contains(' ')) {
            if (tail.size() > longestTail)
                tail.clear();
            return {};
        }
        QList<QByteArray> pieces = tail.split(' ');
        tail = pieces.takeLast().trimmed();
        QVector<StreamToken> tokens;
        for (const QByteArray &piece : pieces)
            if (!piece.isEmpty())
                tokens << token(piece);
        return tokens;
    }

    QByteArray tail;
    bool isSkipping = false;

private:
    static StreamToken token(const QByteArray &piece)
    {
        StreamToken token;
        const QString text = QString::fromLatin1(piece.constData(), piece.size() - 1);
        QStringList parts = text.split(':');
        const QString value = parts.takeLast();
        const int channel = parts.isEmpty() ? 0 : parts.last().toInt();
        token.ch = channel >= 0 && channel <= 255 ? quint8(channel) : 0;
        token.dim = piece.at(piece.size() - 1);
        token.source = piece + ' ';
        if (token.ch == 8)
            token.source[piece.size() - 2] = char(piece.at(piece.size() - 2) + 1);
        bool isNumber = false;
        token.value = value.toDouble(&isNumber);
        if (value.contains('#')) {
            token.kind = StreamToken::Status;
            token.status = value.split('#', Qt::SkipEmptyParts);
        } else if (token.ch != 0 && token.dim != 0 && isNumber) {
            token.kind = StreamToken::Measurement;
        }
        return token;
    }
};

bool isSame(double one, double other)
{
    return std::memcmp(&one, &other, sizeof one) == 0 || (qIsNaN(one) && qIsNaN(other));
}

bool isSame(const StreamToken &one, const StreamToken &other)
{
    if (one.source != other.source || one.kind != other.kind || one.status != other.status)
        return false;
    return one.kind != StreamToken::Measurement ||
           (isSame(one.value, other.value) && one.ch == other.ch && one.dim == other.dim);
}

/** What the link does to the stream between two batches. */
void interrupt(int kind, StreamParser &parser, PlainParser &plain)
{
    switch (kind) {
    case 1:
        parser.dropOpenToken();
        plain.isSkipping = plain.isSkipping || !plain.tail.isEmpty();
        break;
    case 2:
        parser.skipToNextToken();
        plain.isSkipping = true;
        break;
    case 3:
        parser.restart();
        plain.isSkipping = false;
        break;
    default:
        return;
    }
    plain.tail.clear();
}

void feed(const QByteArray &batch, StreamParser &parser, PlainParser &plain)
{
    QVector<StreamToken> found;
    parser.feed(batch, [&found](const StreamToken &token) { found << token; });
    const QVector<StreamToken> expected = plain.feed(batch);
    require(found.size() == expected.size());
    for (int i = 0; i < expected.size(); ++i)
        require(isSame(found.at(i), expected.at(i)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    StreamParser parser;
    PlainParser plain;
    while (!input.atEnd()) {
        const quint8 head = input.byte();
        interrupt(head >> 6, parser, plain);
        const int batchSize = head & sizeBits;
        feed(batchSize == sizeBits ? QByteArray(longRun, 'x') : input.bytes(batchSize), parser,
             plain);
    }
    return 0;
}
