#include "app/numericpanels.h"
#include "app/windowtables.h"
#include "widgets/qlabelclick.h"
#include "widgets/rowdelegate.h"

#include <QtTest>
#include <QtWidgets>

/** How the rows of tables are painted, and what the panels do with their numbers. */
class TestPainting : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTableWidget> table;
    RowContent row;

    QImage picture() const { return table->viewport()->grab().toImage(); }
    /** The ground of a cell, beside its text and inside the grid line. */
    QColor ground(int column) const
    {
        const QRect cell = table->visualItemRect(table->item(1, column));
        return picture().pixelColor(cell.topLeft() + QPoint(3, 3));
    }
    void paint() { paintRow(table.get(), 1, row); }

private slots:
    void init()
    {
        row = {};
        table = std::make_unique<QTableWidget>();
        QVector<TableColumn> columns(tableColumns, {"1", {}, 50});
        columns[1].title = "a long title";
        columns[3].width = 0;
        setUpTable(table.get(), columns);
        table->setRowCount(2);
        table->resize(400, 100);
    }

    void touchesOnlyWhatChanged()
    {
        row[1] = {"21.50", Qt::black, Qt::yellow, {}, "tip", false};
        paintRow(table.get(), 1, row, 1, 2);
        for (int column = 0; column < tableColumns; ++column)
            QCOMPARE(table->item(1, column) != nullptr, column == 1 || column == 2);
        paint();
        QCOMPARE(table->item(1, 1)->toolTip(), "tip");
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
        row[1].waiting = true;
        paint();
        QVERIFY(picture() != quiet); // it carries a sign
    }

    void framesTheColourInWhite()
    {
        const QString r = " #ffff0000";
        const QString w = " #ffffffff";
        const QString none = " #00000000";
        const QVector<QPair<QColor, QString>> looks = {
            {Qt::red, w + w + r + r + r + w + w},
            {Qt::transparent, none + none + none + none + none + none + none},
            {Qt::red, w + w + r + r + r + w + w}};
        for (const auto &look : looks) {
            row[0].swatch = look.first;
            paint();
            const QImage icon = table->item(1, 0)->icon().pixmap(16, 16).toImage();
            QString colors;
            for (const int x : {0, 1, 2, 8, 13, 14, 15})
                colors += ' ' + icon.pixelColor(x, 8).name(QColor::HexArgb);
            QCOMPARE(colors, look.second);
            QCOMPARE(icon.pixelColor(8, 0), icon.pixelColor(0, 8));
        }
        row[0].swatch = QColor();
        paint();
        QVERIFY(table->item(1, 0)->icon().isNull());
    }

    void textsCanBeRead()
    {
        QStringList contrasts;
        for (const Qt::GlobalColor color : {Qt::red, Qt::green, Qt::blue, Qt::darkGray, Qt::black})
            contrasts << QString::number(contrast(Qt::white, color), 'f', 2);
        QCOMPARE(contrasts.join(' '), "4.00 1.37 8.59 3.95 21.00");
        const QColor gray(Qt::lightGray);
        const QColor fresh(144, 238, 144, 128);
        const struct {
            QColor text;
            QColor onGround;
            bool selected;
        } cases[] = {{gray, {}, false},
                     {gray, {173, 216, 230}, true},
                     {gray, {}, true},
                     {gray, fresh, true},
                     {Qt::red, fresh, false}};
        for (const auto &one : cases) {
            row[1] = {QString(3, QChar(0x2588)), one.text, one.onGround, {}, {}, false}; // all text
            row[2].background = one.onGround;
            paint();
            selectTableRow(table.get(), one.selected ? 1 : 0);
            const QRect cell = table->visualItemRect(table->item(1, 1));
            const QColor painted = picture().pixelColor(cell.center());
            const double reached = contrast(painted, ground(2));
            QVERIFY2(reached >= 4.5 && reached < 5.5, qPrintable(QString::number(reached)));
            QVERIFY(painted != QColor(Qt::black)); // off looks off
            QCOMPARE(painted.hslHue(), one.text.hslHue());
        }
    }

    void titlesFitTheirColumns()
    {
        const auto title = [this](int column) {
            return qobject_cast<QLabel *>(table->cellWidget(0, column));
        };
        QCOMPARE(table->columnWidth(0) + table->columnWidth(6), 100);
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
        QCOMPARE(number->text() + below->text() + unit->styleSheet(), "----font: 32pt;");
        const QVector<QPair<QString, int>> points = {
            {"мВ", 32}, {"кОм", 27}, {"м/сек", 25}, {"<b>6789ab</b>", 17}, {QString(30, 'x'), 6}};
        for (const auto &one : points) {
            panels.showNumbers("-21.123456", "21.1", one.first);
            QCOMPARE(unit->text(), one.first); // as it is, and not as markup
            QCOMPARE(unit->textFormat(), Qt::PlainText);
            QCOMPARE(unit->toolTip(), QString(one.first).replace('<', "&lt;").replace('>', "&gt;"));
            QCOMPARE(unit->styleSheet(), QString("font: %1pt;").arg(one.second));
        }
        QCOMPARE(number->geometry().right(), below->geometry().right());
        QCOMPARE(unit->geometry(), QRect(460 - 8 - 75, unit->y(), 75, unit->height()));
        for (const QLabel *one : {number, below}) {
            QCOMPARE(one->alignment(), Qt::AlignRight | Qt::AlignVCenter);
            QCOMPARE(one->cursor().shape(), Qt::PointingHandCursor);
        }
        QCOMPARE(value.accessibleName(), "Значение: -21.123456");
        QCOMPARE(average.accessibleName(), "Среднее: 21.1");
        panels.showNumbers("1", "1", "мВ");
        QCOMPARE(number->font().pointSize(), 42);
        QCOMPARE(below->font().pointSize(), 28);
    }

    void numbersFitTheirWidth()
    {
        FittedLabel number(40);
        number.resize(300, 80);
        number.show();
        number.showText(QString(80, '0'));
        QCOMPARE(number.font().pointSize(), 10);
        number.showText("-1234.123456789");
        QVERIFY(number.fontMetrics().horizontalAdvance(number.text()) <= number.width());
        QVERIFY(number.font().pointSize() > 13);
        number.resize(900, 80);
        QCOMPARE(number.font().pointSize(), 40);
    }
};

QTEST_MAIN(TestPainting)
#include "tst_painting.moc"
