#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "device/vocabulary.h"
#include "dialogs/confchmenu.h"
#include "dialogs/confmenu.h"
#include "plot/plotmouse.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "support/instrumentbench.h"
#include "support/menukeys.h"
#include "windowfixture.h"

/**
 * One day with the program, from its first start to the second: what the operator does with mouse
 * and keyboard, what the window shows, and every byte that reaches the instrument. The episodes
 * follow each other; each goes on where the one before has ended.
 */
class TestWorkingDay : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void firstStartFindsTheInstrument();
    void anotherIsConnectedByHand();
    void thePlotIsArranged();
    void theInstrumentIsSet();
    void aCharacteristicIsEdited();
    void theLoggerIsRead();
    void resultsAreKept();
    void thePlugIsPulledAndReturns();
    void theDayEnds();
    void theNextDayBeginsWhereThisOneEnded();
    void cleanupTestCase();

private:
    static constexpr int patienceMs = 30000;
    static constexpr int bath = 1;    ///< row of the instrument that is found, on the port SIM1
    static constexpr int another = 2; ///< row of the one that is connected by hand, on SIM2

    void start();
    QString instrument(int row, int column) const
    {
        return m_fixture.text(m_fixture.instruments(), row, column);
    }
    QString channel(int row, int column) const
    {
        return m_fixture.text(m_fixture.channels(), row, column);
    }
    bool measures(int row) const
    {
        const QTableWidget *table = m_fixture.instruments();
        return table->rowCount() > row && instrument(row, InstrumentColumn::Value) != "--";
    }
    void press(const char *name) const
    {
        QTest::mouseClick(m_fixture.find<QWidget>(name), Qt::LeftButton);
    }
    /** A control of the card that is open. */
    static QWidget *inCard(const char *name)
    {
        return QApplication::activePopupWidget()->findChild<QWidget *>(name);
    }
    static void pressInCard(const char *name) { QTest::mouseClick(inCard(name), Qt::LeftButton); }
    void pickFromButton(const char *button, const QString &entry) const;
    void openInstrumentCard(int row) const
    {
        m_fixture.click(m_fixture.instruments(), row, InstrumentColumn::Menu);
    }
    void openChannelCard(int row) const
    {
        m_fixture.click(m_fixture.channels(), row, ChannelColumn::Menu);
    }
    optionsNOX8 &image() const { return *m_fixture.registry().getNoxByIndex(0)->opt; }
    QByteArray held() { return m_bench.host.block("SIM1", configurationAddress); }

    WindowFixture m_fixture;
    InstrumentBench m_bench;
    QTemporaryDir m_folder;
    QByteArray m_expected; ///< configuration block that the instrument has to hold
};

void TestWorkingDay::start()
{
    m_fixture.window->serialPort()->setLinkTiming(shortTiming());
    m_fixture.registry().setWriteDelay(300);
    m_fixture.window->resize(1280, 800);
    m_fixture.window->show();
}

void TestWorkingDay::initTestCase()
{
    SimulatedInstrumentOptions options = m_bench.steadyInstrument();
    options.identity.modelName = "NOX CM";
    options.identity.loggerMarks = 20;
    QVERIFY(m_bench.add("SIM1", options));
    m_expected = held();
    start();
}

void TestWorkingDay::firstStartFindsTheInstrument()
{
    QTRY_VERIFY_WITH_TIMEOUT(measures(bath), patienceMs);
    QCOMPARE(instrument(bath, InstrumentColumn::Name), "NOX CM");
    QCOMPARE(instrument(bath, InstrumentColumn::Number), "1234");
    QCOMPARE(m_fixture.title(), "NOX CM № 1234");
    QCOMPARE(m_fixture.channels()->rowCount(), 9);
    QCOMPARE(taken(image().getData()), m_expected);
    QVERIFY(m_fixture.dialogs.told.isEmpty() && m_fixture.dialogs.asked.isEmpty());
}

void TestWorkingDay::pickFromButton(const char *button, const QString &entry) const
{
    QTimer::singleShot(100, this, [entry] { pickEntry(entry); });
    press(button); // which returns when the menu has closed
}

void TestWorkingDay::anotherIsConnectedByHand()
{
    QVERIFY(m_bench.add("SIM2"));
    pickFromButton("addDevBtn", "SIM2");
    QTRY_VERIFY_WITH_TIMEOUT(measures(another), patienceMs);
    QCOMPARE(instrument(another, InstrumentColumn::Number), "--");
    QCOMPARE(m_fixture.title(), "NOX CM № 1234");
}

