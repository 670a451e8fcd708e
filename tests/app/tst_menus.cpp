#include "app/plotinstruments.h"
#include "app/plottools.h"
#include "app/windowmenus.h"
#include "windowfixture.h"

namespace
{

/** The entries of a menu after it was opened; separators as "|". */
QStringList entriesOf(QMenu *menu)
{
    emit menu->aboutToShow();
    QStringList entries;
    const auto actions = menu->actions();
    for (const QAction *action : actions)
        entries << (action->isSeparator() ? QStringLiteral("|") : action->text());
    return entries;
}

} // namespace

class TestMenus : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { PortCatalog::setCurrent(nullptr); }
    void listsFreePortsAtEachOpening();
    void reportsTheChosenPort();
    void ticksTheChoiceInEffect();
    void listsInstrumentsToClear();
};

void TestMenus::listsFreePortsAtEachOpening()
{
    ConnectMenu menu;
    PortCatalog::setCurrent(std::make_unique<ListedPorts>(QVector<SerialPortEntry>{
        {"ttyS1", "/dev/ttyS1", false}, {"ttyS0", "/dev/ttyS0", true}, {"bath 2", "/x", false}}));
    QCOMPARE(entriesOf(&menu), (QStringList{"без подключния", "|", "ttyS1", "bath 2"}));

    PortCatalog::setCurrent(
        std::make_unique<ListedPorts>(QVector<SerialPortEntry>{{"ttyS0", "/dev/ttyS0", false}}));
    QCOMPARE(entriesOf(&menu), (QStringList{"без подключния", "|", "ttyS0"}));
}

void TestMenus::reportsTheChosenPort()
{
    ConnectMenu menu;
    PortCatalog::setCurrent(
        std::make_unique<ListedPorts>(QVector<SerialPortEntry>{{"bath&2", "/dev/x", false}}));
    QCOMPARE(entriesOf(&menu).last(), QString("bath&&2"));
    const QSignalSpy ports(&menu, &ConnectMenu::portChosen);
    const QSignalSpy none(&menu, &ConnectMenu::noPortChosen);

    menu.actions().last()->trigger();
    QCOMPARE(ports.size(), 1);
    QCOMPARE(ports.at(0).at(0).toString(), QString("bath&2"));
    QCOMPARE(none.size(), 0);

    menu.actions().first()->trigger();
    QCOMPARE(none.size(), 1);
    QCOMPARE(ports.size(), 1);
}

void TestMenus::ticksTheChoiceInEffect()
{
    int current = 2;
    ChoiceMenu menu([&current] { return current; });
    for (int number = 0; number < 3; ++number)
        menu.addChoice(QString::number(number), number);
    const auto ticks = [&menu] {
        emit menu.aboutToShow();
        QString text;
        const auto actions = menu.actions();
        for (const QAction *action : actions)
            text += action->isChecked() ? 'x' : '.';
        return text;
    };
    QCOMPARE(ticks(), QString("..x"));

    // choosing asks for a change; whether it comes about is seen at the next opening
    const QSignalSpy chosen(&menu, &ChoiceMenu::chosen);
    menu.actions().at(0)->trigger();
    QCOMPARE(chosen.at(0).at(0).toInt(), 0);
    QCOMPARE(ticks(), QString("..x"));
    current = 1;
    QCOMPARE(ticks(), QString(".x."));
}

void TestMenus::listsInstrumentsToClear()
{
    const WindowFixture fixture;
    ClearMenu menu(&fixture.registry());
    QCOMPARE(entriesOf(&menu), (QStringList{"Все приборы", "|"}));

    fixture.add(0x11, 1234);
    fixture.add(0x31, 17);
    fixture.registry().rmByIndex(0);
    fixture.add(0, 0);
    QCOMPARE(entriesOf(&menu), (QStringList{"Все приборы", "|", "NOX D № 0017", "-- № --"}));

    QList<int> indices;
    const QSignalSpy chosen(&menu, &ClearMenu::chosen);
    for (const int entry : {0, 2, 3})
        menu.actions().at(entry)->trigger();
    for (const QList<QVariant> &arguments : chosen)
        indices << arguments.at(0).toInt();
    QCOMPARE(indices, (QList<int>{-1, 1, 0}));
}

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
