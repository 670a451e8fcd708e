#include "calibration/entrytable.h"

#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableWidget>

namespace
{

constexpr qreal smallestPoints = 6;
constexpr qreal pointStep = 0.5;
constexpr QColor lockedText(0x5b, 0x68, 0x6f);
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

void keepReadableWhileLocked(QWidget *tab)
{
    // under a style sheet each widget needs the colours itself
    for (QWidget *widget : tab->findChildren<QWidget *>()) {
        QPalette palette = widget->palette();
        for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
            palette.setColor(QPalette::Disabled, role, lockedText);
        widget->setPalette(palette);
    }
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
