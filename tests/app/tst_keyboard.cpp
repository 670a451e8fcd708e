#include "dialogs/confmenu.h"
#include "widgets/rowdelegate.h"
#include "windowfixture.h"

/** The window without a mouse: where Tab leads, and what the keys do there. */
class TestKeyboard : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { fixture.reset(); }

    void tabFollowsTheEyeAndIsSeen();
    void keysWorkTheInstruments();
    void keysWorkTheChannels();
    void menuKeyDoesWhatTheMouseDoes();
    void currentCellIsNeverUnderTheHeader();
    void keysWorkTheNumbers();

private:
    static void press(QWidget *widget, const QList<int> &keys)
    {
        for (const int key : keys)
            QTest::keyClick(widget, Qt::Key(key));
    }
    /** Pixels in the colour of the focus on and around a widget. */
    int marksAt(const QWidget *widget) const
    {
        const QRect place(widget->mapTo(fixture->window.get(), QPoint()), widget->size());
        const QImage picture = fixture->window->grab(place.adjusted(-2, -2, 2, 2)).toImage();
        int marks = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                marks += picture.pixelColor(x, y) == accentColor() ? 1 : 0;
        return marks;
    }

    std::unique_ptr<WindowFixture> fixture;
};

void TestKeyboard::init()
{
    fixture = std::make_unique<WindowFixture>();
    for (const quint16 number : {1, 2, 3})
        fixture->add(0x11, number);
    QApplication::setActiveWindow(fixture->window.get());
    QVERIFY(QTest::qWaitForWindowActive(fixture->window.get()));
}

void TestKeyboard::tabFollowsTheEyeAndIsSeen()
{
    const QStringList expected = {"devTable",
                                  "addDevBtn",
                                  "findDevBtn",
                                  "exitBtm",
                                  "settingsBtn",
                                  "QwtPlotCanvas",
                                  "qwtMeasBtn",
                                  "qwtZoomBtn",
                                  "qwtScrollBtn",
                                  "trackBtn",
                                  "recBtn",
                                  "clearBtn",
                                  "toolButton",
                                  "toolButton_2",
                                  "toolButton_3",
                                  "wideViewBtn",
                                  "setQwtBtn",
                                  "dXBtn",
                                  "dYBtn",
                                  "modeXBtn",
                                  "modeBtn",
                                  "frameMainLCDMeas",
                                  "frameMainLCDAver",
                                  "chTable",
                                  "devTable"};
    QStringList reached;
    for (int i = 0; i < expected.size(); ++i) {
        QWidget *const stop = QApplication::focusWidget();
        reached << stop->objectName();
        const QString name = QAccessible::queryAccessibleInterface(stop)->text(QAccessible::Name);
        QVERIFY2(!name.isEmpty(), qPrintable(stop->objectName()));
        const int marks = marksAt(stop);
        QTest::keyClick(stop, Qt::Key_Tab);
        QVERIFY2(marks > marksAt(stop) + 100, qPrintable(stop->objectName()));
    }
    QCOMPARE(reached, expected);
}

void TestKeyboard::keysWorkTheInstruments()
{
    QTableWidget *table = fixture->instruments();
    press(table, {Qt::Key_Down, Qt::Key_Space});
    QVERIFY(fixture->plot().devices()[1].devShow);
    QCOMPARE(fixture->window->currentIndex(), 0);
    press(table, {Qt::Key_Space});
    QVERIFY(!fixture->plot().devices()[1].devShow);

    press(table, {Qt::Key_Down, Qt::Key_Return});
    QCOMPARE(fixture->window->currentIndex(), 2);
    QCOMPARE(fixture->title(), QString("NOX B № 0003"));
    press(table, {Qt::Key_Up, Qt::Key_Menu});
    QCOMPARE(fixture->window->currentIndex(), 2);
    QVERIFY(QApplication::activePopupWidget() == fixture->window->instrumentCard());
}

