#pragma once

#include <QFile>

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
