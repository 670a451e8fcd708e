#include "device/windows1251.h"
#include "windowfixture.h"

/** Results that leave the window and come back, and what it remembers of its plots. */
class TestResults : public QObject
{
    Q_OBJECT
private slots:
    void recordsAndTellsOfLostRows();
    void readsIntoAnEmptyRegistry();
    void remembersThePlotOfEachInstrument();

private:
    void click(const char *button) const
    {
        QTest::mouseClick(m_fixture.find<QWidget>(button), Qt::LeftButton);
    }
    void clickRow(int row) const
    {
        m_fixture.click(m_fixture.instruments(), row, InstrumentColumn::Name);
    }
    void measureRound(double value);

    QTemporaryDir m_folder;
    const QString m_fileName = m_folder.filePath("запись/1.csv");
    WindowFixture m_fixture;
    QDateTime m_now{{2026, 11, 24}, {7, 5, 9}};
};

/** Two channels of the first instrument measure, a second after the last ones that did. */
void TestResults::measureRound(double value)
{
    m_now = m_now.addSecs(1);
    m_fixture.measure(0, value, 0);
    m_fixture.measure(0, value + 10, 1);
}

void TestResults::recordsAndTellsOfLostRows()
{
    m_fixture.plot().setClock([this] { return m_now; });
    m_fixture.add(0, 1);
    m_fixture.add(0, 2);
    auto *button = m_fixture.find<QToolButton>("recBtn");
    const auto isMarked = [button] {
        const QImage picture = button->grab().toImage();
        return picture.pixelColor(picture.width() / 2, 0) == QColor("#c62828");
    };
    click("recBtn");
    m_fixture.dialogs.file = m_fileName;
    const auto *dialog = m_fixture.find<QDialog>("recmeas");
    for (const char *name : {"selectFileBtn", "saveBtn", "closeBtn"})
        QTest::mouseClick(dialog->findChild<QWidget *>(name), Qt::LeftButton);

    // the button speaks of the current instrument, its mark of all
    clickRow(2);
    QVERIFY(!button->isChecked());
    clickRow(1);
    QVERIFY(button->isChecked());
    measureRound(1);
    measureRound(2); // there is no folder yet
    QVERIFY(isMarked());
    QCOMPARE(button->toolTip(),
             "Запись в файл\n" + m_fixture.title() +
                 ": Запись не ведётся с 24.11.2026 07:05:11: файл не открывается для записи");
    QDir folder(QFileInfo(m_fileName).path());
    QVERIFY(folder.mkpath("."));
    measureRound(3);
    measureRound(4);
    QVERIFY(!isMarked());
    QFile file(m_fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(fromWindows1251(file.readAll()).section("\r\n", 4),
             "1;2;2.0000;12.0000;\r\n2;3;3.0000;13.0000;\r\n");

    QVERIFY(folder.removeRecursively());
    measureRound(5);
    QVERIFY(isMarked());
    m_fixture.registry().rmByIndex(0);
    QVERIFY(!isMarked());
    m_fixture.registry().rmByIndex(1);
}

void TestResults::readsIntoAnEmptyRegistry()
{
    QFile file(m_folder.filePath("results.csv"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(toWindows1251("Начало измерений. Дата 23.11.2026 Время 06:00:00;\r\n\r\n"
                             "№;dT;Канал 1;Канал 2;\r\n ;[c];[°С];[Ом];\r\n"
                             "1;5;21.5000;101.2500;\r\n2;6;21.7500;--;\r\n"));
    file.close();
    m_fixture.dialogs.file = m_folder.filePath("results.csv");
    click("toolButton_3");
    m_fixture.showFrame();

    const QTableWidget *channels = m_fixture.channels();
    QCOMPARE(channels->rowCount(), 3);
    QCOMPARE(m_fixture.text(channels, 1, ChannelColumn::Value), "21.75");
    QCOMPARE(m_fixture.text(channels, 2, ChannelColumn::Unit), "Ω");
    QCOMPARE(m_fixture.plot().getStartDateTime(), QDateTime({2026, 11, 23}, {6, 0}));
    QVERIFY(m_fixture.find<QFrame>("readingBar")->isHidden());

    // once more the same; what the instrument measures stays away from what was read
    m_fixture.registry().setProccesed(0, true, false);
    click("toolButton_3");
    QCOMPARE(m_fixture.plot().getChMeasCount(0, 0), 2);
    QVERIFY(!m_fixture.registry().getNoxByIndex(0)->processed);
    m_fixture.registry().rmByIndex(0);
}

void TestResults::remembersThePlotOfEachInstrument()
{
    m_fixture.add(0x11, 1);
    m_fixture.add(0x11, 2);
    m_fixture.click(m_fixture.channels(), 2, ChannelColumn::Value);
    clickRow(2);
    m_fixture.click(m_fixture.channels(), 4, ChannelColumn::Value);
    click("mainAverLabel");

    const auto restartWith = [this](std::initializer_list<quint16> numbers) {
        m_fixture.window.reset();
        m_fixture.window = std::make_unique<MainWindow>();
        for (const quint16 number : numbers)
            m_fixture.add(0x11, number);
    };
    // the second one is current again although it comes last; the new third one inherits from it
    restartWith({1, 3, 2});
    QCOMPARE(m_fixture.title(), "NOX B № 0002");
    const QwtNOX &plot = m_fixture.plot();
    for (const int qwtIndex : {2, 1})
        QVERIFY(plot.getChMain(qwtIndex) == 3 && !plot.getAverShow(qwtIndex));
    QCOMPARE(plot.getChMain(0), 1);

    // after its removal the newest of the others is current, now and later
    m_fixture.registry().rmByIndex(2);
    restartWith({2, 1, 3});
    QCOMPARE(m_fixture.title(), "NOX B № 0003");
}

QTEST_MAIN(TestResults)
#include "tst_results.moc"
