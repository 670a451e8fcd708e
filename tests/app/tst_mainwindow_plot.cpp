#include "windowfixture.h"

#include <qwt_plot_marker.h>

// Values on their way to the tables and panels, and what the tables and buttons do to the plot.

class TestMainWindowPlot : public QObject
{
    Q_OBJECT
private slots:
    void init() { fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { fixture.reset(); }

    void showsAPoint();
    void showsOtherInstrumentsInTheirRowOnly();
    void addsChannelsOnDemand();
    void showsARejectedPointUntilTheNext();
    void showsAnAlarmUntilTheNextPoint();
    void dimsWhatTheInstrumentDoesNotMeasure();
    void showsADifference();
    void readsTheLoggerBack();
    void makesAChannelTheMainOne_data();
    void makesAChannelTheMainOne();
    void hidesAChannel();
    void choosesAColour();
    void switchesCurveKindsByThePanels();
    void showsTheScalesInEffect();
    void changesScalesAndModes();
    void clearsThePlot_data();
    void clearsThePlot();
    void clearsNobodyElseInItsPlace();

private:
    QColor ground(int channel, int column) const
    {
        return fixture->background(fixture->channels(), channel + 1, column);
    }
    QString channelText(int channel, int column) const
    {
        return fixture->text(fixture->channels(), channel + 1, column);
    }
    QString instrumentText(int row, int column) const
    {
        return fixture->text(fixture->instruments(), row, column);
    }

    std::unique_ptr<WindowFixture> fixture;
};

void TestMainWindowPlot::showsAPoint()
{
    const int index = fixture->add(0x11, 1234);
    fixture->measure(index, 20.5, 0);
    fixture->measure(index, 21.5, 0);
    fixture->measure(index, 23.25, 2);

    QCOMPARE(fixture->label("mainMeasLabel"), QString("21.50"));
    QCOMPARE(fixture->label("mainAverLabel"), QString("21.00"));
    QCOMPARE(fixture->label("mainDimLabel"), QString("°С"));
    QCOMPARE(instrumentText(1, InstrumentColumn::Value), QString("23.25"));
    QCOMPARE(instrumentText(1, InstrumentColumn::Unit), QString("°С"));
    QCOMPARE(instrumentText(1, InstrumentColumn::Channel), QString("3"));

    QCOMPARE(channelText(0, ChannelColumn::Value), QString("21.50"));
    QCOMPARE(channelText(0, ChannelColumn::DeltaX), QString("0.0"));
    QCOMPARE(ground(0, ChannelColumn::Value), QColor());
    QCOMPARE(channelText(2, ChannelColumn::Value), QString("23.25"));
    QCOMPARE(ground(2, ChannelColumn::Value), freshColor());
}

void TestMainWindowPlot::showsOtherInstrumentsInTheirRowOnly()
{
    fixture->add(0x11, 1);
    const int other = fixture->add(0x11, 2);
    fixture->measure(other, 21.5, 0);
    QCOMPARE(instrumentText(1, InstrumentColumn::Value), QString("--"));
    QCOMPARE(instrumentText(2, InstrumentColumn::Value), QString("21.50"));
    QCOMPARE(channelText(0, ChannelColumn::Value), QString("--"));
    QCOMPARE(fixture->label("mainMeasLabel"), QString("--"));
    QCOMPARE(fixture->label("mainDimLabel"), QString());
}

void TestMainWindowPlot::addsChannelsOnDemand()
{
    const int index = fixture->add();
    fixture->measure(index, 21.5, 5);
    QCOMPARE(fixture->channels()->rowCount(), 7);
    QCOMPARE(channelText(5, ChannelColumn::Value), QString("21.50"));
    QCOMPARE(ground(5, ChannelColumn::Value), freshColor());
    QCOMPARE(channelText(4, ChannelColumn::Value), QString("--"));
}

void TestMainWindowPlot::showsARejectedPointUntilTheNext()
{
    const QColor yellow(Qt::yellow);
    const int index = fixture->add(0x11, 1);
    fixture->registry().getNoxByIndex(index)->devIndex = 0; // as if it were connected
    fixture->measure(index, 21.5, 0);
    fixture->measure(index, -1300, 0);
    fixture->registry().onChange(); // the mark outlives a refresh
    for (const int column : {ChannelColumn::Value, ChannelColumn::Unit, ChannelColumn::DeltaX,
                             ChannelColumn::DeltaY}) {
        QCOMPARE(channelText(0, column), QString("--"));
        QCOMPARE(ground(0, column), yellow);
    }
    QCOMPARE(ground(0, ChannelColumn::Reference), yellow);
    QCOMPARE(instrumentText(1, InstrumentColumn::Value), QString("--"));
    QCOMPARE(fixture->background(fixture->instruments(), 1, InstrumentColumn::Channel), yellow);
    QCOMPARE(fixture->label("mainMeasLabel"), QString("--"));

    fixture->measure(index, 21.5, 1);
    QCOMPARE(ground(0, ChannelColumn::Value), yellow);
    QCOMPARE(ground(1, ChannelColumn::Value), freshColor());
    fixture->measure(index, 21.5, 0);
    QCOMPARE(ground(0, ChannelColumn::Value), freshColor());
    QCOMPARE(channelText(0, ChannelColumn::Unit), QString("°С"));
    fixture->registry().getNoxByIndex(index)->devIndex = -1;
}

void TestMainWindowPlot::showsAnAlarmUntilTheNextPoint()
{
    const QColor red(Qt::red);
    const QColor black(Qt::black);
    const int index = fixture->add(0x11, 1);
    QwtNOX::_dev &device = fixture->plot().devices()[0];
    device.modeTrack = TrackUpper;
    device.upperMarker->setYValue(30);
    device.upperMarker->setVisible(true);

    fixture->measure(index, 31, 3);
    QCOMPARE(instrumentText(1, InstrumentColumn::Channel), QString("4 (!)"));
    QCOMPARE(fixture->textColor(fixture->instruments(), 1, InstrumentColumn::Value), red);
    QCOMPARE(fixture->textColor(fixture->channels(), 4, ChannelColumn::Value), red);
    fixture->measure(index, 21, 0);
    QCOMPARE(fixture->textColor(fixture->instruments(), 1, InstrumentColumn::Value), black);
    QCOMPARE(fixture->textColor(fixture->channels(), 4, ChannelColumn::Value), red);
    fixture->measure(index, 29, 3);
    QCOMPARE(fixture->textColor(fixture->channels(), 4, ChannelColumn::Value), black);
    QCOMPARE(instrumentText(1, InstrumentColumn::Channel), QString("4"));
}

void TestMainWindowPlot::dimsWhatTheInstrumentDoesNotMeasure()
{
    const int index = fixture->add(0x11, 1);
    fixture->registry().getNoxByIndex(index)->opt->setChOnOff(1, 0);
    fixture->measure(index, 21, 1);
    QCOMPARE(fixture->textColor(fixture->channels(), 2, ChannelColumn::Value),
             QColor(Qt::lightGray));
    QCOMPARE(ground(1, ChannelColumn::Value), freshColor());
    fixture->measure(index, 21, 0);
    QCOMPARE(fixture->textColor(fixture->channels(), 1, ChannelColumn::Value), QColor(Qt::black));
}

void TestMainWindowPlot::showsADifference()
{
    fixture->add(0x11, 1);
    const int reference = fixture->add(0x31, 77);
    QwtNOX::_ch &channel = fixture->plot().devices()[0].ch[1];
    channel.diffQwtIndex = 1;
    channel.diffCh = 4;
    fixture->window->updUI();
    QCOMPARE(channelText(1, ChannelColumn::Reference), QString("5"));
    QCOMPARE(fixture->channels()->item(2, ChannelColumn::Reference)->toolTip(),
             QString("Разность с NOX D №0077, канал №5"));
    fixture->registry().rmByIndex(reference);
    QCOMPARE(channelText(1, ChannelColumn::Reference), QString("-"));
}

void TestMainWindowPlot::readsTheLoggerBack()
{
    const int index = fixture->add(0x11, 1);
    fixture->measure(index, 1, 0);
    const QDateTime start(QDate(2024, 3, 5), QTime(12, 0));
    emit fixture->registry().onReadRec(
        index, {{0, {{0, 20, "°С"}, {10, -2000, "°С"}, {20, 22, "°С"}}}, {3, {{5, 19, "мВ"}}}},
        start);
    fixture->showFrame();
    QCOMPARE(fixture->plot().getStartDateTime(0), start);
    QCOMPARE(fixture->plot().getChMeasCount(0, 0), 2);
    QCOMPARE(fixture->plot().getChTime(0, 0), 20.0);
    QCOMPARE(fixture->plot().getChMeas(0, 3), 19.0);
    QCOMPARE(channelText(3, ChannelColumn::Unit), QString("мВ"));
}

void TestMainWindowPlot::makesAChannelTheMainOne_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("main");
    QTest::newRow("value") << int(ChannelColumn::Value) << true;
    QTest::newRow("unit") << int(ChannelColumn::Unit) << true;
    QTest::newRow("delta X") << int(ChannelColumn::DeltaX) << true;
    QTest::newRow("delta Y") << int(ChannelColumn::DeltaY) << true;
    QTest::newRow("difference") << int(ChannelColumn::Reference) << false;
    QTest::newRow("menu") << int(ChannelColumn::Menu) << false;
}

