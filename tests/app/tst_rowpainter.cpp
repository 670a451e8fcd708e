#include "app/rowpainter.h"
#include "app/tablesetup.h"

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

QTEST_MAIN(TestRowPainter)
#include "tst_rowpainter.moc"
