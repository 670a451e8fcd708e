#include "dialogs/confmenu.h"
#include "dialogs/devconfui.h"
#include "windowfixture.h"

// Instruments come, go, become current and fail.

class TestMainWindow : public QObject
{
    Q_OBJECT
private slots:
    void init() { fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { fixture.reset(); }

    void startsEmpty();
    void attachesAnInstrumentWithoutAPort();
    void ignoresARefusedInstrument();
    void fillsGapsOnThePlot();
    void sharesOneTimeOrigin();
    void growsWithTheModel();
    void becomesCurrentByAClick();
    void choosesTheNextCurrentInstrument_data();
    void choosesTheNextCurrentInstrument();
    void boxesStayWithTheirInstruments();
    void tellsOfAFaultOnce();
    void oldNumbersLookOld();
    void marksTheRowUnderTheMouse();
    void widensThePlot();
    void fitsASmallScreen();
    void givesRoomToTheTableThatNeedsIt();
    void closes();

private:
    std::unique_ptr<WindowFixture> fixture;
};

void TestMainWindow::startsEmpty()
{
    QCOMPARE(fixture->instruments()->rowCount(), 1);
    QCOMPARE(fixture->channels()->rowCount(), 1);
    QCOMPARE(fixture->title(), QString("-"));
    QCOMPARE(fixture->label("mainMeasLabel"), QString("--"));
    QCOMPARE(fixture->find<QPushButton>("dXBtn")->text(), QString("X: -"));
    QCOMPARE(fixture->find<QPushButton>("modeBtn")->text(), QString("-"));
}

void TestMainWindow::attachesAnInstrumentWithoutAPort()
{
    QMenu *menu = fixture->find<QPushButton>("addDevBtn")->menu();
    emit menu->aboutToShow();
    menu->actions().first()->trigger();

    const QTableWidget *instruments = fixture->instruments();
    QCOMPARE(instruments->rowCount(), 2);
    QCOMPARE(fixture->window->currentIndex(), 0);
    QCOMPARE(fixture->plot().getDevMain(), 0);
    QCOMPARE(fixture->registry().getQWTIndex(0), 0);
    QCOMPARE(fixture->text(instruments, 1, InstrumentColumn::Channel), QString("-"));
    QCOMPARE(fixture->text(instruments, 1, InstrumentColumn::Menu), QString("<"));
    QCOMPARE(fixture->textColor(instruments, 1, InstrumentColumn::Name), QColor(Qt::lightGray));
    QCOMPARE(fixture->showBox(1)->property("noxIndex").toInt(), 0);
    QCOMPARE(fixture->title(), QString("-- № --"));
    QCOMPARE(fixture->channels()->rowCount(), 1);
}

void TestMainWindow::ignoresARefusedInstrument()
{
    fixture->add();
    emit fixture->registry().onAddNox(-1, false);
    QCOMPARE(fixture->instruments()->rowCount(), 2);
    QCOMPARE(fixture->plot().devices().keys(), QList<int>{0});
}

void TestMainWindow::fillsGapsOnThePlot()
{
    for (int i = 0; i < 3; ++i)
        fixture->add();
    fixture->registry().rmByIndex(1);
    QCOMPARE(fixture->plot().devices().keys(), (QList<int>{0, 2}));
    const int added = fixture->add();
    QCOMPARE(added, 3);
    QCOMPARE(fixture->registry().getQWTIndex(added), 1);
    QCOMPARE(fixture->instruments()->rowCount(), 4);
}

void TestMainWindow::sharesOneTimeOrigin()
{
    QDateTime now(QDate(2024, 3, 5), QTime(12, 0));
    fixture->plot().setClock([&now] { return now; });
    const int first = fixture->add();
    now = now.addSecs(10);
    const int second = fixture->add();
    now = now.addSecs(5);
    fixture->measure(first, 21, 0);
    fixture->measure(second, 22, 0);
    QCOMPARE(fixture->plot().getChTime(0, 0), 15.0);
    QCOMPARE(fixture->plot().getChTime(1, 0), 15.0);
}

void TestMainWindow::growsWithTheModel()
{
    const int index = fixture->add(0x41, 7);
    QCOMPARE(fixture->plot().getChCount(0), uchar(16));
    QCOMPARE(fixture->channels()->rowCount(), 17);
    QCOMPARE(fixture->text(fixture->channels(), 16, ChannelColumn::Number), QString("16"));
    QCOMPARE(fixture->text(fixture->channels(), 16, ChannelColumn::Unit), QString("Ω"));
    QCOMPARE(fixture->title(), QString("NOX CM1 № 0007"));

    optionsNOX8 *options = fixture->registry().getNoxByIndex(index)->opt.get();
    fixture->measure(index, 20, 12);
    QCOMPARE(fixture->text(fixture->instruments(), 1, InstrumentColumn::Channel), QString("13"));
    options->setDevType(0x11);
    QCOMPARE(fixture->channels()->rowCount(), 9);
    QCOMPARE(fixture->text(fixture->instruments(), 1, InstrumentColumn::Channel), QString("1"));
    options->setChMeasType(2, measTemperature, {});
    QCOMPARE(fixture->text(fixture->channels(), 3, ChannelColumn::Unit), QString("°С"));
}

void TestMainWindow::becomesCurrentByAClick()
{
    fixture->add(0x11, 1);
    fixture->add(0x41, 2);
    const QTableWidget *instruments = fixture->instruments();
    fixture->click(instruments, 2, InstrumentColumn::Menu);
    QCOMPARE(fixture->window->currentIndex(), 0);
    confMenu *const card = fixture->window->instrumentCard();
    QCOMPARE(card->findChild<QLabel *>("titleLabel")->text(), QString("NOX CM1 № 0002"));
    QTest::mouseClick(card->findChild<QToolButton *>("setupBtn"), Qt::LeftButton);
    QVERIFY(!card->isVisible() && fixture->window->deviceSettings()->isVisible());
    QVERIFY(fixture->window->deviceSettings()->windowTitle().endsWith("NOX CM1 № 0002"));
    fixture->window->deviceSettings()->reject();

    fixture->click(instruments, 2, InstrumentColumn::Number);
    QCOMPARE(fixture->window->currentIndex(), 1);
    QCOMPARE(fixture->plot().getDevMain(), 1);
    QCOMPARE(fixture->title(), QString("NOX CM1 № 0002"));
    QCOMPARE(fixture->channels()->rowCount(), 17);
    QVERIFY(instruments->item(2, InstrumentColumn::Name)->isSelected());
    QCOMPARE(fixture->background(instruments, 1, InstrumentColumn::Name), QColor());
    QCOMPARE(fixture->background(instruments, 2, InstrumentColumn::Name), currentColor());
    QVERIFY(!fixture->showBox(1)->isChecked());
    QVERIFY(fixture->showBox(2)->isChecked());

    const QRect header = instruments->visualRect(instruments->model()->index(0, 1));
    QTest::mouseClick(instruments->viewport(), Qt::LeftButton, {}, header.center());
    QCOMPARE(fixture->window->currentIndex(), 1);
}

void TestMainWindow::choosesTheNextCurrentInstrument_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("current");
    QTest::addColumn<int>("removed");
    QTest::addColumn<int>("next");
    QTest::addColumn<QString>("title");
    QTest::newRow("another one") << 3 << 1 << 2 << 1 << "NOX B № 0002";
    QTest::newRow("the first") << 3 << 0 << 0 << 2 << "NOX B № 0003";
    QTest::newRow("the last") << 3 << 2 << 2 << 1 << "NOX B № 0002";
    QTest::newRow("the only one") << 1 << 0 << 0 << -1 << "-";
}

