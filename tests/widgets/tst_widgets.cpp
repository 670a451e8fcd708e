#include "widgets/changemark.h"
#include "widgets/mlineedit.h"
#include "widgets/rowdelegate.h"

#include <QtTest>
#include <QtWidgets>

/** What the widgets of general use make of clicks and keys, and how they look. */
class TestWidgets : public QObject
{
    Q_OBJECT
private slots:
    void linesArePressedAndEntered()
    {
        mLineEdit line;
        QStringList journal;
        connect(&line, &mLineEdit::clicked, this, [&] { journal << "clicked"; });
        connect(&line, &mLineEdit::enterPress, this, [&] { journal << line.text(); });
        QTest::mouseClick(&line, Qt::LeftButton);
        for (const Qt::Key key : {Qt::Key_A, Qt::Key_Return, Qt::Key_Enter})
            QTest::keyClick(&line, key);
        QCOMPARE(journal.join(' '), "clicked a a");
    }

    void changedFieldIsMarked()
    {
        QLineEdit field;
        field.resize(2, 2);
        ChangeMark mark(&field);
        field.resize(80, 30);
        const QImage plain = field.grab().toImage();
        mark.setChanged(true);
        QVERIFY(field.accessibleDescription().startsWith("Отличается"));
        const QImage marked = field.grab().toImage();
        QCOMPARE(marked.pixelColor(4, 1), accentColor());
        QCOMPARE(marked.pixelColor(9, 9), plain.pixelColor(9, 9));
        const QColor edge = marked.pixelColor(4, 3); // half of it, for it is smooth
        QVERIFY(edge != accentColor() && edge != plain.pixelColor(4, 3));
        mark.setChanged(false);
        QCOMPARE(field.accessibleDescription(), QString());
        QCOMPARE(field.grab().toImage(), plain);
    }

    void contrastIsThatOfTheWcag()
    {
        QVector<int> hundredths;
        for (const QColor &color : {QColor(0, 0, 0), QColor(8, 8, 8), QColor(255, 0, 0),
                                    QColor(0, 128, 0), QColor(0, 0, 255), QColor(0, 0, 128)})
            hundredths << qRound(100.0 * contrast(color, Qt::white));
        QCOMPARE(hundredths, (QVector<int>{2100, 2003, 400, 514, 859, 1601}));
    }
};

QTEST_MAIN(TestWidgets)
#include "tst_widgets.moc"
