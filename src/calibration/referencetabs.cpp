#include "calibration/referencetabs.h"

#include "calibration/entrytable.h"
#include "calibration/referenceentry.h"
#include "device/optionsnox8.h"
#include "plot/qwtnox.h"
#include "ui_referencetab.h"
#include "ui_shifttab.h"
#include "widgets/changemark.h"
#include "widgets/rowdelegate.h"
#include "widgets/userdialogs.h"

#include <QCoreApplication>

namespace
{

struct EntryTexts {
    Q_DECLARE_TR_FUNCTIONS(ReferenceEntry)
};

constexpr QColor lockedText(0x5b, 0x68, 0x6f);

/** Lets the numbers and headings in a tab be read while they are locked. */
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

/** Asks under `warning` whether the references of an instrument are to be changed. False, too, when
 *  there is none, or when by the time of the answer the tab is gone or its `image` is another. */
bool isChangeWanted(QWidget *tab, const QString &warning, const QPointer<optionsNOX8> &image)
{
    const QPointer<QWidget> askingTab(tab);
    const QPointer<optionsNOX8> asked = image;
    if (!asked)
        return false;
    const Message question{QMessageBox::Warning, EntryTexts::tr("Изменение опор"), warning,
                           QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel};
    const bool isConfirmed = UserDialogs::current().ask(tab, question) == QMessageBox::Ok;
    return isConfirmed && askingTab && asked && asked == image;
}

/** Tells that the numbers entered in a tab are wrong. */
void tellWrongEntry(QWidget *tab)
{
    const Message message{
        QMessageBox::Warning, EntryTexts::tr("Ошибка ввода опор"),
        EntryTexts::tr("Не верные коэффициенты!\nПроверьте введённые значения и повторите "
                       "попытку.")};
    UserDialogs::current().tell(tab, message);
}

/** Whether number `index` of a block of floats differs from that of the block that an instrument
 *  is known to hold. Of an empty one nothing is known, and nothing differs. */
bool differs(const QByteArray &block, const QByteArray &held, int index)
{
    constexpr int size = sizeof(float);
    return !held.isEmpty() && block.mid(index * size, size) != held.mid(index * size, size);
}

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

// Reference resistors and voltage

ReferenceTab::ReferenceTab(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::ReferenceTab>())
{
    m_ui->setupUi(this);
    keepReadableWhileLocked(this);
    prepareEntryTable(m_ui->refTable);
    m_t0Mark = new ChangeMark(m_ui->t0Edit);
    lock(); // only now: Qt gives no role to fields that are made in a locked group
}

ReferenceTab::~ReferenceTab() = default;

void ReferenceTab::setImage(optionsNOX8 *image)
{
    m_image = image;
    m_held.reset();
    m_ui->t0Edit->setText({}); // which is no entry, unlike clear()
    const QSignalBlocker quiet(m_ui->refTable);
    for (int row = 0; row < ReferenceTexts::rows; ++row) {
        for (int column = 0; column < ReferenceTexts::columns; ++column) {
            QTableWidgetItem *const item = m_ui->refTable->item(row, column);
            m_ui->refTable->closePersistentEditor(item);
            showEntry(item, {}, true);
        }
    }
    showMarks();
    refresh();
}

void ReferenceTab::refresh()
{
    if (!m_image)
        return;
    const ReferenceTexts shown = shownReferences(*m_image, m_image->devType);
    showT0(shown.t0);
    const QSignalBlocker quiet(m_ui->refTable);
    for (int row = 0; row < ReferenceTexts::rows; ++row) {
        const bool isInUse = isRowInUse(m_image->devType, row);
        for (int column = 0; column < ReferenceTexts::columns; ++column)
            showEntry(m_ui->refTable->item(row, column),
                      shown.cells[std::size_t(row)][std::size_t(column)], isInUse);
    }
    showMarks();
}

void ReferenceTab::showT0(const QString &text)
{
    QLineEdit *const field = m_ui->t0Edit;
    const bool isBeingTyped = field->hasFocus() && field->isModified();
    if (!isBeingTyped && field->text() != text) {
        field->setText(text);
        if (field->hasFocus())
            field->selectAll(); // what is typed next replaces it
    }
}

void ReferenceTab::setHeld(const std::optional<ReferenceData> &held)
{
    m_held = held;
    showMarks();
}

/** Of the block's numbers T0 is the first; the others follow as the table's rows do. */
void ReferenceTab::showMarks()
{
    const QByteArray block = m_image ? encodeReferenceData(*m_image, {}) : QByteArray();
    const QByteArray heldBlock =
        m_image && m_held ? encodeReferenceData(*m_held, {}) : QByteArray();
    int number = 0;
    m_t0Mark->setChanged(differs(block, heldBlock, number++));
    const QSignalBlocker quiet(m_ui->refTable);
    for (int row = 0; row < ReferenceTexts::rows; ++row) {
        for (int column = 0; column < ReferenceTexts::columns; ++column)
            m_ui->refTable->item(row, column)
                ->setData(changedRole, differs(block, heldBlock, number++));
    }
}

bool ReferenceTab::take()
{
    if (!m_image)
        return false;
    const auto entered = enteredReferences(enteredTexts(), *m_image, m_image->devType);
    m_ui->t0Edit->setModified(false); // taken or refused, it is typed no more
    m_image->setReferenceData(entered.value_or(*m_image));
    if (!entered)
        tellWrongEntry(this);
    return entered.has_value();
}

void ReferenceTab::write()
{
    const QPointer<optionsNOX8> image = m_image;
    if (isChangeWanted(this, m_ui->refGBox->title(), m_image) && take() && image)
        image->triggerRefChange();
}

void ReferenceTab::lock()
{
    const QSignalBlocker quiet(m_ui->t0Edit); // losing the focus is no entry here
    m_ui->refGBox->setChecked(false);
}

void ReferenceTab::setAvailable(bool available)
{
    const QSignalBlocker quiet(m_ui->t0Edit); // losing the focus is no entry here
    m_ui->refGBox->setEnabled(available);
}

void ReferenceTab::setRemovable(bool removable)
{
    m_ui->rmDevBtn->setEnabled(removable);
}

ReferenceTexts ReferenceTab::enteredTexts() const
{
    ReferenceTexts texts;
    texts.t0 = m_ui->t0Edit->text();
    for (int row = 0; row < ReferenceTexts::rows; ++row) {
        for (int column = 0; column < ReferenceTexts::columns; ++column)
            texts.cells[std::size_t(row)][std::size_t(column)] =
                m_ui->refTable->item(row, column)->text();
    }
    return texts;
}

// Zero shifts

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
    lock(); // only now: Qt gives no role to fields that are made in a locked group
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
    if (!isChangeWanted(this, m_ui->refShiftGBox->title(), m_image))
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
    ZeroShifts zeroed = *m_image;
    for (uchar ch = 0; ch < zeroedChannels; ++ch) {
        float &shift = zeroed.shiftCh[ch].value;
        shift = float(double(shift) - plot->getChMeas(qwtIndex, ch, -1, false));
    }
    m_image->setZeroShifts(zeroed);
}
