#include "dialogs/devconfui.h"

#include "calibration/featconfui.h"
#include "device/optionsnox8.h"
#include "dialogs/channelmenus.h"
#include "dialogs/channelsettingstable.h"
#include "dialogs/characteristiclist.h"
#include "dialogs/configurationchanges.h"
#include "dialogs/fieldstates.h"
#include "dialogs/instrumentfields.h"
#include "dialogs/instrumenttitle.h"
#include "dialogs/operatingfields.h"
#include "dialogs/settingsfiles.h"
#include "dialogs/snapshotbox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "ui_devconfui.h"
#include "widgets/userdialogs.h"
#include "widgets/wheelguard.h"

#include <QKeyEvent>
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
    m_ui->pgBar->hide();
    buildParts();
    listenToRegistry();
    guardFromWheel(this);
    installEventFilter(this);
    connect(this, &QDialog::finished, this, &devConfUI::release);
}

devConfUI::~devConfUI() = default;

void devConfUI::buildParts()
{
    m_fields = new InstrumentFields(
        {m_ui->devPortEdit, m_ui->devNumEdit, m_ui->devNameEdit, m_ui->devTypeCB}, this);
    m_operating =
        new OperatingFields({m_ui->devMeasRoundCB, m_ui->devMeasTimeCB, m_ui->devMeasModeCB,
                             m_ui->devCompensTPCB, m_ui->devChReversCB, m_ui->devZakorotkaCB},
                            this);
    const QMap<quint32, QString> types = optionsNOX8::getTypeList(true);
    for (auto type = types.begin(); type != types.end(); ++type)
        m_ui->dbTypeCB->addItem(type.value(), type.key());

    m_channelMenus = new ChannelMenus(this);
    m_channels = new ChannelSettingsTable(m_ui->chTable, m_channelMenus);
    m_characteristics = new CharacteristicList(m_ui->featTable);
    connect(m_characteristics, &CharacteristicList::opened, this, &devConfUI::editCharacteristic);

    connect(m_ui->shiftTab, &ShiftTab::taken, this, &devConfUI::findSnapShot);

    const SnapshotBox::Widgets snapshots = {m_ui->dbStatusLabel, m_ui->saveDBBtn,    m_ui->addDBBtn,
                                            m_ui->rmDBBtn,       m_ui->dbSearchEdit, m_ui->dbFindCB,
                                            m_ui->infoText};
    m_snapshots = std::make_unique<SnapshotBox>(snapshots, m_registry);
    m_files = std::make_unique<SettingsFiles>(this, m_registry);
    m_editor = new featconfui(this, m_registry->database());
}

/** All channels are in sight, as far as the screen has room for them; else everything but the
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

/** The image of the instrument that is shown; it may be gone at any time. */
optionsNOX8 *devConfUI::image() const
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(m_index);
    return nox ? nox->opt.get() : nullptr;
}

void devConfUI::show(int index)
{
    if (!m_registry->getNoxByIndex(index))
        return;
    release(); // of the instrument that it may be open for
    setCurrent(index);
    m_serviceKeyHeld = false;
    m_ui->tabWidget->setCurrentIndex(0);
    m_ui->pgBar->hide();
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
    m_fields->setImage(image());
    m_operating->setImage(image());
    m_channelMenus->setImage(image());
    m_ui->referenceTab->setImage(image());
    m_ui->shiftTab->setImage(image());
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
    if (m_serviceKeyHeld)
        unlockService();
    else
        reject();
}

void devConfUI::unlockService()
{
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
    const noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    const FieldStates states = fieldStates(*nox->opt, nox->dbIndex);
    const ConfigurationChanges changes = configurationChanges(nox->held, *nox->opt);
    m_title = instrumentTitle(*nox->opt);
    setWindowTitle(tr("Настройки прибора ") + m_title);

    m_fields->refresh(m_registry->serialPort()->getPortName(nox->devIndex), states,
                      changes.identity);
    m_operating->refresh(changes);
    m_characteristics->refresh(*nox->opt, changes);
    m_ui->referenceTab->setAvailable(states.isKnown);
    m_ui->referenceTab->setRemovable(states.isStored);
    m_ui->shiftTab->followModel();
    m_ui->tabWidget->setTabVisible(shiftPage, states.isExtended);
    m_ui->devGetConfBtn->setEnabled(states.isKnown);
    m_ui->dbTypeCB->setEnabled(!states.isKnown);
    m_ui->dbTypeCB->setCurrentIndex(m_ui->dbTypeCB->findData(nox->opt->devType));
    onChChange(index, 0);
}

void devConfUI::onChChange(int index, uchar)
{
    if (!isCurrent(index))
        return;
    const noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    m_channels->refresh(*nox->opt, configurationChanges(nox->held, *nox->opt));
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
    const HeldBlocks &held = m_registry->getNoxByIndex(index)->held;
    m_ui->referenceTab->setHeld(held.referenceData());
    m_ui->shiftTab->setHeld(held.zeroShifts());
}

void devConfUI::findSnapShot()
{
    m_snapshots->match();
}

void devConfUI::showConnection()
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(m_index);
    if (!nox)
        return;
    const bool isConnected = nox->devIndex >= 0;
    m_ui->connectionLabel->setText(isConnected ? QString() : tr("Прибор не подключён"));
    m_ui->devPortEdit->setText(m_registry->serialPort()->getPortName(nox->devIndex));
    if (!isConnected)
        m_ui->pgBar->hide(); // nobody tells of a transfer that was cut off
}

void devConfUI::showProgress(int devIndex, int progress, int maxProgress)
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(m_index);
    if (!nox || nox->devIndex != devIndex)
        return;
    const bool isBusy = progress < 0;
    m_ui->pgBar->setVisible(isBusy || progress != 0 || maxProgress != 0);
    m_ui->pgBar->setRange(0, maxProgress);
    if (isBusy)
        m_ui->pgBar->reset(); // its value is then -1, which setValue() refuses
    else
        m_ui->pgBar->setValue(progress);
}