void TestKeyboard::keysWorkTheChannels()
{
    QTableWidget *table = fixture->channels();
    table->setFocus(Qt::TabFocusReason);
    press(table, {Qt::Key_Down, Qt::Key_Space});
    QVERIFY(!fixture->plot().getChShow(0, 1));
    press(table, {Qt::Key_Space, Qt::Key_Down, Qt::Key_Right, Qt::Key_Return});
    QVERIFY(fixture->plot().getChShow(0, 2));
    QCOMPARE(fixture->plot().getChMain(0), 2);
}

void TestKeyboard::menuKeyDoesWhatTheMouseDoes()
{
    QTableWidget *table = fixture->channels();
    table->setFocus(Qt::TabFocusReason);
    fixture->dialogs.color = Qt::magenta;
    press(table, {Qt::Key_Home, Qt::Key_Menu});
    QCOMPARE(fixture->plot().getChColor(0, 0), QColor(Qt::magenta));

    const auto openedMenu = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(table, key, modifiers);
        QWidget *menu = QApplication::activePopupWidget();
        return menu && menu->close() ? menu->metaObject()->className() : "nothing";
    };
    table->setCurrentCell(1, ChannelColumn::DeltaY);
    QCOMPARE(openedMenu(Qt::Key_Menu, Qt::NoModifier), "confChMenu");
    press(table, {Qt::Key_Right});
    QCOMPARE(openedMenu(Qt::Key_Menu, Qt::NoModifier), "DifferenceMenu");
    QCOMPARE(openedMenu(Qt::Key_F10, Qt::ShiftModifier), "DifferenceMenu");
    QCOMPARE(openedMenu(Qt::Key_Return, Qt::NoModifier), "DifferenceMenu");
    press(table, {Qt::Key_Right});
    QCOMPARE(openedMenu(Qt::Key_Return, Qt::NoModifier), "confChMenu");
}

void TestKeyboard::currentCellIsNeverUnderTheHeader()
{
    fixture->add(0x41, 4); // 16 channels
    fixture->click(fixture->instruments(), 4, InstrumentColumn::Name);
    fixture->window->resize(1000, 500);
    const auto isCurrentSeen = [](const QTableWidget *table) {
        const QRect cell = table->visualItemRect(table->currentItem());
        return table->viewport()->rect().contains(cell) && cell.top() >= table->rowHeight(0);
    };
    QTRY_VERIFY(isCurrentSeen(fixture->instruments()));
    fixture->instruments()->verticalScrollBar()->setValue(0);
    QVERIFY(!isCurrentSeen(fixture->instruments()));
    fixture->channels()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(fixture->channels(), Qt::Key_Tab);
    QVERIFY(isCurrentSeen(fixture->instruments()));

    QTableWidget *table = fixture->channels();
    QCOMPARE(table->rowCount(), 17);
    QWidget *title = table->cellWidget(0, 1);
    const auto place = [table] { return table->visualItemRect(table->currentItem()); };

    table->setCurrentCell(16, 1);
    QVERIFY(table->verticalScrollBar()->value() > 0);
    QCOMPARE(title->y(), 0);
    QTest::mouseClick(title, Qt::LeftButton); // reaches nothing that lies below it
    QCOMPARE(fixture->plot().getChMain(3), 0);
    for (int row = 15; row >= 0; --row) {
        press(table, {Qt::Key_Up});
        QCOMPARE(table->currentRow(), qMax(1, row));
        QVERIFY(place().top() >= title->geometry().bottom());
    }
}

void TestKeyboard::keysWorkTheNumbers()
{
    auto *value = fixture->find<QWidget>("frameMainLCDMeas");
    press(value, {Qt::Key_Space});
    QVERIFY(!fixture->plot().getMeasShow());
    press(value, {Qt::Key_Return});
    QVERIFY(fixture->plot().getMeasShow());
    press(fixture->find<QWidget>("frameMainLCDAver"), {Qt::Key_Space});
    QVERIFY(!fixture->plot().getAverShow());
}

QTEST_MAIN(TestKeyboard)
#include "tst_keyboard.moc"
#include "widgets/rowdelegate.h"
