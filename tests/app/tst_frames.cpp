#include "windowfixture.h"

#include <qwt_plot_marker.h>

namespace
{

constexpr double regular = 21;
constexpr double beyond = 31; // above the limit of 30
constexpr double broken = -1300;

/** Counts how often a widget is painted. */
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget) { widget->installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

/** The texts that each cell of a column has been given, by row. */
class TextRecorder
{
public:
    TextRecorder(const QTableWidget *table, int column)
    {
        QObject::connect(table, &QTableWidget::itemChanged, &m_context,
                         [this, column](const QTableWidgetItem *item) {
                             ++changes;
                             if (item->column() != column)
                                 return;
                             QStringList &given = texts[item->row()];
                             if (given.isEmpty() || given.last() != item->text())
                                 given << item->text();
                         });
    }
    int changes = 0; ///< of any cell
    QMap<int, QStringList> texts;

private:
    QObject m_context;
};

struct Delivery {
    quint8 channel;
    double value;
};

} // namespace

Q_DECLARE_METATYPE(QVector<Delivery>)

/** Tables and panels show points once a frame, however many come. */
class TestFrames : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { fixture.reset(); }

    void touchesEachRowOnceAFrame();
    void paintsAtMostThirtyTimesASecond();
    void keepsTheOrderOfWhatCame_data();
    void keepsTheOrderOfWhatCame();
    void growsAndMarksInOneFrame();
    void marksNothingOfAnotherInstrument();
    void survivesWhoLeavesBeforeTheFrame();

private:
    QString value(int ch) const
    {
        return fixture->text(fixture->channels(), ch + 1, ChannelColumn::Value);
    }
    QColor ground(int ch) const
    {
        return fixture->background(fixture->channels(), ch + 1, ChannelColumn::Value);
    }
    QColor color(int ch) const
    {
        return fixture->textColor(fixture->channels(), ch + 1, ChannelColumn::Value);
    }

    std::unique_ptr<WindowFixture> fixture;
};

void TestFrames::init()
{
    fixture = std::make_unique<WindowFixture>();
    fixture->add(0x11, 1);
    fixture->add(0x11, 2);
    QwtNOX::_dev &device = fixture->plot().devices()[0];
    device.modeTrack = TrackUpper;
    device.upperMarker->setYValue(30);
    device.upperMarker->setVisible(true);
}

void TestFrames::touchesEachRowOnceAFrame()
{
    fixture->showFrame();
    const TextRecorder channels(fixture->channels(), ChannelColumn::Value);
    const TextRecorder instruments(fixture->instruments(), InstrumentColumn::Value);
    for (int i = 0; i < 1000; ++i)
        fixture->deliver(i % 2, 20 + i * 0.01, quint8(i % 8));
    QCOMPARE(channels.changes + instruments.changes, 0);
    QCOMPARE(fixture->label("mainMeasLabel"), QString("--"));

    fixture->showFrame();
    // the current instrument got the even channels
    QCOMPARE(channels.texts, (QMap<int, QStringList>{
                                 {1, {"29.92"}}, {3, {"29.94"}}, {5, {"29.96"}}, {7, {"29.98"}}}));
    QCOMPARE(instruments.texts, (QMap<int, QStringList>{{1, {"29.98"}}, {2, {"29.99"}}}));
    QCOMPARE(ground(6), freshColor());
    QCOMPARE(ground(4), QColor());
    QCOMPARE(fixture->label("mainMeasLabel"), QString("29.92"));
    QCOMPARE(fixture->label("mainDimLabel"), QString("°С"));

    const int changes = channels.changes;
    fixture->showFrame();
    QCOMPARE(channels.changes, changes);
}

void TestFrames::paintsAtMostThirtyTimesASecond()
{
    QCoreApplication::processEvents();
    const PaintCounter table(fixture->channels()->viewport());
    const PaintCounter label(fixture->find<QLabel>("mainMeasLabel"));
    QElapsedTimer time;
    time.start();
    int delivered = 0;
    while (!time.hasExpired(500)) {
        fixture->deliver(0, 20 + (++delivered % 100) * 0.01, 0);
        QCoreApplication::processEvents();
    }
    const int most = int(time.elapsed() * 30 / 1000) + 1;
    QVERIFY(delivered > 2 * most);
    QVERIFY2(table.paints <= most, qPrintable(QString::number(table.paints)));
    QVERIFY2(label.paints <= most, qPrintable(QString::number(label.paints)));
    QVERIFY(table.paints > 2 && label.paints > 2);
}

