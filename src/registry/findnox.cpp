#include "registry/findnox.h"

#include "device/instrumentblocks.h"
#include "registry/blockexchange.h"
#include "registry/instrumentstore.h"
#include "registry/portaccess.h"
#include "serial/noxserialport.h"
#include "serial/portcatalog.h"
#include "storage/noxsql.h"
#include "ui_findnox.h"

#include <QLabel>
#include <QScopedValueRollback>

#include <algorithm>

namespace
{

constexpr quint16 lastExchangeOfReads = 200; ///< greater codes are failed writes and port errors

const QString skipUnknownKey = QStringLiteral("find_skip_unknown");

} // namespace

findNox::findNox(QWidget *parent, noxList *registry)
    : QDialog(parent)
    , m_registry(registry)
    , m_ui(std::make_unique<Ui::findNox>())
    , m_found(std::make_unique<noxList>(registry->serialPort(), registry->database()))
    , m_store(std::make_unique<InstrumentStore>(registry->database()))
    , m_message(new QLabel(this))
{
    m_ui->setupUi(this);
    m_table = std::make_unique<FoundTable>(m_ui->newDevTable);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    // its records only wait here: what their instruments answer is this dialog's to decide
    registry->serialPort()->disconnect(m_found.get());
    m_message->setAlignment(Qt::AlignCenter);
    m_ui->progressStack->addWidget(m_message);
    connect(m_ui->newDevTable, &HeadedTable::chosen, m_ui->connectBtn, &QPushButton::click);
    connect(this, &QDialog::finished, this, &findNox::endSearch);
}

findNox::~findNox()
{
    m_registry->serialPort()->disconnect(this);
    forgetFound(); // while what the removals report still finds the whole dialog
}

// The search

void findNox::find(bool autoConnect, uint type, quint16 number)
{
    m_autoConnect = autoConnect;
    m_typeFilter = type;
    m_numberFilter = number;
    {
        const QSignalBlocker noStoring(m_ui->skipNoneCB);
        const bool skipUnknown =
            searchesForOne() || m_registry->database()->getAppProperty(skipUnknownKey).toBool();
        m_ui->skipNoneCB->setChecked(skipUnknown);
        m_ui->skipNoneCB->setEnabled(!searchesForOne());
    }
    const NOXSerialPort *const port = m_registry->serialPort();
    port->disconnect(this); // a search may be started while another one runs
    connect(port, QOverload<int, QByteArray *, quint8>::of(&NOXSerialPort::readyDevReply), this,
            &findNox::queryDataReady);
    connect(port, &NOXSerialPort::onDevQueryError, this, &findNox::queryError);
    connect(port, QOverload<int, quint16>::of(&NOXSerialPort::onDevError), this,
            &findNox::devError);
    m_isSearching = true;
    runScan();
    setVisible(m_isSearching);
}

void findNox::runScan()
{
    if (m_isClearing) // removing workers lets other events in: what clears begins this search
        return;
    forgetFound();
    if (!m_isSearching) // ... and they may have closed the dialog
        return;
    const auto ports = PortCatalog::current().ports();
    m_ui->accessHint->setText(deniedPortsText(ports));
    m_ui->accessHint->setHidden(m_ui->accessHint->text().isEmpty());
    if (ports.isEmpty())
        return showIdle(tr("Нет доступных портов"));

    m_ui->newDevTable->setEnabled(false);
    m_ui->connectBtn->setEnabled(false);
    m_ui->scanBtn->setEnabled(false);
    m_ui->progressBar->setRange(0, 0);
    m_ui->progressStack->setCurrentWidget(m_ui->progressBar);
    const int opened = openFreePorts(ports);
    m_ui->progressBar->setValue(0);
    m_ui->progressBar->setProperty("max", opened);
    tellWhoIsAwaited();
    if (opened == 0)
        showIdle(tr("Нет доступных портов"));
}

/** Opens every free port and asks who is there; how many could be opened. */
int findNox::openFreePorts(const QVector<SerialPortEntry> &ports)
{
    NOXSerialPort *const serialPort = m_registry->serialPort();
    for (const SerialPortEntry &port : ports) {
        const int devIndex = isConnectable(port) ? serialPort->addDev(port.name) : -1;
        if (devIndex < 0)
            continue;
        m_awaited.insert(devIndex);
        serialPort->sendDevQuery(devIndex, identificationAddress, identificationSize, true,
                                 noxQueryModeFast);
        serialPort->sendDevQuery(devIndex, referenceDataAddress, referenceDataSize, true,
                                 noxQueryModeFast);
    }
    return m_awaited.size();
}

void findNox::showIdle(const QString &message)
{
    m_ui->newDevTable->setEnabled(false);
    m_ui->connectBtn->setEnabled(false);
    m_ui->scanBtn->setEnabled(true);
    showMessage(message);
}

