#include "app/rowcontent.h"

#include <QtTest>

namespace
{

const QColor black(Qt::black);
const QColor gray(Qt::lightGray);
const QColor red(Qt::red);
const QColor yellow(Qt::yellow);
const QColor none;

InstrumentState instrument()
{
    InstrumentState state;
    state.name = QStringLiteral("NOX B");
    state.number = QStringLiteral("1234");
    state.value = QStringLiteral("21.50");
    state.unit = QStringLiteral("°С");
    state.channel = 2;
    state.attached = true;
    return state;
}

ChannelState channel()
{
    ChannelState state;
    state.number = 4;
    state.color = Qt::blue;
    state.value = QStringLiteral("21.50");
    state.unit = QStringLiteral("°С");
    state.deltaX = QStringLiteral("2.0");
    state.deltaY = QStringLiteral("0.01");
    return state;
}

ValueMark markOf(const QString &text)
{
    if (text.contains("alarm"))
        return ValueMark::Alarm;
    if (text.contains("rejected"))
        return ValueMark::Rejected;
    return text.isEmpty() ? ValueMark::None : ValueMark::Accepted;
}

QStringList texts(const RowContent &row)
{
    QStringList all;
    for (const CellContent &cell : row)
        all << cell.text;
    return all;
}

} // namespace

Q_DECLARE_METATYPE(InstrumentState)
Q_DECLARE_METATYPE(ChannelState)

class TestRowContent : public QObject
{
    Q_OBJECT
private slots:
    void writesAnInstrument_data();
    void writesAnInstrument();
    void coloursAnInstrument_data();
    void coloursAnInstrument();
    void writesAChannel_data();
    void writesAChannel();
    void coloursAChannel_data();
    void coloursAChannel();
    void drawsTheColourOfAChannel();
    void tellsWhatCameAndWhatIsAwaited();
};

void TestRowContent::writesAnInstrument_data()
{
    QTest::addColumn<InstrumentState>("state");
    QTest::addColumn<QStringList>("expected");

    InstrumentState state = instrument();
    QTest::newRow("ordinary") << state << QStringList{"", "NOX B", "1234", "21.50", "°С", "3", ""};
    state.hovered = true;
    QTest::newRow("under the mouse")
        << state << QStringList{"", "NOX B", "1234", "21.50", "°С", "3", "☰"};
    state.current = true;
    QTest::newRow("current, under the mouse")
        << state << QStringList{"", "NOX B", "1234", "21.50", "°С", "3", "<"};
    state = instrument();
    state.channel = -1;
    QTest::newRow("without channels")
        << state << QStringList{"", "NOX B", "1234", "21.50", "°С", "-", ""};
    state = instrument();
    state.mark = ValueMark::Rejected;
    QTest::newRow("rejected") << state << QStringList{"", "NOX B", "1234", "--", "°С", "3", ""};
    state = instrument();
    state.mark = ValueMark::Alarm;
    QTest::newRow("alarm") << state << QStringList{"", "NOX B", "1234", "21.50", "°С", "3 (!)", ""};
}

void TestRowContent::writesAnInstrument()
{
    QFETCH(InstrumentState, state);
    QTEST(texts(instrumentRow(state)), "expected");
}

void TestRowContent::coloursAnInstrument_data()
{
    QTest::addColumn<bool>("attached");
    QTest::addColumn<bool>("current");
    QTest::addColumn<QString>("mark");
    QTest::addColumn<QColor>("nameText");
    QTest::addColumn<QColor>("nameGround");
    QTest::addColumn<QColor>("valueText");
    QTest::addColumn<QColor>("valueGround");

    const QColor current = currentColor();
    QTest::newRow("attached") << true << false << "" << black << none << black << none;
    QTest::newRow("unattached") << false << false << "" << gray << none << gray << none;
    QTest::newRow("current") << true << true << "" << black << current << black << current;
    QTest::newRow("unattached, current")
        << false << true << "" << gray << current << gray << current;
    QTest::newRow("fresh") << true << true << "fresh" << black << current << black << none;
    QTest::newRow("fresh without a port")
        << false << false << "fresh" << gray << none << black << none;
    QTest::newRow("alarm") << true << true << "alarm" << black << current << red << none;
    QTest::newRow("rejected") << true << true << "rejected" << black << current << black << yellow;
}

