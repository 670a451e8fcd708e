#include "app/numericpanels.h"
#include "app/windowtables.h"
#include "widgets/changemark.h"
#include "widgets/headedtable.h"
#include "widgets/rowdelegate.h"
#include "windowfixture.h"

/** What the rows of the tables show in every state, how they are painted, and what the panels do
 *  with their numbers. */
class TestRows : public QObject
{
    Q_OBJECT
    /** In what the state differs from the ordinary one; the row; its tool tips. */
    using Case = std::tuple<QString, const char *, QString>;

    template<typename State>
    static State stateOf(const QString &words)
    {
        State state;
        state.value = "21.50";
        state.unit = words.contains("markup") ? "<i>" : "°С"; // the user's own
        state.mark = words.contains("alarm")      ? ValueMark::Alarm
                     : words.contains("rejected") ? ValueMark::Rejected
                     : words.contains("accepted") ? ValueMark::Accepted
                                                  : ValueMark::None;
        if (words.contains("received"))
            state.received = 21.512345678;
        state.hovered = words.contains("hovered");
        return state;
    }
    /** The cells as they are seen, and their tool tips: with a star where something is awaited. */
    static QStringList described(const RowContent &row)
    {
        QStringList cells;
        QStringList tips;
        for (const CellContent &cell : row) {
            cells << seenCell(cell.text, cell.textColor, cell.background);
            tips << cell.toolTip.section('\n', 0, 0) +
                        QStringList{"", "*", " .", " !"}[int(cell.sign)];
        }
        return {cells.join('|'), tips.mid(1).join('|'), tips.first()};
    }

    /** The ground of a cell, beside its text and inside the grid line. */
    QColor ground(int column) const
    {
        const QRect cell = table->visualItemRect(table->item(1, column));
        return picture().pixelColor(cell.topLeft() + QPoint(3, 3));
    }
    QImage picture() const { return table->viewport()->grab().toImage(); }
    /** The smallest rectangle around what has a colour. */
    static QRect inkOf(const QImage &picture, const QColor &color)
    {
        QRect ink;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (picture.pixelColor(x, y) == color)
                    ink |= QRect(x, y, 1, 1);
        return ink;
    }
    void paint() { paintRow(table.get(), 1, row); }

    std::unique_ptr<HeadedTable> table;
    RowContent row;

private slots:
    void instruments()
    {
        const char *const name = "NOX B|||||";
        const Case cases[] = {
            {"hovered empty", "|NOX B|1234|21.50|°С|-|☰", name},
            {"alarm received", "|NOX B|1234|21.50[red]|°С[red]|3 (!)[red]|",
             "NOX B||Принято: 21.51234568 °С !|||"},
            {"rejected received", "|NOX B|1234|--[yellow]|°С[yellow]|3[yellow]|", name},
            {"hovered current",
             "[current]|NOX B[current]|1234[current]|21.50[current]|°С[current]|3[current]|"
             "<[current]",
             name},
            {"unlinked", "[gray]|NOX B[gray]|1234[gray]|21.50[gray]|°С[gray]|3[gray]|[gray]", name},
            {"unlinked accepted", "[gray]|NOX B[gray]|1234[gray]|21.50|°С|3|[gray]", name},
            {"exchanging received markup", "|<b>|1234|21.50|<i>|3|",
             "&lt;b&gt;||Идёт обмен с прибором, измерения появятся после него*|Идёт обмен с "
             "прибором, измерения появятся после него|Идёт обмен с прибором, измерения появятся "
             "после него|"}};
        for (const auto &[words, cells, tips] : cases) {
            auto state = stateOf<InstrumentState>(words);
            state.name = words.contains("markup") ? "<b>" : "NOX B";
            state.number = "1234";
            state.channel = words.contains("empty") ? -1 : 2;
            state.connected = !words.contains("unlinked");
            state.current = words.contains("current");
            state.exchanging = words.contains("exchanging");
            QCOMPARE(described(instrumentRow(state)),
                     (QStringList{cells, tips, "Показать или скрыть графики прибора (Пробел)"}));
        }
    }

