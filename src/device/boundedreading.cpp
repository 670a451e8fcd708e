#include "device/boundedreading.h"

#include <QIODevice>

#include <array>

QByteArray readWhole(QIODevice &device, int mostBytes)
{
    // in pieces: one QIODevice::read() provides memory for all that it might read
    QByteArray content;
    std::array<char, 16 * 1024> piece;
    qint64 count = 1;
    while (count > 0 && content.size() <= mostBytes) {
        count = device.read(piece.data(), qMin(int(piece.size()), mostBytes + 1 - content.size()));
        content.append(piece.data(), int(qMax<qint64>(count, 0)));
    }
    return count < 0 || content.size() > mostBytes ? QByteArray() : content;
}