void TestMainWindowPlot::makesAChannelTheMainOne()
{
    QFETCH(int, column);
    QFETCH(bool, main);
    fixture->add(0x11, 1);
    fixture->measure(0, 25, 2);
    fixture->click(fixture->channels(), 3, column);
    const int expected = main ? 2 : 0;
    QCOMPARE(fixture->plot().getChMain(0), expected);
    QCOMPARE(channelText(2, ChannelColumn::Menu), QString(main ? "<" : ""));
    QCOMPARE(ground(2, ChannelColumn::Number), main ? currentColor() : QColor());
    QCOMPARE(fixture->label("mainMeasLabel") != "--", main);
    for (int channel = 0; channel < 8; ++channel)
        QCOMPARE(fixture->channels()->item(channel + 1, 1)->isSelected(), channel == expected);
}

void TestMainWindowPlot::hidesAChannel()
{
    fixture->add(0x11, 1);
    const auto pixel = [this] {
        const QIcon icon = fixture->channels()->item(2, ChannelColumn::Number)->icon();
        return icon.pixmap(16, 16).toImage().pixelColor(8, 8);
    };
    QCOMPARE(pixel(), QColor(Qt::blue));
    fixture->click(fixture->channels(), 2, ChannelColumn::Number);
    QVERIFY(!fixture->plot().getChShow(0, 1));
    QCOMPARE(pixel().alpha(), 0);
    fixture->click(fixture->channels(), 2, ChannelColumn::Number, Qt::MiddleButton);
    QVERIFY(!fixture->plot().getChShow(0, 1));
    fixture->click(fixture->channels(), 2, ChannelColumn::Number);
    QVERIFY(fixture->plot().getChShow(0, 1));
    QCOMPARE(pixel(), QColor(Qt::blue));
}

