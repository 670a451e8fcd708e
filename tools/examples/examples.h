#pragma once

#include <QString>
#include <QStringList>

/** The names of all examples. */
QStringList exampleNames();

/** The lines of an example, each without its end; none for a name that there is not. */
QStringList makeExample(const QString &name);