void TestRowContent::coloursAnInstrument()
{
    QFETCH(bool, attached);
    QFETCH(bool, current);
    QFETCH(QString, mark);
    InstrumentState state = instrument();
    state.attached = attached;
    state.current = current;
    state.mark = markOf(mark);

    using namespace InstrumentColumn;
    const RowContent row = instrumentRow(state);
    QTEST(row[Name].textColor, "nameText");
    QTEST(row[Name].background, "nameGround");
    for (const int column : {Value, Unit, Channel}) {
        QTEST(row[column].textColor, "valueText");
        QTEST(row[column].background, "valueGround");
    }
}

void TestRowContent::writesAChannel_data()
{
    QTest::addColumn<ChannelState>("state");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QString>("referenceTip");

    const QString off = "Измерение разности выключено";
    ChannelState state = channel();
    QTest::newRow("ordinary") << state << QStringList{"5", "21.50", "°С", "2.0", "0.01", "-", ""}
                              << off;
    state.hovered = true;
    QTest::newRow("under the mouse")
        << state << QStringList{"5", "21.50", "°С", "2.0", "0.01", "-", "☰"} << off;
    state.main = true;
    QTest::newRow("main, under the mouse")
        << state << QStringList{"5", "21.50", "°С", "2.0", "0.01", "-", "<"} << off;
    state = channel();
    state.referenceChannel = 1;
    state.referenceInstrument = "NOX B №1234";
    QTest::newRow("difference") << state << QStringList{"5", "21.50", "°С", "2.0", "0.01", "2", ""}
                                << "Разность с NOX B №1234, канал №2";
    state = channel();
    state.mark = ValueMark::Rejected;
    QTest::newRow("rejected") << state << QStringList{"5", "--", "--", "--", "--", "-", ""} << off;
}

void TestRowContent::writesAChannel()
{
    QFETCH(ChannelState, state);
    const RowContent row = channelRow(state);
    QTEST(texts(row), "expected");
    QTEST(row[ChannelColumn::Reference].toolTip, "referenceTip");
}

void TestRowContent::coloursAChannel_data()
{
    QTest::addColumn<bool>("inactive");
    QTest::addColumn<QString>("marks");
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("ground");

    QTest::newRow("ordinary") << false << "" << black << none;
    QTest::newRow("fresh") << false << "fresh" << black << freshColor();
    QTest::newRow("switched off") << true << "" << gray << none;
    QTest::newRow("switched off, fresh") << true << "fresh" << gray << freshColor();
    QTest::newRow("alarm, fresh") << false << "alarm fresh" << red << freshColor();
    QTest::newRow("alarm, older") << false << "alarm" << red << none;
    QTest::newRow("rejected") << false << "rejected" << black << yellow;
}

void TestRowContent::coloursAChannel()
{
    QFETCH(bool, inactive);
    QFETCH(QString, marks);
    ChannelState state = channel();
    state.inactive = inactive;
    state.mark = markOf(marks);
    state.fresh = marks.contains("fresh");

    using namespace ChannelColumn;
    for (const bool main : {false, true}) {
        state.main = main;
        const RowContent row = channelRow(state);
        for (const int column : {Value, Unit, DeltaX, DeltaY, Reference}) {
            QTEST(row[column].textColor, "text");
            QTEST(row[column].background, "ground");
        }
        for (const int column : {Number, Menu})
            QCOMPARE(row[column].background, main ? currentColor() : none);
    }
}

void TestRowContent::drawsTheColourOfAChannel()
{
    ChannelState state = channel();
    QCOMPARE(channelRow(state)[ChannelColumn::Number].swatch, QColor(Qt::blue));
    state.shown = false;
    QCOMPARE(channelRow(state)[ChannelColumn::Number].swatch, QColor(Qt::transparent));
}

void TestRowContent::tellsWhatCameAndWhatIsAwaited()
{
    const int value = InstrumentColumn::Value;
    InstrumentState state = instrument();
    state.received = 21.512345678;
    QCOMPARE(instrumentRow(state)[value].toolTip, QString("Принято: 21.51234568 °С"));
    state.exchanging = true;
    QVERIFY(instrumentRow(state)[value].waiting);
    QVERIFY(instrumentRow(state)[value].toolTip.startsWith("Идёт обмен"));

    ChannelState channelState = channel();
    channelState.received = 21.5;
    channelState.unit = "<i>"; // the user's own
    QCOMPARE(channelRow(channelState)[ChannelColumn::Value].toolTip,
             QString("Принято: 21.5 &lt;i&gt;"));
    channelState.mark = ValueMark::Rejected;
    QCOMPARE(channelRow(channelState)[ChannelColumn::Value].toolTip, QString());
}

QTEST_APPLESS_MAIN(TestRowContent)
#include "tst_rowcontent.moc"
