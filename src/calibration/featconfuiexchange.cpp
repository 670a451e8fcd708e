// The editor's ways to and from the database, files, and the recalculation from fixed points.

#include "calibration/characteristicfile.h"
#include "calibration/characteristicquestions.h"
#include "calibration/featconfui.h"
#include "calibration/storedpanel.h"
#include "calibration/tpreperui.h"
#include "calibration/workingcopy.h"
#include "ui_featconfui.h"

// Stored characteristics

void featconfui::findSqlItem()
{
    if (m_copy)
        m_stored->match(m_stored->id(), m_copy->record());
}

void featconfui::on_searchEdit_textChanged(const QString &text)
{
    if (text.isEmpty())
        findSqlItem();
    else
        m_stored->search(text);
}

void featconfui::on_dbFindCB_activated(int)
{
    takeStored();
}

void featconfui::on_dbFindCB_currentIndexChanged(int)
{
    takeStored();
}

/** One choice comes twice: as a change of the list and as its activation. */
void featconfui::takeStored()
{
    const int id = m_stored->chosenId();
    if (!m_copy || id < 1)
        return;
    const QByteArray record = storedRecord(id);
    if (m_stored->isShown(id, record, *m_copy))
        return;
    m_copy->load(record);
    m_stored->match(id, m_copy->record());
    showCopy();
}

/** False when what is entered is not what will be stored. */
bool featconfui::takeToStore()
{
    m_ui->ratioTable->endEdit();
    setFeature(false);
    return setFeature(true);
}

void featconfui::on_saveDBBtn_clicked()
{
    if (!m_copy || !m_database)
        return;
    const bool isTaken = takeToStore();
    noticeStored(m_stored->save(*m_copy), isTaken);
}

void featconfui::on_addDBBtn_clicked()
{
    if (!m_copy || !m_database)
        return;
    const bool isTaken = takeToStore();
    noticeStored(m_stored->add(*m_copy), isTaken);
}

void featconfui::noticeStored(bool isStored, bool isTaken)
{
    if (!isStored)
        notice(tr("Сохранить в БД не удалось"));
    else if (!isTaken)
        notice(tr("В БД сохранены последние принятые значения, а не те, что в таблице"));
    else
        notice({});
}

void featconfui::on_rmDBBtn_clicked()
{
    const int id = m_stored->id();
    const QPointer<featconfui> self(this);
    if (id < 1 ||
        UserDialogs::current().ask(this, removalQuestion(windowTitle())) != QMessageBox::Yes)
        return;
    if (!self || !m_copy)
        return;
    removeStoredCharacteristic(id);
    m_stored->match(0, m_copy->record());
}

// Files

void featconfui::on_pushButton_3_clicked()
{
    const QPointer<featconfui> self(this);
    const QString fileName = chooseCharacteristic(this, m_database, characteristicToLoad());
    if (!self || !m_copy || fileName.isEmpty())
        return;
    const CharacteristicFileReading reading = loadCharacteristicFile(fileName);
    if (reading.selectedType)
        selectType(*reading.selectedType);
    if (!reading.accepted)
        return UserDialogs::current().tell(this, unreadableCharacteristic());
    m_ui->featName->setText(reading.file.description);
    m_ui->ratioTable->showTexts(reading.file.rows);
    setFeature(false);
}

void featconfui::on_pushButton_4_clicked()
{
    m_ui->pushButton_4->setFocus();
    m_ui->ratioTable->endEdit();
    const QPointer<featconfui> self(this);
    const QString fileName =
        chooseCharacteristic(this, m_database, characteristicToSave(m_ui->featName->text()));
    if (!self || !m_copy || fileName.isEmpty())
        return;
    const CharacteristicFile file = {selectedType(), m_ui->featName->text(),
                                     m_ui->ratioTable->texts()};
    if (!saveCharacteristicFile(file, fileName))
        UserDialogs::current().tell(this, unwritableCharacteristic());
}

// Recalculation

void featconfui::on_reperTPBtn_clicked()
{
    if (!m_copy)
        return;
    QStringList pairs;
    const QPointer<featconfui> self(this);
    m_recalculation->setOutput(&pairs);
    const bool isAccepted = m_recalculation->exec() == Accepted;
    if (!self)
        return;
    m_recalculation->setOutput(nullptr);
    if (!isAccepted || !m_copy || !characteristicLayout(selectedType()).isOfPairs)
        return;
    m_ui->ratioTable->showTexts(
        withPairs(m_ui->ratioTable->texts(), m_ui->reperTPSpin->value() - 1, pairs));
    setFeature(false);
    if (pairs.isEmpty())
        notice(tr("Пересчёт: ТЭДС вне допустимого диапазона, таблица не изменена"));
}
