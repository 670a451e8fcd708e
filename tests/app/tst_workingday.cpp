#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "plot/plotmouse.h"
#include "serial/noxserialport.h"
#include "support/instrumentbench.h"
#include "windowfixture.h"

/**
 * One day with the program, from its first start to the second: what the operator does with mouse
 * and keyboard, what the window shows, and every byte that reaches the instrument. The episodes
 * follow each other; each goes on where the one before has ended.
 */
class TestWorkingDay : public WindowTest
{
    Q_OBJECT
    static constexpr int patienceMs = 30000;
    static constexpr int bath = 1;    ///< row of the instrument that is found, on the port SIM1
    static constexpr int another = 2; ///< row of the one that is connected by hand, on SIM2

    QString cell(int row, int column) const { return cells(instruments(), row).at(column); }
    bool measures(int row) const
    {
        return instruments()->rowCount() > row &&
               !cell(row, InstrumentColumn::Value).startsWith("--");
    }
    /** A control of the card that is open. */
    static QWidget *inCard(const char *name)
    {
        return QApplication::activePopupWidget()->findChild<QWidget *>(name);
    }
    static void pressInCard(const char *name) { QTest::mouseClick(inCard(name), Qt::LeftButton); }
    void pressIn(const char *dialog, std::initializer_list<const char *> names) const
    {
        for (const char *name : names)
            QTest::mouseClick(find(dialog)->findChild<QWidget *>(name), Qt::LeftButton);
    }
    void pickFromButton(const char *button, const QString &entry) const
    {
        QTimer::singleShot(100, this, [entry] { pickEntry(entry); });
        press(button); // which returns when the menu has closed
    }
    void openCard(int row) const { click(instruments(), row, InstrumentColumn::Menu); }
    optionsNOX8 &image() const { return *record(0).opt; }
    QByteArray held() { return bench->host.block("SIM1", configurationAddress); }
    /** Changes a byte of what the instrument has to hold. */
    void expect(int position, int kept, int set)
    {
        expected[position] = char((expected.at(position) & kept) | set);
    }
    void begin()
    {
        start();
        window->serialPort()->setLinkTiming(shortTiming());
        registry().setWriteDelay(300);
    }

    QTemporaryDir folder;
    std::unique_ptr<InstrumentBench> bench;
    QByteArray expected; ///< configuration block that the instrument has to hold

private slots:
    void init() {} // the day goes on from one episode to the next
    void cleanup() {}

    void initTestCase()
    {
        prepare();
        bench = std::make_unique<InstrumentBench>();
        SimulatedInstrumentOptions options = bench->steadyInstrument();
        options.identity.modelName = "NOX CM";
        options.identity.loggerMarks = 20;
        QVERIFY(bench->add("SIM1", options));
        expected = held();
        begin();
    }