void TestMainWindow::choosesTheNextCurrentInstrument()
{
    QFETCH(int, count);
    QFETCH(int, current);
    QFETCH(int, removed);
    QFETCH(int, next);
    for (int i = 0; i < count; ++i)
        fixture->add(0x11, quint16(i + 1));
    fixture->click(fixture->instruments(), current + 1, InstrumentColumn::Name);
    fixture->registry().rmByIndex(removed);

    QCOMPARE(fixture->window->currentIndex(), next);
    QCOMPARE(fixture->plot().getDevMain(), next);
    QTEST(fixture->title(), "title");
    QCOMPARE(fixture->instruments()->rowCount(), count);
    QCOMPARE(fixture->channels()->rowCount(), next < 0 ? 1 : 9);
    // what still comes in for the removed one finds nobody
    fixture->measure(removed, 21, 0);
    emit fixture->registry().onDevChange(removed);
    emit fixture->registry().onRmNox(removed, removed);
    QCOMPARE(fixture->window->currentIndex(), next);
}

void TestMainWindow::boxesStayWithTheirInstruments()
{
    for (int i = 0; i < 3; ++i)
        fixture->add(0x11, quint16(i + 1));
    fixture->registry().rmByIndex(1);
    fixture->showBox(2)->click();
    QVERIFY(fixture->plot().devices()[2].devShow);
    QVERIFY(fixture->showBox(2)->isChecked());
    fixture->showBox(1)->click();
    QVERIFY(!fixture->plot().devices()[0].devShow);
    QVERIFY(fixture->plot().devices()[2].devShow);
}

void TestMainWindow::tellsOfAFaultOnce()
{
    fixture->add(0x11, 1234);
    emit fixture->registry().onDevError(0, 200, "Обрыв связи [код 252]");
    QCOMPARE(fixture->dialogs.told.size(), 1);
    const Message &message = fixture->dialogs.told.first();
    QCOMPARE(message.icon, QMessageBox::Warning);
    QCOMPARE(message.title, QString("Неисправность прибора"));
    QCOMPARE(message.text, QString("ОШИБКА №200\nНеисправность прибора NOX B № 1234\n"
                                   "Обрыв связи [код 252]"));
    QCOMPARE(message.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));

    emit fixture->registry().onDevError(7, 200, "Обрыв связи [код 252]");
    QCOMPARE(fixture->dialogs.told.size(), 1);
}

