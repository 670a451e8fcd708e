#include "calibration/shifttab.h"

#include "calibration/entrymessages.h"
#include "calibration/entrytable.h"
#include "calibration/numberentry.h"
#include "calibration/shiftentry.h"
#include "device/optionsnox8.h"
#include "plot/qwtnox.h"
#include "ui_shifttab.h"

namespace
{

constexpr quint32 sixteenChannelModel = 0x0960AA0F;
constexpr quint32 zeroedModel = 0x0970AA0F;
constexpr uchar zeroedChannels = 8;

/** Calls `visit` with each cell of a table, column by column from top to bottom. */
template<typename Visit>
void forEachItem(const QTableWidget *table, Visit visit)
{
    for (int column = 0; column < table->columnCount(); ++column) {
        for (int row = 0; row < table->rowCount(); ++row)
            visit(table->item(row, column));
    }
}

} // namespace

ShiftTab::ShiftTab(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::ShiftTab>())
{
    m_ui->setupUi(this);
    keepReadableWhileLocked(this);
    for (QTableWidget *table : tables())
        prepareEntryTable(table);
    setServiceVisible(false);
    followModel();
}

ShiftTab::~ShiftTab() = default;

/** The tables in the order in which their numbers stand in the block. */
QVector<QTableWidget *> ShiftTab::tables() const
{
    return {m_ui->uShiftTable, m_ui->ch8ShiftTable, m_ui->ch16ShiftTable, m_ui->rShiftTable};
}

/** The cells in which something can be entered; once shifts were shown, in the order of the block.
 */
QVector<QTableWidgetItem *> ShiftTab::entryCells() const
{
    QVector<QTableWidgetItem *> cells;
    for (const QTableWidget *table : tables()) {
        forEachItem(table, [&cells](QTableWidgetItem *item) {
            if (item->flags().testFlag(Qt::ItemIsEnabled))
                cells << item;
        });
    }
    return cells;
}

void ShiftTab::setImage(optionsNOX8 *image)
{
    m_image = image;
    m_held.reset();
    m_shownType = 0;
    clearCells();
    followModel();
}

void ShiftTab::clearCells()
{
    for (QTableWidget *table : tables()) {
        const QSignalBlocker quiet(table);
        forEachItem(table, [table](QTableWidgetItem *item) {
            table->closePersistentEditor(item);
            showEntry(item, {}, true);
            item->setData(changedRole, false);
        });
    }
}

void ShiftTab::followModel()
{
    m_ui->refShiftGBox->setEnabled(m_image && m_image->devType != 0);
    showChannelTables();
    if (m_image && m_image->devType != m_shownType)
        refresh();
}

void ShiftTab::refresh()
{
    if (!m_image || m_image->getDevRev() == 0)
        return;
    m_shownType = m_image->devType;
    const QSignalBlocker quiet(m_ui->uShiftTable);
    forEachItem(m_ui->uShiftTable, [](QTableWidgetItem *item) {
        const bool isInUse = rangeShiftIndex(item->row(), item->column()) >= 0;
        item->setFlags(item->flags().setFlag(Qt::ItemIsEnabled, isInUse));
    });
    const QVector<QTableWidgetItem *> cells = entryCells();
    const QStringList texts = shownShifts(*m_image);
    for (int i = 0; i < cells.size(); ++i) {
        const QSignalBlocker silent(cells.at(i)->tableWidget());
        cells.at(i)->setText(texts.at(i));
    }
    showMarks();
}

void ShiftTab::setHeld(const std::optional<ZeroShifts> &held)
{
    m_held = held;
    showMarks();
}

void ShiftTab::showMarks()
{
    if (!m_image || m_image->getDevRev() == 0)
        return;
    const QVector<QTableWidgetItem *> cells = entryCells();
    const QByteArray block = encodeZeroShifts(*m_image);
    const QByteArray heldBlock = m_held ? encodeZeroShifts(*m_held) : QByteArray();
    for (int i = 0; i < cells.size(); ++i) {
        const QSignalBlocker quiet(cells.at(i)->tableWidget());
        cells.at(i)->setData(changedRole, differs(block, heldBlock, i));
    }
}

void ShiftTab::showChannelTables()
{
    m_ui->ch16ShiftTable->setVisible(m_image && m_image->devType == sixteenChannelModel);
}

void ShiftTab::write()
{
    const QPointer<optionsNOX8> image = m_image;
    if (!image || !isChangeWanted(this, m_ui->refShiftGBox->title()))
        return;
    if (!image || image != m_image) // it may have gone during the question
        return;
    QStringList texts;
    for (const QTableWidgetItem *cell : entryCells())
        texts << cell->text();
    const bool isEntered = enterShifts(texts, *image);
    emit taken();
    if (isEntered) {
        refresh();
        image->triggerRefShiftChange();
    } else {
        showMarks(); // what was taken before the wrong number differs from now on
        tellWrongEntry(this);
    }
}

void ShiftTab::lock()
{
    m_ui->refShiftGBox->setChecked(false);
}

void ShiftTab::setServiceVisible(bool visible)
{
    m_ui->uShiftGBox->setVisible(visible);
    m_ui->chUPB->setVisible(visible);
    if (visible) {
        m_ui->shiftScroll->widget()->layout()->activate(); // the group gets its place
        m_ui->shiftScroll->ensureWidgetVisible(m_ui->uShiftGBox);
    }
}

void ShiftTab::zeroChannels(const QwtNOX *plot, int qwtIndex)
{
    // below 0 the plot would answer for its main instrument
    if (!m_image || m_image->devType != zeroedModel || !plot || qwtIndex < 0)
        return;
    if (m_image->getDevChCount() != zeroedChannels || plot->getChCount(qwtIndex) != zeroedChannels)
        return;
    for (uchar ch = 0; ch < zeroedChannels; ++ch) {
        float &shift = m_image->shiftCh[ch].value;
        shift = float(double(shift) - plot->getChMeas(qwtIndex, ch, -1, false));
    }
    emit m_image->onRefShiftChange();
}