    void channels()
    {
        const QString off = "||||Измерение разности выключено|";
        const Case cases[] = {
            {"hidden hovered", "5|21.50|°С|2.0|0.01|-|☰", off},
            {"main hovered", "5[current]|21.50|°С|2.0|0.01|-|<[current]", off},
            {"difference received markup", "5|21.50|<i>|2.0|0.01|2|",
             "Принято: 21.51234568 &lt;i&gt;||||Разность с NOX B №1234, канал №2|"},
            {"fresh accepted", "5|21.50[fresh]|°С[fresh]|2.0[fresh]|0.01[fresh]|-[fresh]|",
             " ." + off},
            {"inactive", "5|21.50[gray]|°С[gray]|2.0[gray]|0.01[gray]|-[gray]|", off},
            {"inactive alarm", "5|21.50[red]|°С[red]|2.0[red]|0.01[red]|-[red]|", " !" + off},
            {"fresh rejected received", "5|--[yellow]|--[yellow]|--[yellow]|--[yellow]|-[yellow]|",
             off}};
        for (const auto &[words, cells, tips] : cases) {
            auto state = stateOf<ChannelState>(words);
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
            const RowContent row = channelRow(state);
            QCOMPARE(described(row),
                     (QStringList{cells, tips,
                                  "Левая кнопка мыши (Пробел): показать или скрыть график"}));
            QCOMPARE(row[0].swatch, state.shown ? QColor(Qt::blue) : QColor(Qt::transparent));
        }
    }

    void init()
    {
        row = {};
        table = std::make_unique<HeadedTable>();
        QVector<TableColumn> columns(tableColumns, {"1", {}, 50});
        columns[1].title = "a long title";
        columns[3].width = 0;
        setUpTable(table.get(), columns);
        table->setRowCount(2);
        table->resize(400, 100);
    }

    void touchesOnlyWhatChanged()
    {
        row[1] = {"21.50", Qt::black, Qt::yellow, {}, "tip", {}, {}};
        paintRow(table.get(), 1, row, 1, 2);
        for (int column = 0; column < tableColumns; ++column)
            QCOMPARE(table->item(1, column) != nullptr, column == 1 || column == 2);
        paint();
        QCOMPARE(table->item(1, 1)->textAlignment(), int(Qt::AlignCenter));
        const QColor plain = ground(3);
        selectTableRow(table.get(), 1);
        QCOMPARE(ground(1), QColor(Qt::yellow));
        QVERIFY(ground(3) != plain);
        selectTableRow(table.get(), 0);
        QCOMPARE(ground(3), plain);

        const QImage quiet = picture();
        const QSignalSpy changes(table.get(), &QTableWidget::cellChanged);
        paint();
        QCOMPARE(changes.size(), 0);
        row[1].background = QColor();
        paint();
        QCOMPARE(changes, (QList<QVariantList>{{1, 1}}));
        QCOMPARE(ground(1), plain);
        row[1].background = Qt::yellow;
        QVector<QImage> seen = {quiet};
        for (const CellSign sign : {CellSign::Waiting, CellSign::Fresh, CellSign::Alarm}) {
            row[1].sign = sign;
            paint();
            QVERIFY(!seen.contains(picture())); // each is another
            seen << picture();
        }
        row[1].textColor = Qt::lightGray;
        row[1].spoken = "aloud";
        paint();
        QVERIFY(table->item(1, 1)->font().italic());
        QCOMPARE(table->item(1, 1)->data(Qt::AccessibleTextRole).toString(), "aloud");
    }

    void framesTheColourInWhite()
    {
        const auto icon = [this](const QColor &color) {
            row[0].swatch = color;
            paint();
            const QPixmap picture = table->item(1, 0)->icon().pixmap(16, 16);
            return picture.toImage().convertToFormat(QImage::Format_ARGB32);
        };
        for (const QColor color : {Qt::red, Qt::transparent, Qt::red, Qt::transparent}) {
            QImage expected(16, 16, QImage::Format_ARGB32);
            expected.fill(color == Qt::red ? Qt::white : Qt::transparent);
            QPainter(&expected).fillRect(2, 2, 12, 12, color);
            QCOMPARE(icon(color), expected);
        }
        QVERIFY(icon({}).isNull());
    }

    void numbersStandBesideTheColour()
    {
        row[0] = {"16", Qt::black, {}, Qt::red, {}, {}, {}};
        const auto number = [this](int width) { // its leftmost digit, with what follows
            table->setColumnWidth(0, width);
            const QRect cell = table->visualItemRect(table->item(1, 0));
            const QRect ink = inkOf(picture().copy(cell), Qt::black);
            return picture().copy(ink.translated(cell.topLeft()));
        };
        paint();
        QCOMPARE(number(50), number(150)); // whole, and not "1..."
    }

