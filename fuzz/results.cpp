/// Feeds results files, beside a plain reader made of Qt's own classes, which has to find the same.
///
/// Input: how many bytes the device gives at a time, more in a longer file; the file.

#include "device/windows1251.h"
#include "fuzzinput.h"
#include "storage/resultslayout.h"
#include "storage/resultsreading.h"

#include <QBuffer>

#include <cstring>

namespace
{

constexpr int mostSlices = 32;
const QDateTime now({2026, 11, 24}, {7, 5, 9});

/** Gives some bytes at a time. */
class SlowDevice : public QBuffer
{
public:
    SlowDevice(QByteArray *bytes, int most)
        : QBuffer(bytes)
        , m_most(most)
    {
        require(open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        return QBuffer::readData(data, qMin(size, m_most));
    }

private:
    qint64 m_most;
};

class Points : public ResultsSink
{
public:
    void begin(const QDateTime &) override
    {
        require(!hasBegun);
        hasBegun = true;
    }
    bool take(const QVector<PlotPoint> &points, const QVector<QString> &units) override
    {
        require(hasBegun && !points.isEmpty());
        for (const PlotPoint &point : points)
            require(point.channel < units.size() && !units.at(point.channel).isNull());
        all += points;
        return true;
    }

    bool hasBegun = false;
    QVector<PlotPoint> all;
};

QStringList linesOf(const QByteArray &file)
{
    QStringList lines = fromWindows1251(file).split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    for (QString &line : lines)
        if (line.endsWith('\r'))
            line.chop(1);
    return lines;
}

QVector<PlotPoint> plainPoints(const QByteArray &file, bool *hasColumns)
{
    const QStringList lines = linesOf(file);
    const QString columns = lines.value(2);
    const QChar separator = columns.isEmpty() ? QChar() : columns.back();
    *hasColumns = columns.count(separator) >= 2;
    if (!*hasColumns)
        return {};
    const auto units = unitsOfLine(toWindows1251(lines.value(3)), toWindows1251(separator).at(0));
    QVector<PlotPoint> points;
    for (const QString &line : lines.mid(4)) {
        const QStringList fields = line.split(separator);
        bool hasTime = false;
        const double seconds = fields.value(1).toDouble(&hasTime);
        for (int k = 2; hasTime && k < fields.size() && k - 2 < qMin(units.size(), 254); ++k) {
            bool isNumber = false;
            const double value = fields.at(k).toDouble(&isNumber);
            if (isNumber && !units.at(k - 2).isNull())
                points.append({k - 2, seconds, value});
        }
    }
    return points;
}

bool isSame(double one, double other)
{
    return std::memcmp(&one, &other, sizeof one) == 0 || (qIsNaN(one) && qIsNaN(other));
}

bool isSame(const PlotPoint &one, const PlotPoint &other)
{
    return one.channel == other.channel && isSame(one.seconds, other.seconds) &&
           isSame(one.value, other.value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const int head = input.byte();
    QByteArray file = input.rest();
    const int most = head + 1 + file.size() / mostSlices;

    SlowDevice device(&file, most);
    Points found;
    ResultsReader reader(&device, &found, now);
    while (reader.readOn(1))
        continue;
    require(reader.findings().isWhole && reader.findings().points == found.all.size());

    bool hasColumns = false;
    const QVector<PlotPoint> expected = plainPoints(file, &hasColumns);
    require(found.hasBegun == hasColumns && found.all.size() == expected.size());
    for (int i = 0; i < expected.size(); ++i)
        require(isSame(expected.at(i), found.all.at(i)));
    return 0;
}
