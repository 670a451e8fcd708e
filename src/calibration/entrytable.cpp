#include "calibration/entrytable.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalBlocker>

namespace
{

constexpr qreal smallestPoints = 6;
constexpr qreal pointStep = 0.5;
constexpr QColor unusedGround(0xe9, 0xee, 0xf0); ///< between those of windows and of headers

/** Makes the font smaller until the text fits into the cell. */
void fitFont(QStyleOptionViewItem *option)
{
    const QWidget *const table = option->widget;
    const QStyle *const style = table ? table->style() : QApplication::style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, option, table) + 1;
    const int available = option->rect.width() - 2 * margin;
    qreal points = option->font.pointSizeF();
    while (points > smallestPoints &&
           QFontMetricsF(option->font).horizontalAdvance(option->text) >= available) {
        points -= pointStep;
        option->font.setPointSizeF(points);
    }
    option->fontMetrics = QFontMetrics(option->font);
}

const QColor notRisingGround(255, 236, 179);

constexpr Qt::ItemFlags usedFlags = {Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable};

} // namespace

void EntryDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *const field = qobject_cast<QLineEdit *>(editor);
    if (!field) {
        RowDelegate::setEditorData(editor, index);
    } else if (!field->isModified() && field->text() != index.data(Qt::EditRole).toString()) {
        RowDelegate::setEditorData(editor, index);
        field->selectAll(); // what is typed next replaces it
    }
}

void EntryDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    RowDelegate::initStyleOption(option, index);
    fitFont(option); // a number cut short would be taken for another
    if (!index.flags().testFlag(Qt::ItemIsEnabled))
        option->backgroundBrush = unusedGround;
}

void prepareEntryTable(QTableWidget *table)
{
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            auto *const item = new QTableWidgetItem;
            item->setTextAlignment(Qt::AlignCenter);
            table->setItem(row, column, item);
        }
    }
    table->setItemDelegate(new EntryDelegate(table));
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
}

void showEntry(QTableWidgetItem *item, const QString &text, bool isInUse)
{
    item->setText(text);
    item->setFlags(item->flags().setFlag(Qt::ItemIsEnabled, isInUse));
}

RatioTable::RatioTable(QWidget *parent)
    : QTableWidget(parent)
{
    setItemDelegate(new EntryDelegate(this));
    setTabKeyNavigation(false);
    connect(this, &QTableWidget::itemChanged, this, &RatioTable::edited);
}

void RatioTable::showLayout(const CharacteristicLayout &layout)
{
    const QSignalBlocker blocker(this);
    setRowCount(layout.rows);
    setColumnCount(layout.columns);
    for (int row = 0; row < layout.rows; ++row)
        for (int column = 0; column < layout.columns; ++column) {
            const bool isUsed = layout.isUsed({row, column});
            QTableWidgetItem *const cell = provideItem(row, column);
            cell->setFlags(isUsed ? usedFlags : Qt::NoItemFlags);
            if (!isUsed)
                cell->setText(blankCells(layout).at(row).at(column));
        }
    setVerticalHeaderLabels(layout.rowLabels);
    setHorizontalHeaderLabels(layout.columnLabels);
    verticalHeader()->setVisible(!layout.rowLabels.isEmpty());
    horizontalHeader()->setVisible(!layout.columnLabels.isEmpty());

    m_columnsInSight = layout.columnsInSight;
    const bool isScrolled = m_columnsInSight > 0;
    setHorizontalScrollBarPolicy(isScrolled ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    horizontalHeader()->setSectionResizeMode(isScrolled ? QHeaderView::Interactive
                                                        : QHeaderView::Stretch);
    sizeColumns();
}

void RatioTable::showTexts(const CellTexts &texts)
{
    const QSignalBlocker blocker(this);
    for (int row = 0; row < rowCount(); ++row)
        for (int column = 0; column < columnCount(); ++column) {
            QTableWidgetItem *const cell = provideItem(row, column);
            const QString text = texts.value(row).value(column);
            const bool isUsed = cell->flags() & Qt::ItemIsEditable;
            if (isUsed && cell->text() != text)
                cell->setText(text);
        }
}

void RatioTable::markNotRising(const QVector<int> &columns)
{
    const QSignalBlocker blocker(this);
    for (int row = 0; row < rowCount(); ++row)
        for (int column = 0; column < columnCount(); ++column) {
            const bool isMarked = row == emfRow && columns.contains(column);
            QTableWidgetItem *const cell = provideItem(row, column);
            cell->setBackground(isMarked ? QBrush(notRisingGround) : QBrush());
            cell->setToolTip(isMarked ? tr("ТЭДС не растёт с T") : QString());
        }
}

CellTexts RatioTable::texts() const
{
    CellTexts texts(rowCount());
    for (int row = 0; row < rowCount(); ++row)
        for (int column = 0; column < columnCount(); ++column) {
            const QTableWidgetItem *const cell = item(row, column);
            texts[row] << (cell ? cell->text() : QString());
        }
    return texts;
}

void RatioTable::endEdit()
{
    // nothing but the cell's editor can stand there; taking the focus away is not enough, since a
    // window that is not active gives none
    if (QWidget *const editor = indexWidget(currentIndex())) {
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

QSize RatioTable::sizeHint() const
{
    constexpr int mostRows = 2;
    const int height = horizontalHeader()->sizeHint().height() +
                       mostRows * verticalHeader()->defaultSectionSize() +
                       horizontalScrollBar()->sizeHint().height() + 2 * frameWidth();
    return {QTableWidget::sizeHint().width(), qMax(height, minimumHeight())};
}

void RatioTable::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || state() == EditingState)
        return QTableWidget::keyPressEvent(event);
    if (currentIndex().flags() & Qt::ItemIsEditable)
        edit(currentIndex());
    event->accept(); // the dialog would press its default button
}

void RatioTable::resizeEvent(QResizeEvent *event)
{
    QTableWidget::resizeEvent(event);
    sizeColumns();
}

QTableWidgetItem *RatioTable::provideItem(int row, int column)
{
    if (!item(row, column))
        setItem(row, column, new QTableWidgetItem);
    return item(row, column);
}

void RatioTable::sizeColumns()
{
    if (m_columnsInSight == 0)
        return;
    const int width = (viewport()->width() - verticalHeader()->width()) / m_columnsInSight - 1;
    horizontalHeader()->setDefaultSectionSize(width);
}
