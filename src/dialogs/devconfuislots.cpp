#include "calibration/featconfui.h"
#include "device/instrumentblocks.h"
#include "device/optionsnox8.h"
#include "dialogs/channelsettingstable.h"
#include "dialogs/devconfui.h"
#include "dialogs/instrumentfields.h"
#include "dialogs/operatingfields.h"
#include "dialogs/settingsfiles.h"
#include "dialogs/snapshotbox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/storedsnapshots.h"
#include "ui_devconfui.h"
#include "widgets/userdialogs.h"

#include <QPointer>

// What the user asks of the settings dialog: each slot of its form hands on to one part.

// The instrument as a whole

void devConfUI::on_devNumEdit_editingFinished()
{
    m_fields->storeNumber();
}

void devConfUI::on_devTypeCB_currentIndexChanged(int)
{
    m_fields->storeType();
}

void devConfUI::on_devMeasRoundCB_currentIndexChanged(int)
{
    m_operating->store(m_ui->devMeasRoundCB);
}

void devConfUI::on_devMeasTimeCB_currentIndexChanged(int)
{
    m_operating->store(m_ui->devMeasTimeCB);
}

void devConfUI::on_devMeasModeCB_currentIndexChanged(int)
{
    m_operating->store(m_ui->devMeasModeCB);
}

void devConfUI::on_devCompensTPCB_currentIndexChanged(int)
{
    m_operating->store(m_ui->devCompensTPCB);
}

void devConfUI::on_devChReversCB_currentIndexChanged(int)
{
    m_operating->store(m_ui->devChReversCB);
}

void devConfUI::on_devZakorotkaCB_currentIndexChanged(int)
{
    m_operating->store(m_ui->devZakorotkaCB);
}

void devConfUI::on_devNameEdit_editingFinished()
{
    m_fields->storeName();
}

void devConfUI::on_pushButton_5_clicked()
{
    if (optionsNOX8 *const shown = image())
        shown->triggerDevChange();
}

void devConfUI::on_devGetConfBtn_clicked()
{
    m_registry->getOptFromNox(m_index);
}

// Channels and characteristics

void devConfUI::on_chTable_cellPressed(int row, int column)
{
    m_channels->popUp(row, column);
}

void devConfUI::on_chTable_cellEntered(int, int column)
{
    m_channels->hover(column);
}

void devConfUI::on_featTable_cellDoubleClicked(int row, int)
{
    editCharacteristic(row);
}

void devConfUI::editCharacteristic(int row)
{
    const optionsNOX8 *const shown = image();
    if (featureNOX8 *const feature = shown ? shown->getFeature(quint8(row)) : nullptr)
        m_editor->show(feature);
}

// What the database keeps

void devConfUI::on_dbSearchEdit_textChanged(const QString &text)
{
    m_snapshots->search(text);
}

void devConfUI::on_dbFindCB_currentIndexChanged(int)
{
    m_snapshots->choose();
}

void devConfUI::on_dbFindCB_activated(int)
{
    m_snapshots->choose();
}

void devConfUI::on_saveDBBtn_clicked()
{
    m_snapshots->save();
}

void devConfUI::on_addDBBtn_clicked()
{
    m_snapshots->saveAsNew();
}

void devConfUI::on_rmDBBtn_clicked()
{
    m_snapshots->remove(this);
}

void devConfUI::on_rmDevBtn_clicked()
{
    const int index = m_index;
    const QPointer<devConfUI> self(this);
    const Message question = {QMessageBox::Warning, windowTitle(), tr("Вы уверены?"),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No};
    if (UserDialogs::current().ask(this, question) != QMessageBox::Yes || !self)
        return;
    noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    if (!nox || nox->dbIndex < 0 || !removeStoredInstrument(nox->dbIndex))
        return;
    nox->dbIndex = -1;
    emit m_registry->database()->onMeasDBChange();
    onDevChange(index);
}

void devConfUI::on_pushButton_3_clicked()
{
    const QPointer<devConfUI> self(this);
    m_files->load(m_index);
    if (self)
        showAll(); // a name and shifts are taken from a file without a word
}

void devConfUI::on_pushButton_4_clicked()
{
    m_files->save(m_index);
}

// References and shifts

bool devConfUI::setRef()
{
    return m_ui->referenceTab->take();
}

void devConfUI::on_t0Edit_editingFinished()
{
    setRef();
}

void devConfUI::on_pushButton_clicked()
{
    m_ui->referenceTab->write();
}

void devConfUI::on_pushButton_2_clicked()
{
    readBlock(referenceDataAddress, referenceDataSize);
}

void devConfUI::on_pushButton_7_clicked()
{
    const optionsNOX8 *const shown = image();
    if (shown && shown->getDevRev() != 0)
        readBlock(zeroShiftsAddress, zeroShiftsSize);
}

void devConfUI::on_pushButton_8_clicked()
{
    m_ui->shiftTab->write();
}

void devConfUI::on_chUPB_clicked()
{
    m_ui->shiftTab->zeroChannels(m_plot, m_registry->getQWTIndex(m_index));
}

void devConfUI::readBlock(quint8 address, int size)
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(m_index);
    if (nox)
        m_registry->serialPort()->sendDevQuery(nox->devIndex, address, quint16(size), true);
}
