#include "calibration/referencetab.h"

#include "calibration/entrymessages.h"
#include "calibration/entrytable.h"
#include "calibration/numberentry.h"
#include "calibration/referencetexts.h"
#include "device/optionsnox8.h"
#include "ui_referencetab.h"
#include "widgets/rowdelegate.h"

ReferenceTab::ReferenceTab(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::ReferenceTab>())
{
    m_ui->setupUi(this);
    keepReadableWhileLocked(this);
    prepareEntryTable(m_ui->refTable);
    m_t0Mark = new ChangeMark(m_ui->t0Edit);
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
    if (entered)
        static_cast<ReferenceData &>(*m_image) = *entered;
    m_ui->t0Edit->setModified(false); // taken or refused, it is typed no more
    emit m_image->onRefChange();
    if (!entered)
        tellWrongEntry(this);
    return entered.has_value();
}

void ReferenceTab::write()
{
    const QPointer<optionsNOX8> image = m_image;
    if (!image || !isChangeWanted(this, m_ui->refGBox->title()))
        return;
    if (!image || image != m_image) // it may have gone during the question
        return;
    if (take() && image)
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
