#include "serial/noxserialport.h"
#include "simulator/instrumenthost.h"
#include "windowfixture.h"

// The whole way from the line to the screen, with simulated instruments.

namespace
{

constexpr int longWaitMs = 20000;

} // namespace

class TestLiveWindow : public QObject
{
    Q_OBJECT
private slots:
    void showsThreeInstrumentsAndTheLossOfOne();

private:
    static void plugIn(InstrumentHost *host, const QString &directory, const QString &portName);
    static void choosePort(const WindowFixture &fixture, const QString &portName);
};

void TestLiveWindow::plugIn(InstrumentHost *host, const QString &directory, const QString &portName)
{
    SimulatedInstrumentOptions options;
    options.portsDirectory = directory;
    options.tokensPerSecond = 50;
    QVERIFY(!host->add(options, portName).isEmpty());
}

void TestLiveWindow::choosePort(const WindowFixture &fixture, const QString &portName)
{
    QMenu *menu = fixture.find<QPushButton>("addDevBtn")->menu();
    emit menu->aboutToShow();
    const auto actions = menu->actions();
    const auto entry = std::find_if(actions.begin(), actions.end(), [&](const QAction *action) {
        return action->text() == portName;
    });
    QVERIFY2(entry != actions.end(), qPrintable(portName));
    (*entry)->trigger();
}

void TestLiveWindow::showsThreeInstrumentsAndTheLossOfOne()
{
    const QTemporaryDir directory;
    InstrumentHost host;
    WindowFixture fixture;
    PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(directory.path()));
    const QStringList ports = {"SIM1", "SIM2", "SIM3"};
    for (const QString &port : ports)
        plugIn(&host, directory.path(), port);
    for (const QString &port : ports)
        choosePort(fixture, port);

    const QTableWidget *instruments = fixture.instruments();
    const QTableWidget *channels = fixture.channels();
    // while a block is to be read the row tells why it is silent
    const auto tip = [&] { return instruments->item(1, InstrumentColumn::Value)->toolTip(); };
    fixture.window->serialPort()->sendDevQuery(0, 3, 72);
    QTRY_VERIFY_WITH_TIMEOUT(tip().startsWith("Идёт обмен"), longWaitMs);

    // every instrument fills its row, the current one its channels and the panels
    for (int row = 1; row <= 3; ++row) {
        QTRY_VERIFY_WITH_TIMEOUT(fixture.text(instruments, row, InstrumentColumn::Value) != "--",
                                 longWaitMs);
        QCOMPARE(fixture.textColor(instruments, row, InstrumentColumn::Name), QColor(Qt::black));
    }
    QVERIFY(tip().startsWith("Принято"));
    QTRY_COMPARE_WITH_TIMEOUT(channels->rowCount(), 9, longWaitMs);
    QTRY_VERIFY(fixture.label("mainMeasLabel").toDouble() > 20);

    fixture.click(channels, 4, ChannelColumn::Value);
    QCOMPARE(fixture.plot().getChMain(0), 3);
    QCOMPARE(fixture.text(channels, 4, ChannelColumn::Menu), QString("<"));

    // a pulled plug greys its row and is told of once; the others go on
    host.unplug("SIM2");
    const auto nameColor = [&](int row) {
        return fixture.textColor(instruments, row, InstrumentColumn::Name);
    };
    QTRY_COMPARE_WITH_TIMEOUT(nameColor(2), QColor(Qt::lightGray), longWaitMs);
    const int pointsThen = fixture.plot().getChMeasCount(2, 0);
    QTRY_VERIFY_WITH_TIMEOUT(fixture.plot().getChMeasCount(2, 0) > pointsThen + 5, longWaitMs);
    QCOMPARE(fixture.dialogs.told.size(), 1);
    QVERIFY(fixture.dialogs.told.first().text.contains("Обрыв связи"));
    QCOMPARE(nameColor(1), QColor(Qt::black));
    QCOMPARE(nameColor(3), QColor(Qt::black));

    // an instrument may be removed, and the window closed, while measurements stream in
    fixture.registry().rmByIndex(0);
    QCOMPARE(instruments->rowCount(), 3);
    QCOMPARE(fixture.window->currentIndex(), 2);
    QElapsedTimer closing;
    closing.start();
    fixture.window.reset();
    QVERIFY2(closing.elapsed() < 4000, "a worker did not end");
}

QTEST_MAIN(TestLiveWindow)
#include "tst_livewindow.moc"