void TestMainWindowPlot::choosesAColour()
{
    fixture->add(0x11, 1);
    const auto rightClick = [this] {
        fixture->click(fixture->channels(), 2, ChannelColumn::Number, Qt::RightButton);
    };
    rightClick();
    QCOMPARE(fixture->dialogs.offeredColors, QVector<QColor>{Qt::blue});
    QCOMPARE(fixture->plot().getChColor(0, 1), QColor(Qt::blue));

    fixture->dialogs.color = Qt::magenta;
    rightClick();
    QCOMPARE(fixture->plot().getChColor(0, 1), QColor(Qt::magenta));
    QVERIFY(fixture->plot().getChShow(0, 1));

    fixture->plot().setChShow(false, 0, 1);
    rightClick();
    QCOMPARE(fixture->dialogs.offeredColors.size(), 2);
}

void TestMainWindowPlot::switchesCurveKindsByThePanels()
{
    const int index = fixture->add();
    auto *value = fixture->find<QLabel>("mainMeasLabel");
    QTest::mouseClick(value, Qt::LeftButton);
    QVERIFY(!fixture->plot().getMeasShow());
    QCOMPARE(value->styleSheet(), QString("color: gray;"));
    QTest::mouseClick(value, Qt::LeftButton);
    QVERIFY(fixture->plot().getMeasShow());
    QCOMPARE(value->styleSheet(), QString("color: #215767;"));

    auto *average = fixture->find<QLabel>("mainAverLabel");
    QTest::mouseClick(average, Qt::LeftButton);
    QVERIFY(!fixture->plot().getAverShow());
    QVERIFY(fixture->plot().getMeasShow());
    QCOMPARE(average->styleSheet(), QString("color: gray;"));

    // the next one that the database does not know takes over what is stored for all of those
    fixture->registry().rmByIndex(index);
    QCOMPARE(average->styleSheet(), QString("color: #215767;"));
    fixture->add();
    QCOMPARE(average->styleSheet(), QString("color: gray;"));
}

