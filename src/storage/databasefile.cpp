#include "storage/databasefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

bool provideDatabase(const QString &path)
{
    if (QFile::exists(path))
        return true;
    // a copy under another name first: a crash must not leave half a database under this one
    const QString copy = path + QStringLiteral(".new");
    QFile::remove(copy);
    return QDir().mkpath(QFileInfo(path).absolutePath()) &&
           QFile::copy(QStringLiteral(":/resource/nox8.db"), copy) &&
           QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner) &&
           QFile::rename(copy, path);
}