void TestWorkingDay::thePlotIsArranged()
{
    QwtNOX &plot = m_fixture.plot();
    m_fixture.click(m_fixture.channels(), 3, ChannelColumn::Value);
    QCOMPARE(channel(3, ChannelColumn::Menu), "<");

    m_fixture.dialogs.color = QColor("#7b1fa2");
    m_fixture.click(m_fixture.channels(), 3, ChannelColumn::Number, Qt::RightButton);
    const QIcon swatch = m_fixture.channels()->item(3, ChannelColumn::Number)->icon();
    QCOMPARE(swatch.pixmap(9).toImage().pixelColor(4, 4), QColor("#7b1fa2"));

    // a limit below what is measured
    QTRY_VERIFY_WITH_TIMEOUT(plot.getChMeasCount(0, 2) > 12, patienceMs);
    PlotMouse mouse(plot);
    const double value = plot.getChMeas(0, 2, -1, false);
    pickFromButton("trackBtn", "Верхний предел");
    const QPoint below = mouse.pixel(0, value) + QPoint(0, 40);
    mouse.drag(mouse.middle(), {mouse.middle().x(), below.y()});
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture.soundsPlayed > 0, patienceMs);
    QTRY_COMPARE(m_fixture.textColor(m_fixture.channels(), 3, ChannelColumn::Value),
                 QColor(Qt::red));
    pickFromButton("trackBtn", "Выкл.");
    for (int row = 1; row <= 8; ++row)
        QTRY_VERIFY(m_fixture.textColor(m_fixture.channels(), row, ChannelColumn::Value) !=
                    QColor(Qt::red));

    // two points of a measurement, and off again
    mouse.click(mouse.middle() - QPoint(50, 0));
    mouse.click(mouse.middle() + QPoint(50, 0));
    QTRY_VERIFY(!channel(3, ChannelColumn::DeltaX).isEmpty());
    mouse.click(mouse.middle(), Qt::RightButton);
    mouse.click(mouse.middle(), Qt::RightButton);
}

/** A setting of the instrument, a channel switched off, a characteristic: each by its card. */
void TestWorkingDay::theInstrumentIsSet()
{
    openInstrumentCard(bath);
    QTest::keyClick(inCard("devMeasRoundCB"), Qt::Key_Home); // "0.1"
    QCOMPARE(held(), m_expected); // nothing is written before it is applied
    pressInCard("applyBtn");
    m_expected[1] = char(m_expected.at(1) & 0x0F);
    QTRY_COMPARE_WITH_TIMEOUT(held(), m_expected, patienceMs);

    openChannelCard(5);
    pressInCard("switchLabel");
    m_expected[4 + 4 * 4] = 0;
    QTRY_COMPARE_WITH_TIMEOUT(held(), m_expected, patienceMs);
    QCOMPARE(m_fixture.textColor(m_fixture.channels(), 5, ChannelColumn::Unit),
             QColor(Qt::lightGray));

    openChannelCard(2);
    pressInCard("featureLabel");
    pickEntry("НСХ ТС/" + standardResistanceThermometers().at(1));
    pressInCard("applyBtn");
    m_expected[4 + 4 + 2] = char((m_expected.at(4 + 4 + 2) & 0xF0) | 1);
    m_expected[4 + 4 + 3] = char((m_expected.at(4 + 4 + 3) & 0x3F) | 0x40);
    QTRY_COMPARE_WITH_TIMEOUT(held(), m_expected, patienceMs);
}

void TestWorkingDay::aCharacteristicIsEdited()
{
    openChannelCard(1);
    QTimer::singleShot(500, this, [this] {
        QWidget *const editor = QApplication::activeModalWidget();
        QVERIFY(editor);
        auto *const name = editor->findChild<QLineEdit *>("featName");
        name->selectAll();
        QTest::keyClicks(name, "Heater");
        QTest::mouseClick(editor->findChild<QWidget *>("pushButton"), Qt::LeftButton);
    });
    pressInCard("editBtn");
    pickEntry(image().getFeatureInfStrList().at(2));
    QTRY_COMPARE_WITH_TIMEOUT(image().getFeatureInfStrList().at(2), "Heater", patienceMs);

    // the channel now uses the third characteristic, whose record differs in its name alone
    m_expected[4 + 2] = char((m_expected.at(4 + 2) & 0xF0) | 2);
    m_expected[4 + 3] = char(m_expected.at(4 + 3) & 0x3F);
    const int record = 8 + 4 * 8 + 2 * 492;
    m_expected.replace(record + 4, 40, "\6Heater" + QByteArray(33, '\0'));
    QTRY_COMPARE_WITH_TIMEOUT(held(), m_expected, patienceMs);
    QTRY_VERIFY(qobject_cast<confChMenu *>(QApplication::activePopupWidget())); // it is back
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
}

void TestWorkingDay::theLoggerIsRead()
{
    openInstrumentCard(bath);
    pressInCard("readLogBtn");
    const QDateTime recorded({2023, 5, 17}, {9, 30});
    QTRY_COMPARE_WITH_TIMEOUT(m_fixture.plot().getStartDateTime(), recorded, patienceMs);
    QVERIFY(m_fixture.plot().getChMeasCount(0, 0) >= 20);
}

