#include "storage/recordingfile.h"

#include <QFileInfo>

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
