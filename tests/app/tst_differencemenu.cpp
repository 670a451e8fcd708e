#include "app/plotinstruments.h"
#include "windowfixture.h"

namespace
{

uchar channelOf(const QObject *object)
{
    return uchar(object->property("ch").toUInt());
}

int indexOf(const QObject *object)
{
    return object->property("index").toInt();
}

/** What a menu of references offers: "title index/channel", ticked ones with a star. */
QStringList described(const QMenu *menu)
{
    QStringList lines;
    const auto actions = menu->actions();
    for (const QAction *action : actions) {
        if (action->isSeparator())
            lines << "|";
        else if (action->menu())
            lines << action->text();
        else
            lines << QString("%1 %2/%3%4")
                         .arg(action->text())
                         .arg(indexOf(action))
                         .arg(channelOf(action))
                         .arg(action->isChecked() ? "*" : "");
    }
    return lines;
}

} // namespace

/** The menu of the column that shows from which channel a difference is measured. */
class TestDifferenceMenu : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { fixture.reset(); }

    void opensAtTheCellOfTheChannel();
    void offersEveryOtherChannel();
    void configuresTheChannel();
    void showsTheReferenceAtTheNextOpening();
    void configuresNobodyElse_data();
    void configuresNobodyElse();

private:
    DifferenceMenu *open(int ch) const
    {
        fixture->click(fixture->channels(), ch + 1, ChannelColumn::Reference);
        return fixture->window->findChild<DifferenceMenu *>();
    }
    static QMenu *submenu(const QMenu *menu, int position)
    {
        return menu->actions().at(position + 2)->menu(); // after "off" and the line
    }
    QString reference(int ch) const
    {
        return fixture->text(fixture->channels(), ch + 1, ChannelColumn::Reference);
    }

    std::unique_ptr<WindowFixture> fixture;
};

void TestDifferenceMenu::init()
{
    fixture = std::make_unique<WindowFixture>();
    fixture->add(0x11, 1);
    fixture->add(0x31, 77);
}

void TestDifferenceMenu::opensAtTheCellOfTheChannel()
{
    const DifferenceMenu *menu = open(2);
    QVERIFY(menu->isVisible());
    QCOMPARE(channelOf(menu), uchar(2));
    QCOMPARE(indexOf(menu), 0);
    const QTableWidget *table = fixture->channels();
    const QRect cell = table->visualItemRect(table->item(3, ChannelColumn::Reference));
    const QPoint corner = menu->pos() - table->viewport()->mapToGlobal(cell.bottomLeft());
    QVERIFY2(corner.manhattanLength() < 5, qPrintable(QString::number(corner.manhattanLength())));
}

void TestDifferenceMenu::offersEveryOtherChannel()
{
    DifferenceMenu *menu = open(2);
    QCOMPARE(described(menu), (QStringList{"Выкл. -1/255*", "|", "NOX B № 0001", "NOX D № 0077"}));
    const QStringList own = described(submenu(menu, 0));
    QCOMPARE(own.size(), 7);
    QCOMPARE(own.mid(0, 3), (QStringList{"Канал № 1 0/0", "Канал № 2 0/1", "Канал № 4 0/3"}));
    const QStringList other = described(submenu(menu, 1));
    QCOMPARE(other.size(), int(fixture->plot().getChCount(1)));
    QCOMPARE(other.at(2), QString("Канал № 3 1/2"));

    // rebuilt at each opening, nothing of the former one is left
    menu->close();
    fixture->registry().rmByIndex(1);
    menu = open(0);
    QCOMPARE(described(menu), (QStringList{"Выкл. -1/255*", "|", "NOX B № 0001"}));
    QCOMPARE(menu->findChildren<QMenu *>().size(), 1);
    QCOMPARE(described(submenu(menu, 0)).first(), QString("Канал № 2 0/1"));
}

void TestDifferenceMenu::configuresTheChannel()
{
    DifferenceMenu *menu = open(1);
    // by real clicks, through the submenu
    QTest::mouseClick(menu, Qt::LeftButton, {},
                      menu->actionGeometry(menu->actions().last()).center());
    QMenu *channels = submenu(menu, 1);
    QTRY_VERIFY(channels->isVisible());
    QTest::mouseClick(channels, Qt::LeftButton, {},
                      channels->actionGeometry(channels->actions().at(2)).center());

    uchar ch = 0;
    int qwtIndex = -1;
    fixture->plot().getChDiff(&ch, &qwtIndex, 0, 1);
    QCOMPARE(ch, uchar(2));
    QCOMPARE(qwtIndex, 1);
    QCOMPARE(reference(1), QString("3"));
    QCOMPARE(fixture->plot().getChMode(0, 1), ModeFollow);
    QCOMPARE(fixture->plot().getChMain(0), 0);
}

void TestDifferenceMenu::showsTheReferenceAtTheNextOpening()
{
    fixture->plot().setChDiff(2, 1, 0, 1);
    DifferenceMenu *menu = open(1);
    QCOMPARE(described(menu).first(), QString("Выкл. -1/255"));
    QCOMPARE(described(submenu(menu, 1)).at(2), QString("Канал № 3 1/2*"));
    QCOMPARE(described(submenu(menu, 1)).filter("*").size(), 1);
    QCOMPARE(described(submenu(menu, 0)).filter("*").size(), 0);

    menu->actions().first()->trigger();
    QCOMPARE(reference(1), QString("-"));
}

void TestDifferenceMenu::configuresNobodyElse_data()
{
    QTest::addColumn<int>("leaving");
    QTest::newRow("the one configured leaves") << 0;
    QTest::newRow("the reference leaves") << 1;
}

void TestDifferenceMenu::configuresNobodyElse()
{
    QFETCH(int, leaving);
    DifferenceMenu *menu = open(1);
    QAction *entry = submenu(menu, 1)->actions().at(2);
    // while the menu is open, another instrument takes the place on the plot
    fixture->registry().rmByIndex(leaving);
    fixture->add(0x31, 78);
    QCOMPARE(fixture->plot().devices().size(), 2);
    entry->trigger();
    for (const int qwtIndex : {0, 1})
        QVERIFY(!fixture->plot().devices()[qwtIndex].ch[1].hasDifference());
}

QTEST_MAIN(TestDifferenceMenu)
#include "tst_differencemenu.moc"
