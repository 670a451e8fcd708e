#include "dialogs/devconfui.h"

#include "device/instrumentblocks.h"
#include "dialogs/instrumentfields.h"
#include "dialogs/settingscontent.h"
#include "dialogs/settingsfiles.h"
#include "dialogs/settingstables.h"
#include "dialogs/snapshotbox.h"
#include "serial/noxserialport.h"
#include "ui_devconfui.h"
#include "widgets/accessiblerole.h"
#include "widgets/userdialogs.h"
#include "widgets/wheelguard.h"

#include <QKeyEvent>
#include <QPointer>
#include <QScreen>

namespace
{

constexpr int shiftPage = 3;    ///< of the tabs
constexpr int frameHeight = 40; ///< of what a window manager puts round a dialog, about

/** Makes layouts forget the sizes that they have seen before lists were filled and styles known. */
void refreshSizes(const QWidget *window)
{
    const auto widgets = window->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        widget->ensurePolished();
        widget->updateGeometry();
    }
    const auto layouts = window->findChildren<QLayout *>();
    for (QLayout *layout : layouts)
        layout->invalidate();
}

} // namespace

// Construction

devConfUI::devConfUI(QWidget *parent, noxList *registry, QwtNOX *plot)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::devConfUI>())
    , m_registry(registry)
    , m_plot(plot)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    buildParts();
    listenToRegistry();
    guardFromWheel(this);
    for (QComboBox *list : {m_ui->dbTypeCB, m_ui->dbFindCB})
        sayName(list);
    installEventFilter(this);
    connect(this, &QDialog::finished, this, &devConfUI::release);
}

devConfUI::~devConfUI() = default;

void devConfUI::buildParts()
{
    m_fields =
        new InstrumentFields({m_ui->devPortEdit, m_ui->connectionLabel, m_ui->pgBar,
                              m_ui->devNumEdit, m_ui->devNameEdit, m_ui->devTypeCB, m_ui->dbTypeCB},
                             this);
    m_operating =
        new OperatingFields({m_ui->devMeasRoundCB, m_ui->devMeasTimeCB, m_ui->devMeasModeCB,
                             m_ui->devCompensTPCB, m_ui->devChReversCB, m_ui->devZakorotkaCB},
                            this);
    m_channels = new ChannelSettingsTable(m_ui->chTable);
    m_characteristics = new CharacteristicList(m_ui->featTable, m_registry->database());
    connect(m_ui->shiftTab, &ShiftTab::taken, this, &devConfUI::findSnapShot);

    m_snapshots = std::make_unique<SnapshotBox>(*m_ui, m_registry);
    connect(m_snapshots.get(), &SnapshotBox::instrumentRemoved, this, &devConfUI::onDevChange);
    m_files = std::make_unique<SettingsFiles>(this, m_registry);
}

/** All channels are in sight, as far as they fit the screen; else everything but the
 *  buttons is scrolled. */
void devConfUI::fixSize()
{
    refreshSizes(this);
    m_ui->chTable->setMinimumHeight(m_channels->fullHeight());
    m_ui->settingsScroll->setMinimumSize(m_ui->settingsContents->sizeHint());
    const QSize wanted = sizeHint();
    m_ui->settingsScroll->setMinimumSize(0, 0);
    m_ui->chTable->setMinimumHeight(0);
    const int available = screen()->availableGeometry().height() - frameHeight;
    setFixedSize(wanted.width(), qMin(wanted.height(), available));
}

void devConfUI::listenToRegistry()
{
    connect(m_registry, &noxList::onHeldChange, this, [this](int index) {
        markReferences(index); // what was written differs no more
        onDevChange(index);
    });
    connect(m_registry, &noxList::onIdentChange, this, &devConfUI::onDevChange);
    connect(m_registry, &noxList::onChange, this, [this] {
        showConnection();
        findSnapShot(); // it may have been recognised
    });
    connect(m_registry, &noxList::onRmNox, this, &devConfUI::showRemoval);
}

// Opening and closing

/** The record of the instrument that is shown; it may be gone at any time. */
const noxList::_nox *devConfUI::shown() const
{
    return m_registry->getNoxByIndex(m_index);
}

void devConfUI::show(int index)
{
    if (!m_registry->getNoxByIndex(index))
        return;
    release(); // of the instrument that it may be open for
    setCurrent(index);
    m_serviceKeyHeld = false;
    m_ui->tabWidget->setCurrentIndex(0);
    m_fields->hideProgress();
    m_ui->shiftTab->setServiceVisible(false);
    m_ui->dbSearchEdit->clear();
    fixSize(); // not before: it lays out every page, for which the start would have to wait
    open();
    showAll();
    showConnection();
    connect(m_registry->serialPort(),
            QOverload<int, int, int, quint8>::of(&NOXSerialPort::setProgress), this,
            &devConfUI::showProgress);
}