    void currentCellIsFramed()
    {
        paint();
        table->show();
        QVERIFY(QTest::qWaitForWindowActive(table.get()));
        table->setFocus();
        table->setCurrentCell(1, 2);
        QCOMPARE(inkOf(picture(), accentColor()), table->visualItemRect(table->item(1, 2)));
    }

    void textsCanBeRead()
    {
        const QColor gray(Qt::lightGray);
        const QColor fresh(144, 238, 144, 128);
        // text, its ground, selected row
        const std::tuple<QColor, QColor, int> cases[] = {{gray, {}, 0},
                                                         {gray, {173, 216, 230}, 1},
                                                         {gray, {}, 1},
                                                         {gray, fresh, 1},
                                                         {Qt::red, fresh, 0}};
        for (const auto &[text, onGround, selected] : cases) {
            row[1] = {QString(3, QChar(0x2588)), text, onGround, {}, {}, {}, {}}; // all text
            row[2].background = onGround;
            paint();
            selectTableRow(table.get(), selected);
            const QRect cell = table->visualItemRect(table->item(1, 1));
            const QColor painted = picture().pixelColor(cell.center());
            const double reached = contrast(painted, ground(2));
            QVERIFY2(reached >= 4.5 && reached < 5.5, qPrintable(QString::number(reached)));
            QVERIFY(painted != QColor(Qt::black)); // off looks off
            QCOMPARE(painted.hslHue(), text.hslHue());
        }
    }

    void titlesFitTheirColumns()
    {
        const auto title = [this](int column) {
            return qobject_cast<QLabel *>(table->cellWidget(0, column));
        };
        picture(); // in which they get their sizes
        const int needed = title(1)->fontMetrics().horizontalAdvance(title(1)->text());
        QVERIFY2(needed <= 46 && needed > 30, qPrintable(QString::number(needed)));
        QCOMPARE(title(0)->font(), title(3)->font());
        QCOMPARE(title(0)->cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(title(1)->cursor().shape(), Qt::ArrowCursor);
    }

    void panelsShowNumbersAndUnit()
    {
        QWidget window;
        QFrame value(&window);
        QFrame average(&window);
        NumericPanels panels(&value, &average);
        for (QFrame *frame : {&value, &average})
            frame->resize(460, 80);
        window.show();
        const auto *number = value.findChild<QLabel *>("mainMeasLabel");
        const auto *below = average.findChild<QLabel *>("mainAverLabel");
        const auto *unit = value.findChild<QLabel *>("mainDimLabel");
        const QVector<QPair<QString, int>> units = {
            {"мВ", 32}, {"кОм", 27}, {"м/сек", 25}, {"<b>6789ab</b>", 17}, {QString(30, 'x'), 6}};
        for (const auto &[text, size] : units) {
            panels.showNumbers("-21.123456", "21.1", text);
            QCOMPARE(unit->text(), text); // as it is, and not as markup
            QCOMPARE(unit->textFormat(), Qt::PlainText);
            QCOMPARE(unit->toolTip(), QString(text).replace('<', "&lt;").replace('>', "&gt;"));
            QCOMPARE(unit->styleSheet(), QString("font: %1pt;").arg(size));
        }
        QCOMPARE(unit->geometry(), QRect(460 - 8 - 75, unit->y(), 75, unit->height()));
        QCOMPARE(below->geometry().right(), number->geometry().right());
        QCOMPARE(value.accessibleName() + ", " + average.accessibleName(),
                 "Значение: -21.123456, Среднее: 21.1");
        const auto pointsOf = [&](const QString &text) {
            panels.showNumbers(text, "1", "мВ");
            return number->font().pointSize();
        };
        QCOMPARE(pointsOf(QString(80, '0')), 10);
        QVERIFY(pointsOf("-1234.123456789") > 13);
        QVERIFY(number->fontMetrics().horizontalAdvance(number->text()) <= number->width());
        value.resize(900, 80);
        QCOMPARE(number->font().pointSize(), 42);
        QCOMPARE(below->font().pointSize(), 28);
        QCOMPARE(unit->alignment(), number->alignment());
        for (const QLabel *one : {number, below}) {
            QCOMPARE(one->alignment(), Qt::AlignRight | Qt::AlignVCenter);
            QCOMPARE(one->cursor().shape(), Qt::PointingHandCursor);
        }
    }
};

QTEST_MAIN(TestRows)
#include "tst_rows.moc"