void TestMainWindowPlot::showsTheScalesInEffect()
{
    QDateTime now(QDate(2024, 3, 5), QTime(12, 0));
    fixture->plot().setClock([&now] { return now; });
    const int index = fixture->add(0x11, 1);
    const auto *button = fixture->find<QPushButton>("dXBtn");
    fixture->measure(index, 21, 0);
    QCOMPARE(button->text(), QString("X: 1 сек."));
    // the plot chooses a coarser step by itself
    now = now.addSecs(65);
    fixture->measure(index, 21, 0);
    QCOMPARE(button->text(), QString("X: 10 сек."));
}

void TestMainWindowPlot::changesScalesAndModes()
{
    fixture->add(0x11, 1);
    const auto press = [this](const char *name) { fixture->find<QPushButton>(name)->click(); };
    const auto caption = [this](const char *name) {
        return fixture->find<QPushButton>(name)->text();
    };
    press("modeXBtn");
    QCOMPARE(caption("modeXBtn"), QString("АБС"));

    const auto *scaleX = fixture->find<QPushButton>("dXBtn")->menu();
    QCOMPARE(scaleX->actions().size(), 19);
    scaleX->actions().at(7)->trigger();
    QCOMPARE(fixture->plot().getChScaleX(), uchar(7));
    QCOMPARE(caption("modeBtn"), QString("СЛЕЖЕНИЕ"));
    const auto *scaleY = fixture->find<QPushButton>("dYBtn")->menu();
    QCOMPARE(scaleY->actions().size(), 30);
    scaleY->actions().at(16)->trigger();
    QCOMPARE(fixture->plot().getChScaleY(), uchar(16));

    press("modeBtn");
    QCOMPARE(caption("modeBtn"), QString("АВТО"));
    press("modeBtn");
    QCOMPARE(caption("modeBtn"), QString("СЛЕЖЕНИЕ"));

    fixture->plot().setChMode(ModeZoom);
    QVERIFY(fixture->find<QToolButton>("qwtZoomBtn")->isChecked());
    QVERIFY(!fixture->find<QToolButton>("qwtMeasBtn")->isChecked());
    fixture->plot().setChMode(ModeMeasure);
    QVERIFY(!fixture->find<QToolButton>("qwtZoomBtn")->isChecked());
    QVERIFY(fixture->find<QToolButton>("qwtMeasBtn")->isChecked());
}

void TestMainWindowPlot::clearsThePlot_data()
{
    QTest::addColumn<int>("entry");
    QTest::addColumn<bool>("yes");
    QTest::addColumn<int>("firstLeft");
    QTest::addColumn<int>("secondLeft");
    QTest::newRow("all") << 0 << true << 0 << 0;
    QTest::newRow("the second") << 3 << true << 1 << 0;
    QTest::newRow("refused") << 0 << false << 1 << 1;
}

void TestMainWindowPlot::clearsThePlot()
{
    QFETCH(int, entry);
    QFETCH(bool, yes);
    for (int i = 0; i < 2; ++i)
        fixture->measure(fixture->add(0x11, quint16(i + 1)), 21, 0);
    fixture->dialogs.answer = yes ? QMessageBox::Yes : QMessageBox::No;
    QMenu *menu = fixture->find<QToolButton>("clearBtn")->menu();
    emit menu->aboutToShow();
    menu->actions().at(entry)->trigger();

    QCOMPARE(fixture->dialogs.asked.size(), 1);
    const Message &question = fixture->dialogs.asked.first();
    QCOMPARE(question.text, QString("Очистить график?"));
    QCOMPARE(question.title, fixture->window->windowTitle());
    QCOMPARE(question.defaultButton, QMessageBox::No);
    QTEST(fixture->plot().getChMeasCount(0, 0), "firstLeft");
    QTEST(fixture->plot().getChMeasCount(1, 0), "secondLeft");
    QCOMPARE(instrumentText(2, InstrumentColumn::Value) == "--", yes);
}

void TestMainWindowPlot::clearsNobodyElseInItsPlace()
{
    const int index = fixture->add(0x11, 1);
    QMenu *menu = fixture->find<QToolButton>("clearBtn")->menu();
    emit menu->aboutToShow();
    // while the question is open, another instrument takes the place on the plot
    UserDialogs::current().ask = [this, index](QWidget *, const Message &) {
        fixture->registry().rmByIndex(index);
        fixture->measure(fixture->add(0x11, 2), 21, 0);
        return QMessageBox::Yes;
    };
    menu->actions().last()->trigger();
    QCOMPARE(fixture->plot().getChMeasCount(0, 0), 1);
}

QTEST_MAIN(TestMainWindowPlot)
#include "tst_mainwindow_plot.moc"
