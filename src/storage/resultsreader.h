#pragma once

#include "plot/plotrecords.h"

#include <QByteArray>
#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QVector>

class LineFields;
class QIODevice;

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

Q_DECLARE_METATYPE(ResultsFindings)
