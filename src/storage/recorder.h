#pragma once

#include "registry/noxlist.h"
#include "storage/detachedwork.h"

#include <QDateTime>
#include <QFile>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <optional>

class QwtNOX;

/** Why a row could not be written. */
enum class RecordingProblem { CannotOpen, DiskFull, CannotWrite };

/**
 * A recording file while a row is appended to it.
 *
 * It never holds half of what was appended: what a full disk cuts short is taken back. A line that
 * a crash has torn is ended before the next one. What was complete is never touched.
 */
class RecordingFile
{
public:
    explicit RecordingFile(const QString &fileName);

    /** Opens the file, which is created if need be. */
    bool open();
    /** True for a new file; it must be open. */
    bool isEmpty() const { return m_file.size() == 0; }
    /** Appends the text, or nothing of it. */
    bool append(const QByteArray &text);

    /** Why the last operation answered false. */
    RecordingProblem problem() const { return m_problem; }

private:
    QByteArray missingLineEnd();
    qint64 writeAll(const QByteArray &text);

    QFile m_file;
    RecordingProblem m_problem = RecordingProblem::CannotOpen;
};

/** That the rows of an instrument cannot be written at present. */
struct RecordingFault {
    RecordingProblem problem = RecordingProblem::CannotOpen;
    QDateTime since; ///< when the first row was lost
};

/** What the user is told of it, such as "Запись не ведётся с 24.11.2026 07:05:09: на диске нет
 *  места". */
QString recordingFaultText(const RecordingFault &fault);

/**
 * Continuous recording: appends a row to an instrument's file whenever a polling round is over.
 *
 * Settings and row counter are those of the instrument's record. Rows reach the disk some seconds
 * later, without anybody waiting for it. A row that cannot be written is lost; the next round tries
 * again.
 */
class Recorder : public QObject
{
    Q_OBJECT
public:
    /** Neither registry nor plot is owned; both outlive the recorder. */
    Recorder(noxList *registry, QwtNOX *plot, QObject *parent = nullptr);

    /** A measurement has come for channel `ch` (from 0) of the instrument with this registry index;
     *  to be called before the plot has it, so that the plot holds the round that is over. */
    void noteMeasurement(int index, quint8 ch);

    /** What is wrong with an instrument's recording; nothing while rows are written. */
    std::optional<RecordingFault> fault(int index) const { return m_states.value(index).fault; }

signals:
    /** The fault of the instrument with this registry index came or went. */
    void faultChanged(int index);

private:
    struct State {
        std::optional<quint8> previousChannel; ///< of the last measurement
        std::optional<double> lastSeconds;     ///< time of the last written row
        std::optional<RecordingFault> fault;
    };

    void writeRound(noxList::_nox *nox, State *state);
    std::optional<RecordingProblem> writeRow(const noxList::_nox &nox, double seconds) const;
    QDateTime startOfFile(const noxList::_nox &nox) const;
    void noteOutcome(int index, std::optional<RecordingProblem> problem);
    void forgetStopped();
    void syncLater(const QString &fileName);
    void startSync();

    noxList *m_registry;
    QwtNOX *m_plot;
    QMap<int, State> m_states; ///< by registry index
    QSet<QString> m_unsynced;  ///< files with rows that may not be on the disk
    QTimer m_syncTimer;
    SharedWorkState m_sync; ///< of the last batch that was brought there
};
