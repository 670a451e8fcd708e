#include "dialogs/confmenu.h"

#include "device/instrumentblocks.h"
#include "dialogs/instrumentfields.h"
#include "dialogs/settingscontent.h"
#include "dialogs/snapshotbox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "ui_confmenu.h"
#include "widgets/menucard.h"

namespace
{

constexpr quint16 mostLoggerBytes = 32768; ///< it ends with a mark of its own before

} // namespace

confMenu::confMenu(QWidget *parent, noxList *registry)
    : QMenu(parent)
    , m_card(new MenuCard(this))
    , m_ui(std::make_unique<Ui::confMenu>())
    , m_registry(registry)
{
    m_ui->setupUi(m_card);
    m_card->place();
    QMetaObject::connectSlotsByName(this);
    buildOperating();

    connect(this, &QMenu::aboutToHide, this, [this] { setCurrent(-1); });
    connect(m_registry, &noxList::onHeldChange, this, &confMenu::onDevChange);
    connect(m_registry, &noxList::onIdentChange, this, &confMenu::onDevChange);
    connect(m_registry, &noxList::onChange, this, [this] { onDevChange(m_index); });
    connect(m_registry, &noxList::onRmNox, this, [this](int index) {
        if (index == m_index)
            hide();
    });
}

confMenu::~confMenu() = default;

void confMenu::buildOperating()
{
    m_operating =
        new OperatingFields({m_ui->devMeasRoundCB, m_ui->devMeasTimeCB, m_ui->devMeasModeCB,
                             m_ui->devCompensTPCB, m_ui->devChReversCB, m_ui->devZakorotkaCB},
                            this);
    const auto lists = findChildren<QComboBox *>();
    for (const QComboBox *list : lists)
        connect(list, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                [this, list] { m_operating->store(list); });
}

// Which instrument, and what of it

/** The image of the instrument that is shown; it may be gone at any time. */
optionsNOX8 *confMenu::image() const
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(m_index);
    return nox ? nox->opt.get() : nullptr;
}

void confMenu::setCurrent(int index)
{
    m_index = index;
    m_operating->setImage(image());
}

void confMenu::show(int index, const QPoint &place)
{
    if (!m_registry->getNoxByIndex(index))
        return;
    hide(); // it may be open for another one
    setCurrent(index);
    onDevChange(index);
    popup(place);
}

void confMenu::onDevChange(int index)
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    if (index != m_index || !nox)
        return;
    const optionsNOX8 &shown = *nox->opt;
    m_card->showTitle(m_ui->titleLabel, shown.getDevTitle());
    m_ui->devPortEdit->setText(m_registry->serialPort()->getPortName(nox->devIndex));
    m_ui->devNumEdit->setText(shown.getDevNumberStr());
    m_ui->devTypeEdit->setText(shown.getDevTypeStr(true));
    m_operating->refresh(configurationChanges(nox->held, shown));
    m_ui->startBtn->setChecked(nox->processed);
    showConnection(nox->isConnected(), shown.devType != 0);
}

void confMenu::showConnection(bool isConnected, bool isKnown)
{
    m_ui->connectBtn->setIcon(isConnected ? m_disconnectPicture : m_connectPicture);
    const QString text = isConnected ? tr("Отключить прибор") : tr("Подключить прибор");
    m_ui->connectBtn->setToolTip(text);
    m_ui->connectBtn->setAccessibleName(text);
    m_ui->readLogBtn->setEnabled(isConnected && isKnown);
    m_ui->readBtn->setEnabled(isConnected && isKnown);
    m_ui->startBtn->setEnabled(isConnected);
}

// What can be done with it

void confMenu::on_closeBtn_clicked()
{
    hide();
}

void confMenu::on_removeBtn_clicked()
{
    const int index = m_index;
    hide();
    m_registry->rmByIndex(index);
}

void confMenu::on_connectBtn_clicked()
{
    const int index = m_index;
    hide();
    noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    if (nox->isConnected())
        m_registry->disConnByIndex(index);
    else if (nox->opt->isIdentified())
        m_registry->searchFor(index);
    else
        m_registry->connByIndex(index); // what is not known cannot be searched for
}

void confMenu::on_readLogBtn_clicked()
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(m_index);
    hide();
    if (nox)
        m_registry->serialPort()->sendRecQuery(nox->devIndex, loggerAddress, mostLoggerBytes, true);
}

void confMenu::on_readBtn_clicked()
{
    m_registry->getOptFromNox(m_index);
}

void confMenu::on_startBtn_clicked(bool isChecked)
{
    const int index = m_index;
    hide();
    m_registry->setProccesed(index, isChecked, false);
}

void confMenu::on_setupBtn_clicked()
{
    const int index = m_index;
    hide();
    emit neadShowSetup(index);
}

void confMenu::on_applyBtn_clicked()
{
    noxList::_nox *const nox = m_registry->getNoxByIndex(m_index);
    hide();
    if (!nox)
        return;
    followConfiguration(nox);
    nox->opt->triggerChChange(nox->mainCh);
}

/** The stored snapshot that the instrument has becomes what its configuration is; in place of one
 *  that is never changed a new one is stored. */
void confMenu::followConfiguration(noxList::_nox *nox)
{
    if (nox->snapShotId < 1)
        return;
    noxSql &database = *m_registry->database();
    storeSnapshot(database, *nox, database.getSnapShotInfo(nox->snapShotId), nox->snapShotId);
}
