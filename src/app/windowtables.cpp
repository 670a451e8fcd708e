#include "app/windowtables.h"

#include "plot/qwtnox.h"
#include "widgets/headedtable.h"
#include "widgets/qlabelclick.h"
#include "widgets/rowdelegate.h"

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QHeaderView>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <utility>

namespace
{

constexpr QSize pictureSize(20, 20);
constexpr int titleMargin = 2;
constexpr int smallestPoints = 6;
constexpr int swatchSize = 16;
constexpr int swatchFrame = 2;
constexpr int swatchRole = Qt::UserRole;

/** A picture with the title as its tool tip, or the title, as small as it must be to be read. */
QLabel *titleLabel(const TableColumn &column)
{
    if (column.picture.isEmpty()) {
        auto *const title = new FittedLabel(smallestPoints, QApplication::font().pointSize());
        title->setContentsMargins(titleMargin, 0, titleMargin, 0);
        title->showText(column.title);
        return title;
    }
    auto *const picture = new QLabelClick;
    picture->setToolTip(column.title);
    picture->setAccessibleName(column.title);
    picture->setPixmap(QIcon(column.picture).pixmap(pictureSize));
    return picture;
}

QLabel *headerCell(const TableColumn &column, bool clickable)
{
    QLabel *const label = titleLabel(column);
    label->setCursor(clickable ? Qt::PointingHandCursor : Qt::ArrowCursor);
    label->setAlignment(Qt::AlignCenter);
    label->setAutoFillBackground(true);
    label->setAttribute(Qt::WA_NoMousePropagation); // the rows may lie below it
    return label;
}

void setWidth(QHeaderView *header, int section, int width)
{
    header->setSectionResizeMode(section, width > 0 ? QHeaderView::Fixed : QHeaderView::Stretch);
    if (width > 0)
        header->resizeSection(section, width);
}

QPixmap swatchPixmap(const QColor &color, int scale)
{
    QPixmap pixmap(swatchSize * scale, swatchSize * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(color);
    if (color.alpha() == 0)
        return pixmap;
    QPainter painter(&pixmap);
    painter.setPen(QPen(Qt::white, swatchFrame, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const int inset = swatchFrame / 2;
    const int side = swatchSize - swatchFrame;
    painter.drawRect(inset, inset, side, side);
    return pixmap;
}

/** A cell whose tool tip is said too. */
class SpokenItem : public QTableWidgetItem
{
public:
    QVariant data(int role) const override
    {
        const bool isDescription = role == Qt::AccessibleDescriptionRole;
        return QTableWidgetItem::data(isDescription ? int(Qt::ToolTipRole) : role);
    }
};

QTableWidgetItem *itemAt(QTableWidget *table, int row, int column)
{
    if (QTableWidgetItem *item = table->item(row, column))
        return item;
    auto *item = new SpokenItem;
    item->setTextAlignment(Qt::AlignCenter);
    table->setItem(row, column, item);
    return item;
}

void paintSwatch(QTableWidgetItem *item, const QColor &color)
{
    if (item->data(swatchRole).value<QColor>() == color)
        return;
    item->setData(swatchRole, color);
    item->setIcon(color.isValid() ? swatchIcon(color) : QIcon());
}

QVariant italic()
{
    QFont font;
    font.setItalic(true);
    return font;
}

// An item reports a change, and its cell is painted again, only where the new content differs.
void paintCell(QTableWidgetItem *item, const CellContent &content)
{
    item->setText(content.text);
    item->setToolTip(content.toolTip);
    item->setForeground(content.textColor);
    item->setBackground(content.background.isValid() ? QBrush(content.background) : QBrush());
    item->setData(signRole, int(content.sign));
    item->setData(Qt::AccessibleTextRole, content.spoken);
    // a faint colour alone would not tell
    item->setData(Qt::FontRole, content.textColor == Qt::lightGray ? italic() : QVariant());
    paintSwatch(item, content.swatch);
}

/** The height of the lower of two tables that share `total`, all in pixels. */
int lowerShare(int total, int upperNeed, int lowerNeed)
{
    if (upperNeed + lowerNeed <= total)
        return lowerNeed;
    return std::max(std::min(lowerNeed, total / 2), total - upperNeed);
}

} // namespace

void setUpTable(HeadedTable *table, const QVector<TableColumn> &columns)
{
    table->setColumnCount(columns.size());
    table->setRowCount(1);
    QStringList titles;
    for (int column = 0; column < columns.size(); ++column) {
        titles << columns.at(column).title.section(QLatin1Char(':'), 0, 0);
        setWidth(table->horizontalHeader(), column, columns.at(column).width);
        table->setCellWidget(0, column, headerCell(columns.at(column), column == 0));
    }
    table->sayTitles(titles);
    table->setItemDelegate(new RowDelegate(table));
    table->setSelectionMode(QAbstractItemView::NoSelection);
    table->setMouseTracking(true);
}

void readLatest(LatestValue *latest, const QwtNOX &plot, const noxList::_nox &nox, uchar ch)
{
    constexpr bool difference = false;
    latest->value = plot.getChMeasStr(nox.qwtIndex, ch);
    latest->unit = plot.getChDim(nox.qwtIndex, ch);
    if (latest->unit.isEmpty())
        latest->unit = nox.opt->getChMeasTypeName(ch);
    if (plot.getChMeasCount(nox.qwtIndex, ch, difference) > 0)
        latest->received = plot.getChMeas(nox.qwtIndex, ch, latestPoint, difference);
}

void paintRow(QTableWidget *table, int row, const RowContent &content, int first, int last)
{
    for (int column = first; column <= last; ++column)
        paintCell(itemAt(table, row, column), content[size_t(column)]);
}

QIcon swatchIcon(const QColor &color)
{
    QIcon icon;
    for (const int scale : {1, 2})
        icon.addPixmap(swatchPixmap(color, scale));
    return icon;
}

void selectTableRow(QTableWidget *table, int row)
{
    if (row < 1) {
        table->clearSelection();
        return;
    }
    table->selectionModel()->select(table->model()->index(row, 0),
                                    QItemSelectionModel::ClearAndSelect |
                                        QItemSelectionModel::Rows);
}

QPoint placeBelowCell(const QTableWidget *table, int row, int column)
{
    const QRect cell = table->visualRect(table->model()->index(row, column));
    return table->viewport()->mapToGlobal(cell.bottomLeft());
}

RowHover::RowHover(QTableWidget *table, QSet<int> menuColumns, QObject *parent)
    : QObject(parent)
    , m_table(table)
    , m_menuColumns(std::move(menuColumns))
{
    m_table->viewport()->installEventFilter(this);
}

void RowHover::enter(int row, int column)
{
    const bool opensMenu = row > 0 && m_menuColumns.contains(column);
    m_table->viewport()->setCursor(opensMenu ? Qt::PointingHandCursor : Qt::ArrowCursor);
    if (row == m_row)
        return;
    const int from = std::exchange(m_row, row);
    emit moved(from, row);
}

bool RowHover::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Leave)
        enter(0, 0);
    return QObject::eventFilter(watched, event);
}

TableHeights::TableHeights(HeadedTable *upper, HeadedTable *lower, QObject *parent)
    : QObject(parent)
    , m_upper(upper)
    , m_lower(lower)
{
    for (HeadedTable *table : {upper, lower}) {
        table->installEventFilter(this);
        connect(table->model(), &QAbstractItemModel::rowsInserted, this, &TableHeights::divide);
        connect(table->model(), &QAbstractItemModel::rowsRemoved, this, &TableHeights::divide);
    }
}

bool TableHeights::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        divide();
    return QObject::eventFilter(watched, event);
}

void TableHeights::divide()
{
    m_lower->setPreferredHeight(lowerShare(m_upper->height() + m_lower->height(),
                                           m_upper->neededHeight(), m_lower->neededHeight()));
}
