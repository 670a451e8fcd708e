#include "storage/resultsreading.h"

#include "plot/qwtnox.h"
#include "registry/noxlist.h"
#include "storage/resultslayout.h"

#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{

constexpr int sliceMs = 15;          ///< of work between two looks at other events
constexpr int sliceSize = 64 * 1024; ///< bytes read at once
constexpr int longestLine = 64 * 1024;
constexpr int mostChannels = 254; // a plot index beyond means the main channel
constexpr int leastColumns = 3;

} // namespace

// From bytes to points

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

// From points to the plot

ResultsReading::ResultsReading(noxList *registry, QwtNOX *plot, QObject *parent)
    : QObject(parent)
    , m_registry(registry)
    , m_plot(plot)
{
    connect(&m_timer, &QTimer::timeout, this, &ResultsReading::goOn);
    connect(registry, &noxList::onRmNox, this,
            [this](int index) { m_isLost = m_isLost || index == m_index; });
    connect(registry, &noxList::doClearQwt, this,
            [this](int qwtIndex) { m_isLost = m_isLost || qwtIndex == m_qwtIndex; });
}

ResultsReading::~ResultsReading() = default;

bool ResultsReading::open(const QString &fileName)
{
    stop();
    m_file.close();
    m_file.setFileName(fileName);
    return QFileInfo(fileName).isFile() && // opening a pipe may wait for ever
           m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool ResultsReading::start(int index)
{
    if (m_reader)
        return false;
    m_index = index;
    m_qwtIndex = m_registry->getQWTIndex(index);
    m_isLost = false;
    if (m_qwtIndex < 0 || !m_file.isOpen())
        return false;
    ResultsSink *const sink = this;
    m_reader = std::make_unique<ResultsReader>(&m_file, sink, m_plot->now());
    m_timer.start(0);
    goOn();
    return true;
}

void ResultsReading::stop()
{
    if (!m_reader)
        return;
    m_timer.stop();
    m_file.close();
    const auto reader = std::move(m_reader);
    emit finished(reader->findings());
}

void ResultsReading::goOn()
{
    if (m_isLost || !m_reader->readOn(sliceMs))
        return stop();
    emit progress(int(100 * m_file.pos() / qMax<qint64>(1, m_file.size())));
}

void ResultsReading::begin(const QDateTime &start)
{
    m_start = start;
    m_plot->prepareMeas(m_qwtIndex, start);
}

bool ResultsReading::take(const QVector<PlotPoint> &points, const QVector<QString> &units)
{
    if (ownsSeries())
        m_plot->addPoints(m_qwtIndex, points, units);
    return ownsSeries(); // whoever hears of the points may do anything to the instrument
}

bool ResultsReading::ownsSeries() const
{
    return !m_isLost && m_plot->getStartDateTime(m_qwtIndex) == m_start;
}
