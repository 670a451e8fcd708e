#include "examples/examples.h"
#include "examples/markedexamples.h"

#include <QFile>
#include <QtTest>

namespace
{

QStringList linesOf(const QString &document)
{
    QFile file(QStringLiteral(DOCUMENTS "/%1").arg(document));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split('\n')
                                          : QStringList();
}

} // namespace

/** The examples in the documents are what the program makes. */
class TestExamples : public QObject
{
    Q_OBJECT
private slots:
    void documents_data();
    void documents();
    void eachExampleIsShown();
    void updating();
    void faultyMarks_data();
    void faultyMarks();
};

void TestExamples::documents_data()
{
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("name");

    for (const char *document : {"memory-blocks.md", "file-formats.md"}) {
        const QStringList lines = linesOf(document);
        for (const MarkedExample &example : markedExamples(lines))
            QTest::newRow(qPrintable(example.name))
                << lines.mid(example.firstLine, example.lineCount).join('\n') << example.name;
    }
}

void TestExamples::documents()
{
    QFETCH(QString, shown);
    QFETCH(QString, name);
    const QString made = makeExample(name).join('\n');
    QVERIFY2(!made.isEmpty(), "no such example");
    QCOMPARE(shown, made);
}

void TestExamples::eachExampleIsShown()
{
    QStringList shown;
    for (const char *document : {"memory-blocks.md", "file-formats.md"})
        for (const MarkedExample &example : markedExamples(linesOf(document)))
            shown << example.name;
    shown.sort();
    QCOMPARE(shown, exampleNames());
}

void TestExamples::updating()
{
    const QString mark = "<!-- made by nox8-examples serial-number -->";
    const QStringList document{"before", mark,  "```", "old", "older", "```",  "```",
                               "own",    "```", mark,  "```", "```",   "after"};
    const QStringList example = makeExample("serial-number");
    QStringList expected{"before", mark, "```"};
    expected << example << QStringList{"```", "```", "own", "```", mark, "```"} << example
             << QStringList{"```", "after"};
    QCOMPARE(withFreshExamples(document, nullptr), expected);
    QCOMPARE(withFreshExamples(expected, nullptr), expected);
}

void TestExamples::faultyMarks_data()
{
    QTest::addColumn<QString>("document");

    const QString mark = "<!-- made by nox8-examples %1 -->\n";
    QTest::newRow("no such example") << mark.arg("fault") + "```\n```\n";
    const QString named = mark.arg("logger");
    QTest::newRow("no fence") << named + "text\n";
    QTest::newRow("a line between") << named + "\n```\n```\n";
    QTest::newRow("never closed") << named + "```\ntext\n";
    QTest::newRow("at the end") << named.trimmed();
}

void TestExamples::faultyMarks()
{
    QFETCH(QString, document);
    QString fault;
    QCOMPARE(withFreshExamples(document.split('\n'), &fault), QStringList());
    QVERIFY(document.contains(fault) && !fault.isEmpty());
}

QTEST_GUILESS_MAIN(TestExamples)
#include "tst_examples.moc"
