/// Feeds files of one characteristic.
///
/// Input: the file.

#include "calibration/characteristicfile.h"

#include "fuzzinput.h"

#include <QBuffer>

namespace
{

constexpr uint sampleInterval = 4;

/** Rows and columns of the table of each type. */
constexpr int shapes[][2] = {{2, 5}, {1, 6}, {2, 5}, {2, 56}};

CharacteristicFileReading read(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    require(buffer.open(QIODevice::ReadOnly));
    return readCharacteristicFile(buffer);
}

QByteArray written(const CharacteristicFile &file)
{
    QBuffer buffer;
    require(buffer.open(QIODevice::WriteOnly));
    require(writeCharacteristicFile(file, buffer));
    return buffer.data();
}

void requireShape(const CharacteristicFile &file)
{
    require(file.type >= 0 && file.type <= 3);
    require(file.rows.size() == shapes[file.type][0]);
    for (const QStringList &row : file.rows)
        require(row.size() == shapes[file.type][1]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const CharacteristicFileReading reading = read(input.rest());
    if (!reading.accepted) {
        require(reading.file.rows.isEmpty() && reading.file.description.isEmpty());
        return 0;
    }
    requireShape(reading.file);
    require(reading.selectedType == reading.file.type);
    if (!input.isSample(sampleInterval))
        return 0;

    const QByteArray bytes = written(reading.file);
    const CharacteristicFileReading again = read(bytes);
    require(again.accepted && again.file.type == reading.file.type);
    require(written(again.file) == bytes);
    return 0;
}
