#include "storage/resultsreader.h"

#include "storage/resultslayout.h"
#include "storage/resultsnumber.h"

#include <QElapsedTimer>
#include <QIODevice>

#include <algorithm>
#include <cstring>

namespace
{

constexpr int sliceSize = 64 * 1024;
constexpr int longestLine = 64 * 1024;
constexpr int mostChannels = 254; // a plot index beyond means the main channel
constexpr int leastColumns = 3;

} // namespace

ResultsReader::ResultsReader(QIODevice *device, ResultsSink *sink, const QDateTime &now)
    : m_device(device)
    , m_sink(sink)
    , m_start(now)
{
}

bool ResultsReader::readOn(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    do {
        if (!readSlice())
            return false;
    } while (timer.elapsed() < milliseconds);
    return true;
}

/** Reads some of the file and hands on what it found there. */
bool ResultsReader::readSlice()
{
    char bytes[sliceSize];
    const qint64 count = m_device->read(bytes, sliceSize);
    if (count > 0)
        takeBytes(bytes, bytes + count);
    else if (!m_kept.isEmpty())
        endKeptLine(); // the last line may have no end
    if (count == 0)
        m_findings.isWhole = true;
    return deliver() && count > 0;
}

void ResultsReader::takeBytes(const char *begin, const char *end)
{
    while (begin != end) {
        const auto *lineEnd =
            static_cast<const char *>(std::memchr(begin, '\n', size_t(end - begin)));
        if (!lineEnd)
            return keep(begin, end);
        if (m_kept.isEmpty()) {
            readLine(begin, lineEnd);
        } else {
            keep(begin, lineEnd);
            endKeptLine();
        }
        begin = lineEnd + 1;
    }
}

void ResultsReader::keep(const char *begin, const char *end)
{
    const auto taken = std::min<std::ptrdiff_t>(longestLine - m_kept.size(), end - begin);
    m_kept.append(begin, int(taken));
    m_isCut = m_isCut || taken < end - begin;
}

void ResultsReader::endKeptLine()
{
    // where a line is cut, the last field may be half a number
    const int size = m_isCut ? m_kept.lastIndexOf(m_separator) + 1 : m_kept.size();
    readLine(m_kept.constData(), m_kept.constData() + size);
    m_kept.resize(0); // keeps the memory
    m_isCut = false;
}

void ResultsReader::readLine(const char *begin, const char *end)
{
    if (end != begin && end[-1] == '\r')
        --end;
    ++m_lineNumber;
    if (m_lineNumber == 1)
        m_start = startOfLine(QByteArray(begin, int(end - begin)), m_start);
    else if (m_lineNumber == 3)
        readColumns(begin, end);
    else if (m_lineNumber == 4 && m_findings.hasColumns)
        m_units =
            unitsOfLine(QByteArray(begin, int(end - begin)), m_separator).mid(0, mostChannels);
    else if (m_lineNumber > 4 && m_findings.hasColumns)
        readRow(begin, end);
}

/** Every line ends with the separator: so it is known. */
void ResultsReader::readColumns(const char *begin, const char *end)
{
    if (begin == end)
        return;
    m_separator = end[-1];
    m_findings.hasColumns = std::count(begin, end, m_separator) + 1 >= leastColumns;
    if (m_findings.hasColumns)
        m_sink->begin(m_start);
}

void ResultsReader::readRow(const char *begin, const char *end)
{
    LineFields fields(begin, end, m_separator);
    const char *field = nullptr;
    const char *fieldEnd = nullptr;
    double seconds = 0;
    fields.next(&field, &fieldEnd); // the number of the row
    const bool hasTime =
        fields.next(&field, &fieldEnd) && fieldEnd != end && readNumber(field, fieldEnd, &seconds);
    if (!hasTime) {
        ++m_findings.skippedLines;
        return;
    }
    ++m_findings.rows;
    readValues(&fields, seconds);
}

void ResultsReader::readValues(LineFields *fields, double seconds)
{
    const char *begin = nullptr;
    const char *end = nullptr;
    for (int channel = 0; channel < m_units.size() && fields->next(&begin, &end); ++channel) {
        double value = 0;
        if (m_units.at(channel).isNull())
            continue;
        if (readNumber(begin, end, &value))
            m_points.append({channel, seconds, value});
        else if (begin != end)
            ++m_findings.skippedValues;
    }
}

bool ResultsReader::deliver()
{
    if (m_points.isEmpty())
        return true;
    m_findings.points += m_points.size();
    const bool wantsMore = m_sink->take(m_points, m_units);
    m_points.resize(0); // keeps the memory
    return wantsMore;
}