void TestFrames::keepsTheOrderOfWhatCame_data()
{
    const QColor none;
    QTest::addColumn<QVector<Delivery>>("deliveries");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QString>("source");
    QTest::addColumn<int>("sounds");
    const auto add = [](const char *name, const QVector<Delivery> &deliveries, const char *value,
                        const QColor &color, const QColor &ground, const char *source, int sounds) {
        QTest::newRow(name) << deliveries << value << color << ground << source << sounds;
    };
    add("a point", {{3, regular}}, "21.00", Qt::black, freshColor(), "4", 0);
    add("another channel after it", {{3, regular}, {4, regular}}, "21.00", Qt::black, none, "5", 0);
    add("rejected", {{3, regular}, {3, broken}}, "--", Qt::black, Qt::yellow, "4", 0);
    add("rejected, then another channel", {{3, broken}, {4, regular}}, "--", Qt::black, Qt::yellow,
        "5", 0);
    add("rejected, then accepted", {{3, broken}, {3, regular}}, "21.00", Qt::black, freshColor(),
        "4", 0);
    add("alarm", {{3, regular}, {3, beyond}}, "31.00", Qt::red, freshColor(), "4 (!)", 1);
    add("alarm, then another channel", {{3, beyond}, {4, regular}}, "31.00", Qt::red, none, "5", 1);
    add("alarm, then a regular point", {{3, beyond}, {3, regular}}, "21.00", Qt::black,
        freshColor(), "4", 1);
    add("alarm, then rejected", {{3, beyond}, {3, broken}}, "--", Qt::black, Qt::yellow, "4", 1);
    add("many alarms", QVector<Delivery>(50, {3, beyond}), "31.00", Qt::red, freshColor(), "4 (!)",
        1);
}

void TestFrames::keepsTheOrderOfWhatCame()
{
    QFETCH(QVector<Delivery>, deliveries);
    QFETCH(QColor, color);
    QFETCH(QColor, ground);
    for (const Delivery &delivery : qAsConst(deliveries))
        fixture->deliver(0, delivery.value, delivery.channel);
    fixture->showFrame();
    QTEST(value(3), "value");
    QCOMPARE(this->color(3), color);
    QCOMPARE(this->ground(3), ground);
    QTEST(fixture->text(fixture->instruments(), 1, InstrumentColumn::Channel), "source");
    QTEST(fixture->soundsPlayed, "sounds");
}

void TestFrames::growsAndMarksInOneFrame()
{
    const int unknown = fixture->add();
    fixture->click(fixture->instruments(), 3, InstrumentColumn::Name);
    fixture->deliver(unknown, broken, 1);
    fixture->deliver(unknown, regular, 4);
    QCOMPARE(fixture->channels()->rowCount(), 1);
    fixture->showFrame();
    QCOMPARE(fixture->channels()->rowCount(), 6);
    QCOMPARE(ground(4), freshColor());
    QCOMPARE(value(4), QString("21.00"));
    QCOMPARE(ground(1), QColor(Qt::yellow));
}

void TestFrames::marksNothingOfAnotherInstrument()
{
    fixture->deliver(0, beyond, 0);
    fixture->deliver(1, broken, 1);
    fixture->click(fixture->instruments(), 2, InstrumentColumn::Name);
    fixture->showFrame();
    QCOMPARE(value(0), QString("--"));
    for (const int ch : {0, 1}) {
        QCOMPARE(color(ch), QColor(Qt::black));
        QCOMPARE(ground(ch), QColor());
    }
}

void TestFrames::survivesWhoLeavesBeforeTheFrame()
{
    fixture->deliver(0, regular, 0);
    fixture->deliver(1, regular + 1, 1);
    fixture->registry().rmByIndex(0);
    fixture->showFrame();
    QCOMPARE(fixture->instruments()->rowCount(), 2);
    QCOMPARE(fixture->text(fixture->instruments(), 1, InstrumentColumn::Value), QString("22.00"));
    QCOMPARE(value(1), QString("22.00"));
    fixture->deliver(1, regular, 1);
    fixture->window.reset(); // and so may the window
}

QTEST_MAIN(TestFrames)
#include "tst_frames.moc"
