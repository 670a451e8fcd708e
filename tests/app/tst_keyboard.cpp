#include "widgets/changemark.h"
#include "windowfixture.h"

/** The window without a mouse: where Tab leads, what keys do there, and how messages are answered.
 */
class TestKeyboard : public WindowTest
{
    Q_OBJECT
    /** Pixels in the colour of the focus on and around a widget. */
    int marksAt(const QWidget *widget) const
    {
        const QRect place(widget->mapTo(window.get(), QPoint()), widget->size());
        const QImage picture = window->grab(place.adjusted(-2, -2, 2, 2)).toImage();
        int marks = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                marks += picture.pixelColor(x, y) == accentColor() ? 1 : 0;
        return marks;
    }
    void activate() const
    {
        QApplication::setActiveWindow(window.get());
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        addSome(3); // the current cell leaves the header
    }
    /** The texts of all message boxes that are on the screen. */
    static QString shown()
    {
        QString texts;
        for (const QWidget *widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && widget->inherits("QMessageBox"))
                texts += widget->property("text").toString();
        return texts;
    }
    /** Awaits a message and takes it away. */
    static void readMessage(const char *text)
    {
        QTRY_COMPARE(shown(), text);
        QTRY_VERIFY(qobject_cast<QPushButton *>(QApplication::focusWidget()));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    UserDialogs screen = UserDialogs::onScreen();

private slots:
    void tabFollowsTheEyeAndIsSeen()
    {
        activate();
        const QString expected = "devTable addDevBtn findDevBtn exitBtm settingsBtn QwtPlotCanvas "
                                 "qwtMeasBtn qwtZoomBtn qwtScrollBtn trackBtn recBtn clearBtn "
                                 "toolButton toolButton_2 toolButton_3 wideViewBtn setQwtBtn dXBtn "
                                 "dYBtn modeXBtn modeBtn frameMainLCDMeas frameMainLCDAver chTable "
                                 "devTable";
        QStringList reached;
        for (int i = 0; i <= expected.count(' '); ++i) {
            QWidget *const stop = QApplication::focusWidget();
            reached << stop->objectName();
            const auto *accessible = QAccessible::queryAccessibleInterface(stop);
            QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(), qPrintable(reached.last()));
            const int marks = marksAt(stop);
            QTest::keyClick(stop, Qt::Key_Tab);
            QVERIFY2(marks > marksAt(stop) + 100, qPrintable(reached.last()));
        }
        QCOMPARE(reached.join(' '), expected);
    }

    void keysWorkTheInstrumentsAndTheNumbers()
    {
        activate();
        const auto pressed = [this](const char *place, const QVector<Qt::Key> &keys) {
            for (const Qt::Key key : keys)
                QTest::keyClick(find(place), key);
            const auto &devices = plot().devices();
            return words({devices[0].devShow, devices[1].devShow, plot().getMeasShow(),
                          plot().getAverShow(), window->currentIndex()});
        };
        QCOMPARE(pressed("frameMainLCDMeas", {Qt::Key_Space}), "true false false true 0");
        const auto *const sign = find("frameMainLCDMeas")->findChild<QLabel *>("hiddenSign");
        QVERIFY(sign->isVisible());
        QCOMPARE(pressed("frameMainLCDMeas", {Qt::Key_Return}), "true false true true 0");
        QVERIFY(!sign->isVisible());
        QCOMPARE(pressed("frameMainLCDMeas", {Qt::Key_X}), "true false true true 0");
        QCOMPARE(pressed("frameMainLCDAver", {Qt::Key_Enter}), "true false true false 0");
        QCOMPARE(pressed("devTable", {Qt::Key_Space}), "false false true false 0");
        QCOMPARE(pressed("devTable", {Qt::Key_Down, Qt::Key_Space}), "false true true false 0");
        QCOMPARE(pressed("devTable", {Qt::Key_Down, Qt::Key_Return}), "false false true true 2");
        QCOMPARE(pressed("devTable", {Qt::Key_Up, Qt::Key_Menu}), "false false true true 2");
        QVERIFY(QApplication::activePopupWidget() == window->instrumentCard());
    }

