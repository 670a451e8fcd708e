#pragma once

#include "plot/plotrecords.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/**
 * The layout of results files, in which export and recording write and which reading reads.
 *
 * Text is Windows-1251, lines end with CR LF, and every field is followed by the separator. The
 * lines are: start date and time; an empty one; column names; units; and a row for each time.
 * docs/file-formats.md shows it.
 */

/** How the fields of a results file are written. */
struct ResultsFormat {
    char fieldSeparator = ';';
    char decimalSeparator = '.'; ///< '.' or ','; of values only
    int decimals = 4;            ///< two are always written, and seven at most
    int intervalMinutes = 0;     ///< the least time between rows; 0 takes every row

    /** From the texts of the controls, of which an empty decimal separator is a point. */
    static ResultsFormat fromTexts(const QString &fieldSeparator, const QString &decimalSeparator,
                                   int decimals, int intervalMinutes);
};

/** Fields before those of the channels: number of the row, time. */
constexpr int firstValueField = 2;

/** Whether a row at `seconds` is to be written, so long after the last one that was (none for the
 *  first). A time that steps back begins anew: the clock was set, or the series were emptied. */
bool isRowDue(std::optional<double> lastSeconds, double seconds, int intervalMinutes);

/** A text that Windows-1251 can hold: what it lacks is replaced by what comes nearest ("Ом", "µ",
 *  "2" for a superscript), else by "?". Line ends become blanks. */
QString encodableText(const QString &text);

/** The name that is proposed for the results of an instrument: "NOX CM rev_4_N0123_24-11-2026". */
QString resultsFileName(const QString &model, const QString &serialNumber, const QDate &date);

/** The channel whose times are those of the rows: the first with the most points. There must be a
 *  channel. */
const PlotChannel &longestChannel(const QVector<PlotChannel> &channels);

/** The unit of each channel's latest point. */
QStringList unitsOf(const PlotDevice &instrument);

// Numbers are written and read digit for digit as QString does it, which also serves the rare ones
// that the fast ways here cannot do exactly.

/** Appends what QString::number(number, 'f', decimals) gives; 0 to 7 decimals. */
void appendFixed(QByteArray *text, double number, int decimals);

/** Appends seconds as a time stamp: what QString::number(std::round(seconds), 'g', 6) gives. */
void appendWholeSeconds(QByteArray *text, double seconds);

/** What QString::toDouble() reads in the text from `begin` to before `end`, which is Windows-1251.
 *  False, and `number` is not touched, when that is no number. */
bool readNumber(const char *begin, const char *end, double *number);

/** Writes the lines of a results file into memory. */
class ResultsText
{
public:
    /** Begins empty. */
    explicit ResultsText(const ResultsFormat &format);

    /** The lines before the first row; `units` has one text for each channel. */
    void addHeader(const QDateTime &start, const QStringList &units);
    /** Begins a row; rows are counted from 1. */
    void beginRow(int number, double seconds);
    void addValue(double value);
    /** "--" in place of a value. */
    void addNoValue();
    void endRow();

    /** All that was added, as the file has it. */
    const QByteArray &bytes() const { return m_bytes; }
    void clear() { m_bytes.resize(0); } // keeps the memory

private:
    void addText(const QString &text);

    ResultsFormat m_format;
    QByteArray m_bytes;
};

/** The fields of a line, one after the other. */
class LineFields
{
public:
    LineFields(const char *begin, const char *end, char separator)
        : m_next(begin)
        , m_end(end)
        , m_separator(separator)
    {
    }

    /** Finds the next field, from `begin` to before `end`; false after the last one. A line that
     *  ends with the separator has an empty last field. */
    bool next(const char **begin, const char **end);

private:
    const char *m_next; ///< null after the last field
    const char *m_end;
    char m_separator;
};

/** The moment that the first line tells; what it does not tell, be it date or time, is as `now`. */
QDateTime startOfLine(const QByteArray &line, const QDateTime &now);

/** The channels' units of the unit line, null where a field is none. */
QVector<QString> unitsOfLine(const QByteArray &line, char separator);
