#include "dialogs/settingstables.h"

#include "calibration/featconfui.h"
#include "dialogs/channelmenus.h"
#include "widgets/rowdelegate.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QTableWidget>

namespace
{

constexpr int choiceWidth = 75;
constexpr int characteristicWidth = 200;
constexpr int rowMargin = 3;

constexpr Qt::ItemFlags usableFlags = {Qt::ItemIsEnabled | Qt::ItemIsSelectable};

bool isCharacteristic(int column)
{
    return column == CharacteristicSetting || column == CompensationSetting;
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

/** What both tables have in common: cells are marked, Tab leaves, and keys go through a filter. */
void prepareTable(QTableWidget *table, QObject *keyFilter)
{
    table->setItemDelegate(new RowDelegate(table));
    table->setTabKeyNavigation(false);
    table->installEventFilter(keyFilter);
}

/** Where the keyboard begins. */
void provideCurrentCell(QTableWidget *table)
{
    if (table->rowCount() > 0 && table->currentRow() < 0)
        table->setCurrentCell(0, 0);
}

/** The key of an event that presses one while the table has a current row; else 0. */
int pressedKey(const QTableWidget *table, const QEvent *event)
{
    const bool isPress = event->type() == QEvent::KeyPress && table->currentRow() >= 0;
    return isPress ? static_cast<const QKeyEvent *>(event)->key() : 0;
}

bool activates(int key)
{
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
}

QTableWidgetItem *showCell(QTableWidget *table, int row, int column, const QString &text,
                           bool isChanged)
{
    if (!table->item(row, column))
        table->setItem(row, column, new QTableWidgetItem);
    QTableWidgetItem *const item = table->item(row, column);
    item->setText(text);
    item->setData(changedRole, isChanged);
    return item;
}

void paintRow(QTableWidget *table, int row, const ChannelCells &cells,
              const std::array<bool, channelSettings> &changed)
{
    for (int column = 0; column < channelSettings; ++column) {
        const auto cell = std::size_t(column);
        const bool isFaint = column != OnOffSetting && !cells.isOn;
        const bool isOpen = column != CompensationSetting || cells.isCompensated;
        QTableWidgetItem *const item =
            showCell(table, row, column, cells.texts.at(cell), changed.at(cell));
        item->setTextAlignment(Qt::AlignCenter);
        item->setForeground(isFaint ? Qt::lightGray : Qt::black);
        item->setFlags(isOpen ? usableFlags : Qt::NoItemFlags);
    }
}

} // namespace

// Channels

ChannelSettingsTable::ChannelSettingsTable(QTableWidget *table)
    : QObject(table)
    , m_table(table)
    , m_menus(new ChannelMenus(table->window()))
{
    prepareTable(table, this);
    table->setMouseTracking(true);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->setMinimumSectionSize(table->fontMetrics().height() + rowMargin);
    layOutColumns(table->horizontalHeader());
    connect(table->horizontalHeader(), &QHeaderView::sectionClicked, this,
            [this](int column) { popUp(-1, column); });
}

void ChannelSettingsTable::setImage(optionsNOX8 *image)
{
    m_image = image;
    m_menus->setImage(image);
}

int ChannelSettingsTable::fullHeight() const
{
    return m_table->horizontalHeader()->sizeHint().height() + 2 * m_table->frameWidth() +
           optionsNOX8::channelRecords * m_table->verticalHeader()->minimumSectionSize();
}

void ChannelSettingsTable::refresh(const ConfigurationChanges &changes)
{
    if (!m_image)
        return;
    const QSignalBlocker blocker(m_table);
    m_table->setRowCount(m_image->getDevChCount());
    for (int row = 0; row < m_table->rowCount(); ++row)
        paintRow(m_table, row, channelCells(*m_image, quint8(row)), changes.channels.value(row));
    provideCurrentCell(m_table);
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
    const int key = pressedKey(m_table, event);
    if (!activates(key) && key != Qt::Key_Menu)
        return QObject::eventFilter(watched, event);
    const bool isForAll =
        static_cast<QKeyEvent *>(event)->modifiers().testFlag(Qt::ControlModifier);
    popUp(isForAll ? -1 : m_table->currentRow(), m_table->currentColumn());
    return true;
}

// Characteristics

CharacteristicList::CharacteristicList(QTableWidget *table, noxSql *database)
    : QObject(table)
    , m_table(table)
    , m_editor(new featconfui(table->window(), database))
{
    prepareTable(table, this);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
}

void CharacteristicList::setImage(optionsNOX8 *image)
{
    m_image = image;
}

void CharacteristicList::refresh(const ConfigurationChanges &changes)
{
    if (!m_image)
        return;
    const QStringList names = m_image->getFeatureInfStrList();
    m_table->setRowCount(names.size());
    for (int row = 0; row < names.size(); ++row) {
        const featureNOX8 *const feature = m_image->getFeature(quint8(row));
        const QString type = feature->getFeatureTypeStr().value(feature->type, QStringLiteral("-"));
        const bool isChanged = changes.characteristics.value(row);
        showCell(m_table, row, 0, names.at(row), isChanged)->setFlags(usableFlags);
        showCell(m_table, row, 1, type, false)->setFlags(usableFlags);
    }
    provideCurrentCell(m_table);
}

void CharacteristicList::edit(int row)
{
    if (featureNOX8 *const feature = m_image ? m_image->getFeature(quint8(row)) : nullptr)
        m_editor->show(feature);
}

bool CharacteristicList::eventFilter(QObject *watched, QEvent *event)
{
    if (!activates(pressedKey(m_table, event)))
        return QObject::eventFilter(watched, event);
    edit(m_table->currentRow());
    return true;
}
