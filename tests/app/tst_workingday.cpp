#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
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
    confMenu *openCard(int row) const
    {
        click(instruments(), row, InstrumentColumn::Menu);
        return window->instrumentCard();
    }
    optionsNOX8 &image() const { return *record(0).opt; }
    QByteArray held() { return bench->host.block("SIM1", configurationAddress); }
    void begin()
    {
        start();
        window->serialPort()->setLinkTiming(shortTiming());
        registry().setWriteDelay(300);
    }

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

    void instrumentsAreFoundAndConnected()
    {
        QTRY_VERIFY_WITH_TIMEOUT(measures(bath), patienceMs);
        QVERIFY(instrument(bath).startsWith("[current]|NOX CM[current]|1234[current]|"));
        QCOMPARE(channels()->rowCount(), 9);
        QCOMPARE(taken(image().getData()), expected);
        QVERIFY(answers->told.isEmpty() && answers->asked.isEmpty());
        QVERIFY(bench->add("SIM2"));
        pick(menuOf("addDevBtn"), "SIM2");
        QTRY_VERIFY_WITH_TIMEOUT(measures(another), patienceMs);
        QVERIFY(instrument(another).startsWith("|--|--|"));
        QCOMPARE(title(), "NOX CM № 1234");
        // while a block is read the row tells why it is silent
        const auto tip = [this] { return instruments()->item(bath, 3)->toolTip().left(7); };
        window->serialPort()->sendDevQuery(0, 3, 72);
        QTRY_COMPARE_WITH_TIMEOUT(tip(), "Идёт об", patienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(tip(), "Принято", patienceMs);
    }

    void thePlotIsArranged()
    {
        click(channels(), 3, ChannelColumn::Value);
        answers->color = QColor("#7b1fa2");
        click(channels(), 3, ChannelColumn::Number, Qt::RightButton);
        QVERIFY(channel(2).endsWith("<[current]"));
        QCOMPARE(plot().getChColor(0, 2), answers->color);
    }

    /** A setting of the instrument, and a channel switched off: each by its card. */
    void theInstrumentIsSet()
    {
        confMenu *const card = openCard(bath);
        QTest::keyClick(card->findChild<QWidget *>("devMeasRoundCB"), Qt::Key_Home); // "0.1"
        QCOMPARE(held(), expected); // nothing is written before it is applied
        pressIn(card, {"applyBtn"});
        expected[1] = char(expected.at(1) & 0x0F);
        QTRY_COMPARE_WITH_TIMEOUT(held(), expected, patienceMs);
        click(channels(), 5, ChannelColumn::Menu);
        pressIn(window->channelCard(), {"switchLabel"});
        expected[4 + 4 * 4] = 0;
        QTRY_COMPARE_WITH_TIMEOUT(held(), expected, patienceMs);
        QVERIFY(channel(4).contains("[gray"));
    }

    void resultsAreKept()
    {
        pressIn(openCard(bath), {"readLogBtn"});
        const QDateTime recorded({2023, 5, 17}, {9, 30});
        QTRY_COMPARE_WITH_TIMEOUT(plot().getStartDateTime(), recorded, patienceMs);
        QVERIFY(plot().getChMeasCount(0, 0) >= 20);
        const QString record = answers->file = data->filePath("record.csv");
        press("recBtn");
        pressIn(find("recmeas"), {"selectFileBtn", "saveBtn", "closeBtn"});
        answers->file = data->filePath("table.csv");
        press("toolButton_2");
        pressIn(find("savemeas"), {"selectFileBtn", "saveBtn"});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(answers->file).size() > 1000, patienceMs);
        pressIn(find("savemeas"), {"closeBtn"});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(record).size() > 500, patienceMs);
        QVERIFY(answers->told.isEmpty());
    }

    void thePlugIsPulledAndReturns()
    {
        bench->host.unplug("SIM1");
        const auto name = [this](int row) { return cell(row, InstrumentColumn::Name); };
        QTRY_COMPARE_WITH_TIMEOUT(name(bath), "NOX CM[gray current]", patienceMs);
        QTRY_COMPARE(answers->told.size(), 1);
        QVERIFY(answers->told.first().text.contains("Обрыв связи"));
        const auto goesOn = [this](int qwtIndex) {
            const int points = plot().getChMeasCount(qwtIndex, 0);
            QTRY_VERIFY_WITH_TIMEOUT(plot().getChMeasCount(qwtIndex, 0) > points, patienceMs);
        };
        goesOn(1);
        QCOMPARE(name(another), "--");
        bench->host.plugIn("SIM1");
        pressIn(openCard(bath), {"connectBtn"});
        QTRY_COMPARE_WITH_TIMEOUT(name(bath), "NOX CM[current]", patienceMs);
        goesOn(0);
        QCOMPARE(held(), expected);
        QCOMPARE(taken(image().getData()), expected);
    }

    void theDayEnds()
    {
        pressIn(openCard(another), {"removeBtn"});
        QTRY_COMPARE_WITH_TIMEOUT(instruments()->rowCount(), 2, patienceMs);
        menuOf("settingsBtn")->findChildren<QCheckBox *>().last()->click();
        press("exitBtm");
        QCOMPARE(answers->asked.last().title, "Выход из программы");
        QVERIFY(window->isVisible() && measures(bath));
        // what has just been applied is written before the window goes
        confMenu *const card = openCard(bath);
        QTest::keyClick(card->findChild<QWidget *>("devMeasTimeCB"), Qt::Key_End); // "9"
        pressIn(card, {"applyBtn"});
        expected[0] = char((expected.at(0) & 0x0F) | 0x80);
        answers->answer = QMessageBox::Yes;
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
