#include "device/filereplacement.h"
#include "examples/examples.h"
#include "examples/markedexamples.h"

#include <QFile>

#include <cstdio>

namespace
{

enum ExitCode { done = 0, failed = 1, usage = 2 };

void print(std::FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", qUtf8Printable(text));
}

ExitCode printUsage()
{
    print(stderr, "nox8-examples NAME               prints an example\n"
                  "nox8-examples --update DOCUMENT  makes the examples of a document anew\n"
                  "Examples: " +
                      exampleNames().join(", "));
    return usage;
}

ExitCode update(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        print(stderr, fileName + ": " + file.errorString());
        return failed;
    }
    QString fault;
    const QStringList fresh =
        withFreshExamples(QString::fromUtf8(file.readAll()).split('\n'), &fault);
    file.close();
    if (fresh.isEmpty()) {
        print(stderr, fileName + ": no such example, or no fences: " + fault);
        return failed;
    }
    return replaceFile(fileName, fresh.join('\n').toUtf8()) ? done : failed;
}

} // namespace

int main(int count, char **arguments)
{
    if (count == 3 && qstrcmp(arguments[1], "--update") == 0)
        return update(QString::fromLocal8Bit(arguments[2]));
    const QStringList lines =
        count == 2 ? makeExample(QString::fromLocal8Bit(arguments[1])) : QStringList();
    if (lines.isEmpty())
        return printUsage();
    print(stdout, lines.join('\n'));
    return done;
}
