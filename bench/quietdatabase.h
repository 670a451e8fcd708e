#pragma once

#include "storage/noxsql.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

/** How the program starts: with a database of its own, and without a search of its own. */
class QuietDatabase
{
public:
    QuietDatabase()
    {
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path()));
        const QString path =
            QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
            QStringLiteral("/nox8.db");
        provideDatabase(path);
        noxSql(path).setAppProperty(QStringLiteral("autoconnect"), false);
    }

private:
    QTemporaryDir m_folder;
};