/** Shows a text in the place of the progress bar. */
void findNox::showMessage(const QString &text)
{
    m_message->setText(text);
    m_ui->progressStack->setCurrentWidget(m_message);
}

/** A port that says nothing holds a scan for a minute: the operator can see which one it is. */
void findNox::tellWhoIsAwaited()
{
    QStringList names;
    for (const int devIndex : m_awaited)
        names << m_registry->serialPort()->getPortName(devIndex);
    names.sort();
    m_ui->progressBar->setToolTip(tr("Ожидается ответ: %1").arg(names.join(QStringLiteral(", "))));
}

/** A device of the scan has been dealt with, for whatever reason; counted once. */
void findNox::countStep(int devIndex)
{
    if (!m_awaited.remove(devIndex))
        return;
    const int opened = m_ui->progressBar->property("max").toInt();
    m_ui->progressBar->setRange(0, opened);
    m_ui->progressBar->setValue(opened - m_awaited.size());
    tellWhoIsAwaited();
    if (m_awaited.isEmpty())
        allQueryCopmlite();
}

/** Lets go of a device that nobody can be found on. */
void findNox::dropDevice(int devIndex)
{
    const int search = m_search;
    const int index = m_found->getIndexByDev(devIndex);
    if (index >= 0)
        forgetRecord(index);
    else
        m_registry->serialPort()->rmDev(devIndex);
    if (search == m_search) // the removal lets other events in
        countStep(devIndex);
}

/** Removes a found instrument with its worker, unless the main registry has the worker by now. */
void findNox::forgetRecord(int index)
{
    const noxList::_nox *const found = m_found->getNoxByIndex(index);
    if (found->devIndex < 0 || !m_registry->isDevIndex(found->devIndex))
        return m_found->rmByIndex(index);
    m_found->detachByIndex(index);
    delete found;
}

/** Removes the workers that neither a registry nor the running scan knows. */
void findNox::dropUnknownDevices()
{
    const auto devices = m_registry->serialPort()->devices();
    for (const int devIndex : devices)
        if (!m_registry->isDevIndex(devIndex) && !m_found->isDevIndex(devIndex) &&
            !m_awaited.contains(devIndex))
            m_registry->serialPort()->rmDev(devIndex);
}

void findNox::endSearch()
{
    m_isSearching = false;
    ++m_search;
    m_registry->serialPort()->disconnect(this);
    m_numberFilter = 0;
    if (m_isClearing)
        return;
    forgetFound();
    if (m_isSearching) // asked for again while the removals let other events in
        runScan();
}

/** Lets go of everything that was found and not handed over. */
void findNox::forgetFound()
{
    const QScopedValueRollback<bool> clearing(m_isClearing, true);
    ++m_search;
    m_awaited.clear();
    m_table->clear();
    while (!m_found->indices().isEmpty())
        forgetRecord(m_found->indices().first());
    dropUnknownDevices();
}

// What the instruments answer

void findNox::queryDataReady(int devIndex, QByteArray *buf, quint8 address)
{
    if (!m_awaited.contains(devIndex))
        return;
    if (address != identificationAddress && address != referenceDataAddress)
        return dropDevice(devIndex);
    noxList::_nox *found = m_found->getNoxByDevIndex(devIndex);
    if (!found)
        found = m_found->newNox(devIndex, false);
    if (!found)
        return dropDevice(devIndex);

    if (address == identificationAddress) {
        if (readIdentification(found, *buf))
            takeRecognised(found);
    } else if (readReferenceData(found, *buf)) {
        takeRecognised(found);
    } else {
        countStep(devIndex);
    }
}

/** Whether the identification tells who the instrument is. */
bool findNox::readIdentification(noxList::_nox *found, const QByteArray &block)
{
    optionsNOX8 &image = *found->opt;
    const bool isAccepted = image.setData(block, identificationAddress);
    if (!image.isIdentified())
        return false;
    if (isAccepted)
        m_store->provide(found);
    return true;
}

/** Whether the reference data, or what was known before, tell who the instrument is. */
bool findNox::readReferenceData(noxList::_nox *found, const QByteArray &block)
{
    const bool isAccepted = found->opt->setData(block, referenceDataAddress);
    if (isAccepted && !found->opt->identValid)
        return m_store->recognise(found) && found->opt->isIdentified();
    return found->opt->isIdentified();
}

/** Shows an instrument that needs no answer, and connects it if it is one that is searched for. */
void findNox::takeRecognised(noxList::_nox *found)
{
    const int devIndex = found->devIndex;
    const bool isTheOne = m_numberFilter != 0 && found->opt->devNumber == m_numberFilter;
    m_table->addRecognised(found->portName, found->opt->getDevName(false),
                           found->opt->getDevNumberStr());
    if ((m_numberFilter == 0 || isTheOne) && handOver(found) && isTheOne)
        return accept();
    countStep(devIndex);
}

