#include "storage/exportjob.h"

#include <QFileInfo>

#include <unistd.h>
#include <utility>

namespace
{

constexpr int sliceMs = 15;                ///< of work between two looks at other events
constexpr int syncLookMs = 20;             ///< between two looks at the disk
constexpr qint64 shortFile = 256 * 1024LL; ///< bytes that a disk takes in no time

} // namespace

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
