#include "examples/examples.h"
#include "examples/markedexamples.h"

#include <QFile>
#include <QtTest>

/** The examples in the documents are what the program makes. */
class TestExamples : public QObject
{
    Q_OBJECT
private slots:
    void documents()
    {
        QStringList shown;
        for (const char *document : {"memory-blocks.md", "file-formats.md"}) {
            QFile file(QStringLiteral(DOCUMENTS "/%1").arg(document));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
            for (const MarkedExample &example : markedExamples(lines)) {
                QCOMPARE(lines.mid(example.firstLine, example.lineCount),
                         makeExample(example.name));
                shown << example.name;
            }
        }
        shown.sort();
        QCOMPARE(shown, exampleNames());
    }

    void updating()
    {
        const QString mark = "<!-- made by nox8-examples serial-number -->";
        const QStringList document{"before", mark,  "```", "old", "older", "```",  "```",
                                   "own",    "```", mark,  "```", "```",   "after"};
        const QStringList example = makeExample("serial-number");
        QVERIFY(!example.isEmpty());
        QStringList expected{"before", mark, "```"};
        expected << example << QStringList{"```", "```", "own", "```", mark, "```"} << example
                 << QStringList{"```", "after"};
        QCOMPARE(withFreshExamples(document, nullptr), expected);
        QCOMPARE(withFreshExamples(expected, nullptr), expected);
    }

    void faultyMarks()
    {
        const QString mark = "<!-- made by nox8-examples %1 -->\n";
        const QString named = mark.arg("logger");
        const QStringList documents{mark.arg("fault") + "```\n```\n", // no such example
                                    named + "text\n", named + "\n```\n```\n", named + "```\ntext\n",
                                    named.trimmed()};
        for (const QString &document : documents) {
            QString fault;
            QCOMPARE(withFreshExamples(document.split('\n'), &fault), QStringList());
            QVERIFY2(document.contains(fault) && !fault.isEmpty(), qPrintable(document));
        }
    }
};

QTEST_GUILESS_MAIN(TestExamples)
#include "tst_examples.moc"
