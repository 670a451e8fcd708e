#include "dialogs/characteristiclist.h"

#include "device/optionsnox8.h"
#include "dialogs/configurationchanges.h"
#include "widgets/rowdelegate.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QTableWidget>

namespace
{

void paintCell(QTableWidget *table, int row, int column, const QString &text, bool isChanged)
{
    QTableWidgetItem *item = table->item(row, column);
    if (!item) {
        item = new QTableWidgetItem;
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        table->setItem(row, column, item);
    }
    item->setText(text);
    item->setData(changedRole, isChanged);
}

} // namespace

CharacteristicList::CharacteristicList(QTableWidget *table)
    : QObject(table)
    , m_table(table)
{
    table->setItemDelegate(new RowDelegate(table));
    table->setTabKeyNavigation(false);
    table->installEventFilter(this);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
}

void CharacteristicList::refresh(const optionsNOX8 &image, const ConfigurationChanges &changes)
{
    const QStringList names = image.getFeatureInfStrList();
    m_table->setRowCount(names.size());
    for (int row = 0; row < names.size(); ++row) {
        const featureNOX8 *const feature = image.getFeature(quint8(row));
        const bool isChanged = changes.characteristics.value(row);
        const QString type = feature->getFeatureTypeStr().value(feature->type, QStringLiteral("-"));
        paintCell(m_table, row, 0, names.at(row), isChanged);
        paintCell(m_table, row, 1, type, false);
    }
    if (m_table->rowCount() > 0 && m_table->currentRow() < 0)
        m_table->setCurrentCell(0, 0);
}

bool CharacteristicList::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && m_table->currentRow() >= 0) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
            emit opened(m_table->currentRow());
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