void devConfUI::setCurrent(int index)
{
    m_index = index;
    optionsNOX8 *const image = shown() ? shown()->opt.get() : nullptr;
    m_fields->setImage(image);
    m_operating->setImage(image);
    m_channels->setImage(image);
    m_characteristics->setImage(image);
    m_ui->referenceTab->setImage(image);
    m_ui->shiftTab->setImage(image);
    m_snapshots->setIndex(index);
}

void devConfUI::release()
{
    m_ui->referenceTab->lock();
    m_ui->shiftTab->lock();
    m_registry->serialPort()->disconnect(this);
    setCurrent(-1);
}

/** Hidden, the dialog would take a T0 that was left half typed for an entry. */
void devConfUI::done(int result)
{
    m_ui->referenceTab->lock();
    QDialog::done(result);
}

/** The instrument was removed while its settings were open. */
void devConfUI::showRemoval(int index)
{
    if (index < 0 || index != m_index)
        return;
    const QString text = tr("Прибор удалён:\n%1").arg(m_title);
    reject();
    UserDialogs::current().tell(parentWidget(),
                                {QMessageBox::Information, windowTitle(), text, QMessageBox::Ok});
}

bool devConfUI::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return QDialog::eventFilter(watched, event);
    const auto *const key = static_cast<QKeyEvent *>(event);
    if (key->key() == Qt::Key_PageUp && !key->isAutoRepeat())
        m_serviceKeyHeld = event->type() == QEvent::KeyPress;
    return true; // no key closes the dialog or presses a default button
}

void devConfUI::on_pushButton_6_released()
{
    if (!m_serviceKeyHeld)
        return reject();
    m_fields->unlock();
    m_ui->tabWidget->setTabVisible(shiftPage, true);
    m_ui->shiftTab->setServiceVisible(true);
}

// What is shown

void devConfUI::showAll()
{
    const int index = m_index;
    onDevChange(index);
    onRefChange(index);
    onRefShiftChange(index);
}

void devConfUI::onDevChange(int index)
{
    if (!isCurrent(index))
        return;
    const noxList::_nox *const nox = shown();
    const FieldStates states = fieldStates(*nox->opt, nox->dbIndex);
    const ConfigurationChanges changes = configurationChanges(nox->held, *nox->opt);
    m_title = nox->opt->getDevTitle();
    setWindowTitle(tr("Настройки прибора ") + m_title);

    m_fields->refresh(m_registry->serialPort()->getPortName(nox->devIndex), states,
                      changes.identity);
    m_operating->refresh(changes);
    m_characteristics->refresh(changes);
    m_ui->referenceTab->setAvailable(states.isKnown);
    m_ui->referenceTab->setRemovable(states.isStored);
    m_ui->shiftTab->followModel();
    m_ui->tabWidget->setTabVisible(shiftPage, states.isExtended);
    m_ui->devGetConfBtn->setEnabled(states.isKnown);
    onChChange(index, 0);
}

void devConfUI::onChChange(int index, uchar)
{
    if (!isCurrent(index))
        return;
    m_channels->refresh(configurationChanges(shown()->held, *shown()->opt));
    findSnapShot();
}

void devConfUI::onRefChange(int index)
{
    if (!isCurrent(index))
        return;
    m_ui->referenceTab->refresh();
    markReferences(index);
    findSnapShot();
}

void devConfUI::onRefShiftChange(int index)
{
    if (!isCurrent(index))
        return;
    m_ui->shiftTab->refresh();
    markReferences(index);
    findSnapShot();
}

/** Marks what differs from what the instrument holds, and leaves what has been typed. */
void devConfUI::markReferences(int index)
{
    if (!isCurrent(index))
        return;
    m_ui->referenceTab->setHeld(shown()->held.referenceData());
    m_ui->shiftTab->setHeld(shown()->held.zeroShifts());
}

void devConfUI::findSnapShot()
{
    m_snapshots->match();
}

void devConfUI::showConnection()
{
    if (const noxList::_nox *const nox = shown())
        m_fields->showConnection(nox->isConnected(),
                                 m_registry->serialPort()->getPortName(nox->devIndex));
}

void devConfUI::showProgress(int devIndex, int progress, int maxProgress)
{
    if (shown() && shown()->devIndex == devIndex)
        m_fields->showProgress(progress, maxProgress);
}

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
    if (shown())
        shown()->opt->triggerDevChange();
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
    m_characteristics->edit(row);
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
    m_snapshots->remove();
}

void devConfUI::on_rmDevBtn_clicked()
{
    m_snapshots->removeInstrument();
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
    if (shown() && shown()->opt->getDevRev() != 0)
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
    if (shown())
        m_registry->serialPort()->sendDevQuery(shown()->devIndex, address, quint16(size), true);
}