void TestWorkingDay::resultsAreKept()
{
    const QString table = m_folder.filePath("table.csv");
    const QString record = m_folder.filePath("record.csv");
    const QString picture = m_folder.filePath("plot.png");
    const auto pressIn = [this](const char *dialog, const char *name) {
        QTest::mouseClick(m_fixture.find<QWidget>(dialog)->findChild<QWidget *>(name),
                          Qt::LeftButton);
    };
    m_fixture.dialogs.file = record;
    press("recBtn");
    for (const char *name : {"selectFileBtn", "saveBtn", "closeBtn"})
        pressIn("recmeas", name);

    m_fixture.dialogs.file = table;
    press("toolButton_2");
    pressIn("savemeas", "selectFileBtn");
    pressIn("savemeas", "saveBtn");
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(table).size() > 1000, patienceMs);
    pressIn("savemeas", "closeBtn");

    m_fixture.dialogs.file = picture;
    press("toolButton");
    QVERIFY(QImage(picture).width() > 300);
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(record).size() > 500, patienceMs);

    // stopped, nothing comes; resumed, it goes on
    openInstrumentCard(bath);
    pressInCard("startBtn");
    const int points = m_fixture.plot().getChMeasCount(0, 0);
    QTest::qWait(500);
    QCOMPARE(m_fixture.plot().getChMeasCount(0, 0), points);
    openInstrumentCard(bath);
    pressInCard("startBtn");
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture.plot().getChMeasCount(0, 0) > points, patienceMs);
    QVERIFY(m_fixture.dialogs.told.isEmpty());
}

void TestWorkingDay::thePlugIsPulledAndReturns()
{
    m_bench.host.unplug("SIM1");
    const auto color = [this] {
        return m_fixture.textColor(m_fixture.instruments(), bath, InstrumentColumn::Name);
    };
    QTRY_COMPARE_WITH_TIMEOUT(color(), QColor(Qt::lightGray), patienceMs);
    QTRY_COMPARE(m_fixture.dialogs.told.size(), 1);
    QVERIFY(m_fixture.dialogs.told.first().text.contains("Обрыв связи"));

    m_bench.host.plugIn("SIM1");
    openInstrumentCard(bath);
    pressInCard("connectBtn");
    QTRY_COMPARE_WITH_TIMEOUT(color(), QColor(Qt::black), patienceMs);
    const int points = m_fixture.plot().getChMeasCount(0, 0);
    QTRY_VERIFY_WITH_TIMEOUT(m_fixture.plot().getChMeasCount(0, 0) > points, patienceMs);
    QCOMPARE(held(), m_expected);
    QCOMPARE(taken(image().getData()), m_expected);
}

void TestWorkingDay::theDayEnds()
{
    openInstrumentCard(another);
    pressInCard("removeBtn");
    QTRY_COMPARE_WITH_TIMEOUT(m_fixture.instruments()->rowCount(), 2, patienceMs);

    auto *const query = m_fixture.find<QPushButton>("settingsBtn")->menu();
    const auto boxes = query->findChildren<QCheckBox *>();
    boxes.last()->click();
    press("exitBtm");
    QCOMPARE(m_fixture.dialogs.asked.last().title, "Выход из программы");
    QVERIFY(m_fixture.window->isVisible() && measures(bath));
    // what has just been applied is written before the window goes
    openInstrumentCard(bath);
    QTest::keyClick(inCard("devMeasTimeCB"), Qt::Key_End); // "9"
    pressInCard("applyBtn");
    m_expected[0] = char((m_expected.at(0) & 0x0F) | 0x80);
    m_fixture.dialogs.answer = QMessageBox::Yes;
    press("exitBtm");
    QVERIFY(m_fixture.window->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!m_fixture.window->isVisible(), patienceMs);
    QCOMPARE(held(), m_expected);
    m_fixture.window.reset();
    m_bench.host.remove("SIM2");
}

void TestWorkingDay::theNextDayBeginsWhereThisOneEnded()
{
    m_fixture.window = std::make_unique<MainWindow>();
    start();
    QTRY_VERIFY_WITH_TIMEOUT(measures(bath), patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(taken(image().getData()), m_expected, patienceMs);
    QCOMPARE(channel(3, ChannelColumn::Menu), "<");
    QCOMPARE(m_fixture.plot().getChColor(0, 2), QColor("#7b1fa2"));
    QCOMPARE(m_fixture.textColor(m_fixture.channels(), 5, ChannelColumn::Unit),
             QColor(Qt::lightGray));
    QCOMPARE(held(), m_expected);
}

void TestWorkingDay::cleanupTestCase()
{
    m_fixture.window.reset();
}

QTEST_MAIN(TestWorkingDay)
#include "tst_workingday.moc"
