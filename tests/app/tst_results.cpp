#include "device/windows1251.h"
#include "windowfixture.h"

/** Results that leave the window and come back, and what it remembers of its plots. */
class TestResults : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { m_fixture.reset(); }

    void recordsWhatComesIn();
    void marksTheButtonWhileRowsAreLost();
    void readsIntoAnEmptyRegistry();
    void remembersThePlotOfEachInstrument();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QByteArray content(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    QToolButton *recordButton() const { return m_fixture->find<QToolButton>("recBtn"); }
    void switchRecording(const QString &fileName) const;
    void measureRound(int index, double value);

    QTemporaryDir m_folder;
    std::unique_ptr<WindowFixture> m_fixture;
    QDateTime m_now;
};

void TestResults::init()
{
    m_now = QDateTime({2026, 11, 24}, {7, 5, 9});
    m_fixture = std::make_unique<WindowFixture>();
    m_fixture->plot().setClock([this] { return m_now; });
}

/** Works the recording of the current instrument with the mouse. */
void TestResults::switchRecording(const QString &fileName) const
{
    const auto click = [](QWidget *button) { QTest::mouseClick(button, Qt::LeftButton); };
    click(recordButton());
    const auto *dialog = m_fixture->find<QDialog>("recmeas");
    QVERIFY(dialog->isVisible());
    m_fixture->dialogs.file = fileName;
    click(dialog->findChild<QPushButton *>("selectFileBtn"));
    click(dialog->findChild<QPushButton *>("saveBtn"));
    click(dialog->findChild<QPushButton *>("closeBtn"));
    QVERIFY(!dialog->isVisible());
}

/** Two channels measure, a second after the last ones that did. */
void TestResults::measureRound(int index, double value)
{
    m_now = m_now.addSecs(1);
    m_fixture->measure(index, value, 0);
    m_fixture->measure(index, value + 10, 1);
}

void TestResults::recordsWhatComesIn()
{
    const int first = m_fixture->add(0, 1);
    const int second = m_fixture->add(0, 2);
    switchRecording(path("запись 1.csv"));
    QCOMPARE(m_fixture->dialogs.fileQuestions.last().title, "Файл для сохранения результатов");
    QVERIFY(recordButton()->isChecked());
    for (const double value : {1, 2, 3})
        measureRound(first, value);
    QCOMPARE(fromWindows1251(content("запись 1.csv")).section("\r\n", 4),
             "1;1;1.0000;11.0000;\r\n2;2;2.0000;12.0000;\r\n");

    // the button speaks of the current instrument
    m_fixture->click(m_fixture->instruments(), second + 1, InstrumentColumn::Name);
    QVERIFY(!recordButton()->isChecked());
    m_fixture->click(m_fixture->instruments(), first + 1, InstrumentColumn::Name);
    switchRecording(QString());
    QVERIFY(!recordButton()->isChecked());
    measureRound(first, 4);
    QVERIFY(!content("запись 1.csv").contains("13.0000"));
}

void TestResults::marksTheButtonWhileRowsAreLost()
{
    const int lost = m_fixture->add(0, 1);
    const int other = m_fixture->add(0, 2);
    const auto isMarked = [this] {
        const QImage picture = recordButton()->grab().toImage();
        return picture.pixelColor(picture.width() / 2, 0) == QColor("#c62828");
    };
    switchRecording(path("folder/1.csv"));
    for (const double value : {1, 2})
        measureRound(lost, value);
    QVERIFY(isMarked());
    QCOMPARE(recordButton()->toolTip(),
             "Запись в файл\n" + m_fixture->title() +
                 ": Запись не ведётся с 24.11.2026 07:05:11: файл не открывается для записи");
    QVERIFY(QDir(path("")).mkdir("folder"));
    measureRound(lost, 3);
    QVERIFY(!isMarked());
    QVERIFY(content("folder/1.csv").endsWith("1;2;2.0000;12.0000;\r\n"));

    QVERIFY(QDir(path("folder")).removeRecursively());
    measureRound(lost, 4);
    QVERIFY(isMarked());
    m_fixture->registry().rmByIndex(lost);
    QCOMPARE(m_fixture->window->currentIndex(), other);
    QVERIFY(!isMarked());
}

void TestResults::readsIntoAnEmptyRegistry()
{
    QFile file(path("results.csv"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(toWindows1251("Начало измерений. Дата 23.11.2026 Время 06:00:00;\r\n\r\n"
                             "№;dT;Канал 1;Канал 2;\r\n ;[c];[°С];[Ом];\r\n"
                             "1;5;21.5000;101.2500;\r\n2;6;21.7500;--;\r\n"));
    file.close();
    m_fixture->dialogs.file = path("results.csv");
    const auto read = [this] {
        QTest::mouseClick(m_fixture->find<QToolButton>("toolButton_3"), Qt::LeftButton);
        m_fixture->showFrame();
    };
    read();

    const QTableWidget *channels = m_fixture->channels();
    QCOMPARE(m_fixture->registry().indices().size(), 1);
    QCOMPARE(channels->rowCount(), 3);
    QCOMPARE(m_fixture->text(channels, 1, ChannelColumn::Value), "21.75");
    QCOMPARE(m_fixture->text(channels, 2, ChannelColumn::Unit), "Ω");
    QCOMPARE(m_fixture->plot().getStartDateTime(), QDateTime({2026, 11, 23}, {6, 0}));
    QVERIFY(m_fixture->find<QFrame>("readingBar")->isHidden());

    // once more the same; what the instrument measures stays away from what was read
    m_fixture->registry().setProccesed(0, true, false);
    read();
    QCOMPARE(m_fixture->plot().getChMeasCount(0, 0), 2);
    QVERIFY(!m_fixture->registry().getNoxByIndex(0)->processed);
}

void TestResults::remembersThePlotOfEachInstrument()
{
    m_fixture->add(0x11, 1);
    m_fixture->add(0x11, 2);
    m_fixture->click(m_fixture->channels(), 2, ChannelColumn::Value);
    m_fixture->click(m_fixture->instruments(), 2, InstrumentColumn::Name);
    m_fixture->click(m_fixture->channels(), 4, ChannelColumn::Value);
    m_fixture->find<QPushButton>("dXBtn")->menu()->actions().at(7)->trigger();
    m_fixture->dialogs.color = Qt::magenta;
    m_fixture->click(m_fixture->channels(), 4, ChannelColumn::Number, Qt::RightButton);
    m_fixture->find<QPushButton>("modeXBtn")->click();
    QTest::mouseClick(m_fixture->find<QLabel>("mainAverLabel"), Qt::LeftButton);

    m_fixture->window.reset();
    m_fixture->window = std::make_unique<MainWindow>();
    // the second one is current again although it comes last; the new third one inherits from it
    for (const quint16 number : {1, 3, 2})
        m_fixture->add(0x11, number);
    QCOMPARE(m_fixture->title(), "NOX B № 0002");
    const QwtNOX &plot = m_fixture->plot();
    for (const int qwtIndex : {2, 1}) {
        QCOMPARE(plot.getChMain(qwtIndex), 3);
        QCOMPARE(plot.getChScaleX(qwtIndex, 3), uchar(7));
        QCOMPARE(plot.getChColor(qwtIndex, 3), QColor(Qt::magenta));
        QCOMPARE(plot.getChModeX(qwtIndex, 3), ModeXAbsolute);
        QVERIFY(plot.getMeasShow(qwtIndex) && !plot.getAverShow(qwtIndex));
    }
    QCOMPARE(plot.getChMain(0), 1);
}

QTEST_MAIN(TestResults)
#include "tst_results.moc"
