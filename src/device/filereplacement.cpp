#include "device/filereplacement.h"

#include <QFileInfo>
#include <QSaveFile>

bool replaceFile(const QString &fileName, const QByteArray &content)
{
    const QFileInfo existing(fileName);
    if (existing.exists() && !existing.isFile()) // the renaming would put a file in its place
        return false;
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // commit() itself overlooks a disk that is full: it shows in the count of a long file, and when
    // a short one leaves the buffer
    const bool isWritten = file.write(content) == content.size() && file.flush();
    if (!isWritten)
        file.cancelWriting();
    return file.commit() && isWritten;
}
