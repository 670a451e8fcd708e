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
};

QTEST_GUILESS_MAIN(TestExamples)
#include "tst_examples.moc"
