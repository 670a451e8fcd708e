#pragma once

#include "storage/resultsreader.h"

#include <QFile>
#include <QObject>
#include <QTimer>

#include <memory>

class QwtNOX;
class noxList;

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