/** Gives a found instrument to the main registry; the record may be gone afterwards. */
bool findNox::handOver(noxList::_nox *found)
{
    const int devIndex = found->devIndex;
    if (!m_registry->addNox(found))
        return false;
    m_found->detachByDevIndex(devIndex);
    if (!m_registry->owns(found)) // the registry goes on with a record that it had before
        delete found;
    return true;
}

void findNox::queryError(int devIndex, quint16, noxSerialPortQueryItem query)
{
    // older instruments know no identification: their reference data decide
    if (query.address == referenceDataAddress && m_awaited.contains(devIndex))
        dropDevice(devIndex);
}

void findNox::devError(int devIndex, quint16 code)
{
    if (code <= lastExchangeOfReads || m_registry->isDevIndex(devIndex))
        return;
    if (m_awaited.contains(devIndex))
        dropDevice(devIndex);
    else if (m_found->isDevIndex(devIndex))
        dropWaiting(devIndex);
}

/** An instrument that was found and not handed over has gone, and nobody with it. */
void findNox::dropWaiting(int devIndex)
{
    const int search = m_search;
    const int index = m_found->getIndexByDev(devIndex);
    m_table->removeWaiting(index);
    forgetRecord(index);
    if (search != m_search || !m_awaited.isEmpty()) // the removal lets other events in
        return;
    if (waiting().isEmpty())
        accept();
    else
        showCount();
}

// What is left for the operator

void findNox::allQueryCopmlite()
{
    if (m_ui->skipNoneCB->isChecked())
        return accept();
    m_ui->scanBtn->setEnabled(true);
    showCount();
    const int search = m_search;
    dropUnknownDevices();
    if (search != m_search) // the removals let other events in
        return;
    if (waiting().isEmpty())
        return accept();

    listWaiting();
    m_ui->newDevTable->setEnabled(true);
    m_ui->newDevTable->setFocus();
    m_ui->connectBtn->setEnabled(true);
    if (m_autoConnect && connectsByItself())
        on_connectBtn_clicked();
}

void findNox::showCount()
{
    showMessage(tr("Найдено приборов: ") + QString::number(waiting().size()));
}

/** Who was found and not handed over; those whose worker is just ending are gone already. */
QList<int> findNox::waiting() const
{
    QList<int> indices;
    const auto all = m_found->indices();
    for (const int index : all)
        if (m_found->getNoxByIndex(index)->isConnected())
            indices << index;
    return indices;
}

void findNox::listWaiting()
{
    m_table->clear();
    const auto indices = waiting();
    for (const int index : indices) {
        noxList::_nox *const found = m_found->getNoxByIndex(index);
        const optionsNOX8 &image = *found->opt;
        if (image.identValid)
            m_store->find(found);
        else
            m_store->recognise(found);
        FoundTable::WaitingRow row{index, FoundInstrument(image, found->dbIndex >= 1)};
        if (searchesForOne() && !isSearched(image))
            row.instrument.check(false);
        m_table->addWaiting(row, found->portName);
    }
    m_ui->newDevTable->setCurrentCell(1, 0);
}

bool findNox::isSearched(const optionsNOX8 &image) const
{
    return image.devType == m_typeFilter && image.devNumber == m_numberFilter;
}

bool findNox::connectsByItself() const
{
    const auto &rows = m_table->waiting();
    if (searchesForOne())
        return std::any_of(rows.begin(), rows.end(), [this](const FoundTable::WaitingRow &row) {
            return isSearched(*m_found->getNoxByIndex(row.index)->opt);
        });
    return std::all_of(rows.begin(), rows.end(), [](const FoundTable::WaitingRow &row) {
        return row.instrument.isUnambiguous();
    });
}

void findNox::on_connectBtn_clicked()
{
    m_table->takeTypedNumber();
    const auto rows = m_table->waiting();
    for (const FoundTable::WaitingRow &row : rows)
        if (row.instrument.isChecked())
            connectRow(row);
    accept();
}

/** Connects an instrument as the operator has described it. */
void findNox::connectRow(const FoundTable::WaitingRow &row)
{
    noxList::_nox *const found = m_found->getNoxByIndex(row.index);
    if (!found) // its plug was pulled meanwhile
        return;
    optionsNOX8 &image = *found->opt;
    if (const auto code = row.instrument.identify(&image))
        m_registry->serialPort()->sendDevData(found->devIndex, pendingBlock(image, *code), *code);
    if (!image.isIdentified())
        return;
    if (found->dbIndex < 1)
        m_store->provideWithReferences(found, *found->opt);
    handOver(found);
}

// The operator

void findNox::on_cancelBtn_clicked()
{
    reject();
}

void findNox::on_scanBtn_clicked()
{
    runScan();
}

void findNox::on_newDevTable_cellClicked(int row, int column)
{
    m_table->click(row, column);
}

void findNox::on_skipNoneCB_toggled(bool checked)
{
    m_registry->database()->setAppProperty(skipUnknownKey, checked);
}
