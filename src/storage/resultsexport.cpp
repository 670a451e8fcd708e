#include "storage/resultsexport.h"

#include "device/filereplacement.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPixmap>
#include <qwt_plot.h>
#include <qwt_plot_renderer.h>

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace
{

constexpr int sliceBytes = 64 * 1024;
constexpr int slicePoints = 16 * 1024; ///< looked at before the clock is, if few rows are due
constexpr int leastPoints = 2;         ///< a channel with fewer is written without values

constexpr int sliceMs = 15;                ///< of work between two looks at other events
constexpr int syncLookMs = 20;             ///< between two looks at the disk
constexpr qint64 shortFile = 256 * 1024LL; ///< bytes that a disk takes in no time

} // namespace

// When which point was the newest

void SeriesCursor::stepBack()
{
    if (m_next == m_begin)
        return; // nothing was measured before
    while (!isRunOver())
        ++m_next;
    m_begin = m_next;
}

int SeriesCursor::pointAt(double seconds)
{
    while (!isRunOver() && m_times[m_next] <= seconds)
        ++m_next;
    if (m_next == m_begin || (m_next == m_times.size() && m_times.last() < seconds))
        return -1;
    return m_next - 1;
}

/** No point follows before the next step back. */
bool SeriesCursor::isRunOver() const
{
    return m_next == m_times.size() || (m_next > m_begin && m_times[m_next] < m_times[m_next - 1]);
}

// The text

ResultsExport::ResultsExport(const PlotDevice &instrument, const ResultsFormat &format)
    : m_text(format)
    , m_intervalMinutes(format.intervalMinutes)
{
    m_text.addHeader(instrument.startDateTime, unitsOf(instrument));
    for (const PlotChannel &channel : instrument.ch) {
        const bool hasValues = !channel.error && channel.meas.size() >= leastPoints;
        m_channels.append({channel.meas, SeriesCursor(channel.time), hasValues});
    }
    if (instrument.ch.isEmpty())
        return;
    const PlotChannel &longest = longestChannel(instrument.ch);
    m_times = longest.time;
    if (longest.hasDifference())
        m_differenceTimes = longest.diffTime;
}

ResultsExport::State ResultsExport::writeOn(QIODevice *device, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    do {
        addRows();
        if (!flush(device))
            return Failed;
        if (m_next == m_times.size())
            return Finished;
    } while (timer.elapsed() < milliseconds);
    return Unfinished;
}

int ResultsExport::percent() const
{
    return m_times.isEmpty() ? 100 : int(100.0 * m_next / m_times.size());
}

/** Adds rows until there is a slice of text, or long enough none. */
void ResultsExport::addRows()
{
    const int end = std::min(m_times.size(), m_next + slicePoints);
    for (; m_next < end && m_text.bytes().size() < sliceBytes; ++m_next) {
        if (m_next > 0 && m_times[m_next] < m_times[m_next - 1])
            for (Channel &channel : m_channels)
                channel.cursor.stepBack();
        const double seconds = dueSeconds(m_next);
        if (!isRowDue(m_lastSeconds, seconds, m_intervalMinutes))
            continue;
        m_lastSeconds = seconds;
        addRow(m_times[m_next]);
    }
}

/** The time that tells whether the row of a point is due: that of the difference with its number,
 *  where the channel has so many. */
double ResultsExport::dueSeconds(int point) const
{
    return point < m_differenceTimes.size() ? m_differenceTimes[point] : m_times[point];
}

void ResultsExport::addRow(double seconds)
{
    m_text.beginRow(++m_number, seconds);
    for (Channel &channel : m_channels) {
        const int point = channel.hasValues ? channel.cursor.pointAt(seconds) : -1;
        if (point >= 0)
            m_text.addValue(channel.values[point]);
        else
            m_text.addNoValue();
    }
    m_text.endRow();
}

bool ResultsExport::flush(QIODevice *device)
{
    const bool isWritten = device->write(m_text.bytes()) == m_text.bytes().size();
    m_text.clear();
    return isWritten;
}

// The file

ExportJob::ExportJob(QObject *parent)
    : QObject(parent)
{
    connect(&m_timer, &QTimer::timeout, this, &ExportJob::goOn);
}

ExportJob::~ExportJob() = default;

void ExportJob::start(const QString &fileName, const PlotDevice &instrument,
                      const ResultsFormat &format)
{
    giveUp();
    if (!open(fileName)) {
        giveUp();
        emit finished(false);
        return;
    }
    m_export = std::make_unique<ResultsExport>(instrument, format);
    m_timer.start(0);
    goOn();
}

bool ExportJob::open(const QString &fileName)
{
    const QFileInfo existing(fileName);
    if (existing.exists() && !existing.isFile()) // the renaming would put a file in its place
        return false;
    m_file = std::make_unique<QSaveFile>(fileName);
    return m_file->open(QIODevice::WriteOnly);
}

void ExportJob::giveUp()
{
    m_timer.stop();
    m_sync.reset();
    m_export.reset();
    m_file.reset(); // which takes away what is not complete
}

void ExportJob::goOn()
{
    if (m_export)
        write();
    else if (*m_sync != WorkState::Running)
        finish(*m_sync == WorkState::Succeeded);
}

void ExportJob::write()
{
    const auto state = m_export->writeOn(m_file.get(), sliceMs);
    const int percent = m_export->percent();
    if (state == ResultsExport::Failed)
        return finish(false);
    if (state == ResultsExport::Finished)
        return finishText();
    emit progress(percent);
}

/** All is handed over: what the buffer still held, a full disk may refuse only now. */
void ExportJob::finishText()
{
    m_export.reset();
    if (!m_file->flush())
        return finish(false);
    if (m_file->size() <= shortFile)
        return finish(true);
    const int descriptor = ::dup(m_file->handle());
    m_sync = startDetached([descriptor] {
        const bool isSynced = descriptor >= 0 && syncFile(descriptor);
        ::close(descriptor);
        return isSynced;
    });
    m_timer.start(syncLookMs);
}

void ExportJob::finish(bool isWritten)
{
    const auto file = std::move(m_file);
    giveUp();
    if (!isWritten)
        file->cancelWriting();
    emit finished(file->commit() && isWritten);
}

bool savePlotImage(QwtPlot *plot, const QString &fileName)
{
    plot->replot();
    QPixmap picture(plot->size());
    picture.fill(Qt::white);
    QwtPlotRenderer().renderTo(plot, picture);
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    return picture.save(&file, "PNG") && replaceFile(fileName, file.data());
}
