#include "windowfixture.h"

/** What the rows of the tables show, for every state that an instrument or a channel can be in. */
class TestRowContent : public QObject
{
    Q_OBJECT
    struct Case {
        const char *words; ///< in what the state differs from the ordinary one
        const char *row;
        const char *tips;
    };

    static void setLatest(LatestValue *latest, const QString &words)
    {
        latest->value = "21.50";
        latest->unit = words.contains("markup") ? "<i>" : "°С"; // the user's own
        latest->mark = words.contains("alarm")      ? ValueMark::Alarm
                       : words.contains("rejected") ? ValueMark::Rejected
                       : words.contains("accepted") ? ValueMark::Accepted
                                                    : ValueMark::None;
        if (words.contains("received"))
            latest->received = 21.512345678;
    }
    /** The cells as they are seen, and their tool tips: with a star where something is awaited. */
    static QStringList seen(const RowContent &row)
    {
        QStringList cells;
        QStringList tips;
        for (const CellContent &cell : row) {
            cells << seenCell(cell.text, cell.textColor, cell.background);
            tips << cell.toolTip.section('\n', 0, 0) + (cell.waiting ? "*" : "");
        }
        return {cells.join('|'), tips.mid(1).join('|'), tips.first()};
    }

private slots:
    void instruments()
    {
        const char *const name = "NOX B|||||";
        const Case cases[] = {
            {"", "|NOX B|1234|21.50|°С|3|", name},
            {"hovered", "|NOX B|1234|21.50|°С|3|☰", name},
            {"empty", "|NOX B|1234|21.50|°С|-|", name},
            {"alarm", "|NOX B|1234|21.50[red]|°С[red]|3 (!)[red]|", name},
            {"rejected received", "|NOX B|1234|--[yellow]|°С[yellow]|3[yellow]|", name},
            {"hovered current",
             "[current]|NOX B[current]|1234[current]|21.50[current]|°С[current]|3[current]|"
             "<[current]",
             name},
            {"unlinked", "[gray]|NOX B[gray]|1234[gray]|21.50[gray]|°С[gray]|3[gray]|[gray]", name},
            {"unlinked accepted", "[gray]|NOX B[gray]|1234[gray]|21.50|°С|3|[gray]", name},
            {"current accepted received",
             "[current]|NOX B[current]|1234[current]|21.50|°С|3|<[current]",
             "NOX B||Принято: 21.51234568 °С|||"},
            {"exchanging received markup", "|<b>|1234|21.50|<i>|3|",
             "&lt;b&gt;||Идёт обмен с прибором, измерения появятся после него*|Идёт обмен с "
             "прибором, измерения появятся после него|Идёт обмен с прибором, измерения появятся "
             "после него|"}};
        for (const Case &one : cases) {
            const QString words = one.words;
            InstrumentState state;
            setLatest(&state, words);
            state.name = words.contains("markup") ? "<b>" : "NOX B";
            state.number = "1234";
            state.channel = words.contains("empty") ? -1 : 2;
            state.connected = !words.contains("unlinked");
            state.current = words.contains("current");
            state.hovered = words.contains("hovered");
            state.exchanging = words.contains("exchanging");
            QCOMPARE(
                seen(instrumentRow(state)),
                (QStringList{one.row, one.tips, "Показать или скрыть графики прибора (Пробел)"}));
        }
    }

    void channels()
    {
        const char *const off = "||||Измерение разности выключено|";
        const Case cases[] = {
            {"", "5|21.50|°С|2.0|0.01|-|", off},
            {"hidden hovered", "5|21.50|°С|2.0|0.01|-|☰", off},
            {"main hovered", "5[current]|21.50|°С|2.0|0.01|-|<[current]", off},
            {"difference received markup", "5|21.50|<i>|2.0|0.01|2|",
             "Принято: 21.51234568 &lt;i&gt;||||Разность с NOX B №1234, канал №2|"},
            {"fresh accepted", "5|21.50[fresh]|°С[fresh]|2.0[fresh]|0.01[fresh]|-[fresh]|", off},
            {"inactive", "5|21.50[gray]|°С[gray]|2.0[gray]|0.01[gray]|-[gray]|", off},
            {"inactive fresh",
             "5|21.50[gray fresh]|°С[gray fresh]|2.0[gray fresh]|0.01[gray fresh]|-[gray fresh]|",
             off},
            {"inactive alarm", "5|21.50[red]|°С[red]|2.0[red]|0.01[red]|-[red]|", off},
            {"fresh rejected received", "5|--[yellow]|--[yellow]|--[yellow]|--[yellow]|-[yellow]|",
             off}};
        for (const Case &one : cases) {
            const QString words = one.words;
            ChannelState state;
            setLatest(&state, words);
            state.number = 4;
            state.color = Qt::blue;
            state.shown = !words.contains("hidden");
            state.fresh = words.contains("fresh");
            state.deltaX = "2.0";
            state.deltaY = "0.01";
            state.referenceChannel = words.contains("difference") ? 1 : -1;
            state.referenceInstrument = "NOX B №1234";
            state.inactive = words.contains("inactive");
            state.main = words.contains("main");
            state.hovered = words.contains("hovered");
            const RowContent row = channelRow(state);
            QCOMPARE(seen(row).mid(0, 2), (QStringList{one.row, one.tips}));
            QVERIFY(seen(row).last().startsWith("Левая кнопка мыши (Пробел)"));
            QCOMPARE(row[0].swatch, state.shown ? QColor(Qt::blue) : QColor(Qt::transparent));
        }
    }
};

QTEST_APPLESS_MAIN(TestRowContent)
#include "tst_rowcontent.moc"