    void keysWorkTheChannels()
    {
        activate();
        answers->color = Qt::magenta;
        using namespace ChannelColumn;
        // row, column, key; menu that opens, second channel shown, main channel, third one's colour
        const std::tuple<int, int, QKeySequence, const char *> cases[] = {
            {2, Unit, Qt::Key_Space, "- false 0 #00ff00"},
            {3, Unit, Qt::Key_Return, "- false 2 #00ff00"},
            {3, Number, Qt::Key_Menu, "- false 2 #ff00ff"},
            {1, DeltaY, Qt::Key_Menu, "confChMenu false 2 #ff00ff"},
            {1, Reference, Qt::SHIFT + Qt::Key_F10, "DifferenceMenu false 2 #ff00ff"},
            {1, Reference, Qt::Key_F10, "- false 2 #ff00ff"},
            {1, Reference, Qt::SHIFT + Qt::Key_A, "- false 2 #ff00ff"},
            {1, Reference, Qt::Key_Return, "DifferenceMenu false 2 #ff00ff"},
            {1, ChannelColumn::Menu, Qt::Key_Return, "confChMenu false 2 #ff00ff"}};
        for (const auto &[row, column, key, effect] : cases) {
            channels()->setCurrentCell(row, column);
            QTest::keySequence(channels(), key);
            QWidget *menu = QApplication::activePopupWidget();
            QCOMPARE(words({menu && menu->close() ? menu->metaObject()->className() : "-",
                            plot().getChShow(0, 1), plot().getChMain(0),
                            plot().getChColor(0, 2).name()}),
                     effect);
        }
    }

    void currentCellIsNeverUnderTheHeader()
    {
        activate();
        add(0x41, 4); // 16 channels
        choose(4);
        window->resize(1000, 500);
        const auto isCurrentSeen = [](const QTableWidget *table) {
            const QRect cell = table->visualItemRect(table->currentItem());
            return table->viewport()->rect().contains(cell) && cell.top() >= table->rowHeight(0);
        };
        QTRY_VERIFY(isCurrentSeen(instruments()));
        instruments()->verticalScrollBar()->setValue(0);
        QVERIFY(!isCurrentSeen(instruments()));
        channels()->setFocus(Qt::TabFocusReason);
        QTest::keyClick(channels(), Qt::Key_Tab);
        QVERIFY(isCurrentSeen(instruments()));

        channels()->setCurrentCell(16, 1);
        QWidget *title = channels()->cellWidget(0, 1);
        QVERIFY(channels()->verticalScrollBar()->value() > 0);
        channels()->doItemsLayout(); // puts every cell in its place
        QCOMPARE(title->pos(), QPoint(channels()->columnViewportPosition(1), 0));
        QTest::mouseClick(title, Qt::LeftButton); // reaches nothing that lies below it
        QCOMPARE(plot().getChMain(3), 0);
        for (int row = 15; row >= 0; --row) {
            QTest::keyClick(channels(), Qt::Key_Up);
            QCOMPARE(channels()->currentRow(), qMax(1, row));
            QVERIFY(isCurrentSeen(channels()));
        }
    }

    void messagesComeOneByOne()
    {
        auto leaving = std::make_unique<QWidget>();
        for (const char *text : {"1", "nobody is left to read this"})
            screen.tell(leaving.get(), {{}, {}, text});
        for (const char *text : {"2", "3"})
            screen.tell(window.get(), {{}, {}, text});
        QCOMPARE(shown(), "1");
        leaving.reset();
        for (const char *text : {"2", "3"})
            readMessage(text);
        QTRY_COMPARE(shown(), "");
        QTimer::singleShot(0, this, [&] { // a message waits for the answer
            screen.tell(window.get(), {{}, {}, "!"});
            QCOMPARE(shown(), "?");
            QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return);
        });
        const auto both = QMessageBox::Yes | QMessageBox::No;
        QCOMPARE(screen.ask(window.get(), {{}, {}, "?", both, QMessageBox::No}), QMessageBox::No);
        readMessage("!");
    }

    void whoAsksMayGo()
    {
        auto asker = std::make_unique<QWidget>();
        const auto leave = [&] {
            QTimer::singleShot(0, this, [&] { asker = std::make_unique<QWidget>(); });
            return asker.get();
        };
        QCOMPARE(screen.ask(leave(), {{}, {}, "?"}), QMessageBox::NoButton);
        QCOMPARE(screen.chooseFile(leave(), {}), QString());
        QVERIFY(!screen.chooseColor(leave(), Qt::red).isValid());
    }
};

QTEST_MAIN(TestKeyboard)
#include "tst_keyboard.moc"
