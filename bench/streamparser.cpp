/// Prints how much faster the stream parser is than all the instruments that one computer can have.

#include "serial/streamparser.h"

#include <QElapsedTimer>

#include <cstdio>

namespace
{

constexpr int instruments = 255;
constexpr int bytesPerSecondOfOne = 960; ///< 9600 baud, ten bits a byte
constexpr int passes = 5;

/** A stream as instruments send it: rounds over 16 channels, values with four decimals. */
QByteArray makeStream(int tokens)
{
    QByteArray stream;
    for (int i = 0; i < tokens; ++i) {
        stream += QByteArray::number(i % 16 + 1) + ':' +
                  QByteArray::number(20.0 + (i % 100003) / 1e4, 'f', 4) + "B ";
    }
    return stream;
}

/** Bytes per second when the stream comes in batches of `batchSize`; the best of some passes. */
double parsedBytesPerSecond(const QByteArray &stream, int batchSize)
{
    double best = 0;
    for (int pass = 0; pass < passes; ++pass) {
        StreamParser parser;
        qint64 measurements = 0;
        const auto count = [&measurements](const StreamToken &token) {
            measurements += token.kind == StreamToken::Measurement;
        };
        QElapsedTimer timer;
        timer.start();
        for (int from = 0; from < stream.size(); from += batchSize)
            parser.feed(stream.mid(from, batchSize), count);
        best = qMax(best, double(stream.size()) * 1e9 / double(timer.nsecsElapsed()));
        if (measurements == 0)
            return 0;
    }
    return best;
}

} // namespace

int main()
{
    const QByteArray stream = makeStream(1000000);
    const double demand = double(instruments) * bytesPerSecondOfOne;
    std::printf("stream parser; %d instruments at 9600 baud send %.0f bytes a second\n",
                instruments, demand);
    std::printf("%12s %14s %10s\n", "batch, bytes", "bytes a second", "multiple");
    for (int batchSize : {16, 64, 512, 4096}) {
        const double rate = parsedBytesPerSecond(stream, batchSize);
        std::printf("%12d %14.0f %9.0fx\n", batchSize, rate, rate / demand);
    }
    return 0;
}
