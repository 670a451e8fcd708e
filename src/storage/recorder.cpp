#include "storage/recorder.h"

#include "plot/qwtnox.h"
#include "storage/resultslayout.h"

#include <QFileInfo>

#include <utility>

namespace
{

constexpr int syncIntervalMs = 2000;

QString problemText(RecordingProblem problem)
{
    switch (problem) {
    case RecordingProblem::CannotOpen:
        return Recorder::tr("файл не открывается для записи");
    case RecordingProblem::DiskFull:
        return Recorder::tr("на диске нет места");
    case RecordingProblem::CannotWrite:
        break;
    }
    return Recorder::tr("файл не записывается");
}

} // namespace

RecordingFile::RecordingFile(const QString &fileName)
    : m_file(fileName)
{
}

bool RecordingFile::open()
{
    const QFileInfo existing(m_file.fileName());
    const bool isOther =
        existing.exists() && !existing.isFile(); // opening a pipe may wait for ever
    m_problem = RecordingProblem::CannotOpen;
    return !isOther &&
           m_file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered);
}

bool RecordingFile::append(const QByteArray &text)
{
    const qint64 sizeBefore = m_file.size();
    const QByteArray whole = missingLineEnd() + text;
    const qint64 written = writeAll(whole);
    if (written == whole.size())
        return true;
    m_problem = m_file.error() == QFileDevice::ResourceError ? RecordingProblem::DiskFull
                                                             : RecordingProblem::CannotWrite;
    if (written > 0 && m_file.size() == sizeBefore + written) // else somebody else has written too
        m_file.resize(sizeBefore);
    return false;
}

/** What the last line lacks: a crash may have torn it anywhere. */
QByteArray RecordingFile::missingLineEnd()
{
    char last = '\n';
    if (m_file.size() > 0 && m_file.seek(m_file.size() - 1))
        m_file.getChar(&last);
    if (last == '\n')
        return {};
    return last == '\r' ? QByteArray("\n") : QByteArray("\r\n");
}

/** How much of the text was written. As a rule that is one write; only after one that a full disk
 *  has cut short the next one tells why. */
qint64 RecordingFile::writeAll(const QByteArray &text)
{
    qint64 written = 0;
    while (written < text.size()) {
        const qint64 count = m_file.write(text.constData() + written, text.size() - written);
        if (count <= 0)
            break;
        written += count;
    }
    return written;
}

QString recordingFaultText(const RecordingFault &fault)
{
    return Recorder::tr("Запись не ведётся с %1: %2")
        .arg(fault.since.toString(QStringLiteral("dd.MM.yyyy hh:mm:ss")),
             problemText(fault.problem));
}

Recorder::Recorder(noxList *registry, QwtNOX *plot, QObject *parent)
    : QObject(parent)
    , m_registry(registry)
    , m_plot(plot)
{
    connect(registry, &noxList::onRmNox, this, [this](int index) {
        noteOutcome(index, std::nullopt);
        m_states.remove(index);
    });
    connect(registry, &noxList::onChange, this, &Recorder::forgetStopped);
    m_syncTimer.setSingleShot(true);
    m_syncTimer.setInterval(syncIntervalMs);
    connect(&m_syncTimer, &QTimer::timeout, this, &Recorder::startSync);
}

void Recorder::noteMeasurement(int index, quint8 ch)
{
    noxList::_nox *nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    State &state = m_states[index];
    const auto previous = std::exchange(state.previousChannel, ch);
    if (!nox->recording)
        state.lastSeconds.reset(); // the next recording begins with its first round
    else if (previous && ch <= *previous)
        writeRound(nox, &state);
}

void Recorder::writeRound(noxList::_nox *nox, State *state)
{
    if (nox->recFileName.isEmpty())
        return m_registry->setRecording(nox->index, false);
    const auto instrument = std::as_const(*m_plot).devices().constFind(nox->qwtIndex);
    if (instrument == std::as_const(*m_plot).devices().cend() || instrument->ch.isEmpty())
        return;
    const Series &times = longestChannel(instrument->ch).time;
    if (times.isEmpty() || !isRowDue(state->lastSeconds, times.last(), nox->recInterval))
        return;
    const auto problem = writeRow(*nox, times.last());
    if (!problem) {
        ++nox->recRow;
        state->lastSeconds = times.last();
        syncLater(nox->recFileName);
    }
    noteOutcome(nox->index, problem);
}

/** Appends the newest values as a row, after a header where the file is new. */
std::optional<RecordingProblem> Recorder::writeRow(const noxList::_nox &nox, double seconds) const
{
    const PlotDevice &instrument = *std::as_const(*m_plot).devices().constFind(nox.qwtIndex);
    RecordingFile file(nox.recFileName);
    if (!file.open())
        return file.problem();
    ResultsText text(ResultsFormat::fromTexts(nox.recFieldSep, nox.recPointSep, nox.recPrecision,
                                              nox.recInterval));
    if (file.isEmpty())
        text.addHeader(startOfFile(nox), unitsOf(instrument));
    text.beginRow(nox.recRow + 1, seconds);
    for (const PlotChannel &channel : instrument.ch) {
        if (channel.error || channel.meas.isEmpty())
            text.addNoValue();
        else
            text.addValue(channel.meas.last());
    }
    text.endRow();
    if (!file.append(text.bytes()))
        return file.problem();
    return std::nullopt;
}

/** Files name the start of the plot's main instrument, which is that of all but rarely. */
QDateTime Recorder::startOfFile(const noxList::_nox &nox) const
{
    const QDateTime ofMain = m_plot->getStartDateTime(-1);
    return ofMain.isValid() ? ofMain : m_plot->getStartDateTime(nox.qwtIndex);
}

void Recorder::noteOutcome(int index, std::optional<RecordingProblem> problem)
{
    auto &fault = m_states[index].fault;
    const bool isNews = problem ? !fault || fault->problem != *problem : fault.has_value();
    if (!isNews)
        return;
    if (problem)
        fault = {*problem, fault ? fault->since : m_plot->now()};
    else
        fault.reset();
    emit faultChanged(index);
}

/** Where nothing is recorded any more, nothing is wrong. */
void Recorder::forgetStopped()
{
    const QList<int> indices = m_states.keys();
    for (const int index : indices) {
        const noxList::_nox *nox = m_registry->getNoxByIndex(index);
        if (!nox || !nox->recording)
            noteOutcome(index, std::nullopt);
    }
}

void Recorder::syncLater(const QString &fileName)
{
    m_unsynced.insert(fileName);
    if (!m_syncTimer.isActive())
        m_syncTimer.start();
}

void Recorder::startSync()
{
    if (m_sync && *m_sync == WorkState::Running)
        return m_syncTimer.start(); // the disk is slow: one batch after the other
    QByteArrayList names;
    for (const QString &fileName : std::exchange(m_unsynced, {}))
        names << QFile::encodeName(fileName)
              << QFile::encodeName(QFileInfo(fileName).path()); // where a new file has its name
    m_sync = startDetached([names] {
        for (const QByteArray &name : names)
            syncPath(name);
        return true;
    });
}
