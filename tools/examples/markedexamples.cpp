#include "examples/markedexamples.h"

#include "examples/examples.h"

#include <QRegularExpression>

namespace
{

const QString &fence()
{
    static const QString text = QStringLiteral("```");
    return text;
}

/** The example whose comment is the line before `opening`. */
MarkedExample exampleAt(const QStringList &document, int opening, const QString &name)
{
    const int closing =
        document.value(opening) == fence() ? document.indexOf(fence(), opening + 1) : -1;
    if (closing < 0)
        return {name, -1, 0};
    return {name, opening + 1, closing - opening - 1};
}

} // namespace

QVector<MarkedExample> markedExamples(const QStringList &document)
{
    static const QRegularExpression comment("^<!-- made by nox8-examples (.*) -->$");
    QVector<MarkedExample> examples;
    for (int i = 0; i < document.size(); ++i) {
        const QRegularExpressionMatch match = comment.match(document.at(i));
        if (match.hasMatch())
            examples << exampleAt(document, i + 1, match.captured(1));
    }
    return examples;
}

QStringList withFreshExamples(const QStringList &document, QString *fault)
{
    QStringList fresh;
    int next = 0;
    for (const MarkedExample &example : markedExamples(document)) {
        const QStringList lines = makeExample(example.name);
        if (lines.isEmpty() || example.firstLine < 0) {
            if (fault)
                *fault = example.name;
            return {};
        }
        fresh << document.mid(next, example.firstLine - next) << lines;
        next = example.firstLine + example.lineCount;
    }
    return fresh << document.mid(next);
}
