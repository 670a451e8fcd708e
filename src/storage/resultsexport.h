#pragma once

#include "plot/plotrecords.h"
#include "storage/detachedwork.h"
#include "storage/resultslayout.h"

#include <QObject>
#include <QSaveFile>
#include <QTimer>

#include <memory>
#include <optional>

class QIODevice;
class QwtPlot;

/**
 * Finds a channel's values at times that go on, in the order in which they were measured.
 *
 * It only ever moves forward. Where the times step back, because the clock was set, what was
 * measured before is left behind.
 */
class SeriesCursor
{
public:
    explicit SeriesCursor(const Series &times)
        : m_times(times)
    {
    }

    /** The times that follow begin anew. */
    void stepBack();
    /** Index of the point that was the newest at a time, which is not before the one asked for
     *  last; -1 before the first point and after the last one. */
    int pointAt(double seconds);

private:
    bool isRunOver() const;

    Series m_times;
    int m_begin = 0; ///< of the points after the last step back
    int m_next = 0;  ///< the first point that is later than what was asked for
};

/**
 * Writes the series of an instrument as a results file, in slices.
 *
 * It writes what the series held when it was made, whatever becomes of the instrument meanwhile,
 * and costs as much per row at the end as at the beginning.
 */
class ResultsExport
{
public:
    /** What has become of the text: some is still to be written, all is, or the device refused. */
    enum State { Unfinished, Finished, Failed };

    /** Begins the text of what the instrument has measured until now. */
    ResultsExport(const PlotDevice &instrument, const ResultsFormat &format);

    /** Writes for some milliseconds. Failed when the device has not taken all of it, which ends the
     *  export. */
    State writeOn(QIODevice *device, int milliseconds);

    /** How much is written, 0 to 100. */
    int percent() const;

private:
    struct Channel {
        Series values;
        SeriesCursor cursor;
        bool hasValues; ///< those of a channel in error are left out
    };

    void addRows();
    double dueSeconds(int point) const;
    void addRow(double seconds);
    bool flush(QIODevice *device);

    ResultsText m_text;
    int m_intervalMinutes;
    QVector<Channel> m_channels;
    Series m_times;           ///< of the rows: those of the channel with the most points
    Series m_differenceTimes; ///< of its differences
    int m_next = 0;           ///< point of that channel
    int m_number = 0;         ///< of the last row
    std::optional<double> m_lastSeconds;
};

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
    /** A file is being written. */
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

/** Saves what the plot shows now, in the size that it has on the screen, as a PNG file. False, and
 *  an existing file unharmed, when that fails. */
bool savePlotImage(QwtPlot *plot, const QString &fileName);
