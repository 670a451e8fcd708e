#include "app/windowtables.h"
#include "widgets/rowdelegate.h"

#include <QSignalSpy>
#include <QTableWidget>
#include <QtTest>

namespace
{

RowContent content()
{
    RowContent row;
    row[0].text = QStringLiteral("1");
    row[0].swatch = Qt::red;
    row[1].text = QStringLiteral("21.50");
    row[1].background = freshColor();
    row[2].textColor = Qt::lightGray;
    row[5].toolTip = QStringLiteral("no difference");
    return row;
}

QColor centreOf(const QTableWidget &table, int row, int column)
{
    const QRect cell = table.visualItemRect(table.item(row, column));
    // beside the text, inside the grid line
    const QPoint point = cell.topLeft() + QPoint(3, 3);
    return table.viewport()->grab().toImage().pixelColor(point);
}

} // namespace

class TestRowPainter : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void touchesOnlyWhatChanged();
    void keepsToTheColumnsGiven();
    void framesTheColourInWhite();
    void selectionLeavesColoursAlone();
    void textsCanBeRead_data();
    void textsCanBeRead();
    void signShowsThatSomethingIsAwaited();

private:
    std::unique_ptr<QTableWidget> table;
};

void TestRowPainter::init()
{
    table = std::make_unique<QTableWidget>();
    setUpTable(table.get(), QVector<TableColumn>(tableColumns, {"title", {}, 50}));
    table->setRowCount(2);
    table->resize(400, 100);
}

void TestRowPainter::touchesOnlyWhatChanged()
{
    RowContent row = content();
    paintRow(table.get(), 1, row);
    const QSignalSpy changes(table.get(), &QTableWidget::cellChanged);
    paintRow(table.get(), 1, row);
    QCOMPARE(changes.size(), 0);

    row[1].text = QStringLiteral("21.51");
    paintRow(table.get(), 1, row);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.at(0), QVariantList({1, 1}));

    row[1].background = QColor();
    paintRow(table.get(), 1, row);
    QCOMPARE(table->item(1, 1)->background().style(), Qt::NoBrush);
}

void TestRowPainter::keepsToTheColumnsGiven()
{
    paintRow(table.get(), 1, content(), 1, 2);
    for (int column = 0; column < tableColumns; ++column)
        QCOMPARE(table->item(1, column) != nullptr, column == 1 || column == 2);
}

void TestRowPainter::framesTheColourInWhite()
{
    paintRow(table.get(), 1, content());
    const QImage icon = table->item(1, 0)->icon().pixmap(16, 16).toImage();
    QCOMPARE(icon.size(), QSize(16, 16));
    QCOMPARE(icon.pixelColor(8, 8), QColor(Qt::red));
    for (const QPoint point : {QPoint(0, 0), QPoint(1, 8), QPoint(8, 14), QPoint(15, 15)})
        QCOMPARE(icon.pixelColor(point), QColor(Qt::white));

    RowContent hidden = content();
    hidden[0].swatch = Qt::transparent;
    paintRow(table.get(), 1, hidden);
    QCOMPARE(table->item(1, 0)->icon().pixmap(16, 16).toImage().pixelColor(8, 8).alpha(), 0);
}

void TestRowPainter::selectionLeavesColoursAlone()
{
    RowContent row = content();
    row[1].background = Qt::yellow;
    paintRow(table.get(), 1, row);
    const QColor plain = centreOf(*table, 1, 3);
    selectTableRow(table.get(), 1);
    QCOMPARE(centreOf(*table, 1, 1), QColor(Qt::yellow));
    QVERIFY(centreOf(*table, 1, 3) != plain);
}

void TestRowPainter::textsCanBeRead_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<bool>("selected");
    QTest::newRow("off") << QColor(Qt::lightGray) << QColor() << false;
    QTest::newRow("off, current") << QColor(Qt::lightGray) << currentColor() << true;
    QTest::newRow("off, selected") << QColor(Qt::lightGray) << QColor() << true;
    QTest::newRow("off, fresh, selected") << QColor(Qt::lightGray) << freshColor() << true;
    QTest::newRow("alarm, fresh") << QColor(Qt::red) << freshColor() << false;
}

void TestRowPainter::textsCanBeRead()
{
    QFETCH(QColor, text);
    QFETCH(QColor, ground);
    QFETCH(bool, selected);
    RowContent row;
    row[1] = {QString(3, QChar(0x2588)), text, ground, {}, {}}; // the cell is full of text
    row[2].background = ground;
    paintRow(table.get(), 1, row);
    selectTableRow(table.get(), selected ? 1 : 0);
    QCOMPARE(table->item(1, 1)->foreground().color(), text);
    const QRect cell = table->visualItemRect(table->item(1, 1));
    const QColor painted = table->viewport()->grab().toImage().pixelColor(cell.center());
    const double reached = contrast(painted, centreOf(*table, 1, 2));
    QVERIFY2(reached >= 4.5, qPrintable(QString::number(reached)));
    QVERIFY(painted != QColor(Qt::black)); // off looks off
    QCOMPARE(painted.hslHue(), text.hslHue());
}

void TestRowPainter::signShowsThatSomethingIsAwaited()
{
    RowContent row;
    paintRow(table.get(), 1, row);
    const auto picture = [this] { return table->viewport()->grab().toImage(); };
    const QImage quiet = picture();
    row[1].waiting = true;
    paintRow(table.get(), 1, row);
    QVERIFY(picture() != quiet);
}

QTEST_MAIN(TestRowPainter)
#include "tst_rowpainter.moc"