void TestMainWindow::oldNumbersLookOld()
{
    noxList::_nox *nox = fixture->registry().getNoxByIndex(fixture->add(0x11, 1));
    const auto ground = [this](const char *frame) {
        return fixture->find<QFrame>(frame)->grab().toImage().pixelColor(6, 20);
    };
    for (const char *frame : {"frameMainLCDMeas", "frameMainLCDAver"}) {
        nox->devIndex = 0; // as if it were connected
        emit fixture->registry().onChange();
        QCOMPARE(ground(frame), QColor(Qt::white));
        nox->devIndex = -1;
        emit fixture->registry().onChange();
        QVERIFY(ground(frame) != QColor(Qt::white));
    }
}

void TestMainWindow::marksTheRowUnderTheMouse()
{
    for (int i = 0; i < 3; ++i)
        fixture->add(0x11, quint16(i + 1));
    QTableWidget *table = fixture->instruments();
    const auto marks = [this, table] {
        QStringList texts;
        for (int row = 1; row < table->rowCount(); ++row)
            texts << fixture->text(table, row, InstrumentColumn::Menu);
        return texts;
    };
    const auto shape = [table] { return table->viewport()->cursor().shape(); };

    const QTableWidgetItem *menu = table->item(2, InstrumentColumn::Menu);
    QTest::mouseMove(table->viewport(), table->visualItemRect(menu).center());
    QCOMPARE(marks(), (QStringList{"<", "☰", ""}));
    QCOMPARE(shape(), Qt::PointingHandCursor);
    QTest::mouseMove(fixture->showBox(3)); // which lies above the cell
    QCOMPARE(marks(), (QStringList{"<", "", "☰"}));
    QCOMPARE(shape(), Qt::ArrowCursor);
    emit table->cellEntered(1, InstrumentColumn::Menu);
    QCOMPARE(marks(), (QStringList{"<", "", ""}));
    emit table->cellEntered(0, InstrumentColumn::Menu);
    QCOMPARE(shape(), Qt::ArrowCursor);

    emit table->cellEntered(3, InstrumentColumn::Menu);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(table->viewport(), &leave);
    QCOMPARE(marks(), (QStringList{"<", "", ""}));

    // in the channel table the column of the difference opens a menu too
    emit fixture->channels()->cellEntered(2, ChannelColumn::Reference);
    QCOMPARE(fixture->channels()->viewport()->cursor().shape(), Qt::PointingHandCursor);
    QCOMPARE(fixture->text(fixture->channels(), 2, ChannelColumn::Menu), QString("☰"));
}

void TestMainWindow::widensThePlot()
{
    auto *button = fixture->find<QToolButton>("wideViewBtn");
    const auto *left = fixture->find<QWidget>("widget");
    QTRY_VERIFY(left->isVisible());
    const int narrow = fixture->plot().width();
    button->click();
    QVERIFY(!left->isVisible());
    QCOMPARE(button->arrowType(), Qt::RightArrow);
    QTRY_VERIFY(fixture->plot().width() > narrow + 400);
    button->click();
    QVERIFY(left->isVisible());
    QCOMPARE(button->arrowType(), Qt::LeftArrow);
    QTRY_COMPARE(fixture->plot().width(), narrow);
}

void TestMainWindow::fitsASmallScreen()
{
    const QSize least = fixture->window->minimumSizeHint();
    QCOMPARE(least.boundedTo({940, 490}), least);
}

void TestMainWindow::givesRoomToTheTableThatNeedsIt()
{
    const QTableWidget *table = fixture->instruments();
    const auto isSeen = [table](int row) {
        const QRect cell = table->visualRect(table->model()->index(row, 1));
        return table->viewport()->rect().contains(cell);
    };
    for (quint16 number = 1; number <= 8; ++number)
        fixture->add(0x11, number);
    QTRY_VERIFY(isSeen(1) && isSeen(8));
    for (quint16 number = 9; number <= 30; ++number) {
        fixture->add(0x11, number);
        QCoreApplication::processEvents();
        QVERIFY(isSeen(number));
    }
    table->verticalScrollBar()->setValue(table->rowHeight(0)); // a box lies below the title
    const QWidget *title = table->cellWidget(0, InstrumentColumn::Show);
    QCOMPARE(table->viewport()->childAt(title->geometry().center()), title);
    const QTableWidget *channels = fixture->channels();
    QCOMPARE(channels->verticalScrollBar()->maximum(), 0);

    // with more of both than there is room for, each has half; what one leaves the other one has
    fixture->add(0x41, 31);
    fixture->click(fixture->instruments(), 31, InstrumentColumn::Name);
    QTRY_VERIFY(qAbs(table->height() - channels->height()) <= 1);
    fixture->add(); // of an unknown model, without channels
    fixture->click(fixture->instruments(), 32, InstrumentColumn::Name);
    QTRY_COMPARE(channels->height(), channels->minimumHeight());
}

void TestMainWindow::closes()
{
    fixture->add(0x11, 1);
    fixture->find<QPushButton>("exitBtm")->click();
    QVERIFY(!fixture->window->isVisible());
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