    void firstStartFindsTheInstrument()
    {
        QTRY_VERIFY_WITH_TIMEOUT(measures(bath), patienceMs);
        QVERIFY(instrument(bath).startsWith("[current]|NOX CM[current]|1234[current]|"));
        QCOMPARE(title(), "NOX CM № 1234");
        QCOMPARE(channels()->rowCount(), 9);
        QCOMPARE(taken(image().getData()), expected);
        QVERIFY(dialogs.told.isEmpty() && dialogs.asked.isEmpty());
        // while a block is read the row tells why it is silent
        const auto tip = [this] { return instruments()->item(bath, 3)->toolTip().left(7); };
        window->serialPort()->sendDevQuery(0, 3, 72);
        QTRY_COMPARE_WITH_TIMEOUT(tip(), "Идёт об", patienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(tip(), "Принято", patienceMs);
    }

    void anotherIsConnectedByHand()
    {
        QVERIFY(bench->add("SIM2"));
        pickFromButton("addDevBtn", "SIM2");
        QTRY_VERIFY_WITH_TIMEOUT(measures(another), patienceMs);
        QVERIFY(instrument(another).startsWith("|--|--|"));
        QCOMPARE(title(), "NOX CM № 1234");
    }

    void thePlotIsArranged()
    {
        click(channels(), 3, ChannelColumn::Value);
        dialogs.color = QColor("#7b1fa2");
        click(channels(), 3, ChannelColumn::Number, Qt::RightButton);
        QVERIFY(channel(2).endsWith("<[current]"));
        QCOMPARE(plot().getChColor(0, 2), dialogs.color);

        // a limit below what is measured
        QTRY_VERIFY_WITH_TIMEOUT(plot().getChMeasCount(0, 2) > 12, patienceMs);
        PlotMouse mouse(plot());
        const double value = plot().getChMeas(0, 2, -1, false);
        pickFromButton("trackBtn", "Верхний предел");
        const int below = mouse.pixel(0, value).y() + 40;
        mouse.drag(mouse.middle(), {mouse.middle().x(), below});
        QTRY_VERIFY_WITH_TIMEOUT(soundsPlayed > 0, patienceMs);
        QTRY_VERIFY(channel(2).contains("[red"));
        pickFromButton("trackBtn", "Выкл.");
        for (int ch = 0; ch < 8; ++ch)
            QTRY_VERIFY(!channel(ch).contains("[red"));
    }

    /** A setting of the instrument, and a channel switched off: each by its card. */
    void theInstrumentIsSet()
    {
        openCard(bath);
        QTest::keyClick(inCard("devMeasRoundCB"), Qt::Key_Home); // "0.1"
        QCOMPARE(held(), expected); // nothing is written before it is applied
        pressInCard("applyBtn");
        expect(1, 0x0F, 0);
        QTRY_COMPARE_WITH_TIMEOUT(held(), expected, patienceMs);

        click(channels(), 5, ChannelColumn::Menu);
        pressInCard("switchLabel");
        expect(4 + 4 * 4, 0, 0);
        QTRY_COMPARE_WITH_TIMEOUT(held(), expected, patienceMs);
        QVERIFY(channel(4).contains("[gray"));
    }

    void theLoggerIsRead()
    {
        openCard(bath);
        pressInCard("readLogBtn");
        const QDateTime recorded({2023, 5, 17}, {9, 30});
        QTRY_COMPARE_WITH_TIMEOUT(plot().getStartDateTime(), recorded, patienceMs);
        QVERIFY(plot().getChMeasCount(0, 0) >= 20);
    }

    void resultsAreKept()
    {
        const QString record = dialogs.file = folder.filePath("record.csv");
        press("recBtn");
        pressIn("recmeas", {"selectFileBtn", "saveBtn", "closeBtn"});
        dialogs.file = folder.filePath("table.csv");
        press("toolButton_2");
        pressIn("savemeas", {"selectFileBtn", "saveBtn"});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(dialogs.file).size() > 1000, patienceMs);
        pressIn("savemeas", {"closeBtn"});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(record).size() > 500, patienceMs);
        QVERIFY(dialogs.told.isEmpty());
    }

    void thePlugIsPulledAndReturns()
    {
        bench->host.unplug("SIM1");
        const auto name = [this](int row) { return cell(row, InstrumentColumn::Name); };
        QTRY_COMPARE_WITH_TIMEOUT(name(bath), "NOX CM[gray current]", patienceMs);
        QTRY_COMPARE(dialogs.told.size(), 1);
        QVERIFY(dialogs.told.first().text.contains("Обрыв связи"));
        const auto goesOn = [this](int qwtIndex) {
            const int points = plot().getChMeasCount(qwtIndex, 0);
            QTRY_VERIFY_WITH_TIMEOUT(plot().getChMeasCount(qwtIndex, 0) > points, patienceMs);
        };
        goesOn(1);
        QCOMPARE(name(another), "--");
        bench->host.plugIn("SIM1");
        openCard(bath);
        pressInCard("connectBtn");
        QTRY_COMPARE_WITH_TIMEOUT(name(bath), "NOX CM[current]", patienceMs);
        goesOn(0);
        QCOMPARE(held(), expected);
        QCOMPARE(taken(image().getData()), expected);
    }

    void theDayEnds()
    {
        openCard(another);
        pressInCard("removeBtn");
        QTRY_COMPARE_WITH_TIMEOUT(instruments()->rowCount(), 2, patienceMs);
        menuOf("settingsBtn")->findChildren<QCheckBox *>().last()->click();
        press("exitBtm");
        QCOMPARE(dialogs.asked.last().title, "Выход из программы");
        QVERIFY(window->isVisible() && measures(bath));
        // what has just been applied is written before the window goes
        openCard(bath);
        QTest::keyClick(inCard("devMeasTimeCB"), Qt::Key_End); // "9"
        pressInCard("applyBtn");
        expect(0, 0x0F, 0x80);
        dialogs.answer = QMessageBox::Yes;
        press("exitBtm");
        QVERIFY(window->isVisible() && !find("centralwidget")->isEnabled());
        QVERIFY(window->windowTitle().endsWith(" — запись настроек в приборы, затем выход"));
        QTRY_VERIFY_WITH_TIMEOUT(!window->isVisible(), patienceMs);
        QCOMPARE(held(), expected);
        window.reset();
        bench->host.remove("SIM2");
    }

    void theNextDayBeginsWhereThisOneEnded()
    {
        begin();
        QTRY_VERIFY_WITH_TIMEOUT(measures(bath), patienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(taken(image().getData()), expected, patienceMs);
        QVERIFY(channel(2).endsWith("<[current]"));
        QCOMPARE(plot().getChColor(0, 2), QColor("#7b1fa2"));
        QVERIFY(channel(4).contains("[gray"));
        QCOMPARE(held(), expected);
        // the window may go while measurements come
        QElapsedTimer closing;
        closing.start();
        window.reset();
        QVERIFY2(closing.elapsed() < 10000, "a worker did not end");
    }
};

QTEST_MAIN(TestWorkingDay)
#include "tst_workingday.moc"
