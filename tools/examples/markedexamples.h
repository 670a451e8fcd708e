#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/**
 * Examples in a Markdown document. Each stands between fences right after the comment
 *
 *     <!-- made by nox8-examples NAME -->
 */
struct MarkedExample {
    QString name;
    int firstLine; ///< of what is between the fences; -1 when they are not there
    int lineCount;
};

/** The marked examples of a document in their order. */
QVector<MarkedExample> markedExamples(const QStringList &document);

/** The document with all examples made anew. Empty when it marks one that there is not, or one
 *  without fences; `fault`, which may be null, is its name then. */
QStringList withFreshExamples(const QStringList &document, QString *fault);
