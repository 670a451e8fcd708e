#include "dialogs/channelsettingstable.h"

#include "device/optionsnox8.h"
#include "dialogs/channelcells.h"
#include "dialogs/channelmenus.h"
#include "dialogs/configurationchanges.h"
#include "widgets/rowdelegate.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QTableWidget>

namespace
{

constexpr int choiceWidth = 75;
constexpr int characteristicWidth = 200;
constexpr int rowMargin = 3;

bool isCharacteristic(int column)
{
    return column == CharacteristicSetting || column == CompensationSetting;
}

bool opensMenu(int key)
{
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter ||
           key == Qt::Key_Menu;
}

/** The columns are as wide as their titles need at least; names of characteristics share the rest.
 */
void layOutColumns(QHeaderView *header)
{
    header->setSectionsClickable(true);
    for (int column = 0; column < channelSettings; ++column) {
        const int width = isCharacteristic(column) ? characteristicWidth : choiceWidth;
        header->resizeSection(column, qMax(width, header->sectionSizeHint(column)));
        if (isCharacteristic(column))
            header->setSectionResizeMode(column, QHeaderView::Stretch);
    }
}

QTableWidgetItem *provideItem(QTableWidget *table, int row, int column)
{
    if (QTableWidgetItem *item = table->item(row, column))
        return item;
    auto *const item = new QTableWidgetItem;
    item->setTextAlignment(Qt::AlignCenter);
    table->setItem(row, column, item);
    return item;
}

void paintRow(QTableWidget *table, int row, const ChannelCells &cells,
              const std::array<bool, channelSettings> &changed)
{
    for (int column = 0; column < channelSettings; ++column) {
        const auto cell = std::size_t(column);
        QTableWidgetItem *const item = provideItem(table, row, column);
        const bool isFaint = column != OnOffSetting && !cells.isOn;
        const bool isOpen = column != CompensationSetting || cells.isCompensated;
        item->setText(cells.texts.at(cell));
        item->setForeground(isFaint ? Qt::lightGray : Qt::black);
        item->setFlags(isOpen ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags);
        item->setData(changedRole, changed.at(cell));
    }
}

} // namespace

ChannelSettingsTable::ChannelSettingsTable(QTableWidget *table, ChannelMenus *menus)
    : QObject(table)
    , m_table(table)
    , m_menus(menus)
{
    table->setItemDelegate(new RowDelegate(table));
    table->setTabKeyNavigation(false);
    table->setMouseTracking(true);
    table->installEventFilter(this);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->setMinimumSectionSize(table->fontMetrics().height() + rowMargin);
    layOutColumns(table->horizontalHeader());
    connect(table->horizontalHeader(), &QHeaderView::sectionClicked, this,
            [this](int column) { popUp(-1, column); });
}

int ChannelSettingsTable::fullHeight() const
{
    return m_table->horizontalHeader()->sizeHint().height() + 2 * m_table->frameWidth() +
           optionsNOX8::channelRecords * m_table->verticalHeader()->minimumSectionSize();
}

void ChannelSettingsTable::refresh(const optionsNOX8 &image, const ConfigurationChanges &changes)
{
    const QSignalBlocker blocker(m_table);
    m_table->setRowCount(image.getDevChCount());
    for (int row = 0; row < m_table->rowCount(); ++row)
        paintRow(m_table, row, channelCells(image, quint8(row)), changes.channels.value(row));
    if (m_table->rowCount() > 0 && m_table->currentRow() < 0)
        m_table->setCurrentCell(0, OnOffSetting); // where the keyboard begins
}

void ChannelSettingsTable::popUp(int row, int column)
{
    if (column < 0 || column >= channelSettings || row >= m_table->rowCount())
        return;
    const QTableWidgetItem *const item = m_table->item(row, column);
    if (item && !item->flags().testFlag(Qt::ItemIsEnabled))
        return;
    m_menus->popUp(ChannelSetting(column), row, menuPlace(row, column));
}

/** At the right edge of the column, beside its row or its header. */
QPoint ChannelSettingsTable::menuPlace(int row, int column) const
{
    const QHeaderView *const header = m_table->horizontalHeader();
    const int right = header->sectionViewportPosition(column) + header->sectionSize(column);
    if (row < 0)
        return header->viewport()->mapToGlobal({right, 0});
    return m_table->viewport()->mapToGlobal({right, m_table->rowViewportPosition(row)});
}

void ChannelSettingsTable::hover(int column)
{
    m_table->setCursor(isCharacteristic(column) ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

bool ChannelSettingsTable::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const auto *const key = static_cast<QKeyEvent *>(event);
    if (!opensMenu(key->key()) || m_table->currentRow() < 0)
        return QObject::eventFilter(watched, event);
    const bool isForAll = key->modifiers().testFlag(Qt::ControlModifier);
    popUp(isForAll ? -1 : m_table->currentRow(), m_table->currentColumn());
    return true;
}
