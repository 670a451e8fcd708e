#pragma once

#include "plot/plotrecords.h"

#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

#include <memory>

class LineFields;
class QwtNOX;
class noxList;

/** Takes what a ResultsReader finds. */
class ResultsSink
{
public:
    virtual ~ResultsSink() = default;

    /** The column names are there, so the file has data; called once, before any point. */
    virtual void begin(const QDateTime &start) = 0;
    /** Takes points in the order of the file, row by row, with values as the file says them, be
     * they infinite or no number; `units` are those of the channels. False when no more are wanted,
     *  which ends the reading. */
    virtual bool take(const QVector<PlotPoint> &points, const QVector<QString> &units) = 0;
};

/** What was in a results file. */
struct ResultsFindings {
    bool hasColumns = false; ///< the third line had three fields at least
    qint64 rows = 0;         ///< lines with a time
    qint64 skippedLines = 0; ///< lines after that of the units without a time
    qint64 points = 0;
    qint64 skippedValues = 0; ///< fields of channels with a unit that are no number
    bool isWhole = false;     ///< all of the file was read
};

/**
 * Reads a results file in slices.
 *
 * It keeps one line, of which it looks at the whole fields in the first 64 KiB, and the points of
 * as many bytes, however large the file is.
 */
class ResultsReader
{
public:
    /** `now` is the start where the file tells none. Device and sink must outlive the reader. */
    ResultsReader(QIODevice *device, ResultsSink *sink, const QDateTime &now);

    /** Reads for some milliseconds; false when the reading has ended. */
    bool readOn(int milliseconds);

    const ResultsFindings &findings() const { return m_findings; }

private:
    bool readSlice();
    void takeBytes(const char *begin, const char *end);
    void keep(const char *begin, const char *end);
    void endKeptLine();
    void readLine(const char *begin, const char *end);
    void readColumns(const char *begin, const char *end);
    void readRow(const char *begin, const char *end);
    void readValues(LineFields *fields, double seconds);
    bool deliver();

    QIODevice *m_device;
    ResultsSink *m_sink;
    QDateTime m_start;
    ResultsFindings m_findings;
    QVector<QString> m_units;
    QVector<PlotPoint> m_points;
    QByteArray m_kept;    ///< begin of a line whose end has not been read yet
    bool m_isCut = false; ///< more of it was read than is kept
    qint64 m_lineNumber = 0;
    char m_separator = '\0';
};

/**
 * Reads a results file into the plot of an instrument while the program goes on.
 *
 * The reading ends early when the instrument is removed, or when somebody else empties its series
 * or gives them another start; what was read until then stays.
 */
class ResultsReading : public QObject, private ResultsSink
{
    Q_OBJECT
public:
    /** Neither registry nor plot is owned; both outlive the reading. */
    ResultsReading(noxList *registry, QwtNOX *plot, QObject *parent = nullptr);
    ~ResultsReading() override;

    /** Opens a file; a reading that is under way is stopped. False when it cannot be opened. */
    bool open(const QString &fileName);
    /** Begins to read the open file into the instrument with this registry index, which should no
     *  longer take measurements. A short file has been read when this returns. False, and no
     * signal, when no file was opened for it or the instrument is not on the plot. */
    bool start(int index);
    /** Ends the reading, if there is one. Not to be called by who hears of a point. */
    void stop();
    bool isRunning() const { return m_reader != nullptr; }

signals:
    /** How much is read, 0 to 100. */
    void progress(int percent);
    /** The reading has ended, for whatever reason. */
    void finished(const ResultsFindings &findings);

private:
    void begin(const QDateTime &start) override;
    bool take(const QVector<PlotPoint> &points, const QVector<QString> &units) override;
    bool ownsSeries() const;
    void goOn();

    noxList *m_registry;
    QwtNOX *m_plot;
    QFile m_file;
    std::unique_ptr<ResultsReader> m_reader; ///< null while nothing is read
    QTimer m_timer;
    int m_index = -1;      ///< of the instrument in the registry
    int m_qwtIndex = -1;   ///< and on the plot
    QDateTime m_start;     ///< of its series, since the columns were found
    bool m_isLost = false; ///< somebody else has taken or emptied the series
};

Q_DECLARE_METATYPE(ResultsFindings)
