#include "widgets/userdialogs.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>

/** Messages on the screen, answered by the keyboard. */
class TestUserDialogs : public QObject
{
    Q_OBJECT
private slots:
    void messagesComeOneByOne();
    void aMessageWaitsForTheAnswer();
    void whoAsksMayGo();

private:
    static Message message(const QString &text)
    {
        Message made;
        made.text = text;
        return made;
    }
    /** The texts of all boxes that are on the screen. */
    static QStringList shown()
    {
        QStringList texts;
        const auto widgets = QApplication::topLevelWidgets();
        for (const QWidget *widget : widgets)
            if (const auto *box = qobject_cast<const QMessageBox *>(widget))
                if (box->isVisible())
                    texts << box->text();
        return texts;
    }
    static void pressReturn()
    {
        QTRY_VERIFY(qobject_cast<QPushButton *>(QApplication::focusWidget()));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }

    UserDialogs screen = UserDialogs::onScreen();
};

void TestUserDialogs::messagesComeOneByOne()
{
    QWidget window;
    auto leaving = std::make_unique<QWidget>();
    window.show();
    screen.tell(leaving.get(), message("1"));
    screen.tell(&window, message("2"));
    screen.tell(leaving.get(), message("nobody is left to read this"));
    screen.tell(&window, message("3"));
    QCOMPARE(shown(), QStringList{"1"});
    leaving.reset();
    for (const char *text : {"2", "3"}) {
        QTRY_COMPARE(shown(), QStringList{text});
        pressReturn();
    }
    QTRY_COMPARE(shown(), QStringList());
}

void TestUserDialogs::aMessageWaitsForTheAnswer()
{
    QWidget window;
    window.show();
    Message question = message("?");
    question.buttons = QMessageBox::Yes | QMessageBox::No;
    question.defaultButton = QMessageBox::No;
    QStringList beside;
    QTimer::singleShot(0, this, [&] {
        screen.tell(&window, message("!"));
        beside = shown();
        for (QWidget *box : QApplication::topLevelWidgets()) // whichever has the focus
            QTest::keyClick(box, Qt::Key_Return);
    });
    QCOMPARE(screen.ask(&window, question), QMessageBox::No);
    QCOMPARE(beside, QStringList{"?"});
    QTRY_COMPARE(shown(), QStringList{"!"});
    pressReturn();
}

void TestUserDialogs::whoAsksMayGo()
{
    auto asker = std::make_unique<QWidget>();
    const auto leave = [&] {
        QTimer::singleShot(0, this, [&] { asker = std::make_unique<QWidget>(); });
    };
    leave();
    QCOMPARE(screen.ask(asker.get(), message("?")), QMessageBox::NoButton);
    leave();
    QCOMPARE(screen.chooseFile(asker.get(), {}), QString());
    leave();
    QVERIFY(!screen.chooseColor(asker.get(), Qt::red).isValid());
}

QTEST_MAIN(TestUserDialogs)
#include "tst_userdialogs.moc"
