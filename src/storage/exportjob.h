#pragma once

#include "storage/detachedwork.h"
#include "storage/resultsexport.h"

#include <QObject>
#include <QSaveFile>
#include <QTimer>

#include <memory>

/**
 * An export to a file while the program goes on.
 *
 * The file takes the place of an existing one only when all of it is on the disk. Given up, or
 * failed, it leaves the existing one unharmed.
 */
class ExportJob : public QObject
{
    Q_OBJECT
public:
    explicit ExportJob(QObject *parent = nullptr);
    ~ExportJob() override;

    /** Begins to write what the instrument's series hold now. A short export has finished when this
     *  returns. An export that is under way is given up. */
    void start(const QString &fileName, const PlotDevice &instrument, const ResultsFormat &format);
    /** Ends the export without a signal. */
    void giveUp();
    bool isRunning() const { return m_file != nullptr; }

signals:
    /** How much is written, 0 to 100. */
    void progress(int percent);
    /** The export has ended; `isWritten`: the file is in its place. */
    void finished(bool isWritten);

private:
    bool open(const QString &fileName);
    void goOn();
    void write();
    void finishText();
    void finish(bool isWritten);

    std::unique_ptr<ResultsExport> m_export; ///< null when its text is written
    std::unique_ptr<QSaveFile> m_file;       ///< null while nothing runs
    SharedWorkState m_sync;                  ///< of a long file on its way to the disk
    QTimer m_timer;
};
